// The page header and footer, and who signs each document.
#include "lists/ListProcedures.h"
#include "print/PrintRun.h"
#include "print/Reports.h"
#include "print/TextLines.h"

#include <algorithm>

namespace print {

namespace {

const QString kProgramTitle = QStringLiteral("TAMRIK 2006");

// The header's distances in twips (scaled) and proportions.
constexpr double kIdentificationShare = 0.6; // of the usable width, for the bridge's first line
constexpr double kTitleGap = 250;            // around the title, from its neighbours
constexpr double kLeastTitleRoom = 1000;     // the title's room at the least
constexpr double kHeaderRule = 560;          // the rule under the header, below the top

bool anyFilled(const PrintSource& s, std::initializer_list<basic::ComboField> combos) {
    return std::any_of(combos.begin(), combos.end(),
                       [&s](basic::ComboField i) { return !lists::BlankString(s.basicCombo(i)); });
}

} // namespace

Parties PartiesOf(const PrintRun& run, int document) {
    const PrintSource& s = run.source();
    bool contractor = document >= doc::QualityPlan || document == kQualitySummary;
    // The requirements of document 7 are drawn up by either party: the contractor's once any of
    // the contractor's names or dates is filled in. So is a comparison of versions.
    if (document == doc::AllRequirements || document == doc::Comparison)
        contractor = anyFilled(s, {basic::ContractorDrewUp, basic::ContractorDrewUpDate,
                                   basic::ContractorChecked, basic::ContractorCheckedDate});
    Parties p;
    if (contractor) {
        p.firstRole = QStringLiteral("URAKOITSIJA");
        p.firstCompany = s.basicText(basic::ContractorCompany);
        p.secondRole = QStringLiteral("TILAAJA");
        p.secondCompany = s.basicText(basic::Client);
        p.drewUp = s.basicCombo(basic::ContractorDrewUp);
        p.drewUpDate = s.basicCombo(basic::ContractorDrewUpDate);
        p.checked = s.basicCombo(basic::ContractorChecked);
        p.checkedDate = s.basicCombo(basic::ContractorCheckedDate);
    } else {
        p.firstRole = QStringLiteral("SUUNNITTELIJA");
        p.firstCompany = s.basicText(basic::DesignerCompany);
        p.drewUp = s.basicCombo(basic::DesignerDrewUp);
        p.drewUpDate = s.basicCombo(basic::DesignerDrewUpDate);
        p.checked = s.basicCombo(basic::DesignerChecked);
        p.checkedDate = s.basicCombo(basic::DesignerCheckedDate);
    }
    return p;
}

bool PrintFrontPageOrHeader(PrintRun& run, Surface& s, int p, const QString& title) {
    if (run.entry(p).number == 1) {
        PrintFrontPage(run, s, p, title);
        return false;
    }
    PrintTopHeader(run, s, p, title);
    return true;
}

void PrintTopHeader(PrintRun& run, Surface& s, int p, const QString& title) {
    const PageModel& m = run.page();
    const PageEntry& e = run.entry(p);
    s.setFont(run.font(9));
    const double right = m.right();
    s.textRight(right, m.OriginY, QStringLiteral("Sivu %1 (%2)").arg(e.number).arg(e.count));
    const QString printed =
        QStringLiteral("Tulostettu: ") + run.settings().printedOn.toString(QStringLiteral("d.M.yyyy"));
    s.textRight(right, m.OriginY + m.LineHeight9, printed);
    if (e.number < 2) return;

    const PrintSource& src = run.source();
    // The bridge, its road section and municipality: only the parts that have text are joined.
    auto join = [](const QStringList& parts, const QString& separator) {
        QStringList filled;
        for (const QString& part : parts)
            if (!part.trimmed().isEmpty()) filled << part.trimmed();
        return filled.join(separator);
    };
    const QString identification = join(
        {src.basicText(basic::BridgeName),
         join({src.basicText(basic::RoadSection), src.basicCombo(basic::Municipality)}, QStringLiteral("/"))},
        QStringLiteral("  "));
    // One line, broken between words. An identification that goes on ends with "…" within the
    // width its first line took, so that the title beside it keeps its room (the mark takes the
    // end of the line's last word when it must), and the run says a value was cut.
    const QStringList identificationLines = run.wrap(identification, 9, kIdentificationShare * m.UsableWidth);
    QString first = identificationLines.value(0).trimmed();
    if (identificationLines.size() > 1) {
        const Font font{run.settings().PrinterFont, 9};
        first = CutToWidth(run.fonts(), font, first, QStringLiteral(" …"), run.fonts().width(font, first));
        run.inform(kValueCut);
    }
    s.text(m.OriginX, m.OriginY, first);
    const Parties parties = PartiesOf(run, e.document);
    s.text(m.OriginX, m.OriginY + m.LineHeight9,
           QStringLiteral("Laati: ") + parties.drewUp + QLatin1Char(' ') + parties.drewUpDate);

    // The title between the identification and the print date, at most two lines. A long
    // identification can leave it less room than one of its words needs: then the title takes
    // a smaller size rather than be split inside a word.
    const double titleX = m.OriginX + s.textWidth(first) + kTitleGap * m.ScaleX;
    const double titleEnd = right - s.textWidth(printed) - kTitleGap * m.ScaleX;
    const double room = std::max(titleEnd - titleX, kLeastTitleRoom * m.ScaleX) / m.ScaleX;
    const Font titleFont{run.settings().PrinterFont, 9};
    bool tooLong = false;
    QStringList lines = WrapLines(run.fonts(), titleFont, title, room, &tooLong);
    double drop = 0; // a smaller title sits on the line's baseline
    if (tooLong || lines.size() > 2) {
        const FittedText fitted = run.fit(title, titleFont, room, 7, 2);
        lines = fitted.lines;
        drop = s.fonts().ascent(run.font(9)) - s.fonts().ascent(run.font(fitted.size));
        s.setFont(run.font(fitted.size));
    }
    for (int i = 0; i < std::min<qsizetype>(2, lines.size()); ++i)
        s.text(titleX, m.OriginY + drop + i * m.LineHeight9, lines[i]);
    s.setFont(run.font(9));

    const double y = m.OriginY + kHeaderRule * m.ScaleY;
    s.line(m.OriginX, y, right, y);
}

void PrintBottomHeader(PrintRun& run, Surface& s, Footer kind) {
    const PageModel& m = run.page();
    const double lineY = m.bottom() - kFooterRule * m.ScaleY;
    s.line(m.OriginX, lineY, m.right(), lineY);
    s.setFont(run.font(9));
    const double y = m.bottom() - m.LineHeight11;
    if (kind == Footer::ProgramName) {
        s.text(m.OriginX, y, kProgramTitle);
    } else {
        s.text(
            m.OriginX, y,
            QStringLiteral("Ty = vaatimustyyppi (1 = siltakohtainen, 2 = KLV:n mukainen, 3 = ohjeellinen)"));
        const QString methods = QStringLiteral(
            "Tt = tarkastustapa (M = mittaus, K = katselmus, T = todetaan, A = ainestodistus ym.), Pa = painoarvo (0,1,2,3,4,5)");
        s.text(m.OriginX, y + m.LineHeight9, methods);
        s.textRight(m.right(), y, kProgramTitle);
    }
}

} // namespace print
