#include "lists/Spreadsheet.h"

#include "lists/ListProcedures.h"
#include "platform/Dialogs.h"

#include <QDate>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTemporaryFile>
#include <QTime>

#include <freexl.h>
#include <ixion/address.hpp>
#include <ixion/cell_access.hpp>
#include <ixion/model_context.hpp>
#include <orcus/orcus_ods.hpp>
#include <orcus/orcus_xlsx.hpp>
#include <orcus/spreadsheet/document.hpp>
#include <orcus/spreadsheet/factory.hpp>
#include <orcus/spreadsheet/import_interface.hpp>
#include <orcus/spreadsheet/sheet.hpp>
#include <orcus/spreadsheet/styles.hpp>
#include <xlsxwriter.h>

#include <cmath>
#include <filesystem>
#include <map>
#include <memory>
#include <unordered_map>

namespace lists {

namespace {

namespace ss = orcus::spreadsheet;

constexpr int kBlankRowsThatEnd = 100;

QString cannotRead(const QString& fileName) {
    return QStringLiteral("Taulukkotiedostoa: ") + fileName +
           QStringLiteral(" ei voitu lukea. Tiedosto on vahingoittunut tai sen muotoa ei tunneta.");
}

QString extensionOf(const QString& fileName) {
    return QFileInfo(fileName).suffix().toLower();
}

// ------------------------------------------------------------ dates and times as typed

struct DateTime {
    int year = 0, month = 0, day = 0, hour = 0, minute = 0;
    double second = 0;
};

QString timeText(int hour, int minute, double second) {
    const int s = static_cast<int>(std::lround(second));
    QString t =
        QString::number(hour) + QLatin1Char(':') + QStringLiteral("%1").arg(minute, 2, 10, QLatin1Char('0'));
    if (s != 0) t += QLatin1Char(':') + QStringLiteral("%1").arg(s, 2, 10, QLatin1Char('0'));
    return t;
}

// d.M.yyyy, with the time after it when the value has one; a time alone without a date.
QString dateTimeText(const DateTime& v, bool withDate, bool withTime) {
    const bool hasTime = v.hour != 0 || v.minute != 0 || std::lround(v.second) != 0;
    QString out;
    if (withDate)
        out = QString::number(v.day) + QLatin1Char('.') + QString::number(v.month) + QLatin1Char('.') +
              QString::number(v.year);
    if (withTime && (hasTime || !withDate)) {
        if (!out.isEmpty()) out += QLatin1Char(' ');
        out += timeText(v.hour, v.minute, v.second);
    }
    return out;
}

// Which parts of a number format show a date and a time ("General" and "0,00" neither).
struct FormatKind {
    bool date = false;
    bool time = false;
};

FormatKind formatKindOfCode(std::string_view code) {
    FormatKind kind;
    bool quoted = false;
    bool bracket = false;
    for (std::size_t i = 0; i < code.size(); ++i) {
        const char c = code[i];
        if (c == '"') quoted = !quoted;
        if (quoted) continue;
        if (c == '\\' || c == '_' || c == '*') { // the next character is shown as it is
            ++i;
            continue;
        }
        if (c == '[') bracket = true;
        if (c == ']') bracket = false;
        if (bracket) continue;
        const char l = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        if (l == 'd' || l == 'y') kind.date = true;
        if (l == 'h' || l == 's') kind.time = true;
    }
    return kind;
}

// The built-in number formats of the .xlsx format that show dates or times.
FormatKind formatKindOfBuiltin(std::size_t id) {
    if ((id >= 14 && id <= 17) || (id >= 27 && id <= 31) || (id >= 34 && id <= 36) || (id >= 50 && id <= 58))
        return {true, false};
    if ((id >= 18 && id <= 21) || (id >= 32 && id <= 33) || (id >= 45 && id <= 47)) return {false, true};
    if (id == 22) return {true, true};
    return {};
}

QString dateFromIsoText(const char* text) {
    // FreeXL gives "YYYY-MM-DD", "YYYY-MM-DD HH:MM:SS" or "HH:MM:SS".
    const QString s = QString::fromUtf8(text);
    DateTime v;
    const QDate d = QDate::fromString(s.left(10), QStringLiteral("yyyy-MM-dd"));
    const bool withDate = d.isValid();
    if (withDate) {
        v.year = d.year();
        v.month = d.month();
        v.day = d.day();
    }
    const QTime t = QTime::fromString(withDate ? s.mid(11) : s, QStringLiteral("HH:mm:ss"));
    if (t.isValid()) {
        v.hour = t.hour();
        v.minute = t.minute();
        v.second = t.second();
    }
    if (!withDate && !t.isValid()) return s;
    return dateTimeText(v, withDate, t.isValid());
}

// ------------------------------------------------------------ sheet readers

// One worksheet opened for reading: its size and the text of any cell (0-based).
class SheetSource {
public:
    virtual ~SheetSource() = default;
    virtual int rowCount() const = 0;
    virtual int colCount() const = 0;
    virtual QString text(int row, int col) const = 0;
};

class XlsSheet : public SheetSource {
public:
    ~XlsSheet() override {
        if (m_handle) freexl_close(m_handle);
    }
    bool open(const QString& fileName) {
        if (freexl_open(QFile::encodeName(fileName).constData(), &m_handle) != FREEXL_OK) return false;
        unsigned int sheets = 0;
        if (freexl_get_info(m_handle, FREEXL_BIFF_SHEET_COUNT, &sheets) != FREEXL_OK || sheets == 0)
            return false;
        if (freexl_select_active_worksheet(m_handle, 0) != FREEXL_OK) return false;
        unsigned int rows = 0;
        unsigned short cols = 0;
        if (freexl_worksheet_dimensions(m_handle, &rows, &cols) != FREEXL_OK) return false;
        m_rows = static_cast<int>(rows);
        m_cols = cols;
        return true;
    }
    int rowCount() const override { return m_rows; }
    int colCount() const override { return m_cols; }
    QString text(int row, int col) const override {
        if (row >= m_rows || col >= m_cols) return {};
        FreeXL_CellValue v;
        if (freexl_get_cell_value(m_handle, row, static_cast<unsigned short>(col), &v) != FREEXL_OK)
            return {};
        switch (v.type) {
            case FREEXL_CELL_INT:
                return QString::number(v.value.int_value);
            case FREEXL_CELL_DOUBLE:
                return spreadsheetNumberText(v.value.double_value);
            case FREEXL_CELL_TEXT:
            case FREEXL_CELL_SST_TEXT:
                return QString::fromUtf8(v.value.text_value);
            case FREEXL_CELL_DATE:
            case FREEXL_CELL_DATETIME:
            case FREEXL_CELL_TIME:
                return dateFromIsoText(v.value.text_value);
            default:
                return {};
        }
    }

private:
    const void* m_handle = nullptr;
    int m_rows = 0;
    int m_cols = 0;
};

// Passes everything through to the document's own sheet and notes the cells that the file
// marked as dates: an .ods file says so per cell, while the model keeps only the number.
class DateNotingSheet : public ss::iface::import_sheet {
public:
    DateNotingSheet(ss::iface::import_sheet* inner, std::map<std::pair<int, int>, DateTime>* dates)
        : m_inner(inner)
        , m_dates(dates) {}
    ss::iface::import_sheet_view* get_sheet_view() override { return m_inner->get_sheet_view(); }
    ss::iface::import_sheet_properties* get_sheet_properties() override {
        return m_inner->get_sheet_properties();
    }
    ss::iface::import_data_table* get_data_table() override { return m_inner->get_data_table(); }
    ss::iface::import_auto_filter* get_auto_filter() override { return m_inner->get_auto_filter(); }
    ss::iface::import_table* get_table() override { return m_inner->get_table(); }
    ss::iface::import_conditional_format* get_conditional_format() override {
        return m_inner->get_conditional_format();
    }
    ss::iface::import_named_expression* get_named_expression() override {
        return m_inner->get_named_expression();
    }
    ss::iface::import_array_formula* get_array_formula() override { return m_inner->get_array_formula(); }
    ss::iface::import_formula* get_formula() override { return m_inner->get_formula(); }
    void set_auto(ss::row_t row, ss::col_t col, std::string_view s) override {
        m_inner->set_auto(row, col, s);
    }
    void set_string(ss::row_t row, ss::col_t col, ss::string_id_t sindex) override {
        m_inner->set_string(row, col, sindex);
    }
    void set_value(ss::row_t row, ss::col_t col, double value) override {
        m_inner->set_value(row, col, value);
    }
    void set_bool(ss::row_t row, ss::col_t col, bool value) override { m_inner->set_bool(row, col, value); }
    void set_date_time(ss::row_t row, ss::col_t col, int year, int month, int day, int hour, int minute,
                       double second) override {
        (*m_dates)[{row, col}] = DateTime{year, month, day, hour, minute, second};
        m_inner->set_date_time(row, col, year, month, day, hour, minute, second);
    }
    void set_format(ss::row_t row, ss::col_t col, std::size_t xf) override {
        m_inner->set_format(row, col, xf);
    }
    void set_format(ss::row_t row_start, ss::col_t col_start, ss::row_t row_end, ss::col_t col_end,
                    std::size_t xf) override {
        m_inner->set_format(row_start, col_start, row_end, col_end, xf);
    }
    void fill_down_cells(ss::row_t row, ss::col_t col, ss::row_t size) override {
        m_inner->fill_down_cells(row, col, size);
    }
    ss::range_size_t get_sheet_size() const override { return m_inner->get_sheet_size(); }

private:
    ss::iface::import_sheet* m_inner;
    std::map<std::pair<int, int>, DateTime>* m_dates;
};

class DateNotingFactory : public ss::iface::import_factory {
public:
    explicit DateNotingFactory(ss::import_factory& inner)
        : m_inner(inner) {}
    std::map<std::pair<int, int>, DateTime> dates; // of the first sheet

