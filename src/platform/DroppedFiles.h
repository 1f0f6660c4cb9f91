#pragma once
// Files dragged from the file manager onto the program's windows.
#include <QStringList>

class QMimeData;

namespace platform {

// The local files of a drag, in their order; empty for anything else (rows dragged between
// lists, text, addresses that are not files).
QStringList droppedFiles(const QMimeData* data);

// What a dropped file is taken for, by its extension in any letter case.
enum class DroppedKind {
    Project,      // .sl
    UnitPrices,   // .sl1
    Requirements, // .sl2
    ListOrSheet,  // .csv, .xls, .xlsx, .ods: a list of either kind
    Picture,      // what the picture dialog offers: .wmf, .emf, .bmp, .jpg, .jpeg, .gif, .png, .ico
    Other
};
DroppedKind droppedKind(const QString& file);

} // namespace platform
