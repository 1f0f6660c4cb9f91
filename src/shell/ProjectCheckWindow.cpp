#include "shell/ProjectCheckWindow.h"

#include "documents/CheckMarks.h"
#include "documents/Controls.h"
#include "documents/Form1.h"
#include "documents/Form2.h"
#include "lists/ListModel.h"
#include "lists/ui/ListView.h"
#include "shell/Captions.h"
#include "shell/MDIForm1.h"
#include "shell/ShellActions.h"

#include <QFileInfo>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QTimer>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <algorithm>
#include <optional>
#include <tuple>

namespace shell {

namespace {

constexpr int kHelpTopic = 370;

enum Column { SeverityCol, ListCol, RowCol, ColumnCol, TextCol, MessageCol };

// The list's place in the project, for sorting by list: basic data, quantities, requirements.
int placeOrder(calc::CheckPlace place) {
    return static_cast<int>(place);
}

// A line of the list, sorted by what its column means: severity with errors first, list in
// the order of the project, row by number; ties keep the order the check found them in.
class FindingItem : public QTreeWidgetItem {
public:
    FindingItem(const calc::Finding& f, int sequence)
        : m_severity(f.severity == calc::Severity::Error ? 0 : 1)
        , m_place(placeOrder(f.place))
        , m_row(f.row)
        , m_column(f.column)
        , m_sequence(sequence) {}

    int sequence() const { return m_sequence; }

    bool operator<(const QTreeWidgetItem& other) const override {
        const auto& o = static_cast<const FindingItem&>(other);
        switch (treeWidget() ? treeWidget()->sortColumn() : ListCol) {
            case SeverityCol:
                return std::tie(m_severity, m_sequence) < std::tie(o.m_severity, o.m_sequence);
            case ListCol:
                return m_sequence < o.m_sequence;
            case RowCol:
                return std::tie(m_row, m_place, m_column, m_sequence) <
                       std::tie(o.m_row, o.m_place, o.m_column, o.m_sequence);
            default: {
                const int c = text(treeWidget()->sortColumn())
                                  .localeAwareCompare(other.text(treeWidget()->sortColumn()));
                return c != 0 ? c < 0 : m_sequence < o.m_sequence;
            }
        }
    }

private:
    int m_severity, m_place, m_row, m_column, m_sequence;
};

QString oneLine(QString text) {
    text.replace(QLatin1String("\r\n"), QLatin1String(" "));
    text.replace(QLatin1Char('\r'), QLatin1Char(' ')).replace(QLatin1Char('\n'), QLatin1Char(' '));
    return text;
}

} // namespace

ProjectCheckWindow::ProjectCheckWindow(MDIForm1& main)
    : QWidget(&main, Qt::Tool)
    , m_main(main) {
    setObjectName(QStringLiteral("ProjectCheckWindow"));
    setWindowTitle(QStringLiteral("Projektin tarkistus"));
    auto* layout = new QVBoxLayout(this);
    m_summary = new QLabel(this);
    m_summary->setWordWrap(true);
    layout->addWidget(m_summary);

    m_tree = new QTreeWidget(this);
    m_tree->setObjectName(QStringLiteral("Findings"));
    m_tree->setRootIsDecorated(false);
    m_tree->setUniformRowHeights(true);
    m_tree->setAllColumnsShowFocus(true);
    m_tree->setHeaderLabels({QStringLiteral("Vakavuus"), QStringLiteral("Luettelo"), QStringLiteral("Rivi"),
                             QStringLiteral("Sarake"), QStringLiteral("Teksti"), QStringLiteral("Selitys")});
    m_tree->setSortingEnabled(true);
    m_tree->sortByColumn(ListCol, Qt::AscendingOrder);
    const int widths[] = {80, 110, 50, 140, 120};
    for (int c = 0; c < 5; ++c)
        m_tree->setColumnWidth(c, widths[c]);
    layout->addWidget(m_tree, 1);
    // A double-click, Enter or Return on a line goes to its cell.
    connect(m_tree, &QTreeWidget::itemActivated, this, [this] { goToCurrent(); });

    auto* buttons = new QHBoxLayout;
    m_goButton = new QPushButton(QStringLiteral("&Siirry soluun"), this);
    auto* again = new QPushButton(QStringLiteral("&Tarkista uudelleen"), this);
    auto* close = new QPushButton(QStringLiteral("&Sulje"), this);
    buttons->addWidget(m_goButton);
    buttons->addWidget(again);
    buttons->addStretch(1);
    buttons->addWidget(close);
    layout->addLayout(buttons);
    connect(m_goButton, &QPushButton::clicked, this, &ProjectCheckWindow::goToCurrent);
    connect(again, &QPushButton::clicked, this, &ProjectCheckWindow::recheck);
    connect(close, &QPushButton::clicked, this, &QWidget::close);

    // Edits of the project show in the list a moment later, once the user pauses.
    m_recheck = new QTimer(this);
    m_recheck->setSingleShot(true);
    m_recheck->setInterval(400);
    connect(m_recheck, &QTimer::timeout, this, [this] {
        if (isVisible()) recheck();
    });
    resize(860, 340);
}

bool ProjectCheckWindow::event(QEvent* event) {
    // The main window's F1 would act here as well (this is its tool window): the key is taken
    // before the shortcuts see it and comes back as a key press.
    if (event->type() == QEvent::ShortcutOverride) {
        const auto* key = static_cast<QKeyEvent*>(event);
        if (key->key() == Qt::Key_F1 && key->modifiers() == Qt::NoModifier) {
            event->accept();
            return true;
        }
    }
    return QWidget::event(event);
}

void ProjectCheckWindow::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_F1 && event->modifiers() == Qt::NoModifier) {
        TamrikHelp(m_main, kHelpTopic);
        return;
    }
    QWidget::keyPressEvent(event);
}

