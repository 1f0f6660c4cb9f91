#include "lists/RowCells.h"

#include <functional>
#include <gtest/gtest.h>
#include <vector>

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

// The memo belongs to the texts it was made from: copies, moves and swaps carry it along, and
// every change of the texts drops it.
TEST(RowCells, AMemoTravelsWithItsTextsAndGoesWithAnyChange) {
    constexpr std::uint64_t none = RowCells::kNoMemo;
    RowCells a({u"7110", u"4", u"Kyllä"});
    EXPECT_EQ(a.memo(), none);
    a.setMemo(11);

    RowCells copy = a;
    EXPECT_EQ(copy.memo(), 11u);
    RowCells moved = std::move(copy);
    EXPECT_EQ(moved.memo(), 11u);
    EXPECT_EQ(copy.memo(), none) << "a moved-from row has no texts and so no memo";

    RowCells b({u"7120", u"6", u"Ei"});
    b.setMemo(22);
    swap(moved, b);
    EXPECT_EQ(moved[0], QStringLiteral("7120"));
    EXPECT_EQ(moved.memo(), 22u);
    EXPECT_EQ(b[0], QStringLiteral("7110"));
    EXPECT_EQ(b.memo(), 11u);
    // Move assignment (which swaps the blocks) and std::swap keep each memo with its texts.
    moved = std::move(b);
    EXPECT_EQ(moved[0], QStringLiteral("7110"));
    EXPECT_EQ(moved.memo(), 11u);
    // The moved-from row holds nothing, or the other row's texts with their memo.
    if (b.isEmpty()) {
        EXPECT_EQ(b.memo(), none);
    } else {
        EXPECT_EQ(b[0], QStringLiteral("7120"));
        EXPECT_EQ(b.memo(), 22u);
    }
    std::vector<RowCells> rows{a, RowCells({u"x"})};
    std::swap(rows[0], rows[1]);
    EXPECT_EQ(rows[1].memo(), 11u);
    EXPECT_EQ(rows[0].memo(), none);
    // Rows are equal by their texts alone.
    EXPECT_EQ(a, RowCells({u"7110", u"4", u"Kyllä"}));

    // Setting a text that is already there changes nothing; any other change drops the memo:
    // a text of the same length (written in place), of another length, a new cell, a resize.
    a.set(1, u"4");
    EXPECT_EQ(a.memo(), 11u);
    const std::vector<std::function<void(RowCells&)>> changes = {
        [](RowCells& r) { r.set(1, u"6"); },    [](RowCells& r) { r.set(2, u"Ei"); },
        [](RowCells& r) { r.set(5, u"uusi"); }, [](RowCells& r) { r.append(u""); },
        [](RowCells& r) { r.resize(2); },
    };
    for (size_t k = 0; k < changes.size(); ++k) {
        SCOPED_TRACE(k);
        RowCells row = a;
        const RowCells sharing = row; // the same block, which the change must not touch
        changes[k](row);
        EXPECT_EQ(row.memo(), none);
        EXPECT_EQ(sharing.memo(), 11u);
        EXPECT_EQ(sharing, a);
    }
}
