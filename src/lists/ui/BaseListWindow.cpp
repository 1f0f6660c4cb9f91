#include "lists/ui/BaseListWindow.h"

#include "lists/ui/ListEditor.h"
#include "lists/ListFiles.h"
#include "lists/ListStep.h"
#include "lists/ListModel.h"
#include "lists/ListProcedures.h"
#include "lists/ui/ListView.h"
#include "lists/Spreadsheet.h"
#include "platform/Dialogs.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QDir>
#include <QFileInfo>
#include <QFontMetrics>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QPushButton>
#include <QRadioButton>
#include <QStatusBar>
#include <QVBoxLayout>

namespace lists {

namespace {
const QString kMarker = QStringLiteral(" Ei muutettu");

// Shows the busy pointer while a list is read or written.
struct BusyPointer {
    BusyPointer() { QApplication::setOverrideCursor(Qt::WaitCursor); }
    ~BusyPointer() { QApplication::restoreOverrideCursor(); }
};
} // namespace

BaseListWindow::BaseListWindow(BaseListHost& host, int slot, QWidget* parent)
    : QMainWindow(parent, Qt::Window)
    , m_host(host)
    , m_history(new EditHistory(this))
    , m_slot(slot) {
    const bool prices = slot == 6;
    setObjectName(prices ? QStringLiteral("Form6") : QStringLiteral("Form7"));
    setWindowTitle(prices ? QStringLiteral("Työvaihe- ja yksikköhintaluettelo")
                          : QStringLiteral("Laatuvaatimusluettelo"));
    resize(900, 560);
    auto* central = new QWidget(this);
    auto* layout = new QVBoxLayout(central);
    layout->setContentsMargins(6, 6, 6, 6);
    auto* model = new ListModel(this);
    model->setKind(prices ? kind::UnitPriceList : kind::RequirementBase);
    model->setHistory(m_history);
    ListView1 = new ListView(central);
    ListView1->setAccessibleName(m_slot == 6 ? QStringLiteral("Yksikköhintaluettelo")
                                             : QStringLiteral("Laatuvaatimusten perusluettelo"));
    ListView1->setObjectName(QStringLiteral("ListView1"));
    ListView1->setList(model);
    ListView1->setIndex(-1);
    new ListEditor(ListView1, host.baseListEditHost());
    layout->addWidget(ListView1, 1);

    layout->addLayout(buildButtons(central, prices));
    setCentralWidget(central);
    statusBar();

    connect(Command1[0], &QPushButton::clicked, this, [this] { editMenuClick(0); });
    connect(Command1[1], &QPushButton::clicked, this, &QWidget::close);
    connect(Command1[2], &QPushButton::clicked, this, [this] { m_host.baseListHelp(this); });
    createMenus();
    connectListAndHistory();
}

QLayout* BaseListWindow::buildButtons(QWidget* central, bool prices) {
    auto* bottom = new QHBoxLayout;
    Command1.assign(3, nullptr);
    Command1[0] = new QPushButton(QStringLiteral("Lisää (Ctrl+A)"), central);
    Command1[1] = new QPushButton(QStringLiteral("&Sulje"), central);
    Command1[2] = new QPushButton(QStringLiteral("&Ohjeet"), central);
    for (QPushButton* b : Command1)
        b->setAutoDefault(false);
    bottom->addWidget(Command1[0]);
    bottom->addWidget(Command1[1]);
    bottom->addWidget(Command1[2]);
    if (prices) {
        bottom->addSpacing(24);
        Label1 = new QLabel(QStringLiteral("Olosuhteet"), central);
        bottom->addWidget(Label1);
        for (const QString& t : {QStringLiteral("&A (helpot)"), QStringLiteral("&B (normaalit)"),
                                 QStringLiteral("&C (vaikeat)")}) {
            auto* option = new QRadioButton(t, central);
            Option1.push_back(option);
            bottom->addWidget(option);
        }
        Option1[1]->setChecked(true);
    }
    bottom->addStretch(1);
    return bottom;
}

void BaseListWindow::connectListAndHistory() {
    connect(ListView1, &ListView::currentRowMoved, this, [this](int row) {
        if (row < 1) return;
        const std::array<QString, 3> texts = CaptionStatusTexts(*list(), row);
        QStringList shown;
        for (const QString& t : texts)
            if (!t.isEmpty()) shown << t;
        statusBar()->showMessage(shown.join(QStringLiteral("  |  ")));
    });
    // The caption's marker follows the history: it comes back when the saved state does.
    connect(m_history, &EditHistory::dirtyChanged, this, [this](bool dirty) {
        if (dirty)
            m_host.baseListTouched(this);
        else
            m_host.baseListUntouched(this);
    });
    connect(m_history, &EditHistory::changed, this, &BaseListWindow::updateUndoActions);
    connect(m_history, &EditHistory::applied, this, [this] { ListView1->setFocus(Qt::OtherFocusReason); });
    updateUndoActions();
    connect(ListView1, &ListView::contextMenuWanted, this, [this](QPoint global) {
        if (QMenu* edit = menuBar()->findChild<QMenu*>(QStringLiteral("editMenu"))) edit->popup(global);
    });
}

void BaseListWindow::createMenus() {
    createFileMenu();
    QMenu* edit = menuBar()->addMenu(QStringLiteral("&Muokkaa"));
    edit->setObjectName(QStringLiteral("editMenu"));
    createUndoItems(edit);
    edit->addSeparator();
    createEditItems(edit);
}

void BaseListWindow::createFileMenu() {
    const bool prices = m_slot == 6;
    QMenu* file = menuBar()->addMenu(prices ? QStringLiteral("&Yksikköhintatiedosto")
                                            : QStringLiteral("&Laatuvaatimustiedosto"));
    const QStringList fileItems = {QStringLiteral("&Avaa..."),
                                   QStringLiteral("&Tallenna"),
                                   QStringLiteral("Tallenna &nimellä..."),
                                   QStringLiteral("-"),
                                   QStringLiteral("T&uo..."),
                                   QStringLiteral("&Vie..."),
                                   QStringLiteral("-"),
                                   prices ? QStringLiteral("&Sulje ikkuna") : QStringLiteral("&Sulje")};
    for (int i = 0; i < fileItems.size(); ++i) {
        QAction* a =
            fileItems[i] == QLatin1String("-") ? file->addSeparator() : file->addAction(fileItems[i]);
        SubMenu0.push_back(a);
        connect(a, &QAction::triggered, this, [this, i] { ListViewFileMenuActions(i); });
    }
    QAction* restore = new QAction(QStringLiteral("&Palauta ohjelman mukana tullut luettelo"), file);
    file->insertAction(SubMenu0[6], restore);
    SubMenu0.push_back(restore);
    connect(restore, &QAction::triggered, this, [this] { ListViewFileMenuActions(8); });
}

void BaseListWindow::createUndoItems(QMenu* edit) {
    // Undo and redo stand above the menu's numbered items.
    undoAction = edit->addAction(QStringLiteral("&Kumoa"));
    undoAction->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Z));
    redoAction = edit->addAction(QStringLiteral("&Tee uudelleen"));
    redoAction->setShortcuts(
        {QKeySequence(Qt::CTRL | Qt::Key_Y), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Z)});
    for (QAction* a : {undoAction, redoAction})
        a->setShortcutContext(Qt::WindowShortcut);
    connect(undoAction, &QAction::triggered, this, [this] { undoOrRedo(false); });
    connect(redoAction, &QAction::triggered, this, [this] { undoOrRedo(true); });
    connect(edit, &QMenu::aboutToShow, this, &BaseListWindow::updateUndoActions);
}