    ss::iface::import_global_settings* get_global_settings() override {
        return m_inner.get_global_settings();
    }
    ss::iface::import_shared_strings* get_shared_strings() override { return m_inner.get_shared_strings(); }
    ss::iface::import_named_expression* get_named_expression() override {
        return m_inner.get_named_expression();
    }
    ss::iface::import_styles* get_styles() override { return m_inner.get_styles(); }
    ss::iface::import_reference_resolver* get_reference_resolver(ss::formula_ref_context_t cxt) override {
        return m_inner.get_reference_resolver(cxt);
    }
    ss::iface::import_pivot_cache_definition*
    create_pivot_cache_definition(ss::pivot_cache_id_t id) override {
        return m_inner.create_pivot_cache_definition(id);
    }
    ss::iface::import_pivot_cache_records* create_pivot_cache_records(ss::pivot_cache_id_t id) override {
        return m_inner.create_pivot_cache_records(id);
    }
    ss::iface::import_sheet* append_sheet(ss::sheet_t index, std::string_view name) override {
        return wrap(m_inner.append_sheet(index, name), index);
    }
    ss::iface::import_sheet* get_sheet(std::string_view name) override {
        ss::iface::import_sheet* s = m_inner.get_sheet(name);
        for (auto& [index, tap] : m_taps)
            if (m_inner.get_sheet(index) == s) return tap.get();
        return s;
    }
    ss::iface::import_sheet* get_sheet(ss::sheet_t index) override {
        return wrap(m_inner.get_sheet(index), index);
    }
    void finalize() override { m_inner.finalize(); }

private:
    ss::iface::import_sheet* wrap(ss::iface::import_sheet* sheet, ss::sheet_t index) {
        if (!sheet || index != 0) return sheet;
        auto& tap = m_taps[index];
        if (!tap) tap = std::make_unique<DateNotingSheet>(sheet, &dates);
        return tap.get();
    }

