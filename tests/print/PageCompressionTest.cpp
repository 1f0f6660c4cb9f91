// The PDF pages' compression: zlib's fastest level while a FastPageCompression is alive on the
// thread, the level asked for everywhere else.
#include "print/PageCompression.h"

#include <QByteArray>
#include <gtest/gtest.h>
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

TEST(PageCompressionTest, DefaultLevelIsFastestOnlyWhileAskedOnTheSameThread) {
    // Text like a page's content: the two levels give different streams for it.
    QByteArray page;
    for (int i = 0; i < 4000; ++i)
        page += QByteArray::number(83.421875 + i % 17, 'f', 6) + " 0 Td <00" +
                QByteArray::number(i % 61, 16) + "> Tj\n";
    const QByteArray fastest = compressAt(page, Z_BEST_SPEED);
    const QByteArray normal = compressAt(page, Z_DEFAULT_COMPRESSION);
    ASSERT_NE(fastest, normal);

    EXPECT_EQ(deflateAtDefault(page), normal);
    {
        const print::FastPageCompression fast;
        EXPECT_TRUE(print::FastPageCompression::active());
        EXPECT_EQ(deflateAtDefault(page), fastest);
        // Another thread compresses as it asks.
        QByteArray elsewhere;
        std::thread([&] { elsewhere = deflateAtDefault(page); }).join();
        EXPECT_EQ(elsewhere, normal);
        { const print::FastPageCompression nested; }
        EXPECT_TRUE(print::FastPageCompression::active());
    }
    EXPECT_FALSE(print::FastPageCompression::active());
    EXPECT_EQ(deflateAtDefault(page), normal);
}
