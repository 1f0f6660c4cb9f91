// The selection dialog and the preview as a user works them.
#include "common/ScriptedDialogs.h"
#include "print/PrintFixtures.h"
#include "print/ui/Form11.h"
#include "print/ui/Form12.h"
#include "print/ui/PrintSession.h"
#include "platform/ui/Icons.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QFile>
#include <QGuiApplication>
#include <QScreen>
#include <QStatusBar>
#include <QPrinter>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QToolBar>
#include <gtest/gtest.h>

using print::ui::Form11;
using print::ui::Form12;
using print_test::entry;
using print_test::TestProject;

namespace {

class TestHost : public print::ui::PrintHost {
public:
    TestProject project;
    int mode = 3;
    float scale = 1.0f;
    bool headingIndex = false;
    QString chosenKey = QStringLiteral("-1");
    std::vector<int> helpContexts;
    int restored = 0;
    int saved = 0;
    QRect stored; // the window's place and size as the settings keep them; none when empty

    int programMode() const override { return mode; }
    std::unique_ptr<print::ui::ProjectPrint> activeProject() override {
        auto p = std::make_unique<print::ui::ProjectPrint>();
        p->source = project.source;
        p->fileName = QStringLiteral("/tmp/Kirkkojoen silta.sl");
        return p;
    }
    print::PrintSettings printSettings() override {
        print::PrintSettings s;
        s.printedOn = QDate(2026, 11, 23);
        return s;
    }
    float previewScale() const override { return scale; }
    void setPreviewScale(float s) override { scale = s; }
    void showHelp(int context, QWidget*) override { helpContexts.push_back(context); }
    void restorePosition(int slot, QWidget* window) override {
        restored = slot;
        if (stored.isEmpty()) return;
        window->resize(stored.size());
        window->move(stored.topLeft());
    }
    void savePosition(int slot, QWidget*) override { saved = slot; }
    bool canChooseWorkPhase() const override { return headingIndex; }
    QString chooseWorkPhase(QWidget*) override { return chosenKey; }
};

// Hands the next modal window of type T to `inspect` once it is open; `inspect` closes it.
template <typename T> void whenModalOpens(std::function<void(T*)> inspect) {
    auto* timer = new QTimer;
    QObject::connect(timer, &QTimer::timeout, [timer, inspect] {
        if (auto* w = qobject_cast<T*>(QApplication::activeModalWidget())) {
            timer->stop();
            timer->deleteLater();
            inspect(w);
        }
    });
    timer->start(10);
}

} // namespace

TEST(Form11, LoadingAndEnablingFollowTheSelectionAndTheMode) {
    TestHost host;
    print::ui::PrintSession session;
    session.selection.DocumentSelected[print::doc::Costs] = true;
    session.selection.PaginationStale = false;
    Form11 dialog(host, session);
    EXPECT_EQ(dialog.windowTitle(), QStringLiteral("TAMRIK 2006 - Tulostettavien asiakirjojen valinta"));
    EXPECT_TRUE(session.selection.PaginationStale);
    EXPECT_FALSE(dialog.Check1[0]->isChecked());
    EXPECT_TRUE(dialog.Check1[1]->isChecked());
    EXPECT_EQ(dialog.Check1[3]->text(), QStringLiteral("&4 Rakennussuunnitelmaselotus"));
    EXPECT_EQ(dialog.Check1[9]->text(), QStringLiteral("&C Laatusuunnitelmat: kaikki"));
    EXPECT_TRUE(dialog.Command1[5]->isEnabled());
    EXPECT_TRUE(dialog.Command1[7]->isEnabled());
    for (int d = 0; d < print::kDocumentCount; ++d)
        EXPECT_TRUE(dialog.Check1[d]->isEnabled()) << d;

    // "Poista kaikki" empties the designer's frame and print and preview go grey.
    dialog.Command1Click(Form11::ClearDesigner);
    EXPECT_FALSE(dialog.Check1[1]->isChecked());
    EXPECT_FALSE(dialog.Command1[5]->isEnabled());
    EXPECT_FALSE(dialog.Command1[7]->isEnabled());
    EXPECT_FALSE(dialog.PdfButton->isEnabled());
    session.selection.PaginationStale = false;
    dialog.Command1Click(Form11::SelectDesigner);
    EXPECT_TRUE(dialog.Check1[0]->isChecked());
    EXPECT_TRUE(dialog.Check1[1]->isChecked());
    EXPECT_TRUE(dialog.Check1[6]->isChecked());
    EXPECT_FALSE(dialog.Check1[8]->isChecked()) << "only the designer's frame";
    EXPECT_TRUE(session.selection.PaginationStale);

    dialog.Command1Click(Form11::Help);
    EXPECT_EQ(host.helpContexts, std::vector<int>{2400});

    // In contractor mode the charge chamber card cannot be chosen.
    host.mode = 2;
    session.selection.DocumentSelected[print::doc::ChargeCard] = true;
    Form11 contractor(host, session);
    EXPECT_FALSE(contractor.Check1[print::doc::ChargeCard]->isChecked());
    EXPECT_FALSE(contractor.Check1[print::doc::ChargeCard]->isEnabled());
}

