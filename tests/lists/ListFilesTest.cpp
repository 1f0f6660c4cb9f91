// List text files and combo data files.
#include "ListBuilders.h"
#include "common/ScriptedDialogs.h"
#include "lists/ListFiles.h"
#include "platform/TextFile.h"

#include <QDir>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace lists;
using lists_test::fill;
using testing_support::ScriptedDialogs;

namespace {

QByteArray bytesOf(const QString& path) {
    QByteArray bytes;
    platform::readFileBytes(path, bytes);
    return bytes;
}

void writeBytes(const QString& path, const QByteArray& bytes) {
    ASSERT_TRUE(platform::writeFileAtomically(path, bytes));
}

} // namespace

TEST(ListFiles, FieldsOfALine) {
    EXPECT_EQ(CalculateCols("a;b;;d", ";"), 4);
    EXPECT_EQ(CalculateCols("", ";"), 1);
    EXPECT_EQ(ParseString("a;b;;d", 1, ";"), "a");
    EXPECT_EQ(ParseString("a;b;;d", 3, ";"), "");
    EXPECT_EQ(ParseString("a;b;;d", 4, ";"), "d");
    EXPECT_EQ(ParseString("a;b;;d", 5, ";"), "");
}

TEST(ListFiles, SaveAndReadBack) {
    QTemporaryDir dir;
    const QString path = dir.filePath("luettelo.sl1");
    ListModel list;
    fill(list, kind::UnitPriceList, {"LITTERA", "TYÖVAIHE;NIMI", "YKSIKKÖ"},
         {{"7100", "SILTAPAIKAN POHJATYÖT"}, {"", "Kaivu; kallio", "m3"}, {"", "kaksi\r\nriviä", "kpl"}, {}});
    QString error;
    ASSERT_TRUE(SaveListView(list, path, &error)) << error.toStdString();
    // Windows-1252, CR LF, ";" and line breaks as spaces, every row with all its separators.
    EXPECT_EQ(bytesOf(path), QByteArray("LITTERA;TY\xD6VAIHE NIMI;YKSIKK\xD6\r\n"
                                        "7100;SILTAPAIKAN POHJATY\xD6T;\r\n"
                                        ";Kaivu  kallio;m3\r\n"
                                        ";kaksi rivi\xE4;kpl\r\n"
                                        ";;\r\n"));

    ScriptedDialogs dialogs;
    ListModel back;
    back.setKind(kind::UnitPriceList);
    ASSERT_TRUE(InitListView(back, path, ";"));
    EXPECT_TRUE(dialogs.messages().empty());
    EXPECT_EQ(back.cols(), 4);
    EXPECT_EQ(back.column(2).header, "TYÖVAIHE NIMI");
    EXPECT_EQ(back.column(4).header, "Rivi");
    EXPECT_EQ(back.column(4).width, 0);
    EXPECT_EQ(lists_test::dataRows(back), (std::vector<QStringList>{{"7100", "SILTAPAIKAN POHJATYÖT", ""},
                                                                    {"", "Kaivu  kallio", "m3"},
                                                                    {"", "kaksi riviä", "kpl"},
                                                                    {"", "", ""}}));
    EXPECT_EQ(lists_test::rowNumbers(back), (QStringList{"00001", "00002", "00003", "00004"}));
    EXPECT_EQ(back.kind(), kind::UnitPriceList) << "the window decides the kind, not the file";
}

TEST(ListFiles, ShortAndLongLinesAndWidths) {
    QTemporaryDir dir;
    const QString path = dir.filePath("pohja.csv");
    writeBytes(path, "TUKI;RAK.AINE;Y\r\n1;Betoni\r\n2;Ter\xE4s;a;ylim\xE4\xE4r\xE4inen\n3\r\n");
    ListModel list;
    ASSERT_TRUE(
        InitListView(list, path, ";", [](const QString& s) { return 100 * static_cast<int>(s.size()); }));
    EXPECT_EQ(list.cols(), 4);
    EXPECT_EQ(lists_test::dataRows(list),
              (std::vector<QStringList>{{"1", "Betoni", ""}, {"2", "Teräs", "a"}, {"3", "", ""}}));
    EXPECT_EQ(list.column(1).width, 4 * 100 + 200);
    EXPECT_EQ(list.column(3).width, 100 + 200);

    ASSERT_TRUE(InitListView(list, path));
    EXPECT_EQ(list.column(2).width, approximateTextWidth("RAK.AINE") + 200);
}

