// What a PDF carries besides its pages, read back with qpdf: the outline (bookmarks) of every
// document and work phase at the pages pdftotext finds them on, the document properties, and
// the archival PDF/A-1b of --pdfa checked against the rules of the standard that a file of ours
// could break. A failed write leaves no file; a run drawn on two threads makes the file one makes;
// the caller hears of the run until the file is written and can cancel it to the end.
#include "common/TestSupport.h"
#include "print/OtherThreads.h"
#include "print/PdfOutput.h"
#include "print/PdfSupport.h"
#include "print/PrintFixtures.h"

#include <QDir>
#include <QFile>
#include <QImage>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTimeZone>
#include <algorithm>
#include <atomic>
#include <chrono>
#include <thread>
#include <gtest/gtest.h>
#include <map>
#include <qpdf/QPDF.hh>
#include <qpdf/QPDFJob.hh>
#include <qpdf/QPDFLogger.hh>
#include <qpdf/QPDFOutlineDocumentHelper.hh>
#include <sstream>

using print_test::entry;
using print_test::TestProject;

namespace {

// `tamrik print` with the given arguments after the project; the exit status.
int tamrikPrint(const QString& project, const QStringList& args, QString* err = nullptr) {
    int status = -1;
    print_test::runProgram(testing_support::binaryDir() + QStringLiteral("/tamrik"),
                           QStringList{QStringLiteral("print"), project} + args, &status, err);
    return status;
}

// The text of every page (index 0 is page 1), as pdftotext reads it.
QStringList pageTexts(const QString& file) {
    QStringList pages = print_test::runProgram(QStringLiteral("pdftotext"),
                                               {QStringLiteral("-layout"), file, QStringLiteral("-")})
                            .split(QLatin1Char('\f'));
    if (!pages.isEmpty() && pages.last().trimmed().isEmpty()) pages.removeLast();
    // Money is grouped with no-break spaces.
    for (QString& p : pages)
        p.replace(QChar(0x00A0), QLatin1Char(' '));
    return pages;
}

struct Mark {
    QString title;
    int page = 0;
    int count = 0;
    std::vector<Mark> kids;
};

std::vector<Mark> marksOf(std::vector<QPDFOutlineObjectHelper> items,
                          const std::map<QPDFObjGen, int>& pages) {
    std::vector<Mark> out;
    for (QPDFOutlineObjectHelper& item : items) {
        Mark m;
        m.title = QString::fromStdString(item.getTitle());
        const auto it = pages.find(item.getDestPage().getObjGen());
        m.page = it == pages.end() ? 0 : it->second;
        m.count = item.getCount();
        m.kids = marksOf(item.getKids(), pages);
        out.push_back(std::move(m));
    }
    return out;
}

// The outline of a PDF file, with the pages its items go to (1-based; 0 for none).
std::vector<Mark> readOutline(const QString& file) {
    QPDF pdf;
    pdf.processFile(file.toLocal8Bit().constData());
    std::map<QPDFObjGen, int> pages;
    const std::vector<QPDFObjectHandle>& all = pdf.getAllPages();
    for (std::size_t i = 0; i < all.size(); ++i)
        pages[all[i].getObjGen()] = static_cast<int>(i) + 1;
    QPDFOutlineDocumentHelper outlines(pdf);
    return marksOf(outlines.getTopLevelOutlines(), pages);
}

// The document information and the XMP packet of a PDF file.
struct Properties {
    std::map<std::string, QString> info;
    QString xmp;
    bool xmpFiltered = false;
};

Properties readProperties(const QString& file) {
    QPDF pdf;
    pdf.processFile(file.toLocal8Bit().constData());
    Properties p;
    QPDFObjectHandle info = pdf.getTrailer().getKey("/Info");
    if (info.isDictionary())
        for (const std::string& key : info.getKeys())
            p.info[key] = QString::fromStdString(info.getKey(key).getUTF8Value());
    QPDFObjectHandle metadata = pdf.getRoot().getKey("/Metadata");
    if (metadata.isStream()) {
        p.xmpFiltered = metadata.getDict().hasKey("/Filter");
        const auto data = metadata.getRawStreamData();
        p.xmp = QString::fromUtf8(reinterpret_cast<const char*>(data->getBuffer()),
                                  static_cast<qsizetype>(data->getSize()));
    }
    return p;
}

// The first page from `from` on whose text `text` stands; 0 when none.
int firstPageWith(const QStringList& pages, const QString& text, int from = 1) {
    for (int p = from; p <= pages.size(); ++p)
        if (pages[p - 1].contains(text)) return p;
    return 0;
}

// The first page from `from` on where a caption line starts with `littera` and the first word
// of `text` (a long caption wraps in its column); 0 when none.
int firstPageWithCaption(const QStringList& pages, const QString& littera, const QString& text, int from) {
    const QRegularExpression line(QStringLiteral("(^|\n)") + QRegularExpression::escape(littera) +
                                  QStringLiteral(":?\\s+") +
                                  QRegularExpression::escape(text.section(QLatin1Char(' '), 0, 0)));
    for (int p = from; p <= pages.size(); ++p)
        if (line.match(pages[p - 1]).hasMatch()) return p;
    return 0;
}

// What qpdf's own check says of a file: empty when it finds nothing wrong.
QString qpdfCheck(const QString& file) {
    std::ostringstream out, err;
    QPDFJob job;
    auto logger = QPDFLogger::create();
    logger->setOutputStreams(&out, &err);
    job.setLogger(logger);
    job.config()->inputFile(file.toStdString())->check()->checkConfiguration();
    job.run();
    return job.getExitCode() == 0 ? QString() : QString::fromStdString(out.str() + err.str());
}

// The rules of PDF/A-1b that a file of ours could break, each fault in words: PDF 1.4 with a
// binary header comment and a file identifier, no encryption, the XMP unfiltered and naming
// part 1 conformance B, an output intent with its colour profile, every font embedded with
// its CID set, no transparency, no LZW, no JavaScript, no embedded files.
QStringList archivalFaults(const QString& file) {
    QStringList faults;
    QFile f(file);
    if (!f.open(QIODevice::ReadOnly)) return {QStringLiteral("no file")};
    const QByteArray head = f.read(32);
    const int eol = head.indexOf('\n');
    if (!head.startsWith("%PDF-1.4") || eol < 0 || head.size() < eol + 6 || head[eol + 1] != '%')
        faults << QStringLiteral("header");
    else
        for (int i = eol + 2; i < eol + 6; ++i)
            if (static_cast<unsigned char>(head[i]) < 128) faults << QStringLiteral("binary comment");
    QPDF pdf;
    pdf.processFile(file.toLocal8Bit().constData());
    QPDFObjectHandle trailer = pdf.getTrailer();
    if (!trailer.getKey("/ID").isArray() || trailer.getKey("/ID").getArrayNItems() != 2)
        faults << QStringLiteral("file identifier");
    if (trailer.hasKey("/Encrypt")) faults << QStringLiteral("encrypted");
    QPDFObjectHandle root = pdf.getRoot();
    const Properties props = readProperties(file);
    if (props.xmp.isEmpty()) faults << QStringLiteral("no XMP");
    if (props.xmpFiltered) faults << QStringLiteral("XMP filtered");
    if (!props.xmp.contains(QStringLiteral("<pdfaid:part>1</pdfaid:part>")) ||
        !props.xmp.contains(QStringLiteral("<pdfaid:conformance>B</pdfaid:conformance>")))
        faults << QStringLiteral("no PDF/A identification");
    bool intent = false;
    QPDFObjectHandle intents = root.getKey("/OutputIntents");
    for (int i = 0; intents.isArray() && i < intents.getArrayNItems(); ++i) {
        QPDFObjectHandle oi = intents.getArrayItem(i);
        intent = intent || (oi.getKey("/S").isNameAndEquals("/GTS_PDFA1") &&
                            oi.getKey("/DestOutputProfile").isStream());
    }
    if (!intent) faults << QStringLiteral("no output intent");
    QPDFObjectHandle names = root.getKey("/Names");
    if (root.hasKey("/AA") ||
        (names.isDictionary() && (names.hasKey("/JavaScript") || names.hasKey("/EmbeddedFiles"))))
        faults << QStringLiteral("actions or embedded files");
    for (QPDFObjectHandle o : pdf.getAllObjects()) {
        QPDFObjectHandle d = o.isStream() ? o.getDict() : o;
        if (!d.isDictionary()) continue;
        const QString id = QString::fromStdString(o.getObjGen().unparse(' '));
        if (d.hasKey("/SMask") && !d.getKey("/SMask").isNameAndEquals("/None"))
            faults << QStringLiteral("soft mask in ") + id;
        if (d.getKey("/Group").isDictionary() &&
            d.getKey("/Group").getKey("/S").isNameAndEquals("/Transparency"))
            faults << QStringLiteral("transparency group in ") + id;
        for (const char* alpha : {"/CA", "/ca"})
            if (d.hasKey(alpha) && d.getKey(alpha).getNumericValue() != 1.0)
                faults << QStringLiteral("transparency in ") + id;
        if (d.getKey("/Filter").isNameAndEquals("/LZWDecode")) faults << QStringLiteral("LZW in ") + id;
        if (d.getKey("/S").isNameAndEquals("/JavaScript")) faults << QStringLiteral("JavaScript in ") + id;
        if (d.isDictionaryOfType("/FontDescriptor")) {
            if (!d.hasKey("/FontFile") && !d.hasKey("/FontFile2") && !d.hasKey("/FontFile3"))
                faults << QStringLiteral("font not embedded: ") + id;
        }
        if (d.isDictionaryOfType("/Font") &&
            (d.getKey("/Subtype").isNameAndEquals("/CIDFontType2") ||
             d.getKey("/Subtype").isNameAndEquals("/CIDFontType0")) &&
            !d.getKey("/FontDescriptor").getKey("/CIDSet").isStream())
            faults << QStringLiteral("no CID set: ") + id;
    }
    return faults;
}

} // namespace

