#pragma once
// The program's private temporary folder.
#include <QString>

namespace platform {

// The folder "tamrik-<uid>" with mode 0700 inside the directory named by TEMP, or inside the
// system temporary directory when TEMP is not set. It is created when missing, and its
// permissions are tightened when someone loosened them. Returns the path ending in "/", or
// an empty string with `error` set when the folder cannot be made private.
QString privateTempPath(QString* error = nullptr);

} // namespace platform
