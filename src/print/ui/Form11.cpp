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

// The boxes whose document can be limited to one work phase, and their buttons.
constexpr int kPhaseBoxes[4] = {doc::AllRequirements, doc::QualityPlans, doc::Inspections, doc::Deviations};

int phaseButton(int document) {
    for (int i = 0; i < 4; ++i)
        if (kPhaseBoxes[i] == document) return 9 + i;
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
    Check1.resize(kDocumentCount);
    Command1.resize(13);
    for (int i = 0; i < kDocumentCount; ++i) {
        Check1[i] = new QCheckBox(designCaption(i), this);
        Check1[i]->setObjectName(QStringLiteral("Check1_%1").arg(i));
        connect(Check1[i], &QCheckBox::clicked, this, [this, i] { Check1Click(i); });
    }
    const char* const buttons[13] = {"Valitse kaikki",
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
    for (int i = 0; i < 13; ++i) {
        Command1[i] = new QPushButton(QString::fromUtf8(buttons[i]), this);
        Command1[i]->setObjectName(QStringLiteral("Command1_%1").arg(i));
        Command1[i]->setAutoDefault(false);
        connect(Command1[i], &QPushButton::clicked, this, [this, i] { Command1Click(i); });
    }
    PdfButton = new QPushButton(QStringLiteral("Tulosta PDF-tiedostoon..."), this);
    PdfButton->setObjectName(QStringLiteral("PdfButton"));
    PdfButton->setAutoDefault(false);
    connect(PdfButton, &QPushButton::clicked, this, &Form11::printToPdf);

    auto frame = [this](const QString& title) {
        auto* box = new QGroupBox(title, this);
        return box;
    };
    // The designer's documents.
    QGroupBox* designer = frame(QStringLiteral("Suunnittelijan laatimat asiakirjat"));
    auto* dl = new QGridLayout(designer);
    for (int i = 0; i <= 6; ++i)
        dl->addWidget(Check1[i], i, 0, 1, 2);
    dl->addWidget(Command1[0], 7, 0);
    dl->addWidget(Command1[1], 7, 1);
    // Either party's.
    QGroupBox* either = frame(QStringLiteral("Suunnittelijan ja/tai urakoitsijan laatimat asiakirjat"));
    auto* el = new QGridLayout(either);
    el->addWidget(Check1[7], 0, 0);
    el->addWidget(Command1[9], 0, 1);
    el->setColumnStretch(0, 1);
    // The contractor's.
    QGroupBox* contractor = frame(QStringLiteral("Urakoitsijan laatimat asiakirjat"));
    auto* cl = new QGridLayout(contractor);
    for (int i = 8; i <= 12; ++i)
        cl->addWidget(Check1[i], i - 8, 0);
    cl->addWidget(Command1[10], 1, 1);
    cl->addWidget(Command1[11], 2, 1);
    cl->addWidget(Command1[12], 3, 1);
    auto* all = new QHBoxLayout;
    all->addWidget(Command1[2]);
    all->addWidget(Command1[3]);
    all->addStretch(1);
    cl->addLayout(all, 5, 0, 1, 2);
    cl->setColumnStretch(0, 1);

    auto* right = new QVBoxLayout;
    right->addWidget(either);
    right->addWidget(contractor, 1);
    auto* frames = new QHBoxLayout;
    frames->addWidget(designer);
    frames->addLayout(right, 1);

    auto* actions = new QHBoxLayout;
    for (QPushButton* b : {Command1[5], Command1[7], PdfButton, Command1[6]})
        actions->addWidget(b);
    actions->addStretch(1);
    actions->addWidget(Command1[8]);
    actions->addWidget(Command1[4]);

    // The Tab key reads the frames as they stand: the designer's documents and their buttons,
    // then the right column row by row, then the actions from left to right.
    platform::setTabOrder({Check1[0],   Check1[1],    Check1[2],   Check1[3],    Check1[4],   Check1[5],
                           Check1[6],   Command1[0],  Command1[1], Check1[7],    Command1[9], Check1[8],
                           Check1[9],   Command1[10], Check1[10],  Command1[11], Check1[11],  Command1[12],
                           Check1[12],  Command1[2],  Command1[3], Command1[5],  Command1[7], PdfButton,
                           Command1[6], Command1[8],  Command1[4]});

    StatusBar1 = new QStatusBar(this);
    StatusBar1->setObjectName(QStringLiteral("StatusBar1"));
    StatusBar1->setSizeGripEnabled(false);
    m_status = new QLabel(StatusBar1);
    StatusBar1->addWidget(m_status, 1);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(frames, 1);
    layout->addLayout(actions);
    layout->addWidget(StatusBar1);

    // Loading: the boxes as they were left, the captions of the chosen work phases.
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
    Command1[5]->setEnabled(any);
    Command1[7]->setEnabled(any);
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
    if (prepareRun() && lists::BlankString(m_project->source.basicCombo(10)))
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
        case 0:
            setAll(0, 6, true);
            break;
        case 1:
            setAll(0, 6, false);
            break;
        case 2:
            setAll(8, 12, true);
            break;
        case 3:
            setAll(8, 12, false);
            break;
        case 4:
            m_host.showHelp(2400, this);
            break;
        case 5:
            storeSelection();
            if (prepareRun() && ShowPrinter(0)) accept();
            break;
        case 6:
            storeSelection();
            if (prepareRun()) ShowPrinter(1);
            break;
        case 7:
            preview();
            break;
        case 8:
            reject();
            break;
        case 9:
        case 10:
        case 11:
        case 12:
            chooseWorkPhase(kPhaseBoxes[index - 9]);
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

bool Form11::ShowPrinter(int mode) {
    QPrinter& printer = m_session.printer();
    if (mode == 0 && !m_session.printerInstalled()) {
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
    if (mode == 1) return true;
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
        if (ShowPrinter(0)) accept();
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
