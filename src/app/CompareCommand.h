#pragma once
// `tamrik compare OLD.sl NEW.sl [--json] [--pdf OUT.pdf]`: what changed between two versions of
// a project and what it costs, without any window. Exit status 0 when the versions are equal,
// 4 when they differ, 1 on an error.
namespace app {

// The arguments after "compare"; returns the exit status.
int compareCommand(int argc, char** argv);

} // namespace app