TEST(Form11, TheCostEstimateWithoutACostIndexIsWarnedAbout) {
    testing_support::ScriptedDialogs dialogs;
    TestHost host;
    host.project.source.basicCombos[10] = QStringLiteral("  ");
    print::ui::PrintSession session;
    Form11 dialog(host, session);
    QTest::mouseClick(dialog.Check1[1], Qt::LeftButton);
    EXPECT_TRUE(dialog.Check1[1]->isChecked());
    EXPECT_EQ(dialogs.texts(),
              QStringList{QStringLiteral("Kustannusten yhteenveto ei tulostu oikein.\r\n"
                                         "Kustannusindeksiä ei ole annettu perustietonäkymässä.")});
    // Unchecking says nothing; with an index nothing is said either.
    QTest::mouseClick(dialog.Check1[1], Qt::LeftButton);
    EXPECT_EQ(dialogs.messages().size(), 1u);

    // "Valitse kaikki" that ticks the box warns too; once ticked, choosing all again does not.
    dialog.Command1Click(Form11::SelectDesigner);
    EXPECT_TRUE(dialog.Check1[1]->isChecked());
    EXPECT_EQ(dialogs.messages().size(), 2u);
    EXPECT_EQ(dialogs.texts().value(1), dialogs.texts().value(0));
    dialog.Command1Click(Form11::SelectDesigner);
    dialog.Command1Click(Form11::SelectContractor);
    EXPECT_EQ(dialogs.messages().size(), 2u);
}

TEST(Form11, PdfButtonWritesTheRunAndPreviewOpensOnItsPages) {
    testing_support::ScriptedDialogs dialogs;
    QTemporaryDir dir;
    TestHost host;
    host.project.setQuantities({entry(QStringLiteral("Kaivu")), entry(QStringLiteral("Täyttö"))});
    print::ui::PrintSession session;
    session.selection.DocumentSelected[print::doc::Quantities] = true;
    Form11 dialog(host, session);
    // The preview opens at page 1 of the run, and closing it leaves the dialog open.
    int previewPages = -1;
    whenModalOpens<Form12>([&previewPages](Form12* preview) {
        previewPages = preview->LastPage;
        EXPECT_EQ(preview->CurrentPage, 1);
        preview->reject();
    });
    dialog.Command1Click(Form11::Preview);
    EXPECT_EQ(previewPages, 2);
    EXPECT_EQ(dialog.result(), 0);
    EXPECT_TRUE(dialog.statusText().isEmpty());

    const QString file = dir.filePath(QStringLiteral("silta.pdf"));
    dialogs.chooseFile(file);
    dialog.printToPdf();
    ASSERT_EQ(dialogs.fileRequests().size(), 1u);
    EXPECT_TRUE(dialogs.fileRequests()[0].save);
    EXPECT_EQ(dialogs.fileRequests()[0].fileName, QStringLiteral("Kirkkojoen silta.pdf"));
    EXPECT_EQ(dialogs.fileRequests()[0].directory, QStringLiteral("/tmp"));
    EXPECT_TRUE(QFile::exists(file));
    EXPECT_EQ(dialog.result(), QDialog::Accepted);
    EXPECT_EQ(session.pdfFolder, dir.path());
}

