#pragma once
// The common part of the four windows of a project: its kind (1 basic data, 2 detailed data,
// 3 characteristics card, 4 charge chamber card), its caption, and the control arrays whose
// indices are the fields' identities in the project file, the cards and the reports.
#include "persist/RecordSteps.h"

#include <QWidget>
#include <memory>
#include <vector>

class QCheckBox;

namespace lists {
class ListModel;
class ListView;
} // namespace lists

namespace lists {
class EditHistory;
}

namespace persist {
struct WindowRecord;
}

namespace documents {

class DocumentHost;
class TextBox;
class ComboBox;

class ProjectWindow : public QWidget, public persist::RecordFields {
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

    // The window's record in a project file: Text1 texts, Combo1 edit texts, the lists. With
    // `listsInPlace` the record refers to the shown lists' rows instead of holding them (for a
    // record that is written before any list changes).
    persist::WindowRecord toRecord(bool listsInPlace = false) const;
    // The undo history of the window's project, shared by its four windows; the window's
    // lists and fields record their changes there. Null until the project has one.
    lists::EditHistory* history() const { return m_history.get(); }
    void setHistory(std::shared_ptr<lists::EditHistory> history);

    // RecordFields: the fields by control array and index.
    QString fieldValue(persist::FieldRef field) const override;
    void setFieldValue(persist::FieldRef field, const QString& value) override;
    bool fieldLocked(persist::FieldRef field) const override;
    void revealField(persist::FieldRef field) override;

    // Fills the controls from a record. Values for controls the window lacks are dropped;
    // list cells beyond the window's columns are dropped, missing ones stay empty, and the
    // row numbers are given anew. The record's list rows move into the lists.
    void applyRecord(persist::WindowRecord&& record);

protected:
    // Creates a text box or drop-down of the control array at index `i`, wired to the change
    // tracking. The arrays grow to hold the index.
    TextBox* makeText(int i, bool multiLine = false);
    ComboBox* makeCombo(int i);
    lists::ListView* makeList(int i, const QString& kind);
    // A field's value changed: a step of the project's history (typing merges until the focus
    // leaves the field), or without a history a change of the window. Nothing while a file is
    // read or a step is applied.
    void fieldChanged(persist::FieldRef field);
    // The window's check box of the record (Check1[i]); null where the window has none.
    virtual QCheckBox* recordCheck(int i) const {
        Q_UNUSED(i);
        return nullptr;
    }
    // Shows a control of the window: the window in front, the control scrolled into view.
    void reveal(QWidget* control);
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void showEvent(QShowEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

    DocumentHost& m_host;

private:
    QWidget* fieldControl(persist::FieldRef field) const;
    // Files dragged from the file manager over a text field go to the window, not into the
    // field as their addresses (a file manager offers them as text too).
    void passFileDropsToWindow();
    bool m_fileDropsPassed = false;
    QString& lastValue(persist::FieldRef field);

    int m_kind;
    std::shared_ptr<lists::EditHistory> m_history;
    // The value each field had after its last change, the "before" of its next step.
    std::vector<QString> m_lastText, m_lastCombo, m_lastCheck;
};

} // namespace documents
