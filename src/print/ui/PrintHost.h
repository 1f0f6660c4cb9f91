#pragma once
// What the print windows need from the main window: the active project, the settings, help,
// window positions and the heading index.
#include "print/PrintRun.h"

#include <QString>
#include <memory>

class QWidget;

namespace print::ui {

// A project's print source together with whatever keeps it alive.
struct ProjectPrint {
    virtual ~ProjectPrint() = default;
    PrintSource source;
    // The project's file with its folder, or its name ("Projekti1") while it has no file.
    QString fileName;
};

class PrintHost {
public:
    virtual ~PrintHost() = default;
    // 1 designer, 2 contractor, 3 client.
    virtual int programMode() const = 0;
    // The active project for printing, with the shown rich-text document stored first; null
    // when there is no project.
    virtual std::unique_ptr<ProjectPrint> activeProject() = 0;
    virtual PrintSettings printSettings() = 0;
    // The preview's zoom kept in the settings ("PreviewScale").
    virtual float previewScale() const = 0;
    virtual void setPreviewScale(float scale) = 0;
    // Help at a context, usable while `from` is open.
    virtual void showHelp(int context, QWidget* from) = 0;
    // The help topic of printing, shared by the selection dialog and the preview.
    static constexpr int kHelpTopic = 2400;
    // Window positions of the settings (slot 1..13).
    virtual void restorePosition(int slot, QWidget* window) = 0;
    virtual void savePosition(int slot, QWidget* window) = 0;
    // The heading index in its choosing mode: the "Rivi" of the chosen work-phase heading of the
    // requirement list, or "-1" when the user cancelled. Empty when the index is not available.
    virtual bool canChooseWorkPhase() const = 0;
    virtual QString chooseWorkPhase(QWidget* parent) = 0;
};

} // namespace print::ui
