#include "lists/Spreadsheet.h"

#include "lists/ListFiles.h"
#include "lists/ListProcedures.h"
#include "lists/spreadsheet/CellText.h"
#include "lists/spreadsheet/CompoundFile.h"
#include "lists/spreadsheet/Encryption.h"
#include "lists/spreadsheet/SheetReaders.h"
#include "platform/Dialogs.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTemporaryFile>

#include <xlsxwriter.h>

#include <array>
#include <cmath>
#include <filesystem>
#include <new>

namespace lists {

namespace {

constexpr int kBlankRowsThatEnd = 100;
// No workbook a list comes from is near this; a larger file is refused before it is read. The
// file is held whole while it is read, with a copy of an .xls workbook's stream (or an
// encrypted package's clear bytes) beside it and what the reader keeps: together they stay
// well within 1 GB.
constexpr qint64 kLargestFile = qint64(256) << 20;
// A list read from a spreadsheet without columns of its own takes at most this many.
constexpr int kWidestSheetList = 1024;

QString extensionOf(const QString& fileName) {
    return QFileInfo(fileName).suffix().toLower();
}

// The extensions of the spreadsheet files the import reads. Macro workbooks and templates are
// the same containers as .xlsx; only their cells are read, nothing in them is run.
const std::array<QLatin1StringView, 7> kSheetExtensions{QLatin1StringView("xls"),  QLatin1StringView("xlsx"),
                                                        QLatin1StringView("xlsm"), QLatin1StringView("xlsb"),
                                                        QLatin1StringView("xltx"), QLatin1StringView("xltm"),
                                                        QLatin1StringView("ods")};

QString cannotRead(const QString& fileName, const QString& detail) {
    return QStringLiteral("Taulukkotiedostoa: ") + fileName + QStringLiteral(" ei voitu lukea: ") + detail +
           QLatin1Char('.');
}

bool startsLikeBiff(const QByteArray& bytes) {
    if (bytes.size() < 4) return false;
    const auto id = static_cast<quint8>(bytes[0]) | (static_cast<quint8>(bytes[1]) << 8);
    return id == 0x0009 || id == 0x0209 || id == 0x0409 || id == 0x0809;
}

// Reads the first worksheet with the reader that fits what the file holds.
// A workbook packed in a ZIP archive: an OpenDocument spreadsheet, or an Office Open XML workbook
// with XML or binary parts.
bool readPackage(const QByteArray& bytes, sheet::SheetBuilder& builder, platform::ReadError* detail) {
    QString reason;
    const std::unique_ptr<sheet::Archive> zip = sheet::Archive::open(bytes, &reason);
    if (!zip) return platform::fail(detail, platform::ReadError::reason(reason));
    if (zip->contains(QStringLiteral("content.xml")) && !zip->contains(QStringLiteral("[Content_Types].xml")))
        return sheet::readOds(*zip, builder, detail);
    QString book;
    if (!sheet::workbookPartOf(*zip, book, detail)) return false;
    // A binary workbook's parts are .bin files; the package is the same.
    return book.endsWith(QLatin1String(".bin"), Qt::CaseInsensitive)
               ? sheet::readXlsb(*zip, book, builder, detail)
               : sheet::readXlsx(*zip, book, builder, detail);
}

bool readSheetData(const QString& fileName, int columns, sheet::SheetData& data, QString* error,
                   platform::ReadError* where) {
    auto fail = [&](const QString& message) {
        if (error) *error = message;
        return false;
    };
    if (!QFileInfo(fileName).isFile())
        return fail(QStringLiteral("Tiedostoa: ") + fileName + QStringLiteral(" ei löydy."));
    if (!isSpreadsheetFile(fileName))
        return fail(QStringLiteral("Tiedostoa: ") + fileName +
                    QStringLiteral(" ei voi tuoda. Tuettuja taulukkotiedostoja ovat ") +
                    spreadsheetExtensionsText() + QLatin1Char('.'));
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly)) return fail(cannotRead(fileName, file.errorString()));
    if (file.size() > kLargestFile)
        return fail(cannotRead(
            fileName, QStringLiteral("tiedosto on liian suuri (yli %1 Mt)").arg(kLargestFile >> 20)));
    const QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError) return fail(cannotRead(fileName, file.errorString()));

    sheet::SheetBuilder builder(columns);
    platform::ReadError detail;
    bool ok = false;
    try {
        if (sheet::looksLikeOle(bytes)) {
            // An .xls workbook, or an Office Open XML one encrypted into the compound file.
            const std::unique_ptr<sheet::CompoundFile> ole = sheet::CompoundFile::open(bytes, &detail.what);
            if (ole && sheet::isEncryptedPackage(*ole)) {
                QByteArray package;
                const sheet::Decryption result =
                    sheet::decryptPackage(*ole, sheet::defaultPassword(), package);
                if (result == sheet::Decryption::Done)
                    ok = readPackage(package, builder, &detail);
                else
                    detail.what = sheet::decryptionFailure(result);
            } else if (ole) {
                ok = sheet::readXls(bytes, builder, &detail);
            }
        } else if (startsLikeBiff(bytes)) {
            ok = sheet::readXls(bytes, builder, &detail);
        } else if (sheet::looksLikeZip(bytes)) {
            ok = readPackage(bytes, builder, &detail);
        } else {
            detail.what = QStringLiteral("tiedosto ei ole Excel- eikä OpenDocument-taulukko");
        }
    } catch (const std::bad_alloc&) {
        // The readers count what they keep; this is the last line, never a crash.
        ok = false;
        detail = platform::ReadError::reason(QStringLiteral("muisti ei riitä sen lukemiseen"));
    }
    if (!ok) {
        if (where) *where = detail;
        return fail(cannotRead(fileName, detail.text()));
    }
    data = builder.take();
    return true;
}

