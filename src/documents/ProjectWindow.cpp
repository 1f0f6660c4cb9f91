#include "documents/ProjectWindow.h"

#include "documents/Controls.h"
#include "documents/DocumentHost.h"
#include "lists/EditHistory.h"
#include "lists/ListFiles.h"
#include "lists/ListModel.h"
#include "lists/ui/ListEditor.h"
#include "lists/ui/ListView.h"
#include "persist/ProjectFile.h"
#include "persist/WindowRecord.h"
#include "platform/DroppedFiles.h"

#include <QCheckBox>
#include <QCloseEvent>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QScrollArea>
#include <QTextEdit>

namespace documents {

ProjectWindow::ProjectWindow(DocumentHost& host, int kind, QWidget* parent)
    : QWidget(parent)
    , m_host(host)
    , m_kind(kind) {
    setAttribute(Qt::WA_DeleteOnClose);
    // Anything dragged over the window outside a list shows the no-drop pointer.
    setAcceptDrops(true);
}

ProjectWindow::~ProjectWindow() = default;

void ProjectWindow::prepareNewProject() {}

lists::ListModel* ProjectWindow::list(int i) const {
    if (i < 0 || i >= listCount() || !ListView1[i]) return nullptr;
    return ListView1[i]->list();
}

TextBox* ProjectWindow::makeText(int i, bool multiLine) {
    auto* t = new TextBox(multiLine, this);
    t->setObjectName(QStringLiteral("Text1_%1").arg(i));
    if (static_cast<int>(Text1.size()) <= i) Text1.resize(i + 1, nullptr);
    Text1[i] = t;
    connect(t, &TextBox::changed, this, [this, i] { fieldChanged({persist::FieldRef::Kind::Text, i}); });
    return t;
}

ComboBox* ProjectWindow::makeCombo(int i) {
    auto* c = new ComboBox(this);
    c->setObjectName(QStringLiteral("Combo1_%1").arg(i));
    if (static_cast<int>(Combo1.size()) <= i) Combo1.resize(i + 1, nullptr);
    Combo1[i] = c;
    connect(c, &ComboBox::changed, this, [this, i] { fieldChanged({persist::FieldRef::Kind::Combo, i}); });
    return c;
}

lists::ListView* ProjectWindow::makeList(int i, const QString& kind) {
    auto* model = new lists::ListModel(this);
    model->setKind(kind);
    auto* view = new lists::ListView(this);
    view->setObjectName(QStringLiteral("ListView1_%1").arg(i));
    // A screen reader names the list by its kind.
    view->setAccessibleName(kind);
    view->setList(model);
    view->setIndex(i);
    if (static_cast<int>(ListView1.size()) <= i) ListView1.resize(i + 1, nullptr);
    ListView1[i] = view;
    connect(view, &lists::ListView::focusEntered, this, [this, view] { m_host.listFocused(view); });
    connect(view, &lists::ListView::currentRowMoved, this, [this, view] { m_host.listFocused(view); });
    connect(view, &lists::ListView::contextMenuWanted, this,
            [this](QPoint global) { m_host.showContextMenu(0, global); });
    new lists::ListEditor(view, m_host.listEditHost());
    return view;
}

void ProjectWindow::setHistory(std::shared_ptr<lists::EditHistory> history) {
    m_history = std::move(history);
    for (int i = 0; i < listCount(); ++i)
        if (lists::ListModel* m = list(i)) m->setHistory(m_history.get());
}

QWidget* ProjectWindow::fieldControl(persist::FieldRef field) const {
    using Kind = persist::FieldRef::Kind;
    const int i = field.index;
    switch (field.kind) {
        case Kind::Text:
            return i >= 0 && i < static_cast<int>(Text1.size()) ? Text1[i] : nullptr;
        case Kind::Combo:
            return i >= 0 && i < static_cast<int>(Combo1.size()) ? Combo1[i] : nullptr;
        case Kind::Check:
            return recordCheck(i);
    }
    return nullptr;
}

QString& ProjectWindow::lastValue(persist::FieldRef field) {
    using Kind = persist::FieldRef::Kind;
    std::vector<QString>& values = field.kind == Kind::Text    ? m_lastText
                                   : field.kind == Kind::Combo ? m_lastCombo
                                                               : m_lastCheck;
    if (static_cast<int>(values.size()) <= field.index) values.resize(field.index + 1);
    return values[field.index];
}

QString ProjectWindow::fieldValue(persist::FieldRef field) const {
    QWidget* control = fieldControl(field);
    if (auto* t = qobject_cast<TextBox*>(control)) return t->text();
    if (auto* c = qobject_cast<ComboBox*>(control)) return c->text();
    if (auto* b = qobject_cast<QCheckBox*>(control)) return QString::number(b->checkState());
    return {};
}

void ProjectWindow::setFieldValue(persist::FieldRef field, const QString& value) {
    QWidget* control = fieldControl(field);
    if (auto* t = qobject_cast<TextBox*>(control))
        t->setText(value);
    else if (auto* c = qobject_cast<ComboBox*>(control))
        c->setText(value);
    else if (auto* b = qobject_cast<QCheckBox*>(control))
        b->setCheckState(static_cast<Qt::CheckState>(value.toInt()));
}

bool ProjectWindow::fieldLocked(persist::FieldRef field) const {
    // Only the program mode's locks count: the fields the program computes are read-only for
    // the user, but the steps that computed them may be undone.
    QWidget* control = fieldControl(field);
    return control && control->property("lockedByMode").toBool();
}

void ProjectWindow::reveal(QWidget* control) {
    m_host.bringForward(this);
    if (!control || !control->isVisibleTo(this)) return;
    for (QWidget* w = control->parentWidget(); w && w != this; w = w->parentWidget())
        if (auto* scroll = qobject_cast<QScrollArea*>(w)) scroll->ensureWidgetVisible(control);
    control->setFocus(Qt::OtherFocusReason);
}

void ProjectWindow::revealField(persist::FieldRef field) {
    reveal(fieldControl(field));
}

void ProjectWindow::fieldChanged(persist::FieldRef field) {
    const QString now = fieldValue(field);
    QString& last = lastValue(field);
    if (now == last) return;
    const QString before = std::exchange(last, now);
    if (m_host.appState().Loading) return;
    if (!m_history) {
        m_host.contentChanged(this);
        return;
    }
    if (m_history->applying()) return;
    // The step is named after the field's label, when it has one.
    QString label;
    QWidget* control = fieldControl(field);
    for (QLabel* l : findChildren<QLabel*>())
        if (l->buddy() == control) label = l->text();
    if (label.isEmpty())
        if (auto* b = qobject_cast<QCheckBox*>(control)) label = b->text();
    m_history->push(new persist::FieldEdit(*this, field, before, now, m_history->mergeGeneration(),
                                           persist::fieldStepText(label)));
}

persist::WindowRecord ProjectWindow::toRecord(bool listsInPlace) const {
    persist::WindowRecord r;
    for (const TextBox* t : Text1)
        r.texts.append(t ? t->text() : QString());
    for (const ComboBox* c : Combo1)
        r.combos.append(c ? c->text() : QString());
    for (const lists::ListView* v : ListView1) {
        persist::ListRecord list;
        const lists::ListModel* m = v ? v->list() : nullptr;
        if (m) {
            list.columns = m->lastDataCol();
            if (listsInPlace) {
                list.listRows = &m->allRows();
            } else {
                list.rows.reserve(m->rows());
                for (const lists::Row& row : m->allRows())
                    list.rows.push_back(row.cells); // shared, not copied
            }
        }
        r.lists.push_back(std::move(list));
    }
    return r;
}

void ProjectWindow::applyRecord(persist::WindowRecord&& record) {
    // Only the controls the record has values for change: an older or shorter record leaves
    // the others (a new project's defaults) as they are.
    const int texts = std::min(static_cast<int>(Text1.size()), static_cast<int>(record.texts.size()));
    for (int i = 0; i < texts; ++i)
        if (Text1[i]) Text1[i]->setText(record.texts[i]);
    const int combos = std::min(static_cast<int>(Combo1.size()), static_cast<int>(record.combos.size()));
    for (int i = 0; i < combos; ++i)
        if (Combo1[i]) Combo1[i]->setText(record.combos[i]);
    const int lists = std::min(static_cast<int>(ListView1.size()), static_cast<int>(record.lists.size()));
    for (int j = 0; j < lists; ++j) {
        lists::ListModel* m = list(j);
        if (!m) continue;
        persist::ListRecord& src = record.lists[j];
        // A list whose template was missing has no columns: it takes the record's, so that
        // no cell is dropped and the next save writes the list back whole.
        std::vector<lists::Column> columns = m->columns();
        if (columns.empty() && src.columns > 0) {
            QStringList headers;
            for (int c = 1; c <= src.columns; ++c)
                headers << QStringLiteral("Sarake %1").arg(c);
            columns = lists::columnsForHeaders(headers);
        }
        const int dataCols = columns.empty() ? 0 : static_cast<int>(columns.size()) - 1;
        const int keep = std::min(src.columns, dataCols);
        std::vector<lists::Row> rows;
        rows.reserve(src.rows.size());
        long long number = 0;
        // Each stored row is let go as soon as its list row exists: holding both would double
        // the memory that a large project takes while it opens.
        lists::RowCells::Builder build;
        for (lists::RowCells& cells : src.rows) {
            rows.push_back(persist::RowFromRecord(std::move(cells), keep, dataCols, ++number, build));
            cells = lists::RowCells();
        }
        m->reset(std::move(columns), std::move(rows));
    }
}

void ProjectWindow::dragEnterEvent(QDragEnterEvent* event) {
    // Files from the file manager are welcome anywhere; other drags only on a list.
    if (!platform::droppedFiles(event->mimeData()).isEmpty())
        event->acceptProposedAction();
    else
        event->ignore();
}

void ProjectWindow::dragMoveEvent(QDragMoveEvent* event) {
    if (!platform::droppedFiles(event->mimeData()).isEmpty())
        event->acceptProposedAction();
    else
        event->ignore();
}

void ProjectWindow::dropEvent(QDropEvent* event) {
    const QStringList files = platform::droppedFiles(event->mimeData());
    if (files.isEmpty()) {
        event->ignore();
        return;
    }
    event->acceptProposedAction();
    m_host.filesDropped(this, childAt(event->position().toPoint()), files);
}

void ProjectWindow::showEvent(QShowEvent* event) {
    passFileDropsToWindow();
    QWidget::showEvent(event);
}

void ProjectWindow::passFileDropsToWindow() {
    if (m_fileDropsPassed) return;
    m_fileDropsPassed = true;
    for (QWidget* w : findChildren<QWidget*>()) {
        // Lists take files by their own rules.
        bool inList = false;
        for (QWidget* p = w; p && p != this && !inList; p = p->parentWidget())
            inList = qobject_cast<lists::ListView*>(p) != nullptr;
        if (inList) continue;
        QWidget* target = nullptr;
        if (qobject_cast<QLineEdit*>(w))
            target = w;
        else if (auto* plain = qobject_cast<QPlainTextEdit*>(w))
            target = plain->viewport();
        else if (auto* rich = qobject_cast<QTextEdit*>(w))
            target = rich->viewport();
        if (target) target->installEventFilter(this);
    }
}

bool ProjectWindow::eventFilter(QObject* watched, QEvent* event) {
    const QEvent::Type type = event->type();
    if (type != QEvent::DragEnter && type != QEvent::DragMove && type != QEvent::Drop)
        return QWidget::eventFilter(watched, event);
    auto* drag = static_cast<QDropEvent*>(event);
    const QStringList files = platform::droppedFiles(drag->mimeData());
    if (files.isEmpty()) return QWidget::eventFilter(watched, event);
    drag->acceptProposedAction();
    if (type == QEvent::Drop) m_host.filesDropped(this, qobject_cast<QWidget*>(watched), files);
    return true;
}

} // namespace documents
