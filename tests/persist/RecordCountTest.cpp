// The count lines of a window record, read in place: what a count may look like, and what is
// refused with the line it stands on.
#include "persist/WindowRecord.h"

#include <gtest/gtest.h>

using persist::RecordReader;

TEST(RecordCount, CountsAreDigitsWithBlanksAroundThem) {
    struct Case {
        const char* line;
        int maximum;
        int value; // -1: refused
    };
    const Case cases[] = {
        {"0", 10, 0},     {"12", 100, 12},
        {" 7 ", 10, 7},   {"\t3", 10, 3},
        {"+3", 10, 3},    {"10", 10, 10},
        {"11", 10, -1},   {"", 10, -1},
        {"   ", 10, -1},  {"x", 10, -1},
        {"-1", 10, -1},   {"12a", 100, -1},
        {"1 2", 100, -1}, {"99999999999999999999", 100000000, -1},
    };
    for (const Case& c : cases) {
        RecordReader in(QByteArray("tunniste\r\n") + c.line + "\r\nloppu\r\n");
        QString first;
        ASSERT_TRUE(in.line(first));
        int value = -2;
        const bool ok = in.count(value, c.maximum);
        EXPECT_EQ(ok, c.value >= 0) << '"' << c.line << '"';
        if (ok) {
            EXPECT_EQ(value, c.value) << c.line;
            QString after;
            EXPECT_TRUE(in.line(after));
            EXPECT_EQ(after, QStringLiteral("loppu"));
        } else {
            // The failure names the line of the count and what stood there.
            EXPECT_EQ(in.failure().line, 2);
            EXPECT_TRUE(in.failure().what.startsWith(QStringLiteral("lukumäärä \"")))
                << in.error().toStdString();
        }
    }
}