// The sheet's rows from row 1 on as `width` cells each (taken out of `data`), by the row rules
// of the import. Every row gets all its places (and a list row one more for its number), so a
// few cells far apart, or a short run repeated over a million rows, would take gigabytes: the
// rows are counted before they are laid out. False when they would pass what a reader may keep.
bool sheetRows(sheet::SheetData& data, int width, std::vector<QStringList>& out) {
    const qint64 rowCost = (qint64(width) + 1) * sheet::SheetBuilder::kPlace + qint64(sizeof(QStringList));
    const qint64 mostRows = sheet::SheetBuilder::kMostKept / rowCost;
    out.clear();
    int blankRun = 0;
    const QStringList blankRow = QStringList(width);
    // Adds blank rows; false when they end the sheet.
    auto blanks = [&](qint64 count) {
        const qint64 room = kBlankRowsThatEnd - blankRun;
        const qint64 add = std::min(count, room);
        out.insert(out.end(), static_cast<std::size_t>(add), blankRow);
        blankRun += static_cast<int>(add);
        return blankRun < kBlankRowsThatEnd;
    };
    int next = 0; // the next sheet row to add
    for (sheet::SheetRow& row : data.rows) {
        if (!blanks(row.index - next)) break;
        // The row's cells are taken, not copied: a full row needs no new list.
        QStringList cells = std::move(row.cells);
        cells.resize(width);
        const bool blank =
            std::all_of(cells.cbegin(), cells.cend(), [](const QString& c) { return BlankString(c); });
        if (blank) {
            if (!blanks(row.repeat)) break;
        } else {
            if (qint64(out.size()) + row.repeat > mostRows) return false;
            out.insert(out.end(), static_cast<std::size_t>(row.repeat), cells);
            blankRun = 0;
        }
        next = row.index + row.repeat;
    }
    out.resize(out.size() - static_cast<std::size_t>(blankRun));
    return true;
}

// The number of columns that hold text, at most `limit`.
int usedColumns(const sheet::SheetData& data) {
    qsizetype used = 0;
    for (const sheet::SheetRow& row : data.rows)
        for (qsizetype c = row.cells.size(); c > used; --c)
            if (!row.cells[c - 1].isEmpty()) {
                used = c;
                break;
            }
    return static_cast<int>(used);
}

