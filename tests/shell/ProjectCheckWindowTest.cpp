// The project check in the desktop program: the marks beside the cells of the detailed data
// window's lists, and the check window that goes to a finding's cell.
#include "MainWindowFixture.h"
#include "documents/CheckMarks.h"
#include "documents/Controls.h"
#include "documents/Form1.h"
#include "documents/Form2.h"
#include "lists/ListModel.h"
#include "lists/ListProcedures.h"
#include "lists/ui/ListView.h"
#include "shell/Captions.h"
#include "shell/ProjectCheckWindow.h"
#include "shell/ProjectFiles.h"

#include <QAction>
#include <QApplication>
#include <QFile>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QTemporaryDir>
#include <QTreeWidget>

namespace {

class ProjectCheckWindowTest : public MainWindowFixture {
protected:
    void SetUp() override {
        MainWindowFixture::SetUp();
        main->show();
        QApplication::setActiveWindow(main.get());
        QFile::copy(testing_support::dataDir() + "Esimerkkisilta.sl", dir.filePath("Esimerkkisilta.sl"));
        main->openFromCommandLine(dir.filePath("Esimerkkisilta.sl"));
        main->ToolbarMenuActions("Rulers");
        f2 = main->ParseFormIndeces().f2;
        ASSERT_NE(f2, nullptr);
        quantities = f2->list(0);
        // The priced rows of the sample's quantity list, in list order.
        for (int r = 1; r <= quantities->rows(); ++r)
            if (!lists::BlankString(quantities->cell(r, 4).toString()) &&
                !lists::BlankString(quantities->cell(r, 6).toString()))
                priced.push_back(r);
        ASSERT_GE(priced.size(), 12u);
    }

    shell::ProjectCheckWindow* openCheckWindow() {
        QAction* action = main->findChild<QAction*>("CheckProject");
        EXPECT_NE(action, nullptr);
        if (!action) return nullptr;
        EXPECT_TRUE(action->isEnabled());
        action->trigger();
        auto* window = main->findChild<shell::ProjectCheckWindow*>();
        EXPECT_NE(window, nullptr);
        if (window) EXPECT_TRUE(window->isVisible());
        return window;
    }

    // The line of the check window that shows a finding of this place, row and column.
    int lineOf(shell::ProjectCheckWindow& window, calc::CheckPlace place, int row, int column) {
        for (int i = 0; i < window.findingList()->topLevelItemCount(); ++i) {
            const calc::Finding* f = window.findingOf(i);
            if (f && f->place == place && f->row == row && f->column == column) return i;
        }
        return -1;
    }

    QTemporaryDir dir;
    documents::Form2* f2 = nullptr;
    lists::ListModel* quantities = nullptr;
    std::vector<int> priced;
};

} // namespace

