#pragma once
// Reading and writing whole project files: the container and its text member together.
#include "lists/ListModel.h"
#include "persist/ProjectText.h"
#include "persist/SlContainer.h"

#include <memory>

namespace lists {
class ListModel;
}

namespace persist {

struct ProjectFile {
    ProjectContent content;
    Members members; // the raw members; [1]..[6] the pictures with their type bytes
};

// Reads a project file completely. With textOnly the picture members are not looked at
// (they need not even be whole). The file's folder resolves the "{PATH}" cells. On failure
// returns false with an error that says what failed and where; `out` is left as it was.
bool ReadProjectFile(const QString& fileName, bool textOnly, ProjectFile& out, QString* error);

// A list made from a list record, for model code that needs no window: the stored columns
// with empty headers, then "Rivi" with the row numbers 00001, 00002, ...
// List j of window record `window` (0 basic data, 1 detailed data, ...); an empty list when an
// older or shorter record does not have it.
const ListRecord& RecordList(const ProjectContent& content, int window, int j);
// The same list taken out of the content (left empty there), for a list made of it once.
ListRecord TakeRecordList(ProjectContent& content, int window, int j);

std::unique_ptr<lists::ListModel> ListFromRecord(const ListRecord& record, const QString& kind);
// The same from a record that is no longer needed: its rows move into the list.
std::unique_ptr<lists::ListModel> ListFromRecord(ListRecord&& record, const QString& kind);
// A list's row from a stored row: its first `keep` cells, empty ones up to `dataCols`, then the
// row number. `build` is reused from row to row.
lists::Row RowFromRecord(const lists::RowCells& stored, int keep, int dataCols, long long number,
                         lists::RowCells::Builder& build);
// The same from a stored row that is no longer needed: a row that already holds exactly those
// cells and that number (as the reader leaves it) becomes the list's row without a copy.
lists::Row RowFromRecord(lists::RowCells&& stored, int keep, int dataCols, long long number,
                         lists::RowCells::Builder& build);

// The files the requirement list refers to (columns 13 and 14 holding a folder), each once.
QStringList PopulateFiles(const lists::ListModel& requirements);

} // namespace persist
