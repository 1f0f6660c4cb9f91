#include "shell/Captions.h"
#include "shell/Settings.h"

#include <gtest/gtest.h>

using namespace shell;

TEST(Captions, ParseFileNameSplitsFoldersNamesAndTheMarker) {
    ParsedCaption c = ParseFileName(QStringLiteral("C:\\sillat\\Silta12.sl (Perustiedot) Ei muutettu"));
    EXPECT_EQ(c.directory, QStringLiteral("C:\\sillat\\"));
    EXPECT_EQ(c.name, QStringLiteral("Silta12.sl"));
    EXPECT_TRUE(c.unchanged);

    c = ParseFileName(QStringLiteral("Projekti3 (Panostilakortti)"));
    EXPECT_EQ(c.directory, QString());
    EXPECT_EQ(c.name, QStringLiteral("Projekti3"));
    EXPECT_FALSE(c.unchanged);

    c = ParseFileName(QStringLiteral("/home/a/sillat/Silta 7.sl (Yksityiskohtaiset tiedot)"));
    EXPECT_EQ(c.directory, QStringLiteral("/home/a/sillat/"));
    EXPECT_EQ(c.name, QStringLiteral("Silta 7.sl"));

    // A plain path, and the marker somewhere other than at the end.
    c = ParseFileName(QStringLiteral("/tmp/x.sl"));
    EXPECT_EQ(c.project(), QStringLiteral("/tmp/x.sl"));
    c = ParseFileName(QStringLiteral("/tmp/a Ei muutettu b.sl (Ominaistietokortti)"));
    EXPECT_FALSE(c.unchanged);
    EXPECT_EQ(c.name, QStringLiteral("a Ei muutettu b.sl"));

    c = ParseFileName(QStringLiteral("/lists/Yksikköhinnat2002.sl1 (Yksikköhintaluettelo) Ei muutettu"));
    EXPECT_EQ(c.name, QStringLiteral("Yksikköhinnat2002.sl1"));
    EXPECT_TRUE(c.unchanged);
}

TEST(Captions, MarkerIsAddedAndRemovedOnce) {
    const QString base = MakeCaption(QStringLiteral("Projekti1"), 2, false);
    EXPECT_EQ(base, QStringLiteral("Projekti1 (Yksityiskohtaiset tiedot)"));
    const QString untouched = CaptionUntouched(base);
    EXPECT_EQ(untouched, base + QStringLiteral(" Ei muutettu"));
    EXPECT_EQ(CaptionUntouched(untouched), untouched);
    EXPECT_EQ(CaptionTouched(untouched), base);
    EXPECT_EQ(CaptionTouched(base), base);
}

TEST(RecentFiles, MoveToFrontAndNeverTwice) {
    std::array<QString, 6> files;
    for (const char* f : {"a", "b", "c", "d", "e", "f", "g"})
        UpdateRecentFileList(files, QString::fromLatin1(f));
    EXPECT_EQ(files[0], QStringLiteral("g"));
    EXPECT_EQ(files[5], QStringLiteral("b")); // "a" dropped off the end
    // The third entry moves to the front; the first two shift down.
    UpdateRecentFileList(files, QStringLiteral("e"));
    EXPECT_EQ(files[0], QStringLiteral("e"));
    EXPECT_EQ(files[1], QStringLiteral("g"));
    EXPECT_EQ(files[2], QStringLiteral("f"));
    EXPECT_EQ(files[3], QStringLiteral("d"));
    EXPECT_EQ(std::count(files.begin(), files.end(), QStringLiteral("e")), 1);
    UpdateRecentFileList(files, QString());
    EXPECT_EQ(files[0], QStringLiteral("e"));
}
