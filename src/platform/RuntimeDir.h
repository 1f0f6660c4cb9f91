#pragma once
// The runtime folder that Qt looks for (XDG_RUNTIME_DIR). A run without a desktop session (a
// script, a terminal over ssh, the tests) has none, and Qt then writes a warning on standard
// error of every run; the command line must print nothing there but its own messages.

namespace platform {

// When XDG_RUNTIME_DIR is not set, sets it to the program's private temporary folder (this
// user's own, mode 0700, as Qt wants a runtime folder). Call before the Qt application object
// is made.
void providePrivateRuntimeDir();

} // namespace platform
