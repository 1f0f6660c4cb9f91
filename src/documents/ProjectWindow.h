#pragma once
// The common part of the four windows of a project: its kind (1 basic data, 2 detailed data,
// 3 characteristics card, 4 charge chamber card), its caption, and the control arrays whose
// indices are the fields' identities in the project file, the cards and the reports.
#include <QWidget>
#include <vector>

namespace lists {
class ListModel;
class ListView;
} // namespace lists

namespace persist {
struct WindowRecord;
}

namespace documents {

class DocumentHost;
class TextBox;
class ComboBox;

class ProjectWindow : public QWidget {
    Q_OBJECT
public:
    ProjectWindow(DocumentHost& host, int kind, QWidget* parent = nullptr);
    ~ProjectWindow() override;

    int kind() const { return m_kind; }
    QString caption() const { return windowTitle(); }
    void setCaption(const QString& caption) { setWindowTitle(caption); }

    // Fills a new project's lists and drop-downs (templates, settings, combo data).
    virtual void prepareNewProject();

    std::vector<TextBox*> Text1;
    std::vector<ComboBox*> Combo1;
    std::vector<lists::ListView*> ListView1;
    lists::ListModel* list(int i) const;
    int listCount() const { return static_cast<int>(ListView1.size()); }

    DocumentHost& host() const { return m_host; }

    // The window's record in a project file: Text1 texts, Combo1 edit texts, the lists.
    persist::WindowRecord toRecord() const;
    // Fills the controls from a record. Values for controls the window lacks are dropped;
    // list cells beyond the window's columns are dropped, missing ones stay empty, and the
    // row numbers are given anew.
    void applyRecord(const persist::WindowRecord& record);

protected:
    // Creates a text box or drop-down of the control array at index `i`, wired to the change
    // tracking. The arrays grow to hold the index.
    TextBox* makeText(int i, bool multiLine = false);
    ComboBox* makeCombo(int i);
    lists::ListView* makeList(int i, const QString& kind);
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dropEvent(QDropEvent* event) override;

    DocumentHost& m_host;

private:
    int m_kind;
};

} // namespace documents
