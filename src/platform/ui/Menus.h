#pragma once
// Menus built item by item into a window's item array (`SubMenu0[i]`, ...): separators take an
// index too, so an item's index in the array is its place in the menu.
#include <QKeySequence>
#include <QString>
#include <QStringList>
#include <functional>
#include <initializer_list>
#include <vector>

class QAction;
class QMenu;
class QMenuBar;
class QObject;

namespace platform {

// Adds an item, or a separator for the caption "-", to `menu` and to the end of `array`.
QAction* addMenuItem(QMenu* menu, std::vector<QAction*>& array, const QString& caption,
                     const QKeySequence& shortcut = QKeySequence());

struct MenuItem {
    QString caption; // "-" for a separator
    QKeySequence key = {};
};
void addMenuItems(QMenu* menu, std::vector<QAction*>& array, std::initializer_list<MenuItem> items);

// Adds checkable items whose choice calls `chosen` with the item's index among them; the
// window itself keeps one of them checked.
void addCheckableItems(QMenu* menu, std::vector<QAction*>& array, const QStringList& captions,
                       QObject* receiver, const std::function<void(int)>& chosen);

// The "&Ohjeet" menu of a tool window: "Käyttäjän opas" (F1), which calls `showGuide`.
void addGuideMenu(QMenuBar* bar, QObject* receiver, const std::function<void()>& showGuide);

} // namespace platform
