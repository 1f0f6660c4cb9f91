#pragma once
// The text member of a project file: the version line, the reference list of the detailed
// data window, the four window records, the charge chamber card's check boxes and the three
// rich-text documents.
#include "persist/WindowRecord.h"

#include <QByteArray>
#include <array>

namespace persist {

struct ProjectContent {
    QStringList referenceItems; // the 18 items of the detailed data window's hidden drop-down
    std::array<WindowRecord, 4> windows;
    QStringList checks;                  // the charge chamber card's check boxes: "0", "1" or "2"
    std::array<QByteArray, 3> documents; // rich text of the three documents
};

// "4.0.17": the version line this program writes.
QString versionLine();

// The member's bytes. Characters outside Windows-1252 become "?"; each is listed once in
// `unencodable` when it is given.
QByteArray WriteProjectText(const ProjectContent& content, bool pathOption, QString* unencodable = nullptr);
// The same bytes handed to `sink` a block at a time as they are made; false when the sink failed.
bool WriteProjectText(const ProjectContent& content, bool pathOption, const ByteSink& sink,
                      QString* unencodable = nullptr);

// Reads a member. `directory` is the project file's folder, for the "{PATH}" cells. On failure
// returns false with an error that names the part and the line; `content` is left as it was.
bool ReadProjectText(const QByteArray& member, const QString& directory, ProjectContent& content,
                     QString* error);

} // namespace persist