bool isHeaderRow(const QStringList& cells, const ListModel& list) {
    for (int c = 1; c <= list.lastDataCol(); ++c)
        if (cells.value(c - 1).trimmed().compare(list.column(c).header.trimmed(), Qt::CaseInsensitive) != 0)
            return false;
    return true;
}

std::vector<Row> numberedRows(std::vector<QStringList>::iterator begin,
                              std::vector<QStringList>::iterator end) {
    std::vector<Row> rows(static_cast<std::size_t>(end - begin));
    // One builder for every row: its buffers are made once, not once a row.
    RowCells::Builder built;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        QStringList& cells = begin[static_cast<std::ptrdiff_t>(i)];
        for (const QString& cell : std::as_const(cells))
            built.add(cell);
        built.add(formatRowNumber(static_cast<long long>(i) + 1));
        rows[i].cells = built.take();
        cells = QStringList();
    }
    return rows;
}

// The width of an exported column in characters of the sheet's default font: the list's own
// width (twips), or more where the header or a cell is longer, so that the sheet reads without
// widening columns by hand; a long remark does not make its column wider than a screen.
double exportColumnWidth(const ListModel& list, int c) {
    constexpr qsizetype kWidest = 60;
    qsizetype longest = list.column(c).header.size();
    for (const Row& row : list.allRows()) {
        const QString text = row.cells.value(c - 1).toString();
        if (text.size() <= longest) continue;
        const qsizetype line = text.indexOf(QLatin1Char('\n'));
        longest = std::max(longest, std::min(line < 0 ? text.size() : line, kWidest));
        if (longest >= kWidest) break;
    }
    return std::clamp(std::max(list.column(c).width / 105.0, longest + 1.0), 4.0, kWidest + 1.0);
}

} // namespace

// ------------------------------------------------------------ numbers as text

QString spreadsheetNumberText(double value) {
    return sheet::generalNumberText(value);
}

std::optional<TypedNumber> cellTextNumber(const QString& text) {
    static const QRegularExpression pattern(QStringLiteral("^-?(0|[1-9][0-9]{0,14})(,([0-9]{1,15}))?$"));
    const QRegularExpressionMatch m = pattern.match(text);
    if (!m.hasMatch()) return std::nullopt;
    const int decimals = static_cast<int>(m.capturedLength(3));
    bool ok = false;
    QString dotted = text;
    const double value = dotted.replace(QLatin1Char(','), QLatin1Char('.')).toDouble(&ok);
    if (!ok || (value == 0 && text.startsWith(QLatin1Char('-')))) return std::nullopt;
    // Only what reads back as the same text: no more digits than a number holds.
    sheet::CellFormat shown;
    if (decimals > 0) {
        shown.kind = sheet::CellFormat::Fixed;
        shown.minDecimals = shown.maxDecimals = static_cast<std::uint8_t>(decimals);
    }
    if (sheet::numberText(value, shown) != text) return std::nullopt;
    return TypedNumber{value, decimals};
}

bool isSpreadsheetFile(const QString& fileName) {
    const QString ext = extensionOf(fileName);
    return std::find(kSheetExtensions.begin(), kSheetExtensions.end(), ext) != kSheetExtensions.end();
}

QString spreadsheetExtensionsText() {
    QString text;
    for (std::size_t i = 0; i < kSheetExtensions.size(); ++i) {
        if (i > 0) text += i + 1 == kSheetExtensions.size() ? QStringLiteral(" ja ") : QStringLiteral(", ");
        text += QLatin1Char('.') + kSheetExtensions[i];
    }
    return text;
}

// ------------------------------------------------------------ import

