// The scanner of plain sheet XML against libxml2 on the same bytes: what it reads it reads as
// libxml2 does, in any cut of the input, and everything else it leaves to libxml2; the import
// gives the same cells either way.
#include "SheetFiles.h"
#include "XmlEvents.h"
#include "lists/Spreadsheet.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

using lists::sheet::PlainXml;

namespace {

void expectAsLibxml(const std::string& xml) {
    std::string expected;
    ASSERT_TRUE(xml_events::parseWithLibxml(xml, expected)) << xml;
    for (const std::size_t piece : {std::size_t(1), std::size_t(3), std::size_t(1) << 16}) {
        std::string log;
        EXPECT_EQ(xml_events::scanPlain(xml, piece, log), PlainXml::Result::Done) << xml;
        EXPECT_EQ(log, expected) << xml << " in pieces of " << piece;
    }
}

} // namespace

TEST(PlainXml, ReadsWhatSpreadsheetProgramsWriteAsLibxmlDoes) {
    const std::string declaration = R"(<?xml version="1.0" encoding="UTF-8" standalone="yes"?>)";
    // As Excel writes a sheet: CR LF after the declaration, namespaces, prefixed attributes.
    expectAsLibxml(declaration +
                   "\r\n<worksheet xmlns=\"http://schemas.openxmlformats.org/spreadsheetml/2006/main\" "
                   "xmlns:r=\"http://schemas.openxmlformats.org/officeDocument/2006/relationships\" "
                   "xmlns:x14ac=\"http://schemas.microsoft.com/office/spreadsheetml/2009/9/ac\">"
                   R"(<sheetData><row r="1" spans="1:2" x14ac:dyDescent="0.25"><c r="A1" t="s"><v>0</v></c>)"
                   R"(<c r="B1" s="1"><v>12.5</v></c></row></sheetData></worksheet>)");
    // Shared strings: references, line ends in text, xml:space, blanks, runs, UTF-8 of every length.
    expectAsLibxml(
        declaration +
        R"(<sst xmlns="x" count="3"><si><t xml:space="preserve">  a &amp; b &lt;c&gt; &quot;d&quot; &apos;e&apos; </t></si>)"
        "<si><t>rivi\r\ntoinen\rkolmas\n&#13;&#10;&#x41;&#228;</t></si>"
        R"(<si><r><rPr><b/></rPr><t>Määrä € 𝄞 ]] > ]</t></r><rPh sb="0"><t>ふ</t></rPh></si></sst>)");
    // No declaration, a byte-order mark, single quotes, blanks inside tags, empty elements.
    expectAsLibxml("\xEF\xBB\xBF<a  b = 'x\"y' >\t<c/><c\n/><d></d ></a>\n\r\n");
    expectAsLibxml(R"(<?xml version='1.0'?><a/>)");
    expectAsLibxml(R"(<?xml version="1.0" encoding="utf-8" ?><p:a xmlns:p="u" p:b="1" c="2">t</p:a>)");
}

TEST(PlainXml, LeavesEverythingElseToLibxml) {
    const char* const others[] = {
        // More than it reads.
        R"(<!DOCTYPE a [<!ENTITY e "x">]><a>&e;</a>)",
        "<a><![CDATA[x]]></a>",
        "<a><!-- note --></a>",
        "<a><?pi x?></a>",
        R"(<?xml version="1.0" encoding="ISO-8859-1"?><a>x</a>)",
        R"(<?xml version="1.1"?><a/>)",
        R"(<a b="x&amp;y"/>)",
        "<a b=\"x\ty\"/>",
        "<a>&nbsp;</a>",
        "<a>&#0;</a>",
        "<\xC3\xA4/>",
        // Not well formed.
        "<a><b></a></b>",
        "<a>",
        "<a>x",
        "",
        "  ",
        "<a b=\"1\" b=\"2\"/>",
        "<a p:b=\"1\" q:b=\"2\"/>",
        "<a b=\"1\"c=\"2\"/>",
        "<a>]]></a>",
        "<a/><b/>",
        "<a/>x",
        "<a>\xC3</a>",
        "<a>\xED\xA0\x80</a>",
        "<a>\x01</a>",
        " <?xml version=\"1.0\"?><a/>",
        "<a:b:c/>",
    };
    for (const char* xml : others) {
        std::string log;
        EXPECT_EQ(xml_events::scanPlain(xml, 1 << 16, log), PlainXml::Result::NotPlain) << xml;
        EXPECT_EQ(xml_events::scanPlain(xml, 1, log), PlainXml::Result::NotPlain) << xml;
    }
}