TEST(PdfOutline, TheSampleHasABookmarkForEveryDocumentWorkPhaseAndSummary) {
    QTemporaryDir dir;
    const QString out = dir.filePath(QStringLiteral("esimerkki.pdf"));
    QString err;
    ASSERT_EQ(tamrikPrint(print_test::sampleProject(), {QStringLiteral("--pdf"), out}, &err), 0)
        << err.toStdString();
    const QStringList pages = pageTexts(out);
    const std::vector<Mark> outline = readOutline(out);

    // The documents, named as their boxes in the selection dialog, in print order.
    QStringList titles;
    for (const Mark& m : outline)
        titles << m.title;
    EXPECT_EQ(titles,
              (QStringList{
                  QStringLiteral("1 Määräluettelo"), QStringLiteral("2 Kustannusarvio"),
                  QStringLiteral("3 Siltakohtaiset laatuvaatimukset"),
                  QStringLiteral("4 Rakennussuunnitelmaselotus"), QStringLiteral("5 Ominaistietokortti"),
                  QStringLiteral("6 Panostilakortti"), QStringLiteral("7 Koodaussuunnitelma"),
                  QStringLiteral("A Laatuvaatimukset: kaikki"), QStringLiteral("B Urakan laatusuunnitelma"),
                  QStringLiteral("C Laatusuunnitelmat: kaikki"),
                  QStringLiteral("D Tarkastus- ja mittausraportit: kaikki"),
                  QStringLiteral("E Poikkeamaraportit: kaikki"), QStringLiteral("F Sillan laaturaportti")}));
    ASSERT_EQ(outline.size(), 13u);
    // Each goes to its document's first page: the front page ("Sivu 1 (n)"), or the card itself.
    for (std::size_t i = 0; i < outline.size(); ++i) {
        const int p = outline[i].page;
        ASSERT_GE(p, 1) << outline[i].title.toStdString();
        const bool card = i == 4 || i == 5;
        EXPECT_EQ(card, !pages[p - 1].contains(QStringLiteral("Sivu 1 ("))) << outline[i].title.toStdString();
        if (i > 0) {
            EXPECT_GT(p, outline[i - 1].page);
            // The document before ends on the page before.
            const QRegularExpressionMatch last =
                QRegularExpression(QStringLiteral("Sivu (\\d+) \\((\\d+)\\)")).match(pages[p - 2]);
            const bool cardBefore = i - 1 == 4 || i - 1 == 5;
            if (!cardBefore) EXPECT_TRUE(last.hasMatch() && last.captured(1) == last.captured(2)) << p - 1;
        }
        // The many documents start closed.
        if (!outline[i].kids.empty()) EXPECT_LT(outline[i].count, 0);
    }
    // Work phases: the lists show their main work phases, the quality documents theirs, each at
    // the first page of the document that shows its caption.
    for (std::size_t i : {0u, 1u, 2u, 7u, 9u, 10u, 11u, 12u}) {
        const Mark& document = outline[i];
        const int end = i + 1 < outline.size() ? outline[i + 1].page - 1 : static_cast<int>(pages.size());
        ASSERT_FALSE(document.kids.empty()) << document.title.toStdString();
        int before = document.page;
        // The quality report's summary pages list every work phase too.
        int from = document.page + 1;
        while (i == 12 && from <= pages.size() && pages[from - 1].contains(QStringLiteral("MaksPa")))
            ++from;
        for (const Mark& phase : document.kids) {
            EXPECT_GE(phase.page, before) << phase.title.toStdString();
            EXPECT_LE(phase.page, end) << phase.title.toStdString();
            before = phase.page;
            if (phase.title == QLatin1String("Yhteenveto")) continue;
            const QRegularExpressionMatch m =
                QRegularExpression(QStringLiteral("^(?:(\\d+) )?([^a-zäö]+)$")).match(phase.title);
            ASSERT_TRUE(m.hasMatch()) << phase.title.toStdString();
            EXPECT_EQ(firstPageWithCaption(pages, m.captured(1), m.captured(2), from), phase.page)
                << phase.title.toStdString();
        }
    }
    auto titlesOf = [](const Mark& m) {
        QStringList t;
        for (const Mark& k : m.kids)
            t << k.title;
        return t;
    };
    EXPECT_TRUE(titlesOf(outline[0]).contains(QStringLiteral("7150 BETONITYÖT")));
    EXPECT_FALSE(titlesOf(outline[0]).contains(QStringLiteral("Yhteenveto")));
    // The cost summaries and the quality report's summary pages.
    EXPECT_EQ(titlesOf(outline[1]).last(), QStringLiteral("Yhteenveto"));
    EXPECT_EQ(outline[1].kids.back().page,
              firstPageWith(pages, QStringLiteral("Rakennuskustannukset (i ="), outline[1].page));
    EXPECT_EQ(titlesOf(outline[12]).first(), QStringLiteral("Yhteenveto"));
    EXPECT_EQ(outline[12].kids.front().page,
              firstPageWith(pages, QStringLiteral("SILLAN LAATULUKU"), outline[12].page));
    // Text documents and cards have no parts.
    for (std::size_t i : {3u, 4u, 5u, 6u, 8u})
        EXPECT_TRUE(outline[i].kids.empty()) << outline[i].title.toStdString();
}

