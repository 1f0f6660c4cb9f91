#include "PlatformFixtures.h"
#include "platform/CodePage.h"
#include "platform/ReadError.h"
#include "platform/Rtf.h"
#include "platform/SymbolFonts.h"
#include "platform/TextFile.h"

#include <QDir>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <functional>
#include <gtest/gtest.h>

using namespace platform;
using namespace platform_fixtures;

namespace {

// The character format at the first occurrence of `word` (inside it).
QTextCharFormat formatOf(const QTextDocument& doc, const QString& word) {
    const QTextCursor found = doc.find(word);
    EXPECT_FALSE(found.isNull()) << word.toStdString();
    QTextCursor c(const_cast<QTextDocument*>(&doc));
    c.setPosition(found.selectionStart() + 1);
    return c.charFormat();
}

QString familyOf(const QTextCharFormat& f) {
    return f.fontFamilies().toStringList().value(0);
}

QStringList paragraphs(const QTextDocument& doc) {
    QStringList out;
    for (QTextBlock b = doc.begin(); b.isValid(); b = b.next())
        out << b.text();
    return out;
}

// Selects the first occurrence of `word` in the document.
QTextCursor select(QTextDocument& doc, const QString& word) {
    QTextCursor c = doc.find(word);
    EXPECT_FALSE(c.isNull()) << word.toStdString();
    return c;
}

// A document in the "Default" style with one styled word in the middle of the first line.
void styledDocument(QTextDocument& doc, const QString& style) {
    loadPlainTextAsDefault(doc, QStringLiteral("Sillan tyyli tässä\r\nToinen kappale\tsarkain"));
    QTextCursor c = select(doc, QStringLiteral("tyyli"));
    ASSERT_TRUE(FormatRichText(c, style)) << style.toStdString();
}

QByteArray rewrite(const QByteArray& rtf) {
    QTextDocument doc;
    QString error;
    EXPECT_TRUE(ReadRtf(rtf, doc, &error)) << error.toStdString();
    return WriteRtf(doc);
}

} // namespace

TEST(Rtf, EveryStyleSurvivesWriteReadWriteByteForByte) {
    struct Case {
        const char* style;
        std::function<void(const QTextCharFormat&)> check;
    };
    const std::vector<Case> cases = {
        {"Default",
         [](const QTextCharFormat& f) {
             EXPECT_EQ(familyOf(f), "MS Sans Serif");
             EXPECT_EQ(f.fontPointSize(), 8);
             EXPECT_EQ(f.foreground().color(), QColor(Qt::black));
         }},
        {"Normal", [](const QTextCharFormat& f) { EXPECT_EQ(f.fontWeight(), QFont::Normal); }},
        {"Header1",
         [](const QTextCharFormat& f) {
             EXPECT_EQ(f.fontWeight(), QFont::Bold);
             EXPECT_EQ(f.fontPointSize(), 16);
         }},
        {"Header2",
         [](const QTextCharFormat& f) {
             EXPECT_EQ(f.fontWeight(), QFont::Bold);
             EXPECT_EQ(f.fontPointSize(), 12);
         }},
        {"Bold", [](const QTextCharFormat& f) { EXPECT_EQ(f.fontWeight(), QFont::Bold); }},
        {"Italic", [](const QTextCharFormat& f) { EXPECT_TRUE(f.fontItalic()); }},
        {"Underline", [](const QTextCharFormat& f) { EXPECT_TRUE(f.fontUnderline()); }},
        {"Superscript", [](const QTextCharFormat& f) { EXPECT_EQ(baselineOffsetHalfPoints(f), 16); }},
        {"Subscript", [](const QTextCharFormat& f) { EXPECT_EQ(baselineOffsetHalfPoints(f), 0); }},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.style);
        QTextDocument doc;
        styledDocument(doc, QString::fromLatin1(c.style));
        const QByteArray first = WriteRtf(doc);
        EXPECT_EQ(WriteRtf(doc), first); // the same document gives the same bytes
        QTextDocument back;
        ASSERT_TRUE(ReadRtf(first, back));
        EXPECT_EQ(paragraphs(back), (QStringList{"Sillan tyyli tässä", "Toinen kappale\tsarkain"}));
        c.check(formatOf(back, QStringLiteral("tyyli")));
        // The words around keep the "Default" style.
        EXPECT_EQ(formatOf(back, QStringLiteral("Sillan")).fontPointSize(), 8);
        EXPECT_EQ(WriteRtf(back), first);
    }
}

