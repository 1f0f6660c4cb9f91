#include "app/CompareCommand.h"

#include "app/Help.h"
#include "app/PrintCommand.h"
#include "calc/ProjectCompare.h"
#include "persist/ProjectFile.h"
#include "print/Comparison.h"
#include "print/PdfOutput.h"

#include <QFileInfo>
#include <QGuiApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLocale>
#include <cstdio>
#include <memory>

namespace app {

namespace {

constexpr int kDiffer = 4;

QString padRight(const QString& text, int width) {
    return text.leftJustified(width, QLatin1Char(' '));
}

QString padLeft(const QString& text, int width) {
    return text.rightJustified(width, QLatin1Char(' '));
}

QJsonObject costsObject(const calc::CostRecord& record) {
    return calc::CostRecordObject(record);
}

QJsonValue qualityNumber(const calc::QualityRecord& record, bool hasRequirements) {
    return hasRequirements ? QJsonValue(calc::QualityNumberValue(record)) : QJsonValue(QJsonValue::Null);
}

QJsonValue rowCells(const QStringList& cells, calc::ChangeSource source) {
    if (cells.isEmpty()) return QJsonValue(QJsonValue::Null);
    QJsonObject o;
    for (int c = 1; c <= cells.size(); ++c)
        o.insert(calc::ColumnName(source, c), cells[c - 1]);
    return o;
}

const char* kindWord(calc::ChangeKind kind) {
    switch (kind) {
        case calc::ChangeKind::Added:
            return "added";
        case calc::ChangeKind::Removed:
            return "removed";
        case calc::ChangeKind::Changed:
            break;
    }
    return "changed";
}

// One JSON object: the costs of both versions as `tamrik costs` gives them, the quality numbers
// as `tamrik summary` gives them (null without requirements), the changed rows with their
// cells and the changed fields.
QByteArray json(const calc::ProjectComparison& c) {
    QJsonObject root;
    root.insert(QStringLiteral("costs"), QJsonObject{{QStringLiteral("old"), costsObject(c.oldCosts)},
                                                     {QStringLiteral("new"), costsObject(c.newCosts)}});
    root.insert(QStringLiteral("quality_number"),
                QJsonObject{{QStringLiteral("old"), qualityNumber(c.oldQuality, c.oldHasRequirements)},
                            {QStringLiteral("new"), qualityNumber(c.newQuality, c.newHasRequirements)}});
    QJsonArray rows;
    for (const calc::RowChange& r : c.rows) {
        const bool quantity = r.list == calc::ChangeSource::Quantity;
        QJsonObject o;
        o.insert(QStringLiteral("list"),
                 quantity ? QStringLiteral("quantity") : QStringLiteral("requirement"));
        o.insert(QStringLiteral("kind"), QLatin1String(kindWord(r.kind)));
        o.insert(QStringLiteral("key"), r.key);
        o.insert(QStringLiteral("old"), rowCells(r.oldCells, r.list));
        o.insert(QStringLiteral("new"), rowCells(r.newCells, r.list));
        o.insert(QStringLiteral("cost_change"), static_cast<double>(r.costChange()));
        rows.append(o);
    }
    root.insert(QStringLiteral("rows"), rows);
    QJsonArray fields;
    for (const calc::FieldChange& f : c.fields)
        fields.append(QJsonObject{{QStringLiteral("window"), calc::WindowName(f.window)},
                                  {QStringLiteral("field"), f.field},
                                  {QStringLiteral("old"), f.oldText},
                                  {QStringLiteral("new"), f.newText}});
    root.insert(QStringLiteral("fields"), fields);
    return QJsonDocument(root).toJson(QJsonDocument::Indented);
}

bool read(const QString& file, persist::ProjectFile& project, bool textOnly, QString* error) {
    if (persist::ReadProjectFile(file, textOnly, project, error)) return true;
    *error = file + QStringLiteral(": ") + *error;
    return false;
}

// The comparison printed to a PDF file, upright or, when its table needs the width, landscape.
int writePdf(const calc::ProjectComparison& comparison, const persist::ProjectFile& newer,
             const QString& file) {
    print::ProjectSource source = print::SourceFromProject(newer);
    print::Selection selection;
    print::PrintRun run(source.source, selection,
                        userPrintSettings(QCoreApplication::applicationDirPath() + QLatin1Char('/')));
    run.setInform([](const QString& message) {
        std::fprintf(stderr, "tamrik: %s\n", message.toLocal8Bit().constData());
    });
    run.setComparison(&comparison);
    QPageLayout layout = print::DefaultPageLayout();
    run.setDevice(print::MetricsOf(layout, print::kDefaultResolution));
    if (print::ComparisonNeedsLandscape(run)) layout.setOrientation(QPageLayout::Landscape);
    QString error;
    const print::OutputResult result =
        print::WritePdf(run, file, layout, print::kDefaultResolution, {}, &error);
    if (result == print::OutputResult::Printed) return 0;
    return fail(error.isEmpty() ? QStringLiteral("tiedostoa %1 ei kirjoitettu").arg(file) : error);
}

// The plain text report, lines ending in a line feed.
QString reportText(const calc::ProjectComparison& c) {
    QString out;
    const auto line = [&out](const QString& text = QString()) { out += text + QLatin1Char('\n'); };
    line(QStringLiteral("MUUTOSVERTAILU"));
    line(QStringLiteral("Vanha versio: ") + c.oldName);
    line(QStringLiteral("Uusi versio:  ") + c.newName);
    line();
    int labelWidth = 0;
    for (const calc::SummaryRow& r : c.summary)
        labelWidth = std::max(labelWidth, static_cast<int>(std::min<qsizetype>(r.label.size(), 48)));
    for (const calc::SummaryRow& r : c.summary) {
        if (r.type == calc::SummaryRow::Blank) {
            line();
            continue;
        }
        QString text = padRight(r.label, labelWidth) + padLeft(r.oldText, 17) + padLeft(r.newText, 17) +
                       padLeft(r.change, 16) + padLeft(r.percent, 11);
        while (text.endsWith(QLatin1Char(' ')))
            text.chop(1);
        line(text);
    }
    line();
    line(QStringLiteral("MUUTOKSET: lisätty %1, poistettu %2, muutettu %3")
             .arg(c.count(calc::ChangeKind::Added))
             .arg(c.count(calc::ChangeKind::Removed))
             .arg(c.count(calc::ChangeKind::Changed)));
    if (c.lines.empty()) line(QStringLiteral("Versioissa ei ole eroja."));
    const QString indent(4, QLatin1Char(' '));
    auto flat = [](QString text) {
        text.replace(QLatin1String("\r\n"), QLatin1String(" / "));
        return text;
    };
    for (const calc::ChangeLine& l : c.lines) {
        if (l.first) {
            line();
            line(padRight(calc::ChangeKindText(l.kind), 10) + padRight(l.place, 18) + flat(l.key));
            if (l.source == calc::ChangeSource::Quantity) {
                const calc::RowChange& r = c.rows[l.change];
                if (r.oldCost != 0 || r.newCost != 0)
                    line(indent + QStringLiteral("Kustannusmuutos: ") +
                         calc::MoneyChangeText(r.costChange()));
            }
        }
        if (!l.column.isEmpty())
            line(indent + l.column + QStringLiteral(": ") + flat(l.oldText) + QStringLiteral(" -> ") +
                 flat(l.newText));
        else if (l.kind == calc::ChangeKind::Changed)
            line(indent + flat(l.oldText) + QStringLiteral(" -> ") + flat(l.newText));
        else if (!l.oldText.isEmpty() || !l.newText.isEmpty())
            line(indent + flat(l.kind == calc::ChangeKind::Removed ? l.oldText : l.newText));
    }
    return out;
}

} // namespace

int compareCommand(int argc, char** argv) {
    QStringList files;
    QString pdf;
    bool asJson = false;
    for (int i = 2; i < argc; ++i) {
        const QString arg = QString::fromLocal8Bit(argv[i]);
        if (arg == QLatin1String("--json"))
            asJson = true;
        else if (arg == QLatin1String("--pdf") && i + 1 < argc)
            pdf = QString::fromLocal8Bit(argv[++i]);
        else if (!arg.startsWith(QLatin1Char('-')))
            files << arg;
        else
            return usageError(QStringLiteral("compare"));
    }
    if (files.size() != 2) return usageError(QStringLiteral("compare"));

    // Fonts and a paint device only for the PDF file; the reports need neither.
    std::unique_ptr<QCoreApplication> application;
    if (!pdf.isEmpty()) {
        for (const QString& f : files)
            if (QFileInfo(f).absoluteFilePath() == QFileInfo(pdf).absoluteFilePath())
                return fail(QStringLiteral("tuloste ei voi korvata projektitiedostoa %1").arg(f));
        if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
        application = std::make_unique<QGuiApplication>(argc, argv);
    } else {
        application = std::make_unique<QCoreApplication>(argc, argv);
    }
    // Money is grouped as the desktop program groups it, whatever the shell's locale.
    QLocale::setDefault(QLocale(QLocale::Finnish, QLocale::Finland));

    persist::ProjectFile older, newer, newerKept;
    QString error;
    if (!read(files[0], older, false, &error) || !read(files[1], newer, false, &error)) return fail(error);
    // The PDF's pages show the newer version's own texts, so its file is kept for them.
    if (!pdf.isEmpty()) newerKept = newer;
    const calc::ProjectVersion a =
        print::VersionFromProject(std::move(older), QFileInfo(files[0]).absoluteFilePath());
    const calc::ProjectVersion b =
        print::VersionFromProject(std::move(newer), QFileInfo(files[1]).absoluteFilePath());
    const calc::ProjectComparison comparison = calc::CompareProjects(a, b);
    // A total past the range of a cost figure is no figure to compare, as for `tamrik costs`.
    for (const auto& [file, costs] :
         {std::pair{files[0], &comparison.oldCosts}, std::pair{files[1], &comparison.newCosts}})
        if (costs->nonFiniteRow != 0)
            return fail(file + QStringLiteral(": ") + calc::NonFiniteMessage(*costs));

    const QByteArray output = asJson ? json(comparison) : reportText(comparison).toUtf8();
    std::fwrite(output.constData(), 1, static_cast<std::size_t>(output.size()), stdout);
    std::fflush(stdout);
    if (!pdf.isEmpty() && writePdf(comparison, newerKept, pdf) != 0) return 1;
    return comparison.equal() ? 0 : kDiffer;
}

} // namespace app
