#pragma once
// Where each field stands in the two project lists (1-based column numbers). The printing, the
// calculations and the editing read the same columns, so they are named once here.
#include <QStringList>

namespace lists {

// The header words of the two lists' columns, as the shipped list templates name them.
inline QStringList quantityColumnHeaders() {
    return {"LITTERA", "TYÖVAIHE", "RAK. OSA", "MÄÄRÄ", "YKSIKKÖ", "YKS.HINTA", "HUOMAUTUKSET"};
}

inline QStringList requirementColumnHeaders() {
    return {"LITTERA",
            "NRO",
            "LAATUVAATIMUS",
            "TYYPPI",
            "VIITE",
            "VAATIMUS",
            "ALARAJA",
            "YLÄRAJA",
            "YKSIKKÖ",
            "TARKASTUSTAPA",
            "PAINOARVO",
            "LAATUSUUNNITELMATEKSTI",
            "TEKNINEN TYÖSELOSTUS",
            "VIITETIEDOSTO",
            "TARKASTUS/MITTAUSRAPORTTITEKSTI",
            "MITTAUSTEN LKM",
            "MINIMI",
            "MAKSIMI",
            "KESKIARVO",
            "LAATURAPORTTITEKSTI",
            "TÄYTTÄÄ VAATIMUKSET",
            "POIKKEAMARAPORTTI",
            "KORJAUSSUUNNITELMA",
            "PAINOARVON KERROIN"};
}

// The quantity list ("Määräluettelo ja kustannusarvio").
namespace quantityCol {
constexpr int kLittera = 1;
constexpr int kWorkPhase = 2;
constexpr int kPart = 3;
constexpr int kQuantity = 4;
constexpr int kUnit = 5;
constexpr int kUnitPrice = 6;
constexpr int kRemarks = 7;
} // namespace quantityCol

// The quality requirement list ("Laatuvaatimukset") and its base list.
namespace requirementCol {
constexpr int kLittera = 1;
constexpr int kNumber = 2;
constexpr int kText = 3;
constexpr int kType = 4;
constexpr int kReference = 5;
constexpr int kRequired = 6;
constexpr int kLower = 7;
constexpr int kUpper = 8;
constexpr int kUnit = 9;
constexpr int kMethod = 10;
constexpr int kWeight = 11;
constexpr int kQualityPlan = 12;
constexpr int kWorkDescriptionFile = 13;
constexpr int kReferenceFile = 14;
constexpr int kInspection = 15;
constexpr int kCount = 16;
constexpr int kMinimum = 17;
constexpr int kMaximum = 18;
constexpr int kMean = 19;
constexpr int kQualityReportText = 20;
constexpr int kFulfilled = 21;
constexpr int kDeviation = 22;
constexpr int kCorrection = 23;
constexpr int kFactor = 24;
} // namespace requirementCol

} // namespace lists
