// The text editor: what it opens in each mode, the text styles, the files, and writing back.
#include "FormsTestHost.h"
#include "RowCardLists.h"
#include "common/ScriptedDialogs.h"
#include "documents/Controls.h"
#include "documents/Form2.h"
#include "documents/Form5.h"
#include "documents/Form9.h"
#include "lists/ui/ListView.h"
#include "platform/Cp1252.h"
#include "platform/Rtf.h"
#include "platform/TextFile.h"

#include <QAction>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <QTextCursor>
#include <QTextEdit>
#include <functional>
#include <memory>
#include <optional>
#include <gtest/gtest.h>

using namespace documents;

namespace {

const QString kLockedMessage = QStringLiteral("Olet muokkaamassa suojattua kenttää tekstieditorissa.\r\n"
                                              "Tietojen tuonti takaisin tekstieditorista on estetty.");

// Selects characters [from, to) of the editor; from == to puts the caret there.
void select(QTextEdit* box, int from, int to) {
    QTextCursor c(box->document());
    c.setPosition(from);
    c.setPosition(to, QTextCursor::KeepAnchor);
    box->setTextCursor(c);
}

// The format of character `position`.
QTextCharFormat formatAt(QTextEdit* box, int position) {
    QTextCursor c(box->document());
    c.setPosition(position + 1);
    return c.charFormat();
}

class Form9Test : public ::testing::Test {
protected:
    // An editor in `mode` on a long field of the row editor holding `text`.
    Form9& onField(int mode, const QString& text = {}) {
        field.setText(text);
        fieldEditor = std::make_unique<Form9>(host, EditorSource{mode, nullptr, &field, {}});
        return *fieldEditor;
    }
    testing_support::ScriptedDialogs dialogs;
    testing_support::FormsTestHost host;
    TextBox field{true};
    std::unique_ptr<Form9> fieldEditor;
};

} // namespace

TEST_F(Form9Test, TheCustomStyleTakesTheFontAndColourOrNothing) {
    Form9& editor = onField(4);
    QTextEdit* box = editor.RichTextBox1;
    QFont serif("Liberation Serif", 14);
    serif.setStrikeOut(true);
    struct Case {
        std::optional<QFont> font;
        std::optional<QColor> color;
    };
    // Chosen, the font dialog cancelled, the colour dialog cancelled after the font was chosen.
    const Case cases[] = {
        {serif, QColor(200, 0, 0)}, {std::nullopt, QColor(200, 0, 0)}, {serif, std::nullopt}};
    for (const Case& c : cases) {
        const bool applied = c.font && c.color;
        SCOPED_TRACE(&c - cases);
        box->document()->setPlainText("Otsikko ja teksti");
        select(box, 8, 10);
        dialogs.nextFont = c.font;
        dialogs.nextColor = c.color;
        editor.StyleMenuClick(8);
        const QTextCharFormat f = formatAt(box, 8);
        EXPECT_EQ(f.fontFamilies().toStringList() == QStringList{"Liberation Serif"}, applied);
        EXPECT_EQ(f.fontPointSize() == 14, applied);
        EXPECT_EQ(f.fontStrikeOut(), applied);
        EXPECT_EQ(f.foreground().color() == QColor(200, 0, 0), applied);
    }
}

TEST_F(Form9Test, TheShownDocumentIsWrittenBackAsRichText) {
    Form2 detailed(host);
    QTextEdit* shown = detailed.RichTextBox1[0];
    shown->setPlainText("Yleistä\nSilta on laattasilta.");
    host.changed.clear();
    select(shown, 8, 8);

    Form9 editor(host, {1, &detailed, nullptr, {}});
    EXPECT_EQ(editor.RichTextBox1->toPlainText(), "Yleistä\nSilta on laattasilta.");
    EXPECT_EQ(editor.RichTextBox1->textCursor().position(), 8);
    EXPECT_FALSE(editor.isChanged());

    select(editor.RichTextBox1, 0, 7);
    editor.StyleMenuClick(0);
    EXPECT_TRUE(editor.isChanged());
    editor.ToolbarClick("Update");
    EXPECT_FALSE(editor.isChanged());
    EXPECT_EQ(shown->toPlainText(), "Yleistä\nSilta on laattasilta.");
    EXPECT_EQ(formatAt(shown, 1).fontPointSize(), 16);
    EXPECT_EQ(host.changed, std::vector<QWidget*>{&detailed});
}

