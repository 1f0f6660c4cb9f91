#pragma once
// The command-line subcommands, run without any window.

namespace app {

bool isCommand(const char* name);
// Runs a subcommand; returns the exit status (0 done, 1 error).
int runCommand(int argc, char** argv);

} // namespace app
