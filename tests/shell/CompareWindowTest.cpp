// "&Vertaa projektia...": the open project against an older version of it from a file, in the
// comparison window: the summary, the coloured table and its filters, the switch of the two
// versions, going to a row, and the PDF.
#include "MainWindowFixture.h"
#include "common/SampleVersions.h"
#include "documents/CompareWindow.h"
#include "documents/Form1.h"
#include "documents/Form2.h"
#include "lists/ListModel.h"
#include "platform/TextFile.h"
#include "print/PrintRun.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QTableView>
#include <QTableWidget>
#include <QTemporaryDir>

namespace {

using namespace testing_support;

class CompareWindowTest : public MainWindowFixture {
protected:
    void SetUp() override {
        MainWindowFixture::SetUp();
        // The open project is the sample; the other version is older: one quantity less, one
        // row it did not have yet, another requirement mark.
        persist::ProjectFile project = readSample();
        recordRow(project, 1, 0, 2, QStringLiteral("Maankaivu kuivana"))->set(3, u"1300");
        auto& rows = project.content.windows[1].lists[0].rows;
        rows.erase(std::find(rows.begin(), rows.end(),
                             *recordRow(project, 1, 0, 2, QStringLiteral("Kaivu vedestä"))));
        project.content.windows[0].texts[0] = QStringLiteral("Kirkkojoen silta (luonnos)");
        writeProject(project, older);
        dialogs.chooseFile(sampleCopy());
        main->FileMenuActions(1);
        ASSERT_TRUE(main->ParseFormIndeces().complete());
    }

    documents::CompareWindow* openComparison() {
        dialogs.chooseFile(older);
        main->CompareAction->trigger();
        return main->findChild<documents::CompareWindow*>();
    }

    QTemporaryDir dir;
    QString older = dir.filePath(QStringLiteral("luonnos.sl"));
};

} // namespace

TEST_F(CompareWindowTest, ShowsTheSummaryAndTheChangesOfTheOpenProjectAgainstTheOtherVersion) {
    ASSERT_TRUE(main->CompareAction->isEnabled());
    EXPECT_EQ(main->CompareAction->text(), QStringLiteral("&Vertaa projektia..."));
    documents::CompareWindow* window = openComparison();
    ASSERT_NE(window, nullptr);
    EXPECT_TRUE(window->isVisible());
    EXPECT_EQ(window->windowTitle(), QStringLiteral("TAMRIK 2006 - Muutosvertailu"));
    EXPECT_EQ(window->OldLabel->text(),
              QStringLiteral("Vanha versio: ") + QFileInfo(older).absoluteFilePath());
    EXPECT_TRUE(window->NewLabel->text().endsWith(QStringLiteral("Esimerkkisilta.sl (avoin projekti)")));

    // The summary: the estimate of both versions, with the change.
    const calc::ProjectComparison& c = window->comparison();
    ASSERT_EQ(window->Summary->rowCount(), static_cast<int>(c.summary.size()));
    EXPECT_EQ(window->Summary->item(0, 0)->text(), QStringLiteral("KUSTANNUSARVIO (€)"));
    EXPECT_TRUE(window->Summary->item(0, 0)->font().bold());
    EXPECT_EQ(window->Summary->item(1, 0)->text(), QStringLiteral("Rakennuskustannukset, silta"));
    // 150 m3 more at 8,00 and a row of 1450 m3 at 14,00: 21 500 more than the older version.
    EXPECT_EQ(window->Summary->item(1, 3)->text(), QStringLiteral("+21\u00A0500,00"));

    // The table: kinds in a column of their own and in colour.
    QAbstractItemModel* model = window->Changes->model();
    ASSERT_EQ(model->rowCount(), 3); // the quantity, the added row, the bridge's name
    auto cell = [model](int row, int col) { return model->index(row, col).data().toString(); };
    EXPECT_EQ(cell(0, 0), QStringLiteral("Muutettu"));
    EXPECT_EQ(cell(0, 2), QStringLiteral("7110 / 7111 / Maankaivu kuivana"));
    EXPECT_EQ(cell(0, 3), QStringLiteral("MÄÄRÄ"));
    EXPECT_EQ(cell(0, 4), QStringLiteral("1300"));
    EXPECT_EQ(cell(0, 5), QStringLiteral("1450"));
    EXPECT_EQ(cell(0, 6), QStringLiteral("+1\u00A0200,00"));
    EXPECT_EQ(cell(1, 0), QStringLiteral("Lisätty"));
    EXPECT_EQ(cell(1, 2), QStringLiteral("7110 / 7111 / Kaivu vedestä"));
    const QColor changed = model->index(0, 0).data(Qt::BackgroundRole).value<QColor>();
    const QColor added = model->index(1, 0).data(Qt::BackgroundRole).value<QColor>();
    EXPECT_EQ(changed, documents::ChangeTableModel::kindColor(calc::ChangeKind::Changed));
    EXPECT_EQ(added, documents::ChangeTableModel::kindColor(calc::ChangeKind::Added));
    EXPECT_GT(added.green(), added.red());
    // The legend is the kind filter, with the counts.
    EXPECT_EQ(window->KindFilter[0]->text(), QStringLiteral("Lisätty (1)"));
    EXPECT_EQ(window->KindFilter[1]->text(), QStringLiteral("Poistettu (0)"));
    EXPECT_EQ(window->KindFilter[2]->text(), QStringLiteral("Muutettu (2)"));

    // Filters by kind and by list.
    window->KindFilter[0]->setChecked(false);
    EXPECT_EQ(model->rowCount(), 2);
    window->ListFilter->setCurrentIndex(3); // the fields
    ASSERT_EQ(model->rowCount(), 1);
    EXPECT_EQ(cell(0, 1), QStringLiteral("Perustiedot"));
    EXPECT_EQ(cell(0, 2), QStringLiteral("Sillan nimi"));
    EXPECT_EQ(window->CountLabel->text(), QStringLiteral("1 / 3 riviä"));
    window->ListFilter->setCurrentIndex(0);
    window->KindFilter[0]->setChecked(true);
    EXPECT_EQ(model->rowCount(), 3);

    // The switch: the open project is the older one, so its extra row was removed.
    window->OpenIsOld->setChecked(true);
    EXPECT_EQ(window->KindFilter[1]->text(), QStringLiteral("Poistettu (1)"));
    EXPECT_EQ(window->KindFilter[0]->text(), QStringLiteral("Lisätty (0)"));
    EXPECT_TRUE(window->OldLabel->text().endsWith(QStringLiteral("(avoin projekti)")));
    EXPECT_EQ(cell(0, 4), QStringLiteral("1450"));
    EXPECT_EQ(window->Summary->item(1, 3)->text(), QStringLiteral("-21\u00A0500,00"));
    EXPECT_TRUE(dialogs.allAnswersUsed());
}

