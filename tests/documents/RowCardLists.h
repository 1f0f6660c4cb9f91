#pragma once
// Lists for the row editor and heading index tests, written as tables of cell texts.
#include "calc/CalcLists.h"
#include "common/ListHeaders.h"
#include "lists/ListModel.h"

#include <QStringList>
#include <vector>

namespace row_card_test {

using testing_support::quantityHeaders;
using testing_support::requirementHeaders;

// A list of the kind; rows hold the cells before "Rivi" and are numbered 1, 2, ...
using calc_test::fillList;

// A requirement row: identifier, text, type, method (column 10) and result (column 21); more
// cells by column number.
inline QStringList requirement(const QString& id, const QString& text, const QString& type,
                               const QString& method, const QString& result,
                               std::vector<std::pair<int, QString>> more = {}) {
    QStringList cells(24);
    cells[1] = id;
    cells[2] = text;
    cells[3] = type;
    cells[9] = method;
    cells[20] = result;
    for (const auto& [column, value] : more)
        cells[column - 1] = value;
    return cells;
}

// A project requirement list for inspecting:
//  1 caption 7110, 2 blank, 3 subcaption 7111, 4 req 1 (type 1, M, Kyllä), 5 continuation,
//  6 req 2 (type 2, K, plan text, Ei), 7 req 3 (type 3, A, document, unchecked),
//  8 "TIETYÖT SILTAPAIKALLA", 9 req 4 (type 3, T, report texts, unchecked), 10 subcaption 7200,
//  11 req 5 (type 2, M, attachment, "e").
inline void inspectionList(lists::ListModel& list) {
    fillList(list, QStringLiteral("Laatuvaatimukset"), requirementHeaders(),
             {
                 {"7110", "", "KAIVUT JA LOUHINNAT"},
                 {},
                 {"7111", "", "Kaivu"},
                 requirement("1", "Kaivannon pohjan korkeusasema", "1 ", "M", "Kyllä", {{11, "2"}}),
                 {"", "", "jatkoteksti"},
                 requirement("2", "Pohja katselmoidaan", "2 ", "K", "Ei", {{12, "Katselmus kirjataan"}}),
                 requirement("3", "Ainestodistus", "3 ", "A", "", {{13, "selostus.pdf"}}),
                 {"", "", "TIETYÖT SILTAPAIKALLA"},
                 requirement("4", "Penger", "3", "T", "", {{15, "Mitattu"}, {20, "Hyvä"}}),
                 {"7200", "", "Alikulku"},
                 requirement("5", "Tiiviys", "2", "M", "e", {{14, "liite.txt"}}),
             });
}

} // namespace row_card_test