TEST(ListFiles, MissingOrEmptyFileLeavesListAlone) {
    QTemporaryDir dir;
    ListModel list;
    fill(list, kind::UnitPriceList, {"LITTERA", "TYÖVAIHE"}, {{"7100", "VANHA"}});
    ScriptedDialogs dialogs;
    const QString missing = dir.filePath("puuttuu.sl1");
    EXPECT_FALSE(InitListView(list, missing, ";"));
    ASSERT_EQ(dialogs.messages().size(), 1u);
    EXPECT_EQ(dialogs.lastText(), "Tiedostoa: " + missing + " ei löydy.");
    EXPECT_EQ(dialogs.messages().back().icon, platform::MsgIcon::Information);

    const QString empty = dir.filePath("tyhja.sl1");
    writeBytes(empty, "");
    EXPECT_FALSE(InitListView(list, empty, ";"));
    EXPECT_EQ(dialogs.messages().size(), 2u);
    EXPECT_EQ(lists_test::dataRows(list), (std::vector<QStringList>{{"7100", "VANHA"}}));
    EXPECT_EQ(list.cols(), 3);
}

TEST(ListFiles, CharactersOutsideCodePage) {
    QTemporaryDir dir;
    ListModel list;
    fill(list, kind::RequirementBase, {"LITTERA", "NRO"}, {{"7100", "€ ok"}, {"7110", "Ω ja ≤"}});
    const std::vector<CellRef> cells = cellsOutsideCp1252(list);
    ASSERT_EQ(cells.size(), 1u);
    EXPECT_EQ(cells[0].row, 2);
    EXPECT_EQ(cells[0].col, 2);
    EXPECT_EQ(cells[0].characters, "Ω≤");

    QString unencodable;
    ASSERT_TRUE(SaveListView(list, dir.filePath("l.sl2"), nullptr, &unencodable));
    EXPECT_EQ(unencodable, "Ω≤");
    EXPECT_EQ(bytesOf(dir.filePath("l.sl2")), QByteArray("LITTERA;NRO\r\n7100;\x80 ok\r\n7110;? ja ?\r\n"));

    // A folder that does not exist: no file and the reason.
    QString error;
    EXPECT_FALSE(SaveListView(list, dir.filePath("ei/ole/l.sl2"), &error));
    EXPECT_FALSE(error.isEmpty());
}

TEST(ComboData, EntriesPerComboBox) {
    QTemporaryDir dir;
    EXPECT_EQ(comboDataPath("/ohjelma/", 2), "/ohjelma/Tamrik30_combodata2.csv");
    const QString path = comboDataPath(dir.path() + "/", 1);
    writeBytes(path, "OTSIKKO1;OTSIKKO2;OTSIKKO3\r\n"
                     "Tilaaja Oy;;\r\n"
                     ";;{DATE}\r\n"
                     "Urakoitsija Ab;P\xE4\xE4llikk\xF6;Pvm {DATE};ylim\xE4\xE4r\xE4inen\r\n");
    const ComboData data = readComboData(path, 3, QDate(2024, 3, 5));
    ASSERT_TRUE(data.ok());
    ASSERT_EQ(data.entries.size(), 3u);
    EXPECT_EQ(data.entries[0], (QStringList{"Tilaaja Oy", "Urakoitsija Ab"}));
    EXPECT_EQ(data.entries[1], (QStringList{"Päällikkö"}));
    EXPECT_EQ(data.entries[2], (QStringList{"5.3.2024", "Pvm 5.3.2024"}));

    const ComboData missing = readComboData(dir.filePath("ei.csv"), 3, QDate(2024, 3, 5));
    EXPECT_FALSE(missing.ok());
    EXPECT_EQ(missing.entries.size(), 3u);
    EXPECT_TRUE(missing.entries[0].isEmpty());
}

// A spreadsheet, a project or any binary file opened as a list was shown as garbage, and the
// next save wrote text over it. They are recognised and refused, and the list stays as it was.
TEST(ListFilesRegression, FilesThatAreNotListsAreRefusedAndLeaveTheListAlone) {
    QTemporaryDir dir;
    ListModel list;
    fill(list, kind::UnitPriceList, {"LITTERA", "TYÖVAIHE"}, {{"7100", "POHJATYÖT"}});
    QByteArray project(35, '\0');
    project += "\r\n4.0.17\r\n";
    project += QByteArray(7, '\0');
    const std::vector<std::pair<QByteArray, QString>> files = {
        {QByteArray("PK\x03\x04\x14\0\0\0\x08\0", 10) + "[Content_Types].xml", "taulukkolaskentatiedosto"},
        {QByteArray("\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1\0\0\0\0", 12), "taulukkolaskentatiedosto"},
        {project, "TAMRIK-projekti"},
        {QByteArray("GIF89a\x01\0\x01\0\0\0\0;", 14), "ei ole luettelotiedosto"},
    };
    for (const auto& [bytes, expected] : files) {
        const QString path = dir.filePath("tiedosto.sl1");
        writeBytes(path, bytes);
        ScriptedDialogs dialogs;
        EXPECT_FALSE(InitListView(list, path, ";")) << expected.toStdString();
        ASSERT_EQ(dialogs.messages().size(), 1u);
        EXPECT_TRUE(dialogs.lastText().contains(expected)) << dialogs.lastText().toStdString();
        EXPECT_TRUE(dialogs.lastText().contains(path));
        EXPECT_EQ(list.cell(1, 2).toString(), "POHJATYÖT");
        EXPECT_EQ(bytesOf(path), bytes) << "nothing is written over the file";
    }
    EXPECT_EQ(recogniseFile(QByteArray("LITTERA;TYÖVAIHE\r\n")), FileContent::Text);
}

