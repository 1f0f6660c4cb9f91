#include "platform/RuntimeDir.h"

#include "platform/TempDir.h"

#include <QFile>

namespace platform {

void providePrivateRuntimeDir() {
    if (!qEnvironmentVariableIsEmpty("XDG_RUNTIME_DIR")) return;
    QString folder = privateTempPath();
    if (folder.isEmpty()) return; // Qt then finds a folder of its own and says so
    folder.chop(1);
    qputenv("XDG_RUNTIME_DIR", QFile::encodeName(folder));
}

} // namespace platform
