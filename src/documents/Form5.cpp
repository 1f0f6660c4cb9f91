#include "documents/Form5.h"

#include "documents/Controls.h"
#include "documents/DocumentHost.h"
#include "documents/Form1.h"
#include "documents/Form10.h"
#include "documents/Form2.h"
#include "documents/Form9.h"
#include "lists/Columns.h"
#include "lists/ListEditing.h"
#include "lists/ui/ListEditor.h"
#include "lists/ListFiles.h"
#include "lists/ListStep.h"
#include "lists/ListModel.h"
#include "lists/ListProcedures.h"
#include "lists/ui/ListView.h"
#include "platform/CommonDialog.h"
#include "platform/Dialogs.h"
#include "platform/ui/Menus.h"

#include <QAction>
#include <QApplication>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QScrollArea>
#include <QStatusBar>
#include <QTimer>
#include <QToolBar>
#include <QToolButton>
#include <QVBoxLayout>

namespace documents {

namespace {

constexpr int kWindowSlot = 5;
constexpr int kHelpTopic = 250;
constexpr int kSlotsPerRow = 4;
namespace col = lists::requirementCol;

// Menu items of "&Tiedosto" and "&Selaa" by their key.
const char* const kFileKeys[] = {
    "Open document",         "Open attachment", nullptr,  "Browse document",
    "Browse attachment",     nullptr,           "Update", "Update and browse next",
    "Check and browse next", nullptr,           "Close"};
const char* const kEditKeys[] = {"New",   "Dublicate", "New to end", "Delete all", nullptr, "Cut", "Copy",
                                 "Paste", "Del",       nullptr,      "Select all", nullptr, "Edit"};

// How many grid slots a short field takes: file names the whole row, references two.
int slotsOf(const CardField& f, bool quality) {
    if (quality && (f.column == col::kWorkDescriptionFile || f.column == col::kReferenceFile))
        return kSlotsPerRow;
    if (f.header.trimmed().toUpper() == QLatin1String("VIITE")) return 2;
    return 1;
}

void setEditableLook(QWidget* field, bool editable) {
    if (auto* t = qobject_cast<TextBox*>(field)) {
        if (t->locked() == !editable && field->property("looked").toBool()) return;
        t->setReadOnlyLook(!editable);
    } else if (auto* c = qobject_cast<ComboBox*>(field)) {
        if (c->locked() == !editable && field->property("looked").toBool()) return;
        c->setReadOnlyLook(!editable);
    }
    field->setProperty("looked", true);
}

} // namespace

Form5::Form5(DocumentHost& host, QWidget* parent)
    : QDialog(parent)
    , m_host(host) {
    setObjectName(QStringLiteral("Form5"));
    setModal(true);
    setSizeGripEnabled(true);
    setWindowTitle(platform::applicationTitle());
    resize(1180, 760);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    createMenus();
    createToolbar();
    layout->addWidget(Toolbar1);
    m_scroll = new QScrollArea(this);
    m_scroll->setWidgetResizable(true);
    m_scroll->setFrameShape(QFrame::NoFrame);
    layout->addWidget(m_scroll, 1);
    StatusBar1 = new QStatusBar(this);
    StatusBar1->setObjectName(QStringLiteral("StatusBar1"));
    StatusBar1->setSizeGripEnabled(false);
    // Says when the card holds changes that have not reached the row yet.
    m_unwritten = new QLabel(QString::fromUtf8("Muutoksia ei ole viety riville (Shift+Return)"), StatusBar1);
    m_unwritten->setObjectName(QStringLiteral("unwritten"));
    m_unwritten->setStyleSheet(QStringLiteral("color: #a03000; font-weight: bold"));
    m_unwritten->hide();
    StatusBar1->addPermanentWidget(m_unwritten);
    layout->addWidget(StatusBar1);
    installEventFilter(this);
}

Form5::~Form5() {
    // A field that loses the focus while the window goes away must not reach the card's
    // handlers any more: the card is being taken apart.
    for (ComboBox* c : Combo1) {
        disconnect(c, nullptr, this, nullptr);
        disconnect(c->lineEdit(), nullptr, this, nullptr);
    }
    for (TextBox* t : Text1)
        disconnect(t, nullptr, this, nullptr);
}

void Form5::createMenus() {
    auto* bar = new QMenuBar(this);
    layout()->setMenuBar(bar);
    auto addItems = [this](QMenu* menu, const QStringList& texts, const char* const* keys,
                           std::vector<QAction*>& array) {
        for (int i = 0; i < texts.size(); ++i) {
            QAction* a = platform::addMenuItem(menu, array, texts[i]);
            if (keys && keys[i]) {
                const QString key = QString::fromLatin1(keys[i]);
                connect(a, &QAction::triggered, this, [this, key] { ToolbarClick(key); });
            }
        }
    };

    QMenu* file = bar->addMenu(QStringLiteral("&Tiedosto"));
    addItems(file,
             {QString::fromUtf8("&Avaa tekninen töyselostus"), QStringLiteral("Avaa &viitetiedosto"),
              QStringLiteral("-"), QString::fromUtf8("&Hae tekninen työselostus"),
              QStringLiteral("Ha&e viitetiedosto"), QStringLiteral("-"),
              QString::fromUtf8("Päivitä (Shift+Return)"),
              QString::fromUtf8("Päivitä ja siirry seuraavaan (Alt+Return)"),
              QString::fromUtf8("Täyttää vaatimukset, siirry seuraavaan (Ctrl+Return)"), QStringLiteral("-"),
              QStringLiteral("&Sulje ikkuna (Esc)")},
             kFileKeys, SubMenu0);

    QMenu* edit = bar->addMenu(QStringLiteral("&Muokkaa"));
    const std::array<QString, 4> rows = RowMenuTexts(QString());
    addItems(edit,
             {rows[0], rows[1], rows[2], rows[3], QStringLiteral("-"), QStringLiteral("Leikkaa"),
              QStringLiteral("Kopio"), QString::fromUtf8("Liitä"), QStringLiteral("Poista"),
              QStringLiteral("-"), QStringLiteral("&Valitse kaikki"), QStringLiteral("-"),
              QStringLiteral("Muokkaa tekstieditorissa")},
             kEditKeys, SubMenu1);
    // The rows cannot all be deleted from the card.
    SubMenu1[3]->setEnabled(false);
    SubMenu1[5]->setShortcut(QKeySequence::Cut);
    SubMenu1[6]->setShortcut(QKeySequence::Copy);
    SubMenu1[7]->setShortcut(QKeySequence::Paste);
    SubMenu1[12]->setShortcut(QKeySequence(Qt::Key_F9));

    createBrowseMenu(bar->addMenu(QStringLiteral("&Selaa")));

    platform::addGuideMenu(bar, this, [this] { m_host.showHelp(kHelpTopic, this); });
}

void Form5::createBrowseMenu(QMenu* browse) {
    auto step = [this](QAction* a, int code) {
        connect(a, &QAction::triggered, this, [this, code] { Browse(code); });
    };
    SubMenu2.push_back(browse->addAction(QStringLiteral("Edellinen (PgUp)")));
    step(SubMenu2.back(), -browse::Any);
    SubMenu2.push_back(browse->addAction(QStringLiteral("Seuraava (PgDn)")));
    step(SubMenu2.back(), browse::Any);
    SubMenu2.push_back(browse->addSeparator());
    QMenu* previous = browse->addMenu(QStringLiteral("&Edellinen..."));
    SubMenu2.push_back(previous->menuAction());
    QMenu* next = browse->addMenu(QStringLiteral("&Seuraava..."));
    SubMenu2.push_back(next->menuAction());
    for (int direction : {-1, 1}) {
        QMenu* menu = direction < 0 ? previous : next;
        std::vector<QAction*>& array = direction < 0 ? SubMenu20 : SubMenu21;
        const QStringList texts = BrowseMenuTexts(direction);
        for (int i = 0; i < texts.size(); ++i) {
            QAction* a = platform::addMenuItem(menu, array, texts[i]);
            if (texts[i] != QLatin1String("-")) step(a, direction * (i + 2));
        }
    }
    SubMenu2.push_back(browse->addSeparator());
    SubMenu2.push_back(
        browse->addAction(QString::fromUtf8("Siirry edelliseen työvaiheotsikkoon (Alt+PgUp)")));
    step(SubMenu2.back(), -browse::Caption);
    SubMenu2.push_back(
        browse->addAction(QString::fromUtf8("Siirry seuraavaan työvaiheotsikkoon (Alt+PgDn)")));
    step(SubMenu2.back(), browse::Caption);
    SubMenu2.push_back(browse->addSeparator());
    SubMenu2.push_back(browse->addAction(QStringLiteral("Siirry...")));
    SubMenu2.back()->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_F));
    connect(SubMenu2.back(), &QAction::triggered, this, [this] { ToolbarClick(QStringLiteral("Find")); });
}

