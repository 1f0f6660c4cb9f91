#include "lists/RowCells.h"

#include <gtest/gtest.h>

using lists::RowCells;

namespace {

QStringList texts(const RowCells& row) {
    return row.toStringList();
}

} // namespace

TEST(RowCells, KeepsEveryCellWithItsTextAndLength) {
    const QStringList cells{QStringLiteral("7110"),
                            QString(),
                            QStringLiteral("KAIVUT ja täytöt"),
                            QString(),
                            QStringLiteral("m3\r\nrivi"),
                            QStringLiteral("00001")};
    const RowCells row(cells);
    EXPECT_EQ(row.size(), 6);
    EXPECT_EQ(texts(row), cells);
    EXPECT_EQ(row[2], QStringLiteral("KAIVUT ja täytöt"));
    EXPECT_TRUE(row[1].isEmpty());
    EXPECT_TRUE(row.value(6).isEmpty());
    EXPECT_TRUE(row.value(-1).isEmpty());
    EXPECT_EQ(row.textSize(), 4 + 16 + 8 + 5);

    const RowCells none;
    EXPECT_EQ(none.size(), 0);
    EXPECT_TRUE(none.value(0).isEmpty());
    EXPECT_EQ(RowCells(QStringList{}), none);
    // Empty cells are cells: a row of three empty cells is not an empty row.
    EXPECT_EQ(RowCells({u"", u"", u""}).size(), 3);
    EXPECT_NE(RowCells({u"", u"", u""}), none);
}

TEST(RowCells, TextsBeyond65535UnitsUseWideOffsets) {
    // A 64 KB cell between two short ones: the offsets after it no longer fit 16 bits.
    const QString big(70000, QLatin1Char('x'));
    RowCells row({u"a", big, u"b", u"00012"});
    EXPECT_EQ(row.size(), 4);
    EXPECT_EQ(row[0], QStringLiteral("a"));
    EXPECT_EQ(row[1], big);
    EXPECT_EQ(row[2], QStringLiteral("b"));
    EXPECT_EQ(row[3], QStringLiteral("00012"));
    // Back under the limit, and over it again, through changes.
    row.set(1, u"lyhyt");
    EXPECT_EQ(texts(row), (QStringList{"a", "lyhyt", "b", "00012"}));
    row.set(2, big);
    EXPECT_EQ(row[2], big);
    EXPECT_EQ(row[3], QStringLiteral("00012"));
}

TEST(RowCells, ChangesKeepTheOtherCellsAndCopiesStayApart) {
    RowCells row({u"7110", u"KAIVUT", u"00001"});
    const RowCells copy = row;
    // Same length: written in place, but the copy keeps its own text.
    row.set(2, u"00002");
    EXPECT_EQ(row[2], QStringLiteral("00002"));
    EXPECT_EQ(copy[2], QStringLiteral("00001"));
    // Another length, a new cell beyond the end, shorter and longer rows.
    row.set(1, u"KAIVUT JA TÄYTÖT");
    row.set(4, u"x");
    EXPECT_EQ(texts(row), (QStringList{"7110", "KAIVUT JA TÄYTÖT", "00002", "", "x"}));
    row.resize(2);
    EXPECT_EQ(texts(row), (QStringList{"7110", "KAIVUT JA TÄYTÖT"}));
    row.resize(4);
    EXPECT_EQ(texts(row), (QStringList{"7110", "KAIVUT JA TÄYTÖT", "", ""}));
    row.append(u"00003");
    EXPECT_EQ(row[4], QStringLiteral("00003"));
    // A cell set from a view into the same row.
    row.set(3, row[0]);
    EXPECT_EQ(row[3], QStringLiteral("7110"));
    EXPECT_EQ(texts(copy), (QStringList{"7110", "KAIVUT", "00001"}));
}

TEST(RowCells, OneBuilderMakesManyRows) {
    RowCells::Builder b;
    b.add(u"a");
    b.addEmpty(2);
    b.add(u"bb");
    const RowCells first = b.take();
    b.add(u"c");
    const RowCells second = b.take();
    EXPECT_EQ(texts(first), (QStringList{"a", "", "", "bb"}));
    EXPECT_EQ(texts(second), QStringList{"c"});
    EXPECT_EQ(b.take().size(), 0);
    EXPECT_EQ(first, RowCells({u"a", u"", u"", u"bb"}));
}
