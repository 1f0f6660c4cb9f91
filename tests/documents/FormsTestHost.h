#pragma once
// A stand-in for the main window in the tests of the project windows: the application state
// with the shipped data folder as the program folder, and a record of what the windows asked.
#include "common/TestSupport.h"
#include "documents/DocumentHost.h"

#include <QGroupBox>
#include <QLabel>
#include <QList>
#include <QRect>
#include <QWidget>
#include <vector>

namespace testing_support {

class FormsTestHost : public documents::DocumentHost {
public:
    FormsTestHost() { state.AppPath = dataDir(); }
    shell::AppState& appState() override { return state; }
    void contentChanged(QWidget* window) override {
        if (!state.Loading) changed.push_back(window);
    }
    void listFocused(lists::ListView*) override {}
    void computeCardFigures(QWidget* card) override { computed.push_back(card); }
    void showHelp(int context, QWidget*) override { helpTopics.push_back(context); }

    shell::AppState state;
    std::vector<QWidget*> changed;
    std::vector<QWidget*> computed;
    std::vector<int> helpTopics;
};

// The fields that labels with this text name (their buddies), in the window's child order.
inline QList<QWidget*> buddiesOf(const QWidget* root, const QString& text) {
    QList<QWidget*> out;
    for (QLabel* label : root->findChildren<QLabel*>())
        if (label->text() == text && label->buddy()) out.append(label->buddy());
    return out;
}

// The framed area with this caption.
inline QGroupBox* frameTitled(const QWidget& window, const QString& title) {
    for (QGroupBox* g : window.findChildren<QGroupBox*>())
        if (g->title() == title) return g;
    return nullptr;
}

// A widget's rectangle in the coordinates of `root`.
inline QRect rectIn(const QWidget* w, const QWidget* root) {
    return QRect(w->mapTo(root, QPoint(0, 0)), w->size());
}

// Side by side on one row: their vertical extents overlap around the middle.
inline bool sameRow(const QWidget* a, const QWidget* b, const QWidget* root) {
    const QRect ra = rectIn(a, root);
    const QRect rb = rectIn(b, root);
    return ra.center().y() >= rb.top() && ra.center().y() <= rb.bottom();
}

// In one column: their horizontal extents overlap.
inline bool sameColumn(const QWidget* a, const QWidget* b, const QWidget* root) {
    const QRect ra = rectIn(a, root);
    const QRect rb = rectIn(b, root);
    return ra.left() <= rb.right() && rb.left() <= ra.right();
}

} // namespace testing_support
