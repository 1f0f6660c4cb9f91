#include "common/TestSupport.h"
#include "platform/SettingsStore.h"
#include "shell/Settings.h"

#include <QFile>
#include <QSettings>
#include <QWidget>
#include <gtest/gtest.h>

using namespace shell;

namespace {
// The INI file as written, by section, so tests can compare what is stored.
std::map<QString, QStringList> sectionsOf(const QString& path) {
    QFile f(path);
    EXPECT_TRUE(f.open(QIODevice::ReadOnly));
    std::map<QString, QStringList> out;
    QString section;
    for (const QByteArray& raw : f.readAll().split('\n')) {
        const QString line = QString::fromUtf8(raw).trimmed();
        if (line.startsWith(QLatin1Char('['))) {
            section = line.mid(1, line.size() - 2);
            out[section];
        } else if (line.contains(QLatin1Char('='))) {
            out[section] << line.section(QLatin1Char('='), 0, 0);
        }
    }
    return out;
}
} // namespace

TEST(Settings, MissingStoreGivesEveryDefault) {
    platform::SettingsStore store(QStringLiteral("tamrik-test-defaults"));
    store.deleteAll();
    AppState state;
    state.ProgramMode = 1;
    state.settings.BlankLines = {9, 9, 9, 9, 9, 9};
    ReadSettingsValues(store, state);
    const Settings& s = state.settings;
    EXPECT_EQ(s.MoneyUnit, QStringLiteral("€"));
    EXPECT_EQ(s.GeneralCostFraction, QStringLiteral("25"));
    EXPECT_EQ(s.VAT, QStringLiteral("22"));
    EXPECT_EQ(s.Index, QStringLiteral("104"));
    EXPECT_EQ(s.IndexBaseYear, QStringLiteral("1995"));
    EXPECT_EQ(state.ProgramMode, 3);
    EXPECT_TRUE(s.AutoFormat);
    EXPECT_EQ(s.BlankLines, (std::array<int, 6>{1, 1, 0, 1, 1, 0}));
    EXPECT_EQ(s.PLogoFile, QStringLiteral("Tamrik2006-logo.wmf"));
    EXPECT_EQ(s.PrinterFont, QStringLiteral("Arial"));
    EXPECT_TRUE(s.PrintLogo);
    EXPECT_FLOAT_EQ(s.PreviewScale, 1.0f);
    EXPECT_EQ(s.File1, QStringLiteral("Laatuvaatimukset2006.sl2"));
    EXPECT_EQ(s.File2, QStringLiteral("Yksikköhinnat2002.sl1"));
    EXPECT_EQ(s.pos.width[1], 0);
    EXPECT_TRUE(s.SaveSettingsOnExit);
}

