#pragma once
#include <QString>

namespace peripherals {

// Opens a file or an address with its associated program; a failure is told in a message box.
// Returns the result code.
int OpenDocument(const QString& target);

} // namespace peripherals
