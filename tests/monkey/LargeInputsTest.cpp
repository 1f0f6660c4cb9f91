// Large values in the windows: a list cell of 64 KB edited in its cell, long single-line fields
// and drop-down texts, a document of a megabyte, a picture of 10000 x 10000 pixels; each kept
// whole through the windows, a save and an open, or refused and reduced with a message.
#include "documents/Controls.h"
#include "documents/Form1.h"
#include "documents/Form2.h"
#include "lists/ListModel.h"
#include "lists/ui/ListEditor.h"
#include "lists/ui/ListView.h"
#include "platform/TextFile.h"
#include "platform/ui/PictureBox.h"
#include "shell/Captions.h"
#include "shell/MainWindowFixture.h"
#include "shell/ProjectFiles.h"

#include <QImage>
#include <QLineEdit>
#include <QTextCursor>
#include <QTextEdit>

namespace {

using shell::ProjectWindows;

class LargeInputs : public SampleProjectFixture {
protected:
    // The sample project, open in the windows.
    ProjectWindows sample() {
        openSample();
        return main->ParseFormIndeces();
    }
    QString projectOf(const ProjectWindows& p) { return shell::ParseFileName(p.f1->caption()).project(); }
    // Saves the project and opens the file in a new project's windows.
    ProjectWindows saveAndOpen(const QString& project) {
        const QString file = dir.filePath(QStringLiteral("suuri.sl"));
        EXPECT_TRUE(shell::WriteSlFile(*main, project, file, false));
        main->NewProject();
        const QString fresh = shell::ParseFileName(main->ActiveCaption()).project();
        EXPECT_TRUE(shell::ReadSlFile(*main, fresh, file, false));
        return main->projectWindowsOf(file);
    }
};

// Compares long texts by their lengths and then whole, so that a failure does not print them.
#define EXPECT_SAME_TEXT(actual, expected)                                                                   \
    do {                                                                                                     \
        const QString a_ = (actual), e_ = (expected);                                                        \
        EXPECT_EQ(a_.size(), e_.size()) << #actual;                                                          \
        EXPECT_TRUE(a_ == e_) << #actual;                                                                    \
    } while (false)

// The longest text a user meets in a cell: a pasted page, 64 KB.
QString longText(int n) {
    QString text;
    text.reserve(n);
    const QString word = QStringLiteral("Betonointi ja jälkihoito ");
    while (text.size() < n)
        text += word;
    text.truncate(n);
    return text;
}

TEST_F(LargeInputs, ACellOf64KiloBytesIsEditedInItsCellWithoutLosingAnything) {
    const ProjectWindows p = sample();
    main->activateWindow(p.f2);
    lists::ListView* view = p.f2->ListView1[0];
    const QString text = longText(64 * 1024);
    view->list()->setCell(2, 2, text);

    lists::ListEditor* editor = lists::ListEditor::of(view);
    editor->setEditCell(2, 2);
    ASSERT_TRUE(editor->EditListView(1));
    // The edit box holds the whole text, and ending the edit leaves the cell as it was.
    EXPECT_EQ(editor->editBox()->text().size(), text.size());
    QTest::keyClick(editor->editBox(), Qt::Key_End);
    QTest::keyClicks(editor->editBox(), QStringLiteral("!"));
    editor->PutToListView();
    EXPECT_SAME_TEXT(view->list()->cell(2, 2), text + QStringLiteral("!"));

    // Single-line fields and drop-down texts take as much.
    p.f1->Text1[0]->setText(text);
    EXPECT_SAME_TEXT(p.f1->Text1[0]->text(), text);
    p.f1->Combo1[9]->setText(text);
    EXPECT_SAME_TEXT(p.f1->Combo1[9]->text(), text);

    const ProjectWindows back = saveAndOpen(projectOf(p));
    ASSERT_TRUE(back.complete());
    EXPECT_SAME_TEXT(back.f2->list(0)->cell(2, 2), text + QStringLiteral("!"));
    EXPECT_SAME_TEXT(back.f1->Text1[0]->text(), text);
    EXPECT_SAME_TEXT(back.f1->Combo1[9]->text(), text);
    EXPECT_TRUE(dialogs.messages().empty()) << dialogs.lastText().toStdString();
}

TEST_F(LargeInputs, ADocumentOfAMegabyteIsSavedAndOpenedWhole) {
    const ProjectWindows p = sample();
    // A megabyte of paragraphs, as a long contract text pasted in.
    QString text;
    for (int i = 0; text.size() < 1024 * 1024; ++i)
        text += QStringLiteral("%1. ").arg(i) + longText(200) + QLatin1Char('\n');
    QTextCursor(p.f2->RichTextBox1[0]->document()).insertText(text);
    const QString shown = p.f2->RichTextBox1[0]->toPlainText();
    ASSERT_GE(shown.size(), 1024 * 1024);

    const ProjectWindows back = saveAndOpen(projectOf(p));
    ASSERT_TRUE(back.complete());
    EXPECT_SAME_TEXT(back.f2->RichTextBox1[0]->toPlainText(), shown);
    EXPECT_TRUE(dialogs.messages().empty()) << dialogs.lastText().toStdString();
}

TEST_F(LargeInputs, APictureOf10000By10000PixelsIsReducedToWhatAPageNeeds) {
    const ProjectWindows p = sample();
    QImage big(10000, 10000, QImage::Format_RGB32);
    big.fill(Qt::darkGreen);
    const QString file = dir.filePath(QStringLiteral("ilmakuva.png"));
    ASSERT_TRUE(big.save(file));
    big = QImage();
    // Dropped on the characteristics card's side view slot of the basic data window.
    main->filesDropped(p.f1, p.f1->Image1[0], {file});
    ASSERT_FALSE(p.f1->Image1[0]->picture().isNull()) << dialogs.lastText().toStdString();
    EXPECT_EQ(p.f1->Image1[0]->picture().sizeHint(), QSize(3600, 3600));
    const ProjectWindows back = saveAndOpen(projectOf(p));
    ASSERT_TRUE(back.complete());
    EXPECT_EQ(back.f1->Image1[0]->picture().sizeHint(), QSize(3600, 3600));
}

} // namespace
