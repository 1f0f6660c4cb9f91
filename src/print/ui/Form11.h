#pragma once
// The print selection dialog ("Tulostettavien asiakirjojen valinta"): which documents of the
// active project go into the run, work-phase limits of the quality documents, the printer's
// settings, the preview, printing and PDF output.
#include "print/PrintRun.h"
#include "print/ui/PrintHost.h"
#include "print/ui/PrintSession.h"

#include <QDialog>
#include <memory>
#include <vector>

class QCheckBox;
class QLabel;
class QLayout;
class QPushButton;
class QStatusBar;

namespace print::ui {

class Form11 : public QDialog {
    Q_OBJECT
public:
    Form11(PrintHost& host, PrintSession& session, QWidget* parent = nullptr);
    ~Form11() override;

    // The documents' boxes by document index 0..12.
    std::vector<QCheckBox*> Check1;
    // The buttons of Command1 by index.
    enum Button {
        SelectDesigner,       // all of the designer's documents
        ClearDesigner,        // none of them
        SelectContractor,     // all of the contractor's documents
        ClearContractor,      // none of them
        Help,                 // "&Ohjeet"
        Print,                // "&Tulosta..."
        PrinterSettings,      // "K&irjoittimen asetukset..."
        Preview,              // "E&sikatselu"
        Cancel,               // "Peruuta"
        PhaseAllRequirements, // the work phase of box 7, then of boxes 9, 10 and 11
        PhaseQualityPlans,
        PhaseInspections,
        PhaseDeviations,
        ButtonCount
    };
    std::vector<QPushButton*> Command1;
    QPushButton* PdfButton = nullptr; // "Tulosta PDF-tiedostoon..."
    QStatusBar* StatusBar1 = nullptr;

    void Command1Click(int index);
    void Check1Click(int index);
    void printToPdf();
    // The status bar's first panel.
    QString statusText() const;

    // The run of this dialog, once an action has made it.
    PrintRun* run() const { return m_run.get(); }

    // The design caption of a box and the prefix that a chosen work phase follows.
    static QString designCaption(int document);
    static QString workPhasePrefix(int document);

private:
    // The constructor's parts: the boxes, buttons and status bar; the frames of the documents;
    // the row of actions; the boxes filled from the session's selection.
    void createControls();
    QLayout* documentFrames();
    QLayout* actionRow();
    void loadSelection();
    void storeSelection();
    void refreshButtons();
    // Checks or clears the enabled boxes of documents first..last.
    void setAll(int first, int last, bool checked);
    // The information box about a missing cost index, when the project has none.
    void warnWithoutCostIndex();
    void chooseWorkPhase(int document);
    // Makes the run of the dialog (the project read once); false without a project.
    bool prepareRun();
    // Paginates when stale, with the status bar and a progress window; true when there are pages.
    bool paginate();
    // The print dialog and printing, or only the printer's settings; false when cancelled.
    bool ShowPrinter(PrintSession::PrinterDialogMode mode);
    void preview();
    void setStatus(const QString& text);

    PrintHost& m_host;
    PrintSession& m_session;
    // The run reads the project's print source: declared after it, so it is destroyed first.
    std::unique_ptr<ProjectPrint> m_project;
    std::unique_ptr<PrintRun> m_run;
    QLabel* m_status = nullptr;
};

} // namespace print::ui
