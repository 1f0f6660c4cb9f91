// The layout files of the two cards, read as the card page and as the charge chamber card page
// (with its table blocks).
#include "FuzzSupport.h"
#include "print/CardLayout.h"

TAMRIK_FUZZ_START

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QByteArray bytes = fuzz::bytes(data, size);
    for (const bool withTable : {false, true}) {
        print::CardLayout layout;
        QString error;
        if (!print::ReadCardLayout(bytes, print::kCardLayoutFile, withTable, layout, &error) &&
            !error.contains(print::kCardLayoutFile)) {
            fprintf(stderr, "the message does not name the file: %s\n", qPrintable(error));
            abort();
        }
    }
    return 0;
}
