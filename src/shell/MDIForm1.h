#pragma once
// The main window: the multiple-document frame, its menus, toolbar, status bar and progress
// strip, the dispatchers of every menu and toolbar action, the project windows and their
// captions, and the start-up and shutdown sequences.
#include "documents/DocumentHost.h"
#include "lists/ui/BaseListWindow.h"
#include "lists/ui/ListEditor.h"
#include "platform/Picture.h"
#include "shell/AppState.h"

#include <QMainWindow>
#include <QPointer>
#include <map>
#include <memory>
#include <vector>

class QAction;
class QLabel;
class QMdiArea;
class QMdiSubWindow;
class QMenu;
class QProgressBar;
class QToolBar;

namespace platform {
class SettingsStore;
}

namespace documents {
class ProjectWindow;
class Form1;
class Form2;
class Form3;
class Form4;
class Form5;
} // namespace documents

namespace lists {
class ListView;
}

namespace print::ui {
class PrintSession;
}

namespace shell {

class frmSplash;
class ProjectLocks;
class Recovery;

// The four windows of one project; null where a window is not found.
struct ProjectWindows {
    documents::Form1* f1 = nullptr;
    documents::Form2* f2 = nullptr;
    documents::Form3* f3 = nullptr;
    documents::Form4* f4 = nullptr;
    bool complete() const { return f1 && f2 && f3 && f4; }
    std::vector<documents::ProjectWindow*> all() const;
};

class MDIForm1 : public QMainWindow,
                 public documents::DocumentHost,
                 public lists::BaseListHost,
                 public lists::ListEditHost {
    Q_OBJECT
public:
    explicit MDIForm1(QWidget* parent = nullptr);
    ~MDIForm1() override;

    // The start-up sequence: splash, settings, base lists, help files, position, Projekti1.
    // With the splash, the main window is shown at the end (tests start without either).
    void startUp(bool showSplash = true);
    // The program directory to use instead of the executable's (tests run from elsewhere).
    void setProgramDirectory(const QString& directory) { m_programDirectory = directory; }

    // Opens a project named on the command line (or handed over by a later start), as
    // "&Avaa..." would; a ".sl1" or ".sl2" file opens in its base list window.
    void openFromCommandLine(const QString& file);
    // Opens an autosaved copy as the changed project `project` (a file path, or the name of a
    // project never saved, which then takes the name of the project it opens into).
    void openRecoveredProject(const QString& copy, const QString& project);
    // The autosave of this program's projects.
    Recovery& recovery() { return *m_recovery; }
    ProjectLocks& projectLocks() { return *m_locks; }

    // DocumentHost
    AppState& appState() override { return m_state; }
    void contentChanged(QWidget* window) override;
    void listFocused(lists::ListView* view) override;
    void computeCardFigures(QWidget* card) override;
    documents::Form1* basicDataWindowOf(QWidget* window) override;
    documents::Form2* detailedDataWindowOf(QWidget* window) override;
    void openFile(const QString& target) override;
    void showHelp(int context, QWidget* from) override;
    void restoreWindowPosition(int slot, QWidget* window) override;
    void storeWindowPosition(int slot, QWidget* window) override;
    QIcon toolIcon(const QString& key) override;
    // Files dropped on a project window: a picture on a picture slot takes its place; anything
    // else opens as if dropped on the main window.
    void filesDropped(QWidget* window, QWidget* at, const QStringList& files) override;
    // Files dropped on the main window open one by one (Drops.cpp): a project as "&Avaa..."
    // opens it, a unit price or requirement list (also .csv or a spreadsheet, by its columns)
    // in its base list window.
    void openDroppedFiles(const QStringList& files);
    void bringForward(QWidget* window) override;

    platform::SettingsStore& settingsStore() { return *m_store; }
    // The choice of documents and the printer, kept from one print run to the next.
    print::ui::PrintSession& printSession();

    // BaseListHost
    void baseListTouched(lists::BaseListWindow* window) override { FormTouch(window); }
    void baseListUntouched(lists::BaseListWindow* window) override { FormUntouch(window); }
    bool baseListCloseCancelled(lists::BaseListWindow* window) override { return FormTouched(window); }
    void baseListEditAction(lists::BaseListWindow* window, int index) override;
    void baseListExport(lists::BaseListWindow* window, int mode) override;
    void baseListHelp(lists::BaseListWindow* window) override;
    QString baseListFileDialog(int kind, const QString& extension) override;
    lists::ListEditHost* baseListEditHost() override { return this; }
    QString baseListSaveTarget(lists::BaseListWindow* window, const QString& file) override;
    void baseListRestoreShipped(lists::BaseListWindow* window) override;

    // ListEditHost (EditActions.cpp)
    lists::EditContext editContext(lists::ListView* view) override;
    void listEdited(lists::ListView* view) override;
    lists::TransferOptions transferOptions(lists::ListView* target, lists::ListView* source) override;
    void transferDone(lists::ListView* target, const lists::TransferResult& result) override;
    // Files dropped on a list (Drops.cpp): into a base list window they open, into a project's
    // list they come in as rows from the base list of the same columns would.
    void filesDropped(lists::ListView* view, const QStringList& files, int row) override;
    lists::ListEditHost* listEditHost() override { return this; }
    void showContextMenu(int context, const QPoint& globalPos) override;
    // Enables the edit menu's items for a list (0) or a rich-text box (1) and pops it up.
    void ShowMenu2(int context, const QPoint& globalPos);

    // Shows a base list window: 6 the unit prices, 7 the requirement base list.
    void showBaseList(int slot);
    // The logo printed on the pages (LoadLogo); empty when there is none.
    platform::Picture imgLogo;
    // The two base list windows; they live from start-up to shutdown.
    lists::BaseListWindow* Form6 = nullptr;
    lists::BaseListWindow* Form7 = nullptr;
    // The list row editor, made when first needed; it keeps its place between uses.
    documents::Form5* Form5 = nullptr;

    // Dispatchers.
    void FileMenuActions(int index);
    void EditMenuClick(int index);
    void EditMenuActions(int index);
    void ToolbarMenuActions(const QString& key);
    void Submenu10Click(int index);
    void Submenu30Click(int index);
    void HelpMenuClick(int index);

    // Status bar and progress strip.
    void ClearStatusBar();
    void DisplayProgress(int percent, const QString& text = QString());
    void UpdateCaptionText(lists::ListView* view);
    QString statusText(int panel) const;
    // True while the user works in a dialog or the row editor, or a file is read or written:
    // a file handed over by a later start then waits rather than close what the user does.
    bool userBusy() const;
    // The status bar's note that a handed-over file waits to be opened; empty clears it.
    void setWaitingFileNote(const QString& file);
    // Disables the top-level menus and the toolbar while a file is processed.
    void setFileOperation(bool running);
    bool fileOperationRunning() const;

    // Projects and captions.
    QString NewProject();
    documents::ProjectWindow* CreateDocumentWindow(int kind, const QString& caption);
    QString ActiveCaption() const;
    documents::ProjectWindow* activeWindow() const;
    ProjectWindows ParseFormIndeces() const;
    ProjectWindows projectWindowsOf(const QString& project) const;
    ProjectWindows ChangeFormCaptions(const QString& oldProject, const QString& newFile, bool mark);
    void Touch();
    void touchProjectOf(QWidget* window);
    void FormTouch(QWidget* window);
    void FormUntouch(QWidget* window);
    // Unsaved-change questions of a single window; true when the user cancelled.
    bool FormTouched(QWidget* window);
    bool FormUnload(QWidget* window);
    // Closes the active project; true when the user cancelled.
    bool UnloadActiveProject();
    // True, after saying so, when `file` is the file of a project open here other than
    // `except` (the project that is about to be saved under that name).
    bool FileNameInUse(const QString& file, const QString& except = QString());
    void UpdateRecentFiles(const QString& file);
    std::vector<documents::ProjectWindow*> projectWindows() const;
    void ShowWindowByCaption(const QString& caption);
    void showProjectWindow(int kind);
    void activateWindow(documents::ProjectWindow* window);
    // Activates the next (1) or the previous (-1) visible project window.
    void stepWindow(int step);

    // Settings.
    void LoadSettings();
    void SaveSettings();
    void LoadHelpFiles();
    void EnableControlsMDI();

    // The shutdown sequence; returns true when the program may end.
    bool shutDown();
    // An end that cannot ask questions (SIGTERM, the session manager): the settings are
    // written and every changed project gets a recovery copy that the next start offers back.
    void endWithoutQuestions();
    // True once the run ends on a termination request: what is still open gives no answers.
    bool terminating() const { return m_terminating; }
    QString tag() const { return m_tag; }
    void setTag(const QString& tag) { m_tag = tag; }

    // Menu and toolbar, by the indices of the menu arrays.
    std::vector<QMenu*> MainMenu;
    std::vector<QAction*> SubMenu0, SubMenu1, Submenu10, SubMenu2, Submenu3, Submenu30, SubMenu4, SubMenu41;
    std::map<QString, QAction*> toolbarButtons;
    // "&Vertaa projektia..." of the File menu (outside SubMenu0, whose indices stay as they are).
    QAction* CompareAction = nullptr;
    // The Edit menu's "&Kumoa" and "&Tee uudelleen", above the items of SubMenu2.
    QAction* undoAction = nullptr;
    QAction* redoAction = nullptr;
    QToolBar* Toolbar1 = nullptr;
    QMdiArea* mdiArea = nullptr;
    QProgressBar* ProgressBar1 = nullptr;

signals:
    void projectsChanged();

protected:
    void closeEvent(QCloseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void createMenus();
    // One function per menu of the menu bar; the items of each are a table.
    void createFileMenu(QMenu* file);
    void createSettingsMenu(QMenu* settings);
    void createEditMenu(QMenu* edit);
    void createViewMenu(QMenu* view);
    void createWindowMenu(QMenu* windows);
    void createHelpMenu(QMenu* help);
    void createToolbar();
    void createStatusBar();
    // With `recoveredAs` the file opens as that project (changed); with `readOnlyCopy` as a new
    // unchanged project without the file's name.
    void openProjectFile(const QString& file, bool textOnly, const QString& recoveredAs = QString(),
                         bool readOnlyCopy = false);
    void openDroppedFile(const QString& file);
    // The file menu's "Tallenna" (a project without a file asks for one) and "Tallenna nimellä",
    // and its recent files 0…5.
    void saveActiveProject(bool newName);
    void openRecentFile(int n);
    void pendingEvents();
    void unloadWindow(documents::ProjectWindow* window);

    AppState m_state;
    std::unique_ptr<platform::SettingsStore> m_store;
    std::unique_ptr<print::ui::PrintSession> m_printSession;
    QString m_tag;
    std::vector<QLabel*> m_panels; // index 1..5
    QWidget* m_progressStrip = nullptr;
    QLabel* m_progressText = nullptr;
    bool m_shuttingDown = false;
    bool m_terminating = false;
    QString m_programDirectory;
    Recovery* m_recovery = nullptr;
    ProjectLocks* m_locks = nullptr;
};

} // namespace shell
