#include "app/Commands.h"

#include <QCoreApplication>
#include <cstdio>
#include <cstring>

namespace app {

namespace {
const char* const kCommands[] = {"costs", "summary", "print", "convert"};
}

bool isCommand(const char* name) {
    for (const char* c : kCommands)
        if (std::strcmp(name, c) == 0) return true;
    return false;
}

int runCommand(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    std::fprintf(stderr, "tamrik: komento %s ei ole käytettävissä tässä versiossa\n", argv[1]);
    return 1;
}

} // namespace app
