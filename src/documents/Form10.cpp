#include "documents/Form10.h"

#include "documents/DocumentHost.h"
#include "documents/Form2.h"
#include "lists/ListModel.h"
#include "lists/ui/ListView.h"
#include "platform/Dialogs.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QPushButton>
#include <QStatusBar>
#include <QTextDocument>
#include <QTextEdit>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace documents {

namespace {
constexpr int kWindowSlot = 10;
constexpr int kHeadingRole = Qt::UserRole + 1;
} // namespace

Form10::Form10(const QString& mode, const Source& source, DocumentHost* host, QWidget* parent)
    : QDialog(parent)
    , m_mode(mode)
    , m_source(source)
    , m_host(host) {
    setObjectName(QStringLiteral("Form10"));
    setWindowTitle(platform::applicationTitle() + QString::fromUtf8(" (Työvaiheluettelo)"));
    setModal(true);
    resize(640, 520);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(6, 6, 6, 0);
    ListView1 = new QTreeWidget(this);
    ListView1->setObjectName(QStringLiteral("ListView1"));
    ListView1->setRootIsDecorated(false);
    ListView1->setUniformRowHeights(true);
    ListView1->setAllColumnsShowFocus(true);
    ListView1->setSelectionMode(IsInsertIndexMode(mode) ? QAbstractItemView::ExtendedSelection
                                                        : QAbstractItemView::SingleSelection);
    ListView1->setColumnCount(3);
    layout->addWidget(ListView1, 1);

    layout->addLayout(buildButtons(mode));
    StatusBar1 = new QStatusBar(this);
    StatusBar1->setSizeGripEnabled(true);
    layout->addWidget(StatusBar1);

    const bool textMode = IsTextIndexMode(mode);
    connect(ListView1, &QTreeWidget::itemActivated, this, [this] {
        if (Command1[0]->isEnabled())
            goTo();
        else if (Command1[1]->isEnabled())
            insert();
    });

    if (textMode || mode == index_mode::Choose) {
        if (m_source.headings) PopulateIndexWithRichTextBox(*m_source.headings);
    } else if (m_source.list && m_source.list->list()) {
        PopulateIndexWithListView(*m_source.list->list());
    }
    if (m_host) m_host->restoreWindowPosition(kWindowSlot, this);
    ListView1->setFocus();
}

QLayout* Form10::buildButtons(const QString& mode) {
    auto* buttons = new QHBoxLayout;
    Command1.push_back(new QPushButton(
        mode == index_mode::Choose ? QStringLiteral("&Valitse") : QStringLiteral("&Siirry kohtaan"), this));
    Command1.push_back(new QPushButton(QString::fromUtf8("&Lisää rakennussuunnitelmaselostukseen"), this));
    Command1.push_back(new QPushButton(QStringLiteral("Peruuta"), this));
    for (int i = 0; i < 3; ++i)
        Command1[i]->setObjectName(QStringLiteral("Command1_%1").arg(i));
    buttons->addWidget(Command1[0]);
    buttons->addWidget(Command1[1]);
    buttons->addStretch(1);
    buttons->addWidget(Command1[2]);
    const bool writable = m_source.text && !m_source.text->isReadOnly();
    Command1[0]->setEnabled(!IsInsertIndexMode(mode));
    Command1[1]->setEnabled(IsInsertIndexMode(mode) && writable);
    (IsInsertIndexMode(mode) ? Command1[1] : Command1[0])->setDefault(true);
    connect(Command1[0], &QPushButton::clicked, this, &Form10::goTo);
    connect(Command1[1], &QPushButton::clicked, this, &Form10::insert);
    connect(Command1[2], &QPushButton::clicked, this, &QDialog::reject);
    return buttons;
}

void Form10::PopulateIndexWithListView(const lists::ListModel& list) {
    m_headings = HeadingsOfList(list);
    ListView1->clear();
    ListView1->setHeaderLabels(
        {QStringLiteral("Littera"), IndexTextHeader(m_mode, list.kind()), QStringLiteral("Rivinumero")});
    QList<QTreeWidgetItem*> items;
    items.reserve(static_cast<int>(m_headings.size()));
    for (int i = 0; i < static_cast<int>(m_headings.size()); ++i) {
        const Heading& h = m_headings[i];
        auto* item = new QTreeWidgetItem({h.littera, h.text, QString::number(h.row)});
        item->setData(0, kHeadingRole, i);
        item->setTextAlignment(2, Qt::AlignRight | Qt::AlignVCenter);
        item->setToolTip(1, h.text);
        // Work phases stand out from their sub-phases.
        if (h.level == 1) {
            QFont bold = ListView1->font();
            bold.setBold(true);
            item->setFont(0, bold);
            item->setFont(1, bold);
        }
        items.append(item);
    }
    ListView1->addTopLevelItems(items);
    ListView1->header()->setStretchLastSection(false);
    ListView1->header()->setSectionResizeMode(0, QHeaderView::ResizeToContents);
    ListView1->header()->setSectionResizeMode(1, QHeaderView::Stretch);
    ListView1->header()->setSectionResizeMode(2, QHeaderView::ResizeToContents);
    StatusBar1->showMessage(m_headings.empty() ? QStringLiteral("Luettelossa ei ole otsikoita.")
                                               : QStringLiteral("%1 otsikkoa").arg(m_headings.size()));

    // The index opens at the heading that governs the list's current row.
    const int current = list.currentRow();
    int at = m_headings.empty() ? -1 : 0;
    for (int i = 0; i < static_cast<int>(m_headings.size()) && m_headings[i].row <= current; ++i)
        at = i;
    if (at >= 0) selectHeading(at);
}