// A ".csv" saved as UTF-8 by a spreadsheet program came in as Windows-1252: "ä" turned into
// "Ã¤" and the byte-order mark stayed in the first header.
TEST(ListFilesRegression, Utf8ListFilesAreReadAsUtf8) {
    QTemporaryDir dir;
    const QString marked = dir.filePath("bom.csv");
    writeBytes(marked, "\xEF\xBB\xBFLITTERA;TY\xC3\x96VAIHE\r\n7100;P\xC3\xA4\xC3\xA4osa\r\n");
    const QString plain = dir.filePath("utf8.csv");
    writeBytes(plain, "LITTERA;TY\xC3\x96VAIHE\n;Ter\xC3\xA4s \xE2\x82\xAC\n");
    const QString ansi = dir.filePath("ansi.csv");
    writeBytes(ansi, "LITTERA;TY\xD6VAIHE\r\n;Ter\xE4s \x80\r\n");
    ScriptedDialogs dialogs;
    ListModel list;
    ASSERT_TRUE(InitListView(list, marked, ";"));
    EXPECT_EQ(list.column(1).header, "LITTERA");
    EXPECT_EQ(list.column(2).header, "TYÖVAIHE");
    EXPECT_EQ(list.cell(1, 2).toString(), "Pääosa");
    ASSERT_TRUE(InitListView(list, plain, ";"));
    EXPECT_EQ(list.cell(1, 2).toString(), "Teräs €");
    ASSERT_TRUE(InitListView(list, ansi, ";"));
    EXPECT_EQ(list.cell(1, 2).toString(), "Teräs €");
    EXPECT_TRUE(dialogs.messages().empty());
}

// A header line of a few hundred thousand ";" padded every row to as many cells and took
// gigabytes; the columns are bounded and such a file is refused.
TEST(ListFilesRegression, AHeaderWithTooManyColumnsIsRefused) {
    QTemporaryDir dir;
    const QString path = dir.filePath("leveä.csv");
    writeBytes(path, QByteArray(300000, ';') + "\r\n" + QByteArray("a;b\r\n").repeated(1000));
    ListModel list;
    fill(list, kind::UnitPriceList, {"LITTERA"}, {{"7100"}});
    ScriptedDialogs dialogs;
    EXPECT_FALSE(InitListView(list, path, ";"));
    EXPECT_TRUE(dialogs.lastText().contains("300001 saraketta")) << dialogs.lastText().toStdString();
    EXPECT_EQ(list.cell(1, 1).toString(), "7100");
    const QString wide = dir.filePath("sallittu.csv");
    writeBytes(wide, QByteArray(kMaxListColumns - 1, ';') + "\r\n");
    EXPECT_TRUE(InitListView(list, wide, ";"));
    EXPECT_EQ(list.cols(), kMaxListColumns + 1);
}

// Empty lines under a header of 256 columns each became a row of 257 cells: a file of a few
// megabytes took gigabytes. A file with more cells than its bytes can carry is refused; a list
// as this program writes it, with every separator, is not.
TEST(ListFilesRegression, ShortLinesUnderAWideHeaderAreBounded) {
    QTemporaryDir dir;
    const QByteArray header = QByteArray(kMaxListColumns - 1, ';') + "\r\n";
    const QString empty = dir.filePath("tyhjia.csv");
    writeBytes(empty, header + QByteArray("\r\n").repeated(200000));
    ListModel list;
    fill(list, kind::UnitPriceList, {"LITTERA"}, {{"7100"}});
    ScriptedDialogs dialogs;
    EXPECT_FALSE(InitListView(list, empty, ";"));
    EXPECT_TRUE(dialogs.lastText().contains("200000 riviä ja 256 saraketta"))
        << dialogs.lastText().toStdString();
    EXPECT_TRUE(dialogs.lastText().contains(empty));
    EXPECT_EQ(list.cell(1, 1).toString(), "7100");

    const QString full = dir.filePath("taysi.csv");
    writeBytes(full, header + QByteArray(kMaxListColumns - 1, ';').append("\r\n").repeated(20000));
    dialogs.clear();
    EXPECT_TRUE(InitListView(list, full, ";"));
    EXPECT_EQ(list.rows(), 20000);
    EXPECT_TRUE(dialogs.messages().empty());
}