void Form5::createToolbar() {
    Toolbar1 = new QToolBar(this);
    Toolbar1->setObjectName(QStringLiteral("Toolbar1"));
    Toolbar1->setIconSize(QSize(20, 20));
    Toolbar1->setToolButtonStyle(Qt::ToolButtonIconOnly);
    struct Button {
        const char* key;
        const char* tip;
    };
    const Button buttons[] = {{"Update", "Päivitä"},
                              {"Update and browse next", "Päivitä ja näytä seuraava"},
                              {"Check and browse next", "Täyttää vaatimukset, siirry seuraavaan"},
                              {nullptr, nullptr},
                              {"PgUp", "Näytä edellinen"},
                              {"PgDn", "Näytä seuraava"},
                              {nullptr, nullptr},
                              {"New", "Lisää uusi"},
                              {"Dublicate", "Kloonaa"},
                              {"New to end", "Lisää uusi luettelon loppuun"},
                              {nullptr, nullptr},
                              {"Cut", "Leikkaa"},
                              {"Copy", "Kopio"},
                              {"Paste", "Liitä"},
                              {"Del", "Poista"},
                              {nullptr, nullptr},
                              {"Find", "Siirry..."}};
    for (const Button& b : buttons) {
        if (!b.key) {
            Toolbar1->addSeparator();
            continue;
        }
        const QString key = QString::fromLatin1(b.key);
        const QString tip = QString::fromUtf8(b.tip);
        QAction* a = Toolbar1->addAction(m_host.toolIcon(key), tip);
        a->setToolTip(tip);
        a->setObjectName(key);
        toolbarButtons[key] = a;
        connect(a, &QAction::triggered, this, [this, key] { ToolbarClick(key); });
    }
    // The inspection's own button says what it does.
    if (auto* check = qobject_cast<QToolButton*>(
            Toolbar1->widgetForAction(toolbarButtons[QStringLiteral("Check and browse next")]))) {
        check->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
        check->setText(QString::fromUtf8("Täyttää vaatimukset"));
    }
}

