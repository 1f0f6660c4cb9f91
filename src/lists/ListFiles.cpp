#include "lists/ListFiles.h"

#include "lists/Spreadsheet.h"
#include "platform/Cp1252.h"
#include "platform/Dialogs.h"
#include "platform/TextFile.h"

#include <QFileInfo>

namespace lists {

namespace {

const QString kRowNumberHeader = QStringLiteral("Rivi");
constexpr int kHeaderMargin = 200; // twips beside the header text

// In a list file a cell is one field on one line.
QString fileField(const QString& text) {
    QString out = text;
    out.replace(QLatin1String("\r\n"), QLatin1String(" "));
    for (QChar& c : out)
        if (c == QLatin1Char(';') || c == QLatin1Char('\r') || c == QLatin1Char('\n')) c = QLatin1Char(' ');
    return out;
}

QStringList splitFields(const QString& line, const QString& separator) {
    return separator.isEmpty() ? QStringList{line} : line.split(separator);
}

} // namespace

int approximateTextWidth(const QString& text) {
    return 90 * static_cast<int>(text.size());
}

std::vector<Column> columnsForHeaders(const QStringList& headers, const TextMeasure& measure) {
    std::vector<Column> columns;
    columns.reserve(headers.size() + 1);
    for (const QString& header : headers)
        columns.push_back(
            {header, (measure ? measure(header) : approximateTextWidth(header)) + kHeaderMargin});
    columns.push_back({kRowNumberHeader, 0});
    return columns;
}

int CalculateCols(const QString& line, const QString& separator) {
    return 1 + static_cast<int>(line.count(separator));
}

QString ParseString(const QString& line, int field, const QString& separator) {
    if (field < 1) return QString();
    if (separator.isEmpty()) return field == 1 ? line : QString();
    qsizetype start = 0;
    for (int k = 1; k < field; ++k) {
        const qsizetype next = line.indexOf(separator, start);
        if (next < 0) return QString();
        start = next + separator.size();
    }
    const qsizetype end = line.indexOf(separator, start);
    return line.mid(start, end < 0 ? -1 : end - start);
}

ReadStatus ReadListFile(const QString& fileName, const QString& separator, ListFileContent& content,
                        QString* error, const TextMeasure& measure) {
    if (!QFileInfo(fileName).isFile()) {
        if (error) *error = QStringLiteral("Tiedostoa: ") + fileName + QStringLiteral(" ei löydy.");
        return ReadStatus::Missing;
    }
    QStringList lines;
    QString readError;
    if (!platform::readTextLines(fileName, lines, &readError)) {
        if (error) *error = readError;
        return ReadStatus::Failed;
    }
    if (lines.isEmpty()) {
        if (error)
            *error = QStringLiteral("Tiedostossa: ") + fileName + QStringLiteral(" ei ole otsikkoriviä.");
        return ReadStatus::Failed;
    }
    const QStringList headers = splitFields(lines.first(), separator);
    const int n = static_cast<int>(headers.size());
    std::vector<Column> columns = columnsForHeaders(headers, measure);

    std::vector<Row> rows(lines.size() - 1);
    for (qsizetype i = 1; i < lines.size(); ++i) {
        QStringList cells = splitFields(lines[i], separator);
        cells.resize(n); // short lines leave cells empty, extra fields are dropped
        cells.append(formatRowNumber(i));
        rows[i - 1].cells = std::move(cells);
    }
    content.columns = std::move(columns);
    content.rows = std::move(rows);
    return ReadStatus::Ok;
}

bool InitListView(ListModel& list, const QString& fileName, const QString& separator,
                  const TextMeasure& measure) {
    if (separator == QLatin1String(".xls")) return ImportListViewXls(list, fileName);
    ListFileContent content;
    QString error;
    switch (ReadListFile(fileName, separator, content, &error, measure)) {
        case ReadStatus::Missing:
            platform::MsgBox(error, platform::MsgIcon::Information);
            return false;
        case ReadStatus::Failed:
            platform::MsgBox(error);
            return false;
        case ReadStatus::Ok:
            break;
    }
    list.reset(std::move(content.columns), std::move(content.rows));
    return true;
}

QStringList listFileLines(const ListModel& list) {
    const int n = list.lastDataCol();
    QStringList lines;
    lines.reserve(list.rows() + 1);
    QStringList fields;
    fields.reserve(n);
    for (int c = 1; c <= n; ++c)
        fields.append(fileField(list.column(c).header));
    lines.append(fields.join(QLatin1Char(';')));
    for (int r = 1; r <= list.rows(); ++r) {
        fields.clear();
        for (int c = 1; c <= n; ++c)
            fields.append(fileField(list.cell(r, c)));
        lines.append(fields.join(QLatin1Char(';')));
    }
    return lines;
}

bool SaveListView(const ListModel& list, const QString& fileName, QString* error, QString* unencodable) {
    return platform::writeTextLines(fileName, listFileLines(list), error, unencodable);
}

std::vector<CellRef> cellsOutsideCp1252(const ListModel& list) {
    std::vector<CellRef> out;
    auto check = [&](int r, int c, const QString& text) {
        if (platform::isCp1252(text)) return;
        CellRef ref{r, c, {}};
        platform::toCp1252(text, &ref.characters);
        out.push_back(ref);
    };
    for (int c = 1; c <= list.lastDataCol(); ++c)
        check(0, c, list.column(c).header);
    for (int r = 1; r <= list.rows(); ++r)
        for (int c = 1; c <= list.lastDataCol(); ++c)
            check(r, c, list.cell(r, c));
    return out;
}

QString comboDataPath(const QString& appPath, int windowType) {
    return appPath + QStringLiteral("Tamrik30_combodata") + QString::number(windowType) +
           QStringLiteral(".csv");
}

ComboData readComboData(const QString& path, int comboCount, const QDate& today) {
    ComboData data;
    data.entries.resize(std::max(comboCount, 0));
    QStringList lines;
    if (!platform::readTextLines(path, lines, &data.error)) {
        if (data.error.isEmpty())
            data.error = QStringLiteral("Tiedostoa: ") + path + QStringLiteral(" ei löydy.");
        return data;
    }
    const QString date = today.toString(QStringLiteral("d.M.yyyy"));
    for (qsizetype i = 1; i < lines.size(); ++i) {
        const QStringList fields = lines[i].split(QLatin1Char(';'));
        for (int k = 0; k < comboCount && k < fields.size(); ++k) {
            if (fields[k].isEmpty()) continue;
            QString entry = fields[k];
            entry.replace(QLatin1String("{DATE}"), date);
            data.entries[k].append(entry);
        }
    }
    return data;
}

} // namespace lists
