#include "persist/WindowRecord.h"

#include "lists/ListModel.h"
#include "platform/Cp1252.h"

#include <charconv>
#include <cstring>

namespace persist {

namespace {
const QString kPath = QStringLiteral("{PATH}");

bool isBlank(QStringView s) {
    for (QChar c : s)
        if (c != QLatin1Char(' ')) return false;
    return true;
}

bool holdsFolder(QStringView s) {
    return s.contains(QLatin1Char('\\')) || s.contains(QLatin1Char('/'));
}

QStringView fileNameOnly(QStringView path) {
    const qsizetype s = std::max(path.lastIndexOf(QLatin1Char('\\')), path.lastIndexOf(QLatin1Char('/')));
    return path.mid(s + 1);
}
} // namespace

int EvaluateNRows(QStringView text) {
    if (text.isEmpty()) return 0;
    return 1 + static_cast<int>(text.count(u"\r\n"));
}

RecordWriter::RecordWriter(ByteSink sink, QString* unencodable)
    : m_unencodable(unencodable)
    , m_sink(std::move(sink)) {
    m_bytes.reserve(kBlock + 4096);
}

void RecordWriter::line(QStringView text) {
    platform::appendCp1252(m_bytes, text, m_unencodable);
    m_bytes.append("\r\n", 2);
    written();
}

void RecordWriter::count(long long n) {
    char digits[24];
    const auto end = std::to_chars(digits, digits + sizeof digits, n).ptr;
    m_bytes.append(digits, end - digits);
    m_bytes.append("\r\n", 2);
    written();
}

void RecordWriter::raw(QByteArrayView bytes) {
    m_bytes.append(bytes);
    written();
}

void RecordWriter::flush() {
    // After a failure the rest is not written anywhere.
    if (!m_failed && !m_bytes.isEmpty()) m_failed = !m_sink(m_bytes);
    m_bytes.truncate(0); // the block's room stays for the next one
}

bool RecordWriter::finish() {
    if (m_sink) flush();
    return !m_failed;
}

void RecordWriter::value(QStringView text) {
    const int n = EvaluateNRows(text);
    count(n);
    // The lines of a value are its parts between CR LF pairs: the text as it is, then CR LF.
    if (n > 0) line(text);
}

RecordReader::RecordReader(QByteArray bytes, qsizetype start)
    : m_bytes(std::move(bytes))
    , m_pos(start) {}

bool RecordReader::failAt(const QString& what) {
    --m_line; // the line just read
    fail(what);
    ++m_line;
    return false;
}

bool RecordReader::fail(const QString& what) {
    if (m_error.what.isEmpty()) m_error = {what, {}, {}, -1, m_line};
    return false;
}

bool RecordReader::next(const char*& begin, qsizetype& length) {
    if (atEnd()) return false;
    begin = m_bytes.constData() + m_pos;
    const qsizetype rest = m_bytes.size() - m_pos;
    // Only CR LF ends a line: a lone CR or LF belongs to the value.
    qsizetype i = 0;
    for (;;) {
        const void* cr = std::memchr(begin + i, '\r', static_cast<std::size_t>(rest - i));
        if (!cr) {
            length = rest;
            m_pos = m_bytes.size();
            break;
        }
        i = static_cast<const char*>(cr) - begin;
        if (i + 1 < rest && begin[i + 1] == '\n') {
            length = i;
            m_pos += i + 2;
            break;
        }
        ++i;
    }
    ++m_line;
    return true;
}

bool RecordReader::line(QString& out) {
    const char* b = nullptr;
    qsizetype n = 0;
    if (!next(b, n)) return fail(QStringLiteral("tiedosto päättyy kesken"));
    out = platform::fromCp1252(b, n);
    return true;
}

bool RecordReader::bytes(qsizetype n, QByteArray& out) {
    if (n < 0 || n > m_bytes.size() - m_pos) return fail(QStringLiteral("tiedosto päättyy kesken"));
    out = m_bytes.mid(m_pos, n);
    m_line += static_cast<int>(out.count("\r\n"));
    m_pos += n;
    return true;
}

bool RecordReader::count(int& out, int maximum) {
    const int at = m_line;
    const char* b = nullptr;
    qsizetype n = 0;
    if (!next(b, n)) return fail(QStringLiteral("tiedosto päättyy kesken"));
    // Every value of a record has a count line: they are read in place, without a copy.
    auto blank = [](char c) {
        return c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == '\v' || c == '\f';
    };
    qsizetype from = 0, to = n;
    while (from < to && blank(b[from]))
        ++from;
    while (to > from && blank(b[to - 1]))
        --to;
    if (from < to && b[from] == '+') ++from;
    long long v = 0;
    bool ok = from < to;
    for (qsizetype i = from; i < to && ok; ++i) {
        ok = b[i] >= '0' && b[i] <= '9';
        v = v * 10 + (b[i] - '0');
        if (v > maximum) ok = false;
    }
    if (!ok) {
        m_line = at;
        const QByteArray text = QByteArray(b, n).trimmed();
        return fail(QStringLiteral("lukumäärä \"%1\" ei kelpaa").arg(platform::fromCp1252(text.left(40))));
    }
    out = static_cast<int>(v);
    return true;
}

bool RecordReader::pair(int& first, int& second, int maxFirst, int maxSecond) {
    const int at = m_line;
    QString text;
    if (!line(text)) return false;
    const QStringList parts = text.split(QLatin1Char(','));
    bool ok1 = false, ok2 = false;
    if (parts.size() == 2) {
        first = parts[0].trimmed().toInt(&ok1);
        second = parts[1].trimmed().toInt(&ok2);
    }
    if (!ok1 || !ok2 || first < 0 || second < 0 || first > maxFirst || second > maxSecond) {
        m_line = at;
        return fail(QStringLiteral("rivi- ja sarakemäärä \"%1\" ei kelpaa").arg(text.left(40)));
    }
    return true;
}

bool RecordReader::valueCount(int& n) {
    // A value never has more lines than the member has bytes left.
    const qsizetype rest = m_bytes.size() - m_pos;
    const int maximum = static_cast<int>(std::min<qsizetype>(rest, 100000000));
    // Nearly every count is one digit ("0" or "1" for a cell): read in place.
    const char* b = m_bytes.constData() + m_pos;
    if (rest >= 3 && b[0] >= '0' && b[0] <= '9' && b[1] == '\r' && b[2] == '\n' && b[0] - '0' <= maximum) {
        n = b[0] - '0';
        m_pos += 3;
        ++m_line;
        return true;
    }
    return count(n, maximum);
}

bool RecordReader::valueLines(int n, QString& out) {
    if (n == 0) {
        out.clear();
        return true;
    }
    if (!line(out)) return false;
    for (int i = 1; i < n; ++i) {
        QString more;
        if (!line(more)) return false;
        out += QLatin1String("\r\n");
        out += more;
    }
    return true;
}

bool RecordReader::value(QString& out) {
    int n = 0;
    return valueCount(n) && valueLines(n, out);
}

bool RecordReader::value(QString& out, Repeated& last) {
    int n = 0;
    if (!valueCount(n)) return false;
    if (n != 1) {
        last.length = -1;
        return valueLines(n, out);
    }
    const char* b = nullptr;
    qsizetype length = 0;
    if (!next(b, length)) return fail(QStringLiteral("tiedosto päättyy kesken"));
    if (length == last.length && std::memcmp(b, last.bytes, static_cast<std::size_t>(length)) == 0) {
        out = last.text;
        return true;
    }
    out = platform::fromCp1252(b, length);
    last = {b, length, out};
    return true;
}

void WriteFormToFile(RecordWriter& out, const WindowRecord& record, bool pathOption) {
    out.count(record.texts.size());
    for (const QString& t : record.texts)
        out.value(t);
    out.count(record.combos.size());
    for (const QString& c : record.combos)
        out.value(c);
    out.count(static_cast<long long>(record.lists.size()));
    for (std::size_t j = 0; j < record.lists.size(); ++j) {
        const ListRecord& list = record.lists[j];
        out.line(QStringLiteral("%1,%2").arg(list.rowCount()).arg(list.columns));
        list.forEachRow([&](const lists::RowCells& row) {
            for (int c = 1; c <= list.columns; ++c) {
                const QStringView cell = row.value(c - 1);
                if (pathOption && j == 1 && (c == 13 || c == 14) && holdsFolder(cell) && !isBlank(cell))
                    out.value(kPath + fileNameOnly(cell).toString());
                else
                    out.value(cell);
            }
        });
    }
}

qsizetype RecordSize(const WindowRecord& record) {
    // A value is its count line (one digit and CR LF) and, when not empty, its text and CR LF.
    auto value = [](QStringView text) { return 3 + (text.isEmpty() ? 0 : text.size() + 2); };
    qsizetype size = 3 * 24;
    for (const QString& t : record.texts)
        size += value(t);
    for (const QString& c : record.combos)
        size += value(c);
    for (const ListRecord& list : record.lists) {
        size += 24;
        list.forEachRow([&](const lists::RowCells& row) {
            for (int c = 0; c < list.columns; ++c)
                size += c < row.size() ? value(row[c]) : 3;
        });
    }
    return size;
}

bool ReadFormFromFile(RecordReader& in, WindowRecord& record, const QString& directory) {
    WindowRecord r;
    int n = 0;
    constexpr int kMaxControls = 100000;
    if (!in.count(n, kMaxControls)) return false;
    for (int i = 0; i < n; ++i) {
        QString v;
        if (!in.value(v)) return false;
        r.texts.append(v);
    }
    if (!in.count(n, kMaxControls)) return false;
    for (int i = 0; i < n; ++i) {
        QString v;
        if (!in.value(v)) return false;
        r.combos.append(v);
    }
    int lists = 0;
    if (!in.count(lists, 1000)) return false;
    for (int j = 0; j < lists; ++j) {
        ListRecord list;
        int rows = 0;
        if (!in.pair(rows, list.columns, 100000000, 10000)) return false;
        // Every value takes at least its count line ("0" and CR LF), so a row count that the
        // bytes left cannot hold is damage, not a list. Rows without columns carry nothing
        // and are not kept.
        if (list.columns > 0 && rows > in.bytesLeft() / (3 * static_cast<qsizetype>(list.columns)))
            return in.failAt(QStringLiteral("rivimäärä %1 ei mahdu tiedostoon").arg(rows));
        if (list.columns == 0) rows = 0;
        list.rows.reserve(rows);
        std::vector<RecordReader::Repeated> above(static_cast<std::size_t>(list.columns));
        lists::RowCells::Builder row;
        for (int k = 0; k < rows; ++k) {
            for (int c = 1; c <= list.columns; ++c) {
                QString v;
                if (!in.value(v, above[static_cast<std::size_t>(c - 1)])) return false;
                if (!directory.isEmpty() && j == 1 && (c == 13 || c == 14) && v.startsWith(kPath))
                    v = directory + v.mid(kPath.size());
                row.add(v);
            }
            // The row number the list will give the row, so that the row becomes the list's
            // row as it is (see RowFromRecord) instead of being built a second time.
            row.add(lists::formatRowNumber(k + 1));
            list.rows.push_back(row.take());
        }
        r.lists.push_back(std::move(list));
    }
    record = std::move(r);
    return true;
}

} // namespace persist
