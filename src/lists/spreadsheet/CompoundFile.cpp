#include "lists/spreadsheet/CompoundFile.h"

#include "lists/spreadsheet/BinaryValues.h"

#include <algorithm>

namespace lists::sheet {

namespace {

constexpr quint32 kFreeSector = 0xFFFFFFFF;
constexpr quint32 kNoEntry = 0xFFFFFFFF;
constexpr int kHeaderFatEntries = 109; // sectors of the allocation table named in the header
constexpr qsizetype kEntrySize = 128;

} // namespace

bool looksLikeOle(const QByteArray& bytes) {
    return bytes.startsWith("\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1");
}

CompoundFile::CompoundFile(QByteArrayView bytes)
    : m_bytes(bytes) {}

std::unique_ptr<CompoundFile> CompoundFile::open(QByteArrayView bytes, QString* error) {
    std::unique_ptr<CompoundFile> file(new CompoundFile(bytes));
    if (!file->load(error)) return nullptr;
    return file;
}

bool CompoundFile::load(QString* error) {
    auto fail = [&](const QString& what) {
        if (error) *error = QStringLiteral("OLE-rakenne on vahingoittunut (") + what + QLatin1Char(')');
        return false;
    };
    if (m_bytes.size() < 512 || !m_bytes.startsWith("\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1"))
        return fail(QStringLiteral("otsake puuttuu"));
    const char* h = m_bytes.data();
    m_shift = u16(h + 30);
    m_miniShift = u16(h + 32);
    if (m_shift < 7 || m_shift > 16 || m_miniShift < 1 || m_miniShift > m_shift)
        return fail(QStringLiteral("sektorin koko %1 on mahdoton").arg(m_shift));
    const qsizetype sectorSize = qsizetype(1) << m_shift;
    // Sector n starts after the header's sector; the last one may be cut short.
    m_sectors = m_bytes.size() > sectorSize
                    ? static_cast<quint32>((m_bytes.size() - sectorSize + sectorSize - 1) >> m_shift)
                    : 0;
    m_cutoff = u32(h + 56);
    if (m_cutoff == 0) m_cutoff = 4096;

    readFat();
    if (m_fat.empty()) return fail(QStringLiteral("sektoritaulu puuttuu"));
    readDirectory();
    if (m_entries.empty() || m_entries.front().type != 5) return fail(QStringLiteral("hakemisto puuttuu"));
    readMiniStream();
    return true;
}

QByteArrayView CompoundFile::sector(quint32 n) const {
    const qsizetype sectorSize = qsizetype(1) << m_shift;
    const qint64 at = (qint64(n) + 1) << m_shift;
    if (n >= m_sectors || at >= m_bytes.size()) return {};
    return m_bytes.sliced(at, std::min<qint64>(sectorSize, m_bytes.size() - at));
}

void CompoundFile::readFat() {
    const char* h = m_bytes.data();
    const qsizetype sectorSize = qsizetype(1) << m_shift;
    // The sectors of the allocation table: those in the header, then those in the chain of
    // extension sectors. The header's counts of both are not trusted; a list ends at its first
    // free entry, and a sector is never taken twice.
    std::vector<quint32> fatSectors;
    std::vector<bool> taken(m_sectors, false);
    bool ended = false;
    auto add = [&](quint32 s) {
        if (s >= m_sectors) {
            ended = ended || s == kFreeSector || s > 0xFFFFFFF0u;
            return;
        }
        if (!ended && !taken[s]) {
            taken[s] = true;
            fatSectors.push_back(s);
        }
    };
    for (int i = 0; i < kHeaderFatEntries; ++i)
        add(u32(h + 76 + 4 * i));
    const int perSector = int(sectorSize / 4) - 1; // the last entry chains to the next sector
    std::vector<bool> seenDifat(m_sectors, false);
    for (quint32 d = u32(h + 68); !ended && d < m_sectors && !seenDifat[d];) {
        seenDifat[d] = true;
        const QByteArrayView data = sector(d);
        for (int i = 0; i < perSector && 4 * i + 4 <= data.size(); ++i)
            add(u32(data.data() + 4 * i));
        if (data.size() < sectorSize) break;
        d = u32(data.data() + 4 * perSector);
    }
    for (quint32 s : fatSectors) {
        const QByteArrayView data = sector(s);
        for (qsizetype i = 0; i + 4 <= data.size() && m_fat.size() < m_sectors; i += 4)
            m_fat.push_back(u32(data.data() + i));
    }
}

void CompoundFile::readDirectory() {
    const QByteArray directory =
        bigData(chain(u32(m_bytes.data() + 48), false), quint64(m_sectors) << m_shift);
    for (qsizetype at = 0; at + kEntrySize <= directory.size(); at += kEntrySize) {
        const char* e = directory.data() + at;
        Entry entry;
        const int nameBytes = std::min<int>(u16(e + 64), 64);
        const int chars = std::max(0, nameBytes / 2 - 1); // without the closing null
        entry.name = QString::fromUtf16(reinterpret_cast<const char16_t*>(e), chars);
        entry.type = static_cast<quint8>(e[66]);
        entry.left = u32(e + 68);
        entry.right = u32(e + 72);
        entry.child = u32(e + 76);
        entry.start = u32(e + 116);
        entry.size = u32(e + 120);
        // The high half of the size counts only with 4096-byte sectors; older writers leave
        // anything there.
        if (m_shift >= 12) entry.size |= quint64(u32(e + 124)) << 32;
        m_entries.push_back(entry);
    }
}

// The small streams live in the root's stream, sectors of 64 bytes chained in their own table.
void CompoundFile::readMiniStream() {
    const Entry& root = m_entries.front();
    m_ministream = bigData(chain(root.start, false), root.size);
    const QByteArray miniFat = bigData(chain(u32(m_bytes.data() + 60), false), quint64(m_sectors) << m_shift);
    const quint64 miniSectors =
        (quint64(m_ministream.size()) + (quint64(1) << m_miniShift) - 1) >> m_miniShift;
    for (qsizetype i = 0; i + 4 <= miniFat.size() && m_miniFat.size() < miniSectors; i += 4)
        m_miniFat.push_back(u32(miniFat.data() + i));
}

std::vector<quint32> CompoundFile::chain(quint32 start, bool mini) const {
    const std::vector<quint32>& table = mini ? m_miniFat : m_fat;
    const quint64 count =
        mini ? (quint64(m_ministream.size()) + (quint64(1) << m_miniShift) - 1) >> m_miniShift : m_sectors;
    std::vector<quint32> out;
    std::vector<bool> seen(static_cast<std::size_t>(count), false);
    // A chain ends at its end mark, outside the file, or where it would loop.
    for (quint32 s = start; s < count && !seen[s];) {
        seen[s] = true;
        out.push_back(s);
        if (s >= table.size()) break;
        s = table[s];
    }
    return out;
}

QByteArray CompoundFile::bigData(const std::vector<quint32>& sectors, quint64 size) const {
    QByteArray out;
    const qint64 sectorSize = qint64(1) << m_shift;
    out.reserve(static_cast<qsizetype>(std::min<quint64>(size, quint64(sectors.size()) * sectorSize)));
    for (quint32 s : sectors) {
        if (quint64(out.size()) >= size) break;
        const qint64 at = (qint64(s) + 1) << m_shift;
        if (at >= m_bytes.size()) break;
        const qint64 take =
            std::min<qint64>({sectorSize, m_bytes.size() - at, qint64(size - quint64(out.size()))});
        out.append(m_bytes.data() + at, static_cast<qsizetype>(take));
        if (take < sectorSize && quint64(out.size()) < size) break; // the file's short last sector
    }
    return out;
}

const CompoundFile::Entry* CompoundFile::find(const QString& name) const {
    auto matches = [&](const Entry& e) {
        return e.type == 2 && e.name.compare(name, Qt::CaseInsensitive) == 0;
    };
    // The root storage's streams: a tree of siblings below the root's child.
    std::vector<bool> seen(m_entries.size(), false);
    std::vector<quint32> stack{m_entries.front().child};
    while (!stack.empty()) {
        const quint32 i = stack.back();
        stack.pop_back();
        if (i == kNoEntry || i >= m_entries.size() || seen[i]) continue;
        seen[i] = true;
        if (matches(m_entries[i])) return &m_entries[i];
        stack.push_back(m_entries[i].left);
        stack.push_back(m_entries[i].right);
    }
    // A damaged tree: any stream of that name.
    for (const Entry& e : m_entries)
        if (matches(e)) return &e;
    return nullptr;
}

bool CompoundFile::contains(const QString& name) const {
    return find(name) != nullptr;
}

bool CompoundFile::read(const QString& name, QByteArray& out, QString* error) const {
    const Entry* entry = find(name);
    if (!entry) {
        if (error) *error = QStringLiteral("virta ") + name + QStringLiteral(" puuttuu");
        return false;
    }
    QByteArray data;
    if (entry->size < m_cutoff) {
        const qsizetype miniSize = qsizetype(1) << m_miniShift;
        for (quint32 s : chain(entry->start, true)) {
            if (quint64(data.size()) >= entry->size) break;
            const qsizetype at = qsizetype(s) << m_miniShift;
            if (at >= m_ministream.size()) break;
            data.append(m_ministream.sliced(
                at, std::min<qsizetype>({miniSize, m_ministream.size() - at,
                                         static_cast<qsizetype>(entry->size - quint64(data.size()))})));
        }
    } else {
        data = bigData(chain(entry->start, false), entry->size);
    }
    if (data.isEmpty() && entry->size > 0) {
        if (error) *error = QStringLiteral("virran ") + name + QStringLiteral(" tiedot puuttuvat");
        return false;
    }
    // A stream cut short by the end of the file gives what it has; its reader says if that
    // is not enough.
    out = std::move(data);
    return true;
}

} // namespace lists::sheet
