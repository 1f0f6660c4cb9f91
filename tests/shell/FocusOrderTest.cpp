// The Tab key goes through every window in the order the window reads: top to bottom, left to
// right, a framed area or a column of fields through before the next, and reaches every control.
#include "MainWindowFixture.h"
#include "common/FocusOrder.h"
#include "documents/CompareWindow.h"
#include "documents/Form2.h"
#include "documents/Form3.h"
#include "lists/ListModel.h"
#include "lists/ui/ListView.h"
#include "print/ui/Form11.h"
#include "print/ui/Form12.h"
#include "shell/ProjectCheckWindow.h"
#include "shell/ShellActions.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QPushButton>
#include <QTimer>
#include <map>

namespace {

class FocusOrderTest : public SampleProjectFixture {
protected:
    // Walks the Tab key through `window` and keeps what is out of order under its name.
    // With `expected` (object names), the chain follows that order instead of the reading order
    // (the controls the window's mode leaves out of it left out).
    void walk(QWidget* window, const QString& note = QString(), const QStringList& expected = {}) {
        ASSERT_NE(window, nullptr);
        const QList<QWidget*> chain = testing_support::tabChain(window);
        QString name = QString::fromLatin1(window->metaObject()->className());
        if (!note.isEmpty()) name += QStringLiteral(" (") + note + QLatin1Char(')');
        // A window without controls (the preview's page, the picture viewer) has no chain; one
        // with controls the walk did not reach shows them among the faults.
        if (!chain.isEmpty()) ++withControls;
        QStringList& found = faults[QStringLiteral("%1 %2").arg(walked).arg(name)];
        if (expected.isEmpty()) {
            found = testing_support::tabOrderFaults(window, chain);
        } else {
            QStringList names;
            for (QWidget* w : chain)
                names << w->objectName();
            QStringList order = expected;
            order.removeIf([&](const QString& n) { return !names.contains(n); });
            EXPECT_EQ(names, order) << name.toStdString();
            found = testing_support::reachFaults(window, chain);
        }
        ++walked;
    }
    // Walks the modal window that `open` shows.
    void walkModal(const QString& note, const std::function<void()>& open) {
        whenModal([this, note](QWidget* modal) { walk(modal, note); });
        open();
    }
    void expectNoFaults(int windows, int windowsWithControls) {
        EXPECT_EQ(walked, windows);
        EXPECT_EQ(withControls, windowsWithControls);
        for (const auto& [window, list] : faults)
            EXPECT_TRUE(list.isEmpty())
                << window.toStdString() << ":\n  " << list.join(QStringLiteral("\n  ")).toStdString();
    }
    // Selects the first row of `view` with text in column `column` and gives the list the focus.
    void focusFirstFilledRow(lists::ListView* view, int column) {
        int row = 1;
        while (row < view->list()->rows() && view->list()->cell(row, column).toString().trimmed().isEmpty())
            ++row;
        view->list()->selectOnly(row);
        focus(view);
    }

    std::map<QString, QStringList> faults;
    int walked = 0;
    int withControls = 0;
};

} // namespace

TEST_F(FocusOrderTest, ProjectWindowsReadInOrderInEveryMode) {
    ASSERT_NE(openSample(), nullptr);
    for (int mode = 0; mode < static_cast<int>(main->Submenu10.size()); ++mode) {
        main->Submenu10Click(mode);
        for (int kind = 1; kind <= 4; ++kind) {
            main->showProjectWindow(kind);
            // A list's restriction box is on only while its list has the focus: it follows its list.
            const QStringList detailed = {"ListView1_0", "Check1_0", "ListView1_1", "Check1_1",
                                          "RichTextBox1_0"};
            walk(main->activeWindow(), main->Submenu10[mode]->text(), kind == 2 ? detailed : QStringList());
        }
    }
    expectNoFaults(4 * static_cast<int>(main->Submenu10.size()),
                   4 * static_cast<int>(main->Submenu10.size()));
}

