#pragma once
// The Tab key's path through a window, pressed as the user presses it, and the places where
// that path leaves the order in which the window reads (top to bottom, left to right, a framed
// area or a column of fields read through before the next).
#include <QList>
#include <QString>
#include <QStringList>

class QWidget;

namespace testing_support {

// The controls the Tab key visits in `root` (a window, or a project window inside the MDI
// area), from the first control of its focus chain until the focus comes back to it or leaves
// `root`. A control that keeps the Tab key ends the walk and is reported by `tabOrderFaults`.
QList<QWidget*> tabChain(QWidget* root);

// The controls of `chain` that come before the one they follow in the reading order of `root`.
QStringList readingOrderFaults(QWidget* root, const QList<QWidget*>& chain);
// The controls of `root` the Tab key never reaches in `chain`, and one that keeps the key.
QStringList reachFaults(QWidget* root, const QList<QWidget*>& chain);

// What is wrong with `chain` in `root`, both of the above: a control that comes before the one it follows in
// the reading order, a control the Tab key never reaches, a control that keeps the Tab key. Empty when the
// chain reads as the window does.
QStringList tabOrderFaults(QWidget* root, const QList<QWidget*>& chain);

// The same for the chain walked in `root` now.
QStringList tabOrderFaults(QWidget* root);

// "QLineEdit Text1_0 "Sillan nimi" at (x, y w×h)": a control for a failure message.
QString describeControl(QWidget* control, QWidget* root);

} // namespace testing_support
