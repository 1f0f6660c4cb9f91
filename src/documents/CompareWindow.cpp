#include "documents/CompareWindow.h"

#include "documents/Form2.h"
#include "documents/ProjectWindow.h"
#include "lists/ListModel.h"
#include "lists/ui/ListView.h"
#include "platform/Dialogs.h"
#include "print/Comparison.h"
#include "print/PdfOutput.h"
#include "print/PrintRun.h"
#include "print/ui/Form12.h"
#include "print/ui/PrintHost.h"
#include "print/ui/PrintSession.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPainter>
#include <QPrinter>
#include <QPushButton>
#include <QSplitter>
#include <QTableView>
#include <QTableWidget>
#include <QVBoxLayout>

namespace documents {

namespace {

using calc::ChangeKind;

constexpr ChangeKind kKinds[3] = {ChangeKind::Added, ChangeKind::Removed, ChangeKind::Changed};
constexpr int kHelpTopic = 380;

int kindIndex(ChangeKind kind) {
    return kind == ChangeKind::Added ? 0 : kind == ChangeKind::Removed ? 1 : 2;
}

// A small square of a kind's colour, for the legend.
QIcon swatch(const QColor& color) {
    QPixmap pixmap(14, 14);
    pixmap.fill(color);
    QPainter painter(&pixmap);
    painter.setPen(QColor(120, 120, 120));
    painter.drawRect(0, 0, 13, 13);
    return QIcon(pixmap);
}

QString flat(const QString& text) {
    QString out = text;
    out.replace(QLatin1String("\r\n"), QLatin1String(" / "));
    return out;
}

} // namespace

// ---------------------------------------------------------------- the table of changes

ChangeTableModel::ChangeTableModel(QObject* parent)
    : QAbstractTableModel(parent) {}

void ChangeTableModel::setComparison(const calc::ProjectComparison* comparison) {
    beginResetModel();
    m_comparison = comparison;
    refilter();
    endResetModel();
}

void ChangeTableModel::setFilter(std::array<bool, 3> kinds, int source) {
    beginResetModel();
    m_kinds = kinds;
    m_source = source;
    refilter();
    endResetModel();
}

void ChangeTableModel::refilter() {
    m_shown.clear();
    if (!m_comparison) return;
    for (int i = 0; i < static_cast<int>(m_comparison->lines.size()); ++i) {
        const calc::ChangeLine& l = m_comparison->lines[i];
        if (!m_kinds[kindIndex(l.kind)]) continue;
        if (m_source >= 0 && static_cast<int>(l.source) != m_source) continue;
        m_shown.push_back(i);
    }
}

const calc::ChangeLine& ChangeTableModel::line(int row) const {
    return m_comparison->lines[m_shown[row]];
}

int ChangeTableModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_shown.size());
}

int ChangeTableModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : ColumnCount;
}

QColor ChangeTableModel::kindColor(ChangeKind kind) {
    switch (kind) {
        case ChangeKind::Added:
            return QColor(0xd4, 0xf0, 0xd4);
        case ChangeKind::Removed:
            return QColor(0xf6, 0xd0, 0xd0);
        case ChangeKind::Changed:
            break;
    }
    return QColor(0xff, 0xf0, 0xb0);
}

QVariant ChangeTableModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= rowCount()) return {};
    const calc::ChangeLine& l = line(index.row());
    if (role == Qt::BackgroundRole) return kindColor(l.kind);
    if (role == Qt::ForegroundRole) return QColor(Qt::black);
    if (role == Qt::TextAlignmentRole && index.column() == Cost)
        return QVariant::fromValue(Qt::AlignRight | Qt::AlignVCenter);
    if (role != Qt::DisplayRole && role != Qt::ToolTipRole) return {};
    // The tool tip shows a long text whole; the cell shows it on one line.
    const bool tip = role == Qt::ToolTipRole;
    auto text = [tip](const QString& t) { return tip ? t : flat(t); };
    switch (index.column()) {
        case Kind:
            return calc::ChangeKindText(l.kind);
        case Place:
            return l.place;
        case Key:
            return text(l.key);
        case ColumnName:
            return l.column;
        case Old:
            return text(l.oldText);
        case New:
            return text(l.newText);
        case Cost:
            if (l.first && l.source == calc::ChangeSource::Quantity) {
                const calc::RowChange& r = m_comparison->rows[l.change];
                if (r.oldCost != 0 || r.newCost != 0) return calc::MoneyChangeText(r.costChange());
            }
            return QString();
        default:
            return {};
    }
}