    ss::import_factory& m_inner;
    std::map<ss::sheet_t, std::unique_ptr<DateNotingSheet>> m_taps;
};

class OrcusSheet : public SheetSource {
public:
    bool open(const QString& fileName, bool ods) {
        ss::import_factory factory(m_doc);
        DateNotingFactory tap(factory);
        try {
            const std::string path = QFile::encodeName(fileName).toStdString();
            if (ods)
                orcus::orcus_ods(&tap).read_file(path);
            else
                orcus::orcus_xlsx(&tap).read_file(path);
        } catch (...) {
            return false;
        }
        m_dates = std::move(tap.dates);
        if (m_doc.get_sheet_count() == 0) return false;
        m_sheet = m_doc.get_sheet(ss::sheet_t(0));
        if (!m_sheet) return false;
        const ixion::abs_range_t range = m_sheet->get_data_range();
        if (range.valid()) {
            m_rows = range.last.row + 1;
            m_cols = range.last.column + 1;
        }
        // .xlsx keeps dates as numbers with a date format; .ods marks them per cell (above).
        m_useFormats = !ods;
        if (m_useFormats) {
            const ss::styles& styles = m_doc.get_styles();
            for (std::size_t i = 0; i < styles.get_number_format_count(); ++i)
                if (const ss::number_format_t* nf = styles.get_number_format(i))
                    m_formatKinds[nf->identifier] = formatKindOfCode(nf->format_string);
        }
        return true;
    }
    int rowCount() const override { return m_rows; }
    int colCount() const override { return m_cols; }
    QString text(int row, int col) const override {
        try {
            const ixion::cell_access cell =
                m_doc.get_model_context().get_cell_access(ixion::abs_address_t(0, row, col));
            switch (cell.get_value_type()) {
                case ixion::cell_value_t::string: {
                    const std::string_view s = cell.get_string_value();
                    return QString::fromUtf8(s.data(), static_cast<qsizetype>(s.size()));
                }
                case ixion::cell_value_t::numeric:
                    return numberText(row, col, cell.get_numeric_value());
                case ixion::cell_value_t::boolean:
                    return cell.get_boolean_value() ? QStringLiteral("TOSI") : QStringLiteral("EPÄTOSI");
                default:
                    return {};
            }
        } catch (...) {
            return {}; // a formula without a stored result
        }
    }

private:
    QString numberText(int row, int col, double value) const {
        if (const auto it = m_dates.find({row, col}); it != m_dates.end())
            return dateTimeText(it->second, true, true);
        if (m_useFormats) {
            const FormatKind kind = formatKindAt(row, col);
            if (kind.date || kind.time) {
                const orcus::date_time_t t = m_sheet->get_date_time(row, col);
                return dateTimeText({t.year, t.month, t.day, t.hour, t.minute, t.second}, kind.date,
                                    kind.time);
            }
        }
        return spreadsheetNumberText(value);
    }
    FormatKind formatKindAt(int row, int col) const {
        const ss::cell_format_t* format =
            m_doc.get_styles().get_cell_format(m_sheet->get_cell_format(row, col));
        if (!format) return {};
        if (const auto it = m_formatKinds.find(format->number_format); it != m_formatKinds.end())
            return it->second;
        return formatKindOfBuiltin(format->number_format);
    }

