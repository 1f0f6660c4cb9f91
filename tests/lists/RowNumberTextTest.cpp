// The text of a row number: five digits with leading zeros, more digits beyond 99999.
#include "lists/ListModel.h"

#include <gtest/gtest.h>

TEST(RowNumberText, FiveDigitsWithLeadingZerosAndMoreWhenNeeded) {
    const std::pair<long long, const char*> cases[] = {{0, "00000"},       {1, "00001"},
                                                       {42, "00042"},      {99999, "99999"},
                                                       {100000, "100000"}, {1234567, "1234567"}};
    for (const auto& [n, text] : cases) {
        EXPECT_EQ(lists::formatRowNumber(n), QString::fromLatin1(text)) << n;
        EXPECT_EQ(lists::rowNumberValue(lists::formatRowNumber(n)), n);
    }
}
