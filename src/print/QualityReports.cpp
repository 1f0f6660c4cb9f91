// The quality requirement documents (2 and 7 to 12) and the summary pages of the bridge's
// quality report.
#include "calc/NumberText.h"
#include "calc/QualityIndex.h"
#include "lists/ListModel.h"
#include "lists/ListProcedures.h"
#include "lists/Columns.h"
#include "print/PrintRun.h"
#include "print/Reports.h"
#include "print/WorkPhase.h"

#include <algorithm>
#include <cmath>

namespace print {

namespace {

using namespace lists::requirementCol;

// Room above and below the text inside a frame, and between two requirements.
constexpr double kFramePad = 30;
constexpr double kRequirementGap = 120;
// The lines a text cut at the page's foot keeps free for each section after it, at most.
constexpr int kKeptLines = 4;

QChar firstUpper(const QString& text) {
    const QString t = text.trimmed();
    return t.isEmpty() ? QChar() : t.front().toUpper();
}

// The x positions of the column grid, in eighteenths of the usable width.
struct Grid {
    std::array<double, 73> x{};
    double operator[](int i) const { return x[i]; }
};

Grid gridOf(const PageModel& m) {
    Grid g;
    auto at = [&m](double k) { return std::round(m.OriginX + k / 18.0 * m.UsableWidth); };
    const std::pair<int, double> table[] = {
        {2, 1.4},   {52, 1.6},   {3, 1.95},  {4, 2.8},   {5, 3.7},   {6, 5.2},   {7, 5.7},   {8, 7.2},
        {9, 7.8},   {10, 9.2},   {11, 9.9},  {12, 11.5}, {13, 12.0}, {14, 12.5}, {15, 13.0}, {16, 13.5},
        {17, 14.0}, {18, 14.4},  {19, 15.2}, {23, 2.9},  {24, 3.6},  {25, 4.7},  {26, 6.2},  {27, 7.4},
        {28, 8.8},  {29, 10.3},  {30, 11.5}, {31, 14.4}, {32, 15.6}, {33, 17.1}, {35, 11.9}, {36, 13.3},
        {37, 14.8}, {38, 16.7},  {40, 2.15}, {41, 5.0},  {42, 6.05}, {43, 7.65}, {44, 8.45}, {45, 10.05},
        {46, 11.0}, {47, 12.55}, {48, 14.4}, {49, 16.3}, {50, 17.3}, {51, 14.4}, {60, 2.15}, {62, 6.05},
        {64, 8.45}, {66, 11.0},  {68, 14.4}, {70, 17.3}, {71, 2.95}, {72, 4.1}};
    for (const auto& [i, k] : table)
        g.x[i] = at(k);
    g.x[1] = m.OriginX;
    g.x[20] = m.OriginX + m.UsableWidth - 50 * m.ScaleX;
    return g;
}

// The further text sections of a document: the section's caption number (2 to 6), its list
// column, whether its frame is closed at the bottom, and the lines kept free below it.
struct Section {
    int number;
    int column;
    bool closed;
    int reserve;
};

std::vector<Section> sectionsOf(int document) {
    switch (document) {
        case doc::QualityPlans:
            return {{2, kQualityPlan, true, 0}};
        case doc::Inspections:
            return {{2, kQualityPlan, false, 0}, {3, kInspection, false, 1}};
        case doc::Deviations:
            return {{2, kQualityPlan, false, 7},
                    {3, kInspection, false, 5},
                    {5, kDeviation, false, 2},
                    {6, kCorrection, true, 0}};
        case doc::QualityReport:
            return {{4, kQualityReportText, true, 0}};
        default:
            return {};
    }
}

const char* const kSectionCaptions[] = {"",
                                        "Laatuvaatimus",
                                        "Laatusuunnitelma",
                                        "Tarkastus- ja mittausraportti",
                                        "Laaturaportti",
                                        "Poikkeamaraportti",
                                        "Korjaussuunnitelma"};

const QString kCut1 = QStringLiteral("... (tulostus katkaistu, täydellinen teksti voidaan lukea ");
const QString kCut2 = QStringLiteral("TAMRIK 2006");
const QString kCut3 = QStringLiteral(" ohjelmasta käsin)");

// Draws (or, without a painter, only measures) the blocks of a quality page. In measure mode
// nothing is put down and y advances exactly as drawing would advance it, so that pagination
// and drawing agree.
class QualityPainter {
public:
    QualityPainter(PrintRun& run, Surface& s, bool measure)
        : m_run(run)
        , m_s(s)
        , m_measure(measure)
        , m_m(run.page())
        , m_grid(gridOf(run.page())) {}

