#pragma once
// The order in which the Tab key goes through a window's controls, given as one list (Qt 6.4
// takes it only pair by pair).
#include <QWidget>
#include <initializer_list>

namespace platform {

// Puts the controls one after the other in the Tab key's order; null entries are skipped.
inline void setTabOrder(std::initializer_list<QWidget*> controls) {
    QWidget* before = nullptr;
    for (QWidget* w : controls) {
        if (!w) continue;
        if (before) QWidget::setTabOrder(before, w);
        before = w;
    }
}

} // namespace platform