QVariant ChangeTableModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
    static const char* const headers[ColumnCount] = {
        "Laji", "Luettelo tai ikkuna", "Rivi tai kenttä", "Sarake", "Vanha", "Uusi", "Kust. muutos"};
    return section >= 0 && section < ColumnCount ? QString::fromUtf8(headers[section]) : QVariant();
}

// ---------------------------------------------------------------- the window

CompareWindow::CompareWindow(std::unique_ptr<CompareHost> host, persist::ProjectFile open,
                             const QString& openName, std::array<QStringList, 2> openRowNumbers,
                             persist::ProjectFile other, const QString& otherName, QWidget* parent)
    : QWidget(parent, Qt::Window)
    , m_hostOwner(std::move(host))
    , m_host(*m_hostOwner)
    , m_openFile(std::move(open))
    , m_otherFile(std::move(other))
    , m_openRowNumbers(std::move(openRowNumbers)) {
    setWindowTitle(QStringLiteral("TAMRIK 2006 - Muutosvertailu"));
    m_open = print::VersionFromProject(m_openFile, openName);
    m_other = print::VersionFromProject(m_otherFile, otherName);

    auto* layout = new QVBoxLayout(this);
    OldLabel = new QLabel(this);
    NewLabel = new QLabel(this);
    for (QLabel* l : {OldLabel, NewLabel}) {
        l->setTextInteractionFlags(Qt::TextSelectableByMouse);
        layout->addWidget(l);
    }
    OpenIsOld = new QCheckBox(QStringLiteral("&Avoin projekti on vanhempi versio"), this);
    OpenIsOld->setToolTip(QStringLiteral("Vaihtaa vertailtavien versioiden järjestyksen"));
    layout->addWidget(OpenIsOld);
    connect(OpenIsOld, &QCheckBox::toggled, this, [this](bool on) { setOpenIsOld(on); });

    auto* splitter = new QSplitter(Qt::Vertical, this);
    layout->addWidget(splitter, 1);

    splitter->addWidget(buildSummary(splitter));
    auto* changesArea = new QWidget(splitter);
    auto* changesLayout = new QVBoxLayout(changesArea);
    changesLayout->setContentsMargins(0, 0, 0, 0);
    changesLayout->addLayout(buildFilters(changesArea));
    changesLayout->addWidget(buildChangesTable(changesArea), 1);
    splitter->addWidget(changesArea);
    splitter->setSizes({260, 420});

    layout->addLayout(buildButtons());

    // F1: the help on the comparison.
    auto* help = new QAction(this);
    help->setShortcut(QKeySequence(Qt::Key_F1));
    connect(help, &QAction::triggered, this, [this] { m_host.printHost().showHelp(kHelpTopic, this); });
    addAction(help);

    resize(1100, 720);
    compare();
}

QTableWidget* CompareWindow::buildSummary(QWidget* parent) {
    Summary = new QTableWidget(0, 5, parent);
    Summary->horizontalHeader()->hide();
    Summary->verticalHeader()->hide();
    Summary->setEditTriggers(QAbstractItemView::NoEditTriggers);
    Summary->setSelectionMode(QAbstractItemView::NoSelection);
    Summary->setShowGrid(false);
    // The arrow keys go through the cells; Tab goes on to the next control, as in every dialog.
    Summary->setTabKeyNavigation(false);
    Summary->horizontalHeader()->setSectionResizeMode(0, QHeaderView::Stretch);
    return Summary;
}

QHBoxLayout* CompareWindow::buildFilters(QWidget* changesArea) {
    auto* filters = new QHBoxLayout;
    filters->addWidget(new QLabel(QStringLiteral("Näytä:"), changesArea));
    for (int k = 0; k < 3; ++k) {
        // The kind boxes are the legend of the colours as well.
        KindFilter[k] = new QCheckBox(changesArea);
        KindFilter[k]->setChecked(true);
        KindFilter[k]->setIcon(swatch(ChangeTableModel::kindColor(kKinds[k])));
        filters->addWidget(KindFilter[k]);
        connect(KindFilter[k], &QCheckBox::toggled, this, [this] { applyFilter(); });
    }
    filters->addSpacing(16);
    ListFilter = new QComboBox(changesArea);
    ListFilter->addItems({QStringLiteral("Kaikki"), calc::ChangeSourceText(calc::ChangeSource::Quantity),
                          calc::ChangeSourceText(calc::ChangeSource::Requirement),
                          calc::ChangeSourceText(calc::ChangeSource::Field)});
    auto* listLabel = new QLabel(QStringLiteral("&Luettelo:"), changesArea);
    listLabel->setBuddy(ListFilter);
    filters->addWidget(listLabel);
    filters->addWidget(ListFilter);
    connect(ListFilter, &QComboBox::currentIndexChanged, this, [this] { applyFilter(); });
    filters->addStretch(1);
    CountLabel = new QLabel(changesArea);
    filters->addWidget(CountLabel);
    return filters;
}

