#pragma once
// A print run written to a PDF file, on the paper of the run's printer.
#include "print/PrintRun.h"

#include <QPageLayout>
#include <QString>

namespace print {

// Paginates when stale and writes every page of the run to `fileName`. The file is written
// beside the target and renamed over it only when the run is complete, so a cancelled or
// failed run leaves no file behind and an earlier file as it was. A failure's reason goes into
// `error`; a run without pages writes nothing (its reason was reported through the run).
OutputResult WritePdf(PrintRun& run, const QString& fileName, const QPageLayout& layout, int resolution,
                      const Progress& progress = {}, QString* error = nullptr);

} // namespace print