bool Form5::hasUnwrittenChanges() const {
    return !m_unwritten->isHidden();
}

lists::ListModel* Form5::list() const {
    return m_view ? m_view->list() : nullptr;
}

TextBox* Form5::textOfColumn(int column) const {
    const CardField* f = FieldOfColumn(m_fields, column);
    return f && f->longText && f->index < static_cast<int>(Text1.size()) ? Text1[f->index] : nullptr;
}

ComboBox* Form5::comboOfColumn(int column) const {
    const CardField* f = FieldOfColumn(m_fields, column);
    return f && !f->longText && f->index < static_cast<int>(Combo1.size()) ? Combo1[f->index] : nullptr;
}

QStringList Form5::comboTexts() const {
    QStringList out;
    for (const ComboBox* c : Combo1)
        out.append(c->text());
    return out;
}

QStringList Form5::textTexts() const {
    QStringList out;
    for (const TextBox* t : Text1)
        out.append(t->text());
    return out;
}

// ---------------------------------------------------------------------------------------------
// Setting up

bool Form5::ShowListViewEditor(lists::ListView* view) {
    lists::ListModel* model = view ? view->list() : nullptr;
    if (!model) return false;
    const int mode = m_host.appState().ProgramMode;
    if (model->tag() == lists::kind::NoEdit) {
        lists::ShowDeny(mode);
        return false;
    }
    if (lists::ListEditor* editor = lists::ListEditor::of(view)) editor->closeEditor();
    m_view = view;
    buildCard();
    fillComboLists();

    const QString& kind = model->kind();
    const std::array<QString, 4> rows = RowMenuTexts(kind);
    for (int i = 0; i < 4; ++i)
        SubMenu1[i]->setText(rows[i]);
    // The clone and append buttons say what they add, as their menu entries do.
    for (const auto& [key, text] : {std::pair{QStringLiteral("Dublicate"), rows[1]},
                                    std::pair{QStringLiteral("New to end"), rows[2]}}) {
        toolbarButtons[key]->setText(text);
        toolbarButtons[key]->setToolTip(text);
    }
    const bool quality = lists::isQualityKind(kind);
    for (int i : {3, 4})
        SubMenu0[i]->setEnabled(quality);
    const bool check = CheckAllowed(kind, mode);
    SubMenu0[8]->setEnabled(check);
    toolbarButtons[QStringLiteral("Check and browse next")]->setEnabled(check);
    toolbarButtons[QStringLiteral("Check and browse next")]->setVisible(kind == lists::kind::Requirements);
    for (int direction : {-1, 1}) {
        std::vector<QAction*>& array = direction < 0 ? SubMenu20 : SubMenu21;
        for (int i = 0; i < static_cast<int>(array.size()); ++i)
            array[i]->setEnabled(BrowseCodeSelects(kind, i + 2));
    }
    SubMenu2[3]->setEnabled(quality);
    SubMenu2[4]->setEnabled(quality);

    if (model->rows() > 0) {
        int r = model->selectedRow();
        if (r < 1) r = std::clamp(model->currentRow(), 1, model->rows());
        if (model->currentRow() != r || !model->isSelected(r)) model->selectOnly(r);
        model->ensureVisible(r);
    }
    ImportToEditor();
    if (!m_positioned) {
        m_host.restoreWindowPosition(kWindowSlot, this);
        m_positioned = true;
    }
    // An inspection starts at the result; any other card at its first field.
    QWidget* start = nullptr;
    if (check && comboOfColumn(col::kFulfilled)) start = comboOfColumn(col::kFulfilled);
    if (start)
        start->setFocus(Qt::OtherFocusReason);
    else
        focusFirstField();
    return true;
}