QTableView* CompareWindow::buildChangesTable(QWidget* changesArea) {
    ChangesModel = new ChangeTableModel(this);
    Changes = new QTableView(changesArea);
    Changes->setModel(ChangesModel);
    Changes->setSelectionBehavior(QAbstractItemView::SelectRows);
    Changes->setSelectionMode(QAbstractItemView::SingleSelection);
    Changes->setEditTriggers(QAbstractItemView::NoEditTriggers);
    Changes->setWordWrap(false);
    Changes->setTabKeyNavigation(false);
    Changes->verticalHeader()->hide();
    Changes->verticalHeader()->setDefaultSectionSize(Changes->fontMetrics().height() + 6);
    // The short columns as wide as the texts they hold, the texts of the rows sharing the rest.
    const QFontMetrics metrics = Changes->fontMetrics();
    auto widest = [&metrics](const QStringList& texts) {
        int w = 0;
        for (const QString& t : texts)
            w = std::max(w, metrics.horizontalAdvance(t));
        return w + 2 * metrics.averageCharWidth();
    };
    QStringList places{calc::ChangeSourceText(calc::ChangeSource::Quantity),
                       calc::ChangeSourceText(calc::ChangeSource::Requirement)};
    for (int w = 0; w < 4; ++w)
        places << calc::WindowName(w);
    const int chars = metrics.averageCharWidth();
    Changes->setColumnWidth(ChangeTableModel::Kind, widest({calc::ChangeKindText(ChangeKind::Added),
                                                            calc::ChangeKindText(ChangeKind::Removed),
                                                            calc::ChangeKindText(ChangeKind::Changed)}));
    Changes->setColumnWidth(ChangeTableModel::Place, widest(places));
    Changes->setColumnWidth(ChangeTableModel::Key, 36 * chars);
    Changes->setColumnWidth(ChangeTableModel::ColumnName, widest({QStringLiteral("TÄYTTÄÄ VAATIMUKSET")}));
    Changes->setColumnWidth(ChangeTableModel::Old, 28 * chars);
    Changes->setColumnWidth(ChangeTableModel::New, 28 * chars);
    Changes->setColumnWidth(ChangeTableModel::Cost, widest({QStringLiteral("+9 999 999,00")}));
    Changes->horizontalHeader()->setStretchLastSection(true);
    connect(Changes, &QTableView::doubleClicked, this,
            [this](const QModelIndex& index) { showChange(index.row()); });
    return Changes;
}

QHBoxLayout* CompareWindow::buildButtons() {
    auto* buttons = new QHBoxLayout;
    PreviewButton = new QPushButton(QStringLiteral("E&sikatselu"), this);
    PrintButton = new QPushButton(QStringLiteral("&Tulosta..."), this);
    PdfButton = new QPushButton(QStringLiteral("Tulosta &PDF-tiedostoon..."), this);
    CloseButton = new QPushButton(QStringLiteral("&Sulje"), this);
    buttons->addStretch(1);
    for (QPushButton* b : {PreviewButton, PrintButton, PdfButton, CloseButton})
        buttons->addWidget(b);
    connect(PreviewButton, &QPushButton::clicked, this, [this] { preview(); });
    connect(PrintButton, &QPushButton::clicked, this, [this] { printOnPrinter(); });
    connect(PdfButton, &QPushButton::clicked, this, [this] { printToPdf(); });
    connect(CloseButton, &QPushButton::clicked, this, &QWidget::close);
    return buttons;
}

CompareWindow::~CompareWindow() = default;

bool CompareWindow::openIsOld() const {
    return m_openIsOld;
}

void CompareWindow::setOpenIsOld(bool openIsOld) {
    if (openIsOld == m_openIsOld) return;
    m_openIsOld = openIsOld;
    if (OpenIsOld->isChecked() != openIsOld) OpenIsOld->setChecked(openIsOld);
    compare();
}

const persist::ProjectFile& CompareWindow::newerFile() const {
    return m_openIsOld ? m_otherFile : m_openFile;
}

