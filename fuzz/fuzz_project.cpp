// A project file: the container, then the text member with its window records, reference list,
// check boxes and rich-text documents, as opening a project reads them.
#include "FuzzSupport.h"
#include "persist/ProjectText.h"
#include "persist/SlContainer.h"

TAMRIK_FUZZ_START

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QByteArray file = fuzz::bytes(data, size);
    QString error;
    QByteArray text;
    persist::UnpackTextMember(file, text, &error);
    persist::Members members;
    if (persist::UnpackContainer(file, members, &error)) {
        persist::ProjectContent content;
        persist::ReadProjectText(members[0].data, QStringLiteral("/kansio"), content, &error);
    }
    // The records are reached faster without a container around them.
    persist::ProjectContent content;
    persist::ReadProjectText(file, QStringLiteral("/kansio"), content, &error);
    return 0;
}
