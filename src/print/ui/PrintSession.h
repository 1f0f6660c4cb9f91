#pragma once
// What printing keeps for the life of the program: the choice of documents and the printer
// with its settings.
#include "print/PrintRun.h"

#include <functional>
#include <memory>

class QPrinter;
class QWidget;

namespace print::ui {

class PrintSession {
public:
    PrintSession();
    ~PrintSession();

    Selection selection;

    // The printer: the system's default one, or, when none is installed, an A4 PDF printer at
    // 1200 dpi that gives the page metrics, so that preview and PDF work on every machine.
    QPrinter& printer();
    bool printerInstalled() const;
    DeviceMetrics metrics();
    // The folder of the last PDF file written, and whether it was an archival PDF (the save
    // dialog's "PDF/A (arkistointi)" starts as it was left).
    QString pdfFolder;
    bool pdfArchival = false;

    // Which printer dialog: the print dialog (printing follows) or the printer's page settings.
    enum class PrinterDialogMode { Print, Settings };
    // The printer dialog, replaceable by tests. Returns false when the user cancelled.
    using PrinterDialog = std::function<bool(QPrinter& printer, PrinterDialogMode mode, QWidget* parent)>;
    static void setPrinterDialog(PrinterDialog dialog);
    static bool runPrinterDialog(QPrinter& printer, PrinterDialogMode mode, QWidget* parent);

private:
    std::unique_ptr<QPrinter> m_printer;
    bool m_installed = false;
};

} // namespace print::ui
