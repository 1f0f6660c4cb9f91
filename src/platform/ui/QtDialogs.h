#pragma once
// The Qt message boxes and file, font and colour dialogs behind the dialogs facade.
#include "platform/Dialogs.h"

namespace platform {

// Makes the Qt dialogs the facade's default; an implementation installed by a test still wins.
void useQtDialogs();

} // namespace platform
