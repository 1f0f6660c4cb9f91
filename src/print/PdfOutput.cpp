#include "print/PdfOutput.h"

#include <QFileInfo>
#include <QPdfWriter>
#include <QSaveFile>

namespace print {

OutputResult WritePdf(PrintRun& run, const QString& fileName, const QPageLayout& layout, int resolution,
                      const Progress& progress, QString* error) {
    QSaveFile file(fileName);
    auto fail = [&](const QString& why) {
        if (error)
            *error = QStringLiteral("Tiedostoa ") + fileName + QStringLiteral(" ei voi kirjoittaa: ") + why;
        return OutputResult::DeviceFailed;
    };
    if (!file.open(QIODevice::WriteOnly)) return fail(file.errorString());
    OutputResult result;
    {
        QPdfWriter writer(&file);
        writer.setCreator(QStringLiteral("TAMRIK 2006"));
        writer.setTitle(QFileInfo(fileName).completeBaseName());
        writer.setResolution(resolution);
        writer.setPageLayout(layout);
        result = run.PrintAllDocuments(writer, progress);
    }
    // An unfinished file is thrown away with the save file.
    if (result != OutputResult::Printed) {
        file.cancelWriting();
        return result == OutputResult::DeviceFailed ? fail(file.errorString()) : result;
    }
    if (!file.commit()) return fail(file.errorString());
    return OutputResult::Printed;
}

} // namespace print
