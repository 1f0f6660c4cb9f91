// Pagination: the page table a run gets for lists of known row counts and heights.
#include "print/PrintFixtures.h"
#include "print/Reports.h"

#include <gtest/gtest.h>
#include <cmath>

using print::PageCountResult;
using print_test::entry;
using print_test::TestProject;

namespace {

struct Range {
    int first;
    int last;
    bool operator==(const Range& o) const { return first == o.first && last == o.last; }
};

std::ostream& operator<<(std::ostream& os, const Range& r) {
    return os << "(" << r.first << ", " << r.last << ")";
}

// The row ranges of a document's body pages.
std::vector<Range> bodyPages(const print::PrintRun& run, int document) {
    std::vector<Range> out;
    for (const print::PageEntry& e : run.pages())
        if (e.document == document && e.number > 1) out.push_back({e.firstRow, e.lastRow});
    return out;
}

// How many one-line rows fit on a body page.
int rowsPerPage(print::PrintRun& run) {
    run.PrintArea(1.0f);
    const print::PageModel& m = run.page();
    return static_cast<int>(std::floor((m.bodyLimit() - print::ListBodyTop(run)) / m.LineHeight11));
}

std::vector<QStringList> shortRows(int n) {
    return std::vector<QStringList>(n, entry(QStringLiteral("Kaivu")));
}

// A text of 60 short paragraphs: taller than any page.
QString tallText() {
    QString t;
    for (int i = 0; i < 60; ++i)
        t += QStringLiteral("rivi %1\r\n").arg(i);
    return t;
}

} // namespace

TEST(Pagination, EmptyListsGetAFrontPageAndOneBodyPage) {
    TestProject t;
    auto run = t.run({print::doc::Quantities, print::doc::Costs});
    ASSERT_EQ(run->PageCount(), PageCountResult::Done);
    ASSERT_EQ(run->TotalPages(), 4);
    const int expected[4][5] = {{0, 1, 2, 0, 0}, {0, 2, 2, 1, 0}, {1, 1, 2, 0, 0}, {1, 2, 2, 1, 1}};
    for (int p = 1; p <= 4; ++p) {
        const print::PageEntry& e = run->entry(p);
        EXPECT_EQ(e.document, expected[p - 1][0]) << p;
        EXPECT_EQ(e.number, expected[p - 1][1]) << p;
        EXPECT_EQ(e.count, expected[p - 1][2]) << p;
        EXPECT_EQ(e.firstRow, expected[p - 1][3]) << p;
        EXPECT_EQ(e.lastRow, expected[p - 1][4]) << p; // the cost estimate's summaries are its row 1
    }
    EXPECT_FALSE(t.selection.PaginationStale);
}

TEST(Pagination, RowsFillPagesAndALastRowThatCrossesStandsAlone) {
    TestProject t;
    int k = 0;
    {
        auto probe = t.run({print::doc::Quantities});
        k = rowsPerPage(*probe);
    }
    ASSERT_GT(k, 30); // A4 portrait holds some forty lines
    struct Case {
        int rows;
        std::vector<Range> pages;
    };
    const Case cases[] = {{1, {{1, 1}}},
                          {k - 1, {{1, k - 1}}},
                          {k, {{1, k}}},
                          {k + 1, {{1, k}, {k + 1, k + 1}}},
                          {2 * k, {{1, k}, {k + 1, 2 * k}}},
                          {2 * k + 1, {{1, k}, {k + 1, 2 * k}, {2 * k + 1, 2 * k + 1}}}};
    for (const Case& c : cases) {
        t.setQuantities(shortRows(c.rows));
        auto run = t.run({print::doc::Quantities});
        ASSERT_EQ(run->PageCount(), PageCountResult::Done);
        EXPECT_EQ(bodyPages(*run, print::doc::Quantities), c.pages) << c.rows << " rows";
        EXPECT_EQ(run->TotalPages(), static_cast<int>(c.pages.size()) + 1);
    }
}

TEST(Pagination, ARowTallerThanAPageStandsAlone) {
    TestProject t;
    t.setQuantities({entry(QStringLiteral("Kaivu")), entry(tallText()), entry(QStringLiteral("Täyttö"))});
    auto run = t.run({print::doc::Quantities});
    ASSERT_EQ(run->PageCount(), PageCountResult::Done);
    EXPECT_EQ(bodyPages(*run, print::doc::Quantities), (std::vector<Range>{{1, 1}, {2, 2}, {3, 3}}));
}

