#include "documents/CheckMarks.h"

#include "lists/ListModel.h"
#include "lists/ui/ListView.h"

#include <QApplication>
#include <QHelpEvent>
#include <QPainter>
#include <QToolTip>

namespace documents {

namespace {

// Light enough to read black text on, and told apart without the corner mark too.
QColor background(calc::Severity severity) {
    return severity == calc::Severity::Error ? QColor(255, 210, 210) : QColor(255, 238, 176);
}

QColor markColour(calc::Severity severity) {
    return severity == calc::Severity::Error ? QColor(205, 30, 30) : QColor(215, 150, 0);
}

// Beyond this many remembered rows the cache starts over: a view shows a few dozen.
constexpr std::size_t kRememberedRows = 4000;

} // namespace

CheckMarks::CheckMarks(calc::CheckPlace place, lists::ListView* view)
    : QStyledItemDelegate(view)
    , m_place(place)
    , m_view(view)
    , m_list(view->list()) {
    view->setItemDelegate(this);
    if (!m_list) return;
    // Every change of the list makes the rows it touched be checked again when painted.
    connect(
        m_list, &QAbstractItemModel::dataChanged, this,
        [this](const QModelIndex& from, const QModelIndex& to) { forgetRows(from.row() + 1, to.row() + 1); });
    connect(m_list, &QAbstractItemModel::modelReset, this, &CheckMarks::forget);
    connect(m_list, &QAbstractItemModel::layoutChanged, this, &CheckMarks::forget);
    connect(m_list, &QAbstractItemModel::rowsInserted, this, &CheckMarks::forget);
    connect(m_list, &QAbstractItemModel::rowsRemoved, this, &CheckMarks::forget);
    connect(view, &lists::ListView::currentRowMoved, this, [this](int row) {
        if (row == m_shownRow) return;
        m_shownRow = m_shownColumn = 0;
    });
}

CheckMarks* CheckMarks::of(const lists::ListView* view) {
    return view ? qobject_cast<CheckMarks*>(view->itemDelegate()) : nullptr;
}

void CheckMarks::forget() {
    m_rows.clear();
}

void CheckMarks::forgetRows(int first, int last) {
    if (last - first > 64) {
        forget();
        return;
    }
    for (int r = first; r <= last; ++r)
        m_rows.erase(r);
}

const std::vector<calc::Finding>& CheckMarks::rowFindings(int row) const {
    const auto found = m_rows.find(row);
    if (found != m_rows.end()) return found->second;
    if (m_rows.size() >= kRememberedRows) m_rows.clear();
    std::vector<calc::Finding>& findings = m_rows[row];
    if (m_list && row >= 1 && row <= m_list->rows()) calc::CheckRow(m_place, *m_list, row, findings);
    return findings;
}

std::vector<calc::Finding> CheckMarks::findingsAt(int row, int column) const {
    std::vector<calc::Finding> out;
    for (const calc::Finding& f : rowFindings(row))
        if (f.column == column) out.push_back(f);
    return out;
}

const calc::Finding* CheckMarks::worstAt(int row, int column) const {
    const calc::Finding* worst = nullptr;
    for (const calc::Finding& f : rowFindings(row))
        if (f.column == column && (!worst || f.severity == calc::Severity::Error)) worst = &f;
    return worst;
}

void CheckMarks::showCell(int row, int column) {
    m_shownRow = row;
    m_shownColumn = column;
    if (m_list) m_view->viewport()->update(m_view->cellRect(row, column));
}

void CheckMarks::paint(QPainter* painter, const QStyleOptionViewItem& option,
                       const QModelIndex& index) const {
    const int row = index.row() + 1;
    const int column = index.column() + 1;
    const calc::Finding* finding = worstAt(row, column);
    if (!finding) {
        QStyledItemDelegate::paint(painter, option, index);
    } else {
        QStyleOptionViewItem opt(option);
        initStyleOption(&opt, index);
        if (!(opt.state & QStyle::State_Selected)) opt.backgroundBrush = background(finding->severity);
        const QWidget* widget = option.widget;
        QStyle* style = widget ? widget->style() : QApplication::style();
        style->drawControl(QStyle::CE_ItemViewItem, &opt, painter, widget);
    }
    painter->save();
    if (row == m_shownRow && column == m_shownColumn) {
        painter->setPen(QPen(option.palette.color(QPalette::Text), 2));
        painter->setBrush(Qt::NoBrush);
        painter->drawRect(option.rect.adjusted(1, 1, -1, -1));
    }
    if (finding) {
        // The corner mark shows through the selection's highlight and the frame too.
        const QRect r = option.rect;
        const int size = std::max(5, std::min(r.height() / 2, 8));
        painter->setRenderHint(QPainter::Antialiasing);
        painter->setPen(Qt::NoPen);
        painter->setBrush(markColour(finding->severity));
        const QPoint corner = r.topLeft();
        painter->drawPolygon(QPolygon({corner, corner + QPoint(size, 0), corner + QPoint(0, size)}));
    }
    painter->restore();
}

bool CheckMarks::helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
                           const QModelIndex& index) {
    if (event && index.isValid() && event->type() == QEvent::ToolTip) {
        QStringList lines;
        for (const calc::Finding& f : findingsAt(index.row() + 1, index.column() + 1))
            lines << calc::SeverityText(f.severity) + QStringLiteral(": ") + f.message;
        if (!lines.isEmpty()) {
            QToolTip::showText(event->globalPos(), lines.join(QLatin1Char('\n')), view, option.rect);
            return true;
        }
    }
    return QStyledItemDelegate::helpEvent(event, view, option, index);
}

} // namespace documents