TEST(Rtf, WriterUsesCodePageEscapesUnicodeAndControlWords) {
    QTextDocument doc;
    loadPlainTextAsDefault(doc, QStringLiteral("Ä€ {x} \\ y\tz"));
    QTextCursor end(&doc);
    end.movePosition(QTextCursor::End);
    end.insertText(QString(QChar(0x2028)) + QStringLiteral("ā") + QString::fromUtf8("\xF0\x9F\x98\x80"));
    const QByteArray rtf = WriteRtf(doc);
    EXPECT_TRUE(rtf.startsWith("{\\rtf1\\ansi\\ansicpg1252\\deff0"));
    EXPECT_TRUE(rtf.contains("{\\fonttbl{\\f0\\fswiss\\fcharset0 MS Sans Serif;}}"));
    EXPECT_TRUE(rtf.contains("{\\colortbl ;\\red0\\green0\\blue0;}"));
    EXPECT_TRUE(
        rtf.contains("\\f0\\fs16\\cf1\\'c4\\'80 \\{x\\} \\\\ y\\tab z\\line\\u257?\\u-10179?\\u-8704?\\par"))
        << rtf.toStdString();
    EXPECT_TRUE(rtf.endsWith("}\r\n"));
    QTextDocument back;
    ASSERT_TRUE(ReadRtf(rtf, back));
    EXPECT_EQ(back.toRawText(), doc.toRawText());
}

TEST(Rtf, ParagraphAndCharacterFormatsRoundTrip) {
    QTextDocument doc;
    QTextCursor c(&doc);
    QTextBlockFormat centred;
    centred.setAlignment(Qt::AlignHCenter);
    c.setBlockFormat(centred);
    QTextCharFormat f;
    f.setFontFamilies(QStringList{QStringLiteral("Arial")});
    f.setFontPointSize(11);
    f.setForeground(QColor(200, 10, 20));
    f.setFontStrikeOut(true);
    c.insertText(QStringLiteral("punainen"), f);
    QTextBlockFormat indented;
    indented.setAlignment(Qt::AlignRight);
    indented.setLeftMargin(40);
    indented.setTextIndent(-20);
    c.insertBlock(indented);
    QTextCharFormat raised;
    raised.setFontFamilies(QStringList{QStringLiteral("Courier New")});
    raised.setFontPointSize(9.5);
    setBaselineOffsetHalfPoints(raised, 7);
    c.insertText(QStringLiteral("m2"), raised);
    QTextCharFormat lowered = raised;
    setBaselineOffsetHalfPoints(lowered, -5);
    c.insertText(QStringLiteral("x"), lowered);
    QTextBlockFormat justified;
    justified.setAlignment(Qt::AlignJustify);
    c.insertBlock(justified);
    c.insertBlock(QTextBlockFormat()); // an empty last paragraph is kept

    const QByteArray rtf = WriteRtf(doc);
    EXPECT_TRUE(rtf.contains("\\up7")) << rtf.toStdString();
    EXPECT_TRUE(rtf.contains("\\dn5"));
    EXPECT_TRUE(rtf.contains("\\pard\\qr\\li600\\fi-300"));
    QTextDocument back;
    ASSERT_TRUE(ReadRtf(rtf, back));
    EXPECT_EQ(paragraphs(back), (QStringList{"punainen", "m2x", "", ""}));
    EXPECT_EQ(back.begin().blockFormat().alignment(), Qt::AlignHCenter);
    const QTextBlockFormat second = back.begin().next().blockFormat();
    EXPECT_EQ(second.alignment(), Qt::AlignRight);
    EXPECT_EQ(second.leftMargin(), 40);
    EXPECT_EQ(second.textIndent(), -20);
    EXPECT_EQ(back.begin().next().next().blockFormat().alignment(), Qt::AlignJustify);
    const QTextCharFormat red = formatOf(back, QStringLiteral("punainen"));
    EXPECT_EQ(familyOf(red), "Arial");
    EXPECT_EQ(red.fontPointSize(), 11);
    EXPECT_EQ(red.foreground().color(), QColor(200, 10, 20));
    EXPECT_TRUE(red.fontStrikeOut());
    const QTextCharFormat m2 = formatOf(back, QStringLiteral("m2"));
    EXPECT_EQ(familyOf(m2), "Courier New");
    EXPECT_EQ(m2.fontPointSize(), 9.5);
    EXPECT_EQ(baselineOffsetHalfPoints(m2), 7);
    EXPECT_GT(m2.baselineOffset(), 0); // the editor shows it raised
    EXPECT_EQ(baselineOffsetHalfPoints(formatOf(back, QStringLiteral("x"))), -5);
    EXPECT_EQ(WriteRtf(back), rtf);
}

