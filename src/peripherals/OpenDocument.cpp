#include "peripherals/OpenDocument.h"

#include "platform/Dialogs.h"
#include "platform/ShellOpen.h"

namespace peripherals {

int OpenDocument(const QString& target) {
    const int code = platform::ExecuteOpen(target);
    if (code < 33) platform::MsgBox(platform::OpenResultMessage(code));
    return code;
}

} // namespace peripherals