TEST(PdfOutline, ALongListHasItsWorkPhasesAtThePagesTheyStartOn) {
    TestProject t;
    const QStringList phases{
        QStringLiteral("KAIVUT JA LOUHINNAT"), QStringLiteral("PERUSTUKSET JA PAALUTUKSET"),
        QStringLiteral("MUOTTITYÖT"),          QStringLiteral("RAUDOITUS"),
        QStringLiteral("BETONITYÖT"),          QStringLiteral("PÄÄLLYSRAKENNE, BETONI"),
        QStringLiteral("VEDENERISTYS")};
    std::vector<QStringList> rows;
    for (int k = 0; k < phases.size(); ++k) {
        rows.push_back({QString::number(7110 + 10 * k), phases[k], {}, {}, {}, {}, {}});
        // Phases of different lengths, so that they start anywhere on a page.
        for (int i = 0; i < 40 + 17 * k; ++i)
            rows.push_back(entry(QStringLiteral("Työ %1.%2").arg(k).arg(i)));
        rows.push_back({});
    }
    t.setQuantities(rows);
    t.source.basicCombos[5] = QStringLiteral("Liisa Laatija");
    auto r = t.run({print::doc::Quantities, print::doc::Costs});
    QTemporaryDir dir;
    const QString file = dir.filePath(QStringLiteral("pitka.pdf"));
    QString error;
    print::PdfOptions options;
    options.projectFile = QStringLiteral("/projektit/Kirkkojoen silta.sl");
    options.created = QDateTime(QDate(2026, 11, 23), QTime(14, 5, 9), QTimeZone(7200));
    ASSERT_EQ(print::WritePdf(*r, file, print::DefaultPageLayout(), 1200, {}, &error, options),
              print::OutputResult::Printed)
        << error.toStdString();
    const QStringList pages = pageTexts(file);
    ASSERT_GE(pages.size(), 30);
    const std::vector<Mark> outline = readOutline(file);
    ASSERT_EQ(outline.size(), 2u);
    EXPECT_EQ(outline[0].title, QStringLiteral("1 Määräluettelo"));
    EXPECT_EQ(outline[0].page, 1);
    EXPECT_EQ(outline[1].title, QStringLiteral("2 Kustannusarvio"));
    EXPECT_EQ(outline[1].page, r->TotalPages() - r->entry(r->TotalPages()).count + 1);
    for (const Mark& document : outline) {
        ASSERT_EQ(document.kids.size(),
                  static_cast<std::size_t>(phases.size()) + (document.page > 1 ? 1 : 0));
        for (int k = 0; k < phases.size(); ++k) {
            EXPECT_EQ(document.kids[k].title, QStringLiteral("%1 %2").arg(7110 + 10 * k).arg(phases[k]));
            // The phase's caption starts on the page, and on no page of the document before it.
            EXPECT_EQ(document.kids[k].page,
                      firstPageWithCaption(pages, QString::number(7110 + 10 * k), phases[k], document.page))
                << phases[k].toStdString();
            // ... and its first entry is there too, or on the next page when it moved over.
            const int entryPage = firstPageWith(pages, QStringLiteral("Työ %1.0 ").arg(k), document.page);
            EXPECT_TRUE(entryPage == document.kids[k].page || entryPage == document.kids[k].page + 1)
                << phases[k].toStdString();
        }
    }
    EXPECT_EQ(outline[1].kids.back().title, QStringLiteral("Yhteenveto"));
    EXPECT_EQ(outline[1].kids.back().page,
              firstPageWith(pages, QStringLiteral("Rakennuskustannukset (i ="), outline[1].page));

    // The properties a reader shows.
    const Properties props = readProperties(file);
    EXPECT_EQ(props.info.at("/Title"),
              QStringLiteral("Kirkkojoen silta – Sillan määräluettelo, Sillan kustannusarvio"));
    EXPECT_EQ(props.info.at("/Author"), QStringLiteral("Liisa Laatija"));
    EXPECT_EQ(props.info.at("/Subject"), QStringLiteral("TAMRIK-projekti Kirkkojoen silta.sl"));
    EXPECT_EQ(props.info.at("/Creator"), QStringLiteral("TAMRIK 2006 " TAMRIK_VERSION));
    EXPECT_EQ(props.info.at("/CreationDate"), QStringLiteral("D:20261123140509+02'00'"));
    EXPECT_TRUE(
        props.xmp.contains(QStringLiteral("<xmp:CreateDate>2026-11-23T14:05:09+02:00</xmp:CreateDate>")));
    // Not an archival file unless asked.
    EXPECT_FALSE(props.xmp.contains(QStringLiteral("pdfaid")));
    EXPECT_EQ(qpdfCheck(file), QString());

    // One document: its title alone, and its bookmark open on its work phases.
    auto one = t.run({print::doc::Costs});
    ASSERT_EQ(print::WritePdf(*one, file, print::DefaultPageLayout(), 1200, {}, &error, options),
              print::OutputResult::Printed);
    EXPECT_EQ(readProperties(file).info.at("/Title"),
              QStringLiteral("Kirkkojoen silta – Sillan kustannusarvio"));
    const std::vector<Mark> single = readOutline(file);
    ASSERT_EQ(single.size(), 1u);
    EXPECT_EQ(single[0].count, phases.size() + 1);
}

