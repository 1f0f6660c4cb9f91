#pragma once
// The header rows of the project's two working lists, as the shipped templates have them.
#include <QStringList>

namespace testing_support {

inline QStringList quantityHeaders() {
    return {"LITTERA", "TYÖVAIHE", "RAK. OSA", "MÄÄRÄ", "YKSIKKÖ", "YKS.HINTA", "HUOMAUTUKSET"};
}

inline QStringList requirementHeaders() {
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

} // namespace testing_support
