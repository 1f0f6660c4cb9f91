#include "documents/Form1.h"

#include "calc/BasicFields.h"
#include "documents/Controls.h"
#include "documents/DocumentHost.h"
#include "documents/FormLayout.h"
#include "documents/NewWindow.h"
#include "lists/ui/ListView.h"
#include "platform/ui/PictureBox.h"

#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

namespace documents {

namespace {

// A label and its field in one cell pair of a grid; the field may span several columns.
void addPair(QGridLayout* grid, int row, int col, const QString& text, QWidget* field, int fieldSpan = 1) {
    grid->addWidget(fieldLabel(text, field), row, col);
    grid->addWidget(field, row, col + 1, 1, fieldSpan);
}

} // namespace

QString OfficeText(const std::array<QString, 4>& rows) {
    return rows[0] + QStringLiteral("\r\n") + rows[1] + QStringLiteral("\r\n") + rows[2] +
           QStringLiteral("\r\n") + rows[3];
}

void UpdateOfficeText(TextBox& box, const std::array<QString, 4>& rows) {
    box.setText(OfficeText(rows));
}

Form1::Form1(DocumentHost& host, QWidget* parent)
    : ProjectWindow(host, 1, parent) {
    auto* body = new QWidget;
    auto* outer = new QHBoxLayout(body);
    auto* frames = new QVBoxLayout;
    frames->addWidget(buildBasicData());
    frames->addWidget(buildParties(), 1);
    outer->addLayout(frames, 1);

    // The card pictures, small, at the right edge.
    static const char* const kSlots[] = {
        "Ominaistietokortin sivukuva", "Ominaistietokortin poikkileikkaus", "Ominaistietokortin logo",
        "Panostilakortin sivukuva",    "Panostilakortin poikkileikkaus",    "Panostilakortin merkkikilpi"};
    auto* pictures = new QVBoxLayout;
    for (int i = 0; i < 6; ++i) {
        Image1.push_back(pictureSlot(i, QString::fromUtf8(kSlots[i])));
        // A new or removed picture is a change of the project.
        connect(Image1.back(), &platform::PictureBox::pictureChanged, this, [this, i] { pictureChanged(i); });
        pictures->addWidget(Image1.back());
    }
    pictures->addStretch(1);
    outer->addLayout(pictures);

    installScrollingBody(this, body);
    connectReturnKeys(this);
}

platform::Picture Form1::picture(int slot) const {
    return slot >= 0 && slot < static_cast<int>(Image1.size()) ? Image1[slot]->picture()
                                                               : platform::Picture();
}

void Form1::setPicture(int slot, const platform::Picture& picture) {
    if (slot >= 0 && slot < static_cast<int>(Image1.size())) Image1[slot]->setPicture(picture);
}

void Form1::revealPicture(int slot) {
    if (slot >= 0 && slot < static_cast<int>(Image1.size())) reveal(Image1[slot]);
}

void Form1::pictureChanged(int slot) {
    if (static_cast<int>(m_lastPictures.size()) <= slot) m_lastPictures.resize(slot + 1);
    const platform::Picture now = Image1[slot]->picture();
    const platform::Picture before = std::exchange(m_lastPictures[slot], now);
    if (m_host.appState().Loading) return;
    if (!history()) {
        m_host.contentChanged(this);
        return;
    }
    if (!history()->applying()) history()->push(new persist::PictureEdit(*this, slot, before, now));
}

QWidget* Form1::buildBasicData() {
    QGridLayout* grid = nullptr;
    QGroupBox* frame = framedGrid(QStringLiteral("Sillan perustiedot"), grid);
    frame->setObjectName(QStringLiteral("Frame1_0"));

    // Name, road section and type take the width of two columns; the dimensions below line up
    // in three columns.
    addPair(grid, 0, 0, QStringLiteral("Sillan nimi"), makeText(basic::BridgeName), 3);
    addPair(grid, 0, 4, QStringLiteral("Kunta"), makeCombo(basic::Municipality));
    addPair(grid, 1, 0, QStringLiteral("Tieosa"), makeText(basic::RoadSection), 3);
    addPair(grid, 1, 4, QStringLiteral("Tiepiiri"), makeCombo(basic::RoadDistrict));
    addPair(grid, 2, 0, QStringLiteral("Sillan tyyppi"), makeCombo(basic::BridgeType), 3);
    addPair(grid, 2, 4, QStringLiteral("Suunn. nro"), makeText(basic::PlanNumber));
    addPair(grid, 3, 0, QStringLiteral("Jm (m)"), makeText(basic::Span));
    addPair(grid, 3, 2, QStringLiteral("Kok. pituus (m)"), makeText(basic::TotalLength));
    addPair(grid, 3, 4, QStringLiteral("Hl (m)"), makeText(basic::UsefulWidth));
    addPair(grid, 4, 0, QStringLiteral("Va (m)"), makeText(basic::FreeOpening));
    addPair(grid, 4, 2, QStringLiteral("Kannen pit. (m)"), makeText(basic::DeckLength));
    addPair(grid, 4, 4, QStringLiteral("Suun. kuorma"), makeCombo(basic::DesignLoad));
    addPair(grid, 5, 0, QStringLiteral("Kohtis. va (m)"), makeText(basic::SquareFreeOpening));
    addPair(grid, 5, 2, QStringLiteral("Vinous (gon)"), makeText(basic::Skew));
    addPair(grid, 5, 4, QStringLiteral("Alikulkukorkeus (m)"), makeText(basic::UnderpassHeight));
    for (int i : {basic::Span, basic::TotalLength, basic::FreeOpening, basic::DeckLength, basic::Skew,
                  basic::UsefulWidth, basic::SquareFreeOpening, basic::UnderpassHeight})
        setWidthInChars(Text1[i], 12);
    setWidthInChars(Text1[basic::BridgeName], 30);
    for (int i : {basic::Municipality, basic::RoadDistrict, basic::DesignLoad})
        setWidthInChars(Combo1[i], 22);
    grid->setColumnStretch(1, 1);
    grid->setColumnStretch(3, 1);
    grid->setColumnStretch(5, 2);

    grid->addLayout(buildPartsAndCosts(), 6, 0, 1, 6);
    grid->setRowStretch(6, 1);
    return frame;
}

QLayout* Form1::buildPartsAndCosts() {
    // Lower area: the part numbering on the left, the cost parameters and the client beside it.
    auto* lower = new QHBoxLayout;
    auto* partsColumn = new QVBoxLayout;
    lists::ListView* parts = makeList(0, QStringLiteral("Sillan osanumerointi"));
    parts->setMinimumHeight(120);
    stretchListColumn(parts, 2); // the part's name
    partsColumn->addWidget(fieldLabel(QStringLiteral("Sillan osanumerointi"), parts));
    partsColumn->addWidget(parts, 1);
    lower->addLayout(partsColumn, 1);

    auto* costs = new QGridLayout;
    costs->setHorizontalSpacing(10);
    addPair(costs, 0, 0, QStringLiteral("Rahayksikkö"), makeCombo(basic::MoneyUnit));
    addPair(costs, 0, 2, QStringLiteral("Kustannus i"), makeCombo(basic::CostIndex));
    addPair(costs, 1, 0, QStringLiteral("Vuosi (i = 100)"), makeCombo(basic::IndexBaseYear));
    addPair(costs, 1, 2, QStringLiteral("Yhteiskustannus %"), makeCombo(basic::GeneralCostPercent));
    addPair(costs, 2, 0, QStringLiteral("Yksikköhintojen i"), makeCombo(basic::UnitPriceIndex));
    addPair(costs, 2, 2, QStringLiteral("ALV %"), makeCombo(basic::VatPercent));
    TextBox* client = makeText(basic::Client, true);
    setVisibleLines(client, 3);
    costs->addWidget(fieldLabel(QStringLiteral("Tilaaja"), client), 3, 0, Qt::AlignTop);
    costs->addWidget(client, 3, 1, 1, 3);
    for (int i : {basic::MoneyUnit, basic::CostIndex, basic::IndexBaseYear, basic::GeneralCostPercent,
                  basic::UnitPriceIndex, basic::VatPercent})
        setWidthInChars(Combo1[i], 9);
    costs->setRowStretch(4, 1);
    lower->addLayout(costs, 1);
    return lower;
}

QWidget* Form1::buildParties() {
    QGridLayout* grid = nullptr;
    QGroupBox* frame =
        framedGrid(QStringLiteral("TAMRIK suunnitelman laatija ja tarkastaja sekä muutostiedot"), grid);
    frame->setObjectName(QStringLiteral("Frame1_1"));

    struct Party {
        const char* title;
        int drewUp, drewUpDate, checked, checkedDate, company, changes;
    };
    // The designer's column on the left, the contractor's on the right. Each column is a box of
    // its own, so that the Tab key and a screen reader go through one party before the other.
    const Party parties[] = {{"SUUNNITTELIJA", basic::DesignerDrewUp, basic::DesignerDrewUpDate,
                              basic::DesignerChecked, basic::DesignerCheckedDate, basic::DesignerCompany, 1},
                             {"URAKOITSIJA", basic::ContractorDrewUp, basic::ContractorDrewUpDate,
                              basic::ContractorChecked, basic::ContractorCheckedDate,
                              basic::ContractorCompany, 2}};
    int col = 0;
    for (const Party& p : parties) {
        auto* column = new QWidget;
        auto* party = new QGridLayout(column);
        party->setContentsMargins(0, 0, 0, 0);
        party->setHorizontalSpacing(grid->horizontalSpacing());
        party->setVerticalSpacing(grid->verticalSpacing());
        auto* title = new QLabel(QString::fromUtf8(p.title));
        QFont bold = title->font();
        bold.setBold(true);
        title->setFont(bold);
        party->addWidget(title, 0, 0, 1, 4);
        addPair(party, 1, 0, QStringLiteral("Laati"), makeCombo(p.drewUp));
        addPair(party, 1, 2, QStringLiteral("Pvm"), makeCombo(p.drewUpDate));
        addPair(party, 2, 0, QStringLiteral("Tarkasti"), makeCombo(p.checked));
        addPair(party, 2, 2, QStringLiteral("Pvm"), makeCombo(p.checkedDate));
        TextBox* company = makeText(p.company, true);
        setVisibleLines(company, 4);
        party->addWidget(fieldLabel(QStringLiteral("Yritys"), company), 3, 0, Qt::AlignTop);
        party->addWidget(company, 3, 1, 1, 3);
        lists::ListView* changes = makeList(p.changes, QStringLiteral("Muutokset"));
        changes->setMinimumHeight(110);
        stretchListColumn(changes, 3); // the change's description
        party->addWidget(changes, 4, 0, 1, 4);
        setWidthInChars(Combo1[p.drewUp], 18);
        setWidthInChars(Combo1[p.checked], 18);
        setWidthInChars(Combo1[p.drewUpDate], 10);
        setWidthInChars(Combo1[p.checkedDate], 10);
        party->setColumnStretch(1, 2);
        party->setColumnStretch(3, 1);
        party->setRowStretch(4, 1);
        grid->addWidget(column, 0, col);
        grid->setColumnStretch(col, 1);
        col += 2;
    }
    // A little air between the two parties.
    grid->setColumnMinimumWidth(1, 16);
    return frame;
}

void Form1::prepareNewProject() {
    shell::AppState& state = host().appState();
    LoadListTemplate(*this, 0, QStringLiteral("TAMRIK30_T1.csv"));
    LoadListTemplate(*this, 1, QStringLiteral("TAMRIK30_T2.csv"));
    LoadListTemplate(*this, 2, QStringLiteral("TAMRIK30_T2.csv"));

    // The cost parameters start from the settings; "Kustannus i" is left for the user.
    const shell::Settings& s = state.settings;
    Combo1[basic::MoneyUnit]->setText(s.MoneyUnit);
    Combo1[basic::UnitPriceIndex]->setText(s.Index);
    Combo1[basic::GeneralCostPercent]->setText(s.GeneralCostFraction);
    Combo1[basic::VatPercent]->setText(s.VAT);
    Combo1[basic::IndexBaseYear]->setText(s.IndexBaseYear);

    // The texts last saved in these boxes are offered in their drop-down lists.
    const int defaults[] = {basic::CostIndex, basic::DesignerDrewUp, basic::DesignerChecked,
                            basic::ContractorDrewUp, basic::ContractorChecked};
    for (int k = 0; k < 5; ++k)
        Combo1[defaults[k]]->addUniqueItem(s.DefaultComboData[k]);
    UpdateComboListFromFile(*this, 1);

    if (state.ProgramMode == 1)
        UpdateOfficeText(*Text1[basic::DesignerCompany], state.OfficeRows);
    else if (state.ProgramMode == 2)
        UpdateOfficeText(*Text1[basic::ContractorCompany], state.OfficeRows);
}

calc::CostInputs Form1::costInputs() const {
    calc::CostInputs in;
    in.moneyUnit = Combo1[basic::MoneyUnit]->text();
    in.unitPriceIndex = Combo1[basic::UnitPriceIndex]->text();
    in.costIndex = Combo1[basic::CostIndex]->text();
    in.generalPercent = Combo1[basic::GeneralCostPercent]->text();
    in.vatPercent = Combo1[basic::VatPercent]->text();
    return in;
}

QSize Form1::sizeHint() const {
    return scrollingBodySizeHint(this);
}

} // namespace documents