TEST(Form11, ThePdfSaveOffersAnArchivalPdfAndAFailedWriteIsReported) {
    testing_support::ScriptedDialogs dialogs;
    QTemporaryDir dir;
    TestHost host;
    host.project.setQuantities({entry(QStringLiteral("Kaivu"))});
    print::ui::PrintSession session;
    session.selection.DocumentSelected[print::doc::Quantities] = true;
    auto xmpOf = [](const QString& file) {
        QFile f(file);
        return f.open(QIODevice::ReadOnly) ? QString::fromLatin1(f.readAll()) : QString();
    };
    {
        // The save dialog's check box starts unchecked; checked, the file is PDF/A.
        Form11 dialog(host, session);
        const QString file = dir.filePath(QStringLiteral("arkisto.pdf"));
        dialogs.chooseFile(file);
        dialogs.nextOption = true;
        dialog.printToPdf();
        ASSERT_EQ(dialogs.fileRequests().size(), 1u);
        EXPECT_EQ(dialogs.fileRequests()[0].optionText, QStringLiteral("PDF/A (arkistointi)"));
        EXPECT_TRUE(xmpOf(file).contains(QStringLiteral("<pdfaid:part>1</pdfaid:part>")));
        EXPECT_TRUE(session.pdfArchival);
        EXPECT_EQ(dialog.result(), QDialog::Accepted);
    }
    {
        // The next save starts as the last was left. A folder that takes no file: a message
        // that names the file, no file, and the dialog stays open.
        dialogs.clear();
        dialogs.nextOption.reset();
        Form11 dialog(host, session);
        const QString file = dir.filePath(QStringLiteral("ei/kansiota.pdf"));
        dialogs.chooseFile(file);
        dialog.printToPdf();
        ASSERT_EQ(dialogs.fileRequests().size(), 1u);
        EXPECT_TRUE(session.pdfArchival);
        EXPECT_TRUE(
            dialogs.lastText().startsWith(QStringLiteral("Tiedostoa %1 ei voi kirjoittaa: ").arg(file)))
            << dialogs.lastText().toStdString();
        EXPECT_FALSE(QFile::exists(file));
        EXPECT_EQ(dialog.result(), 0);
    }
}

TEST(Form11, PrinterSettingsThatChangeThePaperMakeThePaginationStale) {
    TestHost host;
    host.project.setQuantities({entry(QStringLiteral("Kaivu"))});
    print::ui::PrintSession session;
    session.selection.DocumentSelected[print::doc::Quantities] = true;
    int calls = 0;
    print::ui::PrintSession::setPrinterDialog(
        [&calls](QPrinter& printer, print::ui::PrintSession::PrinterDialogMode mode, QWidget*) {
            ++calls;
            EXPECT_EQ(mode, print::ui::PrintSession::PrinterDialogMode::Settings);
            printer.setPageOrientation(QPageLayout::Landscape);
            return true;
        });
    Form11 dialog(host, session);
    dialog.Command1Click(Form11::PrinterSettings);
    print::ui::PrintSession::setPrinterDialog(nullptr);
    EXPECT_EQ(calls, 1);
    EXPECT_TRUE(session.selection.PaginationStale);
    ASSERT_TRUE(dialog.run());
    EXPECT_TRUE(dialog.run()->device().landscape);
    ASSERT_EQ(dialog.run()->PageCount(), print::PageCountResult::Done);
    EXPECT_TRUE(dialog.run()->page().Landscape);
}

