// Converting lists between list files and spreadsheets.
#include "ListBuilders.h"
#include "common/TestSupport.h"
#include "lists/ListConvert.h"
#include "lists/ListFiles.h"
#include "lists/Spreadsheet.h"
#include "platform/TextFile.h"

#include <QDir>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace lists;

namespace {

QByteArray bytesOf(const QString& path) {
    QByteArray bytes;
    platform::readFileBytes(path, bytes);
    return bytes;
}

// A unit price list as it ships: captions, decimals, second-level litteras, blank rows,
// prices typed in different ways, Finnish letters, empty trailing cells.
const QByteArray kUnitPrices =
    "LITTERA;TY\xD6VAIHE;YKSIKK\xD6;A (HELPOT);B (NORMAALIT);C (VAIKEAT);HUOMAUTUKSET\r\n"
    "7100;SILTAPAIKAN POHJAT\xD6IT;;;;;\r\n"
    ";;;;;;\r\n"
    "7110;Kaivannot;;;;;\r\n"
    ";Maan kaivu;m3;12,5;14;16,75;\r\n"
    ";  kaivu kallioon;m3;45,50;52;0,1;sis. r\xE4j\xE4ytykset\r\n"
    "7131.1;Ter\xE4sputkipaalut;m;-3;007;1234567;\r\n"
    "7131.12;\xC5land 15.3.2024;kpl;;;;\r\n"
    ";TIETY\xD6T SILTAPAIKALLA;;;;;\r\n";

} // namespace

TEST(ConvertListFile, ListFileThroughSpreadsheetGivesSameBytes) {
    QTemporaryDir dir;
    const QString sl1 = dir.filePath("hinnat.sl1");
    ASSERT_TRUE(platform::writeFileAtomically(sl1, kUnitPrices));
    QString error;
    ASSERT_TRUE(ConvertListFile(sl1, dir.filePath("hinnat.xlsx"), &error)) << error.toStdString();
    ASSERT_TRUE(ConvertListFile(dir.filePath("hinnat.xlsx"), dir.filePath("takaisin.SL1"), &error))
        << error.toStdString();
    EXPECT_EQ(bytesOf(dir.filePath("takaisin.SL1")), kUnitPrices);

    // Between list text files the format is the same.
    ASSERT_TRUE(ConvertListFile(sl1, dir.filePath("hinnat.csv"), &error));
    EXPECT_EQ(bytesOf(dir.filePath("hinnat.csv")), kUnitPrices);
}

TEST(ConvertListFile, SpreadsheetFirstRowIsTheHeader) {
    QTemporaryDir dir;
    const QString fixtures = testing_support::sourceDir() + "/tests/lists/data/";
    QString error;
    // Macro workbooks and templates are read as the workbook they are.
    for (const QString name : {"taulukko.xls", "taulukko.xlsx", "taulukko.ods", "taulukko.xlsm",
                               "taulukko.xltx", "taulukko.xltm"}) {
        const QString out = dir.filePath(name + ".sl1");
        ASSERT_TRUE(ConvertListFile(fixtures + name, out, &error)) << error.toStdString();
        EXPECT_EQ(
            bytesOf(out),
            QByteArray("LITTERA;TY\xD6VAIHE;YKSIKK\xD6;A (HELPOT);B (NORMAALIT);C (VAIKEAT);"
                       "HUOMAUTUKSET\r\n"
                       "7100;SILTAPAIKAN POHJATY\xD6T;;;;;\r\n"
                       "7110;Kaivu ja t\xE4ytt\xF6;m3;12,5;14;16,75;15.3.2024\r\n"
                       ";Kallion louhinta;m3;1234567;0,1;-3,25;\r\n"
                       ";;;;;;\r\n;;;;;;\r\n;;;;;;\r\n"
                       "7131.1;Paalutus  ter\xE4sputki;kpl;;2500;;\xC4\xE4riarvot \xD6ljy \xE5landsk\r\n"
                       ";jatkorivi;;;;;\r\n"))
            << name.toStdString();
    }
}

TEST(ConvertListFile, RefusesWithoutWriting) {
    QTemporaryDir dir;
    const QString sl2 = dir.filePath("vaatimukset.sl2");
    ASSERT_TRUE(platform::writeFileAtomically(sl2, "LITTERA;NRO\r\n7100;1\r\n"));
    QString error;

    // Never over the input, however it is spelled.
    EXPECT_FALSE(ConvertListFile(sl2, sl2, &error));
    EXPECT_FALSE(error.isEmpty());
    QDir(dir.path()).mkdir("ali");
    EXPECT_FALSE(ConvertListFile(sl2, dir.path() + "/ali/../vaatimukset.sl2", &error));
    EXPECT_EQ(bytesOf(sl2), QByteArray("LITTERA;NRO\r\n7100;1\r\n"));

    // Formats that cannot be written or read, a missing or damaged input.
    EXPECT_FALSE(ConvertListFile(sl2, dir.filePath("ulos.xls"), &error));
    EXPECT_FALSE(ConvertListFile(sl2, dir.filePath("ulos.ods"), &error));
    EXPECT_FALSE(ConvertListFile(sl2, dir.filePath("ulos.txt"), &error));
    EXPECT_FALSE(ConvertListFile(dir.filePath("sisaan.doc"), dir.filePath("ulos.sl2"), &error));
    EXPECT_FALSE(ConvertListFile(dir.filePath("puuttuu.sl2"), dir.filePath("ulos.sl2"), &error));
    EXPECT_EQ(error, "Tiedostoa: " + dir.filePath("puuttuu.sl2") + " ei löydy.");
    EXPECT_FALSE(ConvertListFile(testing_support::sourceDir() + "/tests/lists/data/damaged/katkennut.xlsx",
                                 dir.filePath("ulos.sl2"), &error));
    EXPECT_TRUE(error.contains("ei voitu lukea")) << error.toStdString();

    // A spreadsheet with characters that Windows-1252 cannot hold is not written as a list file.
    ListModel list;
    lists_test::fill(list, kind::RequirementBase, {"LITTERA", "NRO"}, {{"7100", "α-kerroin"}});
    ASSERT_TRUE(ExportListViewXlsx(list, dir.filePath("kreikka.xlsx"), &error));
    EXPECT_FALSE(ConvertListFile(dir.filePath("kreikka.xlsx"), dir.filePath("ulos.sl2"), &error));
    EXPECT_TRUE(error.contains("α")) << error.toStdString();

    QStringList left = QDir(dir.path()).entryList(QDir::Files);
    left.sort();
    EXPECT_EQ(left, (QStringList{"kreikka.xlsx", "vaatimukset.sl2"}));
}
