#pragma once
// `tamrik print FILE.sl --pdf OUT.pdf [--docs 0,1,...]`: a project's documents to a PDF file,
// without any window.

#include "print/PrintRun.h"

namespace app {

// The arguments after "print"; returns the exit status.
int printCommand(int argc, char** argv);

// The printing settings of the user, as the desktop program would use them.
print::PrintSettings userPrintSettings(const QString& appPath);

} // namespace app
