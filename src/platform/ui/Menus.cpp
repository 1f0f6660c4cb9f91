#include "platform/ui/Menus.h"

#include <QAction>
#include <QMenu>
#include <QMenuBar>

namespace platform {

QAction* addMenuItem(QMenu* menu, std::vector<QAction*>& array, const QString& caption,
                     const QKeySequence& shortcut) {
    QAction* a = caption == QLatin1String("-") ? menu->addSeparator() : menu->addAction(caption);
    if (!shortcut.isEmpty()) a->setShortcut(shortcut);
    array.push_back(a);
    return a;
}

void addMenuItems(QMenu* menu, std::vector<QAction*>& array, std::initializer_list<MenuItem> items) {
    for (const MenuItem& item : items)
        addMenuItem(menu, array, item.caption, item.key);
}

void addCheckableItems(QMenu* menu, std::vector<QAction*>& array, const QStringList& captions,
                       QObject* receiver, const std::function<void(int)>& chosen) {
    for (int i = 0; i < captions.size(); ++i) {
        QAction* a = addMenuItem(menu, array, captions[i]);
        a->setCheckable(true);
        QObject::connect(a, &QAction::triggered, receiver, [chosen, i] { chosen(i); });
    }
}

void addGuideMenu(QMenuBar* bar, QObject* receiver, const std::function<void()>& showGuide) {
    QMenu* help = bar->addMenu(QStringLiteral("&Ohjeet"));
    QAction* guide = help->addAction(QString::fromUtf8("Käyttäjän opas"));
    guide->setShortcut(QKeySequence(Qt::Key_F1));
    QObject::connect(guide, &QAction::triggered, receiver, showGuide);
}

} // namespace platform