void Form5::focusFirstField() {
    for (const CardField& f : m_fields) {
        QWidget* w = f.longText ? static_cast<QWidget*>(Text1[f.index]) : Combo1[f.index];
        const bool locked = f.longText ? Text1[f.index]->locked() : Combo1[f.index]->locked();
        if (!locked) {
            w->setFocus(Qt::OtherFocusReason);
            return;
        }
    }
}

namespace {

// The fields of a card in panes: each pane a grid of four slots a row in column order, a label
// above its field; a long text takes a row of its own.
class CardGrid {
public:
    explicit CardGrid(QWidget* card)
        : m_card(card)
        , m_panes(new QHBoxLayout(card)) {
        m_panes->setContentsMargins(8, 6, 8, 6);
        m_panes->setSpacing(12);
    }
    // A new pane, framed with its title when it has one.
    void newPane(const QString& title) {
        QWidget* pane = title.isEmpty() ? new QWidget(m_card) : new QGroupBox(title, m_card);
        m_grid = new QGridLayout(pane);
        m_grid->setHorizontalSpacing(8);
        m_grid->setVerticalSpacing(3);
        for (int k = 0; k < kSlotsPerRow; ++k)
            m_grid->setColumnStretch(k, 1);
        m_panes->addWidget(pane, 1);
        m_row = 0;
        m_slot = 0;
    }
    // A long text on a row of its own, stretching by its lines.
    void addLong(QLabel* label, QWidget* box, int lines) {
        if (m_slot > 0) nextRow();
        m_grid->addWidget(label, m_row, 0, 1, kSlotsPerRow);
        m_grid->addWidget(box, m_row + 1, 0, 1, kSlotsPerRow);
        m_grid->setRowStretch(m_row + 1, lines);
        nextRow();
    }
    // A short field of `span` slots, on the next row when this one has no room for it.
    void addShort(QLabel* label, QWidget* field, int span) {
        if (m_slot + span > kSlotsPerRow) nextRow();
        m_grid->addWidget(label, m_row, m_slot, 1, span);
        m_grid->addWidget(field, m_row + 1, m_slot, 1, span);
        m_slot += span;
        if (m_slot >= kSlotsPerRow) nextRow();
    }

private:
    void nextRow() {
        m_row += 2;
        m_slot = 0;
    }

    QWidget* m_card;
    QHBoxLayout* m_panes;
    QGridLayout* m_grid = nullptr;
    int m_row = 0;
    int m_slot = 0;
};

} // namespace

void Form5::buildCard() {
    lists::ListModel* model = list();
    QStringList headers{model->kind()};
    for (int c = 1; c <= model->lastDataCol(); ++c)
        headers.append(model->column(c).header);
    const QString signature = headers.join(QLatin1Char(';'));
    if (signature == m_cardLayout && m_scroll->widget()) return;
    m_cardLayout = signature;

    // A card of another list: new fields for its columns.
    if (QWidget* old = m_scroll->takeWidget()) old->deleteLater();
    Label1.clear();
    Label2.clear();
    Text1.clear();
    Combo1.clear();
    m_fields = CardFields(*model);

    auto* card = new QWidget;
    const bool quality = lists::isQualityKind(model->kind());
    CardGrid grid(card);
    grid.newPane(quality ? QStringLiteral("Laatuvaatimus") : QString());
    for (const CardField& f : m_fields) {
        // The requirement card's second pane, the inspection, starts at the inspection text.
        if (quality && f.column == col::kInspection) grid.newPane(QStringLiteral("Tarkastus ja raportointi"));
        auto* label = new QLabel(f.header, card);
        label->setTextFormat(Qt::PlainText);
        // Room above the capitals for the dots of Ä and Ö.
        label->setContentsMargins(0, 3, 0, 0);
        label->setObjectName(QStringLiteral("%1_%2").arg(f.longText ? "Label2" : "Label1").arg(f.index));
        if (f.longText) {
            const int lines = quality && f.column == col::kText ? 5 : 3; // the requirement itself is taller
            grid.addLong(label, makeLongField(f, card, lines), lines);
            Label2.push_back(label);
        } else {
            grid.addShort(label, makeShortField(f, card, quality), slotsOf(f, quality));
            Label1.push_back(label);
        }
    }
    if (quality) connectRuleFields();
    m_scroll->setWidget(card);
    sizeToCard(card, quality);
}

TextBox* Form5::makeLongField(const CardField& f, QWidget* card, int lines) {
    auto* box = new TextBox(true, card);
    box->setObjectName(QStringLiteral("Text1_%1").arg(f.index));
    box->setMinimumHeight(box->fontMetrics().lineSpacing() * lines + 12);
    Text1.push_back(box);
    connect(box, &TextBox::changed, this, [this] { touch(); });
    box->editor()->installEventFilter(this);
    return box;
}