TEST(Rtf, ReadsLibreOfficeDocument) {
    QTextDocument doc;
    QString error;
    ASSERT_TRUE(ReadRtf(fixtureBytes(QStringLiteral("libreoffice.rtf")), doc, &error)) << error.toStdString();
    EXPECT_EQ(paragraphs(doc), (QStringList{"Rakennussuunnitelmaselostus",
                                            "Sillan lihavoitu ja kursivoitu sekä alleviivattu teksti.",
                                            "Punainen ja sininen; pinta-ala 25 m2.",
                                            "Littera\t7110 Äänekoski, Öljysäiliö, Åland poistettu"}));
    EXPECT_EQ(doc.begin().blockFormat().alignment(), Qt::AlignHCenter);
    const QTextCharFormat heading = formatOf(doc, QStringLiteral("Rakennus"));
    EXPECT_EQ(heading.fontWeight(), QFont::Bold);
    EXPECT_EQ(heading.fontPointSize(), 16);
    EXPECT_EQ(familyOf(heading), "Liberation Sans");
    EXPECT_EQ(formatOf(doc, QStringLiteral("Sillan")).fontPointSize(), 10);
    EXPECT_EQ(formatOf(doc, QStringLiteral("Sillan")).fontWeight(), QFont::Normal);
    EXPECT_EQ(formatOf(doc, QStringLiteral("lihavoitu")).fontWeight(), QFont::Bold);
    EXPECT_TRUE(formatOf(doc, QStringLiteral("kursivoitu")).fontItalic());
    EXPECT_TRUE(formatOf(doc, QStringLiteral("alleviivattu")).fontUnderline());
    EXPECT_FALSE(formatOf(doc, QStringLiteral("teksti")).fontUnderline());
    EXPECT_EQ(formatOf(doc, QStringLiteral("Punainen")).foreground().color(), QColor(255, 0, 0));
    EXPECT_EQ(formatOf(doc, QStringLiteral("sininen")).foreground().color(), QColor(0, 0, 255));
    EXPECT_EQ(formatOf(doc, QStringLiteral(" ja s")).foreground().style(), Qt::NoBrush); // automatic colour
    QTextCursor two = doc.find(QStringLiteral("m2"));
    two.setPosition(two.selectionEnd());
    EXPECT_EQ(baselineOffsetHalfPoints(two.charFormat()), 10); // \super: half of 10 points
    EXPECT_TRUE(formatOf(doc, QStringLiteral("poistettu")).fontStrikeOut());
    EXPECT_FALSE(formatOf(doc, QStringLiteral("Åland")).fontStrikeOut());

    const QByteArray ours = WriteRtf(doc);
    EXPECT_EQ(rewrite(ours), ours);
}

TEST(Rtf, CodePageBytesAndUnicodeEscapes) {
    QTextDocument doc;
    const QByteArray rtf = "{\\rtf1\\ansi{\\fonttbl{\\f0\\fnil Arial;}}\\f0 "
                           "\\'e4\\'80\\'96 \\u8364?\\u-10179?\\u-8704? \\uc2\\u1046xy|\\uc0\\u937 "
                           "{\\uc3\\u1044\\'41\\'42\\'43}|\\u960\\'3f\\~\\par}";
    ASSERT_TRUE(ReadRtf(rtf, doc));
    EXPECT_EQ(doc.begin().text(), QStringLiteral("ä€– €😀 Ж|ΩД|π?") + QChar(0xA0));
    EXPECT_EQ(paragraphs(doc).size(), 1);
}

TEST(Rtf, UnknownDestinationsAreSkipped) {
    QTextDocument doc;
    const QByteArray rtf =
        "{\\rtf1\\ansi\\deff0{\\fonttbl{\\f0 Arial{\\*\\panose 020b0604020202020204};}}"
        "{\\stylesheet{\\s0 Normal;}{\\s1 Otsikko;}}"
        "{\\info{\\title Piilotettu otsikko}{\\author Joku}}"
        "{\\*\\generator Kirjoitin 1.0;}{\\*\\tuntematon {sisempi} ryhma}"
        "\\pard alku {\\pict\\wmetafile8\\picw10 0a0b0c{\\*\\blipuid 1234}\\bin4 }{{}} loppu"
        "{\\field{\\*\\fldinst HYPERLINK \"http://x\"}{\\fldrslt linkki}}"
        "{\\header Ylatunniste\\par}{\\footnote Alaviite}"
        "{\\pntext\\'b7\\tab}kohta\\par}";
    QString error;
    ASSERT_TRUE(ReadRtf(rtf, doc, &error)) << error.toStdString();
    EXPECT_EQ(paragraphs(doc), (QStringList{QStringLiteral("alku  loppulinkki·\tkohta")}));
    EXPECT_EQ(familyOf(formatOf(doc, QStringLiteral("alku"))), "Arial");
}

