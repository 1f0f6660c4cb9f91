#pragma once
// The print selection dialog ("Tulostettavien asiakirjojen valinta"): which documents of the
// active project go into the run, work-phase limits of the quality documents, the printer's
// settings, the preview, printing and PDF output.
#include "print/PrintRun.h"
#include "print/ui/PrintHost.h"

#include <QDialog>
#include <memory>
#include <vector>

class QCheckBox;
class QLabel;
class QPushButton;
class QStatusBar;

namespace print::ui {

class PrintSession;

class Form11 : public QDialog {
    Q_OBJECT
public:
    Form11(PrintHost& host, PrintSession& session, QWidget* parent = nullptr);
    ~Form11() override;

    // The documents' boxes by document index 0..12.
    std::vector<QCheckBox*> Check1;
    // 0/1 all or none of the designer's documents, 2/3 of the contractor's, 4 help, 5 print,
    // 6 printer settings, 7 preview, 8 cancel, 9..12 the work phase of boxes 7, 9, 10 and 11.
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
    void storeSelection();
    void refreshButtons();
    void setAll(int first, int last, bool checked);
    // The information box about a missing cost index, when the project has none.
    void warnWithoutCostIndex();
    void chooseWorkPhase(int document);
    // Makes the run of the dialog (the project read once); false without a project.
    bool prepareRun();
    // Paginates when stale, with the status bar and a progress window; true when there are pages.
    bool paginate();
    // The printer dialog (mode 0, then printing) or its settings (mode 1); false when cancelled.
    bool ShowPrinter(int mode);
    void preview();
    void setStatus(const QString& text);

    PrintHost& m_host;
    PrintSession& m_session;
    std::unique_ptr<ProjectPrint> m_project;
    std::unique_ptr<PrintRun> m_run;
    QLabel* m_status = nullptr;
};

} // namespace print::ui
