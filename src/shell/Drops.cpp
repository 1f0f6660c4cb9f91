// Files dropped from the file manager: on the main window, on a project window, on a picture
// slot and on a list.
#include "documents/Form1.h"
#include "documents/Form3.h"
#include "documents/Form4.h"
#include "lists/ListEditing.h"
#include "lists/ListFiles.h"
#include "lists/ListModel.h"
#include "lists/ListProcedures.h"
#include "lists/Spreadsheet.h"
#include "lists/ui/ListView.h"
#include "platform/Dialogs.h"
#include "platform/DroppedFiles.h"
#include "platform/ui/PictureBox.h"
#include "shell/Captions.h"
#include "shell/MDIForm1.h"
#include "shell/ShellActions.h"

#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFileInfo>
#include <QPushButton>

namespace shell {

using platform::DroppedKind;
using platform::MsgIcon;

namespace {

// The data columns of a list file or spreadsheet as its first row gives them; -1 when it
// cannot be read (the reader's message is then shown when the window opens it).
int dataColumnsOf(const QString& file) {
    if (lists::isSpreadsheetFile(file)) {
        lists::ListModel sheet;
        if (!lists::readSpreadsheetList(file, sheet)) return -1;
        return sheet.lastDataCol();
    }
    lists::ListFileContent content;
    if (lists::ReadListFile(file, QStringLiteral(";"), content) != lists::ReadStatus::Ok) return -1;
    return content.columns.empty() ? 0 : static_cast<int>(content.columns.size()) - 1;
}

void refuse(const QString& file, const QString& why) {
    platform::MsgBox(QStringLiteral("Tiedostoa ") + file + QStringLiteral(" ei voi avata: ") + why,
                     MsgIcon::Exclamation);
}

// The picture slot (2..7) of a control of a project window; 0 for none.
int pictureSlotAt(QWidget* window, QWidget* at) {
    if (auto* f1 = qobject_cast<documents::Form1*>(window)) {
        for (int i = 0; i < static_cast<int>(f1->Image1.size()); ++i)
            if (at && (at == f1->Image1[i] || f1->Image1[i]->isAncestorOf(at))) return i + 2;
        return 0;
    }
    auto* button = qobject_cast<QPushButton*>(at);
    if (!button) button = ancestor<QPushButton>(at);
    if (!button || !button->isEnabled()) return 0;
    std::vector<QPushButton*> buttons;
    int first = 0;
    if (auto* card = qobject_cast<documents::Form3*>(window)) {
        buttons = card->Command2;
        first = 2;
    } else if (auto* charge = qobject_cast<documents::Form4*>(window)) {
        buttons = charge->Command1;
        first = 5;
    }
    for (int k = 0; k < static_cast<int>(buttons.size()); ++k)
        if (buttons[k] == button) return first + k;
    return 0;
}

} // namespace

void MDIForm1::dragEnterEvent(QDragEnterEvent* event) {
    dragMoveEvent(event);
}

void MDIForm1::dragMoveEvent(QDragMoveEvent* event) {
    if (!platform::droppedFiles(event->mimeData()).isEmpty() && !fileOperationRunning())
        event->acceptProposedAction();
    else
        event->ignore();
}

void MDIForm1::dropEvent(QDropEvent* event) {
    const QStringList files = platform::droppedFiles(event->mimeData());
    if (files.isEmpty() || fileOperationRunning()) {
        event->ignore();
        return;
    }
    event->acceptProposedAction();
    openDroppedFiles(files);
}

void MDIForm1::openDroppedFiles(const QStringList& files) {
    for (const QString& file : files)
        openDroppedFile(file);
}

void MDIForm1::openDroppedFile(const QString& file) {
    const QFileInfo info(file);
    if (!info.isFile()) {
        platform::MsgBox(QStringLiteral("Tiedostoa: ") + file + QStringLiteral(" ei löydy."),
                         MsgIcon::Information);
        return;
    }
    switch (platform::droppedKind(file)) {
        case DroppedKind::Project:
        case DroppedKind::UnitPrices:
        case DroppedKind::Requirements:
            // As "&Avaa..." opens a project, and the base list windows their lists.
            openFromCommandLine(info.absoluteFilePath());
            return;
        case DroppedKind::ListOrSheet: {
            // A list of either kind: the base list whose columns it has.
            const int columns = dataColumnsOf(file);
            int slot = 0;
            if (Form6 && Form6->list() && columns == Form6->list()->lastDataCol()) slot = 6;
            if (Form7 && Form7->list() && columns == Form7->list()->lastDataCol()) slot = slot ? 0 : 7;
            if (!slot) {
                refuse(file, QStringLiteral("sen sarakkeet eivät ole yksikköhintaluettelon eivätkä "
                                            "laatuvaatimusten perusluettelon sarakkeet."));
                return;
            }
            lists::BaseListWindow* window = slot == 6 ? Form6 : Form7;
            if (FormTouched(window)) return;
            if (window->openFile(info.absoluteFilePath())) showBaseList(slot);
            return;
        }
        case DroppedKind::Picture:
            refuse(file,
                   QStringLiteral("kuva pudotetaan perustietojen kuvapaikalle tai kortin kuvapainikkeelle."));
            return;
        case DroppedKind::Other:
            break;
    }
    refuse(file, QStringLiteral("tiedostotyyppiä ei tunneta."));
}

void MDIForm1::filesDropped(QWidget* window, QWidget* at, const QStringList& files) {
    if (fileOperationRunning()) return;
    auto* w = qobject_cast<documents::ProjectWindow*>(window);
    const int slot = w ? pictureSlotAt(window, at) : 0;
    for (const QString& file : files) {
        if (!slot || platform::droppedKind(file) != DroppedKind::Picture) {
            openDroppedFile(file);
            continue;
        }
        // A picture on a picture slot takes its place, as the image viewer would put it.
        QString error, reduced;
        const platform::Picture picture = platform::Picture::fromFile(file, &error, &reduced);
        if (picture.isNull()) {
            platform::MsgBox(QStringLiteral("Kuvaa ") + file + QStringLiteral(" ei voi lukea:\r\n") + error,
                             MsgIcon::Exclamation);
            continue;
        }
        GiveBackPicture(*this, slot, ParseFileName(w->caption()).project(), picture, file);
        if (!reduced.isEmpty()) platform::MsgBox(reduced, MsgIcon::Information);
    }
}

void MDIForm1::filesDropped(lists::ListView* view, const QStringList& files, int row) {
    if (fileOperationRunning() || !view->list()) return;
    // On a base list window's list: the file opens in that window.
    for (lists::BaseListWindow* base : {Form6, Form7}) {
        if (!base || base->view() != view) continue;
        for (const QString& file : files) {
            const DroppedKind kind = platform::droppedKind(file);
            if (kind != DroppedKind::ListOrSheet &&
                kind != (base == Form6 ? DroppedKind::UnitPrices : DroppedKind::Requirements)) {
                openDroppedFile(file);
                continue;
            }
            if (!QFileInfo(file).isFile()) {
                openDroppedFile(file); // says it is missing
                continue;
            }
            if (FormTouched(base)) return;
            base->openFile(QFileInfo(file).absoluteFilePath());
        }
        return;
    }
    // On a project's list: the file's rows come in as rows dragged from the base list of the
    // same columns would, by the same rules.
    lists::ListModel& target = *view->list();
    lists::BaseListWindow* base = nullptr;
    if (Form6 && Form6->list() && lists::TransferAllowed(target.tag(), Form6->list()->kind())) base = Form6;
    if (Form7 && Form7->list() && lists::TransferAllowed(target.tag(), Form7->list()->kind())) base = Form7;
    for (const QString& file : files) {
        const DroppedKind kind = platform::droppedKind(file);
        const DroppedKind ownKind = base == Form6 ? DroppedKind::UnitPrices : DroppedKind::Requirements;
        if (kind != DroppedKind::ListOrSheet && kind != DroppedKind::UnitPrices &&
            kind != DroppedKind::Requirements) {
            openDroppedFile(file);
            continue;
        }
        if (!base || (kind != DroppedKind::ListOrSheet && kind != ownKind)) {
            lists::ShowDeny(m_state.ProgramMode);
            continue;
        }
        lists::ListModel rows;
        rows.setKind(base->list()->kind());
        rows.reset(base->list()->columns(), {});
        const QString separator =
            lists::isSpreadsheetFile(file) ? QStringLiteral(".xls") : QStringLiteral(";");
        if (!lists::InitListView(rows, file, separator)) continue;
        if (rows.rows() == 0) continue;
        rows.selectAll();
        const lists::DropPlace place = lists::dropPlace(target, row, false);
        const lists::TransferResult result = lists::TransferData(target, rows, place.position, place.mode,
                                                                 transferOptions(view, base->view()));
        transferDone(view, result);
    }
}

} // namespace shell