TEST(Rtf, DamagedInputSaysWhereItStoppedAndLeavesTheDocument) {
    const struct {
        QByteArray rtf;
        qint64 offset; // not RTF: the first byte after leading blanks; cut short: the end
    } cases[] = {
        {fixtureBytes(QStringLiteral("damaged/truncated.rtf")), 1500},
        {"", 0},
        {"  tavallista tekstiä", 2},
        {"{\\rtf1 kesken\\", 14},
        {"{\\rtf1 \\bin999 ab}", 18},
        {"{\\rtf1 {\\b auki\\par}", 20},
        {"{\\rtf1 \\'4", 10},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.rtf.left(40).toStdString());
        QTextDocument doc;
        doc.setPlainText(QStringLiteral("ennallaan"));
        QString error;
        platform::ReadError where;
        EXPECT_FALSE(ReadRtf(c.rtf, doc, &error, &where));
        EXPECT_EQ(where.offset, c.offset);
        EXPECT_EQ(error, where.text() + '.');
        EXPECT_EQ(doc.toPlainText(), QStringLiteral("ennallaan"));
    }
}

TEST(Rtf, WhatFollowsTheClosingBraceIsNotPartOfTheDocument) {
    QTextDocument doc;
    ASSERT_TRUE(ReadRtf("{\\rtf1 valmis\\par}}} roskaa", doc));
    EXPECT_EQ(doc.toPlainText(), QStringLiteral("valmis"));
}

TEST(Rtf, MangledFilesNeverCrashTheReader) {
    const QByteArray original = fixtureBytes(QStringLiteral("libreoffice.rtf"));
    QRandomGenerator random(2006);
    int read = 0;
    for (int round = 0; round < 400; ++round) {
        QByteArray b = original;
        if (round % 2 == 0) b.truncate(random.bounded(static_cast<int>(b.size())));
        for (int k = random.bounded(1, 30); k > 0; --k) {
            const int at = random.bounded(static_cast<int>(b.size()) + 1);
            static const char alphabet[] = "{}\\'0123456789abuclnp*- \r\n";
            b.insert(at, alphabet[random.bounded(static_cast<int>(sizeof alphabet) - 1)]);
        }
        QTextDocument doc;
        if (ReadRtf(b, doc)) {
            ++read;
            EXPECT_EQ(rewrite(WriteRtf(doc)), WriteRtf(doc));
        }
    }
    EXPECT_GT(read, 0);
}

// Inputs the fuzzer found to read but not to write back the same: each must now be stable.
TEST(Rtf, FuzzedFilesThatReadWriteBackTheSame) {
    const QDir dir(fixture(QStringLiteral("fuzzed")));
    const QStringList names = dir.entryList({QStringLiteral("*.rtf")}, QDir::Files, QDir::Name);
    ASSERT_FALSE(names.isEmpty());
    for (const QString& name : names) {
        SCOPED_TRACE(name.toStdString());
        QTextDocument doc;
        ASSERT_TRUE(ReadRtf(fixtureBytes(QStringLiteral("fuzzed/") + name), doc));
        const QByteArray written = WriteRtf(doc);
        EXPECT_EQ(rewrite(written).toStdString(), written.toStdString());
    }
}

TEST(Rtf, FileNameChoosesRichOrPlainText) {
    EXPECT_TRUE(isRtfFileName(QStringLiteral("kuvaus.rtf")));
    EXPECT_TRUE(isRtfFileName(QStringLiteral("KUVAUS.Rtf")));
    EXPECT_FALSE(isRtfFileName(QStringLiteral("kuvaus.txt")));
    EXPECT_FALSE(isRtfFileName(QStringLiteral("rtf")));
    EXPECT_FALSE(isRtfFileName(QStringLiteral(".rtf")));

    QTemporaryDir dir;
    QTextDocument doc;
    loadPlainTextAsDefault(doc, QStringLiteral("Otsikko\r\nÄäkkönen ja ā\r\n"));
    QTextCursor c = select(doc, QStringLiteral("Otsikko"));
    FormatRichText(c, QStringLiteral("Header1"));
    QString error;
    for (const QString name :
         {QStringLiteral("kuvaus.rtf"), QStringLiteral("kuvaus.txt"), QStringLiteral("rtf")}) {
        SCOPED_TRACE(name.toStdString());
        const QString path = dir.filePath(name);
        ASSERT_TRUE(WriteRtfFile(doc, path, &error)) << error.toStdString();
        QByteArray bytes;
        ASSERT_TRUE(readFileBytes(path, bytes));
        QTextDocument back;
        ASSERT_TRUE(ReadRtfFile(back, path, &error)) << error.toStdString();
        if (name == QLatin1String("kuvaus.rtf")) {
            EXPECT_EQ(bytes, WriteRtf(doc));
            EXPECT_EQ(formatOf(back, QStringLiteral("Otsikko")).fontPointSize(), 16);
            EXPECT_EQ(paragraphs(back), (QStringList{"Otsikko", "Ääkkönen ja ā", ""}));
        } else {
            EXPECT_EQ(bytes, QByteArray("Otsikko\r\n\xC4\xE4kk\xF6nen ja ?\r\n"));
            // Plain text comes back in the "Default" style, whatever it had before.
            const QTextCharFormat f = formatOf(back, QStringLiteral("Otsikko"));
            EXPECT_EQ(familyOf(f), "MS Sans Serif");
            EXPECT_EQ(f.fontPointSize(), 8);
            EXPECT_EQ(f.fontWeight(), QFont::Normal);
            EXPECT_EQ(f.foreground().color(), QColor(Qt::black));
            EXPECT_EQ(paragraphs(back), (QStringList{"Otsikko", "Ääkkönen ja ?", ""}));
        }
    }
}

