#include "print/PrintSource.h"

#include "lists/ListModel.h"
#include "lists/ListProcedures.h"
#include "persist/ProjectFile.h"
#include "platform/Rtf.h"

#include <QTextDocument>

namespace print {

calc::CostInputs PrintSource::costInputs() const {
    return calc::CostInputsOf(basicCombos);
}

ProjectSource::ProjectSource() = default;
ProjectSource::~ProjectSource() = default;
ProjectSource::ProjectSource(ProjectSource&&) noexcept = default;
ProjectSource& ProjectSource::operator=(ProjectSource&&) noexcept = default;

ProjectSource SourceFromProject(const persist::ProjectFile& project) {
    ProjectSource out;
    PrintSource& s = out.source;
    const persist::ProjectContent& c = project.content;
    s.basicTexts = c.windows[0].texts;
    s.basicCombos = c.windows[0].combos;

    auto own = [&](const persist::WindowRecord& record, std::size_t index, const QString& kind) {
        persist::ListRecord empty;
        const persist::ListRecord& r = index < record.lists.size() ? record.lists[index] : empty;
        out.lists.push_back(persist::ListFromRecord(r, kind));
        return out.lists.back().get();
    };
    s.parts = own(c.windows[0], 0, lists::kind::BridgeParts);
    s.quantities = own(c.windows[1], 0, lists::kind::QuantityList);
    s.requirements = own(c.windows[1], 1, lists::kind::Requirements);
    s.charges = own(c.windows[3], 0, lists::kind::ChargeChambers);

    for (int n = 0; n < 3; ++n) {
        if (c.documents[n].isEmpty()) continue;
        QTextDocument document;
        if (platform::ReadRtf(c.documents[n], document))
            s.documents[n] = platform::plainTextWithCrLf(document);
    }
    for (int k = 0; k < 6; ++k) {
        const persist::Member& m = project.members[k + 1];
        if (!m.data.isEmpty()) s.pictures[k] = platform::Picture::fromBytes(m.data, m.type);
    }
    for (const QString& check : c.checks)
        s.chargeChecks.push_back(check.toInt());
    return out;
}

} // namespace print