TEST(PdfArchive, PdfaNamesTheStandardEmbedsEveryFontAndAgreesWithItsInformation) {
    QTemporaryDir dir;
    const QString out = dir.filePath(QStringLiteral("arkisto.pdf"));
    QString err;
    ASSERT_EQ(tamrikPrint(print_test::sampleProject(),
                          {QStringLiteral("--pdf"), out, QStringLiteral("--pdfa")}, &err),
              0)
        << err.toStdString();
    EXPECT_EQ(archivalFaults(out), QStringList());
    EXPECT_EQ(qpdfCheck(out), QString());
    // poppler finds every font embedded.
    const QStringList fonts = print_test::runProgram(QStringLiteral("pdffonts"), {out})
                                  .split(QLatin1Char('\n'), Qt::SkipEmptyParts)
                                  .mid(2);
    ASSERT_FALSE(fonts.isEmpty());
    for (const QString& line : fonts)
        EXPECT_TRUE(QRegularExpression(QStringLiteral("\\s+yes\\s+\\S+\\s+\\S+\\s+\\d+\\s+\\d+$"))
                        .match(line)
                        .hasMatch())
            << line.toStdString();
    // The XMP says what the information dictionary says.
    const Properties props = readProperties(out);
    for (const auto& [key, tag] :
         std::map<std::string, QString>{{"/Title", QStringLiteral("dc:title")},
                                        {"/Author", QStringLiteral("dc:creator")},
                                        {"/Subject", QStringLiteral("dc:description")},
                                        {"/Creator", QStringLiteral("xmp:CreatorTool")},
                                        {"/Producer", QStringLiteral("pdf:Producer")}}) {
        ASSERT_TRUE(props.info.count(key)) << key;
        EXPECT_TRUE(props.xmp.contains(props.info.at(key).toHtmlEscaped())) << key;
        EXPECT_TRUE(props.xmp.contains(QLatin1Char('<') + tag)) << key;
    }
    EXPECT_EQ(props.info.at("/Subject"), QStringLiteral("TAMRIK-projekti Esimerkkisilta.sl"));
    EXPECT_EQ(readOutline(out).size(), 13u);
    // The pages are those of the ordinary PDF.
    const QString plain = dir.filePath(QStringLiteral("tavallinen.pdf"));
    ASSERT_EQ(tamrikPrint(print_test::sampleProject(), {QStringLiteral("--pdf"), plain}, &err), 0)
        << err.toStdString();
    EXPECT_EQ(pageTexts(out), pageTexts(plain));
    // An ordinary PDF does not claim to be archival.
    EXPECT_FALSE(readProperties(plain).xmp.contains(QStringLiteral("pdfaid")));
}

