#pragma once
// The comparison of the open project with another version of it ("Muutosvertailu"): the
// summary of both versions' costs and quality number at the top, then the table of changes,
// filtered by kind and by list. Added rows are green, removed red and changed yellow, with a
// legend and the kind in a column of its own. A double-click goes to the row (or the window)
// in the open project. The comparison prints and goes to PDF through the print engine.
#include "calc/ProjectCompare.h"
#include "persist/ProjectFile.h"
#include "print/PrintSource.h"

#include <QAbstractTableModel>
#include <QPageLayout>
#include <QWidget>
#include <array>
#include <memory>

class QCheckBox;
class QComboBox;
class QHBoxLayout;
class QLabel;
class QPushButton;
class QTableView;
class QTableWidget;

namespace print {
class PrintRun;
struct Selection;
} // namespace print

namespace print::ui {
class PrintHost;
class PrintSession;
} // namespace print::ui

namespace documents {

class ProjectWindow;

// What the comparison window needs from the main window.
class CompareHost {
public:
    virtual ~CompareHost() = default;
    // The open project's window (0 basic data .. 3 charge chamber card) made the active one;
    // null when the project has been closed.
    virtual ProjectWindow* showProjectWindow(int window) = 0;
    virtual print::ui::PrintHost& printHost() = 0;
    virtual print::ui::PrintSession& printSession() = 0;
};

// The lines of a comparison's table as a table model, with a filter by kind and by place.
class ChangeTableModel : public QAbstractTableModel {
    Q_OBJECT
public:
    enum Column { Kind, Place, Key, ColumnName, Old, New, Cost, ColumnCount };
    explicit ChangeTableModel(QObject* parent = nullptr);

    void setComparison(const calc::ProjectComparison* comparison);
    // Which kinds and which source (-1 all) are shown.
    void setFilter(std::array<bool, 3> kinds, int source);
    // The line of the comparison shown in table row `row` (0-based).
    const calc::ChangeLine& line(int row) const;

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

    // The background of a kind: green, red or yellow.
    static QColor kindColor(calc::ChangeKind kind);

private:
    void refilter();
    const calc::ProjectComparison* m_comparison = nullptr;
    std::vector<int> m_shown;
    std::array<bool, 3> m_kinds{true, true, true};
    int m_source = -1;
};

class CompareWindow : public QWidget {
    Q_OBJECT
public:
    // `open` is the open project as its file would hold it now, with the row numbers ("Rivi")
    // its two lists had; `other` the version read from a file. The open project is the newer
    // version until the switch says otherwise.
    CompareWindow(std::unique_ptr<CompareHost> host, persist::ProjectFile open, const QString& openName,
                  std::array<QStringList, 2> openRowNumbers, persist::ProjectFile other,
                  const QString& otherName, QWidget* parent = nullptr);
    ~CompareWindow() override;

    const calc::ProjectComparison& comparison() const { return m_comparison; }
    // The switch: the open project is the older version.
    void setOpenIsOld(bool openIsOld);
    bool openIsOld() const;

    // Goes to the change in table row `row`: its row in the open project's list, or its window.
    void showChange(int row);

    // Printing the comparison: the preview, the printer (with its dialog) and a PDF file.
    void preview();
    bool printOnPrinter();
    bool printToPdf();
    // A run of the comparison on the printer's paper, upright or landscape as it needs.
    std::unique_ptr<print::PrintRun> makeRun();

    QCheckBox* OpenIsOld = nullptr;
    QLabel* OldLabel = nullptr;
    QLabel* NewLabel = nullptr;
    QTableWidget* Summary = nullptr;
    std::array<QCheckBox*, 3> KindFilter{}; // added, removed, changed: the legend too
    QComboBox* ListFilter = nullptr;        // all, quantity list, requirements, fields
    QLabel* CountLabel = nullptr;
    QTableView* Changes = nullptr;
    ChangeTableModel* ChangesModel = nullptr;
    QPushButton* PreviewButton = nullptr;
    QPushButton* PrintButton = nullptr;
    QPushButton* PdfButton = nullptr;
    QPushButton* CloseButton = nullptr;

private:
    // The constructor's groups: the summary of the totals, the filters above the list of
    // changes, that list, and the buttons.
    QTableWidget* buildSummary(QWidget* parent);
    QHBoxLayout* buildFilters(QWidget* changesArea);
    QTableView* buildChangesTable(QWidget* changesArea);
    QHBoxLayout* buildButtons();
    void compare();
    void fillSummary();
    void applyFilter();
    const persist::ProjectFile& newerFile() const;
    // Sets the printer's paper for the run: the printer's own orientation unless the comparison
    // needs the width; returns the page layout used.
    QPageLayout pageLayout(print::PrintRun& run);

    std::unique_ptr<CompareHost> m_hostOwner;
    CompareHost& m_host;
    persist::ProjectFile m_openFile;
    persist::ProjectFile m_otherFile;
    calc::ProjectVersion m_open;
    calc::ProjectVersion m_other;
    std::array<QStringList, 2> m_openRowNumbers;
    bool m_openIsOld = false;
    calc::ProjectComparison m_comparison;
    // What a print run of the comparison reads: the newer version, made when first printed.
    std::unique_ptr<print::ProjectSource> m_printSource;
    std::unique_ptr<print::Selection> m_selection;
};

} // namespace documents