TEST_F(ProjectCheckWindowTest, CellsThatDoNotReadAsTheyLookAreMarkedAsTheUserEdits) {
    lists::ListView* view = f2->ListView1[0];
    documents::CheckMarks* marks = documents::CheckMarks::of(view);
    ASSERT_NE(marks, nullptr);
    ASSERT_NE(documents::CheckMarks::of(f2->ListView1[1]), nullptr);
    const int row = priced[3];
    EXPECT_TRUE(marks->findingsAt(row, 4).empty());

    // As the user stores a cell, its mark follows.
    quantities->setCell(row, 4, "1.200,50");
    std::vector<calc::Finding> f = marks->findingsAt(row, 4);
    ASSERT_EQ(f.size(), 1u);
    EXPECT_EQ(f[0].severity, calc::Severity::Error);
    EXPECT_EQ(f[0].message,
              QStringLiteral("Määrä \"1.200,50\" luetaan arvoksi 1,2: kaksi desimaalierotinta"));
    quantities->setCell(row, 4, "1 200,50");
    EXPECT_TRUE(marks->findingsAt(row, 4).empty());
    quantities->setCell(row, 4, "12,5 m3");
    f = marks->findingsAt(row, 4);
    ASSERT_EQ(f.size(), 1u);
    EXPECT_EQ(f[0].severity, calc::Severity::Remark);

    // The marked cell is painted in the error colour, the one beside it is not.
    quantities->setCell(row, 4, "n. 40");
    quantities->clearSelection();
    view->scrollTo(quantities->index(row - 1, 3));
    QApplication::processEvents();
    const QImage shot = view->viewport()->grab().toImage();
    const QRect cell = view->cellRect(row, 4);
    const QRect beside = view->cellRect(row, 3);
    ASSERT_TRUE(shot.rect().contains(cell.bottomRight() - QPoint(2, 2)));
    EXPECT_EQ(shot.pixelColor(cell.bottomRight() - QPoint(3, 3)), QColor(255, 210, 210));
    EXPECT_NE(shot.pixelColor(beside.bottomRight() - QPoint(3, 3)), QColor(255, 210, 210));

    // Rows inserted above move the mark with the row.
    lists::AddListViewRow(*quantities, 1, true);
    EXPECT_TRUE(marks->findingsAt(row, 4).empty());
    EXPECT_EQ(marks->findingsAt(row + 1, 4).size(), 1u);

    // A weight out of range in the requirement list.
    lists::ListModel* requirements = f2->list(1);
    int requirement = 0;
    for (int r = 1; r <= requirements->rows() && !requirement; ++r)
        if (!lists::BlankString(requirements->cell(r, 2).toString()) &&
            requirements->cell(r, 4).toString().startsWith('1'))
            requirement = r;
    ASSERT_GT(requirement, 0);
    requirements->setCell(requirement, 11, "5-6");
    f = documents::CheckMarks::of(f2->ListView1[1])->findingsAt(requirement, 11);
    ASSERT_EQ(f.size(), 1u);
    EXPECT_EQ(f[0].message,
              QStringLiteral("Painoarvo \"5-6\" luetaan arvoksi 5: perässä oleva \"-6\" jätetään pois"));

    // Saving is not held up by what the check finds.
    dialogs.clear();
    const QString project = shell::ParseFileName(f2->caption()).project();
    EXPECT_TRUE(shell::WriteSlFile(*main, project, dir.filePath("Tallennettu.sl"), false));
    EXPECT_TRUE(dialogs.messages().empty()) << dialogs.lastText().toStdString();
}

