#pragma once
// The record in which a project window stores its controls: the Text1 texts, the Combo1 edit
// texts and the lists, each value preceded by its line count. Line-oriented text in
// Windows-1252 with CR LF.
#include "lists/ListModel.h"
#include "lists/RowCells.h"
#include "persist/SlContainer.h"
#include "platform/ReadError.h"

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <vector>

namespace persist {

struct ListRecord {
    int columns = 0; // stored columns: the littera and the data columns, not "Rivi"
    // Only the first `columns` cells of a row are stored (missing ones as empty). A row taken
    // from a list keeps its row number after them, so the record shares the list's row block
    // instead of copying it; a row read from a file has its place in the list (00001, 00002,
    // ...) after them, so the list takes the row as it is.
    std::vector<lists::RowCells> rows;
    // Instead of `rows`: the rows of a shown list, for a record that is written at once, so
    // that saving a large list takes no copy of its rows (see rowCount and forEachRow).
    const std::vector<lists::Row>* listRows = nullptr;

    std::size_t rowCount() const { return listRows ? listRows->size() : rows.size(); }
    template <typename F> void forEachRow(F f) const {
        if (listRows)
            for (const lists::Row& row : *listRows)
                f(row.cells);
        else
            for (const lists::RowCells& row : rows)
                f(row);
    }
};

struct WindowRecord {
    QStringList texts;
    QStringList combos;
    std::vector<ListRecord> lists;
};

// Writes the lines of a text member, each encoded as Windows-1252 and ended by CR LF as it
// comes, so that a large project is never held as text besides its bytes. Characters outside
// the code page become "?" and are listed once in `unencodable` when it is given.
class RecordWriter {
public:
    explicit RecordWriter(QString* unencodable = nullptr)
        : m_unencodable(unencodable) {}
    // A writer that hands its bytes to `sink` a block of about kBlock bytes at a time instead of
    // keeping them, so that a large member goes to its file without being held whole.
    explicit RecordWriter(ByteSink sink, QString* unencodable = nullptr);
    static constexpr qsizetype kBlock = 256 * 1024;
    void line(QStringView text);
    void count(long long n);
    // A value: its line count (0 for an empty value, else 1 + the CR LF pairs in it), then
    // its lines.
    void value(QStringView text);
    // Bytes as they are.
    void raw(QByteArrayView bytes);
    // Room for this many bytes more, so that a long member is written without moving.
    void reserve(qsizetype more) { m_bytes.reserve(m_bytes.size() + more); }
    const QByteArray& bytes() const { return m_bytes; }
    QByteArray take() { return std::move(m_bytes); }
    // Hands what is left to the sink; false when the sink failed at any time.
    bool finish();

private:
    void written() {
        if (m_sink && m_bytes.size() >= kBlock) flush();
    }
    void flush();
    QByteArray m_bytes;
    QString* m_unencodable;
    ByteSink m_sink;
    bool m_failed = false;
};

// Reads the lines of a text member (Windows-1252, lines ended by CR LF), never trusting a
// count: a count that is not a number or a member that ends early is an error that names
// the line.
class RecordReader {
public:
    explicit RecordReader(QByteArray bytes, qsizetype start = 0);
    bool atEnd() const { return m_pos >= m_bytes.size(); }
    bool line(QString& out);
    // Exactly `n` bytes as they are (the rich text of a document).
    bool bytes(qsizetype n, QByteArray& out);
    bool count(int& out, int maximum);
    bool pair(int& first, int& second, int maxFirst, int maxSecond); // "12,16"
    bool value(QString& out);
    // A list cell: a one-line value with the same bytes as `last` (the cell above it) takes
    // last's text instead of decoding the bytes again. Units, types and weights repeat row
    // after row.
    struct Repeated {
        const char* bytes = nullptr;
        qsizetype length = -1;
        QString text;
    };
    bool value(QString& out, Repeated& last);
    QString error() const { return m_error.text(); }
    // What failed and on which line.
    const platform::ReadError& failure() const { return m_error; }
    int lineNumber() const { return m_line; }
    qsizetype offset() const { return m_pos; }
    qsizetype bytesLeft() const { return m_bytes.size() - m_pos; }
    // Fails with a message about the line read last.
    bool failAt(const QString& what);

private:
    bool fail(const QString& what);
    // A value's count line, then its `n` lines joined by CR LF.
    bool valueCount(int& n);
    bool valueLines(int n, QString& out);
    // The next line without its CR LF; false at the end.
    bool next(const char*& begin, qsizetype& length);
    QByteArray m_bytes;
    qsizetype m_pos = 0;
    int m_line = 1;
    platform::ReadError m_error;
};

// The line count of a value: 0 for an empty text, else 1 + the number of CR LF pairs.
int EvaluateNRows(QStringView text);

// Writes a window record. With `pathOption`, the cells of list 1 in columns 13 and 14 that
// hold a folder are written as "{PATH}" + the file name alone.
void WriteFormToFile(RecordWriter& out, const WindowRecord& record, bool pathOption = false);
// About the bytes WriteFormToFile writes for the record, for reserving them: a value of ten
// lines or more and a "{PATH}" cell may take a few bytes more.
qsizetype RecordSize(const WindowRecord& record);

// Reads a window record. With a directory, list 1's "{PATH}" cells in columns 13 and 14 get
// that directory. Returns false with the reader's error on a damaged record.
bool ReadFormFromFile(RecordReader& in, WindowRecord& record, const QString& directory = QString());

} // namespace persist