void CompareWindow::compare() {
    QApplication::setOverrideCursor(Qt::WaitCursor);
    ChangesModel->setComparison(nullptr);
    m_comparison =
        m_openIsOld ? calc::CompareProjects(m_open, m_other) : calc::CompareProjects(m_other, m_open);
    m_printSource.reset();
    const QString openMark = QStringLiteral(" (avoin projekti)");
    OldLabel->setText(QStringLiteral("Vanha versio: ") + m_comparison.oldName +
                      (m_openIsOld ? openMark : QString()));
    NewLabel->setText(QStringLiteral("Uusi versio: ") + m_comparison.newName +
                      (m_openIsOld ? QString() : openMark));
    for (int k = 0; k < 3; ++k)
        KindFilter[k]->setText(calc::ChangeKindText(kKinds[k]) +
                               QStringLiteral(" (%1)").arg(m_comparison.count(kKinds[k])));
    fillSummary();
    ChangesModel->setComparison(&m_comparison);
    applyFilter();
    QApplication::restoreOverrideCursor();
}

void CompareWindow::fillSummary() {
    Summary->clearContents();
    Summary->setRowCount(static_cast<int>(m_comparison.summary.size()));
    QFont bold = Summary->font();
    bold.setBold(true);
    for (int r = 0; r < static_cast<int>(m_comparison.summary.size()); ++r) {
        const calc::SummaryRow& row = m_comparison.summary[r];
        const QString cells[5] = {row.label, row.oldText, row.newText, row.change, row.percent};
        for (int c = 0; c < 5; ++c) {
            auto* item = new QTableWidgetItem(cells[c]);
            if (c > 0) item->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
            if (row.type == calc::SummaryRow::Heading) {
                item->setFont(bold);
                item->setBackground(palette().alternateBase());
            }
            Summary->setItem(r, c, item);
        }
    }
    const QFontMetrics metrics(bold);
    const int pad = 2 * metrics.averageCharWidth();
    for (int c = 1; c < 5; ++c)
        Summary->setColumnWidth(c, metrics.horizontalAdvance(c == 4 ? QStringLiteral("Muutos %")
                                                                    : QStringLiteral("+99 999 999,00")) +
                                       pad);
    Summary->verticalHeader()->setDefaultSectionSize(Summary->fontMetrics().height() + 4);
}

void CompareWindow::applyFilter() {
    std::array<bool, 3> kinds{};
    for (int k = 0; k < 3; ++k)
        kinds[k] = KindFilter[k]->isChecked();
    ChangesModel->setFilter(kinds, ListFilter->currentIndex() - 1);
    CountLabel->setText(
        QStringLiteral("%1 / %2 riviä").arg(ChangesModel->rowCount()).arg(m_comparison.lines.size()));
}

void CompareWindow::showChange(int row) {
    if (row < 0 || row >= ChangesModel->rowCount()) return;
    const calc::ChangeLine& line = ChangesModel->line(row);
    if (line.source == calc::ChangeSource::Field) {
        const calc::FieldChange& f = m_comparison.fields[line.change];
        if (!m_host.showProjectWindow(f.window))
            platform::MsgBox(QStringLiteral("Vertailtu projekti ei ole enää auki."),
                             platform::MsgIcon::Information);
        return;
    }
    const calc::RowChange& change = m_comparison.rows[line.change];
    // The row in the open project, or where a row it lacks would stand.
    const int row1 = m_openIsOld ? (change.oldRow > 0 ? change.oldRow : change.nearOldRow)
                                 : (change.newRow > 0 ? change.newRow : change.nearNewRow);
    const int listIndex = change.list == calc::ChangeSource::Quantity ? 0 : 1;
    auto* form2 = qobject_cast<Form2*>(m_host.showProjectWindow(1));
    if (!form2) {
        platform::MsgBox(QStringLiteral("Vertailtu projekti ei ole enää auki."),
                         platform::MsgIcon::Information);
        return;
    }
    lists::ListModel* list = form2->list(listIndex);
    if (!list || list->rows() == 0) return;
    // The row is found by its row number, which stays with it when rows are added or removed
    // after the comparison; by its place when it is gone.
    int target = std::clamp(row1, 1, list->rows());
    const QString number = m_openRowNumbers[listIndex].value(row1 - 1);
    for (int r = 1; r <= list->rows() && !number.isEmpty(); ++r) {
        if (list->rowNumberText(r) == number) {
            target = r;
            break;
        }
    }
    list->selectOnly(target);
    list->ensureVisible(target);
    form2->ListView1[listIndex]->setFocus();
}

