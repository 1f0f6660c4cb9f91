#pragma once
// A list: columns with header texts and widths, rows of text cells, a per-row tag, row
// selection with a current row, and the list's kind. Every table of the program is one.
//
// Rows and columns are numbered from 1 in this interface, as the list procedures count them;
// column 1 is the littera and the last column, "Rivi", holds the row number as five digits.
// The class is also the Qt item model that list views show (0-based, as Qt counts).
#include "lists/RowCells.h"

#include <QAbstractTableModel>
#include <QPointer>
#include <QString>
#include <QStringList>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace lists {

class EditHistory;
class ListJournal;
class ListStep;

struct Column {
    QString header;
    int width = 0; // twips
};

// An invisible text of a row (the cost estimate's caption subtotals). Few rows have one, so a
// row keeps a pointer, not a string: 16 bytes less on each row of a large list.
class RowTag {
public:
    RowTag() = default;
    // Not explicit: rows are built as {cells, tag, selected}.
    RowTag(const QString& text) // NOLINT(google-explicit-constructor)
        : m_text(text.isEmpty() ? nullptr : std::make_unique<const QString>(text)) {}
    RowTag(const RowTag& other)
        : RowTag(other.text()) {}
    RowTag(RowTag&&) noexcept = default;
    RowTag& operator=(const RowTag& other) {
        if (this != &other) *this = RowTag(other);
        return *this;
    }
    RowTag& operator=(RowTag&&) noexcept = default;
    const QString& text() const { return m_text ? *m_text : none(); }

private:
    static const QString& none();
    std::unique_ptr<const QString> m_text;
};

struct Row {
    RowCells cells; // one per column, "Rivi" last
    RowTag tag;
    bool selected = false;
};

class ListModel : public QAbstractTableModel {
    Q_OBJECT
public:
    explicit ListModel(QObject* parent = nullptr);
    ~ListModel() override;

    // The kind of the list ("Määräluettelo ja kustannusarvio", "Laatuvaatimukset", ...).
    const QString& kind() const { return m_kind; }
    void setKind(const QString& kind);
    // Made read-only by the program mode: the editing rules then see the kind "No edit".
    bool readOnly() const { return m_readOnly; }
    void setReadOnly(bool readOnly);
    // The text the editing rules test: "No edit" while read-only, otherwise the kind.
    QString tag() const;

    // Columns.
    int cols() const { return static_cast<int>(m_columns.size()); }
    const Column& column(int c) const { return m_columns[c - 1]; }
    const std::vector<Column>& columns() const { return m_columns; }
    void setColumnWidth(int c, int width);
    // The last data column (the one before "Rivi"); 0 for a list without columns.
    int lastDataCol() const { return cols() > 0 ? cols() - 1 : 0; }

    // Rows.
    int rows() const { return static_cast<int>(m_rows.size()); }
    const Row& row(int r) const { return m_rows[r - 1]; }
    const std::vector<Row>& allRows() const { return m_rows; }
    // The cell text; an empty text outside the list. The view is valid until the row
    // changes. Inline: the calculations call it for every cell they read.
    const QStringView cell(int r, int c) const {
        if (r < 1 || r > rows() || c < 1) return {};
        return m_rows[r - 1].cells.value(c - 1);
    }
    void setCell(int r, int c, QStringView text);
    void setCell(int r, int c, const QString& text) { setCell(r, c, QStringView(text)); }
    QStringView text(int r) const { return cell(r, 1); }
    QStringView rowNumberText(int r) const { return cell(r, cols()); }
    // Rewrites column `c` of every row through `fn` (1-based row, the cell's text), which gives
    // the new text or nothing to keep it, and tells the views once: renumbering touches every
    // row and must not signal per cell.
    void updateColumn(int c, const std::function<std::optional<QString>(int r, QStringView cell)>& fn);
    // What a calculation keeps of this list between its runs (the quality index keeps its
    // caption rows here). The list only holds it: the calculation checks it against the rows
    // before it uses it, so no change of the list has to drop it.
    std::shared_ptr<const void>& calculationCache() const { return m_calculationCache; }
    const QString& rowTag(int r) const { return m_rows[r - 1].tag.text(); }
    void setRowTag(int r, const QString& tag) { m_rows[r - 1].tag = tag; }

