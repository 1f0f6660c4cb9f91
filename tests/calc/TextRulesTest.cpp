#include "calc/TextRules.h"

#include <gtest/gtest.h>

using namespace calc::detail;

TEST(TextRules, CapitalStringsNeedTwoCapitalsAndNoSmallLetter) {
    EXPECT_TRUE(isCapital(u"ÄÖ"));
    EXPECT_TRUE(isCapital(u"LVI 2"));
    EXPECT_TRUE(isCapital(u"TIETYÖT SILTAPAIKALLA"));
    EXPECT_TRUE(isCapital(u"7170 PÄÄLLYSRAKENNE, (JATKUU)"));
    EXPECT_FALSE(isCapital(u"Ä"));
    EXPECT_FALSE(isCapital(u"A 2"));
    EXPECT_FALSE(isCapital(u"ÄÖö"));
    EXPECT_FALSE(isCapital(u"KAIVU ja TÄYTTÖ"));
    EXPECT_FALSE(isCapital(u"123"));
    EXPECT_FALSE(isCapital(u""));
    // Letters outside the Finnish alphabet are neither small nor capital.
    EXPECT_TRUE(isCapital(u"ÉTUDE ÜBER"));
    EXPECT_FALSE(isCapital(u"é É"));
}

TEST(TextRules, BlankMeansEmptyOrSpacesOnly) {
    EXPECT_TRUE(isBlank(u""));
    EXPECT_TRUE(isBlank(u"   "));
    EXPECT_FALSE(isBlank(u" x "));
    EXPECT_FALSE(isBlank(u"\t"));
}
