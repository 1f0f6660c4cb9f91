#pragma once
// Spreadsheet files built by the tests, for what LibreOffice does not write: hand-made XML
// packed into a ZIP archive, and BIFF records, plain or inside an OLE compound file.
#include <QByteArray>
#include <QFile>
#include <QMap>
#include <QString>
#include <QStringList>
#include <cstring>
#include <gsf/gsf-outfile-msole.h>
#include <gsf/gsf-outfile-zip.h>
#include <gsf/gsf-outfile.h>
#include <gsf/gsf-output-stdio.h>
#include <gsf/gsf-utils.h>
#include <utility>
#include <vector>

namespace sheet_files {

using Members = std::vector<std::pair<QString, QByteArray>>;

// Writes the members ("xl/worksheets/sheet1.xml", ...) into a ZIP archive at `path`.
inline bool writeZip(const QString& path, const Members& members) {
    gsf_init();
    GError* err = nullptr;
    GsfOutput* sink = gsf_output_stdio_new(path.toLocal8Bit().constData(), &err);
    if (!sink) return false;
    GsfOutfile* zip = gsf_outfile_zip_new(sink, &err);
    if (!zip) return false;
    QMap<QString, GsfOutfile*> folders;
    std::vector<GsfOutfile*> order;
    auto folder = [&](const QString& name) {
        GsfOutfile* parent = zip;
        QString at;
        for (const QString& part : name.split('/', Qt::SkipEmptyParts)) {
            at += part + '/';
            if (!folders.contains(at)) {
                folders[at] = GSF_OUTFILE(gsf_outfile_new_child(parent, part.toUtf8().constData(), TRUE));
                order.push_back(folders[at]);
            }
            parent = folders[at];
        }
        return parent;
    };
    for (const auto& [name, data] : members) {
        const qsizetype slash = name.lastIndexOf('/');
        GsfOutfile* parent = slash < 0 ? zip : folder(name.left(slash));
        GsfOutput* child = gsf_outfile_new_child(parent, name.mid(slash + 1).toUtf8().constData(), FALSE);
        gsf_output_write(child, static_cast<size_t>(data.size()),
                         reinterpret_cast<const guint8*>(data.constData()));
        gsf_output_close(child);
        g_object_unref(child);
    }
    // Closing the archive closes its folders.
    gsf_output_close(GSF_OUTPUT(zip));
    for (auto it = order.rbegin(); it != order.rend(); ++it)
        g_object_unref(*it);
    g_object_unref(zip);
    if (!gsf_output_is_closed(sink)) gsf_output_close(sink); // the container closes it
    g_object_unref(sink);
    return true;
}

// Writes streams (for example "Book" or "Workbook") into an OLE compound file at `path`.
inline bool writeOle(const QString& path, const Members& streams) {
    gsf_init();
    GError* err = nullptr;
    GsfOutput* sink = gsf_output_stdio_new(path.toLocal8Bit().constData(), &err);
    if (!sink) return false;
    GsfOutfile* ole = gsf_outfile_msole_new(sink);
    for (const auto& [name, data] : streams) {
        GsfOutput* child = gsf_outfile_new_child(ole, name.toUtf8().constData(), FALSE);
        gsf_output_write(child, static_cast<size_t>(data.size()),
                         reinterpret_cast<const guint8*>(data.constData()));
        gsf_output_close(child);
        g_object_unref(child);
    }
    gsf_output_close(GSF_OUTPUT(ole));
    g_object_unref(ole);
    if (!gsf_output_is_closed(sink)) gsf_output_close(sink); // the container closes it
    g_object_unref(sink);
    return true;
}
inline bool writeOle(const QString& path, const QString& streamName, const QByteArray& data) {
    return writeOle(path, Members{{streamName, data}});
}

// Writes bytes to a file at `path`.
inline bool writeFile(const QString& path, const QByteArray& bytes) {
    QFile f(path);
    return f.open(QIODevice::WriteOnly) && f.write(bytes) == bytes.size();
}

// ---- BIFF records

inline QByteArray le16(int v) {
    QByteArray b(2, 0);
    b[0] = char(v & 0xFF);
    b[1] = char((v >> 8) & 0xFF);
    return b;
}
inline QByteArray le32(quint32 v) {
    return le16(int(v & 0xFFFF)) + le16(int(v >> 16));
}
inline QByteArray f64(double v) {
    QByteArray b(8, 0);
    std::memcpy(b.data(), &v, 8); // little-endian machine
    return b;
}
inline QByteArray record(int id, const QByteArray& data) {
    return le16(id) + le16(int(data.size())) + data;
}
// A BIFF8 string: 16-bit length, flags (1: two bytes a character), the characters.
inline QByteArray biff8String(const QString& text) {
    bool wide = false;
    for (QChar c : text)
        wide = wide || c.unicode() > 0xFF;
    QByteArray b = le16(int(text.size())) + QByteArray(1, wide ? 1 : 0);
    for (QChar c : text)
        b += wide ? le16(c.unicode()) : QByteArray(1, char(c.unicode()));
    return b;
}
// Row, column and the XF index of a BIFF3 .. BIFF8 cell.
inline QByteArray cellHead(int row, int col, int xf = 0) {
    return le16(row) + le16(col) + le16(xf);
}
// Row, column and the three attribute bytes of a BIFF2 cell (format index in the second).
inline QByteArray cellHead2(int row, int col, int format = 0) {
    return le16(row) + le16(col) + QByteArray(1, 0) + QByteArray(1, char(format)) + QByteArray(1, 0);
}

// ---- OLE compound files written by hand, for the odd ones no library writes

// How a hand-written compound file departs from the standard.
struct CompoundOptions {
    int fatCount = 1;                    // the header's count of allocation table sectors (1 is right)
    std::vector<quint32> moreFatSectors; // further ones the header names
    int extensionCount = 0;              // the header's count of extension sectors (there are none)
    bool directoryLast = false;          // the directory is the file's last sector, cut after its entries
    int streamChain = -1;                // the stream's chain ends after this many sectors (-1: all)
};

// A compound file of 512-byte sectors holding one stream of at least 4096 bytes (a shorter one is
// padded with zeros): the allocation table in sector 0, then the directory and the stream (or
// the stream and the directory).
inline QByteArray compoundFile(const QString& name, QByteArray stream, const CompoundOptions& options = {}) {
    if (stream.size() < 4096) stream.append(QByteArray(4096 - stream.size(), 0));
    const quint32 end = 0xFFFFFFFE, free = 0xFFFFFFFF;
    const quint32 sectors = quint32((stream.size() + 511) / 512);
    stream.append(QByteArray(int(sectors * 512 - stream.size()), 0));
    const quint32 dirSector = options.directoryLast ? 1 + sectors : 1;
    const quint32 streamStart = options.directoryLast ? 1 : 2;
    QByteArray header = QByteArray("\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1", 8) + QByteArray(16, 0) + le16(0x3E) +
                        le16(3) + le16(0xFFFE) + le16(9) + le16(6) + QByteArray(6, 0) + le32(0) +
                        le32(quint32(options.fatCount)) + le32(dirSector) + le32(0) + le32(4096) + le32(end) +
                        le32(0) + le32(end) + le32(quint32(options.extensionCount)) + le32(0);
    for (quint32 s : options.moreFatSectors)
        header += le32(s);
    while (header.size() < 512)
        header += le32(free);
    std::vector<quint32> fat(128, free);
    fat[0] = 0xFFFFFFFD;
    fat[dirSector] = end;
    const quint32 chained = options.streamChain < 0 ? sectors : quint32(options.streamChain);
    for (quint32 i = 0; i < chained; ++i)
        fat[streamStart + i] = i + 1 < chained ? streamStart + i + 1 : end;
    QByteArray fatSector;
    for (quint32 v : fat)
        fatSector += le32(v);
    auto entry = [](const QString& entryName, int type, quint32 child, quint32 start, quint32 size) {
        QByteArray e;
        for (QChar c : entryName)
            e += le16(c.unicode());
        e.append(QByteArray(64 - e.size(), 0));
        e += le16(int(entryName.size() + 1) * 2) + QByteArray(1, char(type)) + QByteArray(1, 1) + le32(free) +
             le32(free) + le32(child) + QByteArray(36, 0) + le32(start) + le32(size) + le32(0);
        return e;
    };
    QByteArray directory =
        entry("Root Entry", 5, 1, end, 0) + entry(name, 2, free, streamStart, quint32(stream.size()));
    if (!options.directoryLast) directory.append(QByteArray(512 - directory.size(), 0));
    return options.directoryLast ? header + fatSector + stream + directory
                                 : header + fatSector + directory + stream;
}

// ---- .xlsb records

// A record: its type and its length as numbers of seven bits a byte, then its data.
inline QByteArray xlsbRecord(int type, const QByteArray& data = {}) {
    QByteArray b;
    if (type < 0x80) {
        b += char(type);
    } else {
        b += char((type & 0x7F) | 0x80);
        b += char(type >> 7);
    }
    quint32 n = quint32(data.size());
    do {
        char c = char(n & 0x7F);
        n >>= 7;
        if (n) c = char(c | 0x80);
        b += c;
    } while (n);
    return b + data;
}
// An XLWideString: a count of characters and the characters in UTF-16.
inline QByteArray xlsbString(const QString& text) {
    QByteArray b = le32(quint32(text.size()));
    for (QChar c : text)
        b += le16(c.unicode());
    return b;
}
// A cell: its column and its format (the index of a cell format).
inline QByteArray xlsbCell(int col, int style = 0) {
    return le32(quint32(col)) + le32(quint32(style));
}

// The parts of an .xlsb package around a workbook's records: the workbook's first sheet is a
// chart sheet, its second `sheet`; styles and shared strings as given.
inline Members xlsbPackage(const QByteArray& workbookProperties, const QByteArray& styles,
                           const QByteArray& strings, const QByteArray& sheet) {
    const QByteArray relNs = "http://schemas.openxmlformats.org/officeDocument/2006/relationships";
    const QByteArray rels = "<?xml version=\"1.0\"?><Relationships "
                            "xmlns=\"http://schemas.openxmlformats.org/package/2006/relationships\">"
                            "<Relationship Id=\"rId1\" Type=\"" +
                            relNs + "/officeDocument\" Target=\"xl/workbook.bin\"/></Relationships>";
    const QByteArray workbookRels =
        "<?xml version=\"1.0\"?><Relationships "
        "xmlns=\"http://schemas.openxmlformats.org/package/2006/relationships\">"
        "<Relationship Id=\"rId4\" Type=\"" +
        relNs + "/chartsheet\" Target=\"chartsheets/sheet1.bin\"/><Relationship Id=\"rId1\" Type=\"" + relNs +
        "/worksheet\" Target=\"worksheets/sheet1.bin\"/><Relationship Id=\"rId2\" Type=\"" + relNs +
        "/styles\" Target=\"styles.bin\"/><Relationship Id=\"rId3\" Type=\"" + relNs +
        "/sharedStrings\" Target=\"sharedStrings.bin\"/></Relationships>";
    const QByteArray contentTypes =
        "<?xml version=\"1.0\"?><Types xmlns=\"http://schemas.openxmlformats.org/package/2006/content-types\">"
        "<Default Extension=\"rels\" ContentType=\"application/vnd.openxmlformats-package.relationships+xml\"/>"
        "<Default Extension=\"xml\" ContentType=\"application/xml\"/>"
        "<Override PartName=\"/xl/workbook.bin\" "
        "ContentType=\"application/vnd.ms-excel.sheet.binary.macroEnabled.main\"/>"
        "<Override PartName=\"/xl/worksheets/sheet1.bin\" ContentType=\"application/vnd.ms-excel.worksheet\"/>"
        "<Override PartName=\"/xl/chartsheets/sheet1.bin\" ContentType=\"application/vnd.ms-excel.chartsheet\"/>"
        "<Override PartName=\"/xl/styles.bin\" ContentType=\"application/vnd.ms-excel.styles\"/>"
        "<Override PartName=\"/xl/sharedStrings.bin\" ContentType=\"application/vnd.ms-excel.sharedStrings\"/>"
        "</Types>";
    auto bundle = [](const QString& id, const QString& name, int tab) {
        return xlsbRecord(156, le32(0) + le32(quint32(tab)) + xlsbString(id) + xlsbString(name));
    };
    const QByteArray workbook = xlsbRecord(131) + workbookProperties + xlsbRecord(143) +
                                bundle("rId4", "Kaavio", 2) + bundle("rId1", "Hinnat", 1) + xlsbRecord(144) +
                                xlsbRecord(132);
    const QByteArray chart = xlsbRecord(129) + xlsbRecord(145) + xlsbRecord(0, le32(0) + QByteArray(13, 0)) +
                             xlsbRecord(5, xlsbCell(0) + f64(99)) + xlsbRecord(146) + xlsbRecord(130);
    return {{"[Content_Types].xml", contentTypes},
            {"_rels/.rels", rels},
            {"xl/workbook.bin", workbook},
            {"xl/_rels/workbook.bin.rels", workbookRels},
            {"xl/chartsheets/sheet1.bin", chart},
            {"xl/worksheets/sheet1.bin", sheet},
            {"xl/styles.bin", styles},
            {"xl/sharedStrings.bin", strings}};
}

} // namespace sheet_files