ComboBox* Form5::makeShortField(const CardField& f, QWidget* card, bool quality) {
    auto* combo = new ComboBox(card);
    combo->setObjectName(QStringLiteral("Combo1_%1").arg(f.index));
    combo->setMaxVisibleItems(20);
    Combo1.push_back(combo);
    connect(combo, &ComboBox::changed, this, [this] { touch(); });
    connect(combo, &ComboBox::returnPressed, this, [this] { focusNextChild(); });
    combo->installEventFilter(this);
    combo->lineEdit()->installEventFilter(this);
    if (quality && (f.column == col::kWorkDescriptionFile || f.column == col::kReferenceFile)) {
        connect(combo, &ComboBox::changed, this, [this] {
            SubMenu0[0]->setEnabled(comboOfColumn(col::kWorkDescriptionFile) &&
                                    !comboOfColumn(col::kWorkDescriptionFile)->text().isEmpty());
            SubMenu0[1]->setEnabled(comboOfColumn(col::kReferenceFile) &&
                                    !comboOfColumn(col::kReferenceFile)->text().isEmpty());
        });
    }
    return combo;
}

void Form5::connectRuleFields() {
    // The rules follow what the user picks for the type, the method and the result. The type is
    // checked when the focus leaves it (eventFilter): a click elsewhere changes no text, so
    // editingFinished would not come.
    for (int column : {col::kType, col::kMethod, col::kFulfilled}) {
        ComboBox* combo = comboOfColumn(column);
        if (!combo) continue;
        connect(combo, &QComboBox::activated, this, [this, column] {
            if (column == col::kType && !checkContractorType()) return;
            EnableControlsForm5();
        });
        if (column == col::kType) continue;
        connect(combo->lineEdit(), &QLineEdit::editingFinished, this, [this] {
            if (m_loading || !isVisible()) return;
            EnableControlsForm5();
        });
    }
}

void Form5::sizeToCard(QWidget* card, bool quality) {
    // The requirement card fills a large window; a shorter card a window of its own size.
    if (quality) {
        resize(1180, 760);
    } else {
        const QSize body = card->minimumSizeHint() + QSize(40, 120);
        resize(std::max(760, body.width()), body.height() + Toolbar1->sizeHint().height() +
                                                StatusBar1->sizeHint().height() +
                                                layout()->menuBar()->sizeHint().height() + 24);
    }
}

void Form5::fillComboLists() {
    ComboSources sources;
    sources.today = QDate::currentDate();
    if (Form1* basic = m_host.basicDataWindowOf(m_view)) sources.bridgeParts = basic->list(0);
    const lists::ComboData references =
        lists::readComboData(lists::comboDataPath(m_host.appState().AppPath, 2), 1, sources.today);
    if (!references.entries.empty()) sources.referenceCodes = references.entries.front();
    const bool wasLoading = m_loading;
    m_loading = true;
    // UpdateLabelAndComboList: each drop-down gets the list of its column's header.
    for (const CardField& f : m_fields) {
        if (f.longText) continue;
        ComboBox* combo = Combo1[f.index];
        const QString keep = combo->text();
        combo->clear();
        combo->addItems(ComboListItems(f.header, sources));
        combo->setText(keep);
    }
    m_loading = wasLoading;
}

// ---------------------------------------------------------------------------------------------
// The card and its row

void Form5::ImportToEditor() {
    lists::ListModel* model = list();
    if (!model) return;
    m_row = model->currentRow();
    if (m_row < 1 || m_row > model->rows()) m_row = 0;
    m_loading = true;
    for (const CardField& f : m_fields) {
        const QString value = model->cell(m_row, f.column).toString();
        if (f.longText)
            Text1[f.index]->setText(value);
        else
            Combo1[f.index]->setText(value);
    }
    EnableControlsForm5();
    m_loading = false;
    m_unwritten->hide();

    const QString kind = model->kind();
    QString title = platform::applicationTitle() + QStringLiteral(" (") + kind + QLatin1Char(')');
    if (lists::isQualityKind(kind) && m_row > 0 && !lists::BlankString(model->cell(m_row, col::kNumber)))
        title += QStringLiteral(" - ") + model->cell(m_row, col::kNumber).trimmed().toString();
    setWindowTitle(title);
    // Where the row stands: its place in the list and the work phase it belongs to.
    QStringList status{m_row > 0 ? QStringLiteral("Rivi %1/%2").arg(m_row).arg(model->rows())
                                 : QString::fromUtf8("Luettelossa ei ole rivejä")};
    if (m_row > 0) {
        const lists::CaptionInfo c = lists::FindCaption(*model, m_row);
        if (c.captionRow > 0)
            status << (c.captionLittera.trimmed() + QLatin1Char(' ') + c.captionText.trimmed()).trimmed();
        if (c.subcaptionRow > 0)
            status
                << (c.subcaptionLittera.trimmed() + QLatin1Char(' ') + c.subcaptionText.trimmed()).trimmed();
    }
    StatusBar1->showMessage(
        status.join(QStringLiteral("   |   ")).replace(QLatin1String("\r\n"), QLatin1String(" ")));
    for (QAction* a : {SubMenu0[6], SubMenu0[7], SubMenu1[1]})
        a->setEnabled(m_row > 0);
}

