#include "persist/SlContainer.h"

#include <QIODevice>
#include <limits>

namespace persist {

std::array<std::uint8_t, 4> BytesFromLong(std::uint32_t value) {
    return {static_cast<std::uint8_t>(value % 256), static_cast<std::uint8_t>((value / 256) % 256),
            static_cast<std::uint8_t>((value / 65536) % 256),
            static_cast<std::uint8_t>((value / 16777216) % 256)};
}

std::uint32_t LongFromBytes(std::uint8_t b0, std::uint8_t b1, std::uint8_t b2, std::uint8_t b3) {
    return b0 + 256u * b1 + 65536u * b2 + 16777216u * b3;
}

QString FileExtension(int type) {
    switch (type) {
        case 1:
            return QStringLiteral(".bmp");
        case 2:
            return QStringLiteral(".wmf");
        case 3:
            return QStringLiteral(".ico");
        case 4:
            return QStringLiteral(".emf");
        default:
            return QStringLiteral(".tmp");
    }
}

namespace {

// The header: each member's length (the text member's given apart) and type, then CR LF.
QByteArray containerHeader(const Members& members, std::uint32_t textLength) {
    QByteArray out;
    out.reserve(kHeaderSize);
    for (std::size_t m = 0; m < members.size(); ++m) {
        const auto b =
            BytesFromLong(m == 0 ? textLength : static_cast<std::uint32_t>(members[m].data.size()));
        out.append(static_cast<char>(b[3]));
        out.append(static_cast<char>(b[2]));
        out.append(static_cast<char>(b[1]));
        out.append(static_cast<char>(b[0]));
        out.append(static_cast<char>(members[m].type));
    }
    out.append("\r\n", 2);
    return out;
}

} // namespace

QByteArray PackContainer(const Members& members) {
    qsizetype size = kHeaderSize;
    for (const Member& m : members)
        size += m.data.size() + 1;
    QByteArray out;
    out.reserve(size);
    out.append(containerHeader(members, static_cast<std::uint32_t>(members[0].data.size())));
    for (const Member& m : members) {
        out.append(m.data);
        out.append('\0');
    }
    return out;
}

bool WriteContainer(QIODevice& out, const Members& members,
                    const std::function<bool(const ByteSink& sink)>& writeText) {
    auto put = [&](QByteArrayView bytes) { return out.write(bytes.data(), bytes.size()) == bytes.size(); };
    const qint64 start = out.pos();
    if (!put(containerHeader(members, 0))) return false;
    qint64 textLength = 0;
    const bool written = writeText([&](QByteArrayView bytes) {
        textLength += bytes.size();
        return put(bytes);
    });
    if (!written || textLength > std::numeric_limits<std::uint32_t>::max() || !put(QByteArrayView("\0", 1)))
        return false;
    for (std::size_t m = 1; m < members.size(); ++m)
        if (!put(members[m].data) || !put(QByteArrayView("\0", 1))) return false;
    // The text member's length is known now.
    const qint64 end = out.pos();
    return out.seek(start) && put(containerHeader(members, static_cast<std::uint32_t>(textLength))) &&
           out.seek(end);
}

namespace {

struct Entry {
    std::uint32_t length = 0;
    int type = 0;
};

bool readHeader(const QByteArray& file, std::array<Entry, 7>& entries, platform::ReadError& failure) {
    using platform::ReadError;
    if (file.size() < kHeaderSize) {
        failure =
            ReadError::ofSize(QStringLiteral("tiedosto on liian lyhyt projektitiedostoksi"), file.size());
        return false;
    }
    const auto* b = reinterpret_cast<const std::uint8_t*>(file.constData());
    for (int m = 0; m < 7; ++m) {
        const std::uint8_t* e = b + 5 * m;
        entries[m].length = LongFromBytes(e[3], e[2], e[1], e[0]);
        entries[m].type = e[4];
    }
    if (b[35] != 13 || b[36] != 10) {
        failure = ReadError::atByte(QStringLiteral("tiedoston otsake on virheellinen"), 35);
        return false;
    }
    if (entries[0].type != 0) {
        failure = ReadError::atByte(QStringLiteral("tekstiosan tyyppi on virheellinen"), 4);
        return false;
    }
    return true;
}

bool takeMember(const QByteArray& file, qsizetype& offset, const Entry& e, int number, QByteArray& out,
                platform::ReadError& failure) {
    using platform::ReadError;
    const qsizetype remaining = file.size() - offset;
    if (static_cast<qint64>(e.length) + 1 > remaining) {
        failure = ReadError::ofSize(QStringLiteral("ulottuu tiedoston lopun yli"), e.length,
                                    QString::number(number), offset);
        return false;
    }
    out = file.mid(offset, e.length);
    offset += e.length;
    if (file[offset] != '\0') {
        failure = ReadError::atByte(QStringLiteral("loppumerkki puuttuu"), offset, QString::number(number));
        return false;
    }
    offset += 1;
    return true;
}

// Hands a failure to the caller: the words for the message and, when asked, the place.
bool report(const platform::ReadError& failure, QString* error, platform::ReadError* where) {
    if (error) *error = failure.text();
    return platform::fail(where, failure);
}

} // namespace

bool UnpackContainer(const QByteArray& file, Members& members, QString* error, platform::ReadError* where) {
    std::array<Entry, 7> entries;
    platform::ReadError failure;
    if (!readHeader(file, entries, failure)) return report(failure, error, where);
    Members out;
    qsizetype offset = kHeaderSize;
    for (int m = 0; m < 7; ++m) {
        if (!takeMember(file, offset, entries[m], m + 1, out[m].data, failure))
            return report(failure, error, where);
        out[m].type = entries[m].type;
    }
    members = std::move(out);
    return true;
}

bool UnpackTextMember(const QByteArray& file, QByteArray& text, QString* error, platform::ReadError* where) {
    std::array<Entry, 7> entries;
    platform::ReadError failure;
    qsizetype offset = kHeaderSize;
    if (!readHeader(file, entries, failure) || !takeMember(file, offset, entries[0], 1, text, failure))
        return report(failure, error, where);
    return true;
}

} // namespace persist
