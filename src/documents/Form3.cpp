#include "documents/Form3.h"

#include "documents/Controls.h"
#include "documents/DocumentHost.h"
#include "documents/FormLayout.h"
#include "documents/NewWindow.h"

#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace documents {

namespace {

// Computed fields are not typed: they keep the read-only look.
const int kComputed[] = {3, 4, 5, 6, 7, 8, 9, 10, 12, 29, 30, 31, 32, 44, 46, 48, 50, 52, 54, 56, 58, 60};

QLabel* heading(const QString& text) {
    auto* label = new QLabel(text);
    label->setAlignment(Qt::AlignHCenter | Qt::AlignBottom);
    return label;
}

} // namespace

Form3::Form3(DocumentHost& host, QWidget* parent)
    : ProjectWindow(host, 3, parent) {
    Label1.assign(80, nullptr);
    auto* body = new QWidget;
    auto* layout = new QVBoxLayout(body);
    layout->addWidget(buildTopArea());
    layout->addWidget(buildCosts());

    auto* supports = new QHBoxLayout;
    supports->addWidget(buildSupports(QStringLiteral("Maa- ja päätytuet"), 0));
    supports->addWidget(buildSupports(QStringLiteral("Välituet"), 2));
    layout->addLayout(supports);

    // One reinforcing steel class for the supports of both frames.
    auto* steel = new QHBoxLayout;
    ComboBox* steelClass = makeCombo(11);
    setWidthInChars(steelClass, 10);
    steel->addWidget(new QLabel(QStringLiteral("Tukien betoniteräs")));
    steel->addWidget(fieldLabel(QStringLiteral("Lk"), steelClass));
    steel->addWidget(steelClass);
    steel->addStretch(1);
    layout->addLayout(steel);

    layout->addWidget(buildSuperstructure(), 1);
    layout->addWidget(buildButtons());

    for (int i : kComputed)
        Text1[i]->setReadOnlyLook(true);
    for (int i = 0; i < static_cast<int>(Text1.size()); ++i)
        if (!Text1[i]->isMultiLine()) Text1[i]->setAlignmentRight();
    setMoneyUnit(QStringLiteral("mk"));

    installScrollingBody(this, body);
    connectReturnKeys(this);
}

QWidget* Form3::buildTopArea() {
    auto* area = new QWidget;
    auto* grid = new QGridLayout(area);
    grid->setContentsMargins(0, 0, 0, 0);
    // Label, field and unit, three times across.
    auto addMeasure = [&](int row, int col, const QString& text, int field, const QString& unit) {
        TextBox* box = makeText(field);
        setWidthInChars(box, 9, true);
        grid->addWidget(fieldLabel(text, box), row, col);
        grid->addWidget(box, row, col + 1);
        grid->addWidget(fieldLabel(unit, box), row, col + 2);
    };
    auto addChoice = [&](int row, int col, const QString& text, int combo, int span) {
        ComboBox* box = makeCombo(combo);
        setWidthInChars(box, 24);
        grid->addWidget(fieldLabel(text, box), row, col);
        grid->addWidget(box, row, col + 1, 1, span);
    };
    addChoice(0, 0, QStringLiteral("Siltalaji"), 8, 2);
    addChoice(0, 3, QStringLiteral("Toimenpide"), 9, 5);
    addMeasure(1, 0, QStringLiteral("Vapaa korkeus"), 0, QStringLiteral("m"));
    addMeasure(1, 3, QStringLiteral("Päällysrak. rak. korkeus, aukossa"), 1, QStringLiteral("m"));
    addMeasure(1, 6, QStringLiteral("tuella"), 2, QStringLiteral("m"));
    addMeasure(2, 0, QStringLiteral("Kokonaispinta-ala HlxL"), 3, QStringLiteral("m2"));
    addMeasure(2, 3, QStringLiteral("Pinta-ala A"), 4, QStringLiteral("m2"));
    addChoice(3, 0, QStringLiteral("Perustamistapa, maatuet"), 0, 2);
    addChoice(3, 3, QStringLiteral("välituet"), 1, 5);
    grid->setColumnStretch(9, 1);
    return area;
}

