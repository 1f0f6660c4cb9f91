#pragma once
// Reading and writing the settings store, and the window-position table.
#include "shell/AppState.h"

class QWidget;

namespace platform {
class SettingsStore;
}

namespace shell {

// Reads every section and key into memory (the store part of start-up). Missing keys give
// their defaults; a count or number that does not parse keeps its default.
void ReadSettingsValues(const platform::SettingsStore& store, AppState& state);

// Writes the values in the store's order. Window slots are written only for sizes above
// 3000 × 1000 twips, so a window left tiny keeps its previous position.
void WriteSettingsValues(platform::SettingsStore& store, const AppState& state);

// Saves the texts of the five combo boxes that feed new projects' drop-down lists.
void WriteDefaultComboData(platform::SettingsStore& store, const std::array<QString, 5>& texts);

// The twips of a logical pixel on screen.
constexpr int kTwipsPerPixel = 15;

// Copies a window's frame geometry into a slot of the table (slot 1..13).
void UpdateWinPosTable(WindowPositions& table, int slot, const QWidget* window);
// Applies the stored values of a slot that are not 0 to a window.
void GetWinPos(const WindowPositions& table, int slot, QWidget* window);

// Files that ship in the program folder (read-only once installed). The settings store them by
// name, so that they outlive a move of the program folder; the name resolves to the user's own
// copy in the data folder when there is one, else to the shipped file.
bool IsShippedFileName(const QString& name);
QString ShippedFilePath(const AppState& state, const QString& name);
// The form in which the settings keep a file: a shipped file (in the program folder or the
// user's copy of it) by its name, any other file by its path.
QString StoredFileName(const AppState& state, const QString& path);
// Where "&Tallenna" writes a list: the user's copy in place of a shipped file in the program
// folder, else the file itself.
QString UserWritablePath(const AppState& state, const QString& path);

// Puts a file at the head of the recent files, moving it when it is there already.
void UpdateRecentFileList(std::array<QString, 6>& files, const QString& file);
// Removes the files that no longer exist, keeping the order of the others; true when any went.
bool DropMissingRecentFiles(std::array<QString, 6>& files);

} // namespace shell
