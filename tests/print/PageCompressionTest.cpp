// The PDF pages' compression: libdeflate's fastest level, the page compressed whole, while a
// FastPageCompression is alive on the thread; zlib at the level asked for everywhere else.
#include "print/PageCompression.h"

#include <QByteArray>
#include <gtest/gtest.h>
#include <algorithm>
#include <thread>
#include <zlib.h>

namespace {

// What deflateInit (as Qt's PDF engine calls it) makes of `data` at zlib's default level.
QByteArray deflateAtDefault(const QByteArray& data) {
    z_stream s{};
    EXPECT_EQ(deflateInit(&s, Z_DEFAULT_COMPRESSION), Z_OK);
    QByteArray out(static_cast<qsizetype>(deflateBound(&s, static_cast<uLong>(data.size()))), '\0');
    s.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(data.constData()));
    s.avail_in = static_cast<uInt>(data.size());
    s.next_out = reinterpret_cast<Bytef*>(out.data());
    s.avail_out = static_cast<uInt>(out.size());
    EXPECT_EQ(deflate(&s, Z_FINISH), Z_STREAM_END);
    out.resize(static_cast<qsizetype>(s.total_out));
    deflateEnd(&s);
    return out;
}

// The same through deflateInit, fed and emptied in pieces of `piece` bytes as Qt's PDF engine
// does with a page: input while the stream goes on, then Z_FINISH until the stream ends.
QByteArray deflateInPieces(const QByteArray& data, int piece) {
    z_stream s{};
    EXPECT_EQ(deflateInit(&s, Z_DEFAULT_COMPRESSION), Z_OK);
    QByteArray out;
    QByteArray buffer(piece, '\0');
    auto take = [&] {
        out += buffer.left(piece - static_cast<qsizetype>(s.avail_out));
        s.next_out = reinterpret_cast<Bytef*>(buffer.data());
        s.avail_out = static_cast<uInt>(piece);
    };
    s.next_out = reinterpret_cast<Bytef*>(buffer.data());
    s.avail_out = static_cast<uInt>(piece);
    for (qsizetype at = 0; at < data.size(); at += piece) {
        s.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(data.constData() + at));
        s.avail_in = static_cast<uInt>(std::min<qsizetype>(piece, data.size() - at));
        EXPECT_EQ(deflate(&s, Z_NO_FLUSH), Z_OK);
        take();
    }
    int ret = Z_OK;
    for (int guard = 0; ret == Z_OK && guard < 100000; ++guard) {
        ret = deflate(&s, Z_FINISH);
        take();
    }
    EXPECT_EQ(ret, Z_STREAM_END);
    EXPECT_EQ(s.total_in, static_cast<uLong>(data.size()));
    EXPECT_EQ(s.total_out, static_cast<uLong>(out.size()));
    EXPECT_EQ(deflateEnd(&s), Z_OK);
    return out;
}

QByteArray inflated(const QByteArray& packed, qsizetype size) {
    QByteArray out(size + 1, '\0');
    uLongf length = static_cast<uLongf>(out.size());
    EXPECT_EQ(uncompress(reinterpret_cast<Bytef*>(out.data()), &length,
                         reinterpret_cast<const Bytef*>(packed.constData()),
                         static_cast<uLong>(packed.size())),
              Z_OK);
    out.resize(static_cast<qsizetype>(length));
    return out;
}

QByteArray compressAt(const QByteArray& data, int level) {
    uLongf size = compressBound(static_cast<uLong>(data.size()));
    QByteArray out(static_cast<qsizetype>(size), '\0');
    EXPECT_EQ(compress2(reinterpret_cast<Bytef*>(out.data()), &size,
                        reinterpret_cast<const Bytef*>(data.constData()), static_cast<uLong>(data.size()),
                        level),
              Z_OK);
    out.resize(static_cast<qsizetype>(size));
    return out;
}

} // namespace

TEST(PageCompressionTest, DefaultLevelIsCompressedWholeOnlyWhileAskedOnTheSameThread) {
    // Text like a page's content.
    QByteArray page;
    for (int i = 0; i < 4000; ++i)
        page += QByteArray::number(83.421875 + i % 17, 'f', 6) + " 0 Td <00" +
                QByteArray::number(i % 61, 16) + "> Tj\n";
    const QByteArray fastest = compressAt(page, Z_BEST_SPEED);
    const QByteArray normal = compressAt(page, Z_DEFAULT_COMPRESSION);
    ASSERT_NE(fastest, normal);

    EXPECT_EQ(deflateAtDefault(page), normal);
    EXPECT_EQ(deflateInPieces(page, 4096), normal);
    {
        const print::FastPageCompression fast;
        EXPECT_TRUE(print::FastPageCompression::active());
        const QByteArray whole = deflateAtDefault(page);
        EXPECT_NE(whole, normal);
        EXPECT_NE(whole, fastest);
        EXPECT_LT(whole.size(), page.size() / 4);
        // The same zlib stream however the caller hands it in and takes it out, and the page
        // as it was once unpacked.
        EXPECT_EQ(deflateInPieces(page, 4096), whole);
        EXPECT_EQ(deflateInPieces(page, 7), whole);
        EXPECT_EQ(inflated(whole, page.size()), page);
        // An empty page too.
        EXPECT_EQ(inflated(deflateInPieces(QByteArray(), 64), 0), QByteArray());
        // A level asked for explicitly, and another thread, get zlib's own.
        EXPECT_EQ(compressAt(page, Z_BEST_SPEED), fastest);
        QByteArray elsewhere;
        std::thread([&] { elsewhere = deflateAtDefault(page); }).join();
        EXPECT_EQ(elsewhere, normal);
        { const print::FastPageCompression nested; }
        EXPECT_TRUE(print::FastPageCompression::active());
    }
    EXPECT_FALSE(print::FastPageCompression::active());
    EXPECT_EQ(deflateAtDefault(page), normal);
}
