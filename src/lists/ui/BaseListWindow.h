#pragma once
// The two base list windows: Form7 the quality requirement base list (".sl2"), Form6 the work
// phase and unit price list (".sl1", with the choice of working conditions). Each holds one
// list, a file menu, an edit menu and three buttons, and stays beside the project windows.
#include "lists/EditHistory.h"
#include "lists/ListFiles.h"

#include <QMainWindow>
#include <vector>

class QAction;
class QLabel;
class QLayout;
class QMenu;
class QPushButton;
class QRadioButton;

namespace lists {

class ListModel;
class ListView;
class ListEditHost;
class BaseListWindow;

// What a base list window needs from the main window.
class BaseListHost {
public:
    virtual ~BaseListHost() = default;
    // The caption marker procedures.
    virtual void baseListTouched(BaseListWindow* window) = 0;
    virtual void baseListUntouched(BaseListWindow* window) = 0;
    // The unsaved-changes question; true when the user cancelled.
    virtual bool baseListCloseCancelled(BaseListWindow* window) = 0;
    // The main window's edit dispatcher, acting on the window's list.
    virtual void baseListEditAction(BaseListWindow* window, int index) = 0;
    // "Lisää" and its modes: transfer the selected rows into the active project.
    virtual void baseListExport(BaseListWindow* window, int mode) = 0;
    virtual void baseListHelp(BaseListWindow* window) = 0;
    // The file dialog of the program; the chosen path, empty when cancelled.
    virtual QString baseListFileDialog(int kind, const QString& extension) = 0;
    // Who answers the list editor's questions.
    virtual ListEditHost* baseListEditHost() = 0;
    // Where "&Tallenna" writes `file`: a list shipped in the read-only program folder goes to
    // the user's own copy.
    virtual QString baseListSaveTarget(BaseListWindow* window, const QString& file) = 0;
    // "Palauta ohjelman mukana tullut luettelo": the shipped list back in place of the user's copy.
    virtual void baseListRestoreShipped(BaseListWindow* window) = 0;
};

class BaseListWindow : public QMainWindow {
    Q_OBJECT
public:
    // slot 6: the unit price list window (Form6); slot 7: the requirement base list (Form7).
    BaseListWindow(BaseListHost& host, int slot, QWidget* parent = nullptr);

    int slot() const { return m_slot; }
    QString extension() const;
    QString suffix() const; // " (Yksikköhintaluettelo)" or " (Laatuvaatimusluettelo)"
    ListModel* list() const;
    ListView* view() const { return ListView1; }

    // Reads a list file into the window; the caption becomes file + suffix + " Ei muutettu".
    // A missing file is reported and leaves an empty list under that caption.
    void loadFile(const QString& fileName);
    // "&Avaa..." of a chosen file: a list file, or a spreadsheet through the import. False
    // (with a message shown) when it cannot be read; the window is then as it was.
    bool openFile(const QString& file);
    // The file named in the caption.
    QString currentFile() const;

    // The file menu (index as in the menu; 3 and 6 are separators; 8, shown before the last
    // separator, restores the shipped list).
    void ListViewFileMenuActions(int action);
    // The edit menu (index as in the menu) and the "Lisää &määräten..." modes.
    void editMenuClick(int index);

    // The unit price column of the chosen working conditions: 4 (A), 5 (B), 6 (C), 0 none.
    int priceColumn() const;
    // In the contractor's mode the unit price window cannot add to a project.
    void setAddingEnabled(bool enabled);

    // Closing by the program's own code skips the question.
    void closeByProgram();

    // The window's own undo history; its caption's marker follows it.
    EditHistory& history() { return *m_history; }
    // "&Kumoa" and "&Tee uudelleen": within an open cell edit that can, else a step of the list.
    void undoOrRedo(bool redo);
    void updateUndoActions();
    QAction* undoAction = nullptr;
    QAction* redoAction = nullptr;

    ListView* ListView1 = nullptr;
    std::vector<QPushButton*> Command1;
    std::vector<QRadioButton*> Option1; // Form6 only
    QLabel* Label1 = nullptr;           // Form6 only
    std::vector<QAction*> SubMenu0, SubMenu1, SubMenu12;

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    // Header widths in twips with the list's own font.
    TextMeasure headerMeasure() const;
    void createMenus();
    // createMenus()'s parts: the file menu, undo and redo, the edit menu's numbered items and
    // the insert submenu's modes.
    void createFileMenu();
    void createUndoItems(QMenu* edit);
    void createEditItems(QMenu* edit);
    void addInsertModes(QMenu* modes);
    // The constructor's parts: the buttons (and the price list's conditions) below the list,
    // and what follows the list's moves and the history's changes.
    QLayout* buildButtons(QWidget* central, bool prices);
    void connectListAndHistory();
    // The file menu's saving (under the list's own name or a new one) and export.
    void saveList(bool newName);
    void exportXlsx();
    BaseListHost& m_host;
    EditHistory* m_history = nullptr;
    int m_slot;
    bool m_programClose = false;
};

} // namespace lists