    // Replaces columns and rows at once (reading a file or a record). Every row is padded or
    // cut to the column count.
    void reset(std::vector<Column> columns, std::vector<Row> rows);
    void clearRows();
    // Inserts one empty row before position `pos` (1 .. rows() + 1).
    void insertEmptyRow(int pos);
    // Inserts rows before position `pos` in one step; each is padded or cut to the columns.
    void insertRowsAt(int pos, std::vector<Row> rows);
    void removeRowsAt(int pos, int count);
    // Replaces the rows with another sequence of rows in one step (batch reformatting).
    void replaceRows(std::vector<Row> rows);
    // Sorts rows stably by a key per row computed by the caller.
    void reorder(const std::vector<int>& newOrder);
    // Removes and inserts rows in one pass: the rows at `removeAt` (ascending positions in the
    // list as it is) go, and `rows` come in at `insertAt` (ascending positions in the list
    // afterwards). The current row follows its row; a removed current row leaves none.
    void spliceRows(const std::vector<int>& removeAt, const std::vector<int>& insertAt,
                    std::vector<Row> rows);

    // Selection. The current row is the list's focused row ("the selected row"); any number
    // of rows may be selected besides it.
    bool isSelected(int r) const { return m_rows[r - 1].selected; }
    void setSelected(int r, bool selected);
    void clearSelection();
    void selectAll();
    std::vector<int> selectedRows() const;
    int selectedCount() const;
    int currentRow() const { return m_current; }
    void setCurrentRow(int r);
    // The row a single-row operation acts on: the current row when it is selected, else the
    // topmost selected row, else 0.
    int selectedRow() const;
    // Makes `r` the only selected row and the current one.
    void selectOnly(int r);
    // Selects exactly these rows (ascending); the first becomes the current row.
    void selectRows(const std::vector<int>& rows);
    // Asks the views to bring a row into view.
    void ensureVisible(int r);

    // The undo history the list's changes go to (its project's or its base list window's);
    // null for a list of no document. Changes are recorded only inside a ListStep. Both are
    // defined with the steps (ListStep.cpp), so that a program without histories (the command
    // line) does not link the undo stack and the GUI library it lives in.
    EditHistory* history() const;
    void setHistory(EditHistory* history);

    // QAbstractItemModel
    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

signals:
    // The selection or the current row changed through the procedures (not through a view).
    void selectionChangedByModel();
    void scrollToRowRequested(int r);
    void kindChanged();
    // The content changed outside any step while the list has a history: the history no longer
    // fits the list (its history listens and invalidates itself).
    void changedOutsideStep();

private:
    friend class ListStep;
    friend class ListEdit;
    void normalise(Row& row) const;
    // Inside a step every change goes into its journal; a change of a list with a history
    // outside a step (or while a step is applied) does not fit the history any more.
    bool recording() const { return m_journal && !m_applying; }
    bool watched() const { return !m_journal && !m_history.isNull() && !m_applying; }

    QString m_kind;
    bool m_readOnly = false;
    std::vector<Column> m_columns;
    std::vector<Row> m_rows;
    int m_current = 0;
    // The history goes with its windows, which may be before this list goes.
    QPointer<EditHistory> m_history;
    std::unique_ptr<ListJournal> m_journal;
    QString m_stepText;
    int m_stepDepth = 0;
    bool m_applying = false;
    // Read and written on the list's own thread only, as the rows' memos are.
    mutable std::shared_ptr<const void> m_calculationCache;
};

// "00001" for 1: the five-digit row-number text.
QString formatRowNumber(long long n);
// The numeric value of a row-number text; 0 for an empty or non-numeric one.
long long rowNumberValue(QStringView text);

} // namespace lists
