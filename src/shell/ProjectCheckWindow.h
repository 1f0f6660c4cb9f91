#pragma once
// The window of the project check ("&Tarkista projekti"): what the check finds in the active
// project, one finding a line, sortable by severity, list and row. A double-click or Enter on
// a line goes to its cell in the project's window and selects it. The list follows the
// project's edits; nothing here changes the project.
#include "calc/ProjectCheck.h"

#include <QPointer>
#include <QWidget>
#include <optional>
#include <tuple>
#include <vector>

class QLabel;
class QPushButton;
class QTimer;
class QTreeWidget;

namespace documents {
class Form1;
class Form2;
} // namespace documents

namespace shell {

class MDIForm1;

class ProjectCheckWindow : public QWidget {
    Q_OBJECT
public:
    explicit ProjectCheckWindow(MDIForm1& main);

    // Checks the project of these two windows and shows the findings.
    void checkProject(documents::Form1* basicData, documents::Form2* detailedData);
    // Checks the same project again.
    void recheck();
    // Goes to the cell of the current line's finding, in the window that shows it.
    void goToCurrent();

    QTreeWidget* findingList() const { return m_tree; }
    const std::vector<calc::Finding>& findings() const { return m_findings; }
    // The finding a line of the list shows.
    const calc::Finding* findingOf(int line) const;

    using FindingKey = std::tuple<calc::CheckPlace, int, int, calc::FindingKind>;

protected:
    // F1 opens the help on the check: the key is this window's, not the main window's.
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void fill(const std::optional<FindingKey>& current);
    void goTo(const calc::Finding& finding);
    void watch();

    MDIForm1& m_main;
    QPointer<documents::Form1> m_basicData;
    QPointer<documents::Form2> m_detailedData;
    std::vector<calc::Finding> m_findings;
    QLabel* m_summary = nullptr;
    QTreeWidget* m_tree = nullptr;
    QPushButton* m_goButton = nullptr;
    QTimer* m_recheck = nullptr;
    std::vector<QMetaObject::Connection> m_watching;
};

// "&Tarkista projekti": opens the check window on the active project (or brings it up again
// and checks anew).
void showProjectCheck(MDIForm1& main);

} // namespace shell