QWidget* Form3::buildCosts() {
    QGridLayout* grid = nullptr;
    QGroupBox* frame = framedGrid(QStringLiteral("K&USTANNUKSET"), grid);
    // Columns: row name; whole bridge, per m2, general costs and superstructure, each a field
    // and its unit; the index with its base year.
    grid->addWidget(heading(QStringLiteral("Koko silta")), 0, 1, 1, 2);
    grid->addWidget(heading(QStringLiteral("Yhteiskustan.")), 0, 5, 1, 2);
    grid->addWidget(heading(QStringLiteral("Päällysrakenne")), 0, 7, 1, 2);
    grid->addWidget(heading(QStringLiteral("Indeksi")), 0, 9, 1, 4);

    struct CostRow {
        const char* name;
        int whole, perM2, general, superstructure, index, year;
        int wholeLabel, perM2Label, generalLabel, superLabel; // -1: a label without an index
    };
    const CostRow rows[] = {{"Arvio", 5, 6, 7, 8, 9, 10, 2, 4, 5, 6},
                            {"Toteuma", 11, 12, 13, 14, 15, 16, 3, 79, 7, -1}};
    int r = 1;
    for (const CostRow& row : rows) {
        const QString rowName = QString::fromUtf8(row.name);
        auto addMoney = [&](int field, int col, int labelIndex, bool perSquareMetre, const char* column) {
            TextBox* box = makeText(field);
            // The row and the column heading name a figure of the table.
            nameControl(box, rowName + QStringLiteral(", ") + QString::fromUtf8(column));
            setWidthInChars(box, 11);
            grid->addWidget(box, r, col);
            QLabel* unit = labelIndex >= 0 ? indexedLabel(labelIndex, QString()) : new QLabel;
            unit->setBuddy(box);
            unit->setMinimumWidth(unit->fontMetrics().horizontalAdvance(QStringLiteral("mk/m2")) + 4);
            unit->setProperty("perSquareMetre", perSquareMetre);
            grid->addWidget(unit, r, col + 1);
            if (labelIndex >= 0) Label1[labelIndex] = unit;
            m_moneyLabels.push_back(unit);
        };
        addMoney(row.whole, 1, row.wholeLabel, false, "koko silta");
        addMoney(row.perM2, 3, row.perM2Label, true, "neliömetriä kohden");
        addMoney(row.general, 5, row.generalLabel, false, "yhteiskustannukset");
        addMoney(row.superstructure, 7, row.superLabel, false, "päällysrakenne");
        grid->addWidget(fieldLabel(QString::fromUtf8(row.name), Text1[row.whole]), r, 0);
        TextBox* index = makeText(row.index);
        TextBox* year = makeText(row.year);
        setWidthInChars(index, 6);
        setWidthInChars(year, 6);
        nameControl(index, rowName + QStringLiteral(", indeksi"));
        nameControl(year, rowName + QStringLiteral(", indeksin perusvuosi"));
        grid->addWidget(index, r, 9);
        grid->addWidget(new QLabel(QStringLiteral("(")), r, 10);
        grid->addWidget(year, r, 11);
        grid->addWidget(new QLabel(QStringLiteral("= 100)")), r, 12);
        ++r;
    }
    grid->setColumnStretch(13, 1);
    return frame;
}

QWidget* Form3::buildSupports(const QString& title, int firstColumn) {
    QGridLayout* grid = nullptr;
    QGroupBox* frame = framedGrid(title, grid);
    // Support columns j: 0 abutments' foundation, 1 abutments' vertical structure, 2 and 3 the
    // same for the intermediate supports. The strength-class drop-downs of the two concrete
    // rows, by column.
    const int concrete1Class[] = {7, 13, 3, 5};
    const int concrete2Class[] = {6, 12, 2, 4};
    const char* const titles[] = {"Perustus", "Pystyrakenne"};
    // Each of the two columns is a box of its own, so that the Tab key and a screen reader go
    // down one column before the other.
    for (int k = 0; k < 2; ++k) {
        const int j = firstColumn + k;
        auto* column = new QWidget;
        auto* cells = new QGridLayout(column);
        cells->setContentsMargins(0, 0, 0, 0);
        cells->setHorizontalSpacing(grid->horizontalSpacing());
        cells->setVerticalSpacing(grid->verticalSpacing());
        cells->addWidget(heading(QString::fromUtf8(titles[k])), 0, 0, 1, 4);
        auto addAmount = [&](int row, int field, const QString& unit) {
            TextBox* box = makeText(field);
            setWidthInChars(box, 9, true);
            cells->addWidget(box, row, 0);
            cells->addWidget(fieldLabel(unit, box), row, 1);
        };
        auto addClass = [&](int row, int combo) {
            ComboBox* box = makeCombo(combo);
            setWidthInChars(box, 8);
            cells->addWidget(fieldLabel(QStringLiteral("K"), box), row, 2);
            cells->addWidget(box, row, 3);
        };
        addAmount(1, 17 + j, QStringLiteral("m3"));
        addClass(1, concrete1Class[j]);
        addAmount(2, 21 + j, QStringLiteral("m3"));
        addClass(2, concrete2Class[j]);
        addAmount(3, 25 + j, QStringLiteral("kg"));
        addAmount(4, 29 + j, QStringLiteral("kg/m3"));
        addAmount(5, 33 + j, QStringLiteral("m2"));
        // Piles under the foundation.
        if (k == 0) cells->addLayout(buildPiles(j == 0 ? 37 : 40), 6, 0, 1, 4);
        cells->setRowStretch(7, 1);
        grid->addWidget(column, 0, 2 * k);
    }
    // Spare width goes between and after the two columns, not into the unit labels.
    grid->setColumnMinimumWidth(1, 12);
    grid->setColumnStretch(1, 1);
    grid->setColumnStretch(3, 1);
    return frame;
}