TEST(Form12, PagesZoomAndMovesAsTheUserAsks) {
    TestHost host;
    host.scale = 0.2f; // too small to start with: the preview starts at 100 %
    std::vector<QStringList> rows(200, entry(QStringLiteral("Kaivu")));
    host.project.setQuantities(rows);
    auto run = host.project.run({print::doc::Quantities});
    ASSERT_EQ(run->PageCount(), print::PageCountResult::Done);
    const int pages = run->TotalPages();
    ASSERT_GE(pages, 4);
    Form12 preview(host, *run);
    preview.resize(800, 900);
    preview.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&preview));
    EXPECT_EQ(preview.windowTitle(), QStringLiteral("TAMRIK 2006 (Esikatselu)"));
    EXPECT_EQ(host.restored, 12);
    EXPECT_EQ(preview.CurrentPage, 1);
    EXPECT_EQ(preview.statusText(1), QStringLiteral("Sivu 1 (%1)").arg(pages));
    EXPECT_EQ(preview.statusText(2), QStringLiteral("Suurennos 100%"));

    // Page moves by keys; the ends stay where they are.
    QTest::keyClick(&preview, Qt::Key_PageUp);
    EXPECT_EQ(preview.CurrentPage, 1);
    QTest::keyClick(&preview, Qt::Key_PageDown);
    EXPECT_EQ(preview.CurrentPage, 2);
    QTest::keyClick(&preview, Qt::Key_End);
    EXPECT_EQ(preview.CurrentPage, pages);
    QTest::keyClick(&preview, Qt::Key_PageDown);
    EXPECT_EQ(preview.CurrentPage, pages);
    QTest::keyClick(&preview, Qt::Key_Home);
    EXPECT_EQ(preview.CurrentPage, 1);
    preview.mnuView[0]->trigger(); // "&Seuraava sivu (PgDn)"
    EXPECT_EQ(preview.CurrentPage, 2);
    EXPECT_EQ(preview.mnuView[10]->text(), QStringLiteral("Loi&tonna sivua (-)"));
    EXPECT_TRUE(preview.mnuView[4]->isSeparator());

    // Zoom: keys, menu steps and the fixed steps.
    QTest::keyClick(&preview, Qt::Key_Minus);
    EXPECT_FLOAT_EQ(preview.scale(), 0.95f);
    EXPECT_EQ(preview.statusText(2), QStringLiteral("Suurennos 95%"));
    QTest::keyClick(&preview, Qt::Key_Plus);
    EXPECT_FLOAT_EQ(preview.scale(), 0.95f * 1.05f);
    EXPECT_EQ(preview.statusText(2), QStringLiteral("Suurennos 100%")) << "whole percents";
    QTest::keyClick(&preview, Qt::Key_Equal);
    EXPECT_FLOAT_EQ(preview.scale(), 0.95f * 1.05f * 1.05f);
    EXPECT_EQ(preview.statusText(2), QStringLiteral("Suurennos 105%"));
    preview.zoomSteps[3]->trigger();
    EXPECT_EQ(preview.statusText(2), QStringLiteral("Suurennos 75%"));
    EXPECT_FLOAT_EQ(run->page().ScaleY, 0.75f);
    EXPECT_NEAR(run->page().LineHeight11,
                0.75 * 1.2 * run->fonts().height(print::Font{QStringLiteral("Arial"), 11}), 0.01);

    // The page moves by a twelfth of the width and a sixth of the height; a drag moves it with
    // the pointer.
    const QPoint start = preview.origin();
    const int w = preview.canvas()->width();
    const int h = preview.canvas()->height();
    QTest::keyClick(&preview, Qt::Key_Right);
    EXPECT_EQ(preview.origin(), start + QPoint(w / 12, 0));
    QTest::keyClick(&preview, Qt::Key_Down);
    EXPECT_EQ(preview.origin(), start + QPoint(w / 12, h / 6));
    QTest::keyClick(&preview, Qt::Key_Up);
    QTest::keyClick(&preview, Qt::Key_Left);
    EXPECT_EQ(preview.origin(), start);
    QTest::mousePress(preview.canvas(), Qt::LeftButton, {}, QPoint(300, 300));
    QTest::mouseRelease(preview.canvas(), Qt::LeftButton, {}, QPoint(250, 340));
    EXPECT_EQ(preview.origin(), start + QPoint(50, -40));

    // The shown page is the run's page at the chosen zoom.
    const QImage shown = preview.canvas()->grab().toImage();
    EXPECT_FALSE(shown.isNull());

    // Closing keeps the zoom and the window's place.
    QTest::keyClick(&preview, Qt::Key_Escape);
    EXPECT_FLOAT_EQ(host.scale, 0.75f);
    EXPECT_EQ(host.saved, 12);
    EXPECT_EQ(preview.result(), Form12::Closed);
}