bool readFirstSheet(const QString& fileName, int colCount, std::vector<QStringList>& rows, QString* error,
                    platform::ReadError* where) {
    sheet::SheetData data;
    if (!readSheetData(fileName, colCount > 0 ? colCount : kWidestSheetList, data, error, where))
        return false;
    if (colCount <= 0 && data.cellsBeyondColumns) {
        if (error)
            *error = QStringLiteral("Taulukkotiedostossa: ") + fileName +
                     QStringLiteral(" on enemmän kuin %1 saraketta.").arg(kWidestSheetList);
        return false;
    }
    const int width = colCount > 0 ? colCount : usedColumns(data);
    std::vector<QStringList> laidOut;
    if (!sheetRows(data, width, laidOut)) {
        if (error)
            *error = cannotRead(fileName, QStringLiteral("taulukossa on enemmän soluja kuin ohjelma pystyy "
                                                         "tuomaan (%1 riviä, %2 saraketta)")
                                              .arg(data.rows.back().index + data.rows.back().repeat)
                                              .arg(width));
        return false;
    }
    rows = std::move(laidOut);
    return true;
}

bool readSpreadsheetList(const QString& fileName, ListModel& list, QString* error) {
    std::vector<QStringList> rows;
    if (!readFirstSheet(fileName, 0, rows, error)) return false;
    if (rows.empty()) {
        if (error)
            *error = QStringLiteral("Taulukkotiedoston: ") + fileName +
                     QStringLiteral(" ensimmäinen taulukko on tyhjä.");
        return false;
    }
    std::vector<Column> columns = columnsForHeaders(rows.front());
    list.reset(std::move(columns), numberedRows(rows.begin() + 1, rows.end()));
    return true;
}

bool ImportListViewXls(ListModel& list, const QString& fileName) {
    QString error;
    if (list.lastDataCol() == 0) {
        // No columns to keep (a missing template): the sheet brings its own, so no cell is lost.
        ListModel read;
        read.setKind(list.kind());
        if (!readSpreadsheetList(fileName, read, &error)) {
            platform::MsgBox(error, platform::MsgIcon::Information);
            return false;
        }
        list.reset(read.columns(), read.allRows());
        list.setCurrentRow(0);
        return true;
    }
    std::vector<QStringList> sheet;
    if (!readFirstSheet(fileName, list.lastDataCol(), sheet, &error)) {
        platform::MsgBox(error, platform::MsgIcon::Information);
        return false;
    }
    const auto first = !sheet.empty() && isHeaderRow(sheet.front(), list) ? sheet.begin() + 1 : sheet.begin();
    list.replaceRows(numberedRows(first, sheet.end()));
    list.setCurrentRow(0);
    return true;
}

// ------------------------------------------------------------ export

QString spreadsheetExportName(const QString& chosen) {
    if (chosen.isEmpty()) return {};
    const QFileInfo info(chosen);
    if (info.suffix().compare(QLatin1String("xlsx"), Qt::CaseInsensitive) == 0) return chosen;
    const QString name = info.suffix().compare(QLatin1String("xls"), Qt::CaseInsensitive) == 0
                             ? chosen.left(chosen.size() - info.suffix().size()) + QStringLiteral("xlsx")
                             : chosen + QStringLiteral(".xlsx");
    if (QFileInfo::exists(name) &&
        platform::Ask(QStringLiteral("Tiedosto ") + QDir::toNativeSeparators(name) +
                          QStringLiteral(" on jo olemassa.\r\nHaluatko korvata sen?"),
                      platform::MsgButtons::YesNo, platform::MsgIcon::Exclamation,
                      platform::MsgAnswer::No) != platform::MsgAnswer::Yes)
        return {};
    return name;
}

namespace {

// The list's header texts and cells written into the one sheet of a workbook: numbers as
// numbers with their decimals shown, other texts as texts. The first error is kept.
class SheetExport {
public:
    explicit SheetExport(lxw_workbook* workbook)
        : m_workbook(workbook)
        , m_sheet(workbook_add_worksheet(workbook, "Taulukko1")) {}