// A rich-text name over text that is not RTF is refused, and the box keeps its text; so are a
// missing file and a folder that does not exist.
TEST(Rtf, AFileThatIsNotRichTextIsRefusedAndTheBoxKeepsItsText) {
    QTemporaryDir dir;
    QString error;
    const QString fake = dir.filePath(QStringLiteral("vale.rtf"));
    ASSERT_TRUE(writeFileAtomically(fake, "ei rtf:aa"));
    QTextDocument kept;
    kept.setPlainText(QStringLiteral("vanha"));
    EXPECT_FALSE(ReadRtfFile(kept, fake, &error));
    EXPECT_TRUE(error.contains(QStringLiteral("vale.rtf"))) << error.toStdString();
    EXPECT_EQ(kept.toPlainText(), QStringLiteral("vanha"));
    EXPECT_FALSE(ReadRtfFile(kept, dir.filePath(QStringLiteral("puuttuu.rtf")), &error));
    EXPECT_FALSE(WriteRtfFile(kept, dir.filePath(QStringLiteral("ei/ole/kansiota.rtf")), &error));
}

TEST(Rtf, StylesActOnTheSelectionAsTheEditorMenuDoes) {
    QTextDocument doc;
    loadPlainTextAsDefault(doc, QStringLiteral("alku keski loppu"));
    QTextCursor c = select(doc, QStringLiteral("keski"));
    FormatRichText(c, QStringLiteral("Header1"));
    EXPECT_EQ(formatOf(doc, QStringLiteral("keski")).fontWeight(), QFont::Bold);
    EXPECT_EQ(formatOf(doc, QStringLiteral("keski")).fontPointSize(), 16);
    FormatRichText(c, QStringLiteral("Normal"));
    QTextCharFormat f = formatOf(doc, QStringLiteral("keski"));
    EXPECT_EQ(f.fontPointSize(), 8);
    EXPECT_EQ(f.fontWeight(), QFont::Normal);
    EXPECT_EQ(f.foreground().color(), QColor(Qt::black));

    EXPECT_FALSE(FormatRichText(c, QStringLiteral("Custom")));
    QFont chosen(QStringLiteral("Courier New"), 14);
    chosen.setItalic(true);
    chosen.setStrikeOut(true);
    applyCustomStyle(c, chosen, QColor(0, 128, 0));
    f = formatOf(doc, QStringLiteral("keski"));
    EXPECT_EQ(familyOf(f), "Courier New");
    EXPECT_EQ(f.fontPointSize(), 14);
    EXPECT_TRUE(f.fontItalic());
    EXPECT_TRUE(f.fontStrikeOut());
    EXPECT_EQ(f.foreground().color(), QColor(0, 128, 0));
}

// Superscript on 10-point text raises it by its own height, 200 twips; subscript puts it back.
TEST(Rtf, SuperscriptRaisesTheTextByItsOwnHeightAndSubscriptPutsItBack) {
    QTextDocument doc;
    loadPlainTextAsDefault(doc, QStringLiteral("alku keski loppu"));
    QTextCursor c = select(doc, QStringLiteral("keski"));
    QTextCharFormat ten;
    ten.setFontPointSize(10);
    c.mergeCharFormat(ten);
    FormatRichText(c, QStringLiteral("Superscript"));
    EXPECT_EQ(baselineOffsetHalfPoints(formatOf(doc, QStringLiteral("keski"))) * 10, 200);
    EXPECT_TRUE(WriteRtf(doc).contains("\\up20 keski"));
    EXPECT_EQ(baselineOffsetHalfPoints(formatOf(doc, QStringLiteral("alku"))), 0);
    FormatRichText(c, QStringLiteral("Subscript"));
    EXPECT_EQ(baselineOffsetHalfPoints(formatOf(doc, QStringLiteral("keski"))), 0);
    EXPECT_FALSE(WriteRtf(doc).contains("\\up"));
}