TEST_F(Form9Test, ALockedDocumentOpensForReadingOnly) {
    Form2 detailed(host);
    detailed.RichTextBox1[0]->setPlainText("Suojattu");
    detailed.RichTextBox1[0]->setReadOnly(true);
    Form9 editor(host, {1, &detailed, nullptr, {}});
    EXPECT_EQ(dialogs.lastText(), kLockedMessage);
    EXPECT_FALSE(editor.toolbarButtons.at("Update")->isEnabled());
    EXPECT_TRUE(editor.RichTextBox1->isReadOnly());
    EXPECT_TRUE(editor.toolbarButtons.at("Copy")->isEnabled());
    EXPECT_FALSE(editor.WriteBack());

    // A locked field of the row editor: the same.
    field.setReadOnlyLook(true);
    EXPECT_FALSE(onField(3).WriteBack());
    EXPECT_EQ(dialogs.texts(), QStringList(2, kLockedMessage));
}

TEST_F(Form9Test, ARowEditorFieldGetsPlainTextBack) {
    Form9& editor = onField(7, "Rivi 1\r\nRivi 2");
    EXPECT_EQ(editor.RichTextBox1->toPlainText(), "Rivi 1\nRivi 2");
    // Without a project the headings cannot be listed.
    EXPECT_FALSE(editor.SubMenu1[7]->isEnabled());

    editor.RichTextBox1->setPlainText("Uusi 1\nUusi 2");
    select(editor.RichTextBox1, 0, 4);
    editor.StyleMenuClick(2);
    editor.FileMenuClick(0);
    EXPECT_EQ(field.text(), "Uusi 1\r\nUusi 2");
}

TEST_F(Form9Test, CancelAtTheClosingQuestionKeepsTheEditorOpen) {
    Form9& editor = onField(7, "Alku");
    editor.show();
    QTextCursor typing(editor.RichTextBox1->document());
    typing.select(QTextCursor::Document);
    typing.insertText("Muutettu");
    // The close box, "&Sulje" and Esc all ask; Cancel keeps the editor and its text.
    const std::function<void()> closings[] = {[&] { editor.close(); }, [&] { editor.FileMenuClick(5); },
                                              [&] { QTest::keyClick(&editor, Qt::Key_Escape); }};
    for (const auto& close : closings) {
        SCOPED_TRACE(&close - closings);
        dialogs.answer(platform::MsgAnswer::Cancel);
        close();
        EXPECT_TRUE(editor.isVisible());
        EXPECT_EQ(editor.RichTextBox1->toPlainText(), "Muutettu");
        EXPECT_EQ(field.text(), "Alku");
    }
    dialogs.answer(platform::MsgAnswer::Yes);
    editor.close();
    EXPECT_FALSE(editor.isVisible());
    EXPECT_EQ(field.text(), "Muutettu");
    EXPECT_TRUE(dialogs.allAnswersUsed());
}

TEST_F(Form9Test, TheQualityPlanTemplateIsInsertedAtTheCaret) {
    QTemporaryDir dir;
    host.state.QualityPlanTemplate = dir.filePath("Urakan laatusuunnitelma.txt");
    ASSERT_TRUE(platform::writeTextLines(host.state.QualityPlanTemplate, {"1 Urakan tiedot", "2 Työmaa"}));
    Form2 detailed(host);
    detailed.showDocument(2);
    QTextEdit* plan = detailed.RichTextBox1[0];
    plan->setPlainText("Alku. Loppu.");
    select(plan, 6, 6);

    Form9 editor(host, {8, &detailed, nullptr, {}});
    EXPECT_EQ(editor.RichTextBox1->toPlainText(), "1 Urakan tiedot\n2 Työmaa");
    select(editor.RichTextBox1, 16, 24);
    EXPECT_TRUE(editor.WriteBack());
    EXPECT_EQ(plan->toPlainText(), "Alku. 2 TyömaaLoppu.");
    EXPECT_EQ(plan->textCursor().position(), 14);
    // Nothing selected: the whole template.
    QTextCursor none = editor.RichTextBox1->textCursor();
    none.clearSelection();
    editor.RichTextBox1->setTextCursor(none);
    EXPECT_TRUE(editor.WriteBack());
    EXPECT_EQ(plan->toPlainText(), "Alku. 2 Työmaa1 Urakan tiedot\n2 TyömaaLoppu.");

    host.state.QualityPlanTemplate = dir.filePath("puuttuu.txt");
    Form9 missing(host, {8, &detailed, nullptr, {}});
    EXPECT_EQ(dialogs.lastText(), "Tiedostoa: " + host.state.QualityPlanTemplate + " ei löydy.");
}

