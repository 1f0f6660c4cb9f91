#include "shell/ProjectFiles.h"

#include "platform/Dialogs.h"

namespace shell {

bool WriteSlFile(MDIForm1&, const QString&, const QString&, bool) {
    platform::MsgBox(QStringLiteral("Tallentaminen ei ole käytettävissä."));
    return false;
}

bool ReadSlFile(MDIForm1&, const QString&, const QString&, bool) {
    platform::MsgBox(QStringLiteral("Avaaminen ei ole käytettävissä."));
    return false;
}

} // namespace shell