TEST(Rtf, WithoutASelectionTheStyleGoesToWhatIsTypedNext) {
    QTextDocument doc;
    loadPlainTextAsDefault(doc, QStringLiteral("alku keski loppu"));
    QTextCursor at(&doc);
    at.movePosition(QTextCursor::End);
    FormatRichText(at, QStringLiteral("Bold"));
    at.insertText(QStringLiteral(" lisätty"));
    EXPECT_EQ(formatOf(doc, QStringLiteral("lisätty")).fontWeight(), QFont::Bold);
    EXPECT_EQ(formatOf(doc, QStringLiteral("loppu")).fontWeight(), QFont::Normal);
}

// Documents from Polish, Russian or Japanese word processors were read as Windows-1252: the
// document's \ansicpg and each font's \fcharset or \cpg now decide how the bytes read.
TEST(RtfRegression, TextIsDecodedInTheCodePageOfItsFontOrDocument) {
    struct Case {
        QByteArray rtf;
        QString text;
    };
    const std::vector<Case> cases = {
        // The document's code page, through an ANSI font.
        {"{\\rtf1\\ansi\\ansicpg1250\\deff0{\\fonttbl{\\f0\\fcharset0 Arial;}}\\f0 \\'a3\\'f3d\\'9f\\par}",
         QStringLiteral("Łódź")},
        // A Cyrillic font in a Western document, and back to the Western font in the same line.
        {"{\\rtf1\\ansi\\ansicpg1252{\\fonttbl{\\f0 Arial;}{\\f1\\fcharset204 Times;}}"
         "\\f1 \\'cf\\'f0\\'e8\\'e2\\'e5\\'f2 \\f0 caf\\'e9\\par}",
         QStringLiteral("Привет café")},
        // Two bytes a character in Shift-JIS, also split by a group boundary-free run.
        {"{\\rtf1\\ansi\\ansicpg1252{\\fonttbl{\\f0\\fcharset128 MS Mincho;}}\\f0 \\'93\\'fa\\'96\\'7b\\par}",
         QStringLiteral("日本")},
        // \cpg of a font wins over its character set; \uN keeps its own character.
        {"{\\rtf1\\ansi{\\fonttbl{\\f0\\fcharset0\\cpg1253 Arial;}}\\f0 \\'e1\\u946\\'e2\\par}",
         QStringLiteral("αβ")},
    };
    for (const Case& c : cases) {
        QTextDocument doc;
        QString error;
        ASSERT_TRUE(ReadRtf(c.rtf, doc, &error)) << error.toStdString();
        EXPECT_EQ(doc.toPlainText(), c.text) << c.rtf.toStdString();
    }
    // A Cyrillic font name comes through as well.
    QTextDocument doc;
    ASSERT_TRUE(
        ReadRtf("{\\rtf1\\ansi{\\fonttbl{\\f0\\fcharset204 \\'c0\\'f0\\'e8\\'e0\\'eb;}}\\f0 x\\par}", doc));
    EXPECT_EQ(familyOf(formatOf(doc, QStringLiteral("x"))), QStringLiteral("Ариал"));
}

namespace {

QStringList readRtfParagraphs(const QString& name) {
    QTextDocument doc;
    QString error;
    EXPECT_TRUE(ReadRtf(fixtureBytes(name), doc, &error)) << error.toStdString();
    // What reads must write and read back the same, as the fuzzer checks.
    const QByteArray written = WriteRtf(doc);
    EXPECT_EQ(rewrite(written).toStdString(), written.toStdString()) << name.toStdString();
    return paragraphs(doc);
}

// The lines of LibreOffice's text of a test file (`soffice --convert-to txt:Text`: UTF-8 with a
// byte-order mark, LF line ends).
QStringList libreOfficeLines(const QString& name) {
    QString text = QString::fromUtf8(fixtureBytes(name));
    if (text.startsWith(QChar(0xFEFF))) text.remove(0, 1);
    QStringList lines = text.split(QLatin1Char('\n'));
    while (!lines.isEmpty() && lines.last().isEmpty())
        lines.removeLast();
    return lines;
}

} // namespace