void Form5::EnableControlsForm5() {
    lists::ListModel* model = list();
    if (!model) return;
    QStringList combos = comboTexts();
    // A type the contractor may not give does not count: the card keeps the rules of the row's
    // own type (nothing locks on a refused value) until the type is changed.
    if (const CardField* type = FieldOfColumn(m_fields, col::kType); type && typeRefused())
        combos[type->index] = model->cell(m_row, col::kType).toString();
    const CardRules rules = documents::EnableControlsForm5(model->kind(), m_host.appState().ProgramMode,
                                                           combos, static_cast<int>(Text1.size()));
    const bool wasLoading = m_loading;
    // Texts the rules put into the card are not changes of their own: they reach the row when
    // the card is written back.
    m_loading = true;
    for (const auto& [index, text] : rules.setCombo)
        if (index < static_cast<int>(Combo1.size())) Combo1[index]->setText(text);
    m_loading = wasLoading;
    for (int i = 0; i < static_cast<int>(Text1.size()); ++i)
        setEditableLook(Text1[i], rules.textEditable[i] != 0);
    for (int i = 0; i < static_cast<int>(Combo1.size()); ++i)
        setEditableLook(Combo1[i], rules.comboEditable[i] != 0);
    const bool quality = lists::isQualityKind(model->kind());
    SubMenu0[0]->setEnabled(quality && rules.openDocument);
    SubMenu0[1]->setEnabled(quality && rules.openAttachment);
    // A file can be looked for only into a field that may be changed.
    ComboBox* document = comboOfColumn(col::kWorkDescriptionFile);
    ComboBox* attachment = comboOfColumn(col::kReferenceFile);
    SubMenu0[3]->setEnabled(quality && document && !document->locked());
    SubMenu0[4]->setEnabled(quality && attachment && !attachment->locked());
}

void Form5::touch() {
    if (m_loading || !m_view) return;
    m_unwritten->show();
    if (lists::ListEditHost* host = m_host.listEditHost())
        host->listEdited(m_view);
    else
        m_host.contentChanged(m_view->window());
}

bool Form5::typeRefused() const {
    ComboBox* type = comboOfColumn(col::kType);
    lists::ListModel* model = list();
    return type && model &&
           ContractorTypeRefused(m_host.appState().ProgramMode, model->kind(), type->text(),
                                 model->cell(m_row, col::kType).toString());
}

bool Form5::checkContractorType() {
    if (!typeRefused()) return true;
    ComboBox* type = comboOfColumn(col::kType);
    // One message at a time: a check that comes while it is open finds the type refused too.
    if (!m_typeMessageOpen) {
        m_typeMessageOpen = true;
        platform::MsgBox(contractorTypeMessage(), platform::MsgIcon::Information);
        m_typeMessageOpen = false;
    }
    // The focus stays in the field, its text selected, until the type is changed. Again after
    // the events in hand: the click that moved the focus away is still being delivered.
    auto keep = [type] {
        type->activateWindow();
        type->setFocus(Qt::OtherFocusReason);
        type->lineEdit()->selectAll();
    };
    keep();
    QTimer::singleShot(0, type, keep);
    return false;
}

bool Form5::UpdateRow() {
    lists::ListModel* model = list();
    if (!model || m_row < 1 || m_row > model->rows()) return false;
    // The row and the formatting that follows it are one step of the list's history.
    lists::ListStep recorded(*model, lists::step::UpdateRow);
    if (NeedsIdentifier(model->kind())) {
        ComboBox* identifier = comboOfColumn(col::kNumber);
        if (identifier && lists::BlankString(identifier->text())) {
            platform::MsgBox(identifierMessage(), platform::MsgIcon::Information);
            identifier->setFocus(Qt::OtherFocusReason);
            identifier->lineEdit()->selectAll();
            return false;
        }
    }
    if (!checkContractorType()) return false;
    if (!WriteCardToRow(*model, m_row, m_fields, textTexts(), comboTexts())) {
        ImportToEditor();
        return true;
    }
    touch();
    // A quantity list keeps its blank rows in order when the program formats it by itself.
    auto* detailed = qobject_cast<Form2*>(m_view->window());
    if (detailed && detailed->list(0) == model && m_host.appState().settings.AutoFormat &&
        detailed->FormatListView()) {
        if (model->currentRow() > 0) model->ensureVisible(model->currentRow());
    }
    ImportToEditor();
    return true;
}

bool Form5::Browse(int code) {
    lists::ListModel* model = list();
    if (!model || model->rows() == 0) return false;
    // The card shows the row stepped to: what was typed into it goes first, or is let go, as
    // when going to a heading. With no row to step to the card keeps it without a question.
    if (BrowseDistance(*model, model->currentRow(), code) != 0 &&
        !settleUnwrittenChanges(QString::fromUtf8("siirtymistä")))
        return false;
    // Found again: the row written may have changed what qualifies.
    const int distance = BrowseStep(*model, code);
    if (distance == 0) return false;
    BrowseRow(distance);
    return true;
}

