// "Las&ke tunnusluvut" in the running program: the main window finds the card's own project.
#include "common/ScriptedDialogs.h"
#include "common/TestSupport.h"
#include "documents/Controls.h"
#include "documents/Form1.h"
#include "documents/Form3.h"
#include "platform/SettingsStore.h"
#include "shell/Captions.h"
#include "shell/MDIForm1.h"

#include <QLabel>
#include <QPushButton>
#include <gtest/gtest.h>

TEST(CardFigures, ComputedFromTheCardsOwnProject) {
    testing_support::ScriptedDialogs dialogs;
    platform::SettingsStore().deleteAll();
    auto main = std::make_unique<shell::MDIForm1>();
    main->setProgramDirectory(testing_support::dataDir());
    main->startUp(false);
    const QString second = main->NewProject();
    const shell::ProjectWindows first = main->projectWindowsOf(QStringLiteral("Projekti1"));
    const shell::ProjectWindows other = main->projectWindowsOf(second);
    ASSERT_TRUE(first.complete() && other.complete());

    for (const shell::ProjectWindows* p : {&first, &other}) {
        p->f1->Text1[4]->setText(p == &first ? QStringLiteral("20") : QStringLiteral("40"));
        p->f1->Text1[8]->setText(QStringLiteral("10"));
        p->f1->Combo1[4]->setText(p == &first ? QStringLiteral("€") : QStringLiteral("mk"));
    }
    for (documents::ProjectWindow* w : other.all())
        main->FormUntouch(w);

    other.f3->Command1->click();
    EXPECT_EQ(other.f3->Text1[3]->text(), QStringLiteral("400,0"));
    EXPECT_EQ(other.f3->Label1[2]->text(), QStringLiteral("mk"));
    EXPECT_EQ(first.f3->Text1[3]->text(), QString());
    // The computed figures are stored with the project: it counts as changed.
    EXPECT_FALSE(shell::ParseFileName(other.f1->caption()).unchanged);

    main->appState().settings.SaveSettingsOnExit = false;
    for (auto* w : main->projectWindows())
        main->FormUntouch(w);
}
