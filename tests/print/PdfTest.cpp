// PDF output: what the files say (read back with pdftotext), cancelled and failed runs, and
// `tamrik print` on the sample project page for page against the preview.
#include "print/PdfOutput.h"
#include "print/PdfSupport.h"
#include "print/PrintFixtures.h"

#include <QImage>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using print_test::entry;
using print_test::TestProject;

namespace {

using print_test::pdfPages;
using print_test::pdfText;
using print_test::runProgram;

// Words of a text, sorted: the same words in any layout compare equal.
QStringList words(QString text) {
    text.replace(QChar(0x00A0), QLatin1Char(' '));
    QStringList w = text.split(QRegularExpression(QStringLiteral("\\s+")), Qt::SkipEmptyParts);
    w.sort();
    return w;
}

} // namespace

TEST(Pdf, RunsWriteTheirPagesAndCancelledOrFailedRunsWriteNothing) {
    QTemporaryDir dir;
    TestProject t;
    std::vector<QStringList> rows;
    for (int i = 0; i < 120; ++i)
        rows.push_back(entry(QStringLiteral("Maankaivu kuivana %1").arg(i), QStringLiteral("12.5")));
    t.setQuantities(rows);
    auto r = t.run({print::doc::Quantities, print::doc::Costs});
    const QString file = dir.filePath(QStringLiteral("tuloste.pdf"));
    QString error;
    ASSERT_EQ(print::WritePdf(*r, file, print::DefaultPageLayout(), 1200, {}, &error),
              print::OutputResult::Printed)
        << error.toStdString();
    EXPECT_EQ(pdfPages(file), r->TotalPages());
    const QString text = pdfText(file);
    for (const char* expected : {"Sillan määräluettelo", "Sillan kustannusarvio", "Maankaivu kuivana 119",
                                 "Tulostettu: 23.11.2026", "Rakennuskustannukset (i = 104)", "12,5"})
        EXPECT_TRUE(text.contains(QString::fromUtf8(expected))) << expected;
    EXPECT_TRUE(pdfText(file, 2).contains(QStringLiteral("Sivu 2 (%1)").arg(r->entry(2).count)));

    // Cancelling half way leaves the earlier file as it was, and no other file.
    QByteArray before;
    ASSERT_TRUE(platform::readFileBytes(file, before));
    t.selection.PaginationStale = true;
    EXPECT_EQ(print::WritePdf(*r, file, print::DefaultPageLayout(), 1200,
                              [](int page, double) { return page < 3; }),
              print::OutputResult::Cancelled);
    QByteArray after;
    ASSERT_TRUE(platform::readFileBytes(file, after));
    EXPECT_EQ(after, before);
    const QString fresh = dir.filePath(QStringLiteral("uusi.pdf"));
    EXPECT_EQ(print::WritePdf(*r, fresh, print::DefaultPageLayout(), 1200,
                              [](int page, double) { return page < 3; }),
              print::OutputResult::Cancelled);
    EXPECT_FALSE(QFile::exists(fresh));
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files), QStringList{QStringLiteral("tuloste.pdf")});

    // A folder that does not exist: a failure that names the file.
    const QString nowhere = dir.filePath(QStringLiteral("ei/kansiota.pdf"));
    EXPECT_EQ(print::WritePdf(*r, nowhere, print::DefaultPageLayout(), 1200, {}, &error),
              print::OutputResult::DeviceFailed);
    EXPECT_TRUE(error.contains(nowhere));
    // Nothing selected: nothing to print, no file.
    auto none = t.run({});
    EXPECT_EQ(print::WritePdf(*none, fresh, print::DefaultPageLayout(), 1200),
              print::OutputResult::NothingToPrint);
    EXPECT_FALSE(QFile::exists(fresh));
}