void ProjectCheckWindow::checkProject(documents::Form1* basicData, documents::Form2* detailedData) {
    m_basicData = basicData;
    m_detailedData = detailedData;
    watch();
    recheck();
}

void ProjectCheckWindow::watch() {
    for (const QMetaObject::Connection& c : m_watching)
        disconnect(c);
    m_watching.clear();
    const auto later = [this] { m_recheck->start(); };
    if (m_detailedData) {
        for (int i = 0; i < 2; ++i) {
            lists::ListModel* list = m_detailedData->list(i);
            if (!list) continue;
            m_watching.push_back(connect(list, &QAbstractItemModel::dataChanged, this, later));
            m_watching.push_back(connect(list, &QAbstractItemModel::rowsInserted, this, later));
            m_watching.push_back(connect(list, &QAbstractItemModel::rowsRemoved, this, later));
            m_watching.push_back(connect(list, &QAbstractItemModel::modelReset, this, later));
            m_watching.push_back(connect(list, &QAbstractItemModel::layoutChanged, this, later));
        }
        // The project closed: nothing is left to show.
        m_watching.push_back(connect(m_detailedData, &QObject::destroyed, this, &QWidget::close));
    }
    if (m_basicData) {
        for (int field : {3, 10, 11, 12})
            if (field < static_cast<int>(m_basicData->Combo1.size()) && m_basicData->Combo1[field])
                m_watching.push_back(
                    connect(m_basicData->Combo1[field], &documents::ComboBox::changed, this, later));
    }
}

namespace {
// What identifies a finding from one check to the next.
ProjectCheckWindow::FindingKey keyOf(const calc::Finding& f) {
    return {f.place, f.row, f.column, f.kind};
}
} // namespace

void ProjectCheckWindow::recheck() {
    // The line that was current stays current when its finding is still there.
    std::optional<FindingKey> wanted;
    if (m_tree->currentItem())
        if (const calc::Finding* f = findingOf(m_tree->indexOfTopLevelItem(m_tree->currentItem())))
            wanted = keyOf(*f);
    m_findings.clear();
    if (m_detailedData) {
        calc::CheckSource source;
        source.quantities = m_detailedData->list(0);
        source.requirements = m_detailedData->list(1);
        if (m_basicData) source.inputs = m_basicData->costInputs();
        m_findings = calc::CheckProject(source);
    }
    const QString project =
        m_basicData ? QFileInfo(ParseFileName(m_basicData->caption()).project()).fileName() : QString();
    setWindowTitle(project.isEmpty() ? QStringLiteral("Projektin tarkistus")
                                     : QStringLiteral("Projektin tarkistus - ") + project);
    fill(wanted);
}