QLayout* Form3::buildPiles(int first) {
    auto* piles = new QHBoxLayout;
    piles->setSpacing(4);
    TextBox* count = makeText(first);
    TextBox* length = makeText(first + 1);
    TextBox* size = makeText(first + 2);
    for (TextBox* t : {count, length, size})
        setWidthInChars(t, 5, true);
    length->setToolTip(QStringLiteral("Paalujen pituus (m)"));
    nameControl(length, length->toolTip());
    piles->addWidget(count);
    piles->addWidget(fieldLabel(QStringLiteral("kpl"), count));
    piles->addWidget(length);
    piles->addWidget(fieldLabel(QStringLiteral("m koko"), size));
    piles->addWidget(size);
    piles->addStretch(1);
    return piles;
}

QWidget* Form3::buildSuperstructure() {
    auto* frame = new QGroupBox(QStringLiteral("&Päällysrakenne"));
    auto* columns = new QHBoxLayout(frame);
    auto* grid = new QGridLayout;
    grid->setVerticalSpacing(4);
    columns->addLayout(grid);
    struct Material {
        const char* name;
        int amount;
        const char* unit;
        int combo; // -1: no class
        const char* classLabel;
        int ratio;
        const char* ratioUnit;
    };
    const Material rows[] = {
        {"Betonielem.", 43, "m3", 10, "K", 44, "m3/A"},
        {"Betonia", 47, "m3", 14, "K", 48, "m3/A"},
        {"Betoniterästä", 51, "kg", 17, "Lk", 52, "kg/m3"},
        {"Jänneterästä", 55, "kg", 18, "Lk", 56, "kg/m3"},
        {"Rakenneterästä", 57, "kg", 19, "Lk", 58, "kg/A"},
        {"Liimapuuta", 59, "m3", 16, "L", 60, "m3/A"},
        {"Sahatavaraa", 45, "m3", 15, "T", 46, "m3/A"},
        {"Maalauspinta-ala", 49, "m2", -1, "", 50, "m2/rak.teräs t"},
        {"Muottipintoja", 53, "m2", -1, "", 54, "m2/m3"},
    };
    int r = 0;
    for (const Material& m : rows) {
        TextBox* amount = makeText(m.amount);
        setWidthInChars(amount, 9);
        grid->addWidget(fieldLabel(QString::fromUtf8(m.name), amount), r, 0);
        grid->addWidget(amount, r, 1);
        grid->addWidget(fieldLabel(QString::fromUtf8(m.unit), amount), r, 2);
        if (m.combo >= 0) {
            ComboBox* cls = makeCombo(m.combo);
            setWidthInChars(cls, 9);
            grid->addWidget(fieldLabel(QString::fromUtf8(m.classLabel), cls), r, 3);
            grid->addWidget(cls, r, 4);
        }
        TextBox* ratio = makeText(m.ratio);
        setWidthInChars(ratio, 7);
        grid->addWidget(ratio, r, 5);
        grid->addWidget(fieldLabel(QString::fromUtf8(m.ratioUnit), ratio), r, 6);
        ++r;
    }

    grid->setRowStretch(r, 1);

    // Further information beside the materials.
    TextBox* notes = makeText(61, true);
    notes->setMinimumWidth(notes->fontMetrics().averageCharWidth() * 30);
    auto* notesColumn = new QVBoxLayout;
    notesColumn->addWidget(fieldLabel(QStringLiteral("&Lisätiedot:"), notes));
    notesColumn->addWidget(notes, 1);
    columns->addSpacing(16);
    columns->addLayout(notesColumn, 1);
    return frame;
}

QWidget* Form3::buildButtons() {
    auto* row = new QWidget;
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    Command1 = new QPushButton(QStringLiteral("Las&ke tunnusluvut"));
    Command1->setObjectName(QStringLiteral("Command1"));
    connect(Command1, &QPushButton::clicked, this, [this] { m_host.computeCardFigures(this); });
    layout->addWidget(Command1);
    layout->addStretch(1);
    // Picture numbers 2, 3 and 4 belong to the characteristics card.
    Command2 = pictureButtons({"&Sivukuva...", "&Poikkileikkaus...", "&Logo..."}, QStringLiteral("Command2"),
                              2, layout, [this](int n) { emit pictureRequested(n); });
    return row;
}

void Form3::prepareNewProject() {
    UpdateComboListFromFile(*this, 3);
    setMoneyUnit(host().appState().settings.MoneyUnit);
}

void Form3::setMoneyUnit(const QString& unit) {
    for (QLabel* label : m_moneyLabels)
        label->setText(label->property("perSquareMetre").toBool() ? unit + QStringLiteral("/m2") : unit);
}

QSize Form3::sizeHint() const {
    return scrollingBodySizeHint(this);
}

} // namespace documents