TEST(PlainXml, EndsWhereItsHandlerEnds) {
    // A handler that stops at the first end tag sees nothing after it.
    class StopAtEnd : public PlainXml::Events {
    public:
        bool start(std::string_view, const xmlChar**, int) override {
            ++starts;
            return true;
        }
        bool end(std::string_view) override { return false; }
        bool text(const char*, int) override { return true; }
        int starts = 0;
    } events;
    const std::string xml = "<a><b/><c/></a>";
    std::size_t at = 0;
    const auto result = PlainXml::scan(
        [&](char* to, qsizetype max) {
            const auto n = std::min<std::size_t>(xml.size() - at, static_cast<std::size_t>(max));
            std::copy_n(xml.data() + at, n, to);
            at += n;
            return static_cast<qsizetype>(n);
        },
        events);
    EXPECT_EQ(result, PlainXml::Result::Ended);
    EXPECT_EQ(events.starts, 2);

    // A failed read is told apart from bad XML.
    PlainXml::Events& any = events;
    EXPECT_EQ(PlainXml::scan([](char*, qsizetype) { return qsizetype(-1); }, any),
              PlainXml::Result::ReadFailed);
}

TEST(PlainXml, ASheetLibxmlMustReadGivesTheSameCells) {
    // The same sheet plain, with a document type (which also made libxml2 leave a document
    // behind), and with a comment: the cells are the same.
    QTemporaryDir dir;
    const QByteArray sheet =
        R"(<worksheet xmlns="http://schemas.openxmlformats.org/spreadsheetml/2006/main"><sheetData>)"
        R"(<row r="1"><c r="A1" t="inlineStr"><is><t>otsikko &amp; muu</t></is></c><c r="B1"><v>2.5</v></c></row>)"
        R"(<row r="2"><c r="B2" t="inlineStr"><is><t>alempi</t></is></c></row></sheetData></worksheet>)";
    const QByteArray variants[] = {
        sheet,
        R"(<!DOCTYPE worksheet [<!ENTITY muu "muu">]>)" + sheet,
        QByteArray(sheet).replace("<sheetData>", "<sheetData><!-- rivit -->"),
    };
    std::vector<std::vector<QStringList>> read;
    for (const QByteArray& part : variants) {
        const QString path = dir.filePath(QStringLiteral("taulukko%1.xlsx").arg(read.size()));
        ASSERT_TRUE(sheet_files::writeZip(
            path,
            {{"[Content_Types].xml",
              R"(<Types xmlns="http://schemas.openxmlformats.org/package/2006/content-types"/>)"},
             {"_rels/.rels",
              R"(<Relationships xmlns="http://schemas.openxmlformats.org/package/2006/relationships">)"
              R"(<Relationship Id="rId1" Type="http://schemas.openxmlformats.org/officeDocument/2006/relationships/officeDocument" Target="xl/workbook.xml"/></Relationships>)"},
             {"xl/workbook.xml",
              R"(<workbook xmlns="http://schemas.openxmlformats.org/spreadsheetml/2006/main" xmlns:r="http://schemas.openxmlformats.org/officeDocument/2006/relationships">)"
              R"(<sheets><sheet name="A" sheetId="1" r:id="rId1"/></sheets></workbook>)"},
             {"xl/_rels/workbook.xml.rels",
              R"(<Relationships xmlns="http://schemas.openxmlformats.org/package/2006/relationships">)"
              R"(<Relationship Id="rId1" Type="http://schemas.openxmlformats.org/officeDocument/2006/relationships/worksheet" Target="worksheets/sheet1.xml"/></Relationships>)"},
             {"xl/worksheets/sheet1.xml", part}}));
        std::vector<QStringList> rows;
        QString error;
        ASSERT_TRUE(lists::readFirstSheet(path, 2, rows, &error)) << error.toStdString();
        read.push_back(rows);
    }
    EXPECT_EQ(read[0], (std::vector<QStringList>{{"otsikko & muu", "2,5"}, {"", "alempi"}}));
    EXPECT_EQ(read[1], read[0]);
    EXPECT_EQ(read[2], read[0]);
}