TEST_F(ProjectCheckWindowTest, TheWindowListsTheFindingsAndGoesToTheirCells) {
    quantities->setCell(priced[9], 4, "1.200,50");
    quantities->setCell(priced[1], 6, "?");
    quantities->setCell(priced[10], 4, "12,5 m3");
    shell::ProjectCheckWindow* window = openCheckWindow();
    ASSERT_NE(window, nullptr);
    QTreeWidget* tree = window->findingList();
    ASSERT_EQ(tree->topLevelItemCount(), 3);
    EXPECT_EQ(calc::ErrorCount(window->findings()), 2);

    // In list order first, rows as numbers; by severity the errors come first.
    EXPECT_EQ(tree->topLevelItem(0)->text(2).toInt(), priced[1]);
    EXPECT_EQ(tree->topLevelItem(1)->text(2).toInt(), priced[9]);
    EXPECT_EQ(tree->topLevelItem(1)->text(1), QStringLiteral("Määräluettelo"));
    EXPECT_EQ(tree->topLevelItem(1)->text(3), QStringLiteral("MÄÄRÄ"));
    EXPECT_EQ(tree->topLevelItem(1)->text(4), QStringLiteral("1.200,50"));
    tree->sortByColumn(0, Qt::DescendingOrder);
    EXPECT_EQ(tree->topLevelItem(0)->text(0), QStringLiteral("Huomautus"));
    tree->sortByColumn(0, Qt::AscendingOrder);
    EXPECT_EQ(tree->topLevelItem(0)->text(0), QStringLiteral("Virhe"));
    EXPECT_EQ(tree->topLevelItem(2)->text(0), QStringLiteral("Huomautus"));
    tree->sortByColumn(2, Qt::DescendingOrder);
    EXPECT_EQ(tree->topLevelItem(0)->text(2).toInt(), priced[10]);
    EXPECT_EQ(tree->topLevelItem(2)->text(2).toInt(), priced[1]);

    // Enter on a line goes to its cell, which the list then shows selected.
    const int line = lineOf(*window, calc::CheckPlace::Quantities, priced[9], 4);
    ASSERT_GE(line, 0);
    tree->setCurrentItem(tree->topLevelItem(line));
    QTest::keyClick(tree, Qt::Key_Return);
    lists::ListView* view = f2->ListView1[0];
    EXPECT_EQ(main->activeWindow(), f2);
    EXPECT_EQ(quantities->selectedRows(), std::vector<int>{priced[9]});
    EXPECT_EQ(view->currentIndex(), quantities->index(priced[9] - 1, 3));
    EXPECT_TRUE(view->viewport()->rect().intersects(view->cellRect(priced[9], 4)));

    // A double-click does the same for the requirement list's lines.
    lists::ListModel* requirements = f2->list(1);
    int requirement = 0;
    for (int r = requirements->rows(); r >= 1 && !requirement; --r)
        if (!lists::BlankString(requirements->cell(r, 2).toString())) requirement = r;
    requirements->setCell(requirement, 21, "kyllä");
    window->recheck();
    const int reqLine = lineOf(*window, calc::CheckPlace::Requirements, requirement, 21);
    ASSERT_GE(reqLine, 0);
    QTreeWidgetItem* item = tree->topLevelItem(reqLine);
    tree->setCurrentItem(item);
    const QPoint at = tree->visualItemRect(item).center();
    QTest::mousePress(tree->viewport(), Qt::LeftButton, Qt::NoModifier, at);
    QTest::mouseDClick(tree->viewport(), Qt::LeftButton, Qt::NoModifier, at);
    EXPECT_EQ(requirements->selectedRows(), std::vector<int>{requirement});
    EXPECT_EQ(f2->ListView1[1]->currentIndex(), requirements->index(requirement - 1, 20));

    // A field of the basic data window: the window comes up with the field's text selected.
    documents::Form1* f1 = main->ParseFormIndeces().f1;
    f1->Combo1[3]->setText("n. 100");
    window->recheck();
    ASSERT_EQ(window->findings().front().place, calc::CheckPlace::BasicData);
    const int fieldLine = lineOf(*window, calc::CheckPlace::BasicData, 0, 3);
    ASSERT_GE(fieldLine, 0);
    tree->setCurrentItem(tree->topLevelItem(fieldLine));
    window->goToCurrent();
    EXPECT_EQ(main->activeWindow(), f1);
    // The field has the focus of the main window, which has it when it is active.
    EXPECT_EQ(main->focusWidget(), static_cast<QWidget*>(f1->Combo1[3]));
    EXPECT_EQ(f1->Combo1[3]->lineEdit()->selectedText(), QStringLiteral("n. 100"));
}

TEST_F(ProjectCheckWindowTest, TheWindowFollowsEditsAndTheProjectClosing) {
    shell::ProjectCheckWindow* window = openCheckWindow();
    ASSERT_NE(window, nullptr);
    EXPECT_EQ(window->findingList()->topLevelItemCount(), 0);
    EXPECT_TRUE(window->findChild<QLabel*>()->text().contains(QStringLiteral("ei löytynyt")));
    quantities->setCell(priced[2], 6, "45,50 €");
    QTRY_COMPARE_WITH_TIMEOUT(window->findingList()->topLevelItemCount(), 1, 3000);
    quantities->setCell(priced[2], 6, "45,50");
    QTRY_COMPARE_WITH_TIMEOUT(window->findingList()->topLevelItemCount(), 0, 3000);

    // Closing the project closes its check.
    main->activateWindow(f2);
    for (auto* w : main->projectWindows())
        main->FormUntouch(w);
    EXPECT_FALSE(main->UnloadActiveProject());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_FALSE(window->isVisible());
}

TEST_F(ProjectCheckWindowTest, F1OpensTheHelpOnTheCheck) {
    shell::ProjectCheckWindow* window = openCheckWindow();
    ASSERT_NE(window, nullptr);
    showActive(window);
    window->findingList()->setFocus();
    QTest::keyClick(window->findingList(), Qt::Key_F1);
    QApplication::processEvents();
    peripherals::HelpViewer* viewer = shownHelp();
    ASSERT_NE(viewer, nullptr);
    EXPECT_TRUE(viewer->currentSource().endsWith(QStringLiteral("#topic370")))
        << viewer->currentSource().toStdString();
    viewer->close();
}