    const lists::ListModel& list() const { return *m_run.source().requirements; }

    double lineHeight8() const { return 1.2 * m_s.fonts().height(m_run.font(8)); }

    void text(double x, double y, const QString& t) {
        if (!m_measure) m_s.text(x, y, t);
    }
    void line(double x1, double y1, double x2, double y2) {
        if (!m_measure) m_s.line(x1, y1, x2, y2);
    }

    // A work-phase caption, wrapped to the page's edge.
    void PrintQualityData1(int row, double& y) {
        y += 40 * m_m.ScaleY;
        m_s.setFont(m_run.font(11));
        text(m_grid[1], y, list().cell(row, kLittera).toString().trimmed());
        const double x = m_grid[52];
        QStringList lines = m_run.wrap(captionText(row), 11, m_m.right() - x);
        if (lines.isEmpty()) lines.append(QString());
        for (const QString& line : lines) {
            text(x, y, line);
            y += m_m.LineHeight11;
        }
    }

    // A label of a block: where it starts and ends.
    struct Label {
        double x;
        double end;
    };

    // Draws the labels of a row in small italics at `y`.
    std::vector<Label> labelRow(const std::vector<std::pair<int, QString>>& labels, double y) {
        m_s.setFont(m_run.font(8, false, true));
        std::vector<Label> out;
        for (const auto& [pos, label] : labels) {
            text(m_grid[pos], y, label);
            out.push_back({m_grid[pos], m_grid[pos] + m_s.textWidth(label)});
        }
        return out;
    }

    // A value in bold at x, within its cell: from its own label's end to the next label to its
    // right (or the frame). One a little too wide moves left into that room; one still too wide
    // shrinks, then wraps at the smallest print (at most four lines, the last cut with "…").
    // Returns the height it takes below y.
    double valueText(double x, double y, const QString& value, const std::vector<Label>& labels) {
        const double gap = 60 * m_m.ScaleX;
        double left = m_grid[2], right = m_grid[20];
        for (const Label& l : labels) {
            if (l.x > x + 1 && l.x < right) right = l.x;
            if (l.x <= x + 1 && l.end > left) left = l.end;
        }
        left += gap;
        right -= gap;
        const double lh = m_m.LineHeight11;
        m_s.setFont(m_run.font(11, true));
        const QString t = value.trimmed();
        const double w = m_s.textWidth(t);
        if (x + w <= right || left + w <= right) {
            text(std::min(x, right - w), y, t);
            return lh;
        }
        const FittedText f = m_run.fit(t, Font{m_run.settings().PrinterFont, 11, true, false},
                                       (right - left) / std::max(0.01f, m_m.ScaleX), kSmallestValueSize, 4);
        const Font small = m_run.font(f.size, true);
        m_s.setFont(small);
        double widest = 0;
        for (const QString& line : f.lines)
            widest = std::max(widest, m_s.textWidth(line));
        const double at = std::max(left, std::min(x, right - widest));
        const double drop = CellBaselineDrop(m_run, 11, f.size, true);
        const double smallLine = 1.2 * m_s.fonts().height(small);
        for (int k = 0; k < f.lines.size(); ++k)
            text(at, y + drop + k * smallLine, f.lines[k]);
        return std::max(lh, drop + f.lines.size() * smallLine);
    }

    // A row of values: the height of its tallest.
    double valueRow(const std::vector<std::pair<int, QString>>& values, double y,
                    const std::vector<Label>& labels) {
        double h = m_m.LineHeight11;
        for (const auto& [pos, v] : values)
            h = std::max(h, valueText(m_grid[pos], y, v, labels));
        return h;
    }

    // Label and value rows framed from position 2 to position 20. The 40 twips above them lie
    // inside the frame, so that the block closes the frame of the text above it.
    void labelValueBlock(double& y, const std::vector<std::pair<int, QString>>& labels,
                         const std::vector<std::pair<int, QString>>& values) {
        const double top = y;
        y += 40 * m_m.ScaleY;
        const std::vector<Label> spans = labelRow(labels, y);
        y += lineHeight8();
        y += valueRow(values, y, spans) + kFramePad * m_m.ScaleY;
        frameBox(top, y, true, true);
    }

