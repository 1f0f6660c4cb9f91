#pragma once
// What a print run reads from a project: the texts of the basic data window, the project's
// lists, the plain text of the three documents, the field texts of the two cards and the
// pictures. The desktop program fills it from the project's windows, the command line from a
// project file; the reports never see a window.
#include "calc/BasicFields.h"
#include "calc/CostEstimate.h"
#include "platform/Picture.h"

#include <QString>
#include <QStringList>
#include <array>
#include <memory>
#include <vector>

namespace lists {
class ListModel;
}

namespace persist {
struct ProjectFile;
}

namespace print {

struct PrintSource {
    QStringList basicTexts;  // the basic data window's Text1, by index
    QStringList basicCombos; // its Combo1 edit texts, by index
    // The lists, borrowed from their owner. The cost estimate writes the quantity list's row
    // tags (the caption subtotals), as it does in the window.
    const lists::ListModel* parts = nullptr; // "Sillan osanumerointi"
    lists::ListModel* quantities = nullptr;  // "Määräluettelo ja kustannusarvio"
    const lists::ListModel* requirements = nullptr;
    const lists::ListModel* charges = nullptr; // "Panostilat"
    // "Rakennussuunnitelmaselostus", "Koodaussuunnitelma", "Urakan laatusuunnitelma" as plain
    // text with CR LF line ends.
    std::array<QString, 3> documents;
    // The field texts of the card layouts: element i is slot i, element 0 unused.
    QStringList cardFields;
    QStringList chargeFields;
    // The project's pictures: side view, cross-section and logo of the characteristics card,
    // then side view, cross-section and name plate of the charge chamber card.
    std::array<platform::Picture, 6> pictures;
    // The charge chamber card's check boxes: 0 unchecked, 1 checked, 2 greyed.
    std::vector<int> chargeChecks;

    QString basicText(basic::TextField i) const { return basicTexts.value(i); }
    QString basicCombo(basic::ComboField i) const { return basicCombos.value(i); }
    // The fields the cost estimate reads.
    calc::CostInputs costInputs() const;
};

// A print source over lists of its own: a project read from a file.
struct ProjectSource {
    PrintSource source;
    std::vector<std::unique_ptr<lists::ListModel>> lists;
    ProjectSource();
    ~ProjectSource();
    ProjectSource(ProjectSource&&) noexcept;
    ProjectSource& operator=(ProjectSource&&) noexcept;
};

// The print source of a project read from a file: texts, lists, documents (from their rich
// text), pictures, check boxes and the card field texts (the computed ones worked out as the
// card window does before printing). A document whose rich text cannot be read is left empty.
ProjectSource SourceFromProject(const persist::ProjectFile& project);

} // namespace print
