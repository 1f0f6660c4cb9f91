#include "MainWindowFixture.h"
#include "common/ScriptedDialogs.h"
#include "common/TestSupport.h"
#include "documents/Controls.h"
#include "documents/Form1.h"
#include "documents/Form2.h"
#include "lists/ListModel.h"
#include "lists/ui/ListView.h"
#include "platform/SettingsStore.h"
#include "shell/MDIForm1.h"
#include "shell/Modes.h"

#include <QAction>
#include <QApplication>
#include <QLabel>
#include <QMenu>
#include <QTextCursor>
#include <QTextEdit>
#include <gtest/gtest.h>

using namespace shell;
using testing_support::ScriptedDialogs;

namespace {

class ModesTest : public MainWindowFixture {
protected:
    void SetUp() override {
        MainWindowFixture::SetUp();
        main->NewProject();
    }
    std::vector<documents::Form1*> basicWindows() {
        std::vector<documents::Form1*> out;
        for (auto* w : main->projectWindows())
            if (auto* f = qobject_cast<documents::Form1*>(w)) out.push_back(f);
        return out;
    }
};

bool greyed(QWidget* w) {
    return w->palette().color(QPalette::Base) == QApplication::palette().color(QPalette::Button);
}

} // namespace

TEST_F(ModesTest, ContractorModeGreysTheDesignersFieldsInEveryOpenBasicDataWindow) {
    ASSERT_EQ(basicWindows().size(), 2u);
    for (documents::Form1* f : basicWindows()) {
        EXPECT_FALSE(f->Combo1[3]->locked());
        EXPECT_FALSE(f->list(1)->readOnly());
    }
    main->Submenu10Click(1);
    EXPECT_TRUE(main->Submenu10[1]->isChecked());
    EXPECT_FALSE(main->Submenu10[2]->isChecked());
    for (documents::Form1* f : basicWindows()) {
        for (int i : {3, 4, 5, 6, 7, 8, 10, 11, 12, 13}) {
            EXPECT_TRUE(f->Combo1[i]->locked()) << i;
            EXPECT_TRUE(greyed(f->Combo1[i])) << i;
        }
        for (int i : {14, 15, 16, 17})
            EXPECT_FALSE(f->Combo1[i]->locked()) << i;
        EXPECT_FALSE(f->Text1[11]->locked());
        EXPECT_TRUE(f->list(1)->readOnly());
        EXPECT_EQ(f->list(1)->tag(), QStringLiteral("No edit"));
        EXPECT_FALSE(f->list(2)->readOnly());
        EXPECT_EQ(f->list(2)->tag(), QStringLiteral("Muutokset"));
        // Fields that no mode restricts stay editable.
        EXPECT_FALSE(f->Text1[0]->locked());
    }
    // The designer: the contractor's fields are read-only.
    main->Submenu10Click(0);
    for (documents::Form1* f : basicWindows()) {
        EXPECT_FALSE(f->Combo1[3]->locked());
        for (int i : {14, 15, 16, 17})
            EXPECT_TRUE(f->Combo1[i]->locked()) << i;
        EXPECT_TRUE(f->Text1[11]->locked());
        EXPECT_FALSE(f->list(1)->readOnly());
        EXPECT_TRUE(f->list(2)->readOnly());
    }
}

TEST_F(ModesTest, ChoosingTheCheckedModeAgainChangesNothing) {
    main->Submenu10Click(1);
    documents::Form1* f = basicWindows().front();
    f->Combo1[3]->setLocked(false); // a change the mode rules would undo
    main->Submenu10Click(1);
    EXPECT_EQ(main->appState().ProgramMode, 2);
    EXPECT_TRUE(main->Submenu10[1]->isChecked());
    EXPECT_FALSE(f->Combo1[3]->locked());
}

TEST_F(ModesTest, ContractorMayEditTheQualityPlanButNotTheOtherDocuments) {
    main->Submenu10Click(1);
    const ProjectWindows w = main->ParseFormIndeces();
    ASSERT_TRUE(w.f2);
    EXPECT_TRUE(w.f2->list(0)->readOnly());
    EXPECT_EQ(w.f2->shownDocument(), 0);
    EXPECT_TRUE(w.f2->RichTextBox1[0]->isReadOnly());
    main->Submenu30Click(2);
    EXPECT_EQ(w.f2->shownDocument(), 2);
    EXPECT_EQ(w.f2->Label1[2]->text(), QStringLiteral("Urakan laatusuunnitelma"));
    EXPECT_FALSE(w.f2->RichTextBox1[0]->isReadOnly());
    // The quality plan of a new project starts from the template.
    EXPECT_TRUE(w.f2->RichTextBox1[0]->toPlainText().contains(QStringLiteral("[urakan nimi]")));
    main->Submenu10Click(0);
    EXPECT_TRUE(w.f2->RichTextBox1[0]->isReadOnly());
    EXPECT_FALSE(w.f2->list(0)->readOnly());
    EXPECT_EQ(w.f2->list(0)->tag(), QStringLiteral("Määräluettelo ja kustannusarvio"));
}

TEST_F(ModesTest, SwitchingTheShownDocumentKeepsTextAndFormattingInEveryProject) {
    std::vector<documents::Form2*> details;
    for (auto* w : main->projectWindows())
        if (auto* f = qobject_cast<documents::Form2*>(w)) details.push_back(f);
    ASSERT_EQ(details.size(), 2u);
    for (std::size_t i = 0; i < details.size(); ++i) {
        QTextCursor c(details[i]->RichTextBox1[0]->document());
        QTextCharFormat italic;
        italic.setFontItalic(true);
        c.insertText(QStringLiteral("Selostus %1").arg(i), italic);
    }
    for (auto* w : main->projectWindows())
        main->FormUntouch(w);
    main->Submenu30Click(1);
    for (documents::Form2* f : details) {
        EXPECT_EQ(f->shownDocument(), 1);
        EXPECT_TRUE(f->RichTextBox1[0]->toPlainText().isEmpty());
    }
    main->Submenu30Click(0);
    for (std::size_t i = 0; i < details.size(); ++i) {
        EXPECT_EQ(details[i]->RichTextBox1[0]->toPlainText(), QStringLiteral("Selostus %1").arg(i));
        QTextCursor c(details[i]->RichTextBox1[0]->document());
        c.setPosition(2);
        EXPECT_TRUE(c.charFormat().fontItalic());
    }
    // Switching documents is not a change of the projects.
    for (auto* w : main->projectWindows())
        EXPECT_TRUE(w->caption().endsWith(QStringLiteral(" Ei muutettu")));
}

TEST_F(ModesTest, RefusalsNameTheOtherParties) {
    ShowDeny(1);
    EXPECT_EQ(dialogs.lastText(),
              QStringLiteral("Toiminto on sallittu ainoastaan\r\nurakoitsijalle ja tilaajalle"));
    ShowDeny(2);
    EXPECT_EQ(dialogs.lastText(),
              QStringLiteral("Toiminto on sallittu ainoastaan\r\nsuunnitelijalle ja tilaajalle"));
    dialogs.clear();
    ShowDeny(3);
    EXPECT_TRUE(dialogs.messages().empty());
}