    void PrintQualityHeaders1(int row, double& y) {
        const lists::ListModel& l = list();
        labelValueBlock(y,
                        {{2, QStringLiteral("Nro")},
                         {4, QStringLiteral("Vaat.")},
                         {6, QStringLiteral("Ala")},
                         {8, QStringLiteral("Ylä")},
                         {10, QStringLiteral("Yks")},
                         {12, QStringLiteral("Ty")},
                         {14, QStringLiteral("Tt")},
                         {16, QStringLiteral("Pa")},
                         {18, QStringLiteral("Viite")}},
                        {{3, value(row, kNumber)},
                         {5, value(row, kRequired)},
                         {7, value(row, kLower)},
                         {9, value(row, kUpper)},
                         {11, value(row, kUnit)},
                         {13, QString(firstUpper(l.cell(row, kType).toString()))},
                         {15, QString(firstUpper(l.cell(row, kMethod).toString()))},
                         {17, value(row, kWeight)},
                         {19, value(row, kReference)}});
    }

    void PrintQualityHeaders2(int row, double& y) {
        labelValueBlock(y,
                        {{2, QStringLiteral("Mittauksia")},
                         {24, QStringLiteral("Minimi")},
                         {26, QStringLiteral("Maksimi")},
                         {28, QStringLiteral("Keskiarvo")},
                         {30, QStringLiteral("Täyttää vaatimukset")},
                         {32, QStringLiteral("Pa kerroin")}},
                        {{23, value(row, kCount)},
                         {25, value(row, kMinimum)},
                         {27, value(row, kMaximum)},
                         {29, value(row, kMean)},
                         {31, value(row, kFulfilled)},
                         {33, value(row, kFactor)}});
    }

    // The quality report's two rows: a label in small italics, its value in bold beside it.
    void PrintQualityHeaders3(int row, double& y) {
        const double top = y;
        y += 40 * m_m.ScaleY;
        const ReportCells cells = ReportCellsOf(list(), row);
        const std::vector<std::pair<int, QString>> labels1 = {
            {2, QStringLiteral("Viite")}, {41, QStringLiteral("Vaat.")},   {43, QStringLiteral("Ala")},
            {45, QStringLiteral("Ylä")},  {47, QStringLiteral("Yksikkö")}, {49, QStringLiteral("Pa")}};
        const std::vector<std::pair<int, QString>> values1 = {
            {40, value(row, kReference)}, {42, value(row, kRequired)}, {44, value(row, kLower)},
            {46, value(row, kUpper)},     {48, value(row, kUnit)},     {50, value(row, kWeight)}};
        const std::vector<std::pair<int, QString>> labels2 = {
            {2, QStringLiteral("Nro")},     {71, QStringLiteral("Mit.lkm")},
            {41, QStringLiteral("K.arvo")}, {43, QStringLiteral("Min.")},
            {45, QStringLiteral("Maks.")},  {47, QStringLiteral("Täyttää vaat.")},
            {49, QStringLiteral("TotPa")}};
        const std::vector<std::pair<int, QString>> values2 = {
            {60, value(row, kNumber)},  {72, value(row, kCount)},   {62, value(row, kMean)},
            {64, value(row, kMinimum)}, {66, value(row, kMaximum)}, {51, cells.fulfilled},
            {70, cells.totPa}};
        // The labels sit on the values' baseline.
        const double labelDrop =
            m_s.fonts().ascent(m_run.font(11, true)) - m_s.fonts().ascent(m_run.font(8, false, true));
        auto row2 = [&](const std::vector<std::pair<int, QString>>& labels,
                        const std::vector<std::pair<int, QString>>& values) {
            const std::vector<Label> spans = labelRow(labels, y + labelDrop);
            y += valueRow(values, y, spans);
        };
        row2(labels1, values1);
        row2(labels2, values2);
        y += kFramePad * m_m.ScaleY;
        frameBox(top, y, true, true);
    }