void BaseListWindow::createEditItems(QMenu* edit) {
    const bool prices = m_slot == 6;
    const QStringList editItems = {
        QStringLiteral("Lisää"),
        QStringLiteral("Lisää &määräten..."),
        QStringLiteral("-"),
        QStringLiteral("Muokkaa..."),
        QStringLiteral("Lisää luettelosta"),
        prices ? QStringLiteral("&Lisää rivi") : QStringLiteral("Lisää rivi"),
        prices ? QStringLiteral("Listää rivi listan loppuun") : QStringLiteral("Lisää rivi listan loppuun"),
        QStringLiteral("Poista rivi"),
        QStringLiteral("-"),
        QStringLiteral("Leikkaa"),
        QStringLiteral("Kopioi"),
        QStringLiteral("Liitä"),
        QStringLiteral("Poista"),
        QStringLiteral("-"),
        QStringLiteral("Siirry..."),
        QStringLiteral("-"),
        QStringLiteral("&Valitse kaikki"),
        QStringLiteral("-"),
        prices ? QStringLiteral("M&uotoile luettelo") : QStringLiteral("M&uoteile luettelo"),
    };
    for (int i = 0; i < editItems.size(); ++i) {
        QAction* a = nullptr;
        if (editItems[i] == QLatin1String("-")) {
            a = edit->addSeparator();
        } else if (i == 1) {
            QMenu* modes = edit->addMenu(editItems[i]);
            a = modes->menuAction();
            addInsertModes(modes);
        } else {
            a = edit->addAction(editItems[i]);
            connect(a, &QAction::triggered, this, [this, i] { editMenuClick(i); });
        }
        SubMenu1.push_back(a);
    }
    // Ctrl+A is the button's shortcut: it adds, as the button does.
    SubMenu1[0]->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_A));
    SubMenu1[0]->setShortcutContext(Qt::WindowShortcut);
    SubMenu1[5]->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_I));
    SubMenu1[6]->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_L));
    SubMenu1[7]->setShortcut(QKeySequence(Qt::SHIFT | Qt::Key_Delete));
    SubMenu1[9]->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_X));
    SubMenu1[10]->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_C));
    SubMenu1[11]->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_V));
    SubMenu1[12]->setShortcut(QKeySequence(Qt::Key_Delete));
    // "Siirry..." has the main window's key here too.
    SubMenu1[14]->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_F));
    for (QAction* a : SubMenu1)
        a->setShortcutContext(Qt::WindowShortcut);
    // "Lisää luettelosta" has no base list of its own to offer here.
    SubMenu1[4]->setEnabled(false);
}

