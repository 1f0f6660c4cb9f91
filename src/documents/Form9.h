#pragma once
// The text editor: a copy of a rich text (a project document, a long field of the row editor,
// the contract quality plan template or the requirement summary) in a larger window with the
// text styles, file import and export, and writing the result back.
#include <QDialog>
#include <map>
#include <vector>

class QAction;
class QMenu;
class QTextEdit;
class QToolBar;

namespace documents {

class DocumentHost;
class Form2;
class TextBox;

// What the editor is opened for: `mode` is the EditorMode.
struct EditorSource {
    // 1 the shown document of the detailed data window, 2..7 the row editor's long field
    // Text1(mode - 2), 8 the contract quality plan template, 100 the requirement summary.
    int mode = 1;
    // The active project's detailed data window: the document of modes 1 and 8, the
    // requirement list of mode 100 and of the heading index.
    Form2* project = nullptr;
    // Modes 2..7: the row editor's field.
    TextBox* field = nullptr;
    // Mode 100: the project's folder and file name, printed on the summary.
    QString projectFileName;
};

class Form9 : public QDialog {
    Q_OBJECT
public:
    Form9(DocumentHost& host, const EditorSource& source, QWidget* parent = nullptr);

    int mode() const { return m_source.mode; }
    // Whether the first item of the file menu writes anything back (not for a locked source).
    bool canWriteBack() const { return m_canWriteBack; }
    // Changes not yet written back.
    bool isChanged() const;

    // The menus by item index (separators included) and the toolbar by key.
    void FileMenuClick(int index);
    void EditMenuClick(int index);
    void StyleMenuClick(int index);
    void ToolbarClick(const QString& key);
    // The first item of the file menu.
    bool WriteBack();

    QTextEdit* RichTextBox1 = nullptr;
    std::vector<QAction*> SubMenu0, SubMenu1, SubMenu11;
    QToolBar* Toolbar1 = nullptr;
    std::map<QString, QAction*> toolbarButtons;

    void done(int result) override;
    // Closing: asks first when changes that could be written back would be lost.
    void reject() override;

private:
    void createMenus();
    void createEditMenu(QMenu* edit);
    void createToolbar();
    void load();
    // load()'s kinds that need more than a few lines, and the enabling of the menu items and
    // buttons for what was loaded.
    void loadTemplate(const QTextEdit& document);
    void loadSummary();
    void enableForContent(bool summary);
    void applyStyle(const QString& style);
    void showIndex(const QString& indexMode);

    DocumentHost& m_host;
    EditorSource m_source;
    bool m_canWriteBack = false;
    bool m_locked = false;
};

// Replaces the box's selection with a file: a rich text file (".rtf") with its formatting,
// any other file as text in Windows-1252. False, with a message, when the file cannot be read.
bool InsertFromFile(QTextEdit* box, const QString& fileName);

} // namespace documents
