#include "platform/CommonDialog.h"

#include "platform/Dialogs.h"

#include <QDir>
#include <QFileInfo>

namespace platform {

QString filterForExtension(const QString& extension, bool save) {
    const QString e = extension.toLower();
    if (e == QLatin1String(".sl"))
        return QStringLiteral("Projektitiedostot (*.sl)|*.sl|Kaikki tiedostot (*.*)|*.*");
    if (e == QLatin1String(".sl1"))
        return QStringLiteral(
            "Yksikköhintaluettelot (*.sl1)|*.sl1|Tekstiedostot (*.csv)|*.csv|Kaikki tiedostot "
            "(*.*)|*.*");
    if (e == QLatin1String(".sl2"))
        return QStringLiteral("Laatuvaatimusluettelot (*.sl2)|*.sl2|Tekstiedostot (*.csv)|*.csv|Kaikki "
                              "tiedostot (*.*)|*.*");
    if (e == QLatin1String(".xls")) {
        // Export writes the current spreadsheet format; import reads the old and the new ones.
        if (save) return QStringLiteral("MS-Excel tiedostot (*.xlsx)|*.xlsx");
        return QStringLiteral("MS-Excel tiedostot (*.xls)|*.xls") +
               QStringLiteral(";*.xlsx;*.xlsm;*.xlsb;*.xltx;*.xltm|OpenDocument-laskentataulukot (*.ods)|*.ods");
    }
    if (e == QLatin1String(".wmf"))
        // The picture loader reads these others as well (they are stored as bitmaps).
        return QStringLiteral(
                   "Metatiedosto (*.wmf, *.emf)|*.wmf;*.emf|Bittigrafiikka (*.bmp, *.jpg, *.gif )|*.bmp;*.jpg;*.gif") +
               QStringLiteral(
                   "|Muut kuvat (*.png, *.jpeg, *.ico)|*.png;*.jpeg;*.ico|Kaikki tiedostot (*.*)|*.*");
    if (e == QLatin1String(".rtf")) return QStringLiteral("Teksti (*.txt )|*.txt|Rikas teksi (*.rtf)|*.rtf|");
    if (e == QLatin1String(".*")) return QStringLiteral("Kaikki tiedostot (*.*)|*.*|Teksti (*.txt )|*.txt");
    return {};
}

QString folderKind(const QString& extension) {
    const QString e = extension.toLower();
    if (e == QLatin1String(".sl")) return QStringLiteral("Projects");
    if (e == QLatin1String(".sl1") || e == QLatin1String(".sl2")) return QStringLiteral("Lists");
    if (e == QLatin1String(".xls")) return QStringLiteral("Spreadsheets");
    if (e == QLatin1String(".wmf")) return QStringLiteral("Pictures");
    return {};
}

QString startFolder(const QString& extension, const CommonDialogState& state, const QString& preferred) {
    if (!preferred.isEmpty()) {
        const QFileInfo given(preferred);
        const QString folder =
            QDir::cleanPath(given.isDir() ? given.absoluteFilePath() : given.absolutePath());
        if (QFileInfo(folder).isDir()) return folder;
    }
    const QString kind = folderKind(extension);
    const auto stored = state.folders.find(kind);
    const QString remembered =
        kind.isEmpty() ? state.directory : (stored != state.folders.end() ? stored->second : QString());
    if (!remembered.isEmpty() && QFileInfo(remembered).isDir()) return remembered;
    return QDir::homePath();
}

QString ShowCommonDialog(int kind, const QString& extension, bool multiple, CommonDialogState& state,
                         const QString& preferred) {
    const bool save = kind == 2;
    const QString filter = filterForExtension(extension, save);
    if (!filter.isEmpty()) {
        state.filter = filter;
        state.extension = extension;
    }
    FileRequest r;
    r.save = save;
    r.filters = translateFilter(state.filter);
    r.multiple = multiple && !save;
    r.directory = startFolder(extension, state, preferred);
    if (save && !preferred.isEmpty() && !QFileInfo(preferred).isDir())
        r.fileName = QFileInfo(preferred).fileName();
    if (save) {
        QString ext = state.extension;
        if (ext.toLower() == QLatin1String(".xls")) ext = QStringLiteral(".xlsx");
        if (ext.startsWith(QLatin1Char('.')) && ext != QLatin1String(".*")) r.defaultSuffix = ext.mid(1);
    }
    const QStringList chosen = Dialogs::instance().files(r);
    if (chosen.isEmpty()) return {};
    QString first = chosen.first();
    if (save && !r.defaultSuffix.isEmpty() && QFileInfo(first).suffix().isEmpty())
        first += QLatin1Char('.') + r.defaultSuffix;
    const QString folderOfKind = folderKind(extension);
    if (folderOfKind.isEmpty())
        state.directory = QFileInfo(first).absolutePath();
    else
        state.folders[folderOfKind] = QFileInfo(first).absolutePath();
    if (chosen.size() == 1) return first;
    QString result = QFileInfo(first).absolutePath();
    for (const QString& f : chosen)
        result += QChar(0) + QFileInfo(f).fileName();
    return result;
}

int EvaluateNFiles(QString& files) {
    if (files.isEmpty()) return 0;
    const QStringList parts = files.split(QChar(0));
    if (parts.size() == 1) return 1;
    QString folder = parts.first();
    if (!folder.endsWith(QLatin1Char('/')) && !folder.endsWith(QLatin1Char('\\'))) folder += QLatin1Char('/');
    QStringList paths;
    for (qsizetype i = 1; i < parts.size(); ++i)
        paths << folder + parts[i];
    files = paths.join(QChar(0));
    return static_cast<int>(paths.size());
}

} // namespace platform
