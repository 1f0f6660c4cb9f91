#include "lists/ListModel.h"
#include "persist/ProjectText.h"
#include "persist/SlContainer.h"

#include <gtest/gtest.h>

using namespace persist;

TEST(Container, ProjectWithoutPicturesHasSixEmptyEntriesAndOneByteBlocks) {
    Members m;
    m[0].data = QByteArray("4.0.17\r\n18\r\n");
    const QByteArray file = PackContainer(m);
    ASSERT_EQ(file.size(), kHeaderSize + m[0].data.size() + 1 + 6);
    EXPECT_EQ(file.left(5), QByteArray("\x00\x00\x00\x0C\x00", 5));
    for (int k = 1; k < 7; ++k)
        EXPECT_EQ(file.mid(5 * k, 5), QByteArray(5, '\0')) << k;
    EXPECT_EQ(file.mid(35, 2), QByteArray("\r\n"));
    EXPECT_EQ(file.mid(kHeaderSize, 12), m[0].data);
    // Member 1's zero byte, then one zero byte for each empty picture; the file ends there.
    EXPECT_EQ(file.right(7), QByteArray(7, '\0'));
}

TEST(Container, LengthsAreBigEndianAndPicturesKeepTheirType) {
    Members m;
    m[0].data = QByteArray("x");
    m[3].data = QByteArray(300, 'p');
    m[3].type = 2;
    const QByteArray file = PackContainer(m);
    EXPECT_EQ(file.mid(15, 5), QByteArray("\x00\x00\x01\x2C\x02", 5));
    const auto b = BytesFromLong(300);
    EXPECT_EQ(b[0], 0x2C);
    EXPECT_EQ(b[1], 0x01);
    EXPECT_EQ(LongFromBytes(0x2C, 0x01, 0, 0), 300u);
    EXPECT_EQ(LongFromBytes(1, 2, 3, 4), 0x04030201u);
    Members back;
    QString error;
    ASSERT_TRUE(UnpackContainer(file, back, &error)) << error.toStdString();
    EXPECT_EQ(back[3].data, m[3].data);
    EXPECT_EQ(back[3].type, 2);
    EXPECT_EQ(FileExtension(back[3].type), QStringLiteral(".wmf"));
    EXPECT_EQ(FileExtension(9), QStringLiteral(".tmp"));
    // Header bytes 10 and 13 inside a length do not upset the text-only reading.
    Members awkward;
    awkward[0].data = QByteArray(0x0D0A, 't');
    QByteArray text;
    ASSERT_TRUE(UnpackTextMember(PackContainer(awkward), text, &error));
    EXPECT_EQ(text.size(), 0x0D0A);
}

TEST(Container, DamagedFilesSayWhereTheyStopAndLeaveTheMembersAlone) {
    Members good;
    good[0].data = QByteArray("teksti"); // bytes 37..42, its zero byte 43
    good[1].data = QByteArray(50, 'b');  // bytes 44..93, its zero byte 94
    good[1].type = 1;
    const QByteArray file = PackContainer(good); // the five empty members' zero bytes: 95..99
    auto changed = [&](int at, char byte) {
        QByteArray b = file;
        b[at] = byte;
        return b;
    };
    const struct {
        const char* damage;
        QByteArray bytes;
        QString part;  // the member, numbered from 1; empty: the header
        qint64 offset; // the byte it stopped at, or where the member starts
        qint64 size;   // the size given: the file's, or what the member claims; -1: none
    } cases[] = {
        {"shorter than the header", file.left(20), {}, -1, 20},
        {"no CR LF after the header", changed(35, 'x'), {}, 35, -1},
        {"a text member typed as a picture", changed(4, '\x01'), {}, 4, -1},
        {"the text's zero byte missing", changed(43, 'x'), "1", 43, -1},
        {"a member claiming more than the file has", changed(5 + 2, '\x7F'), "2", 44, 0x7F32},
        {"cut inside the empty members", file.left(file.size() - 3), "5", 97, 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.damage);
        Members out;
        out[0].data = QByteArray("ennallaan");
        QString error;
        platform::ReadError where;
        EXPECT_FALSE(UnpackContainer(c.bytes, out, &error, &where));
        EXPECT_EQ(error, where.text());
        EXPECT_EQ(where.part, c.part);
        EXPECT_EQ(where.offset, c.offset);
        EXPECT_EQ(where.size, c.size);
        EXPECT_EQ(out[0].data, QByteArray("ennallaan"));
        // The text-only reading stops at the same place when the damage lies in the header or
        // the text member.
        QByteArray text;
        platform::ReadError textWhere;
        const bool textRead = UnpackTextMember(c.bytes, text, nullptr, &textWhere);
        EXPECT_EQ(textRead, !c.part.isEmpty() && c.part != "1");
        if (!textRead) EXPECT_EQ(textWhere.offset, c.offset);
    }
}

