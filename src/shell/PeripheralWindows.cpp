// The e-mail dialog and the image viewer, opened from the main window, the cards and the
// settings dialog.
#include "documents/Form1.h"
#include "documents/Form2.h"
#include "documents/Form3.h"
#include "documents/Form4.h"
#include "peripherals/Dialog2.h"
#include "peripherals/Form13.h"
#include "persist/ProjectFile.h"
#include "platform/Dialogs.h"
#include "platform/ui/PictureBox.h"
#include "shell/Captions.h"
#include "shell/MDIForm1.h"
#include "shell/ProjectFiles.h"
#include "shell/Settings.h"
#include "shell/ShellActions.h"

namespace shell {

namespace {

// The main window as the e-mail dialog sees it.
class MainMailHost final : public peripherals::MailHost {
public:
    explicit MainMailHost(MDIForm1& main)
        : m_main(main) {}
    QString ActiveCaption() const override { return m_main.ActiveCaption(); }
    bool SaveProjectCopy(const QString& project, const QString& file) override {
        return WriteSlFile(m_main, project, file, true);
    }
    QString TempPath() const override { return m_main.appState().TempPath; }
    platform::CommonDialogState& DialogState() override { return m_main.appState().dialog; }
    QStringList RequirementFiles() override {
        const ProjectWindows w = m_main.ParseFormIndeces();
        const lists::ListModel* requirements = w.f2 ? w.f2->list(1) : nullptr;
        return requirements ? persist::PopulateFiles(*requirements) : QStringList();
    }
    void ShowHelp(int context, QWidget* dialog) override { TamrikHelp(m_main, context, dialog); }

private:
    MDIForm1& m_main;
};

} // namespace

void showMailDialog(MDIForm1& main) {
    if (!main.activeWindow()) return;
    MainMailHost host(main);
    peripherals::Dialog2 dialog(host, &main);
    dialog.exec();
}

void GiveBackPicture(MDIForm1& main, int slot, const QString& project, const platform::Picture& picture,
                     const QString& file) {
    if (slot == 1) {
        // A logo from the clipboard has no file: the stored name stays, the image changes.
        if (!file.isEmpty()) main.appState().settings.PLogoFile = file;
        main.imgLogo = picture;
        return;
    }
    if (slot < 2 || slot > 7) return;
    const ProjectWindows w = main.projectWindowsOf(project);
    if (w.f1) w.f1->Image1[slot - 2]->setPicture(picture);
}

void showImageViewer(MDIForm1& main, int slot, const QString& project, QWidget* parent) {
    platform::Picture picture;
    QString owner = platform::applicationTitle();
    if (slot == 1) {
        picture = main.imgLogo;
    } else {
        const ProjectWindows w = main.projectWindowsOf(project);
        if (!w.f1 || slot < 2 || slot > 7) return;
        picture = w.f1->Image1[slot - 2]->picture();
        // A card's picture is named after its project.
        owner = ParseFileName(project).name;
    }
    AppState& state = main.appState();
    peripherals::Form13 viewer(
        slot, owner, picture, state.dialog,
        [&main, project](int n, const platform::Picture& p, const QString& file) {
            GiveBackPicture(main, n, project, p, file);
        },
        parent ? parent : &main);
    viewer.resize(viewer.sizeHint());
    GetWinPos(state.settings.pos, 13, &viewer);
    viewer.exec();
    UpdateWinPosTable(state.settings.pos, 13, &viewer);
}

void connectPictureButtons(MDIForm1& main, documents::ProjectWindow* window) {
    auto open = [&main, window](int slot) {
        showImageViewer(main, slot, ParseFileName(window->caption()).project(), nullptr);
    };
    if (auto* card = qobject_cast<documents::Form3*>(window))
        QObject::connect(card, &documents::Form3::pictureRequested, &main, open);
    if (auto* charge = qobject_cast<documents::Form4*>(window))
        QObject::connect(charge, &documents::Form4::pictureRequested, &main, open);
}

} // namespace shell
