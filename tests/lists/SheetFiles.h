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

// Writes one stream (for example "Book" or "Workbook") into an OLE compound file at `path`.
inline bool writeOle(const QString& path, const QString& streamName, const QByteArray& data) {
    gsf_init();
    GError* err = nullptr;
    GsfOutput* sink = gsf_output_stdio_new(path.toLocal8Bit().constData(), &err);
    if (!sink) return false;
    GsfOutfile* ole = gsf_outfile_msole_new(sink);
    GsfOutput* child = gsf_outfile_new_child(ole, streamName.toUtf8().constData(), FALSE);
    gsf_output_write(child, static_cast<size_t>(data.size()),
                     reinterpret_cast<const guint8*>(data.constData()));
    gsf_output_close(child);
    g_object_unref(child);
    gsf_output_close(GSF_OUTPUT(ole));
    g_object_unref(ole);
    if (!gsf_output_is_closed(sink)) gsf_output_close(sink); // the container closes it
    g_object_unref(sink);
    return true;
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

} // namespace sheet_files
