// The front page that opens every list, quality and text document, and pictures on pages.
#include "lists/ListModel.h"
#include "platform/Picture.h"
#include "print/PrintRun.h"
#include "print/Reports.h"
#include "print/TextLines.h"

#include <algorithm>
#include <cmath>

namespace print {

void PrintImage(PrintRun& run, Surface& s, const platform::Picture& picture, double x, double y, double w,
                double h, bool centred) {
    if (picture.isNull()) return;
    const QSize size = picture.sizeHint();
    if (!size.isValid() || size.isEmpty()) {
        run.inform(kBadPicture);
        return;
    }
    const QRectF box = centred ? QRectF(x - w / 2, y - h / 2, w, h) : QRectF(x, y, w, h);
    s.picture(picture, platform::Picture::fitInto(QSizeF(size), box,
                                                  centred ? Qt::AlignCenter : Qt::AlignLeft | Qt::AlignTop));
}

namespace {

const QString kSignatureLine = QStringLiteral("__________________________");

// The front page's distances in twips (scaled by the page) and its proportions.
constexpr double kColumnGap = 200;  // between columns, and after the signature labels
constexpr double kLogoWidth = 5000; // the logo's box at the top left
constexpr double kLogoHeight = 1000;
constexpr double kBridgeBlockTop = 1500;    // the road district's line below the top
constexpr double kValueIndent = 400;        // the data's values after their longest label
constexpr double kSignatureRows = 4.7;      // line heights from the signatures to the footer's rule
constexpr double kSignatureRowStep = 1.6;   // line heights between signature rows
constexpr double kDateIndent = 1550;        // the dates' right edge after the longer name
constexpr double kLabelIndent = 500;        // the signature labels after the dates
constexpr double kWideDataShare = 0.4;      // a wide page: the data's share of the width
constexpr double kWidePartiesAt = 0.68;     // a wide page: where the parties' column starts
constexpr double kUprightPartiesAt = 0.45;  // an upright page: where the parties' column starts
constexpr double kSignatureLabelsAt = 0.45; // the signature labels at least this far in

QStringList linesOf(const QString& field) {
    QString text = field;
    text.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    QStringList lines = text.split(QLatin1Char('\n'));
    while (!lines.isEmpty() && lines.last().trimmed().isEmpty())
        lines.removeLast();
    return lines;
}

// What every block of the front page works with.
struct Front {
    PrintRun& run;
    Surface& s;
    const PageModel& m;
    const PrintSource& src;
    double sx, sy, lh, x, right, gap;
};

// A line of a column: the part numbering or the parties.
struct Line {
    QString text;
    bool bold = false;
};

// The bridge and the plan, then the document's title. A long name takes a second line; every
// line stays on the page. Returns where the technical data starts.
double printBridgeBlock(const Front& f, const QString& title) {
    PrintRun& run = f.run;
    Surface& s = f.s;
    const PageModel& m = f.m;
    const double lh = f.lh;
    double y = m.OriginY + kBridgeBlockTop * f.sy;
    CellText(run, s, f.x, f.right, y, f.src.basicCombo(basic::RoadDistrict), 11, false, CellAlign::Left);
    y += lh;
    // The name is measured in the bold font it is drawn in.
    const Font nameFont{run.settings().PrinterFont, 16, true, false};
    bool tooLong = false;
    QStringList name = WrapLines(run.fonts(), nameFont, f.src.basicText(basic::BridgeName).trimmed(),
                                 m.UsableWidth / f.sx, &tooLong);
    if (tooLong && name.size() <= 2) run.inform(kWordTooLong);
    double nameSize = 16;
    if (name.size() > 2) {
        const FittedText fitted =
            run.fit(f.src.basicText(basic::BridgeName), nameFont, m.UsableWidth / f.sx, 11, 2);
        name = fitted.lines;
        nameSize = fitted.size;
    }
    s.setFont(run.font(nameSize, true));
    for (int i = 0; i < name.size(); ++i) {
        if (i > 0) y += 1.2 * s.textHeight();
        s.text(f.x, y, name[i]);
    }
    y += 1.3 * lh;
    QString identification = f.src.basicText(basic::RoadSection).trimmed();
    const QString municipality = f.src.basicCombo(basic::Municipality).trimmed();
    if (!municipality.isEmpty())
        identification += identification.isEmpty() ? municipality : QStringLiteral(" / ") + municipality;
    CellText(run, s, f.x, f.right, y, identification, 11, true, CellAlign::Left);
    y += lh;
    CellText(run, s, f.x, f.right, y,
             QStringLiteral("Suunnitelman numero   ") + f.src.basicText(basic::PlanNumber), 11, true,
             CellAlign::Left);
    y += 2 * lh;
    s.setFont(run.font(16, true));
    for (const QString& line : run.wrap(title, 16, m.UsableWidth)) {
        s.text(f.x, y, line);
        y += 1.3 * lh;
    }
    return y + 2 * 1.25 * lh;
}

// The bridge's type and dimensions from `y`, the values between their labels and `dataRight`.
// Returns the line below the last one.
double printTechnicalData(const Front& f, double y, double dataRight) {
    PrintRun& run = f.run;
    Surface& s = f.s;
    const PrintSource& src = f.src;
    CellText(run, s, f.x, dataRight, y, src.basicCombo(basic::BridgeType), 11, true, CellAlign::Left);
    y += f.lh;
    struct Datum {
        const char* label;
        QString value;
    };
    const Datum data[] = {{"Jännemitta (m)", src.basicText(basic::Span)},
                          {"Hyödyllinen leveys (m)", src.basicText(basic::UsefulWidth)},
                          {"Vapaa-aukko (m)", src.basicText(basic::FreeOpening)},
                          {"Vinous (gon)", src.basicText(basic::Skew)},
                          {"Kokonaispituus (m)", src.basicText(basic::TotalLength)},
                          {"Kohtisuora vapaa-aukko (m)", src.basicText(basic::SquareFreeOpening)},
                          {"Alikulkukorkeus (m)", src.basicText(basic::UnderpassHeight)},
                          {"Kulkukorkeus (m)", QString()},
                          {"Kannen pituus (m)", src.basicText(basic::DeckLength)},
                          {"Suunnittelukuorma", src.basicCombo(basic::DesignLoad)}};
    s.setFont(run.font(11));
    double labelWidth = 0;
    for (const Datum& d : data)
        labelWidth = std::max(labelWidth, s.textWidth(QString::fromUtf8(d.label)));
    const double valueX = f.x + labelWidth + kValueIndent * f.sx;
    for (const Datum& d : data) {
        s.setFont(run.font(11));
        s.text(f.x, y, QString::fromUtf8(d.label));
        CellText(run, s, valueX, dataRight, y, d.value, 11, false, CellAlign::Left);
        y += f.lh;
    }
    return y;
}

// The part numbering and the parties: a column each between `top` and `bottom`, a heading in
// bold above its lines. A column too long for its room ends with "..." on its last line.
void printPartsAndParties(const Front& f, const Parties& parties, double top, double bottom, double partsX,
                          double partiesX) {
    std::vector<Line> parts{{QStringLiteral("Rakenneosien numerointi"), true}};
    if (const lists::ListModel* list = f.src.parts) {
        for (int r = 1; r <= list->rows(); ++r) {
            const QString number = list->cell(r, 1).trimmed().toString();
            const QString partName = list->cell(r, 2).trimmed().toString();
            if (!number.isEmpty() || !partName.isEmpty())
                parts.push_back({number + QStringLiteral("  ") + partName});
        }
    }
    std::vector<Line> companies{{parties.firstRole, true}};
    for (const QString& line : linesOf(parties.firstCompany))
        companies.push_back({line});
    if (!parties.secondRole.isEmpty()) {
        companies.push_back({});
        companies.push_back({parties.secondRole, true});
        for (const QString& line : linesOf(parties.secondCompany))
            companies.push_back({line});
    }
    auto column = [&](const std::vector<Line>& lines, double left, double columnRight) {
        const int room = std::max(0, static_cast<int>((bottom - top) / f.lh + 1e-6));
        const bool cut = static_cast<int>(lines.size()) > room;
        for (int i = 0; i < room && i < static_cast<int>(lines.size()); ++i) {
            const double lineY = top + i * f.lh;
            if (cut && i == room - 1) {
                f.s.setFont(f.run.font(11));
                f.s.text(left, lineY, QStringLiteral("..."));
                break;
            }
            CellText(f.run, f.s, left, columnRight, lineY, lines[i].text, 11, lines[i].bold, CellAlign::Left);
        }
    };
    column(parts, partsX, partiesX - f.gap);
    column(companies, partiesX, f.right);
}

// The rule and the signature blocks below it from `top`, 1.6 lines apart.
void printSignatures(const Front& f, const Parties& parties, double rule, double top) {
    Surface& s = f.s;
    s.line(f.x, rule, f.right, rule);
    s.setFont(f.run.font(11));
    const QString drewUp = QStringLiteral("Laati: ") + parties.drewUp;
    const QString checked = QStringLiteral("Tarkasti: ") + parties.checked;
    const double dateRight = f.x + std::max(s.textWidth(drewUp), s.textWidth(checked)) + kDateIndent * f.sx;
    const double labelX =
        std::max(f.x + kSignatureLabelsAt * f.m.UsableWidth, dateRight + kLabelIndent * f.sx);
    const QString labels[] = {QStringLiteral("Tarkastus"), QStringLiteral("Hyväksyntä"),
                              QStringLiteral("Geotekninen tarkastus")};
    double labelsWidth = 0;
    for (const QString& l : labels)
        labelsWidth = std::max(labelsWidth, s.textWidth(l));
    const double lineX = labelX + labelsWidth + f.gap;
    // The signature line, shortened when the page has no room for all of it.
    QString signature = kSignatureLine;
    while (signature.size() > 8 && lineX + s.textWidth(signature) > f.right)
        signature.chop(1);
    const QString left[][2] = {{drewUp, parties.drewUpDate}, {checked, parties.checkedDate}, {}};
    for (int i = 0; i < 3; ++i) {
        const double rowY = top + i * kSignatureRowStep * f.lh;
        s.setFont(f.run.font(11));
        s.text(f.x, rowY, left[i][0]);
        s.textRight(dateRight, rowY, left[i][1]);
        s.text(labelX, rowY, labels[i]);
        s.text(lineX, rowY, signature);
    }
}

} // namespace

void PrintFrontPage(PrintRun& run, Surface& s, int p, const QString& title) {
    const PageModel& m = run.page();
    const double sx = m.ScaleX;
    const double sy = m.ScaleY;
    const double lh = m.LineHeight11;
    const Front f{run, s, m, run.source(), sx, sy, lh, m.OriginX, m.right(), kColumnGap * sx};

    PrintTopHeader(run, s, p, title);
    PrintBottomHeader(run, s, Footer::ProgramName);
    if (run.settings().PrintLogo)
        PrintImage(run, s, run.settings().logo, f.x, m.OriginY, kLogoWidth * sx, kLogoHeight * sy, false);
    const double dataY = printBridgeBlock(f, title);

    // The signatures stand at the foot of the page, above the footer; the columns above them end
    // a little above their rule.
    const double signatureY = m.bottom() - kFooterRule * sy - kSignatureRows * lh;
    const double rule = signatureY - 0.6 * lh;
    const double columnsEnd = rule - 0.3 * lh;

    // On a page wider than tall the technical data, the part numbering and the parties stand
    // side by side; on an upright page the part numbering and the parties follow the data.
    const bool wide = m.UsableWidth > m.UsableHeight;
    const double dataRight = wide ? f.x + kWideDataShare * m.UsableWidth - f.gap : f.right;
    const double partsX = wide ? f.x + kWideDataShare * m.UsableWidth : f.x;
    const double partiesX =
        wide ? f.x + kWidePartiesAt * m.UsableWidth : f.x + kUprightPartiesAt * m.UsableWidth;

    const double dataEnd = printTechnicalData(f, dataY, dataRight);
    const double columnsY = wide ? dataY : dataEnd + 2 * lh;
    const Parties parties = PartiesOf(run, run.entry(p).document);
    printPartsAndParties(f, parties, columnsY, columnsEnd, partsX, partiesX);
    printSignatures(f, parties, rule, signatureY);
}

} // namespace print