void BaseListWindow::addInsertModes(QMenu* modes) {
    const bool prices = m_slot == 6;
    const QStringList modeItems =
        prices ? QStringList{QStringLiteral("Lisää ilman huom. saraketta"),
                             QStringLiteral("Lisää valitun rivin kohdalle"),
                             QStringLiteral("Lisää valitun rivin kohdalle ilman huom. saraketta"),
                             QStringLiteral("Lisää loppuun"),
                             QStringLiteral("Lisää loppuun ilman huom. saraketta")}
               : QStringList{
                     QStringLiteral("Lisää ilman huom. saraketta"), QStringLiteral("Lisää valinnan kohdelle"),
                     QStringLiteral("Lisää valinnan kohdelle ilman huom. saraketta"),
                     QStringLiteral("Lisää loppuun"), QStringLiteral("Lisää loppuun ilman huom. saraketta")};
    for (int m = 0; m < modeItems.size(); ++m) {
        QAction* ma = modes->addAction(modeItems[m]);
        SubMenu12.push_back(ma);
        connect(ma, &QAction::triggered, this, [this, m] {
            BusyPointer busy;
            m_host.baseListExport(this, m + 1);
            ListView1->setFocus();
        });
    }
}

QString BaseListWindow::extension() const {
    return m_slot == 6 ? QStringLiteral(".sl1") : QStringLiteral(".sl2");
}

QString BaseListWindow::suffix() const {
    return m_slot == 6 ? QStringLiteral(" (Yksikköhintaluettelo)")
                       : QStringLiteral(" (Laatuvaatimusluettelo)");
}

ListModel* BaseListWindow::list() const {
    return ListView1->list();
}

QString BaseListWindow::currentFile() const {
    QString caption = windowTitle();
    if (caption.endsWith(kMarker)) caption.chop(kMarker.size());
    if (caption.endsWith(suffix())) caption.chop(suffix().size());
    return caption;
}