TEST_F(CompareWindowTest, ADoubleClickGoesToTheRowInTheProjectWindow) {
    documents::CompareWindow* window = openComparison();
    ASSERT_NE(window, nullptr);
    documents::Form2* f2 = main->ParseFormIndeces().f2;
    lists::ListModel* quantities = f2->list(0);
    // A row inserted above after the comparison: the row is still found by its row number.
    main->activateWindow(f2);
    quantities->insertEmptyRow(1);
    window->showChange(0);
    EXPECT_EQ(main->activeWindow(), static_cast<documents::ProjectWindow*>(f2));
    const int selected = quantities->selectedRow();
    ASSERT_GT(selected, 0);
    EXPECT_EQ(quantities->cell(selected, 2).toString(), QStringLiteral("Maankaivu kuivana"));

    // A field goes to its window.
    window->ListFilter->setCurrentIndex(3);
    window->showChange(0);
    EXPECT_EQ(main->activeWindow(), static_cast<documents::ProjectWindow*>(main->ParseFormIndeces().f1));

    // When the project is closed, the window says so.
    window->ListFilter->setCurrentIndex(0);
    for (auto* w : main->projectWindows())
        main->FormUntouch(w);
    main->UnloadActiveProject();
    window->showChange(0);
    EXPECT_EQ(dialogs.lastText(), QStringLiteral("Vertailtu projekti ei ole enää auki."));
}

TEST_F(CompareWindowTest, PrintsTheComparisonToAPdfFile) {
    documents::CompareWindow* window = openComparison();
    ASSERT_NE(window, nullptr);
    const QString pdf = dir.filePath(QStringLiteral("vertailu.pdf"));
    dialogs.chooseFile(pdf);
    ASSERT_TRUE(window->printToPdf());
    EXPECT_TRUE(dialogs.fileRequests().back().fileName.endsWith(QStringLiteral("muutosvertailu.pdf")));
    QByteArray bytes;
    ASSERT_TRUE(platform::readFileBytes(pdf, bytes));
    EXPECT_TRUE(bytes.startsWith("%PDF"));
    // The run behind it: a front page and the comparison, landscape for the table's width.
    std::unique_ptr<print::PrintRun> run = window->makeRun();
    ASSERT_EQ(run->PageCount(), print::PageCountResult::Done);
    EXPECT_TRUE(run->page().Landscape);
    ASSERT_GE(run->TotalPages(), 2);
    EXPECT_EQ(run->entry(1).document, print::doc::Comparison);
    EXPECT_EQ(run->entry(run->TotalPages()).count, run->TotalPages());
}

TEST_F(CompareWindowTest, AFileThatIsNoProjectIsNamedAndNothingOpens) {
    const QString damaged = dir.filePath(QStringLiteral("rikki.sl"));
    ASSERT_TRUE(platform::writeFileAtomically(damaged, QByteArray("ei projektitiedosto")));
    dialogs.chooseFile(damaged);
    main->CompareAction->trigger();
    EXPECT_EQ(main->findChild<documents::CompareWindow*>(), nullptr);
    EXPECT_TRUE(dialogs.lastText().startsWith(QStringLiteral("Tiedostoa ") + damaged +
                                              QStringLiteral(" ei voi vertailla:")));
    // Cancelling the file dialog does nothing.
    dialogs.clear();
    dialogs.chooseFile(QString());
    main->CompareAction->trigger();
    EXPECT_EQ(main->findChild<documents::CompareWindow*>(), nullptr);
    EXPECT_TRUE(dialogs.messages().empty());
}

TEST_F(CompareWindowTest, F1OpensTheHelpOnTheComparison) {
    documents::CompareWindow* window = openComparison();
    ASSERT_NE(window, nullptr);
    showActive(window);
    window->Changes->setFocus();
    QTest::keyClick(window->Changes, Qt::Key_F1);
    QApplication::processEvents();
    peripherals::HelpViewer* viewer = shownHelp();
    ASSERT_NE(viewer, nullptr);
    EXPECT_TRUE(viewer->currentSource().endsWith(QStringLiteral("#topic380")))
        << viewer->currentSource().toStdString();
    viewer->close();
}
