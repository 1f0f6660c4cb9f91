#include "lists/ListConvert.h"

#include "lists/ListFiles.h"
#include "lists/ListModel.h"
#include "lists/Spreadsheet.h"
#include "platform/TextFile.h"

#include <QFileInfo>

namespace lists {

namespace {

bool isListTextFile(const QString& ext) {
    return ext == QLatin1String("sl1") || ext == QLatin1String("sl2") || ext == QLatin1String("csv");
}

// Whether two names lead to the same file (the output may not exist yet).
bool sameFile(const QString& a, const QString& b) {
    const QFileInfo fa(a);
    const QFileInfo fb(b);
    if (fa.exists() && fb.exists()) return fa.canonicalFilePath() == fb.canonicalFilePath();
    return fa.absoluteFilePath() == fb.absoluteFilePath();
}

} // namespace

bool ConvertListFile(const QString& in, const QString& out, QString* error) {
    auto fail = [&](const QString& message) {
        if (error) *error = message;
        return false;
    };
    const QString inExt = QFileInfo(in).suffix().toLower();
    const QString outExt = QFileInfo(out).suffix().toLower();
    if (!isListTextFile(inExt) && !isSpreadsheetFile(in))
        return fail(QStringLiteral("Tiedostoa: ") + in +
                    QStringLiteral(" ei voi lukea. Luettavia muotoja ovat .sl1, .sl2, .csv, ") +
                    spreadsheetExtensionsText() + QLatin1Char('.'));
    if (!isListTextFile(outExt) && outExt != QLatin1String("xlsx"))
        return fail(
            QStringLiteral("Tiedostoa: ") + out +
            QStringLiteral(" ei voi kirjoittaa. Kirjoitettavia muotoja ovat .sl1, .sl2, .csv ja .xlsx."));
    if (sameFile(in, out))
        return fail(QStringLiteral("Tulostiedosto ei voi olla sama kuin luettava tiedosto: ") + in);

    ListModel list;
    if (isListTextFile(inExt)) {
        ListFileContent content;
        QString readError;
        if (ReadListFile(in, QStringLiteral(";"), content, &readError) != ReadStatus::Ok)
            return fail(readError);
        list.reset(std::move(content.columns), std::move(content.rows));
    } else if (!readSpreadsheetList(in, list, error)) {
        return false;
    }

    if (outExt == QLatin1String("xlsx")) return ExportListViewXlsx(list, out, error);
    // Encoded once; only a list with characters outside Windows-1252 is searched for where.
    QString unencodable;
    const QByteArray bytes = listFileBytes(list, &unencodable);
    if (!unencodable.isEmpty()) {
        const CellRef first = cellsOutsideCp1252(list).front();
        const QString where =
            first.row == 0 ? QStringLiteral("otsikkorivillä") : QStringLiteral("rivillä %1").arg(first.row);
        return fail(QStringLiteral("Tiedostoon: ") + out + QStringLiteral(" ei voi tallentaa merkkejä \"") +
                    first.characters + QStringLiteral("\" (") + where +
                    QStringLiteral(", sarakkeessa %1).").arg(first.col));
    }
    QString writeError;
    if (!platform::writeFileAtomically(out, bytes, &writeError))
        return fail(QStringLiteral("Tiedostoa: ") + out + QStringLiteral(" ei voi tallentaa. ") + writeError);
    return true;
}

} // namespace lists
