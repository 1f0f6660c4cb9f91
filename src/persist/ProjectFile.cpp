#include "persist/ProjectFile.h"

#include "lists/ListModel.h"
#include "lists/ListProcedures.h"
#include "platform/TextFile.h"
#include "persist/WindowRecord.h"

#include <QFileInfo>

namespace persist {

bool ReadProjectFile(const QString& fileName, bool textOnly, ProjectFile& out, QString* error) {
    QByteArray bytes;
    if (!platform::readFileBytes(fileName, bytes, error)) return false;
    ProjectFile file;
    if (textOnly) {
        if (!UnpackTextMember(bytes, file.members[0].data, error)) return false;
    } else if (!UnpackContainer(bytes, file.members, error)) {
        return false;
    }
    // The members are copies: the file's bytes go before the text is read, not after.
    bytes = QByteArray();
    QString folder = QFileInfo(fileName).absolutePath();
    if (!folder.endsWith(QLatin1Char('/'))) folder += QLatin1Char('/');
    if (!ReadProjectText(file.members[0].data, folder, file.content, error)) return false;
    out = std::move(file);
    return true;
}

const ListRecord& RecordList(const ProjectContent& content, int window, int j) {
    static const ListRecord none;
    if (window < 0 || window >= static_cast<int>(content.windows.size())) return none;
    const std::vector<ListRecord>& lists = content.windows[window].lists;
    return j >= 0 && j < static_cast<int>(lists.size()) ? lists[j] : none;
}

ListRecord TakeRecordList(ProjectContent& content, int window, int j) {
    if (window < 0 || window >= static_cast<int>(content.windows.size())) return {};
    std::vector<ListRecord>& lists = content.windows[window].lists;
    if (j < 0 || j >= static_cast<int>(lists.size())) return {};
    ListRecord taken = std::move(lists[j]);
    lists[j] = ListRecord();
    return taken;
}

std::unique_ptr<lists::ListModel> ListFromRecord(const ListRecord& record, const QString& kind) {
    return ListFromRecord(ListRecord(record), kind);
}

std::unique_ptr<lists::ListModel> ListFromRecord(ListRecord&& record, const QString& kind) {
    auto list = std::make_unique<lists::ListModel>();
    list->setKind(kind);
    std::vector<lists::Column> columns(record.columns);
    columns.push_back({QStringLiteral("Rivi"), 0});
    std::vector<lists::Row> rows;
    rows.reserve(record.rows.size());
    long long n = 0;
    lists::RowCells::Builder build;
    for (lists::RowCells& cells : record.rows) {
        rows.push_back(RowFromRecord(std::move(cells), record.columns, record.columns, ++n, build));
        cells = lists::RowCells(); // each stored row goes as soon as its list row exists
    }
    list->reset(std::move(columns), std::move(rows));
    return list;
}

lists::Row RowFromRecord(const lists::RowCells& stored, int keep, int dataCols, long long number,
                         lists::RowCells::Builder& build) {
    const int n = std::min(static_cast<int>(stored.size()), std::min(keep, dataCols));
    for (int c = 0; c < n; ++c)
        build.add(stored[c]);
    build.addEmpty(dataCols - n);
    build.add(lists::formatRowNumber(number));
    lists::Row row;
    row.cells = build.take();
    return row;
}

lists::Row RowFromRecord(lists::RowCells&& stored, int keep, int dataCols, long long number,
                         lists::RowCells::Builder& build) {
    // A row read from a file already ends in its number: it is taken as it is.
    if (keep == dataCols && stored.size() == dataCols + 1 &&
        stored[dataCols] == lists::formatRowNumber(number)) {
        lists::Row row;
        row.cells = std::move(stored);
        return row;
    }
    return RowFromRecord(static_cast<const lists::RowCells&>(stored), keep, dataCols, number, build);
}

QStringList PopulateFiles(const lists::ListModel& requirements) {
    QStringList out;
    for (int r = 1; r <= requirements.rows(); ++r) {
        for (int c : {13, 14}) {
            const QStringView cell = requirements.cell(r, c);
            const bool folder = cell.contains(QLatin1Char('\\')) || cell.contains(QLatin1Char('/'));
            if (folder && !lists::BlankString(cell) && !out.contains(cell)) out << cell.toString();
        }
    }
    return out;
}

} // namespace persist
