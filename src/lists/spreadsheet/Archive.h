#pragma once
// The containers that spreadsheet files are packed in, read from memory through libgsf: a ZIP
// archive (.xlsx, .ods) or an OLE compound file (.xls).
#include <QByteArray>
#include <QString>
#include <memory>

namespace lists::sheet {

class Archive {
public:
    enum class Kind { Zip, Ole };
    ~Archive();
    Archive(const Archive&) = delete;
    Archive& operator=(const Archive&) = delete;

    // Opens the container held in `bytes` (which must outlive the archive). On failure returns
    // null with the reason in `error`.
    static std::unique_ptr<Archive> open(const QByteArray& bytes, Kind kind, QString* error);

    // Whether a member exists; names are paths with "/" and compare without regard to case.
    bool contains(const QString& path) const;
    // Reads a member whole. On failure returns false with the reason in `error`.
    bool read(const QString& path, QByteArray& out, QString* error) const;

private:
    struct Handles;
    explicit Archive(std::unique_ptr<Handles> handles);
    std::unique_ptr<Handles> m_handles;
};

// Whether bytes start like a ZIP archive, an OLE compound file.
bool looksLikeZip(const QByteArray& bytes);
bool looksLikeOle(const QByteArray& bytes);

} // namespace lists::sheet
