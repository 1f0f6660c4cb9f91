#pragma once
// A project for the print tests, built in memory, and what a page puts down.
#include "common/ListHeaders.h"
#include "lists/ListModel.h"
#include "lists/ListProcedures.h"
#include "print/PrintRun.h"
#include "print/Surface.h"

#include <QStringList>
#include <memory>
#include <vector>

namespace print_test {

inline void fillList(lists::ListModel& list, const QString& kind, int columns,
                     const std::vector<QStringList>& rows) {
    std::vector<lists::Column> cols(columns, lists::Column{QStringLiteral("SARAKE"), 1000});
    cols.push_back({QStringLiteral("Rivi"), 0});
    std::vector<lists::Row> data;
    for (size_t i = 0; i < rows.size(); ++i) {
        lists::Row row;
        row.cells = rows[i];
        row.cells.resize(columns);
        row.cells.append(lists::formatRowNumber(static_cast<long long>(i + 1)));
        data.push_back(std::move(row));
    }
    list.setKind(kind);
    list.reset(std::move(cols), std::move(data));
}

// A priced entry of the quantity list.
inline QStringList entry(const QString& text, const QString& quantity = QStringLiteral("10"),
                         const QString& unit = QStringLiteral("m3"),
                         const QString& price = QStringLiteral("20,00")) {
    return {QString(), text, QStringLiteral("100"), quantity, unit, price, QString()};
}

struct TestProject {
    lists::ListModel parts;
    lists::ListModel quantities;
    lists::ListModel requirements;
    lists::ListModel charges;
    print::PrintSource source;
    print::Selection selection;

    TestProject() {
        source.basicTexts = QStringList(14, QString());
        source.basicCombos = QStringList(18, QString());
        source.basicTexts[0] = QStringLiteral("Kirkkojoen silta");
        source.basicTexts[1] = QStringLiteral("Vt 4, tieosa 215");
        source.basicTexts[2] = QStringLiteral("KeS-2817");
        source.basicTexts[9] = QStringLiteral("Suunnittelu Oy\r\nKatu 1\r\n40100 JYVÄSKYLÄ");
        source.basicTexts[10] = QStringLiteral("Rakennus Oy\r\nTie 3");
        source.basicTexts[11] = QStringLiteral("Tiehallinto\r\nPL 250");
        source.basicCombos[2] = QStringLiteral("Keski-Suomi");
        source.basicCombos[3] = QStringLiteral("104");
        source.basicCombos[4] = QStringLiteral("€");
        source.basicCombos[5] = QStringLiteral("Matti Virtanen");
        source.basicCombos[8] = QStringLiteral("14.3.2006");
        source.basicCombos[9] = QStringLiteral("Jyväskylä");
        source.basicCombos[10] = QStringLiteral("127");
        source.basicCombos[11] = QStringLiteral("25");
        source.basicCombos[12] = QStringLiteral("22");
        fillList(parts, lists::kind::BridgeParts, 2,
                 {{QStringLiteral("100"), QStringLiteral("Maatuki 1")},
                  {QStringLiteral("400"), QStringLiteral("Päällysrakenne")}});
        fillList(quantities, lists::kind::QuantityList, 7, {});
        fillList(requirements, lists::kind::Requirements, 24, {});
        fillList(charges, lists::kind::ChargeChambers, 5, {});
        source.parts = &parts;
        source.quantities = &quantities;
        source.requirements = &requirements;
        source.charges = &charges;
    }

    void setQuantities(const std::vector<QStringList>& rows) {
        fillList(quantities, lists::kind::QuantityList, 7, rows);
    }

    // A run of the given documents, printed on 23.11.2026, laid out for `layout`.
    std::unique_ptr<print::PrintRun> run(std::initializer_list<int> documents,
                                         QPageLayout layout = print::DefaultPageLayout()) {
        selection = print::Selection{};
        for (int d : documents)
            selection.DocumentSelected[d] = true;
        print::PrintSettings settings;
        settings.printedOn = QDate(2026, 11, 23);
        auto r = std::make_unique<print::PrintRun>(source, selection, settings);
        r->setInform([](const QString&) {});
        r->setDevice(print::MetricsOf(layout, print::kDefaultResolution));
        return r;
    }
};

// What page p puts down, drawn on a surface that only records.
inline std::vector<print::TextItem> recordPage(print::PrintRun& run, int p) {
    std::vector<print::TextItem> items;
    print::Surface surface(run.fonts());
    surface.setRecorder(&items);
    run.PrintPage(surface, p);
    return items;
}

inline const print::TextItem* find(const std::vector<print::TextItem>& items, const QString& text) {
    for (const print::TextItem& i : items)
        if (i.text == text) return &i;
    return nullptr;
}

inline QStringList texts(const std::vector<print::TextItem>& items) {
    QStringList out;
    for (const print::TextItem& i : items)
        out << i.text;
    return out;
}

// Pairs of texts on one line of a page that are drawn over each other, as "a | b".
inline QStringList overprinted(print::PrintRun& run, const std::vector<print::TextItem>& items) {
    QStringList out;
    auto right = [&run](const print::TextItem& i) { return i.x + run.fonts().width(i.font, i.text); };
    auto bottom = [&run](const print::TextItem& i) { return i.y + run.fonts().height(i.font); };
    for (size_t a = 0; a < items.size(); ++a)
        for (size_t b = a + 1; b < items.size(); ++b) {
            const print::TextItem& i = items[a];
            const print::TextItem& j = items[b];
            if (i.text.trimmed().isEmpty() || j.text.trimmed().isEmpty()) continue;
            const bool sameLine = i.y < bottom(j) - 1 && j.y < bottom(i) - 1;
            if (sameLine && i.x < right(j) - 1 && j.x < right(i) - 1)
                out << i.text + QStringLiteral(" | ") + j.text;
        }
    return out;
}

} // namespace print_test
