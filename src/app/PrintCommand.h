#pragma once
// `tamrik print FILE.sl --pdf OUT.pdf [--docs 0,1,...]`: a project's documents to a PDF file,
// without any window.

namespace app {

// The arguments after "print"; returns the exit status.
int printCommand(int argc, char** argv);

} // namespace app