TEST(Pdf, TheCommandLinePrintsTheSampleProjectAsThePreviewShowsIt) {
    QTemporaryDir dir;
    const QString sample = testing_support::dataDir() + QStringLiteral("Esimerkkisilta.sl");
    const QString out = dir.filePath(QStringLiteral("esimerkki.pdf"));
    const QString tamrik = testing_support::binaryDir() + QStringLiteral("/tamrik");
    int status = -1;
    QString err;
    runProgram(tamrik, {QStringLiteral("print"), sample, QStringLiteral("--pdf"), out}, &status, &err);
    ASSERT_EQ(status, 0) << err.toStdString();

    // The same project paginated here, and its preview pages.
    persist::ProjectFile project;
    ASSERT_TRUE(persist::ReadProjectFile(sample, false, project, nullptr));
    print::ProjectSource source = print::SourceFromProject(project);
    print::Selection selection;
    for (int d = 0; d < print::kDocumentCount; ++d)
        selection.DocumentSelected[d] = true;
    print::PrintSettings settings;
    settings.appPath = testing_support::dataDir();
    settings.logo =
        platform::Picture::fromFile(testing_support::dataDir() + QStringLiteral("Tamrik2006-logo.wmf"));
    print::PrintRun preview(source.source, selection, settings);
    ASSERT_EQ(preview.PageCount(), print::PageCountResult::Done);
    const int pages = preview.TotalPages();
    ASSERT_EQ(pdfPages(out), pages);
    ASSERT_GE(pages, 6);
    // Every document is numbered 1 .. n on its own, the quality report's summaries included.
    for (int p = 1; p <= pages; ++p) {
        const print::PageEntry& e = preview.entry(p);
        const print::PageEntry* before = p > 1 ? &preview.entry(p - 1) : nullptr;
        EXPECT_EQ(e.number, before && e.number > 1 ? before->number + 1 : 1) << "page " << p;
        EXPECT_TRUE(pdfText(out, p).contains(QStringLiteral("Sivu %1 (%2)").arg(e.number).arg(e.count)) ||
                    e.document == print::doc::Card || e.document == print::doc::ChargeCard)
            << "page " << p;
    }
    for (int p = 1; p <= pages; ++p) {
        std::vector<print::TextItem> items;
        print::Surface recorder(preview.fonts());
        recorder.setRecorder(&items);
        preview.PrintPage(recorder, p);
        EXPECT_EQ(words(pdfText(out, p)), words(print_test::texts(items).join(QLatin1Char(' '))))
            << "page " << p;
    }

    // The preview image of a page and the PDF page at the same resolution look alike: the same
    // dark pixels, give or take the edges of the letters.
    ASSERT_TRUE(preview.PrintArea(1.0f));
    const QImage shown = preview.PreviewImage(2).convertToFormat(QImage::Format_Grayscale8);
    runProgram(QStringLiteral("pdftoppm"),
               {QStringLiteral("-r"), QStringLiteral("96"), QStringLiteral("-f"), QStringLiteral("2"),
                QStringLiteral("-l"), QStringLiteral("2"), QStringLiteral("-gray"), QStringLiteral("-png"),
                out, dir.filePath(QStringLiteral("sivu"))});
    QImage printed(dir.filePath(QStringLiteral("sivu-2.png")));
    if (printed.isNull()) printed.load(dir.filePath(QStringLiteral("sivu-02.png")));
    ASSERT_FALSE(printed.isNull());
    printed = printed.convertToFormat(QImage::Format_Grayscale8);
    ASSERT_LE(std::abs(printed.width() - shown.width()), 1);
    ASSERT_LE(std::abs(printed.height() - shown.height()), 1);
    // Compared in blocks of 8 x 8 pixels: ink in the same places.
    int blocks = 0, differing = 0;
    for (int by = 0; by + 8 <= std::min(shown.height(), printed.height()); by += 8) {
        for (int bx = 0; bx + 8 <= std::min(shown.width(), printed.width()); bx += 8) {
            int a = 0, b = 0;
            for (int y = by; y < by + 8; ++y)
                for (int x = bx; x < bx + 8; ++x) {
                    a += 255 - shown.constScanLine(y)[x];
                    b += 255 - printed.constScanLine(y)[x];
                }
            if (a == 0 && b == 0) continue;
            ++blocks;
            if (std::abs(a - b) > 64 * 60) ++differing;
        }
    }
    EXPECT_GT(blocks, 100);
    EXPECT_LT(differing, blocks / 50) << differing << " of " << blocks;
}

TEST(Pdf, TheCommandLineRefusesWhatItCannotDo) {
    QTemporaryDir dir;
    const QString sample = testing_support::dataDir() + QStringLiteral("Esimerkkisilta.sl");
    const QString tamrik = testing_support::binaryDir() + QStringLiteral("/tamrik");
    const QString out = dir.filePath(QStringLiteral("x.pdf"));
    struct Case {
        QStringList args;
        const char* says;
    };
    const Case cases[] = {
        {{QStringLiteral("print"), sample}, "käyttö"},
        {{QStringLiteral("print"), sample, QStringLiteral("--pdf"), out, QStringLiteral("--docs"),
          QStringLiteral("0,13")},
         "13"},
        {{QStringLiteral("print"), sample, QStringLiteral("--pdf"), sample}, "korvata"},
        {{QStringLiteral("print"), dir.filePath(QStringLiteral("ei.sl")), QStringLiteral("--pdf"), out},
         "ei.sl"},
    };
    for (const Case& c : cases) {
        int status = -1;
        QString err;
        runProgram(tamrik, c.args, &status, &err);
        EXPECT_EQ(status, 1) << c.args.join(QLatin1Char(' ')).toStdString();
        EXPECT_TRUE(err.contains(QStringLiteral("tamrik: "))) << err.toStdString();
        EXPECT_TRUE(err.contains(QString::fromUtf8(c.says))) << err.toStdString();
        EXPECT_FALSE(QFile::exists(out));
    }
    int status = -1;
    runProgram(tamrik,
               {QStringLiteral("print"), sample, QStringLiteral("--pdf"), out, QStringLiteral("--docs"),
                QStringLiteral("1")},
               &status);
    EXPECT_EQ(status, 0);
    EXPECT_TRUE(pdfText(out).contains(QStringLiteral("Sillan kustannusarvio")));
    EXPECT_FALSE(pdfText(out).contains(QStringLiteral("Sillan määräluettelo")));
}
