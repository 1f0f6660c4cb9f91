#pragma once
// The fields of the basic data window ("Sillan perustiedot" and the parties) by their index in
// its control arrays: Text1 for the text boxes, Combo1 for the combo boxes. The window, the
// printed headers, the front page, the cards and the cost estimate all read them by these names.

namespace basic {

// Text1 of the basic data window.
enum TextField : int {
    BridgeName = 0,         // "Sillan nimi"
    RoadSection = 1,        // "Tieosa"
    PlanNumber = 2,         // "Suunn. nro"
    Span = 3,               // "Jm (m)", Jännemitta
    TotalLength = 4,        // "Kok. pituus (m)"
    FreeOpening = 5,        // "Va (m)", Vapaa-aukko
    DeckLength = 6,         // "Kannen pit. (m)"
    Skew = 7,               // "Vinous (gon)"
    UsefulWidth = 8,        // "Hl (m)", Hyödyllinen leveys
    DesignerCompany = 9,    // the designer's "Yritys"
    ContractorCompany = 10, // the contractor's "Yritys"
    Client = 11,            // "Tilaaja"
    SquareFreeOpening = 12, // "Kohtis. va (m)", Kohtisuora vapaa-aukko
    UnderpassHeight = 13,   // "Alikulkukorkeus (m)"
};

// Combo1 of the basic data window.
enum ComboField : int {
    BridgeType = 0,             // "Sillan tyyppi"
    DesignLoad = 1,             // "Suun. kuorma"
    RoadDistrict = 2,           // "Tiepiiri"
    UnitPriceIndex = 3,         // "Yksikköhintojen i"
    MoneyUnit = 4,              // "Rahayksikkö"
    DesignerDrewUp = 5,         // the designer's "Laati"
    DesignerChecked = 6,        // the designer's "Tarkasti"
    DesignerCheckedDate = 7,    // its "Pvm"
    DesignerDrewUpDate = 8,     // the "Pvm" beside "Laati"
    Municipality = 9,           // "Kunta"
    CostIndex = 10,             // "Kustannus i"
    GeneralCostPercent = 11,    // "Yhteiskustannus %"
    VatPercent = 12,            // "ALV %"
    IndexBaseYear = 13,         // "Vuosi (i = 100)"
    ContractorCheckedDate = 14, // the contractor's "Pvm" beside "Tarkasti"
    ContractorDrewUpDate = 15,  // the contractor's "Pvm" beside "Laati"
    ContractorChecked = 16,     // the contractor's "Tarkasti"
    ContractorDrewUp = 17,      // the contractor's "Laati"
};

} // namespace basic