    void column(int c, double width, const QString& header) {
        worksheet_set_column(m_sheet, static_cast<lxw_col_t>(c), static_cast<lxw_col_t>(c), width, nullptr);
        if (!header.isEmpty()) text(0, c, header);
    }
    void cell(int r, int c, const QString& value) {
        if (const std::optional<TypedNumber> number = cellTextNumber(value)) {
            if (m_status == LXW_NO_ERROR)
                m_status = worksheet_write_number(m_sheet, r, static_cast<lxw_col_t>(c), number->value,
                                                  formatFor(number->decimals));
        } else {
            text(r, c, value);
        }
    }
    // Closes the workbook; the first error of the writing or the closing.
    lxw_error close() {
        const lxw_error closed = workbook_close(m_workbook);
        return m_status == LXW_NO_ERROR ? closed : m_status;
    }

private:
    void text(int r, int c, const QString& value) {
        if (m_status == LXW_NO_ERROR)
            m_status = worksheet_write_string(m_sheet, r, static_cast<lxw_col_t>(c),
                                              value.toUtf8().constData(), nullptr);
    }
    // One number format per count of decimals, so that "12,50" shows as 12,50.
    lxw_format* formatFor(int decimals) {
        if (decimals == 0) return nullptr;
        lxw_format*& f = m_decimalFormats[static_cast<std::size_t>(decimals)];
        if (!f) {
            f = workbook_add_format(m_workbook);
            const std::string code = "0." + std::string(static_cast<std::size_t>(decimals), '0');
            format_set_num_format(f, code.c_str());
        }
        return f;
    }

    lxw_workbook* m_workbook;
    lxw_worksheet* m_sheet;
    lxw_error m_status = LXW_NO_ERROR;
    std::array<lxw_format*, 16> m_decimalFormats{};
};

// Renames the finished workbook over `fileName`, with the permissions of the file it replaces;
// the reason when it cannot.
QString placeWorkbook(const QString& tempName, const QString& fileName) {
    QFile::setPermissions(tempName, QFileInfo::exists(fileName) ? QFile::permissions(fileName)
                                                                : QFile::ReadOwner | QFile::WriteOwner |
                                                                      QFile::ReadGroup | QFile::ReadOther);
    std::error_code ec;
    std::filesystem::rename(QFile::encodeName(tempName).toStdString(),
                            QFile::encodeName(fileName).toStdString(), ec);
    return ec ? QString::fromStdString(ec.message()) : QString();
}

} // namespace

bool ExportListViewXlsx(const ListModel& list, const QString& fileName, QString* error) {
    auto fail = [&](const QString& why) {
        if (error)
            *error = QStringLiteral("Tiedostoa: ") + fileName + QStringLiteral(" ei voi tallentaa.") + why;
        return false;
    };
    const int n = list.lastDataCol();
    if (list.rows() + 1 > static_cast<int>(LXW_ROW_MAX)) {
        if (error) *error = QStringLiteral("Luettelossa on liikaa rivejä taulukkoon.");
        return false;
    }

    // The workbook is written beside the target and renamed over it only when complete.
    const QFileInfo target(fileName);
    QTemporaryFile temp(target.absoluteDir().filePath(QStringLiteral(".tamrik-XXXXXX.xlsx")));
    if (!temp.open()) return fail(QLatin1Char(' ') + temp.errorString());
    const QString tempName = temp.fileName();
    temp.close();

    lxw_workbook* workbook = workbook_new(QFile::encodeName(tempName).constData());
    if (!workbook) return fail(QString());
    SheetExport sheet(workbook);
    for (int c = 1; c <= n; ++c)
        sheet.column(c - 1, exportColumnWidth(list, c), list.column(c).header);
    for (int r = 1; r <= list.rows(); ++r)
        for (int c = 1; c <= n; ++c)
            if (!list.cell(r, c).isEmpty()) sheet.cell(r, c - 1, list.cell(r, c).toString());
    const lxw_error status = sheet.close();
    const QString notPlaced =
        status == LXW_NO_ERROR ? placeWorkbook(tempName, fileName) : QString::fromUtf8(lxw_strerror(status));
    if (!notPlaced.isEmpty()) {
        QFile::remove(tempName);
        return fail(QLatin1Char(' ') + notPlaced);
    }
    return true;
}

} // namespace lists