    ss::document m_doc{ss::range_size_t{1048576, 16384}};
    const ss::sheet* m_sheet = nullptr;
    std::map<std::pair<int, int>, DateTime> m_dates;
    std::unordered_map<std::size_t, FormatKind> m_formatKinds;
    bool m_useFormats = false;
    int m_rows = 0;
    int m_cols = 0;
};

std::unique_ptr<SheetSource> openSheet(const QString& fileName, QString* error) {
    auto fail = [&](const QString& message) {
        if (error) *error = message;
        return nullptr;
    };
    if (!QFileInfo(fileName).isFile())
        return fail(QStringLiteral("Tiedostoa: ") + fileName + QStringLiteral(" ei löydy."));
    const QString ext = extensionOf(fileName);
    if (ext == QLatin1String("xls")) {
        auto sheet = std::make_unique<XlsSheet>();
        if (!sheet->open(fileName)) return fail(cannotRead(fileName));
        return sheet;
    }
    if (ext == QLatin1String("xlsx") || ext == QLatin1String("ods")) {
        auto sheet = std::make_unique<OrcusSheet>();
        if (!sheet->open(fileName, ext == QLatin1String("ods"))) return fail(cannotRead(fileName));
        return sheet;
    }
    return fail(QStringLiteral("Tiedostoa: ") + fileName +
                QStringLiteral(" ei voi tuoda. Tuettuja taulukkotiedostoja ovat .xls, .xlsx ja .ods."));
}

} // namespace

// ------------------------------------------------------------ numbers as text

QString spreadsheetNumberText(double value) {
    if (!std::isfinite(value)) return {};
    if (value == 0) return QStringLiteral("0");
    const double magnitude = std::fabs(value);
    if (std::floor(value) == value && magnitude < 1e15) return QString::number(static_cast<qint64>(value));
    // Fifteen significant digits, as spreadsheets show them, without trailing zeros.
    const int exponent = static_cast<int>(std::floor(std::log10(magnitude)));
    const int decimals = std::clamp(14 - exponent, 0, 330);
    QString text = QString::number(value, 'f', decimals);
    if (text.contains(QLatin1Char('.'))) {
        while (text.endsWith(QLatin1Char('0')))
            text.chop(1);
        if (text.endsWith(QLatin1Char('.'))) text.chop(1);
    }
    if (text == QLatin1String("-0")) return QStringLiteral("0");
    text.replace(QLatin1Char('.'), QLatin1Char(','));
    return text;
}

std::optional<double> cellTextNumber(const QString& text) {
    static const QRegularExpression pattern(QStringLiteral("^-?[0-9]{1,20}(,[0-9]{1,20})?$"));
    if (!pattern.match(text).hasMatch()) return std::nullopt;
    bool ok = false;
    QString dotted = text;
    const double value = dotted.replace(QLatin1Char(','), QLatin1Char('.')).toDouble(&ok);
    if (!ok || spreadsheetNumberText(value) != text) return std::nullopt;
    return value;
}

bool isSpreadsheetFile(const QString& fileName) {
    const QString ext = extensionOf(fileName);
    return ext == QLatin1String("xls") || ext == QLatin1String("xlsx") || ext == QLatin1String("ods");
}

// ------------------------------------------------------------ import

bool readFirstSheet(const QString& fileName, int colCount, std::vector<QStringList>& rows, QString* error) {
    const std::unique_ptr<SheetSource> sheet = openSheet(fileName, error);
    if (!sheet) return false;
    const int width = colCount > 0 ? colCount : sheet->colCount();
    std::vector<QStringList> out;
    int blankRun = 0;
    for (int r = 0; r < sheet->rowCount() && blankRun < kBlankRowsThatEnd; ++r) {
        QStringList cells;
        cells.reserve(width);
        bool blank = true;
        for (int c = 0; c < width; ++c) {
            cells.append(sheet->text(r, c));
            blank = blank && BlankString(cells.back());
        }
        blankRun = blank ? blankRun + 1 : 0;
        out.push_back(std::move(cells));
    }
    out.resize(out.size() - blankRun);
    if (colCount <= 0) {
        // Only as many columns as the kept rows use.
        int used = 0;
        for (const QStringList& cells : out)
            for (int c = static_cast<int>(cells.size()); c > used; --c)
                if (!cells[c - 1].isEmpty()) {
                    used = c;
                    break;
                }
        for (QStringList& cells : out)
            cells.resize(used);
    }
    rows = std::move(out);
    return true;
}

bool ImportListViewXls(ListModel& list, const QString& fileName) {
    std::vector<QStringList> sheetRows;
    QString error;
    if (!readFirstSheet(fileName, list.lastDataCol(), sheetRows, &error)) {
        platform::MsgBox(error, platform::MsgIcon::Information);
        return false;
    }
    std::vector<Row> rows(sheetRows.size());
    for (std::size_t i = 0; i < sheetRows.size(); ++i) {
        rows[i].cells = std::move(sheetRows[i]);
        rows[i].cells.append(formatRowNumber(static_cast<long long>(i) + 1));
    }
    list.replaceRows(std::move(rows));
    list.setCurrentRow(0);
    return true;
}

// ------------------------------------------------------------ export

bool ExportListViewXlsx(const ListModel& list, const QString& fileName, QString* error) {
    auto fail = [&](const QString& message) {
        if (error) *error = message;
        return false;
    };
    const int n = list.lastDataCol();
    if (list.rows() + 1 > static_cast<int>(LXW_ROW_MAX))
        return fail(QStringLiteral("Luettelossa on liikaa rivejä taulukkoon."));

    // The workbook is written beside the target and renamed over it only when complete.
    const QFileInfo target(fileName);
    QTemporaryFile temp(target.absoluteDir().filePath(QStringLiteral(".tamrik-XXXXXX.xlsx")));
    if (!temp.open())
        return fail(QStringLiteral("Tiedostoa: ") + fileName + QStringLiteral(" ei voi tallentaa. ") +
                    temp.errorString());
    const QString tempName = temp.fileName();
    temp.close();

    lxw_workbook* workbook = workbook_new(QFile::encodeName(tempName).constData());
    if (!workbook)
        return fail(QStringLiteral("Tiedostoa: ") + fileName + QStringLiteral(" ei voi tallentaa."));
    lxw_worksheet* sheet = workbook_add_worksheet(workbook, "Taulukko1");
    lxw_error status = LXW_NO_ERROR;
    auto putText = [&](int r, int c, const QString& text) {
        if (status == LXW_NO_ERROR)
            status = worksheet_write_string(sheet, r, static_cast<lxw_col_t>(c), text.toUtf8().constData(),
                                            nullptr);
    };
    for (int c = 1; c <= n; ++c) {
        // Column widths in characters of the default font, from the list's widths in twips.
        worksheet_set_column(sheet, static_cast<lxw_col_t>(c - 1), static_cast<lxw_col_t>(c - 1),
                             std::clamp(list.column(c).width / 105.0, 4.0, 80.0), nullptr);
        if (!list.column(c).header.isEmpty()) putText(0, c - 1, list.column(c).header);
    }
    for (int r = 1; r <= list.rows(); ++r) {
        for (int c = 1; c <= n; ++c) {
            const QString& text = list.cell(r, c);
            if (text.isEmpty()) continue;
            if (const std::optional<double> number = cellTextNumber(text)) {
                if (status == LXW_NO_ERROR)
                    status =
                        worksheet_write_number(sheet, r, static_cast<lxw_col_t>(c - 1), *number, nullptr);
            } else {
                putText(r, c - 1, text);
            }
        }
    }
    const lxw_error closed = workbook_close(workbook);
    if (status == LXW_NO_ERROR) status = closed;
    if (status != LXW_NO_ERROR) {
        QFile::remove(tempName);
        return fail(QStringLiteral("Tiedostoa: ") + fileName + QStringLiteral(" ei voi tallentaa. ") +
                    QString::fromUtf8(lxw_strerror(status)));
    }
    QFile::setPermissions(tempName, target.exists() ? QFile::permissions(fileName)
                                                    : QFile::ReadOwner | QFile::WriteOwner |
                                                          QFile::ReadGroup | QFile::ReadOther);
    std::error_code ec;
    std::filesystem::rename(QFile::encodeName(tempName).toStdString(),
                            QFile::encodeName(fileName).toStdString(), ec);
    if (ec) {
        QFile::remove(tempName);
        return fail(QStringLiteral("Tiedostoa: ") + fileName + QStringLiteral(" ei voi tallentaa. ") +
                    QString::fromStdString(ec.message()));
    }
    return true;
}

} // namespace lists
