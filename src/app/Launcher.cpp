// The `tamrik` command: a front end that links nothing but the C and C++ run-time libraries.
// The text-only commands go to the command program, everything else (the desktop start, print,
// compare) to the desktop program; both lie beside this one and take over this process, so the
// exit status, the signals and the standard streams are theirs. A command that writes a few
// lines of text so loads none of the libraries of the windows.
#include "app/TextCommands.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>
#include <unistd.h>

namespace {

// The folder of this program, ending in "/"; empty when the system does not say.
std::string programFolder() {
    std::string path(4096, '\0');
    const ssize_t length = readlink("/proc/self/exe", path.data(), path.size());
    if (length <= 0 || static_cast<std::size_t>(length) >= path.size()) return {};
    path.resize(static_cast<std::size_t>(length));
    return path.substr(0, path.rfind('/') + 1);
}

} // namespace

int main(int argc, char** argv) {
    if (argc >= 2 && std::strcmp(argv[1], "--version") == 0) {
        std::printf("TAMRIK 2006 %s\n", TAMRIK_VERSION);
        return 0;
    }
    const std::string program =
        programFolder() + (argc >= 2 && app::isTextCommand(argv[1]) ? "tamrik-commands" : "tamrik-desktop");
    // The program's own name stays argv[0]: the desktop names its windows by it.
    execv(program.c_str(), argv);
    std::fprintf(stderr, "tamrik: ohjelmaa %s ei voitu käynnistää: %s\n", program.c_str(),
                 std::strerror(errno));
    return 1;
}
