#pragma once
// The record in which a project window stores its controls: the Text1 texts, the Combo1 edit
// texts and the lists, each value preceded by its line count. Line-oriented text; the caller
// encodes it as Windows-1252 with CR LF.
#include "platform/ReadError.h"

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <vector>

namespace persist {

struct ListRecord {
    int columns = 0;               // stored columns: the littera and the data columns, not "Rivi"
    std::vector<QStringList> rows; // each `columns` cells
};

struct WindowRecord {
    QStringList texts;
    QStringList combos;
    std::vector<ListRecord> lists;
};

// Collects the lines of a text member.
class RecordWriter {
public:
    void line(const QString& text) { m_lines.append(text); }
    void count(long long n) { m_lines.append(QString::number(n)); }
    // A value: its line count (0 for an empty value, else 1 + the CR LF pairs in it), then
    // its lines.
    void value(const QString& text);
    const QStringList& lines() const { return m_lines; }

private:
    QStringList m_lines;
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
    // A list cell: a one-line value with the same bytes as `last` (the cell above it) shares
    // last's text instead of holding a copy of its own. Units, types and weights repeat row
    // after row, so a large list then takes a fraction of the memory; the texts are the same.
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
int EvaluateNRows(const QString& text);

// Writes a window record. With `pathOption`, the cells of list 1 in columns 13 and 14 that
// hold a folder are written as "{PATH}" + the file name alone.
void WriteFormToFile(RecordWriter& out, const WindowRecord& record, bool pathOption = false);

// Reads a window record. With a directory, list 1's "{PATH}" cells in columns 13 and 14 get
// that directory. Returns false with the reader's error on a damaged record.
bool ReadFormFromFile(RecordReader& in, WindowRecord& record, const QString& directory = QString());

} // namespace persist
