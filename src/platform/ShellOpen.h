#pragma once
// Opening a file or an address with the program the desktop associates with it.
#include <QString>
#include <QUrl>
#include <functional>

namespace platform {

// Asks the desktop to open the target and returns a result code in the old shell's terms:
// 33 or more is success; 2 file not found, 3 path not found, 5 access denied, 31 no program
// for the file's type.
int ExecuteOpen(const QString& target);

// The message for a result code below 33; empty for success.
QString OpenResultMessage(int code);

// Replaces the desktop call (tests); an empty function restores it.
void setDesktopOpener(std::function<bool(const QUrl&)> opener);

} // namespace platform
