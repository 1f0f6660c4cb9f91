// Random use of the desktop program: a fixed-seed run on every test run, the seeds that once
// found a fault, and the open-ended run of `./tamrik monkey SECONDS [SEED]`.
#include "common/FakeMail.h"
#include "monkey/Monkey.h"
#include "shell/MainWindowFixture.h"

#include <QDir>
#include <QFileInfo>
#include <QImage>
#include <QTemporaryDir>
#include <cstdlib>

namespace {

// The folder of good and damaged files the file dialogs offer: the shipped lists and the sample
// project (twice, the second under a name with Finnish letters), spreadsheets, pictures and
// texts, and the damaged files of the readers' own tests, each prefixed "rikki-".
void fillFilesFolder(const QString& folder) {
    QDir().mkpath(folder);
    const QString data = testing_support::dataDir();
    const QString tests = testing_support::sourceDir() + QStringLiteral("/tests/");
    auto copy = [&](const QString& from, const QString& name) {
        QFile::copy(from, folder + QLatin1Char('/') + name);
        QFile(folder + QLatin1Char('/') + name).setPermissions(QFile::ReadOwner | QFile::WriteOwner);
    };
    copy(data + QStringLiteral("Esimerkkisilta.sl"), QStringLiteral("Esimerkkisilta.sl"));
    copy(data + QStringLiteral("Esimerkkisilta.sl"), QStringLiteral("Äänekosken silta.sl"));
    for (const QString& name :
         {QStringLiteral("Yksikköhinnat2002.sl1"), QStringLiteral("Laatuvaatimukset2006.sl2"),
          QStringLiteral("TAMRIK30_T3.csv"), QStringLiteral("TAMRIK30_T4.csv"),
          QStringLiteral("Tamrik2006-logo.wmf"), QStringLiteral("Urakan laatusuunnitelma.txt")})
        copy(data + name, name);
    for (const QString& name :
         {QStringLiteral("lists/data/taulukko.xlsx"), QStringLiteral("lists/data/taulukko.ods"),
          QStringLiteral("lists/data/taulukko.xls"), QStringLiteral("platform/data/logo.emf"),
          QStringLiteral("platform/data/footnotes.rtf")})
        copy(tests + name, QFileInfo(name).fileName());
    for (const QString& damaged :
         {QStringLiteral("shell"), QStringLiteral("platform"), QStringLiteral("lists")})
        for (const QFileInfo& f :
             QDir(tests + damaged + QStringLiteral("/data/damaged")).entryInfoList(QDir::Files))
            copy(f.absoluteFilePath(), QStringLiteral("rikki-") + f.fileName());
    QImage picture(320, 200, QImage::Format_RGB32);
    picture.fill(Qt::darkCyan);
    picture.save(folder + QStringLiteral("/kuva.png"));
    picture.save(folder + QStringLiteral("/kuva.jpg"));
}

class Monkey : public SampleProjectFixture {
protected:
    void SetUp() override {
        // A print dialog's file and anything written under the home folder land in the scratch.
        oldHome = qgetenv("HOME");
        qputenv("HOME", scratch.path().toLocal8Bit());
        SampleProjectFixture::SetUp();
        fillFilesFolder(monkey::Monkey::filesFolder(scratch.path()));
        // The sample project and a second one.
        main->openFromCommandLine(monkey::Monkey::filesFolder(scratch.path()) +
                                  QStringLiteral("/Esimerkkisilta.sl"));
        main->openFromCommandLine(monkey::Monkey::filesFolder(scratch.path()) +
                                  QStringLiteral("/Äänekosken silta.sl"));
        ASSERT_EQ(main->projectWindows().size(), 8u);
    }
    void TearDown() override {
        // Whatever the run left open goes without questions.
        for (QWidget* w : QApplication::topLevelWidgets())
            if (w != main.get() && w->isVisible() && !w->inherits("lists::BaseListWindow")) w->hide();
        SampleProjectFixture::TearDown();
        qputenv("HOME", oldHome);
    }
    // Runs the seed for `steps` steps (or `seconds`); the failure names the seed and the steps.
    void runSeed(unsigned long long seed, long long steps, double seconds = 0) {
        monkey::Settings settings;
        settings.checkEvery = 100;
        settings.seed = seed;
        settings.maxSteps = steps;
        settings.seconds = seconds;
        settings.scratch = scratch.path();
        monkey::Monkey m(*main, settings);
        const bool ok = m.run();
        std::fprintf(stderr, "monkey: seed %llu, %lld steps\n", seed, m.steps());
        EXPECT_TRUE(ok) << m.report().toStdString();
    }

    testing_support::FakeMail mail;
    QTemporaryDir scratch;
    QByteArray oldHome;
};

// A short run, so that the checked build's suite stays quick; `./tamrik monkey` runs long ones.
TEST_F(Monkey, FixedSeedRun) {
    runSeed(20261126, 400);
}

// The watchdog's clock: a step stuck without a processor (a loaded machine, a run at low
// priority) is not a hang; a step that sleeps or spins is, and progress starts the count again.
TEST(MonkeyHangClock, CountsTimeWithoutProgressButNotTimeWaitingForAProcessor) {
    monkey::HangClock clock;
    const long long second = 1000000000LL;
    EXPECT_DOUBLE_EQ(clock.advance(second, 0, false), 1.0);              // asleep or spinning
    EXPECT_DOUBLE_EQ(clock.advance(second, second, false), 1.0);         // all of it waiting
    EXPECT_DOUBLE_EQ(clock.advance(second, 3 * second, false), 1.0);     // several threads waiting
    EXPECT_DOUBLE_EQ(clock.advance(2 * second, second / 2, false), 2.5); // partly waiting
    EXPECT_DOUBLE_EQ(clock.advance(second, 0, true), 0.0);               // progress
    EXPECT_DOUBLE_EQ(clock.advance(second, 0, false), 1.0);
}

// `./tamrik monkey SECONDS [SEED]`: MONKEY_SECONDS and MONKEY_SEED (a random one when unset);
// MONKEY_STEPS stops a replay after that many steps.
TEST_F(Monkey, DISABLED_Timed) {
    const double seconds = qEnvironmentVariable("MONKEY_SECONDS", QStringLiteral("60")).toDouble();
    bool given = false;
    unsigned long long seed = qEnvironmentVariable("MONKEY_SEED").toULongLong(&given);
    if (!given) seed = std::random_device()();
    std::fprintf(stderr, "monkey: seed %llu for %g s\n", seed, seconds);
    runSeed(seed, qEnvironmentVariable("MONKEY_STEPS").toLongLong(), seconds);
}

} // namespace
