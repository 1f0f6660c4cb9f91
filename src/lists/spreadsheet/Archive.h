#pragma once
// The ZIP archive that .xlsx, .xlsb and .ods files are packed in, read from memory through libgsf.
// (The OLE compound file of .xls files has a reader of its own, CompoundFile.)
#include <QByteArray>
#include <QString>
#include <memory>

namespace lists::sheet {

class Archive {
public:
    ~Archive();
    Archive(const Archive&) = delete;
    Archive& operator=(const Archive&) = delete;

    // Opens the archive held in `bytes` (which must outlive it). On failure returns null with
    // the reason in `error`.
    static std::unique_ptr<Archive> open(const QByteArray& bytes, QString* error);

    // A member read in pieces, so that a part far larger than what is kept of it never sits in
    // memory whole.
    class Member {
    public:
        ~Member();
        Member(const Member&) = delete;
        Member& operator=(const Member&) = delete;
        // The size the container gives for the member.
        qint64 size() const { return m_size; }
        // Reads up to `max` bytes into `to`: the count read, 0 at the end, -1 on failure (with
        // the reason in error()).
        qsizetype read(char* to, qsizetype max);
        const QString& error() const { return m_error; }

    private:
        friend class Archive;
        Member(void* input, QString path, qint64 size);
        void* m_input; // a GsfInput
        QString m_path;
        qint64 m_size = 0;
        qint64 m_done = 0;
        QString m_error;
    };

    // Whether a member exists; names are paths with "/" and compare without regard to case.
    bool contains(const QString& path) const;
    // Opens a member for reading in pieces. On failure returns null with the reason in `error`.
    std::unique_ptr<Member> openMember(const QString& path, QString* error) const;
    // Reads a member whole; a member larger than `largest` bytes is refused. On failure returns
    // false with the reason in `error`.
    bool read(const QString& path, QByteArray& out, QString* error, qint64 largest = kLargestPart) const;

    // The largest part read whole: the workbook's own description, its relationships and styles
    // stay far below it; cells and strings are read in pieces.
    static constexpr qint64 kLargestPart = qint64(64) << 20;

private:
    struct Handles;
    explicit Archive(std::unique_ptr<Handles> handles);
    std::unique_ptr<Handles> m_handles;
};

// Whether bytes start like a ZIP archive.
bool looksLikeZip(const QByteArray& bytes);

} // namespace lists::sheet