// ---------------------------------------------------------------- printing

std::unique_ptr<print::PrintRun> CompareWindow::makeRun() {
    if (!m_printSource)
        m_printSource = std::make_unique<print::ProjectSource>(print::SourceFromProject(newerFile()));
    if (!m_selection) m_selection = std::make_unique<print::Selection>();
    auto run = std::make_unique<print::PrintRun>(m_printSource->source, *m_selection,
                                                 m_host.printHost().printSettings());
    run->setInform(
        [this](const QString& message) { platform::MsgBox(message, platform::MsgIcon::Information); });
    run->setComparison(&m_comparison);
    pageLayout(*run);
    return run;
}

QPageLayout CompareWindow::pageLayout(print::PrintRun& run) {
    QPrinter& printer = m_host.printSession().printer();
    QPageLayout layout = printer.pageLayout();
    layout.setOrientation(QPageLayout::Portrait);
    run.setDevice(print::MetricsOf(layout, printer.resolution()));
    if (print::ComparisonNeedsLandscape(run)) {
        layout.setOrientation(QPageLayout::Landscape);
        run.setDevice(print::MetricsOf(layout, printer.resolution()));
    }
    return layout;
}

void CompareWindow::preview() {
    std::unique_ptr<print::PrintRun> run = makeRun();
    if (run->PageCount() != print::PageCountResult::Done || run->TotalPages() == 0) return;
    print::ui::Form12 view(m_host.printHost(), *run, this);
    view.exec();
    if (view.result() == print::ui::Form12::Print)
        printOnPrinter();
    else if (view.result() == print::ui::Form12::Pdf)
        printToPdf();
}

bool CompareWindow::printOnPrinter() {
    print::ui::PrintSession& session = m_host.printSession();
    if (!session.printerInstalled()) {
        platform::MsgBox(
            QStringLiteral("Koneeseen ei ole asennettu tulostinta. Voit tulostaa muutosvertailun "
                           "PDF-tiedostoon painikkeella \"Tulosta PDF-tiedostoon...\"."),
            platform::MsgIcon::Information);
        return false;
    }
    std::unique_ptr<print::PrintRun> run = makeRun();
    QPrinter& printer = session.printer();
    // The comparison's orientation for this run only; the printer keeps the user's own.
    const QPageLayout::Orientation before = printer.pageLayout().orientation();
    printer.setPageOrientation(pageLayout(*run).orientation());
    bool printed = false;
    if (print::ui::PrintSession::runPrinterDialog(printer, print::ui::PrintSession::PrinterDialogMode::Print,
                                                  this)) {
        QApplication::setOverrideCursor(Qt::WaitCursor);
        const print::OutputResult result = run->PrintAllDocuments(printer);
        QApplication::restoreOverrideCursor();
        if (result == print::OutputResult::DeviceFailed)
            platform::MsgBox(QStringLiteral("Tulostusta ei voi aloittaa tulostimella ") +
                                 printer.printerName() + QLatin1Char('.'),
                             platform::MsgIcon::Exclamation);
        printed = result == print::OutputResult::Printed;
    }
    printer.setPageOrientation(before);
    return printed;
}

bool CompareWindow::printToPdf() {
    print::ui::PrintSession& session = m_host.printSession();
    platform::FileRequest request;
    request.save = true;
    request.filters = platform::translateFilter(QStringLiteral("PDF-tiedostot (*.pdf)|*.pdf"));
    request.defaultSuffix = QStringLiteral("pdf");
    const QFileInfo project(m_comparison.newName);
    request.directory = !session.pdfFolder.isEmpty() ? session.pdfFolder
                        : project.isAbsolute()       ? project.absolutePath()
                                                     : QDir::homePath();
    request.fileName = project.completeBaseName() + QStringLiteral(" muutosvertailu.pdf");
    const QStringList files = platform::Dialogs::instance().files(request);
    if (files.isEmpty()) return false;
    const QString file = files.first();
    session.pdfFolder = QFileInfo(file).absolutePath();
    std::unique_ptr<print::PrintRun> run = makeRun();
    const QPageLayout layout = pageLayout(*run);
    QString error;
    QApplication::setOverrideCursor(Qt::WaitCursor);
    const print::OutputResult result =
        print::WritePdf(*run, file, layout, session.printer().resolution(), {}, &error);
    QApplication::restoreOverrideCursor();
    if (result == print::OutputResult::DeviceFailed) platform::MsgBox(error, platform::MsgIcon::Exclamation);
    return result == print::OutputResult::Printed;
}

} // namespace documents
