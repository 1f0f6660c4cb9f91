// The pictures of a project and picture files: bitmaps, icons, WMF and EMF metafiles, decoded
// and drawn with the type byte that their content suggests.
#include "FuzzSupport.h"
#include "platform/Metafile.h"
#include "platform/Picture.h"

#include <QImage>

TAMRIK_FUZZ_START

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QByteArray bytes = fuzz::bytes(data, size);
    int type = platform::Picture::Icon;
    if (platform::looksLikeWmf(bytes))
        type = platform::Picture::Metafile;
    else if (platform::looksLikeEmf(bytes))
        type = platform::Picture::EnhancedMetafile;
    else if (bytes.startsWith("BM"))
        type = platform::Picture::Bitmap;
    const platform::Picture picture = platform::Picture::fromBytes(bytes, type);
    picture.sizeHint();
    picture.toImage(QSize(40, 30));
    return 0;
}
