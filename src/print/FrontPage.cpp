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

QStringList linesOf(const QString& field) {
    QString text = field;
    text.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    QStringList lines = text.split(QLatin1Char('\n'));
    while (!lines.isEmpty() && lines.last().trimmed().isEmpty())
        lines.removeLast();
    return lines;
}

} // namespace

void PrintFrontPage(PrintRun& run, Surface& s, int p, const QString& title) {
    const PageModel& m = run.page();
    const PrintSource& src = run.source();
    const double sx = m.ScaleX;
    const double sy = m.ScaleY;
    const double lh = m.LineHeight11;
    const double x = m.OriginX;
    const double right = m.right();
    const double gap = 200 * sx;

    PrintTopHeader(run, s, p, title);
    PrintBottomHeader(run, s, Footer::ProgramName);
    if (run.settings().PrintLogo)
        PrintImage(run, s, run.settings().logo, x, m.OriginY, 5000 * sx, 1000 * sy, false);

    // The bridge and the plan. A long name takes a second line; every line stays on the page.
    double y = m.OriginY + 1500 * sy;
    CellText(run, s, x, right, y, src.basicCombo(basic::RoadDistrict), 11, false, CellAlign::Left);
    y += lh;
    // The name is measured in the bold font it is drawn in.
    const Font nameFont{run.settings().PrinterFont, 16, true, false};
    bool tooLong = false;
    QStringList name = WrapLines(run.fonts(), nameFont, src.basicText(basic::BridgeName).trimmed(),
                                 m.UsableWidth / sx, &tooLong);
    if (tooLong && name.size() <= 2) run.inform(kWordTooLong);
    double nameSize = 16;
    if (name.size() > 2) {
        const FittedText f = run.fit(src.basicText(basic::BridgeName), nameFont, m.UsableWidth / sx, 11, 2);
        name = f.lines;
        nameSize = f.size;
    }
    s.setFont(run.font(nameSize, true));
    for (int i = 0; i < name.size(); ++i) {
        if (i > 0) y += 1.2 * s.textHeight();
        s.text(x, y, name[i]);
    }
    y += 1.3 * lh;
    QString identification = src.basicText(basic::RoadSection).trimmed();
    const QString municipality = src.basicCombo(basic::Municipality).trimmed();
    if (!municipality.isEmpty())
        identification += identification.isEmpty() ? municipality : QStringLiteral(" / ") + municipality;
    CellText(run, s, x, right, y, identification, 11, true, CellAlign::Left);
    y += lh;
    CellText(run, s, x, right, y, QStringLiteral("Suunnitelman numero   ") + src.basicText(basic::PlanNumber),
             11, true, CellAlign::Left);
    y += 2 * lh;
    s.setFont(run.font(16, true));
    for (const QString& line : run.wrap(title, 16, m.UsableWidth)) {
        s.text(x, y, line);
        y += 1.3 * lh;
    }
    y += 2 * 1.25 * lh;

    // The signatures stand at the foot of the page, above the footer; the columns above them end
    // a little above their rule.
    const double signatureY = m.bottom() - 360 * sy - 4.7 * lh;
    const double rule = signatureY - 0.6 * lh;
    const double columnsEnd = rule - 0.3 * lh;

    // On a page wider than tall the technical data, the part numbering and the parties stand
    // side by side; on an upright page the part numbering and the parties follow the data.
    const bool wide = m.UsableWidth > m.UsableHeight;
    const double dataRight = wide ? x + 0.4 * m.UsableWidth - gap : right;
    const double partsX = wide ? x + 0.4 * m.UsableWidth : x;
    const double partiesX = wide ? x + 0.68 * m.UsableWidth : x + 0.45 * m.UsableWidth;

    // The technical data.
    const double dataY = y;
    CellText(run, s, x, dataRight, y, src.basicCombo(basic::BridgeType), 11, true, CellAlign::Left);
    y += lh;
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
    const double valueX = x + labelWidth + 400 * sx;
    for (const Datum& d : data) {
        s.setFont(run.font(11));
        s.text(x, y, QString::fromUtf8(d.label));
        CellText(run, s, valueX, dataRight, y, d.value, 11, false, CellAlign::Left);
        y += lh;
    }
    const double columnsY = wide ? dataY : y + 2 * lh;

    // The part numbering and the parties: a column each, a heading in bold above its lines.
    struct Line {
        QString text;
        bool bold = false;
    };
    std::vector<Line> parts{{QStringLiteral("Rakenneosien numerointi"), true}};
    if (const lists::ListModel* list = src.parts) {
        for (int r = 1; r <= list->rows(); ++r) {
            const QString number = list->cell(r, 1).trimmed();
            const QString partName = list->cell(r, 2).trimmed();
            if (!number.isEmpty() || !partName.isEmpty())
                parts.push_back({number + QStringLiteral("  ") + partName});
        }
    }
    const Parties parties = PartiesOf(run, run.entry(p).document);
    std::vector<Line> companies{{parties.firstRole, true}};
    for (const QString& line : linesOf(parties.firstCompany))
        companies.push_back({line});
    if (!parties.secondRole.isEmpty()) {
        companies.push_back({});
        companies.push_back({parties.secondRole, true});
        for (const QString& line : linesOf(parties.secondCompany))
            companies.push_back({line});
    }
    // A column too long for its room ends with "..." on its last line.
    auto column = [&](const std::vector<Line>& lines, double left, double columnRight) {
        const int room = std::max(0, static_cast<int>((columnsEnd - columnsY) / lh + 1e-6));
        const bool cut = static_cast<int>(lines.size()) > room;
        for (int i = 0; i < room && i < static_cast<int>(lines.size()); ++i) {
            const double lineY = columnsY + i * lh;
            if (cut && i == room - 1) {
                s.setFont(run.font(11));
                s.text(left, lineY, QStringLiteral("..."));
                break;
            }
            CellText(run, s, left, columnRight, lineY, lines[i].text, 11, lines[i].bold, CellAlign::Left);
        }
    };
    column(parts, partsX, partiesX - gap);
    column(companies, partiesX, right);

    // Signature blocks, 1.6 lines apart.
    s.line(x, rule, right, rule);
    s.setFont(run.font(11));
    const QString drewUp = QStringLiteral("Laati: ") + parties.drewUp;
    const QString checked = QStringLiteral("Tarkasti: ") + parties.checked;
    const double dateRight = x + std::max(s.textWidth(drewUp), s.textWidth(checked)) + 1550 * sx;
    const double labelX = std::max(x + 0.45 * m.UsableWidth, dateRight + 500 * sx);
    const QString labels[] = {QStringLiteral("Tarkastus"), QStringLiteral("Hyväksyntä"),
                              QStringLiteral("Geotekninen tarkastus")};
    double labelsWidth = 0;
    for (const QString& l : labels)
        labelsWidth = std::max(labelsWidth, s.textWidth(l));
    const double lineX = labelX + labelsWidth + gap;
    // The signature line, shortened when the page has no room for all of it.
    QString signature = kSignatureLine;
    while (signature.size() > 8 && lineX + s.textWidth(signature) > right)
        signature.chop(1);
    const QString left[][2] = {{drewUp, parties.drewUpDate}, {checked, parties.checkedDate}, {}};
    for (int i = 0; i < 3; ++i) {
        const double rowY = signatureY + i * 1.6 * lh;
        s.setFont(run.font(11));
        s.text(x, rowY, left[i][0]);
        s.textRight(dateRight, rowY, left[i][1]);
        s.text(labelX, rowY, labels[i]);
        s.text(lineX, rowY, signature);
    }
}

} // namespace print