void Form5::BrowseRow(int distance) {
    lists::ListModel* model = list();
    if (!model) return;
    const int target = std::clamp(model->currentRow() + distance, 1, model->rows());
    model->selectOnly(target);
    model->ensureVisible(target);
    ImportToEditor();
    // The drop-down the user works in shows its new value selected, ready to be typed over.
    if (auto* combo = qobject_cast<ComboBox*>(focusedField())) combo->lineEdit()->selectAll();
}

bool Form5::CheckAndBrowseNext() {
    lists::ListModel* model = list();
    if (!model || m_row < 1 || !CheckAllowed(model->kind(), m_host.appState().ProgramMode)) return false;
    ComboBox* identifier = comboOfColumn(col::kNumber);
    ComboBox* result = comboOfColumn(col::kFulfilled);
    if (!result) return false;
    if (identifier && lists::BlankString(identifier->text())) {
        platform::MsgBox(identifierMessage(), platform::MsgIcon::Information);
        identifier->setFocus(Qt::OtherFocusReason);
        identifier->lineEdit()->selectAll();
        return false;
    }
    result->setText(QString::fromUtf8("Kyllä"));
    lists::ListStep recorded(*model, lists::step::Inspection);
    if (!UpdateRow()) return false;
    Browse(browse::Any);
    return true;
}

void Form5::AddRow(int how) {
    lists::ListModel* model = list();
    if (!model) return;
    const int mode = m_host.appState().ProgramMode;
    // A blank new row replaces the card: what was typed into it goes to its row first, or is
    // let go. A copy takes the card as it is.
    if (how != 1 && !settleUnwrittenChanges(QString::fromUtf8("siirtymistä"))) return;
    if (how != 1) {
        m_loading = true;
        for (TextBox* t : Text1)
            t->setText(QString());
        for (ComboBox* c : Combo1)
            c->setText(QString());
        m_loading = false;
    }
    // A contractor's copy of a bridge-specific requirement becomes an advisory one.
    ComboBox* type = comboOfColumn(col::kType);
    if (type && mode == 2 && model->kind() == lists::kind::Requirements && ProtectedRequirement(type->text()))
        type->setText(QStringLiteral("3 (ohjeellinen)"));
    const int position =
        how == 2 || model->rows() == 0 ? model->rows() + 1 : std::max(model->currentRow(), 1);
    lists::ListStep recorded(*model, lists::step::InsertRows);
    const int r = lists::AddListViewRow(*model, position, true);
    if (how == 1) WriteCardToRow(*model, r, m_fields, textTexts(), comboTexts());
    model->selectOnly(r);
    model->ensureVisible(r);
    touch();
    ImportToEditor();
    focusFirstField();
}

// ---------------------------------------------------------------------------------------------
// Commands

QWidget* Form5::focusedField() const {
    QWidget* focus = focusWidget();
    for (TextBox* t : Text1)
        if (focus && (focus == t || t->isAncestorOf(focus))) return t;
    for (ComboBox* c : Combo1)
        if (focus && (focus == c || c->isAncestorOf(focus))) return c;
    return nullptr;
}

void Form5::ToolbarClick(const QString& key) {
    if (key == QLatin1String("Update")) {
        UpdateRow();
    } else if (key == QLatin1String("Update and browse next")) {
        if (UpdateRow()) Browse(browse::Any);
    } else if (key == QLatin1String("Check and browse next")) {
        CheckAndBrowseNext();
    } else if (key == QLatin1String("PgUp")) {
        Browse(-browse::Any);
    } else if (key == QLatin1String("PgDn")) {
        Browse(browse::Any);
    } else if (key == QLatin1String("New")) {
        AddRow(0);
    } else if (key == QLatin1String("Dublicate")) {
        AddRow(1);
    } else if (key == QLatin1String("New to end")) {
        AddRow(2);
    } else if (key == QLatin1String("Cut") || key == QLatin1String("Copy") || key == QLatin1String("Paste") ||
               key == QLatin1String("Del")) {
        const int operation = key == QLatin1String("Cut")     ? 0
                              : key == QLatin1String("Copy")  ? 1
                              : key == QLatin1String("Paste") ? 2
                                                              : 3;
        if (QWidget* field = focusedField()) CutCopyPasteDelSelection(field, operation);
    } else if (key == QLatin1String("Select all")) {
        if (QWidget* field = focusedField()) SelectAllText(field);
    } else if (key == QLatin1String("Edit")) {
        openTextEditor();
    } else if (key == QLatin1String("Find") || key == QLatin1String("Index")) {
        showIndex();
    } else if (key == QLatin1String("Browse document")) {
        browseFile(col::kWorkDescriptionFile);
    } else if (key == QLatin1String("Browse attachment")) {
        browseFile(col::kReferenceFile);
    } else if (key == QLatin1String("Open document")) {
        openFile(col::kWorkDescriptionFile);
    } else if (key == QLatin1String("Open attachment")) {
        openFile(col::kReferenceFile);
    } else if (key == QLatin1String("Close")) {
        reject();
    }
    // "Delete all" does nothing.
}

