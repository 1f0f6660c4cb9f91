#include "shell/Settings.h"

#include "platform/SettingsStore.h"

#include <QFileInfo>
#include <QMdiSubWindow>
#include <QWidget>
#include <cmath>

namespace shell {

namespace {

const QString kGeneral = QStringLiteral("General");
const QString kFormat = QStringLiteral("Format");
const QString kWindows = QStringLiteral("WindowsPosition");
const QString kPrinter = QStringLiteral("Printer");
const QString kOffice = QStringLiteral("Office");
const QString kRecent = QStringLiteral("RecentFiles");
const QString kFiles = QStringLiteral("Files");
const QString kGui = QStringLiteral("GUI");
// The folders where the file dialogs of each kind of file start.
const QString kFolders = QStringLiteral("Folders");
const char* const kFolderKinds[] = {"Projects", "Lists", "Spreadsheets", "Pictures"};

// A count as the settings hold it: a number, rounded; anything else keeps the fallback.
int toInt(const QString& text, int fallback) {
    bool ok = false;
    const double v = text.trimmed().replace(QLatin1Char(','), QLatin1Char('.')).toDouble(&ok);
    if (!ok || !std::isfinite(v) || std::fabs(v) > 2.0e9) return fallback;
    return static_cast<int>(std::nearbyint(v));
}

QString winKey(const char* name, int slot) {
    return QLatin1String(name) + QString::number(slot);
}

} // namespace

void ReadSettingsValues(const platform::SettingsStore& store, AppState& state) {
    Settings& s = state.settings;
    const Settings d;
    state.ProjectCounter = 0;
    s.SaveSettingsOnExit = true;
    s.MoneyUnit = store.get(kGeneral, QStringLiteral("MoneyUnit"), d.MoneyUnit);
    s.GeneralCostFraction = store.get(kGeneral, QStringLiteral("GeneralCostFraction"), d.GeneralCostFraction);
    s.VAT = store.get(kGeneral, QStringLiteral("VAT"), d.VAT);
    s.Index = store.get(kGeneral, QStringLiteral("Index"), d.Index);
    s.IndexBaseYear = store.get(kGeneral, QStringLiteral("IndexBaseYear"), d.IndexBaseYear);
    s.AutoFormat =
        store.get(kFormat, QStringLiteral("AutoFormat"), QStringLiteral("True")).trimmed().toLower() ==
        QLatin1String("true");
    for (int i = 0; i < 6; ++i) {
        const QString key = QStringLiteral("BlankLines_%1").arg(i);
        s.BlankLines[i] = toInt(store.get(kFormat, key, QString::number(d.BlankLines[i])), d.BlankLines[i]);
    }
    for (int n = 1; n <= 13; ++n) {
        s.pos.top[n] = toInt(store.get(kWindows, winKey("Top_", n), QStringLiteral("0")), 0);
        s.pos.left[n] = toInt(store.get(kWindows, winKey("Left_", n), QStringLiteral("0")), 0);
        s.pos.height[n] = toInt(store.get(kWindows, winKey("Height_", n), QStringLiteral("0")), 0);
        s.pos.width[n] = toInt(store.get(kWindows, winKey("Width_", n), QStringLiteral("0")), 0);
    }
    bool ok = false;
    const float scale = store.get(kPrinter, QStringLiteral("PreviewScale"), QStringLiteral("1"))
                            .replace(QLatin1Char(','), QLatin1Char('.'))
                            .toFloat(&ok);
    s.PreviewScale = ok && scale > 0 ? scale : d.PreviewScale;
    s.PLogoFile = store.get(kPrinter, QStringLiteral("PLogoFile"), d.PLogoFile);
    s.PrinterFont = store.get(kPrinter, QStringLiteral("PrinterFont"), d.PrinterFont);
    s.PrintLogo = store.get(kPrinter, QStringLiteral("PrintLogo"), QStringLiteral("1")) == QLatin1String("1");
    for (int i = 0; i < 4; ++i)
        state.OfficeRows[i] = store.get(kOffice, QStringLiteral("Row_%1").arg(i));
    for (int i = 5; i >= 0; --i)
        UpdateRecentFileList(state.RecentFiles, store.get(kRecent, QStringLiteral("File%1").arg(i)));
    s.File1 = store.get(kFiles, QStringLiteral("File1"), d.File1);
    s.File2 = store.get(kFiles, QStringLiteral("File2"), d.File2);
    state.ProgramMode = toInt(store.get(kGeneral, QStringLiteral("ProgramMode"), QStringLiteral("3")), 3);
    s.AutosaveMinutes =
        toInt(store.get(kGeneral, QStringLiteral("AutosaveMinutes"), QString::number(d.AutosaveMinutes)),
              d.AutosaveMinutes);
    if (s.AutosaveMinutes < 0 || s.AutosaveMinutes > kMaxAutosaveMinutes)
        s.AutosaveMinutes = d.AutosaveMinutes;
    s.UndoLimit =
        toInt(store.get(kGeneral, QStringLiteral("UndoLimit"), QString::number(d.UndoLimit)), d.UndoLimit);
    if (s.UndoLimit < 1 || s.UndoLimit > kMaxUndoLimit) s.UndoLimit = d.UndoLimit;
    if (state.ProgramMode < 1 || state.ProgramMode > 3) state.ProgramMode = 3;
    s.StartUpDocument = toInt(store.get(kGui, QStringLiteral("StartUpDocument"), QStringLiteral("0")), 0);
    if (s.StartUpDocument < 0 || s.StartUpDocument > 2) s.StartUpDocument = 0;
    for (int i = 0; i < 5; ++i)
        s.DefaultComboData[i] = store.get(kGeneral, QStringLiteral("DefaultComboData_%1").arg(i));
    state.dialog.folders.clear();
    for (const char* kind : kFolderKinds) {
        const QString folder = store.get(kFolders, QLatin1String(kind));
        if (!folder.isEmpty()) state.dialog.folders[QLatin1String(kind)] = folder;
    }
}

void WriteSettingsValues(platform::SettingsStore& store, const AppState& state) {
    const Settings& s = state.settings;
    store.save(kGeneral, QStringLiteral("MoneyUnit"), s.MoneyUnit);
    store.save(kGeneral, QStringLiteral("GeneralCostFraction"), s.GeneralCostFraction);
    store.save(kGeneral, QStringLiteral("VAT"), s.VAT);
    store.save(kGeneral, QStringLiteral("Index"), s.Index);
    store.save(kGeneral, QStringLiteral("IndexBaseYear"), s.IndexBaseYear);
    store.save(kGeneral, QStringLiteral("ProgramMode"), QString::number(state.ProgramMode));
    store.save(kGeneral, QStringLiteral("AutosaveMinutes"), QString::number(s.AutosaveMinutes));
    store.save(kGeneral, QStringLiteral("UndoLimit"), QString::number(s.UndoLimit));
    store.save(kFormat, QStringLiteral("AutoFormat"),
               s.AutoFormat ? QStringLiteral("True") : QStringLiteral("False"));
    for (int i = 0; i < 6; ++i)
        store.save(kFormat, QStringLiteral("BlankLines_%1").arg(i), QString::number(s.BlankLines[i]));
    for (int n = 1; n <= 13; ++n) {
        if (s.pos.width[n] > 3000 && s.pos.height[n] > 1000) {
            store.save(kWindows, winKey("Top_", n), QString::number(s.pos.top[n]));
            store.save(kWindows, winKey("Left_", n), QString::number(s.pos.left[n]));
            store.save(kWindows, winKey("Height_", n), QString::number(s.pos.height[n]));
            store.save(kWindows, winKey("Width_", n), QString::number(s.pos.width[n]));
        }
    }
    store.save(kPrinter, QStringLiteral("PreviewScale"), QString::number(s.PreviewScale));
    store.save(kPrinter, QStringLiteral("PLogoFile"), StoredFileName(state, s.PLogoFile));
    store.save(kPrinter, QStringLiteral("PrintLogo"),
               s.PrintLogo ? QStringLiteral("1") : QStringLiteral("0"));
    store.save(kPrinter, QStringLiteral("PrinterFont"), s.PrinterFont);
    for (int i = 0; i < 6; ++i)
        store.save(kRecent, QStringLiteral("File%1").arg(i), state.RecentFiles[i]);
    for (int i = 0; i < 4; ++i)
        store.save(kOffice, QStringLiteral("Row_%1").arg(i), state.OfficeRows[i]);
    if (s.StartUpDocument >= 0 && s.StartUpDocument <= 2)
        store.save(kGui, QStringLiteral("StartUpDocument"), QString::number(s.StartUpDocument));
    // Only folders that were used: a store written before any dialog looks as it always did.
    for (const char* kind : kFolderKinds) {
        const auto folder = state.dialog.folders.find(QLatin1String(kind));
        if (folder != state.dialog.folders.end() && !folder->second.isEmpty())
            store.save(kFolders, QLatin1String(kind), folder->second);
    }
    store.sync();
}

void WriteDefaultComboData(platform::SettingsStore& store, const std::array<QString, 5>& texts) {
    for (int i = 0; i < 5; ++i)
        store.save(kGeneral, QStringLiteral("DefaultComboData_%1").arg(i), texts[i]);
    store.sync();
}

namespace {
QRect frameRect(const QWidget* w) {
    // Sub-windows keep their position in the MDI area, top-level windows on the screen.
    if (auto* sub = qobject_cast<const QMdiSubWindow*>(w->parentWidget())) return sub->geometry();
    if (w->isWindow()) return QRect(w->frameGeometry().topLeft(), w->size());
    return w->geometry();
}
} // namespace

void UpdateWinPosTable(WindowPositions& table, int slot, const QWidget* window) {
    if (slot < 1 || slot > 13 || !window) return;
    const QRect r = frameRect(window);
    table.top[slot] = r.top() * kTwipsPerPixel;
    table.left[slot] = r.left() * kTwipsPerPixel;
    table.height[slot] = r.height() * kTwipsPerPixel;
    table.width[slot] = r.width() * kTwipsPerPixel;
}

void GetWinPos(const WindowPositions& table, int slot, QWidget* window) {
    if (slot < 1 || slot > 13 || !window) return;
    QWidget* target = window;
    if (auto* sub = qobject_cast<QMdiSubWindow*>(window->parentWidget())) target = sub;
    QPoint pos = target->isWindow() ? target->frameGeometry().topLeft() : target->pos();
    QSize size = target->size();
    if (table.top[slot] != 0) pos.setY(table.top[slot] / kTwipsPerPixel);
    if (table.left[slot] != 0) pos.setX(table.left[slot] / kTwipsPerPixel);
    if (table.height[slot] != 0) size.setHeight(table.height[slot] / kTwipsPerPixel);
    if (table.width[slot] != 0) size.setWidth(table.width[slot] / kTwipsPerPixel);
    target->resize(size);
    // A window without a stored place is not moved, so that the system places it (a dialog
    // over its owner) instead of at the corner of the screen.
    if (table.top[slot] != 0 || table.left[slot] != 0) target->move(pos);
}

bool IsShippedFileName(const QString& name) {
    static const QStringList shipped = {QStringLiteral("Laatuvaatimukset2006.sl2"),
                                        QStringLiteral("Yksikköhinnat2002.sl1"),
                                        QStringLiteral("Tamrik2006-logo.wmf")};
    return shipped.contains(name);
}

QString ShippedFilePath(const AppState& state, const QString& name) {
    if (!IsShippedFileName(name)) return name;
    if (!state.UserDataPath.isEmpty() && QFileInfo::exists(state.UserDataPath + name))
        return state.UserDataPath + name;
    return state.AppPath + name;
}

QString StoredFileName(const AppState& state, const QString& path) {
    const QFileInfo fi(path);
    const QString name = fi.fileName();
    if (!IsShippedFileName(name)) return path;
    const QString folder = fi.path() + QLatin1Char('/');
    if (folder == state.AppPath || (!state.UserDataPath.isEmpty() && folder == state.UserDataPath))
        return name;
    return path;
}

QString UserWritablePath(const AppState& state, const QString& path) {
    const QFileInfo fi(path);
    if (state.UserDataPath.isEmpty() || !IsShippedFileName(fi.fileName()) ||
        fi.path() + QLatin1Char('/') != state.AppPath)
        return path;
    return state.UserDataPath + fi.fileName();
}

void UpdateRecentFileList(std::array<QString, 6>& files, const QString& file) {
    if (file.isEmpty()) return;
    int k = 5;
    for (int i = 0; i < 6; ++i) {
        if (files[i] == file) {
            k = i;
            break;
        }
    }
    for (int i = k; i > 0; --i)
        files[i] = files[i - 1];
    files[0] = file;
}

bool DropMissingRecentFiles(std::array<QString, 6>& files) {
    std::array<QString, 6> kept;
    int n = 0;
    for (const QString& f : files)
        if (!f.isEmpty() && QFileInfo::exists(f)) kept[n++] = f;
    const bool changed = kept != files;
    files = kept;
    return changed;
}

} // namespace shell
