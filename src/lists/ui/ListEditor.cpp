#include "lists/ui/ListEditor.h"

#include "lists/ListStep.h"
#include "lists/ListModel.h"
#include "lists/ui/ListView.h"
#include "platform/Dialogs.h"
#include "platform/DroppedFiles.h"

#include <limits>
#include <QCoreApplication>
#include <QDrag>
#include <QDragMoveEvent>
#include <QDropEvent>
#include <QFocusEvent>
#include <QFrame>
#include <QHash>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMimeData>
#include <QPainter>

namespace lists {

namespace {

constexpr int kTwipsPerPixel = 15;
// The box's right edge stays this far inside the list, clear of its scroll bar.
constexpr int kRightMarginTwips = 250;
constexpr int kDragDistanceSquaredTwips = 1000;

// The lists that can be the source of a drag, by the identity their drags carry.
QHash<quint64, QPointer<ListView>>& registry() {
    static QHash<quint64, QPointer<ListView>> lists;
    return lists;
}

quint64 nextId() {
    static quint64 id = 0;
    return ++id;
}

// The edit box. Keys it does not use stay in it, so that arrows do not move the list's rows
// under an edit; losing the focus ends the edit.
class CellEditBox : public QLineEdit {
public:
    CellEditBox(ListEditor* editor, QWidget* parent)
        : QLineEdit(parent)
        , m_editor(editor) {
        // A cell holds any length; Qt's default of 32767 characters would cut a longer one
        // when it is edited.
        setMaxLength(std::numeric_limits<int>::max());
    }

protected:
    void keyPressEvent(QKeyEvent* event) override {
        if (m_editor->EditKeyCode(event->key(), event->modifiers())) {
            event->accept();
            return;
        }
        QLineEdit::keyPressEvent(event);
        event->accept();
    }
    void focusOutEvent(QFocusEvent* event) override {
        QLineEdit::focusOutEvent(event);
        // A context menu of the box itself does not end the edit.
        if (event->reason() != Qt::PopupFocusReason) m_editor->closeEditor();
    }

private:
    ListEditor* m_editor;
};

} // namespace

ListEditor::ListEditor(ListView* view, ListEditHost* host)
    : QObject(view)
    , m_view(view)
    , m_host(host)
    , m_id(nextId()) {
    registry().insert(m_id, view);

    m_box = new CellEditBox(this, view->viewport());
    m_box->setObjectName(QStringLiteral("TXTEDIT"));
    m_box->setFrame(false);
    m_box->setStyleSheet(
        QStringLiteral("QLineEdit { border: 1px solid palette(highlight); background: white; }"));
    m_box->hide();

    m_dropMark = new QFrame(view->viewport());
    m_dropMark->setAttribute(Qt::WA_TransparentForMouseEvents);
    QColor mark = view->palette().color(QPalette::Highlight);
    mark.setAlpha(110);
    m_dropMark->setStyleSheet(QStringLiteral("QFrame { background: rgba(%1, %2, %3, %4); }")
                                  .arg(mark.red())
                                  .arg(mark.green())
                                  .arg(mark.blue())
                                  .arg(mark.alpha()));
    m_dropMark->hide();

    // A press on one of several selected rows keeps the selection until the release, so that
    // the rows can be dragged; the view's own drags never start (ListView keeps left-button
    // moves to itself).
    view->setDragEnabled(true);
    view->viewport()->setAcceptDrops(true);
    view->viewport()->installEventFilter(this);

    connect(view, &ListView::rowDoubleClicked, this, [this](int row) {
        m_editRow = row;
        EditListView(0);
    });
    connect(view, &ListView::keyTyped, this, [this](QKeyEvent* event) {
        if (EditListViewKeyCode(event))
            event->accept();
        else
            event->ignore();
    });
    connect(view, &ListView::headerClicked, this, [this](int column) { SortItems(column); });
    connect(view, &ListView::mousePressed, this,
            [this](Qt::MouseButton button, Qt::KeyboardModifiers, QPoint pos) {
                m_pressed = button == Qt::LeftButton;
                m_pressPos = pos;
            });
    connect(view, &ListView::mouseMoved, this, &ListEditor::StartListViewDrag);
}

ListEditor::~ListEditor() {
    registry().remove(m_id);
}

ListEditor* ListEditor::of(const ListView* view) {
    return view ? view->findChild<ListEditor*>(QString(), Qt::FindDirectChildrenOnly) : nullptr;
}

QLineEdit* ListEditor::editBox() const {
    return m_box;
}

bool ListEditor::isEditing() const {
    return m_box && m_box->isVisible();
}

ListModel* ListEditor::list() const {
    return m_view ? m_view->list() : nullptr;
}

EditContext ListEditor::context() const {
    return m_host ? m_host->editContext(m_view) : EditContext{};
}

void ListEditor::edited() {
    if (m_host) m_host->listEdited(m_view);
}

// ---------------------------------------------------------------- editing

int ListEditor::GetListViewCol() const {
    return m_view ? m_view->columnAtX(m_view->lastMousePos().x()) : 0;
}

bool ListEditor::EditListView(int startMode) {
    ListModel* l = list();
    if (!l || !m_box || l->rows() == 0) return false;
    if (startMode == 0) {
        const int column = GetListViewCol();
        if (column == 0) return false;
        m_editCol = column;
    }
    if (m_editRow < 1 || m_editRow > l->rows()) return false;
    const EditContext ctx = context();
    const EditableColumns editable = EditableColumnRange(*l, ctx);
    if (m_editCol < editable.first || m_editCol > editable.last) return false;
    if (!ListViewEditEnabled(*l, action::EditCell, ctx, m_editRow)) return false;

    m_view->scrollTo(l->index(m_editRow - 1, m_editCol - 1));
    const QRect cell = m_view->cellRect(m_editRow, m_editCol);
    // The list's right edge in viewport coordinates, less the margin.
    const int rightLimit = m_view->width() - m_view->viewport()->x() - kRightMarginTwips / kTwipsPerPixel;
    const int width = std::max(8, std::min(cell.width(), rightLimit - cell.left()));
    m_box->setGeometry(cell.left(), cell.top(), width, cell.height());

    if (startMode == 2) {
        m_box->deselect();
        m_box->setCursorPosition(m_box->text().size());
    } else {
        m_box->setText(l->cell(m_editRow, m_editCol).toString());
        m_box->selectAll();
    }
    l->setSelected(m_editRow, false);
    m_committed = false;
    m_box->show();
    m_box->raise();
    m_box->setFocus(Qt::OtherFocusReason);
    return true;
}

bool ListEditor::EditListViewKeyCode(QKeyEvent* event) {
    ListModel* l = list();
    if (!l || l->rows() == 0) return false;
    if (event->modifiers() & (Qt::ControlModifier | Qt::AltModifier)) return false;
    const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    const QString text = event->text();
    if (!enter) {
        if (text.isEmpty()) return false;
        const char16_t code = text[0].unicode();
        if (code <= 32 || code == 127) return false;
    }
    const int row = l->selectedRow();
    if (row == 0 || !m_box) return false;
    m_editRow = row;
    m_editCol = EditableColumnRange(*l, context()).first;
    if (enter) {
        EditListView(1);
    } else {
        // The first character is typed into an empty box, so that the box can undo it.
        m_box->setText(QString());
        m_box->insert(text);
        EditListView(2);
    }
    return true;
}

bool ListEditor::EditKeyCode(int key, Qt::KeyboardModifiers modifiers) {
    m_committed = false;
    ListModel* l = list();
    if (!l || !m_box) return false;
    if (key == Qt::Key_Escape) {
        // Nothing is stored: the box goes without its lost-focus handling.
        m_committed = true;
        m_view->setFocus(Qt::OtherFocusReason);
        m_box->hide();
        return true;
    }
    if (key != Qt::Key_Return && key != Qt::Key_Enter) return false;
    const Qt::KeyboardModifiers mods = modifiers & ~Qt::KeypadModifier;
    const EditableColumns editable = EditableColumnRange(*l, context());
    if (mods == Qt::AltModifier) {
        PutToListView();
        m_committed = true;
        NextLine(+1);
    } else if (mods == Qt::ShiftModifier) {
        PutToListView();
        if (m_editCol > editable.first) {
            --m_editCol;
            EditListView(1);
        } else {
            m_committed = true;
            NextLine(-1);
        }
    } else if (mods == Qt::NoModifier) {
        PutToListView();
        if (m_editCol < editable.last) {
            ++m_editCol;
            EditListView(1);
        } else {
            m_committed = true;
            NextLine(+1);
        }
    } else {
        return false;
    }
    return true;
}

void ListEditor::NextLine(int direction) {
    ListModel* l = list();
    if (!l) return;
    const EditContext ctx = context();
    int offset = direction;
    if (const int column = RestrictedEntryColumn(ctx)) {
        offset = NextNonBlank(*l, column, direction, m_editRow);
        if (offset == 0)
            platform::MsgBox(QStringLiteral("Viimeinen kenttä."), platform::MsgIcon::Information);
    }
    m_editRow += offset;
    if (direction < 0) {
        if (m_editRow >= 1) {
            l->ensureVisible(m_editRow);
        } else {
            m_editRow = 1;
            platform::MsgBox(QStringLiteral("Ensimmäinen rivi"), platform::MsgIcon::Information);
        }
    } else if (m_editRow > l->rows()) {
        m_editRow = l->rows();
        if (platform::Ask(QStringLiteral("Viimeinen rivi. Lisätäänkö rivi?"), platform::MsgButtons::YesNo,
                          platform::MsgIcon::Question,
                          platform::MsgAnswer::Yes) == platform::MsgAnswer::Yes) {
            ListStep recorded(*l, step::InsertRows);
            if (ListViewRowEdit(*l, action::AppendRow, ctx)) edited();
            m_editRow = l->rows();
        }
    } else {
        l->ensureVisible(m_editRow);
    }
    m_view->setFocus(Qt::OtherFocusReason);
    closeEditor();
    l->selectOnly(m_editRow);
}

bool ListEditor::PutToListView() {
    ListModel* l = list();
    if (!l || !isEditing() || m_storing) return false;
    // A refusal message takes the focus from the box; that must not store a second time.
    m_storing = true;
    bool changed = false;
    {
        ListStep recorded(*l, step::CellEdit);
        changed = lists::PutToListView(*l, m_editRow, m_editCol, m_box->text(), context());
    }
    m_storing = false;
    if (changed) edited();
    return changed;
}

void ListEditor::closeEditor() {
    if (!isEditing() || m_storing) return;
    if (!m_committed) PutToListView();
    m_box->hide();
}

bool ListEditor::SortItems(int column) {
    ListModel* l = list();
    if (!l) return false;
    closeEditor();
    ListStep recorded(*l, step::Sort);
    return lists::SortItems(*l, column);
}

bool ListEditor::changeList(const QString& stepText,
                            const std::function<bool(ListModel&, const EditContext&)>& operation) {
    ListModel* l = list();
    if (!l) return false;
    // A cell being edited is stored as a step of its own first.
    closeEditor();
    ListStep recorded(*l, stepText);
    const bool changed = operation(*l, context());
    if (changed) edited();
    return changed;
}

bool ListEditor::rowEdit(int rowAction) {
    return changeList(
        rowAction == action::DeleteRows ? step::DeleteRows : step::InsertRows,
        [rowAction](ListModel& l, const EditContext& ctx) { return ListViewRowEdit(l, rowAction, ctx); });
}

bool ListEditor::cutCopyDelete(int operation) {
    return changeList(operation == 0 ? step::Cut : step::ClearCells,
                      [operation](ListModel& l, const EditContext& ctx) {
                          return ListViewCutCopyDelSelection(l, operation, ctx);
                      });
}

bool ListEditor::paste() {
    return changeList(step::Paste, &PasteSelection);
}

// ---------------------------------------------------------------- drag and drop

bool ListEditor::dragThresholdReached(QPoint down, QPoint now) {
    const long long dx = static_cast<long long>(now.x() - down.x()) * kTwipsPerPixel;
    const long long dy = static_cast<long long>(now.y() - down.y()) * kTwipsPerPixel;
    return dx * dx + dy * dy >= kDragDistanceSquaredTwips;
}

QString ListEditor::mimeType() {
    return QStringLiteral("application/x-tamrik-list-rows");
}

QMimeData* ListEditor::dragData(bool shift) const {
    auto* data = new QMimeData;
    // The process id keeps a drag from another running program from naming one of our lists.
    data->setData(mimeType(), QByteArray::number(QCoreApplication::applicationPid()) + ';' +
                                  QByteArray::number(m_id) + ';' + (shift ? '1' : '0'));
    return data;
}

ListView* ListEditor::dragSource(const QMimeData* data, bool* shift) {
    if (!data || !data->hasFormat(mimeType())) return nullptr;
    const QList<QByteArray> parts = data->data(mimeType()).split(';');
    if (parts.size() != 3 || parts[0].toLongLong() != QCoreApplication::applicationPid()) return nullptr;
    if (shift) *shift = parts[2] == "1";
    return registry().value(parts[1].toULongLong()).data();
}

QPixmap ListEditor::dragPicture(DragPicture which) {
    QPixmap pixmap(32, 32);
    pixmap.fill(Qt::transparent);
    QPainter p(&pixmap);
    p.setRenderHint(QPainter::Antialiasing);
    // A sheet of rows, as in every picture.
    p.setPen(QPen(QColor(64, 64, 64), 1));
    p.setBrush(Qt::white);
    p.drawRect(QRectF(2.5, 4.5, 20, 22));
    for (int y = 9; y <= 23; y += 4)
        p.drawLine(QPointF(5, y + 0.5), QPointF(20, y + 0.5));
    switch (which) {
        case DragPicture::Drag:
            break;
        case DragPicture::Drop:
            p.setPen(QPen(QColor(0, 128, 0), 3, Qt::SolidLine, Qt::RoundCap));
            p.drawLine(QPointF(24, 16), QPointF(24, 28));
            p.drawLine(QPointF(18, 22), QPointF(30, 22));
            break;
        case DragPicture::NoDrop:
            p.setPen(QPen(QColor(200, 0, 0), 3));
            p.setBrush(Qt::NoBrush);
            p.drawEllipse(QPointF(23, 22), 7, 7);
            p.drawLine(QPointF(18, 27), QPointF(28, 17));
            break;
    }
    return pixmap;
}

void ListEditor::StartListViewDrag(Qt::MouseButtons buttons, Qt::KeyboardModifiers modifiers, QPoint pos) {
    if (!(buttons & Qt::LeftButton)) {
        m_pressed = false;
        return;
    }
    ListModel* l = list();
    if (!m_pressed || m_dragging || !l || l->selectedCount() == 0 || !dragThresholdReached(m_pressPos, pos))
        return;
    m_pressed = false;
    m_dragging = true;
    auto* drag = new QDrag(m_view);
    drag->setMimeData(dragData(modifiers & Qt::ShiftModifier));
    drag->setPixmap(dragPicture(DragPicture::Drag));
    drag->setHotSpot(QPoint(-4, -4));
    drag->setDragCursor(dragPicture(DragPicture::Drop), Qt::CopyAction);
    drag->setDragCursor(dragPicture(DragPicture::NoDrop), Qt::IgnoreAction);
    drag->exec(Qt::CopyAction, Qt::CopyAction);
    m_dragging = false;
}

int ListEditor::rowAt(QPoint pos) const {
    const QModelIndex index = m_view->indexAt(pos);
    return index.isValid() ? index.row() + 1 : 0;
}

void ListEditor::showDropRow(int row) {
    m_dropRow = row;
    if (!m_dropMark || !m_view) return;
    if (row == 0) {
        m_dropMark->hide();
        return;
    }
    const QRect cell = m_view->cellRect(row, 1);
    m_dropMark->setGeometry(0, cell.top(), m_view->viewport()->width(), cell.height());
    m_dropMark->show();
    m_dropMark->raise();
}

bool ListEditor::CheckListViewDrop(ListView* source, QPoint pos) {
    ListModel* target = list();
    const bool allowed = target && source && source != m_view && source->list() &&
                         TransferAllowed(target->tag(), source->list()->tag());
    if (!allowed) {
        showDropRow(0);
        return false;
    }
    showDropRow(rowAt(pos));
    target->clearSelection();
    return true;
}

bool ListEditor::EditListViewDragDrop(ListView* source, QPoint pos, bool shift) {
    if (!CheckListViewDrop(source, pos)) return false;
    ListModel* target = list();
    const int row = m_dropRow;
    showDropRow(0);
    closeEditor();
    const DropPlace place = dropPlace(*target, row, shift);
    const TransferOptions options = m_host ? m_host->transferOptions(m_view, source) : TransferOptions{};
    // The dropped rows and the formatting that follows them are one step of the target's history.
    ListStep recorded(*target, step::Transfer);
    const TransferResult result = TransferData(*target, *source->list(), place.position, place.mode, options);
    if (result.changed && m_host) m_host->transferDone(m_view, result);
    return result.changed;
}

bool ListEditor::eventFilter(QObject* watched, QEvent* event) {
    if (!m_view || watched != m_view->viewport()) return false;
    switch (event->type()) {
        case QEvent::DragEnter:
        case QEvent::DragMove: {
            auto* e = static_cast<QDragMoveEvent*>(event);
            // Files from the file manager go to the window, which opens or imports them.
            if (m_host && !platform::droppedFiles(e->mimeData()).isEmpty()) {
                showDropRow(rowAt(e->position().toPoint()));
                e->setDropAction(Qt::CopyAction);
                e->accept();
                return true;
            }
            ListView* source = dragSource(e->mimeData());
            if (source && CheckListViewDrop(source, e->position().toPoint())) {
                e->setDropAction(Qt::CopyAction);
                e->accept();
            } else {
                e->ignore();
            }
            return true;
        }
        case QEvent::DragLeave:
            showDropRow(0);
            return true;
        case QEvent::Drop: {
            auto* e = static_cast<QDropEvent*>(event);
            const QStringList files = platform::droppedFiles(e->mimeData());
            if (m_host && !files.isEmpty()) {
                const int row = rowAt(e->position().toPoint());
                showDropRow(0);
                closeEditor();
                e->setDropAction(Qt::CopyAction);
                e->accept();
                m_host->filesDropped(m_view, files, row);
                return true;
            }
            bool shift = false;
            ListView* source = dragSource(e->mimeData(), &shift);
            if (source && EditListViewDragDrop(source, e->position().toPoint(), shift)) {
                e->setDropAction(Qt::CopyAction);
                e->accept();
            } else {
                showDropRow(0);
                e->ignore();
            }
            return true;
        }
        default:
            return false;
    }
}

} // namespace lists
