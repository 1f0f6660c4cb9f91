#pragma once
// Pictures on the clipboard: what the image viewer pastes and copies.
#include "platform/Picture.h"

class QMimeData;

namespace platform {

// The picture the clipboard data holds, asked for in this order: a metafile (WMF or EMF), a
// device-independent bitmap (BMP bytes), any other bitmap the toolkit can give as an image.
// An empty picture when there is none.
Picture pictureFromMimeData(const QMimeData& data);

// Clipboard data for a picture: its own bytes under the type's MIME name, so that pasting
// brings back the same picture, and a drawn image for programs that only take bitmaps. Empty
// data for an empty picture.
QMimeData* mimeDataFromPicture(const Picture& picture);

// The MIME names the picture's own bytes go under.
inline constexpr const char* kWmfMime = "image/x-wmf";
inline constexpr const char* kEmfMime = "image/x-emf";
inline constexpr const char* kBmpMime = "image/bmp";

} // namespace platform
