#include "persist/ProjectText.h"

namespace persist {

QString versionLine() {
    return QStringLiteral("%1.%2.%3")
        .arg(TAMRIK_VERSION_MAJOR)
        .arg(TAMRIK_VERSION_MINOR)
        .arg(TAMRIK_VERSION_PATCH);
}

namespace {

void writeText(RecordWriter& w, const ProjectContent& content, bool pathOption) {
    w.line(versionLine());
    w.count(18);
    for (int i = 0; i < 18; ++i)
        w.line(i < content.referenceItems.size() ? content.referenceItems[i] : QString());
    for (int k = 0; k < 4; ++k)
        WriteFormToFile(w, content.windows[k], pathOption && k == 1);
    w.count(content.checks.size());
    for (const QString& c : content.checks)
        w.line(c);
    w.count(3);
    for (const QByteArray& doc : content.documents) {
        // The length in the number format of the old print statement: a blank before the digits.
        w.raw(" ");
        w.count(doc.size());
        w.raw(doc);
        w.raw("\r\n");
    }
}

} // namespace

QByteArray WriteProjectText(const ProjectContent& content, bool pathOption, QString* unencodable) {
    RecordWriter w(unencodable);
    qsizetype size = 1024;
    for (const WindowRecord& r : content.windows)
        size += RecordSize(r);
    for (const QByteArray& doc : content.documents)
        size += doc.size() + 16;
    w.reserve(size);
    writeText(w, content, pathOption);
    return w.take();
}

bool WriteProjectText(const ProjectContent& content, bool pathOption, const ByteSink& sink,
                      QString* unencodable) {
    RecordWriter w(sink, unencodable);
    writeText(w, content, pathOption);
    return w.finish();
}

bool ReadProjectText(const QByteArray& member, const QString& directory, ProjectContent& content,
                     QString* error) {
    RecordReader in(member);
    ProjectContent c;
    const char* const names[4] = {"perustietojen", "yksityiskohtaisten tietojen", "ominaistietokortin",
                                  "panostilakortin"};
    auto failed = [&](const QString& part) {
        if (error) *error = part + QStringLiteral(", ") + in.error();
        return false;
    };
    QString line;
    if (!in.line(line)) return failed(QStringLiteral("versiorivi"));
    int n = 0;
    if (!in.count(n, 100000)) return failed(QStringLiteral("viiteluettelo"));
    for (int i = 0; i < n; ++i) {
        if (!in.line(line)) return failed(QStringLiteral("viiteluettelo"));
        c.referenceItems.append(line);
    }
    for (int k = 0; k < 4; ++k) {
        if (!ReadFormFromFile(in, c.windows[k], k == 1 ? directory : QString()))
            return failed(QString::fromUtf8(names[k]) + QStringLiteral(" tiedot"));
    }
    if (!in.count(n, 1000)) return failed(QStringLiteral("valintaruudut"));
    for (int i = 0; i < n; ++i) {
        if (!in.line(line)) return failed(QStringLiteral("valintaruudut"));
        c.checks.append(line.trimmed());
    }
    int docs = 0;
    if (!in.count(docs, 1000)) return failed(QStringLiteral("tekstiasiakirjat"));
    for (int d = 0; d < docs; ++d) {
        int length = 0;
        if (!in.count(length, 1 << 30)) return failed(QStringLiteral("tekstiasiakirja %1").arg(d + 1));
        QByteArray rtf;
        if (!in.bytes(length, rtf)) return failed(QStringLiteral("tekstiasiakirja %1").arg(d + 1));
        // The rest of the line after the document.
        if (!in.atEnd() && !in.line(line)) return failed(QStringLiteral("tekstiasiakirja %1").arg(d + 1));
        if (d < 3) c.documents[d] = rtf;
    }
    content = std::move(c);
    return true;
}

} // namespace persist
