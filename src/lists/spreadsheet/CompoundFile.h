#pragma once
// The OLE compound file that .xls workbooks (and encrypted Office Open XML workbooks) are stored
// in: a file system of sectors, chained through a sector allocation table, with a directory of
// named streams. Read from memory, as tolerantly as the format allows: the header's counts are
// hints, a chain ends where it leaves the file or loops, and a short last sector gives the
// bytes it has. Nothing is ever read past the file.
#include <QByteArray>
#include <QByteArrayView>
#include <QString>

#include <memory>
#include <vector>

namespace lists::sheet {

class CompoundFile {
public:
    // Opens the compound file held in `bytes` (which must outlive it). On failure returns null
    // with the reason in `error`.
    static std::unique_ptr<CompoundFile> open(QByteArrayView bytes, QString* error);

    // Whether the root storage holds a stream of that name (without regard to case).
    bool contains(const QString& name) const;
    // Reads a stream of the root storage whole: as much of it as the file holds. On failure
    // returns false with the reason in `error`.
    bool read(const QString& name, QByteArray& out, QString* error) const;

private:
    struct Entry {
        QString name;
        int type = 0; // 1 storage, 2 stream, 5 root
        quint32 left = 0, right = 0, child = 0;
        quint32 start = 0;
        quint64 size = 0;
    };
    explicit CompoundFile(QByteArrayView bytes);
    bool load(QString* error);
    // Sector n of the file, short or empty where the file ends.
    QByteArrayView sector(quint32 n) const;
    // The allocation table, from the sectors the header and its extension chain name.
    void readFat();
    // The directory's entries, and the mini stream with its table.
    void readDirectory();
    void readMiniStream();
    // The sectors of a chain in the big (or the mini) allocation table, as far as it is valid.
    std::vector<quint32> chain(quint32 start, bool mini) const;
    // The bytes of a chain of big sectors, at most `size`.
    QByteArray bigData(const std::vector<quint32>& sectors, quint64 size) const;
    const Entry* find(const QString& name) const;

    QByteArrayView m_bytes;
    int m_shift = 9, m_miniShift = 6;
    quint32 m_cutoff = 4096;
    quint32 m_sectors = 0; // sectors the file holds (the last one may be short)
    std::vector<quint32> m_fat, m_miniFat;
    std::vector<Entry> m_entries;
    QByteArray m_ministream;
};

bool looksLikeOle(const QByteArray& bytes);

} // namespace lists::sheet