// Bullets and signs of the Symbol and Wingdings fonts came out as "·", other Windows-1252 letters
// or private-use characters: the font's codes (bytes in a font of character set 2, or \u in
// U+F020..U+F0FF) are now the characters the font shows, in lists too where LibreOffice leaves
// the label's font out and only the list table names it. (LibreOffice's own text keeps the
// private-use characters, and writes every bullet as "•".)
TEST(RtfRegression, SymbolAndWingdingsCodesBecomeTheirCharacters) {
    EXPECT_EQ(readRtfParagraphs(QStringLiteral("symbol-fonts.rtf")),
              (QStringList{QStringLiteral(" •\tSillan kansi"), QStringLiteral(" •\tMaatuet"),
                           QStringLiteral(" ➢\tNuolikohta"), QStringLiteral("Kulma αβγ ≥ ±°∅ = 30°"),
                           QStringLiteral("Tarkastettu ✔✘▪●■➔☎✉")}));
    // As Word writes them: labels in their own fonts, codes as bytes; an unknown symbol font
    // keeps Windows' private-use characters, so nothing is lost.
    EXPECT_EQ(readRtfParagraphs(QStringLiteral("symbol-fonts-word.rtf")),
              (QStringList{QStringLiteral("Rakenneosat:"), QStringLiteral("•\tKansi ja reunapalkit"),
                           QStringLiteral("•\tMaatuet"), QStringLiteral("➢\tTarkastus"),
                           QStringLiteral("✔\tHyväksytty"), QStringLiteral("Kaava: α = ∂s/∂t ≥ 0°, β∅"),
                           QStringLiteral("Merkit: ● ■ ❑ ❖ ▪ ✔ ✘ ☑ ☎ ✉ ➔"),
                           QStringLiteral("Tuntematon: ") + QChar(0xF061)}));
    // The characters show in the text font, which has them; codes without a character keep the
    // symbol font, where a system that has it shows them.
    {
        QTextDocument word;
        ASSERT_TRUE(ReadRtf(fixtureBytes(QStringLiteral("symbol-fonts-word.rtf")), word));
        EXPECT_EQ(familyOf(formatOf(word, QStringLiteral("α"))), "Arial");
        EXPECT_EQ(familyOf(formatOf(word, QStringLiteral("✔ ✘"))), "Arial");
        EXPECT_EQ(familyOf(formatOf(word, QString(QChar(0xF061)))), "Webdings");
    }
    // The tables: Symbol's Greek, operators and bracket pieces; Wingdings' numbers in circles.
    EXPECT_EQ(symbolFontCharacter(SymbolFont::Symbol, 0x57), u'Ω');
    EXPECT_EQ(symbolFontCharacter(SymbolFont::Symbol, 0xF0E5), u'∑');
    EXPECT_EQ(symbolFontCharacter(SymbolFont::Symbol, 0xE6), u'⎛');
    EXPECT_EQ(symbolFontCharacter(SymbolFont::Symbol, 0xA0), u'€');
    EXPECT_EQ(symbolFontCharacter(SymbolFont::Symbol, 0xF0), 0);
    EXPECT_EQ(symbolFontCharacter(SymbolFont::Wingdings, 0x81), u'①');
    EXPECT_EQ(symbolFontCharacter(SymbolFont::Wingdings, 0x8C), u'❶');
    EXPECT_EQ(symbolFontCharacter(SymbolFont::Wingdings, 0x30), 0); // a folder: beyond the BMP
    EXPECT_EQ(symbolFontNamed(QStringLiteral(" wingdings ")), SymbolFont::Wingdings);
    EXPECT_EQ(symbolFontNamed(QStringLiteral("Wingdings 2")), SymbolFont::None);
    // A \u code in a font that is neither a symbol font nor a list label is left as it is.
    QTextDocument doc;
    ASSERT_TRUE(ReadRtf(
        "{\\rtf1\\ansi{\\fonttbl{\\f0 Arial;}{\\f1 Symbol;}}\\f0 \\u61623?{\\f1 \\u61623?}\\par}", doc));
    EXPECT_EQ(doc.toPlainText(), QString(QChar(0xF0B7)) + QStringLiteral("•"));
    // A font the table does not name shows in the default font and reads as that font, so the
    // text writes back to what it read.
    const QByteArray unnamed =
        "{\\rtf1\\ansi\\deff1{\\fonttbl{\\f0 Arial;}{\\f1 Symbol;}}\\f5 \\u61623?\\par}";
    ASSERT_TRUE(ReadRtf(unnamed, doc));
    EXPECT_EQ(doc.toPlainText(), QStringLiteral("•"));
    EXPECT_EQ(rewrite(WriteRtf(doc)), WriteRtf(doc));
}

