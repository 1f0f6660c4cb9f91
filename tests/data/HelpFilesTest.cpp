// The help that ships with the program: the menu of separate help files ("HelpFiles.txt") and
// the HTML user's guide, which the help window opens at a topic's anchor.
#include "ShippedData.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSet>
#include <QStringDecoder>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextFragment>
#include <QTextDocumentFragment>
#include <gtest/gtest.h>

namespace {

struct Links {
    QSet<QString> anchors; // <a name="...">
    QStringList internal;  // href="#..." targets
};

// Parses a page with the same rich-text engine as the help window, so an anchor counts only
// when the window can scroll to it.
Links linksOf(const QString& html) {
    QTextDocument document;
    document.setHtml(html);
    Links links;
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        for (auto it = block.begin(); !it.atEnd(); ++it) {
            const QTextCharFormat format = it.fragment().charFormat();
            for (const QString& name : format.anchorNames())
                links.anchors.insert(name);
            const QString href = format.anchorHref();
            if (href.startsWith(QLatin1Char('#'))) links.internal.append(href.mid(1));
        }
    }
    return links;
}

// Help pages are UTF-8; a decoding error means a page was saved in another code page.
bool decodeUtf8(const QByteArray& bytes, QString& text) {
    QStringDecoder decoder(QStringDecoder::Utf8);
    text = decoder.decode(bytes);
    return !decoder.hasError();
}

QStringList helpPages() {
    return QDir(testing_support::dataDir()).entryList({QStringLiteral("*.html")}, QDir::Files, QDir::Name);
}

} // namespace

TEST(HelpFiles, EveryMenuLineHasACaptionAndAReachableTarget) {
    const QStringList lines = shipped::lines(QStringLiteral("HelpFiles.txt"));
    ASSERT_GE(lines.size(), 2);
    EXPECT_LE(lines.size(), 20) << "the menu has twenty items";
    for (const QString& line : lines) {
        const std::string at = line.toStdString();
        const QStringList fields = line.split(QLatin1Char(';'));
        ASSERT_EQ(fields.size(), 2) << at;
        EXPECT_FALSE(fields.at(0).trimmed().isEmpty()) << at;
        const QString target = fields.at(1).trimmed();
        ASSERT_FALSE(target.isEmpty()) << at;
        if (target.contains(QStringLiteral("://"))) {
            EXPECT_TRUE(target.startsWith(QStringLiteral("https://")) ||
                        target.startsWith(QStringLiteral("http://")))
                << at;
            continue;
        }
        // Any other target is a file in the program's folder.
        EXPECT_FALSE(target.contains(QLatin1Char('/')) || target.contains(QLatin1Char('\\'))) << at;
        const QFileInfo file(testing_support::dataDir() + target);
        EXPECT_TRUE(file.isFile()) << at << ": no such file in data/";
        if (file.suffix().compare(QStringLiteral("html"), Qt::CaseInsensitive) == 0) {
            QString html;
            ASSERT_TRUE(decodeUtf8(shipped::bytes(target), html)) << at;
            QTextDocument page;
            page.setHtml(html);
            EXPECT_FALSE(page.metaInformation(QTextDocument::DocumentTitle).isEmpty()) << at;
            EXPECT_GT(page.toPlainText().size(), 500) << at;
        }
    }
}

TEST(HelpFiles, UserGuideHasTheTopicsTheProgramOpens) {
    QString html;
    ASSERT_TRUE(decodeUtf8(shipped::bytes(QStringLiteral("Tamrik2006.html")), html));
    const Links links = linksOf(html);
    // 200: the guide itself; 2100 settings; 2200 lists; 2300 e-mail; 2400 printing; 340
    // recovery copies, 350 one program and the project locks, 360 the command line, 370 the
    // project check and 380 the comparison with another version (their windows' F1).
    for (const char* topic : {"topic200", "topic2100", "topic2200", "topic2300", "topic2400", "topic340",
                              "topic350", "topic360", "topic370", "topic380"})
        EXPECT_TRUE(links.anchors.contains(QLatin1String(topic))) << topic;
    const QString plain = QTextDocumentFragment::fromHtml(html).toPlainText();
    for (const char* words :
         {"palautuskopio", "SIGTERM", "lukitustiedosto", "tuntematon komento",
          "Palauta ohjelman mukana tullut luettelo", "odottaa avaamista",
          "Näytä → Tarkista projekti (Ctrl+T)", "tamrik validate", "Tiedosto → Vertaa projektia...",
          "Muutosvertailu", "tamrik compare VANHA.sl", "kysyy ennen siirtymistä"})
        EXPECT_TRUE(plain.contains(QString::fromUtf8(words), Qt::CaseInsensitive)) << words;
    EXPECT_FALSE(links.internal.isEmpty()) << "the guide opens with a table of contents";
    for (const QString& target : links.internal)
        EXPECT_TRUE(links.anchors.contains(target)) << "dead link #" << target.toStdString();
}

TEST(HelpFiles, HelpPagesAreUtf8WithCrLfAndUseOnlyRichText) {
    const QStringList pages = helpPages();
    ASSERT_TRUE(pages.contains(QStringLiteral("Tamrik2006.html")));
    for (const QString& name : pages) {
        const std::string at = name.toStdString();
        const QByteArray bytes = shipped::bytes(name);
        QString html;
        EXPECT_TRUE(decodeUtf8(bytes, html)) << at;
        EXPECT_TRUE(html.contains(QStringLiteral("<meta charset=\"utf-8\">"), Qt::CaseInsensitive)) << at;
        EXPECT_EQ(bytes.count('\n'), bytes.count("\r\n")) << at << ": every line ends with CR LF";
        EXPECT_TRUE(bytes.endsWith("\r\n")) << at;
        // The help window shows Qt's rich text: no scripts, no style sheets.
        EXPECT_FALSE(html.contains(QStringLiteral("<script"), Qt::CaseInsensitive)) << at;
        EXPECT_FALSE(html.contains(QStringLiteral("<style"), Qt::CaseInsensitive)) << at;
        // Menu texts are quoted as the user sees them, without accelerator markers.
        static const QRegularExpression accelerator(QStringLiteral("&[A-Za-zÅÄÖåäö][^;\\s<]*(?=[\\s<])"));
        EXPECT_FALSE(accelerator.match(html).hasMatch())
            << at << ": " << accelerator.match(html).captured().toStdString();
    }
}
