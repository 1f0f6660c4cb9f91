#include "common/ScriptedDialogs.h"

#include <QApplication>
#include <QWidget>
#include <gtest/gtest.h>
#include <memory>

namespace testing_support {

using platform::MsgAnswer;
using platform::MsgButtons;

ScriptedDialogs::ScriptedDialogs() {
    platform::Dialogs::install(this);
}

ScriptedDialogs::~ScriptedDialogs() {
    platform::Dialogs::install(nullptr);
}

MsgAnswer ScriptedDialogs::message(const platform::MessageRequest& request) {
    m_messages.push_back(request);
    QWidget* before = QApplication::activeWindow();
    std::unique_ptr<QWidget> box;
    if (takesFocus) {
        box = std::make_unique<QWidget>();
        box->show();
        QApplication::setActiveWindow(box.get());
    }
    const MsgAnswer a = answerFor(request);
    if (box) {
        box.reset();
        if (before) QApplication::setActiveWindow(before);
    }
    return a;
}

MsgAnswer ScriptedDialogs::answerFor(const platform::MessageRequest& request) {
    if (request.buttons == MsgButtons::Ok) return MsgAnswer::Ok;
    if (m_answers.empty()) {
        ADD_FAILURE() << "unexpected question: " << request.text.toStdString();
        return request.buttons == MsgButtons::YesNo ? MsgAnswer::No : MsgAnswer::Cancel;
    }
    const MsgAnswer a = m_answers.front();
    m_answers.pop_front();
    return a;
}

QStringList ScriptedDialogs::files(const platform::FileRequest& request) {
    m_fileRequests.push_back(request);
    if (m_files.empty()) {
        ADD_FAILURE() << "unexpected file dialog";
        return {};
    }
    QStringList f = m_files.front();
    m_files.pop_front();
    return f;
}

std::optional<QFont> ScriptedDialogs::font(const QFont&) {
    return nextFont;
}

std::optional<QColor> ScriptedDialogs::color(const QColor&) {
    return nextColor;
}

QStringList ScriptedDialogs::texts() const {
    QStringList out;
    for (const auto& m : m_messages)
        out << m.text;
    return out;
}

} // namespace testing_support
