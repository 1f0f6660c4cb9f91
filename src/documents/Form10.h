#pragma once
// The heading index ("Otsikkoluettelo"): the work-phase headings of a list, to go to one of
// them in the list or in a text, to insert them into a text, or to choose one.
#include "documents/HeadingIndex.h"

#include <QDialog>
#include <optional>
#include <vector>

class QLayout;
class QPushButton;
class QStatusBar;
class QTextEdit;
class QTreeWidget;

namespace lists {
class ListModel;
class ListView;
} // namespace lists

namespace documents {

class DocumentHost;
class Form2;

class Form10 : public QDialog {
    Q_OBJECT
public:
    // Where the index takes its headings from and where it goes.
    struct Source {
        // List modes: the list indexed, in which "&Siirry kohtaan" selects the heading's row.
        lists::ListView* list = nullptr;
        // Text modes and the choosing mode: the list the headings come from (the project's
        // requirement list).
        const lists::ListModel* headings = nullptr;
        // Text modes: the text searched for a heading and inserted into.
        QTextEdit* text = nullptr;
    };

    // `mode` is one of index_mode; `host` (may be null) keeps the window's position.
    Form10(const QString& mode, const Source& source, DocumentHost* host = nullptr,
           QWidget* parent = nullptr);

    QString mode() const { return m_mode; }
    const std::vector<Heading>& headings() const { return m_headings; }

    // Fills the index from a list, or for a text from the list its headings come from.
    void PopulateIndexWithListView(const lists::ListModel& list);
    void PopulateIndexWithRichTextBox(const lists::ListModel& headingList);

    // Makes heading i (0-based) the chosen one, as a click does.
    void selectHeading(int i);
    // The chosen headings' indices, in index order.
    std::vector<int> chosen() const;

    // The buttons' actions; each returns whether it did something. The window closes after
    // each button.
    bool JumpToListViewRow();
    bool JumpToRichTextBoxRow();
    // Inserts the chosen headings that the text does not hold yet, each as a line of its own
    // at the caret; returns the number inserted.
    int AddToRich();
    // "&Valitse": the chosen heading's "Rivi" value.
    std::optional<QString> chosenRowNumber() const { return m_choice; }

    // Command1(0) "&Siirry kohtaan" / "&Valitse", (1) "&Lisää rakennussuunnitelmaselostukseen",
    // (2) "Peruuta".
    QTreeWidget* ListView1 = nullptr;
    std::vector<QPushButton*> Command1;
    QStatusBar* StatusBar1 = nullptr;

    void done(int result) override;

protected:
    void showEvent(QShowEvent* event) override;

private:
    void goTo();
    void insert();
    // "Valitse" or "Siirry kohtaan", "Lisää rakennussuunnitelmaselostukseen" and "Peruuta", enabled
    // as the mode allows.
    QLayout* buildButtons(const QString& mode);

    QString m_mode;
    Source m_source;
    DocumentHost* m_host = nullptr;
    std::vector<Heading> m_headings;
    std::optional<QString> m_choice;
};

// The heading index in its choosing mode over a requirement list: shows its headings, with the
// heading of the list's current row chosen, and returns the "Rivi" value of the heading the
// user chose with "&Valitse", or nothing when the user cancelled. Modal over `parent`.
std::optional<QString> ChooseRequirementHeading(const lists::ListModel& requirements,
                                                QWidget* parent = nullptr, DocumentHost* host = nullptr);
// The same over the requirement list of a project's detailed data window.
std::optional<QString> ChooseRequirementHeading(const Form2& detailed, QWidget* parent = nullptr,
                                                DocumentHost* host = nullptr);

} // namespace documents