namespace {
ProjectContent sampleContent() {
    ProjectContent c;
    c.referenceItems = {QStringLiteral("SILKO (Sillanrakentamisen laatuvaatimukset)")};
    WindowRecord& f1 = c.windows[0];
    f1.texts = {QStringLiteral("Kirkkosilta"), QString(), QStringLiteral("Rivi 1\r\nRivi 2\r\nRivi 3")};
    f1.combos = {QStringLiteral("€"), QStringLiteral("Jyväskylä")};
    ListRecord parts;
    parts.columns = 2;
    parts.rows = {{QStringLiteral("000"), QStringLiteral("Koko silta")},
                  {QStringLiteral("100"), QStringLiteral("Maatuki 1")}};
    f1.lists = {parts, ListRecord{4, {}}, ListRecord{4, {}}};
    WindowRecord& f2 = c.windows[1];
    f2.texts = {QString()};
    f2.combos = {QString()};
    ListRecord quantities{7, {{QStringLiteral("7110"), QStringLiteral("KAIVUT"), {}, {}, {}, {}, {}}}};
    ListRecord requirements;
    requirements.columns = 24;
    QStringList row;
    for (int i = 1; i <= 24; ++i)
        row << QString();
    row[1] = QStringLiteral("1");
    row[12] = QStringLiteral("C:\\kuvat\\silta.jpg");
    row[13] = QStringLiteral("   ");
    requirements.rows = {row};
    f2.lists = {quantities, requirements};
    c.windows[2].texts = QStringList(62, QString());
    c.windows[2].combos = QStringList(20, QString());
    c.windows[3].texts = QStringList(9, QString());
    c.windows[3].combos = QStringList(5, QString());
    c.windows[3].lists = {ListRecord{5, {}}};
    c.checks = {QStringLiteral("1"), QStringLiteral("0")};
    c.documents = {QByteArray("{\\rtf1 a}"), QByteArray(), QByteArray("{\\rtf1 \\'e4\r\nb}")};
    return c;
}
} // namespace

TEST(ProjectText, ValuesOfZeroOneAndThreeLinesAreWrittenByteForByte) {
    RecordWriter w;
    w.value(QString());
    w.value(QStringLiteral("yksi"));
    w.value(QStringLiteral("a\r\nb\r\nc"));
    EXPECT_EQ(w.bytes(), QByteArray("0\r\n1\r\nyksi\r\n3\r\na\r\nb\r\nc\r\n"));
    // A character outside the code page is a "?" wherever it stands, and named once.
    QString outside;
    RecordWriter marked(&outside);
    marked.line(QStringLiteral("Siltapaikka \u0101"));
    marked.value(QStringLiteral("\u0101\r\n\u20ac"));
    EXPECT_EQ(marked.bytes(), QByteArray("Siltapaikka ?\r\n2\r\n?\r\n\x80\r\n"));
    EXPECT_EQ(outside, QStringLiteral("\u0101"));
    EXPECT_EQ(EvaluateNRows(QString()), 0);
    EXPECT_EQ(EvaluateNRows(QStringLiteral("a\nb")), 1); // only CR LF separates lines

    WindowRecord r;
    r.texts = {QString(), QStringLiteral("Väli\r\ntuki\r\n3")};
    // A row taken from a list still holds its row number: only the stored columns are written.
    r.lists = {ListRecord{2, {QStringList{"7110", "Kaivu", "000001"}}}};
    RecordWriter out;
    WriteFormToFile(out, r);
    EXPECT_EQ(out.bytes(), QByteArray("2\r\n0\r\n3\r\nV\xe4li\r\ntuki\r\n3\r\n0\r\n1\r\n1,2\r\n"
                                      "1\r\n7110\r\n1\r\nKaivu\r\n"));
    // The room reserved for a record holds it.
    EXPECT_GE(RecordSize(r), out.bytes().size());
}

TEST(ProjectText, RoundTripIsByteIdenticalAndAppliesThePathRule) {
    const ProjectContent c = sampleContent();
    const QByteArray written = WriteProjectText(c, true);
    EXPECT_TRUE(written.startsWith("4.0.17\r\n18\r\nSILKO"));
    EXPECT_TRUE(written.contains("\r\n1\r\n{PATH}silta.jpg\r\n1\r\n   \r\n")) << written.toStdString();
    EXPECT_TRUE(written.contains("\r\n3\r\n 9\r\n{\\rtf1 a}\r\n 0\r\n\r\n 15\r\n"));
    EXPECT_TRUE(written.endsWith("{\\rtf1 \\'e4\r\nb}\r\n"));

    ProjectContent back;
    QString error;
    ASSERT_TRUE(ReadProjectText(written, QStringLiteral("D:\\projekti\\"), back, &error))
        << error.toStdString();
    EXPECT_EQ(back.windows[1].lists[1].rows[0][12], QStringLiteral("D:\\projekti\\silta.jpg"));
    EXPECT_EQ(back.windows[0].texts[2], QStringLiteral("Rivi 1\r\nRivi 2\r\nRivi 3"));
    EXPECT_EQ(back.documents[2], QByteArray("{\\rtf1 \\'e4\r\nb}"));
    EXPECT_EQ(back.checks, c.checks);
    EXPECT_EQ(back.referenceItems.size(), 18);

    // Without the path option the same content writes and reads back unchanged.
    const QByteArray plain = WriteProjectText(c, false);
    ASSERT_TRUE(ReadProjectText(plain, QString(), back, &error));
    EXPECT_EQ(WriteProjectText(back, false), plain);
}

