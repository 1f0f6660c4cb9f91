// Rich text of the project's documents and of .rtf files. What reads must also write, and the
// written text must read back to the same text.
#include "FuzzSupport.h"
#include "platform/Rtf.h"

#include <QTextDocument>

TAMRIK_FUZZ_START

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    QTextDocument document;
    if (!platform::ReadRtf(fuzz::bytes(data, size), document)) return 0;
    const QByteArray written = platform::WriteRtf(document);
    QTextDocument again;
    QString error;
    if (!platform::ReadRtf(written, again, &error)) {
        fprintf(stderr, "written RTF does not read back: %s\n", qPrintable(error));
        abort();
    }
    if (platform::WriteRtf(again) != written) {
        fprintf(stderr, "written RTF does not write back the same\n");
        abort();
    }
    return 0;
}