TextMeasure BaseListWindow::headerMeasure() const {
    const QFontMetrics metrics(ListView1->font());
    return [metrics](const QString& t) { return metrics.horizontalAdvance(t) * 15; };
}

void BaseListWindow::loadFile(const QString& fileName) {
    {
        EditHistory::Quiet quiet(m_history);
        InitListView(*list(), fileName, QStringLiteral(";"), headerMeasure());
    }
    setWindowTitle(fileName + suffix() + kMarker);
    m_history->restart(false);
}

bool BaseListWindow::openFile(const QString& file) {
    BusyPointer busy;
    // An opened file starts a history of its own.
    EditHistory::Quiet quiet(m_history);
    if (recogniseFile(file) == FileContent::Spreadsheet) {
        // A spreadsheet comes in through the import. The window is named after a list file
        // beside it, so that saving never writes text over the spreadsheet.
        if (!InitListView(*list(), file, QStringLiteral(".xls"))) return false;
        const QFileInfo info(file);
        setWindowTitle(info.dir().filePath(info.completeBaseName() + extension()) + suffix() + kMarker);
        m_host.baseListTouched(this);
        m_history->restart(true);
        return true;
    }
    if (!InitListView(*list(), file, QStringLiteral(";"), headerMeasure())) return false;
    setWindowTitle(file + suffix() + kMarker);
    m_history->restart(false);
    return true;
}

void BaseListWindow::ListViewFileMenuActions(int action) {
    switch (action) {
        case 0: {
            const QString file = m_host.baseListFileDialog(1, extension());
            if (!file.isEmpty()) openFile(file);
            break;
        }
        case 1:
        case 2:
            saveList(action == 2);
            break;
        case 8:
            m_host.baseListRestoreShipped(this);
            break;
        case 4: {
            const QString file = m_host.baseListFileDialog(1, QStringLiteral(".xls"));
            if (file.isEmpty()) return;
            BusyPointer busy;
            ListStep recorded(*list(), step::Import);
            if (InitListView(*list(), file, QStringLiteral(".xls"))) m_host.baseListTouched(this);
            break;
        }
        case 5:
            exportXlsx();
            break;
        case 7:
            close();
            break;
        default:
            break;
    }
}

void BaseListWindow::saveList(bool newName) {
    QString file = m_host.baseListSaveTarget(this, currentFile());
    if (newName) {
        file = m_host.baseListFileDialog(2, extension());
        if (file.isEmpty()) return;
    }
    const std::vector<CellRef> bad = cellsOutsideCp1252(*list());
    if (!bad.empty()) {
        const CellRef& first = bad.front();
        platform::MsgBox(
            QStringLiteral("Rivillä %1 sarakkeessa \"%2\" on merkkejä (%3), joita tiedostoon ei voi "
                           "tallentaa. Ne tallentuvat kysymysmerkkeinä.")
                .arg(first.row)
                .arg(list()->column(first.col).header, first.characters),
            platform::MsgIcon::Exclamation);
    }
    QString error;
    BusyPointer busy;
    if (!SaveListView(*list(), file, &error)) {
        platform::MsgBox(QStringLiteral("Tiedostoa ") + file + QStringLiteral(" ei voi tallentaa:\r\n") +
                             error,
                         platform::MsgIcon::Critical);
        return;
    }
    if (newName || file != currentFile())
        setWindowTitle(file + suffix() + kMarker);
    else
        m_host.baseListUntouched(this);
    m_history->markSaved();
}

void BaseListWindow::exportXlsx() {
    // What is written is .xlsx, so that is the file's extension too.
    const QString file = spreadsheetExportName(m_host.baseListFileDialog(2, QStringLiteral(".xls")));
    if (file.isEmpty()) return;
    QString error;
    BusyPointer busy;
    if (!ExportListViewXlsx(*list(), file, &error))
        platform::MsgBox(QStringLiteral("Taulukkoa ") + file + QStringLiteral(" ei voi kirjoittaa:\r\n") +
                             error,
                         platform::MsgIcon::Critical);
}