void ProjectCheckWindow::fill(const std::optional<FindingKey>& wanted) {
    m_tree->setUpdatesEnabled(false);
    m_tree->setSortingEnabled(false);
    m_tree->clear();
    QList<QTreeWidgetItem*> items;
    items.reserve(static_cast<qsizetype>(m_findings.size()));
    QTreeWidgetItem* current = nullptr;
    for (std::size_t i = 0; i < m_findings.size(); ++i) {
        const calc::Finding& f = m_findings[i];
        auto* item = new FindingItem(f, static_cast<int>(i));
        item->setText(SeverityCol, calc::SeverityText(f.severity));
        item->setBackground(SeverityCol, f.severity == calc::Severity::Error ? QColor(255, 210, 210)
                                                                             : QColor(255, 238, 176));
        item->setText(ListCol, calc::PlaceText(f.place));
        item->setText(RowCol, f.row > 0 ? QString::number(f.row) : QString());
        item->setTextAlignment(RowCol, Qt::AlignRight | Qt::AlignVCenter);
        item->setText(ColumnCol, f.columnName);
        item->setText(TextCol, oneLine(f.text));
        item->setText(MessageCol, f.message);
        item->setToolTip(MessageCol, f.message);
        items.append(item);
        if (wanted && keyOf(f) == *wanted) current = item;
    }
    m_tree->addTopLevelItems(items);
    m_tree->setSortingEnabled(true);
    m_tree->setUpdatesEnabled(true);
    if (!current && m_tree->topLevelItemCount() > 0) current = m_tree->topLevelItem(0);
    if (current) m_tree->setCurrentItem(current);
    m_goButton->setEnabled(current != nullptr);

    const int errors = calc::ErrorCount(m_findings);
    const int remarks = calc::RemarkCount(m_findings);
    if (!m_detailedData)
        m_summary->setText(QStringLiteral("Projekti on suljettu."));
    else if (m_findings.empty())
        m_summary->setText(QStringLiteral("Projektista ei löytynyt virheitä eikä huomautettavaa."));
    else
        m_summary->setText(
            calc::CountText(errors, calc::Severity::Error) + QStringLiteral(", ") +
            calc::CountText(remarks, calc::Severity::Remark) +
            QStringLiteral(". Virhe muuttaa kustannusarviota tai laatulukua; huomautus kertoo "
                           "kohdasta, joka näyttää väärältä. Siirry soluun kaksoisnapsautuksella "
                           "tai Enterillä."));
}

const calc::Finding* ProjectCheckWindow::findingOf(int line) const {
    auto* item = dynamic_cast<FindingItem*>(m_tree->topLevelItem(line));
    if (!item || item->sequence() < 0 || item->sequence() >= static_cast<int>(m_findings.size()))
        return nullptr;
    return &m_findings[static_cast<std::size_t>(item->sequence())];
}

void ProjectCheckWindow::goToCurrent() {
    if (!m_tree->currentItem()) return;
    if (const calc::Finding* f = findingOf(m_tree->indexOfTopLevelItem(m_tree->currentItem()))) goTo(*f);
}

void ProjectCheckWindow::goTo(const calc::Finding& f) {
    QWidget& main = m_main;
    if (f.place == calc::CheckPlace::BasicData) {
        if (!m_basicData || f.column >= static_cast<int>(m_basicData->Combo1.size())) return;
        documents::ComboBox* field = m_basicData->Combo1[f.column];
        if (!field) return;
        m_main.activateWindow(m_basicData);
        main.activateWindow();
        if (auto* body = m_basicData->findChild<QScrollArea*>()) body->ensureWidgetVisible(field);
        field->setFocus(Qt::OtherFocusReason);
        if (field->lineEdit()) field->lineEdit()->selectAll();
        return;
    }
    if (!m_detailedData) return;
    lists::ListView* view = m_detailedData->ListView1[f.place == calc::CheckPlace::Quantities ? 0 : 1];
    lists::ListModel* list = view ? view->list() : nullptr;
    if (!list || f.row < 1 || f.row > list->rows()) return;
    m_main.activateWindow(m_detailedData);
    main.activateWindow();
    list->selectOnly(f.row);
    const QModelIndex cell = list->index(f.row - 1, f.column - 1);
    view->selectionModel()->setCurrentIndex(cell, QItemSelectionModel::NoUpdate);
    view->scrollTo(cell, QAbstractItemView::PositionAtCenter);
    view->setFocus(Qt::OtherFocusReason);
    if (documents::CheckMarks* marks = documents::CheckMarks::of(view)) marks->showCell(f.row, f.column);
    m_main.UpdateCaptionText(view);
}

void showProjectCheck(MDIForm1& main) {
    const ProjectWindows project = main.ParseFormIndeces();
    if (!project.f1 || !project.f2) return;
    auto* window = main.findChild<ProjectCheckWindow*>(QString(), Qt::FindDirectChildrenOnly);
    if (!window) {
        window = new ProjectCheckWindow(main);
        // Low in the main window's right corner, where it leaves the lists' upper rows free.
        const QRect frame = main.frameGeometry();
        window->move(std::max(frame.left(), frame.right() - window->width() - 24),
                     std::max(frame.top(), frame.bottom() - window->height() - 48));
    }
    window->checkProject(project.f1, project.f2);
    window->show();
    window->raise();
    window->activateWindow();
    window->findingList()->setFocus();
}

} // namespace shell
