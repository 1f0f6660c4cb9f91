#include "print/ui/Form11.h"

#include "lists/ListProcedures.h"
#include "platform/Dialogs.h"
#include "print/PdfOutput.h"
#include "print/WorkPhase.h"
#include "print/ui/Form12.h"
#include "platform/ui/TabOrder.h"
#include "print/ui/PrintSession.h"

#include <QApplication>
#include <QCheckBox>
#include <QDir>
#include <QFileInfo>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPrinter>
#include <QProgressDialog>
#include <QPushButton>
#include <QStatusBar>
#include <QVBoxLayout>

namespace print::ui {

namespace {

// The designer's documents and the contractor's, each a run of box indices.
constexpr int kDesignerFirst = doc::Quantities;
constexpr int kDesignerLast = doc::CodingPlan;
constexpr int kContractorFirst = doc::QualityPlan;
constexpr int kContractorLast = doc::QualityReport;

// The boxes whose document can be limited to one work phase, in the order of their buttons.
constexpr int kPhaseBoxes[4] = {doc::AllRequirements, doc::QualityPlans, doc::Inspections, doc::Deviations};

int phaseButton(int document) {
    for (int i = 0; i < 4; ++i)
        if (kPhaseBoxes[i] == document) return Form11::PhaseAllRequirements + i;
    return -1;
}

// A progress window for a long pass, shown when the pass takes a while, with a button that
// cancels it. Events are handled so that the window shows; the dialog below it takes no input.
class RunProgress {
public:
    RunProgress(QWidget* parent, const QString& title)
        : m_dialog(title, QStringLiteral("Peruuta"), 0, 1000, parent) {
        m_dialog.setWindowTitle(QStringLiteral("TAMRIK 2006"));
        m_dialog.setWindowModality(Qt::WindowModal);
        m_dialog.setMinimumDuration(400);
        m_dialog.setAutoClose(false);
        m_dialog.setAutoReset(false);
        m_dialog.setValue(0);
    }
    Progress callback(std::function<void(int page)> onPage = {}) {
        return [this, onPage](int page, double done) {
            if (onPage) onPage(page);
            m_dialog.setValue(static_cast<int>(done * 1000));
            return !m_dialog.wasCanceled();
        };
    }
    void setLabel(const QString& text) { m_dialog.setLabelText(text); }

private:
    QProgressDialog m_dialog;
};

struct WaitCursor {
    WaitCursor() { QApplication::setOverrideCursor(Qt::WaitCursor); }
    ~WaitCursor() { QApplication::restoreOverrideCursor(); }
};

} // namespace

QString Form11::designCaption(int document) {
    return SelectionCaption(document);
}

QString Form11::workPhasePrefix(int document) {
    return WorkPhasePrefix(document);
}

Form11::Form11(PrintHost& host, PrintSession& session, QWidget* parent)
    : QDialog(parent)
    , m_host(host)
    , m_session(session) {
    setObjectName(QStringLiteral("Form11"));
    setWindowTitle(QStringLiteral("TAMRIK 2006") + QStringLiteral(" - ") +
                   QStringLiteral("Tulostettavien asiakirjojen valinta"));
    createControls();
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(documentFrames(), 1);
    layout->addLayout(actionRow());
    layout->addWidget(StatusBar1);
    // The Tab key reads the frames as they stand: the designer's documents and their buttons,
    // then the right column row by row (a box, then its work phase button), then the actions
    // from left to right.
    platform::setTabOrder({Check1[0],
                           Check1[1],
                           Check1[2],
                           Check1[3],
                           Check1[4],
                           Check1[5],
                           Check1[6],
                           Command1[SelectDesigner],
                           Command1[ClearDesigner],
                           Check1[doc::AllRequirements],
                           Command1[PhaseAllRequirements],
                           Check1[8],
                           Check1[doc::QualityPlans],
                           Command1[PhaseQualityPlans],
                           Check1[doc::Inspections],
                           Command1[PhaseInspections],
                           Check1[doc::Deviations],
                           Command1[PhaseDeviations],
                           Check1[12],
                           Command1[SelectContractor],
                           Command1[ClearContractor],
                           Command1[Print],
                           Command1[Preview],
                           PdfButton,
                           Command1[PrinterSettings],
                           Command1[Cancel],
                           Command1[Help]});
    loadSelection();
}

void Form11::createControls() {
    Check1.resize(kDocumentCount);
    Command1.resize(ButtonCount);
    for (int i = 0; i < kDocumentCount; ++i) {
        Check1[i] = new QCheckBox(designCaption(i), this);
        Check1[i]->setObjectName(QStringLiteral("Check1_%1").arg(i));
        connect(Check1[i], &QCheckBox::clicked, this, [this, i] { Check1Click(i); });
    }
    const char* const buttons[ButtonCount] = {"Valitse kaikki",
                                              "Poista kaikki",
                                              "Valitse kaikki",
                                              "Poista kaikki",
                                              "&Ohjeet",
                                              "&Tulosta...",
                                              "K&irjoittimen asetukset...",
                                              "E&sikatselu",
                                              "Peruuta",
                                              "Valitse työvaihe...",
                                              "Valitse työvaihe...",
                                              "Valitse työvaihe...",
                                              "Valitse työvaihe..."};
    for (int i = 0; i < ButtonCount; ++i) {
        Command1[i] = new QPushButton(QString::fromUtf8(buttons[i]), this);
        Command1[i]->setObjectName(QStringLiteral("Command1_%1").arg(i));
        Command1[i]->setAutoDefault(false);
        connect(Command1[i], &QPushButton::clicked, this, [this, i] { Command1Click(i); });
    }
    PdfButton = new QPushButton(QStringLiteral("Tulosta PDF-tiedostoon..."), this);
    PdfButton->setObjectName(QStringLiteral("PdfButton"));
    PdfButton->setAutoDefault(false);
    connect(PdfButton, &QPushButton::clicked, this, &Form11::printToPdf);

    StatusBar1 = new QStatusBar(this);
    StatusBar1->setObjectName(QStringLiteral("StatusBar1"));
    StatusBar1->setSizeGripEnabled(false);
    m_status = new QLabel(StatusBar1);
    StatusBar1->addWidget(m_status, 1);
}

// The designer's documents on the left; either party's and the contractor's on the right.
QLayout* Form11::documentFrames() {
    QGroupBox* designer = new QGroupBox(QStringLiteral("Suunnittelijan laatimat asiakirjat"), this);
    auto* dl = new QGridLayout(designer);
    for (int i = kDesignerFirst; i <= kDesignerLast; ++i)
        dl->addWidget(Check1[i], i - kDesignerFirst, 0, 1, 2);
    const int designerButtons = kDesignerLast - kDesignerFirst + 1; // the row below the boxes
    dl->addWidget(Command1[SelectDesigner], designerButtons, 0);
    dl->addWidget(Command1[ClearDesigner], designerButtons, 1);
    QGroupBox* either =
        new QGroupBox(QStringLiteral("Suunnittelijan ja/tai urakoitsijan laatimat asiakirjat"), this);
    auto* el = new QGridLayout(either);
    el->addWidget(Check1[doc::AllRequirements], 0, 0);
    el->addWidget(Command1[PhaseAllRequirements], 0, 1);
    el->setColumnStretch(0, 1);
    QGroupBox* contractor = new QGroupBox(QStringLiteral("Urakoitsijan laatimat asiakirjat"), this);
    auto* cl = new QGridLayout(contractor);
    for (int i = kContractorFirst; i <= kContractorLast; ++i)
        cl->addWidget(Check1[i], i - kContractorFirst, 0);
    cl->addWidget(Command1[PhaseQualityPlans], doc::QualityPlans - kContractorFirst, 1);
    cl->addWidget(Command1[PhaseInspections], doc::Inspections - kContractorFirst, 1);
    cl->addWidget(Command1[PhaseDeviations], doc::Deviations - kContractorFirst, 1);
    auto* all = new QHBoxLayout;
    all->addWidget(Command1[SelectContractor]);
    all->addWidget(Command1[ClearContractor]);
    all->addStretch(1);
    cl->addLayout(all, kContractorLast - kContractorFirst + 1, 0, 1, 2);
    cl->setColumnStretch(0, 1);

    auto* right = new QVBoxLayout;
    right->addWidget(either);
    right->addWidget(contractor, 1);
    auto* frames = new QHBoxLayout;
    frames->addWidget(designer);
    frames->addLayout(right, 1);
    return frames;
}

// Print, preview, PDF and printer settings on the left; cancel and help on the right.
QLayout* Form11::actionRow() {
    auto* actions = new QHBoxLayout;
    for (QPushButton* b : {Command1[Print], Command1[Preview], PdfButton, Command1[PrinterSettings]})
        actions->addWidget(b);
    actions->addStretch(1);
    actions->addWidget(Command1[Cancel]);
    actions->addWidget(Command1[Help]);
    return actions;
}

// The boxes as they were left, the captions of the chosen work phases.
void Form11::loadSelection() {
    Selection& sel = m_session.selection;
    for (int i = 0; i < kDocumentCount; ++i) {
        Check1[i]->setChecked(sel.DocumentSelected[i]);
        if (!sel.WorkPhaseFilter[i].isEmpty() && !workPhasePrefix(i).isEmpty())
            Check1[i]->setText(workPhasePrefix(i) + sel.WorkPhaseFilter[i]);
    }
    // The contractor does not print the charge chamber card.
    if (m_host.programMode() == 2) {
        Check1[doc::ChargeCard]->setChecked(false);
        Check1[doc::ChargeCard]->setEnabled(false);
    }
    sel.PaginationStale = true;
    refreshButtons();
}

Form11::~Form11() = default;

QString Form11::statusText() const {
    return m_status->text();
}

void Form11::setStatus(const QString& text) {
    m_status->setText(text);
}

void Form11::storeSelection() {
    for (int i = 0; i < kDocumentCount; ++i)
        m_session.selection.DocumentSelected[i] = Check1[i]->isChecked();
}

void Form11::refreshButtons() {
    bool any = false;
    for (QCheckBox* c : Check1)
        any = any || c->isChecked();
    Command1[Print]->setEnabled(any);
    Command1[Preview]->setEnabled(any);
    PdfButton->setEnabled(any);
    const bool index = m_host.canChooseWorkPhase();
    for (int document : kPhaseBoxes)
        Command1[phaseButton(document)]->setEnabled(index && Check1[document]->isChecked());
}

void Form11::setAll(int first, int last, bool checked) {
    const bool costsBefore = Check1[doc::Costs]->isChecked();
    for (int i = first; i <= last; ++i)
        if (Check1[i]->isEnabled()) Check1[i]->setChecked(checked);
    // Ticking the cost estimate this way warns as a click on its box does.
    if (!costsBefore && Check1[doc::Costs]->isChecked()) warnWithoutCostIndex();
    m_session.selection.PaginationStale = true;
    refreshButtons();
}

void Form11::warnWithoutCostIndex() {
    // The summaries convert the costs to the cost index of the basic data; warn while it is missing.
    if (prepareRun() && lists::BlankString(m_project->source.basicCombo(basic::CostIndex)))
        platform::MsgBox(QStringLiteral("Kustannusten yhteenveto ei tulostu oikein.\r\n") +
                             QStringLiteral("Kustannusindeksiä ei ole annettu perustietonäkymässä."),
                         platform::MsgIcon::Information);
}

void Form11::Check1Click(int index) {
    Selection& sel = m_session.selection;
    if (phaseButton(index) >= 0) {
        Check1[index]->setText(designCaption(index));
        sel.WorkPhaseFilter[index].clear();
    }
    if (index == doc::Costs && Check1[index]->isChecked()) warnWithoutCostIndex();
    sel.PaginationStale = true;
    refreshButtons();
}

void Form11::Command1Click(int index) {
    switch (index) {
        case SelectDesigner:
            setAll(kDesignerFirst, kDesignerLast, true);
            break;
        case ClearDesigner:
            setAll(kDesignerFirst, kDesignerLast, false);
            break;
        case SelectContractor:
            setAll(kContractorFirst, kContractorLast, true);
            break;
        case ClearContractor:
            setAll(kContractorFirst, kContractorLast, false);
            break;
        case Help:
            m_host.showHelp(PrintHost::kHelpTopic, this);
            break;
        case Print:
            storeSelection();
            if (prepareRun() && ShowPrinter(PrintSession::PrinterDialogMode::Print)) accept();
            break;
        case PrinterSettings:
            storeSelection();
            if (prepareRun()) ShowPrinter(PrintSession::PrinterDialogMode::Settings);
            break;
        case Preview:
            preview();
            break;
        case Cancel:
            reject();
            break;
        case PhaseAllRequirements:
        case PhaseQualityPlans:
        case PhaseInspections:
        case PhaseDeviations:
            chooseWorkPhase(kPhaseBoxes[index - PhaseAllRequirements]);
            break;
        default:
            break;
    }
}

void Form11::chooseWorkPhase(int document) {
    if (!m_host.canChooseWorkPhase()) return;
    const QString key = m_host.chooseWorkPhase(this);
    if (key.isEmpty() || key == QLatin1String("-1")) return;
    if (!prepareRun()) return;
    const QString phase = ParseQualityCaption(*m_project->source.requirements, key);
    if (phase.isEmpty()) return;
    m_session.selection.WorkPhaseFilter[document] = phase;
    m_session.selection.PaginationStale = true;
    Check1[document]->setText(workPhasePrefix(document) + phase);
}

bool Form11::prepareRun() {
    if (m_run) return true;
    m_project = m_host.activeProject();
    if (!m_project) return false;
    m_run = std::make_unique<PrintRun>(m_project->source, m_session.selection, m_host.printSettings());
    m_run->setInform(
        [](const QString& message) { platform::MsgBox(message, platform::MsgIcon::Information); });
    m_run->setDevice(m_session.metrics());
    m_session.selection.PaginationStale = true;
    return true;
}

bool Form11::paginate() {
    if (!m_run) return false;
    if (m_session.selection.PaginationStale) {
        setStatus(QStringLiteral("Sivuttaa asiakirjaa... sivu 1"));
        WaitCursor wait;
        RunProgress progress(this, QStringLiteral("Sivuttaa asiakirjaa..."));
        QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
        const PageCountResult result = m_run->PageCount(progress.callback([this, &progress](int page) {
            const QString text = QStringLiteral("Sivuttaa asiakirjaa... sivu ") + QString::number(page);
            setStatus(text);
            progress.setLabel(text);
        }));
        setStatus(QString());
        if (result != PageCountResult::Done) return false;
    } else {
        m_run->PageCount();
    }
    return m_run->TotalPages() > 0;
}

bool Form11::ShowPrinter(PrintSession::PrinterDialogMode mode) {
    QPrinter& printer = m_session.printer();
    if (mode == PrintSession::PrinterDialogMode::Print && !m_session.printerInstalled()) {
        platform::MsgBox(QStringLiteral("Koneeseen ei ole asennettu tulostinta. Voit tulostaa asiakirjat "
                                        "PDF-tiedostoon painikkeella \"Tulosta PDF-tiedostoon...\"."),
                         platform::MsgIcon::Information);
        return false;
    }
    const QString name = printer.printerName();
    const DeviceMetrics before = m_session.metrics();
    if (!PrintSession::runPrinterDialog(printer, mode, this)) return false;
    const DeviceMetrics after = m_session.metrics();
    if (printer.printerName() != name || after.landscape != before.landscape ||
        std::abs(after.pageWidth - before.pageWidth) > 0.5 ||
        std::abs(after.pageHeight - before.pageHeight) > 0.5 ||
        std::abs(after.printableWidth - before.printableWidth) > 0.5 ||
        std::abs(after.printableHeight - before.printableHeight) > 0.5)
        m_session.selection.PaginationStale = true;
    m_run->setDevice(after);
    if (mode == PrintSession::PrinterDialogMode::Settings) return true;
    if (!paginate()) return false;
    RunProgress progress(this, QStringLiteral("Tulostaa..."));
    const int total = m_run->TotalPages();
    const OutputResult result =
        m_run->PrintAllDocuments(printer, progress.callback([&progress, total](int page) {
            progress.setLabel(QStringLiteral("Tulostaa sivua %1 / %2").arg(page).arg(total));
        }));
    if (result == OutputResult::Cancelled) printer.abort();
    if (result == OutputResult::DeviceFailed)
        platform::MsgBox(QStringLiteral("Tulostusta ei voi aloittaa tulostimella ") + printer.printerName() +
                             QLatin1Char('.'),
                         platform::MsgIcon::Exclamation);
    return result == OutputResult::Printed;
}

void Form11::preview() {
    storeSelection();
    if (!prepareRun() || !paginate()) return;
    Form12 view(m_host, *m_run, this);
    view.exec();
    if (view.result() == Form12::Print) {
        if (ShowPrinter(PrintSession::PrinterDialogMode::Print)) accept();
    } else if (view.result() == Form12::Pdf) {
        printToPdf();
    }
}

void Form11::printToPdf() {
    storeSelection();
    if (!prepareRun()) return;
    platform::FileRequest request;
    request.save = true;
    request.filters = platform::translateFilter(QStringLiteral("PDF-tiedostot (*.pdf)|*.pdf"));
    request.defaultSuffix = QStringLiteral("pdf");
    const QFileInfo project(m_project->fileName);
    request.directory = !m_session.pdfFolder.isEmpty() ? m_session.pdfFolder
                        : project.isAbsolute()         ? project.absolutePath()
                                                       : QDir::homePath();
    request.fileName = project.completeBaseName() + QStringLiteral(".pdf");
    bool archival = m_session.pdfArchival;
    request.optionText = QStringLiteral("PDF/A (arkistointi)");
    request.option = &archival;
    const QStringList files = platform::Dialogs::instance().files(request);
    if (files.isEmpty()) return;
    const QString file = files.first();
    m_session.pdfFolder = QFileInfo(file).absolutePath();
    m_session.pdfArchival = archival;
    PdfOptions options;
    options.archival = archival;
    options.projectFile = m_project->fileName;
    m_run->setDevice(m_session.metrics());
    if (!paginate()) return;
    QPrinter& printer = m_session.printer();
    RunProgress progress(this, QStringLiteral("Tulostaa PDF-tiedostoon..."));
    const int total = m_run->TotalPages();
    QString error;
    const OutputResult result =
        WritePdf(*m_run, file, printer.pageLayout(), printer.resolution(),
                 progress.callback([&progress, total](int page) {
                     progress.setLabel(QStringLiteral("Tulostaa sivua %1 / %2").arg(page).arg(total));
                 }),
                 &error, options);
    if (result == OutputResult::DeviceFailed) platform::MsgBox(error, platform::MsgIcon::Exclamation);
    if (result == OutputResult::Printed) accept();
}

} // namespace print::ui
