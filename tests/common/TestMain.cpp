// Test start-up shared by every test executable: a QApplication on the offscreen platform,
// settings, data and temporary files in a temporary folder, and a pinned locale, so that no test depends on
// the user's display, settings or regional format.
#include "common/SlowUnwinder.h"
#include "common/TestSupport.h"

#include <QApplication>
#include <QLocale>
#include <QSettings>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace testing_support {
namespace {
QTemporaryDir* g_settingsDir = nullptr;
}

QString settingsDir() {
    return g_settingsDir ? g_settingsDir->path() : QString();
}

QString sourceDir() {
    return QStringLiteral(TAMRIK_SOURCE_DIR);
}

QString binaryDir() {
    return QStringLiteral(TAMRIK_BINARY_DIR);
}

QString dataDir() {
    return sourceDir() + QStringLiteral("/data/");
}

} // namespace testing_support

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    // Tests never see the user's configuration or temporary files.
    QTemporaryDir home;
    qputenv("XDG_CONFIG_HOME", (home.path() + QStringLiteral("/config")).toLocal8Bit());
    qputenv("XDG_DATA_HOME", (home.path() + QStringLiteral("/data")).toLocal8Bit());
    qputenv("TEMP", (home.path() + QStringLiteral("/temp")).toLocal8Bit());
    QDir().mkpath(home.path() + QStringLiteral("/temp"));
    QLocale::setDefault(QLocale(QLocale::Finnish, QLocale::Finland));
    QApplication app(argc, argv);
    QTemporaryDir settings;
    testing_support::g_settingsDir = &settings;
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, settings.path());
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