void Form5::openTextEditor() {
    QWidget* field = focusedField();
    auto* text = qobject_cast<TextBox*>(field);
    if (!text) return;
    const auto it = std::find(Text1.begin(), Text1.end(), text);
    EditorSource source;
    source.mode = 2 + static_cast<int>(it - Text1.begin());
    source.project = m_host.detailedDataWindowOf(m_view);
    source.field = text;
    m_host.appState().EditorMode = source.mode;
    Form9 editor(m_host, source, this);
    editor.exec();
    text->setFocus(Qt::OtherFocusReason);
}

void Form5::showIndex() {
    if (!m_view) return;
    // The card shows the row gone to: what was typed into it goes first, or is let go.
    if (!settleUnwrittenChanges(QString::fromUtf8("siirtymistä"))) return;
    Form10::Source source;
    source.list = m_view;
    Form10 index(ShowIndexMode(3, QString(), QString()), source, &m_host, this);
    if (index.exec() == QDialog::Accepted) ImportToEditor();
    activateWindow();
}

void Form5::browseFile(int column) {
    ComboBox* field = comboOfColumn(column);
    if (!field || field->locked()) return;
    const QString file = platform::ShowCommonDialog(1, QStringLiteral(".*"), false, m_host.appState().dialog);
    m_host.appState().CurrentFileName = file;
    if (file.isEmpty()) return;
    field->setText(file);
    field->setFocus(Qt::OtherFocusReason);
}

void Form5::openFile(int column) {
    ComboBox* field = comboOfColumn(column);
    if (field && !field->text().trimmed().isEmpty()) m_host.openFile(field->text().trimmed());
}

// ---------------------------------------------------------------------------------------------
// Keys

bool Form5::handleKey(int key, Qt::KeyboardModifiers modifiers) {
    if (const int code = BrowseCodeForKey(key, modifiers)) {
        Browse(code);
        return true;
    }
    const Qt::KeyboardModifiers m = modifiers & (Qt::ShiftModifier | Qt::ControlModifier | Qt::AltModifier);
    if (key == Qt::Key_Return || key == Qt::Key_Enter) {
        if (m == Qt::ShiftModifier) {
            ToolbarClick(QStringLiteral("Update"));
            return true;
        }
        if (m == Qt::AltModifier) {
            ToolbarClick(QStringLiteral("Update and browse next"));
            return true;
        }
        if (m == Qt::ControlModifier) {
            ToolbarClick(QStringLiteral("Check and browse next"));
            return true;
        }
    }
    if (key == Qt::Key_Escape && m == Qt::NoModifier) {
        ToolbarClick(QStringLiteral("Close"));
        return true;
    }
    return false;
}

bool Form5::eventFilter(QObject* watched, QEvent* event) {
    // The card's keys reach the fields first: a text box would take Return and the page keys
    // for itself.
    if (event->type() == QEvent::KeyPress) {
        auto* ke = static_cast<QKeyEvent*>(event);
        if (handleKey(ke->key(), ke->modifiers())) return true;
    }
    // The type field is checked whenever the focus leaves it for another field of the card
    // (Tab, a click, Return); a message box, a menu or the drop-down's own list taking the
    // focus for a while is no leaving.
    if (event->type() == QEvent::FocusOut && !m_loading && isVisible()) {
        ComboBox* type = comboOfColumn(col::kType);
        QWidget* next = QApplication::focusWidget();
        if (type && (watched == type || watched == type->lineEdit()) && next && next != type &&
            !type->isAncestorOf(next) && isAncestorOf(next) && list() &&
            lists::isQualityKind(list()->kind())) {
            if (checkContractorType()) EnableControlsForm5();
        }
    }
    return QDialog::eventFilter(watched, event);
}

bool Form5::settleUnwrittenChanges(const QString& before) {
    if (!hasUnwrittenChanges() || m_row < 1) return true;
    const platform::MsgAnswer a = platform::Ask(
        QString::fromUtf8("Kortin muutoksia ei ole viety riville.\r\nViedäänkö muutokset riville ennen %1?")
            .arg(before),
        platform::MsgButtons::YesNoCancel, platform::MsgIcon::Question, platform::MsgAnswer::Yes);
    if (a == platform::MsgAnswer::Cancel) return false;
    // A refused write (no identifier, a contractor's type) keeps the card as it is.
    return a == platform::MsgAnswer::No || UpdateRow();
}

void Form5::reject() {
    // A card with changes that have not reached the row is not closed without asking (Esc,
    // "&Sulje ikkuna (Esc)" and the close box all come here).
    if (!settleUnwrittenChanges(QStringLiteral("sulkemista"))) return;
    QDialog::reject();
}

void Form5::done(int result) {
    m_host.storeWindowPosition(kWindowSlot, this);
    QDialog::done(result);
}

} // namespace documents
