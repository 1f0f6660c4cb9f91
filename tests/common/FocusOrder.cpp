#include "FocusOrder.h"

#include <QAccessible>
#include <QApplication>
#include <QTest>
#include <QTextEdit>
#include <QWidget>

namespace testing_support {

namespace {

// Whether the Tab key may stop at `w` in `root`: as Qt decides it (tab focus, shown, enabled,
// not handing its focus to another widget), and not inside a window `root` owns.
bool takesTab(QWidget* w, QWidget* root) {
    if (!(w->focusPolicy() & Qt::TabFocus) || w->focusProxy() || !w->isEnabled() || !w->isVisibleTo(root) ||
        !root->isAncestorOf(w))
        return false;
    for (QWidget* p = w; p != root; p = p->parentWidget())
        if (p->isWindow()) return false;
    return true;
}

// Where the focus goes from `w` when the user presses Tab; `w` itself when it keeps the key.
QWidget* afterTab(QWidget* w) {
    w->setFocus(Qt::TabFocusReason);
    QApplication::processEvents();
    QWidget* from = QApplication::focusWidget();
    if (!from) return nullptr;
    QTest::keyClick(from, Qt::Key_Tab);
    QApplication::processEvents();
    return QApplication::focusWidget();
}

// A rich-text document takes the Tab key as a tab character, as a word processor does; the
// rest of its window stays reachable from the keys of the labels and by Ctrl+Tab.
bool writesTabs(QWidget* w) {
    auto* edit = qobject_cast<QTextEdit*>(w);
    return edit && !edit->isReadOnly() && !edit->tabChangesFocus();
}

// The control after `w` in the focus chain that the Tab key would stop at in `root`.
QWidget* nextInChain(QWidget* w, QWidget* root) {
    for (QWidget* n = w->nextInFocusChain(); n && n != w; n = n->nextInFocusChain())
        if (takesTab(n, root)) return n;
    return nullptr;
}

QWidget* commonAncestor(QWidget* a, QWidget* b) {
    for (QWidget* p = a; p; p = p->parentWidget())
        if (p == b || p->isAncestorOf(b)) return p;
    return nullptr;
}

// The child of `ancestor` that holds `w`, or `w` itself.
QWidget* childHolding(QWidget* ancestor, QWidget* w) {
    while (w->parentWidget() != ancestor)
        w = w->parentWidget();
    return w;
}

// Whether `a` is read before `b`. The two are compared where their parents part: the boxes
// that hold them there are read top to bottom, and side by side (overlapping in height) from
// left to right, so a framed area or a column of fields is read through before the next.
bool readsBefore(QWidget* a, QWidget* b) {
    QWidget* common = commonAncestor(a, b);
    if (common == a) return true; // a control before the controls inside it
    if (common == b || !common) return false;
    const QRect ra = childHolding(common, a)->geometry();
    const QRect rb = childHolding(common, b)->geometry();
    const int slack = 2; // neighbours in a row may touch by a pixel or two
    if (ra.bottom() < rb.top() + slack) return true;
    if (rb.bottom() < ra.top() + slack) return false;
    return ra.left() < rb.left() || (ra.left() == rb.left() && ra.top() <= rb.top());
}

} // namespace

QString describeControl(QWidget* control, QWidget* root) {
    QAccessibleInterface* iface = QAccessible::queryAccessibleInterface(control);
    const QString name = iface ? iface->text(QAccessible::Name) : QString();
    const QRect r(control->mapTo(root, QPoint(0, 0)), control->size());
    QString object = control->objectName();
    if (object.isEmpty() && control->parentWidget()) object = control->parentWidget()->objectName();
    return QStringLiteral("%1 %2 \"%3\" at (%4, %5 %6x%7)")
        .arg(QString::fromLatin1(control->metaObject()->className()), object, name)
        .arg(r.x())
        .arg(r.y())
        .arg(r.width())
        .arg(r.height());
}

QList<QWidget*> tabChain(QWidget* root) {
    QApplication::setActiveWindow(root->window());
    QWidget* first = nextInChain(root, root);
    if (!first) return {};
    first->setFocus(Qt::TabFocusReason);
    QApplication::processEvents();
    QWidget* start = QApplication::focusWidget();
    if (!start || !root->isAncestorOf(start)) return {};
    QList<QWidget*> chain{start};
    for (QWidget* at = start;;) {
        QWidget* next = afterTab(at);
        // Past a document that keeps the key, the walk goes on where the focus chain does.
        if (next == at && writesTabs(at)) next = nextInChain(at, root);
        if (!next || next == at || next == start || !root->isAncestorOf(next) || chain.contains(next)) break;
        chain << next;
        at = next;
    }
    return chain;
}

QStringList readingOrderFaults(QWidget* root, const QList<QWidget*>& chain) {
    QStringList faults;
    for (int i = 1; i < chain.size(); ++i)
        if (!readsBefore(chain[i - 1], chain[i]))
            faults << QStringLiteral("%1 comes after %2")
                          .arg(describeControl(chain[i], root), describeControl(chain[i - 1], root));
    return faults;
}

QStringList reachFaults(QWidget* root, const QList<QWidget*>& chain) {
    QStringList faults;
    if (chain.size() > 1 && !writesTabs(chain.last()) && afterTab(chain.last()) == chain.last())
        faults << QStringLiteral("%1 keeps the Tab key").arg(describeControl(chain.last(), root));
    for (QWidget* w : root->findChildren<QWidget*>())
        if (takesTab(w, root) && !chain.contains(w))
            faults << QStringLiteral("%1 is never reached").arg(describeControl(w, root));
    return faults;
}

QStringList tabOrderFaults(QWidget* root, const QList<QWidget*>& chain) {
    return readingOrderFaults(root, chain) + reachFaults(root, chain);
}

QStringList tabOrderFaults(QWidget* root) {
    return tabOrderFaults(root, tabChain(root));
}

} // namespace testing_support