TEST_F(Form9Test, TheRequirementSummaryIsShownReadOnly) {
    Form2 detailed(host);
    row_card_test::inspectionList(*detailed.list(1));
    Form9 editor(host, {100, &detailed, nullptr, "/projektit/Kirkkojoen silta.sl"});
    const QString text = editor.RichTextBox1->toPlainText();
    EXPECT_TRUE(text.contains("TAMRIK 2006 - /projektit/Kirkkojoen silta.sl"));
    EXPECT_TRUE(text.contains("LAATUVAATIMUSTEN YHTEENVETO"));
    EXPECT_TRUE(editor.RichTextBox1->isReadOnly());
    EXPECT_TRUE(editor.SubMenu0[2]->isEnabled()); // it can still be saved as a file
}

TEST_F(Form9Test, RichTextIsExportedAndImportedWithItsStyles) {
    QTemporaryDir dir;
    Form9& editor = onField(2, "Teksti");
    select(editor.RichTextBox1, 0, 6);
    editor.StyleMenuClick(2);

    const QString rtf = dir.filePath("teksti.rtf");
    dialogs.chooseFile(rtf);
    editor.FileMenuClick(2);
    QTextDocument back;
    ASSERT_TRUE(platform::ReadRtfFile(back, rtf));
    EXPECT_EQ(back.toPlainText(), "Teksti");

    editor.RichTextBox1->setPlainText("muuta");
    dialogs.chooseFile(rtf);
    editor.FileMenuClick(1);
    EXPECT_EQ(editor.RichTextBox1->toPlainText(), "Teksti");
    EXPECT_EQ(formatAt(editor.RichTextBox1, 1).fontWeight(), QFont::Bold);
    EXPECT_TRUE(editor.isChanged());

    // A cancelled dialog leaves the editor as it is.
    dialogs.chooseFile(QString());
    editor.FileMenuClick(1);
    EXPECT_EQ(editor.RichTextBox1->toPlainText(), "Teksti");
    EXPECT_TRUE(dialogs.allAnswersUsed());
}

TEST_F(Form9Test, AnInsertedTextFileInTheCodePageReplacesTheSelection) {
    QTemporaryDir dir;
    Form9& editor = onField(2, "Teksti");
    const QString txt = dir.filePath("lisays.txt");
    QFile f(txt);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write(platform::toCp1252("Täyttö\r\nrivi"));
    f.close();
    select(editor.RichTextBox1, 0, 1);
    dialogs.chooseFile(txt);
    editor.FileMenuClick(3);
    EXPECT_EQ(editor.RichTextBox1->toPlainText(), "Täyttö\nrivieksti");
}

TEST_F(Form9Test, BothEditorsHaveTheUserGuideOnF1AtTheirOwnTopic) {
    Form5 rowEditor(host);
    for (QWidget* window : {static_cast<QWidget*>(&rowEditor), static_cast<QWidget*>(&onField(7))}) {
        QAction* guide = nullptr;
        for (QAction* a : window->findChildren<QAction*>())
            if (a->text() == "Käyttäjän opas") guide = a;
        ASSERT_NE(guide, nullptr);
        EXPECT_EQ(guide->shortcut(), QKeySequence(Qt::Key_F1));
        guide->trigger();
    }
    EXPECT_EQ(host.helpTopics, (std::vector<int>{250, 300}));
}
