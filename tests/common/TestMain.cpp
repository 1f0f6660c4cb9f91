// Test start-up shared by every test executable: a QApplication on the offscreen platform,
// settings in a temporary folder, and a pinned locale, so that no test depends on the user's
// display, settings or regional format.
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

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
// In the checked build: libgsf loses a little memory on some damaged OLE files (cmake/lsan.supp
// names it). GLib has no frame pointers, so only the slow unwinder finds libgsf's frames, and
// without them the suppression could not tell that leak from one of ours.
extern "C" const char* __asan_default_options() {
    return "fast_unwind_on_malloc=0:malloc_context_size=10";
}
#endif
#endif

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    // Tests never see the user's configuration or temporary files.
    QTemporaryDir home;
    qputenv("XDG_CONFIG_HOME", (home.path() + QStringLiteral("/config")).toLocal8Bit());
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
