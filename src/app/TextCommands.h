#pragma once
// The commands that only read files and write text: the `tamrik` front end starts the command
// program for them (and the desktop program for everything else), and the command program runs
// only them. Plain C strings, so that the front end links no Qt.
#include <cstring>

namespace app {

inline constexpr const char* kTextCommands[] = {"costs", "summary", "validate", "convert",
                                                "help",  "--help",  "-h"};

inline bool isTextCommand(const char* name) {
    for (const char* command : kTextCommands)
        if (std::strcmp(name, command) == 0) return true;
    return false;
}

} // namespace app
