// The keys of the menus: the File menu's usual keys, the keys that belong to given items, no
// key shared by two items of one window (every menu of every window walked), and moving
// between the project windows from the keyboard.
#include "MainWindowFixture.h"
#include "documents/Form2.h"
#include "documents/Form5.h"
#include "documents/Form9.h"
#include "lists/ListModel.h"
#include "lists/ui/ListView.h"
#include "shell/ShellActions.h"

#include <QAction>
#include <QApplication>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenu>
#include <QTemporaryDir>
#include <QTimer>
#include <functional>
#include <map>
#include <set>

namespace {

// Every action whose key acts in `window`: those of its menus, toolbars and widgets. Keys of a
// single widget (Qt::WidgetShortcut) act only where that widget has the focus and are left out.
std::set<QAction*> actionsOf(QWidget* window) {
    std::set<QAction*> out;
    QList<QWidget*> widgets = window->findChildren<QWidget*>();
    widgets.prepend(window);
    for (QWidget* w : widgets) {
        // Only what belongs to this window: the windows it owns (the base list windows of the
        // main window) have keys of their own. Its pop-up menus are windows too, but its.
        QWidget* owner = w;
        while (owner && owner != window && (!owner->isWindow() || qobject_cast<QMenu*>(owner)))
            owner = owner->parentWidget();
        if (owner != window) continue;
        for (QAction* a : w->actions()) {
            if (a->isSeparator() || a->shortcutContext() == Qt::WidgetShortcut) continue;
            out.insert(a);
            if (QMenu* sub = a->menu())
                for (QAction* s : sub->actions())
                    if (!s->isSeparator()) out.insert(s);
        }
    }
    return out;
}

// "key: item, item" for every key that two or more items of the window share.
QStringList sharedKeys(QWidget* window) {
    std::map<QString, QStringList> byKey;
    for (QAction* a : actionsOf(window))
        for (const QKeySequence& key : a->shortcuts())
            if (!key.isEmpty()) byKey[key.toString()] << a->text();
    QStringList out;
    for (const auto& [key, items] : byKey)
        if (items.size() > 1) out << key + QStringLiteral(": ") + items.join(QStringLiteral(", "));
    return out;
}

// The item of the window that the key triggers; empty when none.
QStringList itemsForKey(QWidget* window, const QKeySequence& key) {
    QStringList out;
    for (QAction* a : actionsOf(window))
        if (a->shortcuts().contains(key)) out << a->text();
    return out;
}

class MenuKeysTest : public MainWindowFixture {
protected:
    void SetUp() override {
        MainWindowFixture::SetUp();
        main->show();
        QApplication::setActiveWindow(main.get());
    }
    QTemporaryDir dir;
};

} // namespace

TEST_F(MenuKeysTest, FileMenuHasTheUsualKeysAndGivenKeysKeepTheirItems) {
    const std::pair<QKeySequence, QString> keys[] = {
        {QKeySequence(Qt::CTRL | Qt::Key_N), QStringLiteral("&Uusi")},
        {QKeySequence(Qt::CTRL | Qt::Key_O), QStringLiteral("&Avaa...")},
        {QKeySequence(Qt::CTRL | Qt::Key_S), QStringLiteral("&Tallenna")},
        {QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_S), QStringLiteral("Tallenna &nimellä...")},
        {QKeySequence(Qt::CTRL | Qt::Key_P), QStringLiteral("Tu&losta")},
        {QKeySequence(Qt::Key_F1), QStringLiteral("Käyttäjän opas")},
        {QKeySequence(Qt::CTRL | Qt::Key_Tab), QStringLiteral("&Seuraava ikkuna")},
        {QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Backtab), QStringLiteral("&Edellinen ikkuna")},
        // Keys the program had before keep their items.
        {QKeySequence(Qt::CTRL | Qt::Key_Q), QStringLiteral("&Perustiedot")},
        {QKeySequence(Qt::CTRL | Qt::Key_W), QStringLiteral("&Yksityiskohtaiset tiedot")},
        {QKeySequence(Qt::CTRL | Qt::Key_E), QStringLiteral("&Ominaistietokortti")},
        {QKeySequence(Qt::CTRL | Qt::Key_R), QStringLiteral("P&anostilakortti")},
        {QKeySequence(Qt::CTRL | Qt::Key_F), QStringLiteral("Siirry...")},
        {QKeySequence(Qt::CTRL | Qt::Key_I), QStringLiteral("Lisää &rivi")},
        {QKeySequence(Qt::CTRL | Qt::Key_L), QStringLiteral("Lis&ää rivi luettelon loppuun")},
    };
    for (const auto& [key, item] : keys)
        EXPECT_EQ(itemsForKey(main.get(), key), QStringList{item}) << key.toString().toStdString();
    // The base lists' Ctrl+A still adds, and Ctrl+F goes to a heading there too.
    for (lists::BaseListWindow* window : {main->Form6, main->Form7}) {
        ASSERT_NE(window, nullptr);
        EXPECT_EQ(itemsForKey(window, QKeySequence(Qt::CTRL | Qt::Key_A)),
                  QStringList{QStringLiteral("Lisää")});
        EXPECT_EQ(itemsForKey(window, QKeySequence(Qt::CTRL | Qt::Key_F)),
                  QStringList{QStringLiteral("Siirry...")});
    }
}