void BaseListWindow::editMenuClick(int index) {
    switch (index) {
        case 0: {
            BusyPointer busy;
            m_host.baseListExport(this, 0);
            ListView1->setFocus();
            return;
        }
        case 3:
        case 4:
        case 5:
        case 6:
        case 7:
        case 9:
        case 10:
        case 11:
        case 12: {
            // Items that change the list mark the window changed; copying does not.
            if (index != 10 && index != 4) m_host.baseListTouched(this);
            static const int dispatch[] = {-1, -1, -1, 0, 1, 2, 3, 4, -1, 6, 7, 8, 9};
            // An open cell edit keeps the focus: the text items act on its text.
            const ListEditor* editor = ListEditor::of(ListView1);
            if (!editor || !editor->isEditing()) ListView1->setFocus();
            m_host.baseListEditAction(this, dispatch[index]);
            return;
        }
        case 14:
            m_host.baseListEditAction(this, 11);
            return;
        case 16:
            if (const ListEditor* editor = ListEditor::of(ListView1); editor && editor->isEditing()) {
                m_host.baseListEditAction(this, 13);
                return;
            }
            list()->selectAll();
            return;
        case 18:
            m_host.baseListTouched(this);
            m_host.baseListEditAction(this, 15);
            return;
        default:
            return;
    }
}

void BaseListWindow::undoOrRedo(bool redo) {
    // An open cell edit undoes within itself first; then it goes, as Esc would, and the
    // list's steps follow.
    ListEditor* editor = ListEditor::of(ListView1);
    if (editor && editor->isEditing()) {
        QLineEdit* box = editor->editBox();
        if (redo ? box->isRedoAvailable() : box->isUndoAvailable()) {
            redo ? box->redo() : box->undo();
            return;
        }
        editor->EditKeyCode(Qt::Key_Escape, Qt::NoModifier);
    }
    ListEditHost* host = m_host.baseListEditHost();
    const int mode = host ? host->editContext(ListView1).programMode : 3;
    if (redo)
        m_history->redo(mode);
    else
        m_history->undo(mode);
}

void BaseListWindow::updateUndoActions() {
    if (!undoAction) return;
    auto item = [](QAction* a, const QString& caption, bool can, const QString& text) {
        a->setEnabled(can);
        a->setText(can && !text.isEmpty() ? caption + QStringLiteral(": ") + text : caption);
    };
    const ListEditor* editor = ListEditor::of(ListView1);
    const QLineEdit* box = editor && editor->isEditing() ? editor->editBox() : nullptr;
    if (box && box->isUndoAvailable())
        item(undoAction, QStringLiteral("&Kumoa"), true, QString());
    else
        item(undoAction, QStringLiteral("&Kumoa"), m_history->canUndo(), m_history->undoText());
    if (box && box->isRedoAvailable())
        item(redoAction, QStringLiteral("&Tee uudelleen"), true, QString());
    else
        item(redoAction, QStringLiteral("&Tee uudelleen"), m_history->canRedo(), m_history->redoText());
}

int BaseListWindow::priceColumn() const {
    for (int i = 0; i < static_cast<int>(Option1.size()); ++i)
        if (Option1[i]->isChecked()) return 4 + i;
    return 0;
}

void BaseListWindow::setAddingEnabled(bool enabled) {
    Command1[0]->setEnabled(enabled);
    SubMenu1[0]->setEnabled(enabled);
    SubMenu1[1]->setEnabled(enabled);
}

void BaseListWindow::closeByProgram() {
    m_programClose = true;
    close();
    m_programClose = false;
}

void BaseListWindow::closeEvent(QCloseEvent* event) {
    if (m_programClose) {
        event->accept();
        return;
    }
    // The window stays alive beside the projects: closing hides it. Changes the user chose
    // to drop are dropped by reading the file again.
    event->ignore();
    if (m_host.baseListCloseCancelled(this)) return;
    if (!windowTitle().endsWith(kMarker)) loadFile(currentFile());
    hide();
}

} // namespace lists