TEST(PdfOutput, AWriteIntoAnUnwritableFolderLeavesNothingAndSaysSo) {
    QTemporaryDir dir;
    const QString folder = dir.filePath(QStringLiteral("lukittu"));
    ASSERT_TRUE(QDir().mkdir(folder));
    QFile::setPermissions(folder, QFile::ReadOwner | QFile::ExeOwner);
    // The superuser writes anywhere; /proc takes no new files from anyone.
    const QString target = QFileInfo(folder).isWritable() ? QStringLiteral("/proc/self/tuloste.pdf")
                                                          : folder + QStringLiteral("/tuloste.pdf");
    for (const bool archival : {false, true}) {
        QString err;
        QStringList args{QStringLiteral("--pdf"), target, QStringLiteral("--docs"), QStringLiteral("0,1")};
        if (archival) args << QStringLiteral("--pdfa");
        EXPECT_EQ(tamrikPrint(print_test::sampleProject(), args, &err), 1);
        EXPECT_TRUE(err.contains(QStringLiteral("Tiedostoa %1 ei voi kirjoittaa").arg(target)))
            << err.toStdString();
        EXPECT_FALSE(QFile::exists(target));
    }
    EXPECT_TRUE(QDir(folder).entryList(QDir::NoDotAndDotDot | QDir::AllEntries).isEmpty());
    QFile::setPermissions(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

namespace {

// The outline as lines "depth title page", for comparing two files.
QStringList outlineLines(const std::vector<Mark>& marks, int depth = 0) {
    QStringList lines;
    for (const Mark& m : marks) {
        lines << QStringLiteral("%1 %2 %3").arg(depth).arg(m.title).arg(m.page);
        lines += outlineLines(m.kids, depth + 1);
    }
    return lines;
}

// The pages of a PDF file from page `first` on as images at 50 dots to the inch.
std::vector<QImage> pageImages(const QString& file, const QString& folder, int first) {
    print_test::runProgram(QStringLiteral("pdftoppm"),
                           {QStringLiteral("-png"), QStringLiteral("-r"), QStringLiteral("50"),
                            QStringLiteral("-f"), QString::number(first), file,
                            folder + QStringLiteral("/sivu")});
    std::vector<QImage> images;
    QDir dir(folder);
    for (const QString& name : dir.entryList({QStringLiteral("sivu*.png")}, QDir::Files, QDir::Name))
        images.push_back(QImage(dir.filePath(name)));
    return images;
}

} // namespace

TEST(PdfOutput, ARunDrawnOnTwoThreadsMakesTheFileOneThreadMakes) {
    print_test::SampleRun sample;
    ASSERT_TRUE(sample.read);
    print::PrintRun& run = sample.run;
    QTemporaryDir dir;
    print::PdfOptions options;
    options.projectFile = print_test::sampleProject();
    options.created = QDateTime(QDate(2026, 11, 23), QTime(14, 5, 9), QTimeZone(7200));

    for (const bool archival : {false, true}) {
        SCOPED_TRACE(archival ? "PDF/A" : "PDF");
        options.archival = archival;
        const QString one = dir.filePath(QStringLiteral("yksi.pdf"));
        const QString two = dir.filePath(QStringLiteral("kaksi.pdf"));
        QString error;
        options.parallelFrom = 0;
        ASSERT_EQ(print::WritePdf(run, one, print::DefaultPageLayout(), 1200, {}, &error, options),
                  print::OutputResult::Printed)
            << error.toStdString();
        // Every run of two pages or more in halves: the second half is the sample's cards,
        // pictures, plans and quality documents.
        options.parallelFrom = 2;
        std::vector<int> heard;
        ASSERT_EQ(print::WritePdf(
                      run, two, print::DefaultPageLayout(), 1200,
                      [&](int page, double) {
                          heard.push_back(page);
                          return true;
                      },
                      &error, options),
                  print::OutputResult::Printed)
            << error.toStdString();

        const QStringList texts = pageTexts(two);
        ASSERT_EQ(texts.size(), run.TotalPages());
        EXPECT_EQ(texts, pageTexts(one));
        EXPECT_EQ(outlineLines(readOutline(two)), outlineLines(readOutline(one)));
        EXPECT_EQ(readProperties(two).info, readProperties(one).info);
        EXPECT_EQ(qpdfCheck(two), QString());
        if (archival) EXPECT_EQ(archivalFaults(two), QStringList());
        // Progress is heard of from the calling thread, counting the pages of both halves.
        ASSERT_FALSE(heard.empty());
        EXPECT_TRUE(std::is_sorted(heard.begin(), heard.end()));
        EXPECT_LE(heard.back(), run.TotalPages());
        EXPECT_GE(heard.back(), run.TotalPages() / 2);

        // The pages look the same from a little before the middle, where the second thread
        // starts (once: the archival pages are the same drawing).
        if (archival) continue;
        const int first = run.TotalPages() / 2 - 2;
        const QString oneImages = dir.filePath(QStringLiteral("yksi"));
        const QString twoImages = dir.filePath(QStringLiteral("kaksi"));
        ASSERT_TRUE(QDir().mkpath(oneImages) && QDir().mkpath(twoImages));
        const std::vector<QImage> a = pageImages(one, oneImages, first),
                                  b = pageImages(two, twoImages, first);
        ASSERT_EQ(a.size(), static_cast<std::size_t>(run.TotalPages() - first + 1));
        ASSERT_EQ(b.size(), a.size());
        for (std::size_t i = 0; i < a.size(); ++i)
            EXPECT_TRUE(a[i] == b[i]) << "page " << first + i;
    }

    // Cancelled half way, neither half is left anywhere.
    const QString cancelled = dir.filePath(QStringLiteral("peruttu.pdf"));
    EXPECT_EQ(print::WritePdf(
                  run, cancelled, print::DefaultPageLayout(), 1200, [](int page, double) { return page < 5; },
                  nullptr, options),
              print::OutputResult::Cancelled);
    EXPECT_FALSE(QFile::exists(cancelled));
}

// After the last page is drawn, the other half's pages, the reading of both halves and the
// writing of the file take a while: the caller hears of the run every 50 ms meanwhile and can
// cancel it, also in the moment after the work last looked at the cancel.
TEST(PdfOutput, TheWritingAfterTheLastPageReportsProgressAndCanBeCancelled) {
    using namespace std::chrono_literals;
    auto waitFor = [](const std::atomic<bool>& flag) {
        for (int i = 0; i < 3000 && !flag; ++i)
            std::this_thread::sleep_for(10ms);
        return flag.load();
    };
    {
        // Work that lasts until the caller has been told of it: told the page it is at.
        print::OtherThreads others;
        std::atomic<bool> heard{false}, cancel{false}, workSawHeard{false};
        std::vector<int> pages;
        others.start([&] { workSawHeard = waitFor(heard); });
        const bool cancelled = others.wait(
            [&](int page, double done) {
                pages.push_back(page);
                EXPECT_DOUBLE_EQ(done, 0.5);
                heard = true;
                return true;
            },
            [] { return 7; }, 14, cancel);
        EXPECT_FALSE(cancelled);
        EXPECT_TRUE(workSawHeard);
        ASSERT_FALSE(pages.empty());
        EXPECT_EQ(pages.front(), 7);
        EXPECT_FALSE(cancel);
    }
    {
        // Work that runs until it is cancelled.
        print::OtherThreads others;
        std::atomic<bool> cancel{false}, workSawCancel{false};
        others.start([&] { workSawCancel = waitFor(cancel); });
        EXPECT_TRUE(others.wait([](int, double) { return false; }, [] { return 1; }, 1, cancel));
        EXPECT_TRUE(workSawCancel);
    }
    {
        // The cancel comes after the work's last look at it: the run is still cancelled.
        print::OtherThreads others;
        std::atomic<bool> cancel{false}, asked{false}, looked{false}, workSawCancel{false};
        others.start([&] {
            waitFor(asked);
            workSawCancel = cancel.load();
            looked = true;
        });
        EXPECT_TRUE(others.wait(
            [&](int, double) {
                asked = true;
                waitFor(looked);
                return false;
            },
            [] { return 1; }, 1, cancel));
        EXPECT_FALSE(workSawCancel) << "the work had looked before the cancel";
    }

    // A whole run, on one thread and in two halves: a cancel heard after the last page leaves no
    // file; a run that ended before the caller was asked again is written.
    print_test::SampleRun sample;
    ASSERT_TRUE(sample.read);
    print::PrintRun& run = sample.run;
    QTemporaryDir dir;
    for (const int parallelFrom : {0, 2}) {
        SCOPED_TRACE(parallelFrom);
        print::PdfOptions options;
        options.parallelFrom = parallelFrom;
        const QString file = dir.filePath(QStringLiteral("peruttu%1.pdf").arg(parallelFrom));
        int lastPageHeard = 0, askedAfter = 0;
        const print::OutputResult result = print::WritePdf(
            run, file, print::DefaultPageLayout(), 1200,
            [&](int page, double) {
                if (lastPageHeard > 0) ++askedAfter;
                if (page == run.TotalPages()) ++lastPageHeard;
                return askedAfter == 0;
            },
            nullptr, options);
        EXPECT_GE(lastPageHeard, 1);
        EXPECT_EQ(result, askedAfter > 0 ? print::OutputResult::Cancelled : print::OutputResult::Printed);
        EXPECT_EQ(QFile::exists(file), result == print::OutputResult::Printed);
    }
}
