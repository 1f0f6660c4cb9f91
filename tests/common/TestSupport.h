#pragma once
#include <QDir>
#include <QString>

namespace testing_support {
// Where QSettings keeps the user-scope INI files during the tests.
QString settingsDir();
// The repository and build folders.
QString sourceDir();
QString binaryDir();
// The repository's data/ folder, ending in "/".
QString dataDir();
} // namespace testing_support
