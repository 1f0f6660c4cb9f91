#include "documents/HeadingIndex.h"

#include "lists/ListModel.h"
#include "lists/ListProcedures.h"

namespace documents {

std::vector<Heading> HeadingsOfList(const lists::ListModel& list) {
    std::vector<Heading> out;
    const int h = lists::headingColumn(list);
    const int e = lists::entryColumn(list);
    const int n = list.rows();
    for (int r = 1; r <= n; ++r) {
        const QStringView littera = list.cell(r, 1);
        const QStringView text = list.cell(r, h);
        const bool road = text == lists::kRoadWorksCaption;
        if (lists::BlankString(littera) && !road) continue;
        Heading heading{littera.trimmed().toString(), text.trimmed().toString(), r,
                        list.rowNumberText(r).toString(), road || lists::CapitalString(text) ? 1 : 2};
        // A caption written on several rows: its capital texts below it belong to it.
        if (lists::CapitalString(text)) {
            for (int k = r + 1; k <= n; ++k) {
                const QStringView more = list.cell(k, h);
                if (!lists::BlankString(list.cell(k, 1)) || (e > 0 && !lists::BlankString(list.cell(k, e))) ||
                    !lists::CapitalString(more) || more == lists::kRoadWorksCaption)
                    break;
                heading.text += QLatin1Char(' ') + more.trimmed().toString();
            }
        }
        heading.text.replace(QLatin1String("\r\n"), QLatin1String(" "));
        out.push_back(std::move(heading));
    }
    return out;
}

QString ShowIndexMode(int kind, const QString& listTag, const QString& textTag) {
    if (kind == 2) return index_mode::Choose;
    if (kind == 3) return index_mode::ActiveList;
    if (!listTag.isEmpty()) {
        if (listTag == lists::kind::QuantityList || listTag == lists::kind::NoEdit)
            return index_mode::QuantityList;
        if (listTag == lists::kind::Requirements) return index_mode::Requirements;
        return {};
    }
    if (textTag == QLatin1String("Rakennussuunnitelmaselostus"))
        return kind == 0 ? index_mode::PlanJump : index_mode::PlanInsert;
    return {};
}

bool IsTextIndexMode(const QString& mode) {
    return mode == index_mode::PlanJump || mode == index_mode::PlanInsert || mode == index_mode::EditorJump ||
           mode == index_mode::EditorInsert;
}

bool IsInsertIndexMode(const QString& mode) {
    return mode == index_mode::PlanInsert || mode == index_mode::EditorInsert;
}

QString IndexTextHeader(const QString& mode, const QString& sourceKind) {
    const QString requirement = QStringLiteral("Vaatimus");
    const QString workPhase = QString::fromUtf8("Työvaihe");
    if (mode == index_mode::Requirements || mode == index_mode::Choose) return requirement;
    if (mode == index_mode::QuantityList || mode == index_mode::UnitPriceBase ||
        mode == index_mode::RequirementBase)
        return workPhase;
    return lists::isQualityKind(sourceKind) ? requirement : workPhase;
}

QString HeadingLine(const Heading& heading) {
    return heading.littera + QLatin1Char('\t') + heading.text;
}

} // namespace documents
