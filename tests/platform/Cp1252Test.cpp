#include "platform/Cp1252.h"
#include "platform/TextFile.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace platform;

TEST(Cp1252, FinnishLettersAndEuroAreSingleBytes) {
    const QString text = QStringLiteral("Ää Öö Åå € – “x”");
    const QByteArray bytes = toCp1252(text);
    EXPECT_EQ(bytes, QByteArray("\xC4\xE4 \xD6\xF6 \xC5\xE5 \x80 \x96 \x93x\x94"));
    EXPECT_EQ(fromCp1252(bytes), text);
}

TEST(Cp1252, CharactersOutsideTheCodePageAreReportedOnce) {
    QString bad;
    const QByteArray bytes = toCp1252(QStringLiteral("a\u0101b\u0101c\U0001F600"), &bad);
    EXPECT_EQ(bytes, QByteArray("a?b?c?"));
    EXPECT_EQ(bad, QStringLiteral("\u0101\U0001F600"));
    EXPECT_FALSE(isCp1252(QStringLiteral("\u0101")));
    EXPECT_TRUE(isCp1252(QStringLiteral("Väli € tuki")));
}

TEST(Cp1252, AllBytesRoundTrip) {
    QByteArray all;
    for (int b = 0; b < 256; ++b)
        all.append(static_cast<char>(b));
    EXPECT_EQ(toCp1252(fromCp1252(all)), all);
}

TEST(TextFile, LinesAreWrittenWithCrLfAndReadFromAnyLineEnd) {
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("a.csv"));
    QString error;
    ASSERT_TRUE(writeTextLines(
        path, {QStringLiteral("LITTERA;TYÖVAIHE"), QString(), QStringLiteral("7110;Ä")}, &error));
    QByteArray bytes;
    ASSERT_TRUE(readFileBytes(path, bytes));
    EXPECT_EQ(bytes, QByteArray("LITTERA;TY\xD6VAIHE\r\n\r\n7110;\xC4\r\n"));
    EXPECT_EQ(splitLines(QStringLiteral("a\nb\r\nc\rd")), (QStringList{"a", "b", "c", "d"}));
    EXPECT_EQ(splitLines(QStringLiteral("a\r\n\r\n")), (QStringList{"a", ""}));
    QStringList lines;
    EXPECT_FALSE(readTextLines(dir.filePath(QStringLiteral("missing.csv")), lines, &error));
    EXPECT_FALSE(error.isEmpty());
}