TEST_F(FocusOrderTest, ListWindowsAndEditorsReadInOrder) {
    documents::Form2* f2 = openSample();
    ASSERT_NE(f2, nullptr);
    main->Submenu10Click(0);
    for (int slot : {6, 7}) {
        main->showBaseList(slot);
        QWidget* window = slot == 6 ? static_cast<QWidget*>(main->Form6) : main->Form7;
        showActive(window);
        walk(window, QString::number(slot));
    }
    QApplication::setActiveWindow(main.get());
    main->showProjectWindow(2);
    // The row editor on a quantity row and on a requirement, the text editor of the shown
    // document, the heading index.
    focusFirstFilledRow(f2->ListView1[0], 3);
    walkModal(QStringLiteral("määräluettelo"), [&] { main->EditMenuClick(0); });
    focusFirstFilledRow(f2->ListView1[1], 3);
    walkModal(QStringLiteral("laatuvaatimukset"), [&] { main->EditMenuClick(0); });
    // The editor's document took the Tab key as text: its changes do not go back.
    dialogs.answer(platform::MsgAnswer::No);
    walkModal(QStringLiteral("teksti"), [&] { main->Submenu3[9]->trigger(); });
    focusFirstFilledRow(f2->ListView1[1], 3);
    walkModal(QStringLiteral("otsikot"), [&] { main->toolbarButtons["Find"]->trigger(); });
    expectNoFaults(6, 6);
}

TEST_F(FocusOrderTest, DialogsReadInOrder) {
    documents::Form2* f2 = openSample();
    ASSERT_NE(f2, nullptr);
    walkModal(QStringLiteral("asetukset"), [&] { main->SubMenu1[0]->trigger(); });
    // The print selection with documents chosen, so that its output buttons are on, and the
    // preview it opens.
    whenModal([&](QWidget* modal) {
        auto* selection = qobject_cast<print::ui::Form11*>(modal);
        ASSERT_NE(selection, nullptr);
        selection->Check1[0]->click();
        selection->Check1[7]->click();
        walk(selection);
        // The preview comes after the pagination's progress window.
        auto* waiting = new QTimer(selection);
        QObject::connect(waiting, &QTimer::timeout, [&, waiting] {
            auto* preview = qobject_cast<print::ui::Form12*>(QApplication::activeModalWidget());
            if (!preview) return;
            waiting->stop();
            walk(preview);
            preview->close();
        });
        waiting->start(10);
        selection->Command1[7]->click();
    });
    main->FileMenuActions(7);
    walkModal(QStringLiteral("sähköposti"), [&] { main->FileMenuActions(8); });
    walkModal(QStringLiteral("tietoja"),
              [&] { main->HelpMenuClick(static_cast<int>(main->SubMenu4.size()) - 1); });
    main->showProjectWindow(3);
    auto* card = qobject_cast<documents::Form3*>(main->activeWindow());
    ASSERT_NE(card, nullptr);
    walkModal(QStringLiteral("kuva"), [&] { card->Command2[0]->click(); });
    expectNoFaults(6, 4);
}

TEST_F(FocusOrderTest, ComparisonAndCheckWindowsReadInOrder) {
    ASSERT_NE(openSample(), nullptr);
    const QString older = dir.filePath(QStringLiteral("vanha.sl"));
    ASSERT_TRUE(QFile::copy(testing_support::dataDir() + QStringLiteral("Esimerkkisilta.sl"), older));
    dialogs.chooseFile(older);
    main->CompareAction->trigger();
    QWidget* comparison = main->findChild<documents::CompareWindow*>();
    ASSERT_NE(comparison, nullptr);
    showActive(comparison);
    walk(comparison);
    QAction* check = main->findChild<QAction*>(QStringLiteral("CheckProject"));
    ASSERT_NE(check, nullptr);
    check->trigger();
    QWidget* findings = main->findChild<shell::ProjectCheckWindow*>();
    ASSERT_NE(findings, nullptr);
    showActive(findings);
    walk(findings);
    expectNoFaults(2, 2);
}
