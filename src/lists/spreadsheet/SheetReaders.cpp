#include "lists/spreadsheet/SheetReaders.h"

#include "lists/spreadsheet/SaxPart.h"

#include <QStringList>

namespace lists::sheet {

QString withCrLf(QString text) {
    if (!text.contains(QLatin1Char('\n')) && !text.contains(QLatin1Char('\r'))) return text;
    text.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    text.replace(QLatin1Char('\r'), QLatin1Char('\n'));
    text.replace(QLatin1String("\n"), QLatin1String("\r\n"));
    return text;
}

namespace {

QString folderOf(const QString& path) {
    const qsizetype slash = path.lastIndexOf(QLatin1Char('/'));
    return slash < 0 ? QString() : path.left(slash + 1);
}

// "xl/worksheets/sheet1.xml" from the folder of the part that points at it and its target.
QString resolveTarget(const QString& fromFolder, const QString& target) {
    const QString path = target.startsWith(QLatin1Char('/')) ? target.mid(1) : fromFolder + target;
    QStringList parts;
    for (const QString& p : path.split(QLatin1Char('/'), Qt::SkipEmptyParts)) {
        if (p == QLatin1String("..")) {
            if (!parts.isEmpty()) parts.removeLast();
        } else if (p != QLatin1String(".")) {
            parts.append(p);
        }
    }
    return parts.join(QLatin1Char('/'));
}

constexpr qsizetype kMostRelationships = 1 << 16;

class RelationshipsPart : public SaxPart {
public:
    RelationshipsPart(QString name, QString folder, Relationships& out)
        : m_name(std::move(name))
        , m_folder(std::move(folder))
        , m_out(out) {}

protected:
    void start(std::string_view name, const xmlChar** attributes, int count) override {
        if (name != "Relationship") return;
        // A workbook has a part for each sheet and a few more; far more is no workbook.
        if (m_out.size() >= kMostRelationships)
            return stop(QStringLiteral("osassa %1 on yli %2 viittausta").arg(m_name).arg(kMostRelationships));
        const QString type = fromUtf8(saxAttribute(attributes, count, "Type"));
        m_out.insert(fromUtf8(saxAttribute(attributes, count, "Id")),
                     {type.mid(type.lastIndexOf(QLatin1Char('/')) + 1),
                      resolveTarget(m_folder, fromUtf8(saxAttribute(attributes, count, "Target")))});
    }
    void end(std::string_view) override {}
    void text(const char*, int) override {}

private:
    QString m_name;
    QString m_folder;
    Relationships& m_out;
};

} // namespace

bool readRelationships(const Archive& archive, const QString& part, Relationships& out,
                       platform::ReadError* error) {
    const QString folder = folderOf(part);
    const QString relsPath =
        folder + QStringLiteral("_rels/") + part.mid(folder.size()) + QStringLiteral(".rels");
    if (!archive.contains(relsPath)) return true;
    return RelationshipsPart(relsPath, folder, out).parse(archive, relsPath, error);
}

bool workbookPartOf(const Archive& archive, QString& part, platform::ReadError* error) {
    Relationships rels;
    if (!readRelationships(archive, QString(), rels, error)) return false;
    part = QStringLiteral("xl/workbook.xml");
    for (const Relationship& r : std::as_const(rels))
        if (r.type == QLatin1String("officeDocument")) part = r.target;
    return true;
}

} // namespace lists::sheet
