#pragma once
// The help viewer: the program's HTML help pages in a window of their own, at a topic.
#include <QWidget>

class QTextBrowser;

namespace peripherals {

class HelpViewer : public QWidget {
    Q_OBJECT
public:
    explicit HelpViewer(QWidget* parent = nullptr);
    // Shows the help file at "#topic<context>"; false when the file does not exist.
    bool showTopic(const QString& helpFile, int context);
    QString currentSource() const;

private:
    QTextBrowser* m_browser;
};

// The separate help files: caption and target of each line of "HelpFiles.txt", at most 20.
struct HelpFileEntry {
    QString caption;
    QString target;
};
// Reads the list; a missing or unreadable file gives an empty list. Relative targets are
// taken from the program's directory.
std::vector<HelpFileEntry> ReadHelpFiles(const QString& appPath);

} // namespace peripherals
