// The command program: the commands that read files and write text (costs, summary, validate,
// convert, help). It links the model without the print, picture and mail code, so it starts
// without loading the libraries of the windows, the fonts or the PDF files. The `tamrik` front
// end starts it for those commands.
#include "app/Commands.h"
#include "app/Help.h"
#include "app/TextCommands.h"
#include "platform/Allocator.h"
#include "platform/RuntimeDir.h"

#include <cstring>

int main(int argc, char** argv) {
    platform::keepLargeBuffersInHeap();
    platform::providePrivateRuntimeDir();
    if (argc < 2 || std::strcmp(argv[1], "--help") == 0 || std::strcmp(argv[1], "-h") == 0)
        return app::helpCommand({});
    if (app::isTextCommand(argv[1])) return app::runCommand(argc, argv);
    return app::unknownArgument(QString::fromLocal8Bit(argv[1]));
}