TEST(ProjectText, DamagedTextIsReportedWithItsLineAndChangesNothing) {
    const QByteArray good = WriteProjectText(sampleContent(), false);
    ProjectContent kept;
    kept.checks = {QStringLiteral("ennallaan")};
    QString error;

    QByteArray badCount = good;
    badCount.replace("\r\n18\r\n", "\r\nkahdeksantoista\r\n");
    EXPECT_FALSE(ReadProjectText(badCount, QString(), kept, &error));
    EXPECT_TRUE(error.contains(QStringLiteral("rivi 2"))) << error.toStdString();

    EXPECT_FALSE(ReadProjectText(good.left(good.size() / 2), QString(), kept, &error));
    EXPECT_TRUE(error.contains(QStringLiteral("päättyy kesken"))) << error.toStdString();

    QByteArray badRows = good;
    badRows.replace("\r\n2,2\r\n", "\r\n2;2\r\n");
    EXPECT_FALSE(ReadProjectText(badRows, QString(), kept, &error));
    EXPECT_TRUE(error.contains(QStringLiteral("perustietojen"))) << error.toStdString();

    QByteArray hugeDocument = good;
    hugeDocument.replace("\r\n 9\r\n", "\r\n 99999\r\n");
    EXPECT_FALSE(ReadProjectText(hugeDocument, QString(), kept, &error));
    EXPECT_TRUE(error.contains(QStringLiteral("tekstiasiakirja 1"))) << error.toStdString();
    EXPECT_EQ(kept.checks, QStringList{QStringLiteral("ennallaan")});
}

// A row count is checked against the bytes that follow it: an edited "R,0" or "R,C" line
// used to make the reader allocate rows by the hundred million.
TEST(WindowRecordRegression, HugeRowCountsAreDamageNotAnAllocation) {
    platform::ReadError failure;
    auto read = [&failure](const QByteArray& text, WindowRecord& r, QString& error) {
        RecordReader in(text);
        const bool ok = ReadFormFromFile(in, r, QString());
        error = in.error();
        failure = in.failure();
        return ok;
    };
    WindowRecord r;
    QString error;
    // No columns: the rows carry nothing, whatever their count.
    ASSERT_TRUE(read("0\r\n0\r\n1\r\n99999999,0\r\n", r, error)) << error.toStdString();
    ASSERT_EQ(r.lists.size(), 1u);
    EXPECT_TRUE(r.lists[0].rows.empty());
    // With columns, a count beyond what the remaining bytes can hold is refused at its line.
    EXPECT_FALSE(read("0\r\n0\r\n1\r\n99999999,2\r\n0\r\n0\r\n", r, error));
    EXPECT_EQ(failure.line, 4) << error.toStdString();
    // The largest count that the bytes can hold is still read.
    ASSERT_TRUE(read("0\r\n0\r\n1\r\n1,2\r\n0\r\n0\r\n", r, error)) << error.toStdString();
    EXPECT_EQ(r.lists[0].rows.size(), 1u);
}

// A cell that repeats the one above it (units, types, weights) is not decoded again. The texts
// read are those written, whatever stands between the repeats.
TEST(ProjectText, RepeatedCellsReadBackAsWritten) {
    WindowRecord r;
    ListRecord list{3, {}};
    const QStringList rows[] = {
        {"m3", "1 (siltakohtainen)", "a\r\nb"},
        {"m3", "1 (siltakohtainen)", "a\r\nb"},
        {"m3", "", "a"},
        {"m2", "m3", "a"},
        {"m3", "m3", ""},
        {"m3", "m3", "a\r\nb"},
    };
    for (const QStringList& row : rows)
        list.rows.push_back(row);
    r.lists = {ListRecord{0, {}}, list};
    RecordWriter out;
    WriteFormToFile(out, r);
    WindowRecord back;
    RecordReader in(out.bytes());
    ASSERT_TRUE(ReadFormFromFile(in, back, QString())) << in.error().toStdString();
    ASSERT_EQ(back.lists.size(), 2u);
    const std::vector<lists::RowCells>& read = back.lists[1].rows;
    ASSERT_EQ(read.size(), list.rows.size());
    for (std::size_t i = 0; i < read.size(); ++i) {
        // The stored cells, then the number the row takes in its list.
        ASSERT_EQ(read[i].size(), 4);
        for (int c = 0; c < 3; ++c)
            EXPECT_EQ(read[i][c], list.rows[i][c]) << i << " " << c;
        EXPECT_EQ(read[i][3], lists::formatRowNumber(static_cast<long long>(i) + 1));
    }
    EXPECT_EQ(read[1][1], QStringLiteral("1 (siltakohtainen)"));
    EXPECT_EQ(read[4][1], QStringLiteral("m3"));
    EXPECT_EQ(read[5][2], QStringLiteral("a\r\nb"));
}