TEST(Pagination, CostSummariesFollowTheLastRowOrStartANewPage) {
    TestProject t;
    int k = 0;
    {
        auto probe = t.run({print::doc::Costs});
        k = rowsPerPage(*probe);
    }
    const int reserve = 12 + 29; // the record's summary lines once the bridge block has closed
    ASSERT_GE(k, reserve + 1);
    // Rows that leave room for both summaries: all on one page; one row more: a page of its own.
    for (int n : {2, k - reserve, k - reserve + 1}) {
        t.setQuantities(shortRows(n));
        auto run = t.run({print::doc::Costs});
        ASSERT_EQ(run->PageCount(), PageCountResult::Done);
        EXPECT_EQ(run->costSummaryBlocks(), 1);
        const std::vector<Range> expected =
            n + reserve <= k ? std::vector<Range>{{1, n + 1}} : std::vector<Range>{{1, n}, {n + 1, n + 1}};
        EXPECT_EQ(bodyPages(*run, print::doc::Costs), expected) << n << " rows";
    }
    // Landscape paper cannot hold both summaries on one page: each goes where it fits.
    t.setQuantities(shortRows(2));
    auto run = t.run({print::doc::Costs}, print::DefaultPageLayout(QPageLayout::Landscape));
    ASSERT_EQ(run->PageCount(), PageCountResult::Done);
    EXPECT_EQ(run->costSummaryBlocks(), 2);
    EXPECT_EQ(bodyPages(*run, print::doc::Costs), (std::vector<Range>{{1, 3}, {4, 4}}));
}

TEST(Pagination, PagesAreNumberedWithinEachDocument) {
    TestProject t;
    int k = 0;
    {
        auto probe = t.run({print::doc::Quantities});
        k = rowsPerPage(*probe);
    }
    t.setQuantities(shortRows(2 * k + 1));
    auto run = t.run({print::doc::Quantities, print::doc::Costs});
    ASSERT_EQ(run->PageCount(), PageCountResult::Done);
    std::vector<std::pair<int, int>> numbers; // (document, number)
    for (const print::PageEntry& e : run->pages())
        numbers.push_back({e.document, e.number});
    const int quantityPages = 4; // front page and three body pages
    ASSERT_GT(run->TotalPages(), quantityPages);
    for (int p = 1; p <= run->TotalPages(); ++p) {
        const print::PageEntry& e = run->entry(p);
        if (p <= quantityPages) {
            EXPECT_EQ(e.document, 0);
            EXPECT_EQ(e.number, p);
            EXPECT_EQ(e.count, quantityPages);
        } else {
            EXPECT_EQ(e.document, 1);
            EXPECT_EQ(e.number, p - quantityPages);
            EXPECT_EQ(e.count, run->TotalPages() - quantityPages);
        }
    }
}

TEST(Pagination, TheTableHoldsTenThousandPagesAndSaysSoWhenMoreAreNeeded) {
    TestProject t;
    // Every row is taller than a page, so each takes a page of its own.
    t.setQuantities(std::vector<QStringList>(9999, entry(tallText())));
    auto exact = t.run({print::doc::Quantities});
    ASSERT_EQ(exact->PageCount(), PageCountResult::Done);
    EXPECT_EQ(exact->TotalPages(), print::kMaxPages);

    auto over = t.run({print::doc::Quantities, print::doc::Costs});
    EXPECT_EQ(over->PageCount(), PageCountResult::TooManyPages);
    EXPECT_EQ(over->TotalPages(), 0);
    EXPECT_TRUE(over->messages().contains(print::kTooManyPages));
    EXPECT_TRUE(t.selection.PaginationStale);
}

TEST(Pagination, ACancelledPassLeavesNoPagesAndStaysStale) {
    TestProject t;
    t.setQuantities(shortRows(500));
    auto run = t.run({print::doc::Quantities});
    int calls = 0;
    EXPECT_EQ(run->PageCount([&calls](int page, double done) {
        ++calls;
        EXPECT_GE(done, 0.0);
        EXPECT_LE(done, 1.0);
        return page < 5;
    }),
              PageCountResult::Cancelled);
    EXPECT_EQ(calls, 5);
    EXPECT_EQ(run->TotalPages(), 0);
    EXPECT_TRUE(t.selection.PaginationStale);
    // A pass that is not stale keeps its table.
    ASSERT_EQ(run->PageCount(), PageCountResult::Done);
    const int pages = run->TotalPages();
    t.quantities.removeRowsAt(1, 400);
    ASSERT_EQ(run->PageCount(), PageCountResult::Done);
    EXPECT_EQ(run->TotalPages(), pages);
}

TEST(Pagination, TheUsableAreaMustFitThePrintableArea) {
    TestProject t;
    auto run = t.run({print::doc::Quantities}, QPageLayout(QPageSize(QPageSize::A4), QPageLayout::Portrait,
                                                           QMarginsF(80, 80, 80, 80), QPageLayout::Point));
    EXPECT_EQ(run->PageCount(), PageCountResult::AreaDoesNotFit);
    EXPECT_EQ(run->TotalPages(), 0);
    EXPECT_EQ(run->messages(), QStringList{print::kAreaDoesNotFit});
}