TEST_F(MenuKeysTest, NoTwoItemsOfAWindowShareAKey) {
    QFile::copy(testing_support::dataDir() + "Esimerkkisilta.sl", dir.filePath("Esimerkkisilta.sl"));
    main->openFromCommandLine(dir.filePath("Esimerkkisilta.sl"));
    main->ToolbarMenuActions("Rulers");
    documents::Form2* f2 = main->ParseFormIndeces().f2;
    ASSERT_NE(f2, nullptr);

    std::map<QString, QStringList> shared;
    int walked = 0;
    const auto walk = [&](QWidget* window) {
        ASSERT_NE(window, nullptr);
        shared[window->metaObject()->className() + QStringLiteral(" ") + window->windowTitle()] =
            sharedKeys(window);
        ++walked;
    };
    walk(main.get());
    walk(main->Form6);
    walk(main->Form7);
    // The row editor on the requirement list, and the text editor of the shown document.
    lists::ListView* requirements = f2->ListView1[1];
    int first = 1;
    while (requirements->list()->cell(first, 2).toString().trimmed().isEmpty())
        ++first;
    requirements->list()->selectOnly(first);
    requirements->setFocus();
    QApplication::processEvents();
    whenModal([&](QWidget* modal) {
        EXPECT_NE(qobject_cast<documents::Form5*>(modal), nullptr);
        walk(modal);
    });
    main->EditMenuClick(0);
    whenModal([&](QWidget* modal) {
        EXPECT_NE(qobject_cast<documents::Form9*>(modal), nullptr);
        walk(modal);
    });
    main->Submenu3[9]->trigger();
    EXPECT_EQ(walked, 5);
    for (const auto& [window, keys] : shared)
        EXPECT_TRUE(keys.isEmpty()) << window.toStdString() << ": " << keys.join(" | ").toStdString();
}

TEST_F(MenuKeysTest, CtrlTabGoesRoundTheProjectWindows) {
    QMdiArea* area = main->mdiArea;
    QList<QMdiSubWindow*> shown;
    for (QMdiSubWindow* sub : area->subWindowList(QMdiArea::CreationOrder))
        if (sub->isVisible()) shown << sub;
    ASSERT_EQ(shown.size(), 4);
    area->setActiveSubWindow(shown[0]);
    QApplication::processEvents();
    for (int i = 1; i <= 4; ++i) {
        QWidget* focus = QApplication::focusWidget();
        ASSERT_NE(focus, nullptr);
        QTest::keyClick(focus, Qt::Key_Tab, Qt::ControlModifier);
        EXPECT_EQ(area->currentSubWindow(), shown[i % 4]) << i;
    }
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Backtab, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(area->currentSubWindow(), shown[3]);
}
