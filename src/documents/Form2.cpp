#include "documents/Form2.h"

#include "documents/CheckMarks.h"
#include "documents/Controls.h"
#include "documents/DocumentHost.h"
#include "documents/NewWindow.h"
#include "platform/Rtf.h"
#include "platform/TextFile.h"
#include "platform/ui/TabOrder.h"
#include "lists/ListModel.h"
#include "lists/ListProcedures.h"
#include "lists/ui/ListView.h"

#include <QCheckBox>
#include <QDragEnterEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QSplitter>
#include <QTextEdit>
#include <QVBoxLayout>

namespace documents {

namespace {
const char* const kDocuments[3] = {"Rakennussuunnitelmaselostus", "Koodaussuunnitelma",
                                   "Urakan laatusuunnitelma"};

// Gives the box a copy of another document, text and formatting. The copies belong to the
// window, never to the box (a box deletes the documents it owns when it gets another one), so
// the box's previous copy is dropped here.
void replaceDocument(QObject* owner, QTextEdit* box, const QTextDocument* source) {
    QTextDocument* copy = source->clone(owner);
    QTextDocument* old = box->document();
    const bool ours = old && old->parent() == owner;
    box->setDocument(copy);
    if (ours) old->deleteLater();
}
} // namespace

QString Form2::documentName(int index) {
    return index >= 0 && index < 3 ? QString::fromUtf8(kDocuments[index]) : QString();
}

Form2::Form2(DocumentHost& host, QWidget* parent)
    : ProjectWindow(host, 2, parent) {
    auto* outer = new QVBoxLayout(this);
    outer->setContentsMargins(4, 4, 4, 4);
    m_splitter = new QSplitter(Qt::Vertical, this);
    m_splitter->setChildrenCollapsible(false);
    outer->addWidget(m_splitter);

    Label1.assign(3, nullptr);
    Check1.assign(2, nullptr);
    for (int i = 0; i < 2; ++i)
        m_splitter->addWidget(listArea(i));
    m_splitter->addWidget(documentArea());
    m_splitter->setSizes({300, 300, 260});
    // A list's restriction box is on only while its list has the focus, so the Tab key reaches
    // it from its list: each list, then its box, then the document.
    platform::setTabOrder({ListView1[0], Check1[0], ListView1[1], Check1[1], RichTextBox1[0]});

    // The hidden drop-down and text box of the window's record.
    ComboBox* combo = makeCombo(0);
    combo->hide();
    TextBox* text = makeText(0);
    text->hide();
    showDocument(host.appState().settings.StartUpDocument);
}

QWidget* Form2::listArea(int i) {
    const QString listKinds[2] = {QStringLiteral("Määräluettelo ja kustannusarvio"),
                                  QStringLiteral("Laatuvaatimukset")};
    const QString checks[2] = {QStringLiteral("Muokkaa ainoastaan &rak. osa  ja määräsarakkeita"),
                               QStringLiteral("Muokkaa ainoastaan &vaatimuksen numeroarvoja")};
    auto* area = new QWidget(m_splitter);
    auto* v = new QVBoxLayout(area);
    v->setContentsMargins(0, 0, 0, 0);
    v->setSpacing(2);
    auto* head = new QHBoxLayout;
    Label1[i] = boldLabel(listKinds[i], area, i);
    Check1[i] = new QCheckBox(checks[i], area);
    Check1[i]->setObjectName(QStringLiteral("Check1_%1").arg(i));
    Check1[i]->setEnabled(i == 0);
    head->addWidget(Label1[i]);
    head->addSpacing(24);
    head->addWidget(Check1[i]);
    head->addStretch(1);
    v->addLayout(head);
    lists::ListView* view = makeList(i, listKinds[i]);
    view->setParent(area);
    new CheckMarks(i == 0 ? calc::CheckPlace::Quantities : calc::CheckPlace::Requirements, view);
    v->addWidget(view, 1);
    connect(view, &lists::ListView::focusEntered, this, [this, i] { listFocused(i); });
    connect(Check1[i], &QCheckBox::clicked, this, [this, i, view] {
        // The focus goes to the list and its selected row stays selected.
        m_restrict[i] = Check1[i]->isChecked();
        view->setFocus(Qt::OtherFocusReason);
    });
    return area;
}

QWidget* Form2::documentArea() {
    auto* textArea = new QWidget(m_splitter);
    auto* tv = new QVBoxLayout(textArea);
    tv->setContentsMargins(0, 0, 0, 0);
    tv->setSpacing(2);
    Label1[2] = boldLabel(QString(), textArea, 2);
    tv->addWidget(Label1[2]);
    RichTextBox1.assign(4, nullptr);
    for (int i = 0; i < 4; ++i) {
        RichTextBox1[i] = new QTextEdit(textArea);
        RichTextBox1[i]->setObjectName(QStringLiteral("RichTextBox1_%1").arg(i));
        RichTextBox1[i]->setAcceptRichText(true);
        if (i > 0) {
            RichTextBox1[i]->hide();
            RichTextBox1[i]->setProperty("tag", documentName(i - 1));
        }
    }
    tv->addWidget(RichTextBox1[0], 1);
    // The heading names the shown document for a screen reader too.
    Label1[2]->setBuddy(RichTextBox1[0]);
    RichTextBox1[0]->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(RichTextBox1[0], &QWidget::customContextMenuRequested, this,
            [this](const QPoint& pos) { m_host.showContextMenu(1, RichTextBox1[0]->mapToGlobal(pos)); });
    connect(RichTextBox1[0], &QTextEdit::textChanged, this, [this] { m_host.contentChanged(this); });
    return textArea;
}

QLabel* Form2::boldLabel(const QString& text, QWidget* parent, int index) {
    auto* label = new QLabel(text, parent);
    label->setObjectName(QStringLiteral("Label1_%1").arg(index));
    QFont bold = label->font();
    bold.setBold(true);
    label->setFont(bold);
    return label;
}

void Form2::prepareNewProject() {
    LoadListTemplate(*this, 0, QStringLiteral("TAMRIK30_T3.csv"));
    LoadListTemplate(*this, 1, QStringLiteral("TAMRIK30_T4.csv"));
    // The contract quality plan starts from the template beside the program; a missing
    // template leaves the document empty.
    QStringList lines;
    const QString plan = m_host.appState().AppPath + QStringLiteral("Urakan laatusuunnitelma.txt");
    if (platform::readTextLines(plan, lines)) {
        QTextDocument document;
        platform::loadPlainTextAsDefault(document, lines.join(QStringLiteral("\r\n")));
        setStoredDocument(2, document);
    }
    UpdateComboListFromFile(*this, 2);
    showDocument(m_host.appState().settings.StartUpDocument);
}

void Form2::listFocused(int index) {
    m_restrict[index] = Check1[index]->isChecked();
    Check1[index]->setEnabled(true);
    Check1[1 - index]->setEnabled(false);
}

bool Form2::restrictEdit(int listIndex) const {
    return listIndex >= 0 && listIndex < 2 ? m_restrict[listIndex] : false;
}

int Form2::shownDocument() const {
    const QString tag = RichTextBox1[0]->property("tag").toString();
    for (int i = 0; i < 3; ++i)
        if (tag == documentName(i)) return i;
    return -1;
}

void Form2::StoreRichTextDocument() {
    const int k = shownDocument();
    if (k >= 0) replaceDocument(this, RichTextBox1[k + 1], RichTextBox1[0]->document());
}

void Form2::setStoredDocument(int index, const QTextDocument& document) {
    if (index >= 0 && index <= 2) replaceDocument(this, RichTextBox1[index + 1], &document);
}

void Form2::showDocument(int index) {
    if (index < 0 || index > 2) return;
    const QSignalBlocker block(RichTextBox1[0]);
    replaceDocument(this, RichTextBox1[0], RichTextBox1[index + 1]->document());
    RichTextBox1[0]->setProperty("tag", documentName(index));
    Label1[2]->setText(documentName(index));
}

void Form2::replaceShownDocument(const QTextDocument& document) {
    const int cursor = RichTextBox1[0]->textCursor().position();
    {
        const QSignalBlocker block(RichTextBox1[0]);
        replaceDocument(this, RichTextBox1[0], &document);
    }
    QTextCursor c(RichTextBox1[0]->document());
    c.setPosition(std::min(cursor, RichTextBox1[0]->document()->characterCount() - 1));
    RichTextBox1[0]->setTextCursor(c);
    m_host.contentChanged(this);
}

bool Form2::FormatListView() {
    lists::ListModel* quantities = list(0);
    if (!quantities) return false;
    return lists::FormatListView(*quantities, 1, 0, m_host.appState().settings.BlankLines);
}

void Form2::switchDocument(int oldIndex, int newIndex) {
    if (oldIndex >= 0 && oldIndex <= 2)
        replaceDocument(this, RichTextBox1[oldIndex + 1], RichTextBox1[0]->document());
    showDocument(newIndex);
}

} // namespace documents