// A table in a table cell (\itap2, \nestcell, \nesttableprops with \nestrow, and \nonesttables
// for readers without nested tables): its cells ran together with the next cell's text. Every
// cell now keeps its text, in LibreOffice's order; cells of a row are separated by tabs.
TEST(RtfRegression, NestedTableCellsKeepTheirTextInReadingOrder) {
    const QStringList ours = readRtfParagraphs(QStringLiteral("nested-table.rtf"));
    EXPECT_EQ(ours, (QStringList{QStringLiteral("Ennen taulukkoa"), QStringLiteral("A1 ulompi\tB1 ennen"),
                                 QStringLiteral("Sisä 1\tSisä 2"), QStringLiteral("Sisä 3\tSisä 4"),
                                 QStringLiteral("toinen kappale"), QStringLiteral("B1 jälkeen"),
                                 QStringLiteral("A2\tB2"), QStringLiteral("Taulukon jälkeen")}));
    // LibreOffice writes each cell on a line of its own: the same texts in the same order.
    EXPECT_EQ(ours.join(QLatin1Char('\t')).split(QLatin1Char('\t')),
              libreOfficeLines(QStringLiteral("nested-table.libreoffice.txt")));
    // Empty cells keep their places.
    QTextDocument doc;
    ASSERT_TRUE(
        ReadRtf("{\\rtf1 \\trowd\\cellx100\\cellx200\\cellx300\\intbl \\cell\\cell x\\cell\\row}", doc));
    EXPECT_EQ(doc.toPlainText(), QStringLiteral("\t\tx"));
}

// Shift-JIS, GBK, Big5 and Korean text came out garbled where the bytes of a character did not
// come as two plain \'hh escapes: a trail byte written as an escaped \ or {, a \uN whose fallback
// of one character is two bytes, and the Mac Japanese code page, which was not known at all.
TEST(RtfRegression, DoubleByteCharactersAreDecodedFromBothBytes) {
    const QStringList ours = readRtfParagraphs(QStringLiteral("double-byte.rtf"));
    QStringList expected = libreOfficeLines(QStringLiteral("double-byte.libreoffice.txt"));
    ASSERT_EQ(expected.size(), 10);
    // Where LibreOffice garbles the text itself, the text the file was written from.
    expected[2] = QStringLiteral("橋の表面ソフト能力アイウ日本"); // trail bytes \ and { escaped
    expected[3] = QStringLiteral("日本");                         // \uc1 with a two-byte fallback
    expected[7] = QStringLiteral("許功蓋橋樑");                   // Big5 trail bytes \ escaped
    EXPECT_EQ(ours, expected);

    // A Macintosh document names its code page with \mac; a Japanese font there is Apple's.
    QTextDocument doc;
    ASSERT_TRUE(ReadRtf("{\\rtf1\\mac\\ansicpg10001{\\fonttbl{\\f0\\fcharset128 Osaka;}}\\f0 "
                        "\\'82\\'a0\\'80\\'a0\\'fd\\'85\\'a0\\'eb\\'41\\par}",
                        doc));
    EXPECT_EQ(doc.begin().text(), QStringLiteral("あ\\") + QChar(0xA0) + QStringLiteral("©Ⅱ、"));
    ASSERT_TRUE(ReadRtf("{\\rtf1\\mac{\\fonttbl{\\f0 Geneva;}}\\f0 caf\\'8e\\par}", doc));
    EXPECT_EQ(doc.toPlainText(), QStringLiteral("café"));
    // A pair the code page does not hold is one replacement character, not two.
    EXPECT_EQ(decodeCodePage(QByteArray("\x82\x5c"
                                        "a",
                                        3),
                             932),
              QStringLiteral("\uFFFDa"));
}

// Footnote references (\chftn) were left out of the text. The number is written where the note is
// anchored, in the anchor's format, counting footnotes and endnotes each on their own and in the
// numbering the document names; a note with a mark of its own keeps its mark and takes no number.
TEST(RtfRegression, FootnoteReferencesAreNumberedWhereAnchored) {
    EXPECT_EQ(readRtfParagraphs(QStringLiteral("footnotes.rtf")),
              libreOfficeLines(QStringLiteral("footnotes.libreoffice.txt")));

    QTextDocument doc;
    ASSERT_TRUE(
        ReadRtf("{\\rtf1\\ansi\\deff0{\\fonttbl{\\f0 Arial;}}\\ftnnalc\\ftnstart3\\fs20 "
                "Silta{\\cs17\\super \\chftn}{\\footnote \\pard{\\cs17\\super \\chftn} Ensimm\\'e4inen.} "
                "ja kansi*{\\footnote * Oma merkki.} "
                "sek\\'e4 tuki{\\super\\chftn}{\\*\\footnote\\ftnalt \\chftn Loppuviite.}"
                "{\\super\\chftn}{\\*\\footnote\\ftnalt \\chftn Toinen.}"
                " ja palkki{\\super\\chftn}{\\footnote \\chftn Toinen alaviite.}.\\par}",
                doc));
    EXPECT_EQ(doc.toPlainText(), QStringLiteral("Siltac ja kansi* sekä tukiiii ja palkkid."));
    QTextCursor c = doc.find(QStringLiteral("Siltac"));
    c.setPosition(c.selectionEnd());
    EXPECT_EQ(baselineOffsetHalfPoints(c.charFormat()), 10); // raised as the anchor is
}
