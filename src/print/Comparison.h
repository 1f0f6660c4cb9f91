#pragma once
// The comparison of two project versions as the program outputs it: the versions read from
// project files, and the printed document "Muutosvertailu".
//
// The document is not one of the 13 of the print selection: a run prints it when it is given
// one (PrintRun::setComparison), after whatever documents are selected. It has a front page,
// then a summary (the cost totals and the row amounts per work phase of both versions, the
// quality number per work phase, the requirements whose mark changed) and the table of changes.
#include "calc/ProjectCompare.h"

namespace persist {
struct ProjectFile;
}

namespace print {

class PrintRun;
class Surface;

// A version as a project file holds it; `name` is what the reports call it (its file). The
// second form takes the file's lists over.
calc::ProjectVersion VersionFromProject(const persist::ProjectFile& project, const QString& name);
calc::ProjectVersion VersionFromProject(persist::ProjectFile&& project, const QString& name);

// The body rows of the printed comparison: its summary lines and the lines of its table.
int ComparisonRowCount(const calc::ProjectComparison& comparison);
double ComparisonRowHeight(PrintRun& run, int row);
void PrintComparison(PrintRun& run, Surface& s, int p);
// Whether the table needs the width of a landscape page: some text of it would wrap in the
// columns of the run's page when it is upright. Measures the run's comparison on its device.
bool ComparisonNeedsLandscape(PrintRun& run);

} // namespace print
