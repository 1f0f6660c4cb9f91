#include "lists/ListFiles.h"

#include <algorithm>

#include "lists/Spreadsheet.h"
#include "platform/Cp1252.h"
#include "platform/Dialogs.h"
#include "platform/TextFile.h"

#include <QFile>
#include <QFileInfo>

namespace lists {

namespace {

const QString kRowNumberHeader = QStringLiteral("Rivi");
constexpr int kHeaderMargin = 200; // twips beside the header text

// In a list file a cell is one field on one line: whether the text has separators or line
// breaks, which appendField appends to `line` as spaces (CR LF as one).
bool hasFieldBreaks(QStringView text) {
    return std::any_of(text.cbegin(), text.cend(), [](QChar c) {
        return c == QLatin1Char(';') || c == QLatin1Char('\r') || c == QLatin1Char('\n');
    });
}

void appendField(QString& line, QStringView text) {
    const qsizetype n = text.size();
    for (qsizetype i = 0; i < n; ++i) {
        const QChar c = text[i];
        if (c == QLatin1Char('\r') && i + 1 < n && text[i + 1] == QLatin1Char('\n')) ++i;
        const bool blank = c == QLatin1Char(';') || c == QLatin1Char('\r') || c == QLatin1Char('\n');
        line += blank ? QChar(QLatin1Char(' ')) : c;
    }
}

QStringList splitFields(const QString& line, const QString& separator) {
    return separator.isEmpty() ? QStringList{line} : line.split(separator);
}

// Why a file that is not text is refused, and where the user can open it instead.
QString notAListMessage(FileContent kind, const QString& fileName) {
    switch (kind) {
        case FileContent::Text:
            break;
        case FileContent::Spreadsheet:
            return QStringLiteral("Tiedosto ") + fileName +
                   QStringLiteral(" on taulukkolaskentatiedosto, ei luettelotiedosto. Tuo se "
                                  "luetteloon kohdasta \"Tuo...\".");
        case FileContent::Project:
            return QStringLiteral("Tiedosto ") + fileName +
                   QStringLiteral(" on TAMRIK-projekti, ei luettelotiedosto. Avaa se "
                                  "päävalikon kohdasta \"Tiedosto - Avaa...\".");
        case FileContent::Binary:
            return QStringLiteral("Tiedosto ") + fileName +
                   QStringLiteral(" ei ole luettelotiedosto: siinä on merkkejä, joita "
                                  "tekstitiedostossa ei ole.");
    }
    return QString();
}

// The rows of a list file's lines after the header, `n` cells each and "Rivi" numbered from 1.
std::vector<Row> rowsOfLines(const QStringList& lines, const QString& separator, int n) {
    std::vector<Row> rows(lines.size() - 1);
    RowCells::Builder cells;
    for (qsizetype i = 1; i < lines.size(); ++i) {
        // Short lines leave cells empty, extra fields are dropped.
        if (separator.isEmpty()) {
            if (n > 0) cells.add(lines[i]);
        } else {
            for (const QStringView field : QStringView(lines[i]).tokenize(separator)) {
                if (cells.size() == n) break;
                cells.add(field);
            }
        }
        cells.addEmpty(n - cells.size());
        cells.add(formatRowNumber(i));
        rows[i - 1].cells = cells.take();
    }
    return rows;
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

FileContent recogniseFile(const QByteArray& bytes) {
    static const QByteArray zip("PK\x03\x04");
    static const QByteArray emptyZip("PK\x05\x06");
    static const QByteArray ole("\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1");
    if (bytes.startsWith(zip) || bytes.startsWith(emptyZip) || bytes.startsWith(ole))
        return FileContent::Spreadsheet;
    if (!bytes.contains('\0')) {
        // Text has tabs and line ends but hardly any other control characters; random or
        // compressed bytes have one in every ten or so.
        const qsizetype n = std::min<qsizetype>(bytes.size(), 64 * 1024);
        qsizetype controls = 0;
        for (qsizetype i = 0; i < n; ++i) {
            const auto c = static_cast<unsigned char>(bytes[i]);
            if (c < 0x20 && c != '\t' && c != '\n' && c != '\r' && c != '\f' && c != 0x1A) ++controls;
        }
        return controls * 100 > n ? FileContent::Binary : FileContent::Text;
    }
    // A project: seven five-byte member entries, the text member's type 0, then CR LF.
    if (bytes.size() >= 37 && bytes[4] == '\0' && bytes[35] == '\r' && bytes[36] == '\n')
        return FileContent::Project;
    return FileContent::Binary;
}

FileContent recogniseFile(const QString& fileName) {
    QFile f(fileName);
    if (!f.open(QIODevice::ReadOnly)) return FileContent::Text;
    return recogniseFile(f.read(64 * 1024));
}

ReadStatus ReadListFile(const QString& fileName, const QString& separator, ListFileContent& content,
                        QString* error, const TextMeasure& measure) {
    auto failed = [&](const QString& message) {
        if (error) *error = message;
        return ReadStatus::Failed;
    };
    if (!QFileInfo(fileName).isFile()) {
        if (error) *error = QStringLiteral("Tiedostoa: ") + fileName + QStringLiteral(" ei löydy.");
        return ReadStatus::Missing;
    }
    QByteArray bytes;
    QString readError;
    if (!platform::readFileBytes(fileName, bytes, &readError)) return failed(readError);
    return readListBytes(bytes, fileName, separator, content, error, measure);
}

ReadStatus readListBytes(const QByteArray& bytes, const QString& fileName, const QString& separator,
                         ListFileContent& content, QString* error, const TextMeasure& measure) {
    auto failed = [&](const QString& message) {
        if (error) *error = message;
        return ReadStatus::Failed;
    };
    const FileContent kind = recogniseFile(bytes);
    if (kind != FileContent::Text) return failed(notAListMessage(kind, fileName));
    const QStringList lines = platform::splitLines(platform::decodeText(bytes));
    if (lines.isEmpty())
        return failed(QStringLiteral("Tiedostossa: ") + fileName + QStringLiteral(" ei ole otsikkoriviä."));
    const int n = separator.isEmpty() ? 1 : CalculateCols(lines.first(), separator);
    if (n > kMaxListColumns)
        return failed(QStringLiteral("Tiedostossa ") + fileName +
                      QStringLiteral(" on %1 saraketta. Luettelossa voi olla enintään %2 saraketta.")
                          .arg(n)
                          .arg(kMaxListColumns));
    // Every row gets a cell for each column however short its line is, so many short lines under
    // a wide header would take far more memory than the file holds. A list written by this
    // program has at least a separator per cell; allow twice that and a margin.
    const qsizetype rowCount = lines.size() - 1;
    if (rowCount > 0 && rowCount * n > 2 * bytes.size() + kListCellMargin)
        return failed(
            QStringLiteral("Tiedostossa ") + fileName +
            QStringLiteral(" on %1 riviä ja %2 saraketta mutta vain %3 tavua: se ei ole luettelotiedosto.")
                .arg(rowCount)
                .arg(n)
                .arg(bytes.size()));
    const QStringList headers = splitFields(lines.first(), separator);
    std::vector<Column> columns = columnsForHeaders(headers, measure);
    std::vector<Row> rows = rowsOfLines(lines, separator, n);
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

QByteArray listFileBytes(const ListModel& list, QString* unencodable) {
    const int n = list.lastDataCol();
    QByteArray bytes;
    bytes.reserve(qsizetype(list.rows() + 1) * (n + 2) * 8);
    QString field; // a cell whose separators or line breaks become spaces
    auto addLine = [&](auto cell) {
        for (int c = 1; c <= n; ++c) {
            if (c > 1) bytes += ';';
            const QStringView text = cell(c);
            // Nearly every cell has none of them and is encoded as it is.
            if (!hasFieldBreaks(text)) {
                platform::appendCp1252(bytes, text, unencodable);
                continue;
            }
            field.resize(0);
            appendField(field, text);
            platform::appendCp1252(bytes, field, unencodable);
        }
        bytes += "\r\n";
    };
    addLine([&](int c) { return QStringView(list.column(c).header); });
    for (int r = 1; r <= list.rows(); ++r)
        addLine([&](int c) { return list.cell(r, c); });
    return bytes;
}

bool SaveListView(const ListModel& list, const QString& fileName, QString* error, QString* unencodable) {
    return platform::writeFileAtomically(fileName, listFileBytes(list, unencodable), error);
}

std::vector<CellRef> cellsOutsideCp1252(const ListModel& list) {
    std::vector<CellRef> out;
    auto check = [&](int r, int c, QStringView text) {
        if (platform::isCp1252(text)) return;
        CellRef ref{r, c, {}};
        platform::toCp1252(text.toString(), &ref.characters);
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
