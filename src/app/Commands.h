#pragma once
// The command-line subcommands, run without any window.

namespace app {

// The commands that lay out pages. They are given to runCommand by the program that links the
// print code; the text-only command program leaves them out and so loads none of its libraries.
struct PageCommands {
    int (*print)(int argc, char** argv) = nullptr;
    int (*compare)(int argc, char** argv) = nullptr;
};

bool isCommand(const char* name);
// Runs a subcommand; returns the exit status (0 done, 1 error). A command of `pages` that is not
// given ends with the message that it is not available.
int runCommand(int argc, char** argv, const PageCommands& pages = {});

} // namespace app
