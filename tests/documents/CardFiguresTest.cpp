// "Las&ke tunnusluvut" in the running program: the main window finds the card's own project.
#include "common/ScriptedDialogs.h"
#include "common/TestSupport.h"
#include "documents/Controls.h"
#include "documents/Form1.h"
#include "documents/Form2.h"
#include "documents/Form3.h"
#include "lists/ListModel.h"
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

// An amount past single precision's range: the card shows "#####" where a figure overflowed,
// never "inf" or "∞", and a message names the quantity list's row where the overflow began.
TEST(CardFigures, AnOverflowedTotalShowsHashesAndSaysWhere) {
    testing_support::ScriptedDialogs dialogs;
    platform::SettingsStore().deleteAll();
    auto main = std::make_unique<shell::MDIForm1>();
    main->setProgramDirectory(testing_support::dataDir());
    main->startUp(false);
    const shell::ProjectWindows w = main->projectWindowsOf(QStringLiteral("Projekti1"));
    ASSERT_TRUE(w.complete());
    w.f1->Text1[4]->setText(QStringLiteral("20"));
    w.f1->Text1[8]->setText(QStringLiteral("10"));
    lists::ListModel* q = w.f2->list(0);
    ASSERT_GE(q->cols(), 7);
    auto row = [q](std::initializer_list<const char*> cells) {
        QStringList texts;
        for (const char* c : cells)
            texts << QString::fromUtf8(c);
        while (texts.size() < q->cols())
            texts << QString();
        lists::Row r;
        r.cells = texts;
        return r;
    };
    q->reset(q->columns(), {row({"7110", "KAIVUT"}), row({"", "Kaivu", "", "1e308", "m3", "2"}),
                            row({"", "Täyttö", "", "620", "m3", "10"}), row({"", "TIETYÖT SILTAPAIKALLA"})});
    dialogs.clear();

    w.f3->Command1->click();
    EXPECT_EQ(w.f3->Text1[5]->text(), QStringLiteral("#####"));
    for (documents::TextBox* t : w.f3->Text1)
        if (t)
            EXPECT_FALSE(t->text().contains(QStringLiteral("inf")) ||
                         t->text().contains(QStringLiteral("∞")));
    ASSERT_EQ(dialogs.messages().size(), 1u);
    EXPECT_TRUE(dialogs.lastText().contains(QStringLiteral("Summa ei ole äärellinen: rivi 2")))
        << dialogs.lastText().toStdString();

    main->appState().settings.SaveSettingsOnExit = false;
    for (auto* win : main->projectWindows())
        main->FormUntouch(win);
}
