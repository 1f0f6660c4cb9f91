// The words a reader's stop becomes in a message: every reader names its place through these,
// so the shapes below are what users see after "... ei voitu lukea: ".
#include "platform/ReadError.h"

#include <gtest/gtest.h>

using platform::ReadError;

TEST(ReadError, NamesThePlaceAfterWhatFailed) {
    const struct {
        ReadError error;
        const char* text;
    } cases[] = {
        {ReadError::reason("tiedosto on liian lyhyt"), "tiedosto on liian lyhyt"},
        {{"tietue on vajaa", {}, "0x0004", 27}, "tietue on vajaa (tietue 0x0004 tavussa 27)"},
        {{"tietovirta päättyy kesken", {}, {}, 512}, "tietovirta päättyy kesken tavussa 512"},
        {{"tietue on vajaa", "xl/workbook.bin", "153", 0},
         "osa xl/workbook.bin: tietue on vajaa (tietue 153 tavussa 0)"},
        {{"tietue katkeaa", "xl/worksheets/sheet1.bin", {}, 4096},
         "osa xl/worksheets/sheet1.bin: tietue katkeaa tavussa 4096"},
        {{"ei ole kelvollista XML:ää", "content.xml", {}, -1, 3, 17},
         "osa content.xml ei ole kelvollista XML:ää (rivi 3, sarake 17)"},
        // A text read by whole lines (a project's window records).
        {{"lukumäärä \"x\" ei kelpaa", {}, {}, -1, 12}, "rivi 12: lukumäärä \"x\" ei kelpaa"},
        // A parser that could not say where still gives its zeros, as it always did.
        {{"ei ole kelvollista XML:ää", "styles.xml", {}, -1, 0, 0},
         "osa styles.xml ei ole kelvollista XML:ää (rivi 0, sarake 0)"},
        // A part name is a name, even with what looks like a placeholder in it.
        {{"tietue katkeaa", "x%1.bin", {}, 5}, "osa x%1.bin: tietue katkeaa tavussa 5"},
        // The project file and rich text keep their own words for the place.
        {ReadError::atByte("tiedoston otsake on virheellinen", 35),
         "tiedoston otsake on virheellinen (tavu 35)"},
        {ReadError::atByte("loppumerkki puuttuu", 120, "2"), "osan 2 loppumerkki puuttuu (tavu 120)"},
        {ReadError::ofSize("tiedosto on liian lyhyt", 20), "tiedosto on liian lyhyt (20 tavua)"},
        {ReadError::ofSize("ulottuu tiedoston lopun yli", 900, "1", 37),
         "osa 1 (900 tavua, alkaa tavusta 37) ulottuu tiedoston lopun yli"},
        {ReadError::endsAt("teksti päättyy kesken", 80, "tavussa 3 alkanut ryhmä jää auki"),
         "teksti päättyy kesken tavussa 80: tavussa 3 alkanut ryhmä jää auki"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(c.error.text(), QString::fromUtf8(c.text));
    }
}

TEST(ReadError, FailFillsTheCallersValueOnlyWhenAsked) {
    ReadError out;
    EXPECT_FALSE(platform::fail(&out, {"tietue katkeaa", "a.bin", {}, 9}));
    EXPECT_EQ(out.part, "a.bin");
    EXPECT_EQ(out.offset, 9);
    EXPECT_FALSE(platform::fail(nullptr, ReadError::reason("ohitettu")));
}