    // A framed text section: its caption in small italics at the left, the text beside it.
    // A text that would pass its cut line ends with a note: the cut line keeps free above the
    // page's foot the section's reserved lines, or the `after` twips of the blocks that follow
    // it when they need more. Measuring cuts the text where drawing cuts it, so the pagination
    // sees the block as the page shows it.
    void PrintQualityTextFrame1(const QString& caption, const QString& body, double& y, bool close,
                                bool joinLines, int reserve, double after = 0) {
        const double top = y;
        y += kFramePad * m_m.ScaleY;
        m_s.setFont(m_run.font(8, false, true));
        text(m_grid[2], y + 50 * m_m.ScaleY, caption);
        double x = 0;
        const QStringList lines = frameLines(caption, body, joinLines, &x);
        const double lh = m_m.LineHeight11;
        const double cut = m_m.bottom() - 600 * m_m.ScaleY - std::max(reserve * lh, after);
        m_s.setFont(m_run.font(11));
        for (int i = 0; i < lines.size(); ++i) {
            // The note takes the last line that fits.
            const bool more = i + 1 < lines.size();
            if (y + lh > cut || (more && y + 2 * lh > cut)) {
                m_s.setFont(m_run.font(8));
                text(x, y, kCut1 + kCut2 + kCut3);
                m_cut = true;
                y += lh;
                break;
            }
            text(x, y, lines[i]);
            y += lh;
        }
        y += kFramePad * m_m.ScaleY;
        frameBox(top, y, true, close);
    }

    // The lines of a framed text, and where they start.
    QStringList frameLines(const QString& caption, const QString& body, bool joinLines, double* x = nullptr) {
        m_s.setFont(m_run.font(8, false, true));
        const double left = m_grid[2] + m_s.textWidth(caption) + 100 * m_m.ScaleX;
        if (x) *x = left;
        QString t = body;
        if (joinLines) t.replace(QLatin1String("\r\n"), QLatin1String(" "));
        QStringList lines = m_run.wrap(t, 11, m_grid[20] - 50 * m_m.ScaleX - left);
        if (lines.isEmpty()) lines.append(QString());
        return lines;
    }

    // Whether a text was cut since the painter was made.
    bool cut() const { return m_cut; }

    // One requirement with every block its document prints. A text cut at the page's foot
    // leaves room for the blocks after it, each section at least one line.
    void requirement(int document, int row, double& y) {
        const bool report = document == doc::QualityReport;
        const std::vector<Section> sections = sectionsOf(document);
        const double pad = kFramePad * m_m.ScaleY;
        const double lh = m_m.LineHeight11;
        // The blocks' heights as they will be drawn (a long value wraps).
        QualityPainter probe(m_run, m_s, true);
        double block = 0, results = 0;
        if (report)
            probe.PrintQualityHeaders3(row, block);
        else
            probe.PrintQualityHeaders1(row, block);
        probe.PrintQualityHeaders2(row, results);
        // A text cut at the page's foot leaves room for the sections after it: as many lines as
        // each has, up to a few, so that a short plan or report is not lost to a long requirement.
        std::vector<int> keep;
        for (const Section& section : sections)
            keep.push_back(
                std::min<int>(kKeptLines, probe
                                              .frameLines(QString::fromUtf8(kSectionCaptions[section.number]),
                                                          blockText(row, section.column), false)
                                              .size()));
        auto after = [&](std::size_t from) {
            double h = 0;
            for (std::size_t k = from; k < sections.size(); ++k)
                h += 2 * pad + keep[k] * lh + (sections[k].number == 3 ? results : 0);
            return h;
        };
        PrintQualityTextFrame1(QString::fromUtf8(kSectionCaptions[1]), blockText(row, kText), y, false, true,
                               0, block + after(0));
        if (report)
            PrintQualityHeaders3(row, y);
        else
            PrintQualityHeaders1(row, y);
        for (std::size_t k = 0; k < sections.size(); ++k) {
            const Section& section = sections[k];
            PrintQualityTextFrame1(QString::fromUtf8(kSectionCaptions[section.number]),
                                   blockText(row, section.column), y, section.closed, false, section.reserve,
                                   (section.number == 3 ? results : 0) + after(k + 1));
            if (section.number == 3) PrintQualityHeaders2(row, y);
        }
        y += kRequirementGap * m_m.ScaleY;
    }

private:
    QString value(int row, int column) const {
        return DecimalComma(list().cell(row, column).toString().trimmed());
    }

