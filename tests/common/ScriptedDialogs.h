#pragma once
// Dialogs for tests: answers come from a queue, and everything shown is recorded.
#include "platform/Dialogs.h"

#include <QStringList>
#include <deque>
#include <vector>

namespace testing_support {

class ScriptedDialogs : public platform::Dialogs {
public:
    ScriptedDialogs();           // installs itself
    ~ScriptedDialogs() override; // restores the Qt dialogs

    // Answers for the next questions, in order. A question without a queued answer fails
    // the running test and gets Cancel (No for a Yes/No box).
    void answer(platform::MsgAnswer a) { m_answers.push_back(a); }
    // Files for the next file dialogs; an empty list means the user cancelled.
    void chooseFiles(const QStringList& files) { m_files.push_back(files); }
    void chooseFile(const QString& file) {
        m_files.push_back(file.isEmpty() ? QStringList() : QStringList{file});
    }

    platform::MsgAnswer message(const platform::MessageRequest& request) override;
    QStringList files(const platform::FileRequest& request) override;
    std::optional<QFont> font(const QFont& initial) override;
    std::optional<QColor> color(const QColor& initial) override;

    const std::vector<platform::MessageRequest>& messages() const { return m_messages; }
    QStringList texts() const;
    QString lastText() const { return m_messages.empty() ? QString() : m_messages.back().text; }
    const std::vector<platform::FileRequest>& fileRequests() const { return m_fileRequests; }
    void clear() {
        m_messages.clear();
        m_fileRequests.clear();
    }
    bool allAnswersUsed() const { return m_answers.empty() && m_files.empty(); }

    std::optional<QFont> nextFont;
    std::optional<QColor> nextColor;
    // While set, a message takes the focus as a real message box does: a window of its own is
    // the active one while it is open, and the window before it is active again afterwards.
    bool takesFocus = false;

private:
    platform::MsgAnswer answerFor(const platform::MessageRequest& request);

    std::deque<platform::MsgAnswer> m_answers;
    std::deque<QStringList> m_files;
    std::vector<platform::MessageRequest> m_messages;
    std::vector<platform::FileRequest> m_fileRequests;
};

} // namespace testing_support
