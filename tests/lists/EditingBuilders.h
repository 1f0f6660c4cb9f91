#pragma once
// Lists for the editing tests: a project requirement list with protected and advisory
// requirements, a unit price list, and a helper that sets a list's selection.
#include "ListBuilders.h"

#include <initializer_list>

namespace lists_test {

inline QStringList unitPriceHeaders() {
    return {"LITTERA", "TYÖVAIHE", "YKSIKKÖ", "A (HELPOT)", "B (NORMAALIT)", "C (VAIKEAT)", "HUOMAUTUKSET"};
}

// Rows 1 caption, 2 subcaption, 3-4 a type 2 requirement and its continuation, 5 blank,
// 6-7 a type 3 requirement, 8 caption, 9 a type 1 requirement, 10 a type 3 requirement.
inline std::vector<QStringList> requirementRows() {
    return {
        {"7110", "", "KAIVANNOT"},
        {"7111", "", "Kaivannon pohja"},
        {"", "1", "Pohjan tasaisuus", "2 (Yleinen)", "SYL 2", "50", "0", "100"},
        {"", "", "jatkuu"},
        {},
        {"", "2", "Kantavuus", "3", "", "10", "5", "15"},
        {"", "", "lisäys", "", "", "", "6"},
        {"7120", "", "PERUSTUKSET"},
        {"", "1", "Betonin lujuus", "1", "", "K40"},
        {"", "2", "Pinnan siisteys", "3", "", "1", "", "2"},
    };
}

inline void fillRequirements(lists::ListModel& list, const QString& kind = lists::kind::Requirements) {
    fill(list, kind, qualityHeaders(), requirementRows());
}

// Selects exactly the given rows; the first becomes the current row.
inline void selectRows(lists::ListModel& list, std::initializer_list<int> rows) {
    list.clearSelection();
    for (int r : rows)
        list.setSelected(r, true);
    if (rows.size() > 0) list.setCurrentRow(*rows.begin());
}

} // namespace lists_test
