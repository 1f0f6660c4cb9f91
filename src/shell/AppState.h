#pragma once
// The application state: one instance, owned by the main window, alive for the whole run.
// Windows get a reference to it at construction; nothing else is global.
#include "platform/CommonDialog.h"

#include <QString>
#include <array>

namespace shell {

// Window-position table in twips; slots 1..13, slot 0 unused. 0 means "no stored value".
struct WindowPositions {
    std::array<int, 14> top{};
    std::array<int, 14> left{};
    std::array<int, 14> height{};
    std::array<int, 14> width{};
};

// Values of the settings store as the program keeps them in memory.
// The longest autosave interval the settings accept: a day.
constexpr int kMaxAutosaveMinutes = 24 * 60;

// The most undo steps a project or base list keeps, and the default.
constexpr int kMaxUndoLimit = 10000;
constexpr int kDefaultUndoLimit = 200;

struct Settings {
    QString MoneyUnit = QStringLiteral("€");
    QString GeneralCostFraction = QStringLiteral("25");
    QString VAT = QStringLiteral("22");
    QString Index = QStringLiteral("104");
    QString IndexBaseYear = QStringLiteral("1995");
    bool AutoFormat = true;
    std::array<int, 6> BlankLines{1, 1, 0, 1, 1, 0};
    WindowPositions pos;
    float PreviewScale = 1.0f;
    QString PLogoFile = QStringLiteral("Tamrik2006-logo.wmf");
    QString PrinterFont = QStringLiteral("Arial");
    bool PrintLogo = true;
    QString File1 = QStringLiteral("Laatuvaatimukset2006.sl2");
    QString File2 = QStringLiteral("Yksikköhinnat2002.sl1");
    int StartUpDocument = 0;
    std::array<QString, 5> DefaultComboData;
    // Minutes between autosaved copies of changed projects; 0 turns the autosave off.
    int AutosaveMinutes = 5;
    // The undo steps kept per project and per base list window.
    int UndoLimit = kDefaultUndoLimit;
    // In memory only, reset at every start.
    bool SaveSettingsOnExit = true;
    std::array<int, 4> margins{800, 800, 1400, 800};
};

struct AppState {
    int ProgramMode = 3; // 1 designer, 2 contractor, 3 client
    int ProjectCounter = 0;
    bool Loading = false;
    QString AppPath;  // the program's directory, ending in "/"
    QString TempPath; // the private temporary folder, ending in "/"
    // The user's own copies of files that ship with the program (the base lists the user
    // saved), ending in "/"; empty when there is no such folder.
    QString UserDataPath;
    QString CurrentFileName;
    std::array<QString, 6> RecentFiles;
    std::array<QString, 21> HelpFileList;
    std::array<QString, 4> OfficeRows;
    int EditorMode = 0;
    QString HelpFile;            // the user's guide
    QString QualityPlanTemplate; // "Urakan laatusuunnitelma.txt" in AppPath
    Settings settings;
    platform::CommonDialogState dialog;
};

} // namespace shell
