#include "lists/ui/ListView.h"

#include "lists/ListModel.h"
#include "lists/ui/ListEditor.h"

#include <QApplication>
#include <QHash>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMouseEvent>

namespace lists {

namespace {
constexpr int kTwipsPerPixel = 15;
constexpr int kMaxAutoWidth = 320;
} // namespace

ListView::~ListView() {
    // The editor watches the viewport; it must not see the viewport's last events while this
    // view is half taken down.
    if (ListEditor* editor = ListEditor::of(this)) viewport()->removeEventFilter(editor);
}

ListView::ListView(QWidget* parent)
    : QTreeView(parent) {
    setRootIsDecorated(false);
    setItemsExpandable(false);
    setUniformRowHeights(true);
    setAllColumnsShowFocus(true);
    setSelectionMode(QAbstractItemView::ExtendedSelection);
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setTextElideMode(Qt::ElideRight);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    header()->setStretchLastSection(false);
    header()->setSectionsMovable(false);
    header()->setSectionsClickable(true);
    connect(header(), &QHeaderView::sectionClicked, this,
            [this](int section) { emit headerClicked(section + 1); });
}

void ListView::setList(ListModel* list) {
    if (m_list) disconnect(m_list, nullptr, this, nullptr);
    m_list = list;
    setModel(list);
    if (!list) return;
    connect(selectionModel(), &QItemSelectionModel::selectionChanged, this, [this] { syncToModel(); });
    connect(selectionModel(), &QItemSelectionModel::currentRowChanged, this, [this] { syncToModel(); });
    connect(list, &ListModel::selectionChangedByModel, this, [this] { syncFromModel(); });
    connect(list, &ListModel::scrollToRowRequested, this, &ListView::onScrollRequest);
    connect(list, &QAbstractItemModel::modelReset, this, [this] {
        applyColumnWidths();
        syncFromModel();
    });
    connect(list, &QAbstractItemModel::rowsInserted, this, [this] { syncFromModel(); });
    connect(list, &QAbstractItemModel::rowsRemoved, this, [this] { syncFromModel(); });
    connect(list, &QAbstractItemModel::layoutChanged, this, [this] {
        syncFromModel();
        // Rows put into another order (a sort, or its undo) take the current row elsewhere:
        // whatever names its place (the status bars) hears of it as of any other move.
        if (m_list->currentRow() >= 1) emit currentRowMoved(m_list->currentRow());
    });
    connect(list, &QAbstractItemModel::headerDataChanged, this, [this] { applyColumnWidths(); });
    applyColumnWidths();
    syncFromModel();
}

void ListView::applyColumnWidths() {
    if (!m_list) return;
    // A column is as wide as its header text plus 200 twips; on screen it also widens, up to a
    // limit, to show the texts of the first rows, so that names are readable without dragging.
    // Measuring a text shapes it, and a column repeats its texts (units, types, weights): each
    // text is measured once, and an empty one, narrower than any column, not at all.
    const QFontMetrics metrics(font());
    const int sampleRows = std::min(m_list->rows(), 300);
    QHash<QString, int> measured;
    for (int c = 1; c <= m_list->cols(); ++c) {
        const bool rowNumber = c == m_list->cols();
        setColumnHidden(c - 1, rowNumber);
        if (rowNumber) continue;
        int width = std::max(20, m_list->column(c).width / kTwipsPerPixel);
        for (int r = 1; r <= sampleRows && width < kMaxAutoWidth; ++r) {
            if (m_list->cell(r, c).isEmpty()) continue;
            const QString text = m_list->cell(r, c).toString();
            auto it = measured.constFind(text);
            if (it == measured.cend())
                it = measured.insert(text, metrics.horizontalAdvance(text.left(80)) + 14);
            width = std::max(width, *it);
        }
        setColumnWidth(c - 1,
                       std::min(width, std::max(kMaxAutoWidth, m_list->column(c).width / kTwipsPerPixel)));
    }
}

void ListView::setReadOnlyLook(bool readOnly) {
    QPalette p = palette();
    p.setColor(QPalette::Base,
               readOnly ? QApplication::palette().color(QPalette::Button) : QColor(Qt::white));
    setPalette(p);
    setFocusPolicy(readOnly ? Qt::ClickFocus : Qt::StrongFocus);
}

int ListView::columnAtX(int x) const {
    const int logical = header()->logicalIndexAt(x);
    if (logical < 0 || !m_list || logical >= m_list->cols() - 1) return 0;
    return logical + 1;
}

QRect ListView::cellRect(int row, int col) const {
    if (!m_list) return {};
    return visualRect(m_list->index(row - 1, col - 1));
}

void ListView::syncFromModel() {
    if (!m_list || m_syncing || !selectionModel()) return;
    m_syncing = true;
    QItemSelection sel;
    const int last = m_list->cols() - 1;
    int runStart = 0;
    for (int r = 1; r <= m_list->rows() + 1; ++r) {
        const bool s = r <= m_list->rows() && m_list->isSelected(r);
        if (s && runStart == 0) runStart = r;
        if (!s && runStart != 0) {
            sel.select(m_list->index(runStart - 1, 0), m_list->index(r - 2, std::max(0, last)));
            runStart = 0;
        }
    }
    selectionModel()->select(sel, QItemSelectionModel::ClearAndSelect);
    const int cur = m_list->currentRow();
    if (cur >= 1)
        selectionModel()->setCurrentIndex(m_list->index(cur - 1, 0), QItemSelectionModel::NoUpdate);
    else
        selectionModel()->setCurrentIndex(QModelIndex(), QItemSelectionModel::NoUpdate);
    m_syncing = false;
}

void ListView::syncToModel() {
    if (!m_list || m_syncing) return;
    m_syncing = true;
    std::vector<char> selected(m_list->rows() + 1, 0);
    for (const QItemSelectionRange& range : selectionModel()->selection())
        for (int r = range.top(); r <= range.bottom(); ++r)
            if (r < m_list->rows()) selected[r + 1] = 1;
    const QSignalBlocker block(m_list);
    for (int r = 1; r <= m_list->rows(); ++r)
        m_list->setSelected(r, selected[r] != 0);
    const QModelIndex cur = selectionModel()->currentIndex();
    const int before = m_list->currentRow();
    m_list->setCurrentRow(cur.isValid() ? cur.row() + 1 : 0);
    m_syncing = false;
    if (m_list->currentRow() != before) emit currentRowMoved(m_list->currentRow());
}

void ListView::onScrollRequest(int row) {
    if (m_list && row >= 1 && row <= m_list->rows()) scrollTo(m_list->index(row - 1, 0));
}

void ListView::keyPressEvent(QKeyEvent* event) {
    // Select-all and copy belong to the program's Edit menu, not to the view.
    if (event->matches(QKeySequence::SelectAll) || event->matches(QKeySequence::Copy)) {
        event->ignore();
        return;
    }
    const QString t = event->text();
    const bool typed = !t.isEmpty() && !(event->modifiers() & (Qt::ControlModifier | Qt::AltModifier)) &&
                       (t[0].unicode() == 13 || t[0].unicode() > 32) && t[0].unicode() != 127;
    if (typed || event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        emit keyTyped(event);
        if (event->isAccepted()) return;
    }
    QTreeView::keyPressEvent(event);
}

bool ListView::event(QEvent* e) {
    // Let the menu's Ctrl+A and Ctrl+C reach the main window's shortcuts.
    if (e->type() == QEvent::ShortcutOverride) {
        auto* ke = static_cast<QKeyEvent*>(e);
        if (ke->matches(QKeySequence::SelectAll) || ke->matches(QKeySequence::Copy)) {
            e->ignore();
            return false;
        }
    }
    return QTreeView::event(e);
}

void ListView::mousePressEvent(QMouseEvent* event) {
    m_lastMouse = event->position().toPoint();
    emit mousePressed(event->button(), event->modifiers(), m_lastMouse);
    if (event->button() == Qt::RightButton) {
        event->accept();
        return;
    }
    QTreeView::mousePressEvent(event);
}

void ListView::mouseMoveEvent(QMouseEvent* event) {
    emit mouseMoved(event->buttons(), event->modifiers(), event->position().toPoint());
    if (event->buttons() & Qt::LeftButton) {
        // Dragging is ours; the view must not start its own rubber-band drag of items.
        event->accept();
        return;
    }
    QTreeView::mouseMoveEvent(event);
}

void ListView::mouseDoubleClickEvent(QMouseEvent* event) {
    m_lastMouse = event->position().toPoint();
    const QModelIndex i = indexAt(m_lastMouse);
    if (i.isValid()) emit rowDoubleClicked(i.row() + 1);
    event->accept();
}

void ListView::focusInEvent(QFocusEvent* event) {
    QTreeView::focusInEvent(event);
    emit focusEntered();
}

void ListView::contextMenuEvent(QContextMenuEvent* event) {
    emit contextMenuWanted(event->globalPos());
    event->accept();
}

} // namespace lists
