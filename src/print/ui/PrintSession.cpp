#include "print/ui/PrintSession.h"

#include <QPageSetupDialog>
#include <QPrintDialog>
#include <QPrinter>
#include <QPrinterInfo>

namespace print::ui {

namespace {
PrintSession::PrinterDialog& dialogOverride() {
    static PrintSession::PrinterDialog dialog;
    return dialog;
}
} // namespace

PrintSession::PrintSession() = default;
PrintSession::~PrintSession() = default;

QPrinter& PrintSession::printer() {
    if (m_printer) return *m_printer;
    m_installed = !QPrinterInfo::availablePrinters().isEmpty();
    if (m_installed) {
        m_printer = std::make_unique<QPrinter>(QPrinter::HighResolution);
    } else {
        m_printer = std::make_unique<QPrinter>(QPrinter::HighResolution);
        m_printer->setOutputFormat(QPrinter::PdfFormat);
        m_printer->setResolution(kDefaultResolution);
        m_printer->setPageLayout(DefaultPageLayout());
    }
    return *m_printer;
}

bool PrintSession::printerInstalled() const {
    return m_installed;
}

DeviceMetrics PrintSession::metrics() {
    return MetricsOf(printer());
}

void PrintSession::setPrinterDialog(PrinterDialog dialog) {
    dialogOverride() = std::move(dialog);
}

bool PrintSession::runPrinterDialog(QPrinter& printer, PrinterDialogMode mode, QWidget* parent) {
    if (dialogOverride()) return dialogOverride()(printer, mode, parent);
    if (mode == PrinterDialogMode::Settings) {
        QPageSetupDialog dialog(&printer, parent);
        return dialog.exec() == QDialog::Accepted;
    }
    QPrintDialog dialog(&printer, parent);
    // Printing to a file has its own button; page ranges and selections do not apply to a run.
    dialog.setOption(QAbstractPrintDialog::PrintToFile, false);
    dialog.setOption(QAbstractPrintDialog::PrintPageRange, false);
    dialog.setOption(QAbstractPrintDialog::PrintSelection, false);
    dialog.setOption(QAbstractPrintDialog::PrintCurrentPage, false);
    return dialog.exec() == QDialog::Accepted;
}

} // namespace print::ui