TEST(Settings, RoundTripKeepsValuesAndWritesTheSectionsAndKeys) {
    platform::SettingsStore store(QStringLiteral("tamrik-test-roundtrip"));
    store.deleteAll();
    AppState state;
    state.ProgramMode = 2;
    Settings& s = state.settings;
    s.MoneyUnit = QStringLiteral("mk");
    s.VAT = QStringLiteral("24");
    s.AutoFormat = false;
    s.BlankLines = {2, 0, 1, 3, 2, 1};
    s.PreviewScale = 1.5f;
    s.PrintLogo = false;
    s.PLogoFile = QStringLiteral("/kuvat/logo.bmp");
    s.StartUpDocument = 2;
    state.OfficeRows = {QStringLiteral("Insinööritoimisto"), QStringLiteral("Katu 1"), QString(),
                        QStringLiteral("puh")};
    state.RecentFiles = {
        QStringLiteral("/a/1.sl"), QStringLiteral("/a/2.sl"), QString(), QString(), QString(), QString()};
    // Slot 1 big enough to be written, slot 6 too small: it keeps what was stored before.
    s.pos.width[1] = 12000;
    s.pos.height[1] = 9000;
    s.pos.top[1] = 150;
    s.pos.left[1] = 300;
    store.save(QStringLiteral("WindowsPosition"), QStringLiteral("Width_6"), QStringLiteral("7000"));
    s.pos.width[6] = 3000;
    s.pos.height[6] = 5000;
    WriteSettingsValues(store, state);

    AppState back;
    ReadSettingsValues(store, back);
    EXPECT_EQ(back.ProgramMode, 2);
    EXPECT_EQ(back.settings.MoneyUnit, QStringLiteral("mk"));
    EXPECT_EQ(back.settings.VAT, QStringLiteral("24"));
    EXPECT_FALSE(back.settings.AutoFormat);
    EXPECT_EQ(back.settings.BlankLines, s.BlankLines);
    EXPECT_FLOAT_EQ(back.settings.PreviewScale, 1.5f);
    EXPECT_FALSE(back.settings.PrintLogo);
    EXPECT_EQ(back.settings.PLogoFile, QStringLiteral("/kuvat/logo.bmp"));
    EXPECT_EQ(back.settings.StartUpDocument, 2);
    EXPECT_EQ(back.OfficeRows, state.OfficeRows);
    EXPECT_EQ(back.RecentFiles, state.RecentFiles);
    EXPECT_EQ(back.settings.pos.width[1], 12000);
    EXPECT_EQ(back.settings.pos.top[1], 150);
    EXPECT_EQ(back.settings.pos.width[6], 7000);

    auto sections = sectionsOf(store.fileName());
    for (const auto& [section, key] : {std::pair{"General", "MoneyUnit"},
                                       {"General", "ProgramMode"},
                                       {"Format", "BlankLines_5"},
                                       {"Printer", "PLogoFile"},
                                       {"RecentFiles", "File5"},
                                       {"Office", "Row_3"},
                                       {"GUI", "StartUpDocument"}})
        EXPECT_TRUE(sections[section].contains(key)) << section << "/" << key;
    EXPECT_FALSE(sections["WindowsPosition"].contains("Height_6"));
    EXPECT_EQ(store.get(QStringLiteral("Format"), QStringLiteral("AutoFormat")), QStringLiteral("False"));
    EXPECT_EQ(store.get(QStringLiteral("Printer"), QStringLiteral("PrintLogo")), QStringLiteral("0"));
}

TEST(Settings, CountsThatDoNotParseKeepTheirDefaults) {
    platform::SettingsStore store(QStringLiteral("tamrik-test-bad"));
    store.deleteAll();
    store.save(QStringLiteral("Format"), QStringLiteral("BlankLines_2"), QStringLiteral("kaksi"));
    store.save(QStringLiteral("Format"), QStringLiteral("BlankLines_3"), QStringLiteral("2,6"));
    store.save(QStringLiteral("General"), QStringLiteral("ProgramMode"), QStringLiteral("7"));
    AppState state;
    ReadSettingsValues(store, state);
    EXPECT_EQ(state.settings.BlankLines[2], 0);
    EXPECT_EQ(state.settings.BlankLines[3], 3);
    EXPECT_EQ(state.ProgramMode, 3);
}

TEST(WindowPositions, TableTakesTwipsAndAppliesOnlyStoredValues) {
    QWidget w;
    w.setGeometry(100, 80, 400, 300);
    WindowPositions table;
    UpdateWinPosTable(table, 5, &w);
    EXPECT_EQ(table.width[5], 400 * kTwipsPerPixel);
    EXPECT_EQ(table.height[5], 300 * kTwipsPerPixel);
    // Slot 14 and above is outside the table and changes nothing.
    UpdateWinPosTable(table, 14, &w);
    QWidget other;
    other.resize(200, 100);
    table.height[5] = 0; // no stored height: the window keeps its own
    GetWinPos(table, 5, &other);
    EXPECT_EQ(other.width(), 400);
    EXPECT_EQ(other.height(), 100);
    // Without a stored place a window is left for the system to place (a dialog over its
    // owner), not pinned to the corner of the screen.
    QWidget fresh;
    GetWinPos(WindowPositions{}, 13, &fresh);
    EXPECT_FALSE(fresh.testAttribute(Qt::WA_Moved));
}
