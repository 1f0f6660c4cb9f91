#pragma once
// The project file: seven members behind a 37-byte header. Each member entry is its length in
// four bytes, most significant first, and a type byte; the header ends in CR LF; every
// member's bytes follow, each with one extra zero byte after it.
#include "platform/ReadError.h"

#include <QByteArray>
#include <QString>
#include <array>
#include <cstdint>
#include <functional>

class QIODevice;

namespace persist {

struct Member {
    QByteArray data;
    int type = 0; // 0 text or no picture, 1 bitmap, 2 metafile, 3 icon, 4 enhanced metafile
};
using Members = std::array<Member, 7>;

// Takes bytes as they are made; false when they could not be kept (a full disk).
using ByteSink = std::function<bool(QByteArrayView bytes)>;

constexpr int kHeaderSize = 37;

// The four bytes of a 32-bit value, b0 the least significant.
std::array<std::uint8_t, 4> BytesFromLong(std::uint32_t value);
std::uint32_t LongFromBytes(std::uint8_t b0, std::uint8_t b1, std::uint8_t b2, std::uint8_t b3);

// The extension a member is extracted with: ".tmp", ".bmp", ".wmf", ".ico", ".emf".
QString FileExtension(int type);

// Joins the members into the file's bytes.
QByteArray PackContainer(const Members& members);

// Writes the container to `out` as it is made: the text member comes from `writeText` (which
// hands its bytes to the sink it is given, a block at a time, and returns false on a failure),
// the other members from `members`; members[0] is not looked at. The text member's length is
// written into the header last, so `out` must be able to seek. False when a write failed.
bool WriteContainer(QIODevice& out, const Members& members,
                    const std::function<bool(const ByteSink& sink)>& writeText);

// Splits a file into its members. A length past the end of the file, a missing zero byte or a
// header without CR LF is an error that says where: the words in `error`, the place (part
// number, byte offset, size) in `where`; `members` is then left as it was.
bool UnpackContainer(const QByteArray& file, Members& members, QString* error,
                     platform::ReadError* where = nullptr);

// Only the text member (the picture members need not be whole).
bool UnpackTextMember(const QByteArray& file, QByteArray& text, QString* error,
                      platform::ReadError* where = nullptr);

} // namespace persist