void Form10::PopulateIndexWithRichTextBox(const lists::ListModel& headingList) {
    PopulateIndexWithListView(headingList);
}

void Form10::selectHeading(int i) {
    QTreeWidgetItem* item = ListView1->topLevelItem(i);
    if (!item) return;
    ListView1->setCurrentItem(item);
    item->setSelected(true);
    ListView1->scrollToItem(item, QAbstractItemView::PositionAtCenter);
}

std::vector<int> Form10::chosen() const {
    std::vector<int> out;
    for (int i = 0; i < ListView1->topLevelItemCount(); ++i)
        if (ListView1->topLevelItem(i)->isSelected()) out.push_back(i);
    if (out.empty() && ListView1->currentItem() &&
        ListView1->selectionMode() != QAbstractItemView::NoSelection &&
        ListView1->currentItem()->isSelected())
        out.push_back(ListView1->indexOfTopLevelItem(ListView1->currentItem()));
    return out;
}

bool Form10::JumpToListViewRow() {
    const std::vector<int> c = chosen();
    lists::ListView* view = m_source.list;
    if (c.empty() || !view || !view->list()) return false;
    const int row = m_headings[c.front()].row;
    if (row < 1 || row > view->list()->rows()) return false;
    view->list()->selectOnly(row);
    view->list()->ensureVisible(row);
    view->setFocus();
    return true;
}

bool Form10::JumpToRichTextBoxRow() {
    const std::vector<int> c = chosen();
    QTextEdit* text = m_source.text;
    if (c.empty() || !text) return false;
    const Heading& h = m_headings[c.front()];
    QTextCursor found = text->document()->find(h.text);
    if (found.isNull() && !h.littera.isEmpty()) found = text->document()->find(h.littera);
    if (found.isNull()) {
        platform::MsgBox(QString::fromUtf8("Otsikkoa \"%1\" ei löydy tekstistä.").arg(h.text),
                         platform::MsgIcon::Information);
        return false;
    }
    text->setTextCursor(found);
    text->ensureCursorVisible();
    text->setFocus();
    return true;
}

int Form10::AddToRich() {
    QTextEdit* text = m_source.text;
    if (!text || text->isReadOnly()) return 0;
    QTextCursor cursor = text->textCursor();
    cursor.clearSelection();
    int inserted = 0;
    cursor.beginEditBlock();
    for (int i : chosen()) {
        const Heading& h = m_headings[i];
        // A heading the text already holds is not written again.
        if (!text->document()->find(h.text).isNull()) continue;
        if (!cursor.atBlockStart()) cursor.insertBlock();
        cursor.insertText(HeadingLine(h));
        cursor.insertBlock();
        ++inserted;
    }
    cursor.endEditBlock();
    text->setTextCursor(cursor);
    text->setFocus();
    return inserted;
}

void Form10::goTo() {
    if (m_mode == index_mode::Choose) {
        const std::vector<int> c = chosen();
        if (c.empty()) return;
        m_choice = m_headings[c.front()].rowNumber;
        accept();
        return;
    }
    const bool done = IsTextIndexMode(m_mode) ? JumpToRichTextBoxRow() : JumpToListViewRow();
    done ? accept() : reject();
}

void Form10::insert() {
    AddToRich();
    accept();
}

void Form10::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    // Laid out now: the chosen heading is shown amid its neighbours.
    if (QTreeWidgetItem* item = ListView1->currentItem())
        ListView1->scrollToItem(item, QAbstractItemView::PositionAtCenter);
}

void Form10::done(int result) {
    if (m_host) m_host->storeWindowPosition(kWindowSlot, this);
    QDialog::done(result);
}

std::optional<QString> ChooseRequirementHeading(const lists::ListModel& requirements, QWidget* parent,
                                                DocumentHost* host) {
    Form10::Source source;
    source.headings = &requirements;
    Form10 index(index_mode::Choose, source, host, parent);
    if (index.exec() != QDialog::Accepted) return std::nullopt;
    return index.chosenRowNumber();
}

std::optional<QString> ChooseRequirementHeading(const Form2& detailed, QWidget* parent, DocumentHost* host) {
    const lists::ListModel* requirements = detailed.list(1);
    if (!requirements) return std::nullopt;
    return ChooseRequirementHeading(*requirements, parent, host);
}

} // namespace documents
