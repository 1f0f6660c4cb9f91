// Start of the program: parses the command line, then either runs a command without any
// window or starts the desktop application.
#include <QApplication>
#include <cstdio>

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    std::printf("TAMRIK %s\n", TAMRIK_VERSION);
    return 0;
}
