// The printed comparison of two project versions ("Muutosvertailu"), and the versions read from
// project files.
#include "print/Comparison.h"

#include "calc/NumberText.h"
#include "lists/ListModel.h"
#include "lists/ListProcedures.h"
#include "persist/ProjectFile.h"
#include "print/PrintRun.h"
#include "print/Reports.h"
#include "print/TextLines.h"

#include <algorithm>

namespace print {

calc::ProjectVersion VersionFromProject(const persist::ProjectFile& project, const QString& name) {
    return VersionFromProject(persist::ProjectFile(project), name);
}

calc::ProjectVersion VersionFromProject(persist::ProjectFile&& project, const QString& name) {
    calc::ProjectVersion v;
    persist::ProjectContent& c = project.content;
    v.name = name;
    static const QString kinds[4][3] = {
        {lists::kind::BridgeParts, lists::kind::Changes, lists::kind::Changes},
        {lists::kind::QuantityList, lists::kind::Requirements, QString()},
        {QString(), QString(), QString()},
        {lists::kind::ChargeChambers, QString(), QString()}};
    for (int w = 0; w < 4; ++w) {
        v.windows[w] = {std::move(c.windows[w].texts), std::move(c.windows[w].combos)};
        // The detailed data window always has its two lists, also in a file that lacks them.
        const int n = std::max<int>(w == 1 ? 2 : 0, static_cast<int>(c.windows[w].lists.size()));
        std::vector<persist::ListRecord>& records = c.windows[w].lists;
        for (int j = 0; j < n; ++j)
            v.lists[w].push_back(persist::ListFromRecord(
                j < static_cast<int>(records.size()) ? std::move(records[j]) : persist::ListRecord(),
                kinds[w][std::min(j, 2)]));
    }
    v.referenceItems = std::move(c.referenceItems);
    v.checks = std::move(c.checks);
    v.documents = std::move(c.documents);
    for (int k = 0; k < 6; ++k)
        v.pictures[k] = {std::move(project.members[k + 1].data), project.members[k + 1].type};
    return v;
}

namespace {

using calc::ChangeKind;
using calc::ChangeLine;
using calc::ProjectComparison;

// The body rows, section by section.
enum class Item {
    OldName,
    NewName,
    Blank,
    Summary,
    ChangesHeading,
    TableHeading,
    Change,
    NoChanges,
    CostChangeTotal
};

struct ItemAt {
    Item item = Item::Blank;
    int index = 0; // within its section
};

struct Section {
    Item item;
    int count;
};

std::vector<Section> sections(const ProjectComparison& c) {
    const int lines = static_cast<int>(c.lines.size());
    std::vector<Section> out = {{Item::OldName, 1}, {Item::NewName, 1},
                                {Item::Blank, 1},   {Item::Summary, static_cast<int>(c.summary.size())},
                                {Item::Blank, 1},   {Item::ChangesHeading, 1}};
    if (lines == 0) {
        out.push_back({Item::NoChanges, 1});
    } else {
        out.insert(out.end(), {{Item::TableHeading, 1}, {Item::Change, lines}, {Item::CostChangeTotal, 1}});
    }
    return out;
}

ItemAt itemAt(const std::vector<Section>& all, int row) {
    int r = row - 1;
    for (const Section& s : all) {
        if (r < s.count) return {s.item, r};
        r -= s.count;
    }
    return {};
}

const ProjectComparison& comparisonOf(const PrintRun& run) {
    return *run.comparison();
}

// The longest a cell of the table gets; the rest of a long text is left out.
constexpr int kMaxCellLines = 8;
constexpr double kGap = 120;

// The columns of the table: left edges and widths, the cost change right-aligned at the edge.
struct TableColumns {
    double kind, place, key, column, oldText, newText;
    double kindW, placeW, keyW, columnW, oldW, newW;
    double cost; // right edge
};

double widest(PrintRun& run, const QStringList& texts) {
    double w = 0;
    const Font f{run.settings().PrinterFont, 9};
    for (const QString& t : texts)
        w = std::max(w, run.fonts().width(f, t));
    return w;
}

TableColumns tableColumns(PrintRun& run) {
    const PageModel& m = run.page();
    const double sx = m.ScaleX;
    // Widths at scale 1, measured on the texts these columns can hold.
    const double kindW =
        widest(run, {calc::ChangeKindText(ChangeKind::Added), calc::ChangeKindText(ChangeKind::Removed),
                     calc::ChangeKindText(ChangeKind::Changed)}) +
        2 * kGap;
    QStringList places{calc::ChangeSourceText(calc::ChangeSource::Quantity),
                       calc::ChangeSourceText(calc::ChangeSource::Requirement)};
    for (int w = 0; w < 4; ++w)
        places << calc::WindowName(w);
    const double usable = m.UsableWidth / sx;
    const double placeW = std::min(widest(run, places), 0.14 * usable) + 2 * kGap;
    QStringList columns;
    for (int c = 1; c <= 24; ++c)
        columns << calc::ColumnName(calc::ChangeSource::Requirement, c);
    const double columnW = std::min(widest(run, columns), 0.15 * usable) + 2 * kGap;
    const double costW =
        widest(run, {QStringLiteral("Kust. muutos"), QStringLiteral("+99 999 999,00")}) + kGap;
    const double flexible = std::max(usable - kindW - placeW - columnW - costW, 1000.0);
    TableColumns t;
    t.kindW = kindW * sx;
    t.placeW = placeW * sx;
    t.keyW = 0.36 * flexible * sx;
    t.columnW = columnW * sx;
    t.oldW = t.newW = 0.32 * flexible * sx;
    t.kind = m.OriginX;
    t.place = t.kind + t.kindW;
    t.key = t.place + t.placeW;
    t.column = t.key + t.keyW;
    t.oldText = t.column + t.columnW;
    t.newText = t.oldText + t.oldW;
    t.cost = m.right();
    return t;
}

// A text wrapped to a column (target twips) at 9 points, never more than kMaxCellLines lines.
// Long words are split where the column ends; nothing is reported, since values and file
// names often have no spaces.
QStringList cellLines(PrintRun& run, const QString& text, double width) {
    const double scale = run.page().ScaleX > 0 ? run.page().ScaleX : 1.0;
    QStringList lines = WrapLines(run.fonts(), Font{run.settings().PrinterFont, 9}, text,
                                  std::max(width - kGap * scale, 200.0 * scale) / scale);
    if (lines.size() > kMaxCellLines) {
        lines = lines.mid(0, kMaxCellLines);
        lines.last() += QStringLiteral(" ...");
    }
    return lines;
}

struct ChangeCells {
    QStringList kind, place, key, column, oldText, newText;
    QString cost;
    int count() const {
        return std::max<int>({1, static_cast<int>(kind.size()), static_cast<int>(place.size()),
                              static_cast<int>(key.size()), static_cast<int>(column.size()),
                              static_cast<int>(oldText.size()), static_cast<int>(newText.size())});
    }
};

ChangeCells changeCells(PrintRun& run, const TableColumns& t, int index) {
    const ProjectComparison& c = comparisonOf(run);
    const ChangeLine& line = c.lines[index];
    ChangeCells cells;
    // The row's name and kind stand on its first line only.
    if (line.first) {
        cells.kind = cellLines(run, calc::ChangeKindText(line.kind), t.kindW);
        cells.place = cellLines(run, line.place, t.placeW);
        cells.key = cellLines(run, line.key, t.keyW);
        if (line.source == calc::ChangeSource::Quantity) {
            const calc::RowChange& row = c.rows[line.change];
            if (row.oldCost != 0 || row.newCost != 0) cells.cost = calc::MoneyChangeText(row.costChange());
        }
    }
    cells.column = cellLines(run, line.column, t.columnW);
    cells.oldText = cellLines(run, line.oldText, t.oldW);
    cells.newText = cellLines(run, line.newText, t.newW);
    return cells;
}

// The columns of the summary: the label, then old, new, change and change in per cent, each
// right-aligned.
struct SummaryColumns {
    double labelW, oldR, newR, changeR, percentR;
};

SummaryColumns summaryColumns(PrintRun& run) {
    const PageModel& m = run.page();
    const double sx = m.ScaleX;
    // The amounts as wide as the largest they show, the figures close to their labels: the
    // label takes what is left, but not the whole width of landscape paper.
    const double money = (widest(run, {QStringLiteral("+99 999 999,00")}) + 2 * kGap) * sx;
    const double percent = 1200 * sx;
    SummaryColumns s;
    s.labelW = std::min<double>(m.UsableWidth - 3 * money - percent, 6500 * sx);
    s.oldR = m.OriginX + s.labelW + money;
    s.newR = s.oldR + money;
    s.changeR = s.newR + money;
    s.percentR = s.changeR + percent;
    return s;
}

QString changesHeading(const ProjectComparison& c) {
    return QStringLiteral("MUUTOKSET: lisätty %1, poistettu %2, muutettu %3")
        .arg(c.count(ChangeKind::Added))
        .arg(c.count(ChangeKind::Removed))
        .arg(c.count(ChangeKind::Changed));
}

float totalCostChange(const ProjectComparison& c) {
    float sum = 0;
    for (const calc::RowChange& r : c.rows)
        sum += r.costChange();
    return sum;
}

void tableHeading(PrintRun& run, Surface& s, const TableColumns& t, double y) {
    s.setFont(run.font(9, false, true));
    s.text(t.kind, y, QStringLiteral("Laji"));
    s.text(t.place, y, QStringLiteral("Luettelo tai ikkuna"));
    s.text(t.key, y, QStringLiteral("Rivi tai kenttä"));
    s.text(t.column, y, QStringLiteral("Sarake"));
    s.text(t.oldText, y, QStringLiteral("Vanha"));
    s.text(t.newText, y, QStringLiteral("Uusi"));
    s.textRight(t.cost, y, QStringLiteral("Kust. muutos"));
}

// "Vanha versio: …" or "Uusi versio: …", wrapped over the page's width.
double versionNameRow(PrintRun& run, Surface* s, bool old, double y) {
    const PageModel& m = run.page();
    const ProjectComparison& c = comparisonOf(run);
    const QString text = (old ? QStringLiteral("Vanha versio: ") : QStringLiteral("Uusi versio: ")) +
                         (old ? c.oldName : c.newName);
    const QStringList lines = cellLines(run, text, m.UsableWidth);
    if (s) {
        s->setFont(run.font(9, true));
        for (int i = 0; i < lines.size(); ++i)
            s->text(m.OriginX, y + i * m.LineHeight9, lines[i]);
    }
    return lines.size() * m.LineHeight9;
}

// One change in the table: each column's lines, none below the page's body.
double changeRow(PrintRun& run, Surface* s, int index, double y) {
    const PageModel& m = run.page();
    const double lh9 = m.LineHeight9;
    const TableColumns t = tableColumns(run);
    const ChangeCells cells = changeCells(run, t, index);
    if (s) {
        s->setFont(run.font(9));
        const double limit = m.bodyLimit();
        auto column = [&](double x, const QStringList& lines) {
            for (int i = 0; i < lines.size(); ++i) {
                if (i > 0 && y + (i + 1) * lh9 > limit) break;
                s->text(x, y + i * lh9, lines[i]);
            }
        };
        column(t.kind, cells.kind);
        column(t.place, cells.place);
        column(t.key, cells.key);
        column(t.column, cells.column);
        column(t.oldText, cells.oldText);
        column(t.newText, cells.newText);
        s->textRight(t.cost, y, cells.cost);
    }
    return cells.count() * lh9;
}

// The sum of the rows' cost changes under the table's cost column.
double costChangeTotalRow(PrintRun& run, Surface* s, double y) {
    const PageModel& m = run.page();
    if (s) {
        const TableColumns t = tableColumns(run);
        s->line(t.cost - 1500 * m.ScaleX, y + 20 * m.ScaleY, t.cost, y + 20 * m.ScaleY);
        s->setFont(run.font(9, true));
        s->textRight(t.cost - 1700 * m.ScaleX, y + 40 * m.ScaleY,
                     QStringLiteral("Rivien kustannusmuutos yhteensä"));
        s->textRight(t.cost, y + 40 * m.ScaleY, calc::MoneyChangeText(totalCostChange(comparisonOf(run))));
    }
    return m.LineHeight9 + 40 * m.ScaleY;
}

// The summary's rows: a label and four right-aligned figures, on one line. A label (a work
// phase's name) too long for its column is shrunk, then cut with "…", as values are.
double summaryRow(PrintRun& run, Surface* s, int index, double y) {
    const PageModel& m = run.page();
    const SummaryColumns sc = summaryColumns(run);
    const calc::SummaryRow& line = comparisonOf(run).summary[index];
    const bool heading = line.type == calc::SummaryRow::Heading;
    const double lh = heading ? m.LineHeight11 : m.LineHeight9;
    if (s) {
        if (heading) {
            s->setFont(run.font(11, true));
            s->text(m.OriginX, y, line.label);
        } else {
            QString label = line.label;
            label.replace(QLatin1String("\r\n"), QLatin1String(" "));
            CellText(run, *s, m.OriginX, m.OriginX + sc.labelW - kGap * m.ScaleX, y, label, 9, false,
                     CellAlign::Left);
        }
        s->setFont(heading ? run.font(9, false, true) : run.font(9));
        s->textRight(sc.oldR, y, line.oldText);
        s->textRight(sc.newR, y, line.newText);
        s->textRight(sc.changeR, y, line.change);
        s->textRight(sc.percentR, y, line.percent);
    }
    return lh;
}

// The height of a body row, drawn when `draw` is set.
double bodyRow(PrintRun& run, Surface* s, const std::vector<Section>& all, int row, double y) {
    const PageModel& m = run.page();
    const ItemAt at = itemAt(all, row);
    const double lh9 = m.LineHeight9;
    switch (at.item) {
        case Item::OldName:
        case Item::NewName:
            return versionNameRow(run, s, at.item == Item::OldName, y);
        case Item::Blank:
            return lh9;
        case Item::ChangesHeading:
            if (s) {
                s->setFont(run.font(11, true));
                s->text(m.OriginX, y, changesHeading(comparisonOf(run)));
            }
            return m.LineHeight11;
        case Item::NoChanges:
            if (s) {
                s->setFont(run.font(9));
                s->text(m.OriginX, y, QStringLiteral("Versioissa ei ole eroja."));
            }
            return lh9;
        case Item::TableHeading:
            if (s) tableHeading(run, *s, tableColumns(run), y);
            return lh9 + 40 * m.ScaleY;
        case Item::Change:
            return changeRow(run, s, at.index, y);
        case Item::CostChangeTotal:
            return costChangeTotalRow(run, s, y);
        case Item::Summary:
        default:
            return summaryRow(run, s, at.index, y);
    }
}

} // namespace

int ComparisonRowCount(const ProjectComparison& comparison) {
    int n = 0;
    for (const Section& s : sections(comparison))
        n += s.count;
    return n;
}

double ComparisonRowHeight(PrintRun& run, int row) {
    return bodyRow(run, nullptr, sections(comparisonOf(run)), row, 0);
}

void PrintComparison(PrintRun& run, Surface& s, int p) {
    const PageEntry& e = run.entry(p);
    const QString title = DocumentTitle(e.document, QString());
    if (!PrintFrontPageOrHeader(run, s, p, title)) return;
    const PageModel& m = run.page();
    const std::vector<Section> all = sections(comparisonOf(run));
    // A page that goes on with the table repeats its column headings.
    const ItemAt first = itemAt(all, e.firstRow);
    if (first.item == Item::Change || first.item == Item::CostChangeTotal)
        tableHeading(run, s, tableColumns(run), m.OriginY + kBodyTop * m.ScaleY);
    double y = ListBodyTop(run);
    for (int r = e.firstRow; r <= e.lastRow; ++r)
        y += bodyRow(run, &s, all, r, y);
    PrintBottomHeader(run, s, Footer::ProgramName);
}

bool ComparisonNeedsLandscape(PrintRun& run) {
    if (!run.comparison() || !run.PrintArea(1.0f)) return false;
    const ProjectComparison& c = comparisonOf(run);
    const TableColumns t = tableColumns(run);
    const Font f{run.settings().PrinterFont, 9};
    // A text wraps when one of its paragraphs is wider than its column; long texts are looked
    // at only as far as a column of the widest landscape page would show them.
    auto wraps = [&](const QString& text, double width) {
        for (const QStringView paragraph : QStringView(text).split(QStringLiteral("\r\n")))
            if (run.fonts().width(f, paragraph.left(400).toString()) > width - kGap) return true;
        return false;
    };
    for (const ChangeLine& line : c.lines)
        if (wraps(line.key, t.keyW) || wraps(line.oldText, t.oldW) || wraps(line.newText, t.newW))
            return true;
    return false;
}

} // namespace print