TEST(Form12, ThePrintCommandEndsThePreviewWithPrint) {
    TestHost host;
    host.scale = 0.5f;
    host.project.setQuantities({entry(QStringLiteral("Kaivu"))});
    auto run = host.project.run({print::doc::Quantities});
    ASSERT_EQ(run->PageCount(), print::PageCountResult::Done);
    Form12 preview(host, *run);
    preview.show();
    EXPECT_EQ(preview.statusText(2), QStringLiteral("Suurennos 50%"));
    for (QAction* a : preview.Toolbar1->actions())
        if (a->data().toString() == QLatin1String("Print")) a->trigger();
    EXPECT_EQ(preview.result(), Form12::Print);
    EXPECT_FLOAT_EQ(host.scale, 0.5f);
}

TEST(Form12, OpensWithinTheScreenAtTheSizeTheUserLeftIt) {
    TestHost host;
    host.project.setQuantities({entry(QStringLiteral("Kaivu"))});
    auto run = host.project.run({print::doc::Quantities});
    ASSERT_EQ(run->PageCount(), print::PageCountResult::Done);
    const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
    ASSERT_LT(screen.height(), 1000) << "a screen lower than the preview's first size";
    // Without a stored place it fits the screen, status bar and all.
    {
        Form12 preview(host, *run);
        preview.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&preview));
        EXPECT_TRUE(screen.contains(preview.frameGeometry())) << preview.frameGeometry().height();
        EXPECT_TRUE(
            screen.contains(preview.StatusBar1->mapToGlobal(preview.StatusBar1->rect().bottomRight())));
    }
    // The size the user left it at, when it fits; a size larger than the screen is made to fit.
    host.stored = QRect(screen.topLeft() + QPoint(20, 30), QSize(520, 380));
    {
        Form12 preview(host, *run);
        preview.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&preview));
        EXPECT_EQ(preview.size(), QSize(520, 380));
    }
    host.stored = QRect(screen.topLeft() + QPoint(200, 100), QSize(3000, 3000));
    {
        Form12 preview(host, *run);
        preview.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&preview));
        EXPECT_TRUE(screen.contains(preview.frameGeometry()));
    }
}

TEST(Form12, PageButtonsShowSingleArrowsDrawnForThem) {
    TestHost host;
    host.project.setQuantities({entry(QStringLiteral("Kaivu"))});
    auto run = host.project.run({print::doc::Quantities});
    ASSERT_EQ(run->PageCount(), print::PageCountResult::Done);
    Form12 preview(host, *run);
    for (const char* key : {"PreviousPage", "NextPage"})
        EXPECT_TRUE(QFile::exists(QStringLiteral(":/icons/%1.svg").arg(QString::fromLatin1(key)))) << key;
    const struct {
        const char* button;
        const char* icon;
    } buttons[] = {{"Previous page", "PreviousPage"}, {"Next page", "NextPage"}};
    for (const auto& b : buttons) {
        QAction* action = nullptr;
        for (QAction* a : preview.Toolbar1->actions())
            if (a->data().toString() == QLatin1String(b.button)) action = a;
        ASSERT_TRUE(action) << b.button;
        const QImage shown = action->icon().pixmap(24, 24).toImage();
        EXPECT_EQ(shown, platform::toolIcon(QString::fromLatin1(b.icon)).pixmap(24, 24).toImage())
            << b.button;
    }
}
