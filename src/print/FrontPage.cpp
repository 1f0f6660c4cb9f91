// The front page that opens every list, quality and text document, and pictures on pages.
#include "lists/ListModel.h"
#include "platform/Picture.h"
#include "print/PrintRun.h"
#include "print/Reports.h"

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

    PrintTopHeader(run, s, p, title);
    PrintBottomHeader(run, s, 0);
    if (run.settings().PrintLogo)
        PrintImage(run, s, run.settings().logo, x, m.OriginY, 5000 * sx, 1000 * sy, false);

    // The bridge and the plan.
    double y = m.OriginY + 1500 * sy;
    s.setFont(run.font(11));
    s.text(x, y, src.basicCombo(2));
    y += lh;
    s.setFont(run.font(16, true));
    s.text(x, y, src.basicText(0));
    y += 1.3 * lh;
    s.setFont(run.font(11, true));
    QString identification = src.basicText(1).trimmed();
    const QString municipality = src.basicCombo(9).trimmed();
    if (!municipality.isEmpty())
        identification += identification.isEmpty() ? municipality : QStringLiteral(" / ") + municipality;
    s.text(x, y, identification);
    y += lh;
    s.text(x, y, QStringLiteral("Suunnitelman numero   ") + src.basicText(2));
    y += 2 * lh;
    s.setFont(run.font(16, true));
    for (const QString& line : run.wrap(title, 16, m.UsableWidth)) {
        s.text(x, y, line);
        y += 1.3 * lh;
    }
    y += 2 * 1.25 * lh;

    // The technical data.
    s.setFont(run.font(11, true));
    s.text(x, y, src.basicCombo(0));
    y += lh;
    struct Datum {
        const char* label;
        QString value;
    };
    const Datum data[] = {
        {"Jännemitta (m)", src.basicText(3)},       {"Hyödyllinen leveys (m)", src.basicText(8)},
        {"Vapaa-aukko (m)", src.basicText(5)},      {"Vinous (gon)", src.basicText(7)},
        {"Kokonaispituus (m)", src.basicText(4)},   {"Kohtisuora vapaa-aukko (m)", src.basicText(12)},
        {"Alikulkukorkeus (m)", src.basicText(13)}, {"Kulkukorkeus (m)", QString()},
        {"Kannen pituus (m)", src.basicText(6)},    {"Suunnittelukuorma", src.basicCombo(1)}};
    s.setFont(run.font(11));
    double labelWidth = 0;
    for (const Datum& d : data)
        labelWidth = std::max(labelWidth, s.textWidth(QString::fromUtf8(d.label)));
    const double valueX = x + labelWidth + 400 * sx;
    for (const Datum& d : data) {
        s.text(x, y, QString::fromUtf8(d.label));
        s.text(valueX, y, d.value);
        y += lh;
    }
    y += 2 * lh;

    // The signatures stand at the foot of the page, above the footer.
    const double signatureY = m.bottom() - 360 * sy - 4.7 * lh;

    // The part numbering on the left, the parties on the right.
    const double columnY = y;
    s.setFont(run.font(11, true));
    s.text(x, y, QStringLiteral("Rakenneosien numerointi"));
    y += lh;
    s.setFont(run.font(11));
    const double partsEnd = signatureY - 1.5 * lh;
    const double rightX = x + 0.45 * m.UsableWidth;
    if (const lists::ListModel* parts = src.parts) {
        for (int r = 1; r <= parts->rows(); ++r) {
            const QString number = parts->cell(r, 1).trimmed();
            const QString name = parts->cell(r, 2).trimmed();
            if (number.isEmpty() && name.isEmpty()) continue;
            if (y + lh > partsEnd) {
                s.text(x, y, QStringLiteral("..."));
                break;
            }
            // A long name is cut at the parties' column rather than printed over it.
            QString line = number + QStringLiteral("  ") + name;
            while (line.size() > 1 && x + s.textWidth(line) > rightX - 200 * sx)
                line.chop(1);
            s.text(x, y, line);
            y += lh;
        }
    }

    const Parties parties = PartiesOf(run, run.entry(p).document);
    y = columnY;
    auto party = [&](const QString& role, const QString& company) {
        // The first heading stands beside the part numbering's; a landscape page may have no
        // room left for the second party above the signatures.
        if (y > columnY && y + lh > partsEnd) return;
        s.setFont(run.font(11, true));
        s.text(rightX, y, role);
        y += lh;
        s.setFont(run.font(11));
        for (const QString& line : linesOf(company)) {
            if (y + lh > partsEnd) break;
            s.text(rightX, y, line);
            y += lh;
        }
    };
    party(parties.firstRole, parties.firstCompany);
    if (!parties.secondRole.isEmpty()) {
        y += lh;
        party(parties.secondRole, parties.secondCompany);
    }

    // Signature blocks, 1.6 lines apart.
    const double rule = signatureY - 0.6 * lh;
    s.line(x, rule, m.right(), rule);
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
    const double lineX = labelX + labelsWidth + 200 * sx;
    // The signature line, shortened when the page has no room for all of it.
    QString signature = kSignatureLine;
    while (signature.size() > 8 && lineX + s.textWidth(signature) > m.right())
        signature.chop(1);
    const QString left[][2] = {{drewUp, parties.drewUpDate}, {checked, parties.checkedDate}, {}};
    for (int i = 0; i < 3; ++i) {
        const double rowY = signatureY + i * 1.6 * lh;
        s.text(x, rowY, left[i][0]);
        s.textRight(dateRight, rowY, left[i][1]);
        s.text(labelX, rowY, labels[i]);
        s.text(lineX, rowY, signature);
    }
}

} // namespace print
