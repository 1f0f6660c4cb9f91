#pragma once
// A print run written to a PDF file, on the paper of the run's printer, with bookmarks and the
// document's properties, and as an archival PDF (PDF/A-1b) when asked.
#include "print/PrintRun.h"

#include <QDateTime>
#include <QPageLayout>
#include <QString>

namespace print {

struct PdfOptions {
    // PDF/A-1b: every font embedded, XMP metadata that names the standard, no transparency.
    bool archival = false;
    // The project file the run was printed from (its name goes into the subject).
    QString projectFile;
    QDateTime created = QDateTime::currentDateTime();
    // Runs of this many pages or more are drawn half on a second thread (0: never).
    int parallelFrom = 100;
    // The caller ends the process right after the file is written (the command line): the
    // rewrite's objects are left to the process's end instead of being freed one by one, which
    // takes tens of milliseconds for a long run.
    bool endsProcess = false;
};

// What a reader shows as the document's properties.
struct PdfProperties {
    QString title;   // "Kirkkojoen silta – Sillan kustannusarvio"
    QString author;  // the "Laati" name of the first document
    QString subject; // "TAMRIK-projekti Kirkkojoen silta.sl"
    QString creator; // the program and its version
    QString producer;
    QDateTime created;
};
PdfProperties DocumentProperties(const PrintRun& run, const PdfOptions& options);

// Paginates when stale and writes every page of the run to `fileName`, with the run's outline
// and properties. The file is written beside the target and renamed over it only when it is
// complete, outline included, so a cancelled or failed run leaves no file behind and an earlier
// file as it was. A failure's reason goes into `error`; a run without pages writes nothing (its
// reason was reported through the run).
OutputResult WritePdf(PrintRun& run, const QString& fileName, const QPageLayout& layout, int resolution,
                      const Progress& progress = {}, QString* error = nullptr,
                      const PdfOptions& options = {});

} // namespace print