    // A long text of a requirement with the texts its continuation rows carry in that column,
    // each as a paragraph of its own.
    QString blockText(int row, int column) const {
        const lists::ListModel& l = list();
        QString text = l.cell(row, column).toString();
        const int end = RequirementEnd(l, row);
        for (int r = row + 1; r <= end; ++r) {
            const QStringView more = l.cell(r, column);
            if (lists::BlankString(more)) continue;
            if (!lists::BlankString(text)) text += QLatin1String("\r\n");
            text += more;
        }
        return text;
    }

    // A caption's text and the texts of its continuation rows.
    QString captionText(int row) const {
        const lists::ListModel& l = list();
        QString text = l.cell(row, kText).trimmed().toString();
        for (int c = row + 1; c <= l.rows() && lists::BlankString(l.cell(c, kLittera)) &&
                              lists::BlankString(l.cell(c, kNumber)) && !lists::BlankString(l.cell(c, kText));
             ++c)
            text += QLatin1Char(' ') + l.cell(c, kText).toString().trimmed();
        return text;
    }

    void frameBox(double top, double bottom, bool topLine, bool bottomLine) {
        const double left = m_grid[2] - 50 * m_m.ScaleX;
        const double right = m_grid[20];
        if (topLine) line(left, top, right, top);
        line(left, top, left, bottom);
        line(right, top, right, bottom);
        if (bottomLine) line(left, bottom, right, bottom);
    }

