// Printing from the main window: the print selection dialog on the active project, and what
// the print windows ask of the main window.
#include "documents/CardText.h"
#include "documents/Form1.h"
#include "documents/Form10.h"
#include "documents/Form2.h"
#include "documents/Form3.h"
#include "documents/Form4.h"
#include "platform/ui/PictureBox.h"
#include "platform/Rtf.h"
#include "print/ui/Form11.h"
#include "print/ui/PrintHost.h"
#include "print/ui/PrintSession.h"
#include "shell/Captions.h"
#include "shell/MDIForm1.h"
#include "shell/Settings.h"
#include "shell/ShellActions.h"

#include <QCheckBox>
#include <QTextEdit>

namespace shell {

namespace {

class ShellPrintHost : public print::ui::PrintHost {
public:
    explicit ShellPrintHost(MDIForm1& main)
        : m_main(main) {}

    int programMode() const override { return m_main.appState().ProgramMode; }

    std::unique_ptr<print::ui::ProjectPrint> activeProject() override {
        const ProjectWindows w = m_main.ParseFormIndeces();
        if (!w.complete()) return nullptr;
        auto project = std::make_unique<print::ui::ProjectPrint>();
        const ParsedCaption caption = ParseFileName(m_main.ActiveCaption());
        project->fileName = caption.project();
        print::PrintSource& s = project->source;
        const documents::WindowTexts basic = documents::windowTexts(*w.f1);
        s.basicTexts = basic.Text1;
        s.basicCombos = basic.Combo1;
        // The lists stay in their windows, which outlive the modal print dialogs.
        s.parts = w.f1->list(0);
        s.quantities = w.f2->list(0);
        s.requirements = w.f2->list(1);
        s.charges = w.f4->list(0);
        w.f2->StoreRichTextDocument();
        for (int n = 0; n < 3; ++n)
            s.documents[n] = platform::plainTextWithCrLf(*w.f2->RichTextBox1[n + 1]->document());
        documents::UpdateCardText(*w.f1, w.f2, *w.f3);
        s.cardFields = documents::UpdateSTCard(*w.f1, *w.f3);
        s.chargeFields = documents::UpdateSTCharge(*w.f1, *w.f4);
        for (int k = 0; k < 6 && k < static_cast<int>(w.f1->Image1.size()); ++k)
            s.pictures[k] = w.f1->Image1[k]->picture();
        for (const QCheckBox* c : w.f4->Check1)
            s.chargeChecks.push_back(
                c->checkState() == Qt::Checked ? 1 : (c->checkState() == Qt::Unchecked ? 0 : 2));
        return project;
    }

    print::PrintSettings printSettings() override {
        const Settings& s = m_main.appState().settings;
        print::PrintSettings p;
        p.PrinterFont = s.PrinterFont.trimmed().isEmpty() ? QStringLiteral("Arial") : s.PrinterFont;
        p.PrintLogo = s.PrintLogo;
        p.logo = m_main.imgLogo;
        p.margins = print::Margins{s.margins[0], s.margins[1], s.margins[2], s.margins[3]};
        p.appPath = m_main.appState().AppPath;
        return p;
    }

    float previewScale() const override { return m_main.appState().settings.PreviewScale; }
    void setPreviewScale(float scale) override { m_main.appState().settings.PreviewScale = scale; }
    void showHelp(int context, QWidget* from) override { TamrikHelp(m_main, context, from); }
    void restorePosition(int slot, QWidget* window) override {
        GetWinPos(m_main.appState().settings.pos, slot, window);
    }
    void savePosition(int slot, QWidget* window) override {
        UpdateWinPosTable(m_main.appState().settings.pos, slot, window);
    }
    bool canChooseWorkPhase() const override { return true; }
    QString chooseWorkPhase(QWidget* parent) override {
        const ProjectWindows w = m_main.ParseFormIndeces();
        if (!w.f2) return QStringLiteral("-1");
        return documents::ChooseRequirementHeading(*w.f2, parent, &m_main).value_or(QStringLiteral("-1"));
    }

private:
    MDIForm1& m_main;
};

} // namespace

print::ui::PrintSession& MDIForm1::printSession() {
    if (!m_printSession) m_printSession = std::make_unique<print::ui::PrintSession>();
    return *m_printSession;
}

std::unique_ptr<print::ui::PrintHost> makePrintHost(MDIForm1& main) {
    return std::make_unique<ShellPrintHost>(main);
}

void showPrintDialog(MDIForm1& main) {
    if (!main.ParseFormIndeces().complete()) return;
    ShellPrintHost host(main);
    print::ui::Form11 dialog(host, main.printSession(), &main);
    dialog.exec();
}

} // namespace shell
