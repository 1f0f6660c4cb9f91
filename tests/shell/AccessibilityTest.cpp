// What a screen reader finds in the windows: every control the keyboard reaches has a name
// (the label beside it), and the lists tell their column headers.
#include "MainWindowFixture.h"
#include "documents/Form2.h"
#include "lists/ListModel.h"
#include "lists/ui/ListView.h"
#include "shell/ShellActions.h"

#include <QAccessible>
#include <QAccessibleTableInterface>
#include <QApplication>
#include <QTimer>
#include <functional>

namespace {

// The controls of `window` that take the keyboard focus and have no accessible name.
QStringList unnamedControls(QWidget* window) {
    QStringList out;
    for (QWidget* w : window->findChildren<QWidget*>()) {
        if (w->focusPolicy() == Qt::NoFocus || !w->isVisibleTo(window) || !w->isEnabled()) continue;
        // Not the controls of the windows it owns (the main window's base list windows).
        QWidget* owner = w;
        while (owner != window && !owner->isWindow())
            owner = owner->parentWidget();
        if (owner != window) continue;
        // The parts Qt puts inside its own controls (a spin box's line edit, a view's viewport)
        // are named through the control.
        if (w->focusProxy()) continue;
        QAccessibleInterface* iface = QAccessible::queryAccessibleInterface(w);
        const QString name = iface ? iface->text(QAccessible::Name).trimmed() : QString();
        if (name.isEmpty())
            // An edit box inside a text box is told by the text box's name.
            out << QStringLiteral("%1 %2").arg(QString::fromLatin1(w->metaObject()->className()),
                                               w->objectName().isEmpty() && w->parentWidget()
                                                   ? w->parentWidget()->objectName()
                                                   : w->objectName());
    }
    return out;
}

class AccessibilityTest : public MainWindowFixture {
protected:
    void SetUp() override {
        MainWindowFixture::SetUp();
        main->show();
        QApplication::setActiveWindow(main.get());
    }
};

} // namespace

TEST_F(AccessibilityTest, EveryControlTheKeyboardReachesHasAName) {
    std::map<QString, QStringList> unnamed;
    int checked = 0;
    const auto check = [&](QWidget* window) {
        ASSERT_NE(window, nullptr);
        unnamed[QString::fromLatin1(window->metaObject()->className()) + " " + window->windowTitle()] =
            unnamedControls(window);
        ++checked;
    };
    main->Submenu10Click(0); // the designer, whose windows have the most controls enabled
    for (int kind = 1; kind <= 4; ++kind) {
        main->showProjectWindow(kind);
        check(main->activeWindow());
    }
    main->showBaseList(6);
    check(main->Form6);
    main->showBaseList(7);
    check(main->Form7);
    whenModal(check);
    main->SubMenu1[0]->trigger(); // the settings dialog
    whenModal(check);
    main->FileMenuActions(7); // the print selection
    EXPECT_EQ(checked, 8);
    for (const auto& [window, controls] : unnamed)
        EXPECT_TRUE(controls.isEmpty()) << window.toStdString() << ": " << controls.join(", ").toStdString();
}

TEST_F(AccessibilityTest, ListsTellTheirColumnHeaders) {
    main->showProjectWindow(2);
    documents::Form2* f2 = main->ParseFormIndeces().f2;
    ASSERT_NE(f2, nullptr);
    for (lists::ListView* view : f2->ListView1) {
        QAccessibleInterface* iface = QAccessible::queryAccessibleInterface(view);
        ASSERT_NE(iface, nullptr);
        EXPECT_FALSE(iface->text(QAccessible::Name).isEmpty());
        QAccessibleTableInterface* table = iface->tableInterface();
        ASSERT_NE(table, nullptr);
        const lists::ListModel& list = *view->list();
        ASSERT_GT(list.cols(), 3);
        EXPECT_EQ(table->columnCount(), list.cols());
        for (int c = 1; c <= list.cols(); ++c)
            EXPECT_EQ(table->columnDescription(c - 1), list.column(c).header) << c;
    }
}