    PrintRun& m_run;
    Surface& m_s;
    bool m_measure;
    bool m_cut = false;
    const PageModel& m_m;
    Grid m_grid;
};

double qualityBodyTop(const PrintRun& run) {
    const PageModel& m = run.page();
    return m.OriginY + kBodyTop * m.ScaleY;
}

} // namespace

int RequirementEnd(const lists::ListModel& list, int row) {
    int last = row;
    while (last < list.rows() && lists::BlankString(list.cell(last + 1, kLittera)) &&
           lists::BlankString(list.cell(last + 1, kNumber)) &&
           list.cell(last + 1, kText) != lists::kRoadWorksCaption)
        ++last;
    return last;
}

ReportCells ReportCellsOf(const lists::ListModel& list, int row) {
    ReportCells cells;
    const QChar mark = firstUpper(list.cell(row, kFulfilled).toString());
    const QChar type = firstUpper(list.cell(row, kType).toString());
    const bool weighted = type == u'1' || type == u'2';
    if (mark == u'K')
        cells.fulfilled = QStringLiteral("Kyllä");
    else if (mark == u'E')
        cells.fulfilled = QStringLiteral("Ei");
    else
        cells.fulfilled = QStringLiteral("-");
    if (!weighted) {
        cells.totPa = QStringLiteral("-");
        return cells;
    }
    // A fulfilled requirement earns its weight, a failed one the share its factor gives;
    // an uninspected one earns nothing yet.
    const float weight = static_cast<float>(calc::CustomVal(list.cell(row, kWeight)));
    if (mark == u'K')
        cells.totPa = calc::DecimalS(weight, 1);
    else if (mark == u'E')
        cells.totPa =
            calc::DecimalS(static_cast<float>(calc::CustomVal(list.cell(row, kFactor))) * weight, 1);
    else
        cells.totPa = QStringLiteral("-");
    return cells;
}

std::vector<QualityItem> QualityItems(const lists::ListModel& list, int document, const QString& workPhase) {
    std::vector<QualityItem> items;
    const std::vector<QString> phases = workPhase.isEmpty() ? std::vector<QString>() : WorkPhaseLines(list);
    int phaseRow = 0, subRow = 0;
    bool phaseShown = false, subShown = false;
    for (int r = 1; r <= list.rows(); ++r) {
        const calc::CaptionInfo caption = calc::ListViewCaption(list, r, kText);
        if (caption.level == 1) {
            phaseRow = r;
            phaseShown = false;
            subRow = 0;
            continue;
        }
        if (caption.level == 2) {
            subRow = r;
            subShown = false;
            continue;
        }
        if (!PrintBrowseStep(list, r, document, workPhase, phases)) continue;
        if (phaseRow > 0 && !phaseShown) {
            items.push_back({phaseRow, true});
            phaseShown = true;
        }
        if (subRow > 0 && !subShown) {
            items.push_back({subRow, true});
            subShown = true;
        }
        items.push_back({r, false});
    }
    return items;
}

bool PrintBrowseStep(const lists::ListModel& list, int row, int document, const QString& workPhase,
                     const std::vector<QString>& phases) {
    if (lists::BlankString(list.cell(row, kNumber))) return false;
    const QChar type = firstUpper(list.cell(row, kType).toString());
    const QChar mark = firstUpper(list.cell(row, kFulfilled).toString());
    if (document == doc::BridgeRequirements) return type == u'1';
    if (!workPhase.isEmpty() && (row >= static_cast<int>(phases.size()) || phases[row] != workPhase))
        return false;
    if (document == doc::Deviations && mark != u'E') return false;
    if (document == doc::QualityReport && (type.isNull() || type == u'3') &&
        lists::BlankString(list.cell(row, kQualityReportText)))
        return false;
    return true;
}

double QualityItemHeight(PrintRun& run, Surface& s, int document, const QualityItem& item, double top,
                         bool* cut) {
    QualityPainter painter(run, s, true);
    double y = top;
    if (item.caption)
        painter.PrintQualityData1(item.row, y);
    else
        painter.requirement(document, item.row, y);
    if (cut) *cut = painter.cut();
    return y - top;
}

double QualityBodyTop(const PrintRun& run) {
    return qualityBodyTop(run);
}

void PrintQuality(PrintRun& run, Surface& s, int p) {
    const PageEntry& e = run.entry(p);
    if (e.document == kQualitySummary) {
        PrintQualitySummary(run, s, p);
        return;
    }
    const QString title = DocumentTitle(e.document, run.selection().WorkPhaseFilter[e.document]);
    if (!PrintFrontPageOrHeader(run, s, p, title)) return;
    if (const lists::ListModel* list = run.source().requirements) {
        QualityPainter painter(run, s, false);
        double y = qualityBodyTop(run);
        for (const QualityItem& item : run.qualityItems(e.document)) {
            if (item.row < e.firstRow) continue;
            if (item.row > e.lastRow || item.row > list->rows()) break;
            if (item.caption)
                painter.PrintQualityData1(item.row, y);
            else
                painter.requirement(e.document, item.row, y);
        }
    }
    PrintBottomHeader(run, s, e.document == doc::QualityReport ? Footer::ProgramName : Footer::QualityLegend);
}

// The summary pages of the bridge's quality report.
SummaryLayout QualitySummaryLayout(const PrintRun& run) {
    const PageModel& m = run.page();
    const double lh = m.LineHeight11;
    SummaryLayout l;
    const double room = m.bodyLimit() - qualityBodyTop(run);
    // Every summary page: the table's header, the legends below it.
    const double frame = 2 * lh + 5 * lh;
    // The first one also: the title and the count table.
    const double first = 2 * lh + 6 * lh;
    l.firstRows = std::max(1, static_cast<int>((room - frame - first) / lh));
    l.laterRows = std::max(1, static_cast<int>((room - frame) / lh));
    return l;
}

namespace {

// The summary's numbers end this far (twips, scaled) left of their grid line, as do the texts
// of the work phases; the rule below a heading has this much room under it.
constexpr double kSummaryInset = 200;
constexpr double kSummaryRuleGap = 40;

// A number of the summary, right-aligned in its column: grid line 20 is the page's right edge,
// any other column ends a little left of its line.
void summaryCell(PrintRun& run, Surface& s, const Grid& g, int right, double y, const QString& text,
                 bool bold) {
    s.setFont(run.font(11, bold));
    s.textRight(right == 20 ? g[20] : g[right] - kSummaryInset * run.page().ScaleX, y, text);
}

// The work phases of rows first..last of the quality record with their weights and shares,
// then the legends below. Returns the line after the legends.
double printWorkPhaseTable(PrintRun& run, Surface& s, const Grid& g, const PageEntry& e, double y) {
    const PageModel& m = run.page();
    const calc::QualityRecord& q = run.quality();
    const double lh = m.LineHeight11;
    const double inset = kSummaryInset * m.ScaleX;
    s.setFont(run.font(11, false, true));
    s.text(g[1], y, QStringLiteral("Littera"));
    s.text(g[52], y, QStringLiteral("Työvaihe"));
    s.textRight(g[36] - inset, y, QStringLiteral("Pa%"));
    s.textRight(g[37] - inset, y, QStringLiteral("TotPa"));
    s.textRight(g[38] - inset, y, QStringLiteral("MaksPa"));
    s.textRight(g[20], y, QStringLiteral("Tot%"));
    y += lh;
    s.line(g[1], y, g[20], y);
    y += kSummaryRuleGap * m.ScaleY;
    for (int k = e.firstRow; k <= e.lastRow && k <= q.groupCount; ++k) {
        s.setFont(run.font(11));
        s.text(g[1], y, q.groupLittera[k].trimmed());
        CellText(run, s, g[52], g[35] - inset, y, q.groupText[k], 11, false, CellAlign::Left);
        const float max = q.groupMax[k];
        const float realized = q.groupRealized[k];
        const float share = q.totalMax > 0 ? max / q.totalMax * 100 : 0;
        summaryCell(run, s, g, 36, y, share == 0 ? QStringLiteral("0") : calc::DecimalS(share, 1), false);
        if (max > 0) {
            summaryCell(run, s, g, 37, y, calc::DecimalS(realized, 1), false);
            summaryCell(run, s, g, 38, y, calc::DecimalS(max, 1), false);
            summaryCell(run, s, g, 20, y, calc::DecimalS(realized / max * 100, 1), false);
        } else {
            for (int column : {37, 38, 20})
                summaryCell(run, s, g, column, y, QStringLiteral("-"), true);
        }
        y += lh;
    }
    y += lh;
    s.setFont(run.font(9));
    for (const char* legend : {"Pa% = työvaiheen osuus koko sillan painoarvojen summasta",
                               "TotPa = työvaiheen toteutunut painoarvojen summa",
                               "MaksPa = työvaiheen painoarvojen summa", "Tot% = suhde TotPa/MaksPa"}) {
        s.text(g[1], y, QString::fromUtf8(legend));
        y += m.LineHeight9;
    }
    return y;
}

// The requirements counted by type, checked and not, with their total, from `y`.
void printTypeCounts(PrintRun& run, Surface& s, const Grid& g, double y) {
    const PageModel& m = run.page();
    const calc::QualityRecord& q = run.quality();
    const double lh = m.LineHeight11;
    const double inset = kSummaryInset * m.ScaleX;
    s.setFont(run.font(11, false, true));
    s.text(g[1], y, QStringLiteral("Yhteenveto laatuvaatimuksista"));
    s.textRight(g[36] - inset, y, QStringLiteral("lkm"));
    s.textRight(g[37] - inset, y, QStringLiteral("tark."));
    s.textRight(g[38] - inset, y, QStringLiteral("ei tark."));
    y += lh;
    const struct {
        const char* label;
        int count, checked;
    } types[] = {{"1 Siltakohtainen", q.countType1, q.checkedType1},
                 {"2 KLVn mukainen", q.countType2, q.checkedType2},
                 {"3 Ohjeellinen", q.countType3, q.checkedType3}};
    int count = 0, checked = 0;
    auto countRow = [&](const QString& label, int n, int done, bool bold) {
        s.setFont(run.font(11, bold));
        s.text(g[1], y, label);
        summaryCell(run, s, g, 36, y, QString::number(n), bold);
        summaryCell(run, s, g, 37, y, QString::number(done), bold);
        summaryCell(run, s, g, 38, y, QString::number(n - done), bold);
        y += lh;
    };
    for (const auto& t : types) {
        countRow(QString::fromUtf8(t.label), t.count, t.checked, false);
        count += t.count;
        checked += t.checked;
    }
    countRow(QStringLiteral("Yhteensä"), count, checked, true);
}

} // namespace

// The first summary page opens with the bridge's quality number and ends with the counts by
// type; every summary page holds its share of the work-phase table.
void PrintQualitySummary(PrintRun& run, Surface& s, int p) {
    const PageEntry& e = run.entry(p);
    const calc::QualityRecord& q = run.quality();
    const Grid g = gridOf(run.page());
    const double lh = run.page().LineHeight11;
    PrintTopHeader(run, s, p, DocumentTitle(doc::QualityReport, QString()));
    double y = qualityBodyTop(run);
    const bool first = e.number == 2;
    if (first) {
        s.setFont(run.font(11, true));
        s.text(g[1], y,
               QStringLiteral("SILLAN LAATULUKU ") + calc::DecimalS(q.qualityNumber, 1) +
                   QStringLiteral(" (100)"));
        y += 2 * lh;
    }
    y = printWorkPhaseTable(run, s, g, e, y);
    if (first) printTypeCounts(run, s, g, y + lh);
    PrintBottomHeader(run, s, Footer::ProgramName);
}

} // namespace print
