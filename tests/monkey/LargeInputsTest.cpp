// Large values in the windows: a list cell of 64 KB edited in its cell, long single-line fields
// and drop-down texts, a document of a megabyte, a picture of 10000 x 10000 pixels (in its slot,
// the image viewer and the printed card); each kept whole through the windows, a save and an
// open, or refused and reduced with a message. A print of a 100000-row list is cancelled from
// its progress window.
#include "documents/Controls.h"
#include "documents/Form1.h"
#include "documents/Form2.h"
#include "documents/Form3.h"
#include "lists/ListModel.h"
#include "lists/ui/BaseListWindow.h"
#include "lists/ui/ListEditor.h"
#include "lists/ui/ListView.h"
#include "platform/TextFile.h"
#include "platform/ui/PictureBox.h"
#include "shell/Captions.h"
#include "shell/MainWindowFixture.h"
#include "shell/ProjectFiles.h"

#include "peripherals/Form13.h"
#include "print/PdfSupport.h"
#include "print/ui/Form11.h"

#include <QCheckBox>
#include <QDir>
#include <QImage>
#include <QLineEdit>
#include <QProgressDialog>
#include <QPushButton>
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
    EXPECT_SAME_TEXT(view->list()->cell(2, 2).toString(), text + QStringLiteral("!"));

    // Single-line fields and drop-down texts take as much.
    p.f1->Text1[0]->setText(text);
    EXPECT_SAME_TEXT(p.f1->Text1[0]->text(), text);
    p.f1->Combo1[9]->setText(text);
    EXPECT_SAME_TEXT(p.f1->Combo1[9]->text(), text);

    const ProjectWindows back = saveAndOpen(projectOf(p));
    ASSERT_TRUE(back.complete());
    EXPECT_SAME_TEXT(back.f2->list(0)->cell(2, 2).toString(), text + QStringLiteral("!"));
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

// Leaves only `document` chosen in the print selection, clicking the boxes as the user does so
// that the run is paginated again.
void chooseOnly(print::ui::Form11& selection, int document) {
    for (int d = 0; d < static_cast<int>(selection.Check1.size()); ++d)
        if (selection.Check1[d]->isChecked() != (d == document)) selection.Check1[d]->click();
}

// A PNG of 60000 x 20000 pixels without its pixels: its header is all a reader looks at before
// it decodes, and the size is far beyond what the program decodes.
QByteArray hugePngHeader() {
    auto bigEndian = [](quint32 v) {
        const char b[4] = {char(v >> 24), char(v >> 16), char(v >> 8), char(v)};
        return QByteArray(b, 4);
    };
    auto chunk = [&](const QByteArray& typeAndData) {
        quint32 crc = 0xFFFFFFFF;
        for (const char c : typeAndData) {
            crc ^= static_cast<quint8>(c);
            for (int k = 0; k < 8; ++k)
                crc = (crc >> 1) ^ (0xEDB88320u & (0u - (crc & 1u)));
        }
        return bigEndian(typeAndData.size() - 4) + typeAndData + bigEndian(~crc);
    };
    return QByteArray("\x89PNG\r\n\x1a\n") +
           chunk("IHDR" + bigEndian(60000) + bigEndian(20000) + QByteArray("\x08\x02\x00\x00\x00", 5)) +
           chunk("IDAT") + chunk("IEND");
}

// Pixels of a picture that are about dark green, the colour of the test's large picture.
int darkGreenPixels(const QImage& image) {
    int n = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) {
            const QColor c = image.pixelColor(x, y);
            n += c.red() < 40 && c.blue() < 40 && c.green() > 100 && c.green() < 160;
        }
    return n;
}

TEST_F(LargeInputs, ALargePictureIsReducedShownAndPrintedAndAHugeOneRefused) {
    const ProjectWindows p = sample();
    QImage big(10000, 10000, QImage::Format_RGB32);
    big.fill(Qt::darkGreen);
    const QString file = dir.filePath(QStringLiteral("ilmakuva.png"));
    ASSERT_TRUE(big.save(file));
    big = QImage();
    const QString huge = dir.filePath(QStringLiteral("panoraama.png"));
    ASSERT_TRUE(platform::writeFileAtomically(huge, hugePngHeader()));
    const QString tooLarge = QString::fromUtf8("Kuva on liian suuri: 60000 × 20000 pikseliä.");

    // Dropped on the characteristics card's side view slot of the basic data window.
    main->filesDropped(p.f1, p.f1->Image1[0], {file});
    ASSERT_FALSE(p.f1->Image1[0]->picture().isNull()) << dialogs.lastText().toStdString();
    EXPECT_EQ(p.f1->Image1[0]->picture().sizeHint(), QSize(3600, 3600));
    // The user is told that the picture was reduced, and to what.
    const QString reduced = QString::fromUtf8(
        "Kuva on suuri (10000 × 10000 pikseliä), ja se on pienennetty kokoon 3600 × 3600 pikseliä.");
    EXPECT_EQ(dialogs.lastText(), reduced);
    // One beyond what the reader decodes is refused with its size, and the slot keeps its picture.
    const QByteArray crossSection = p.f1->Image1[1]->picture().bytes();
    main->filesDropped(p.f1, p.f1->Image1[1], {huge});
    EXPECT_EQ(dialogs.lastText(),
              QStringLiteral("Kuvaa ") + huge + QStringLiteral(" ei voi lukea:\r\n") + tooLarge);
    EXPECT_EQ(p.f1->Image1[1]->picture().bytes(), crossSection);

    // The card's side view button shows it in the image viewer, which refuses the huge one too
    // and keeps what it shows.
    bool viewerSeen = false;
    whenModal([&](QWidget* modal) {
        auto* viewer = qobject_cast<peripherals::Form13*>(modal);
        ASSERT_NE(viewer, nullptr);
        viewerSeen = true;
        EXPECT_EQ(viewer->Image1->picture().sizeHint(), QSize(3600, 3600));
        viewer->resize(400, 300);
        EXPECT_GT(darkGreenPixels(viewer->Image1->grab().toImage()), 1000);
        dialogs.chooseFile(huge);
        viewer->OpenPictureFile();
        EXPECT_EQ(dialogs.lastText(), tooLarge);
        EXPECT_EQ(viewer->Image1->picture().sizeHint(), QSize(3600, 3600));
        // Opened in the viewer, the large one is reduced with the same message.
        dialogs.chooseFile(file);
        viewer->OpenPictureFile();
        EXPECT_EQ(dialogs.lastText(), reduced);
        EXPECT_EQ(viewer->Image1->picture().sizeHint(), QSize(3600, 3600));
        viewer->UpdateAndClose();
    });
    p.f3->Command2[0]->click();
    EXPECT_TRUE(viewerSeen);
    EXPECT_EQ(p.f1->Image1[0]->picture().sizeHint(), QSize(3600, 3600));

    // Printed on the characteristics card from the print dialog.
    const QString pdf = dir.filePath(QStringLiteral("kortti.pdf"));
    whenModal([&](QWidget* modal) {
        auto* selection = qobject_cast<print::ui::Form11*>(modal);
        ASSERT_NE(selection, nullptr);
        chooseOnly(*selection, print::doc::Card);
        dialogs.chooseFile(pdf);
        selection->PdfButton->click();
    });
    main->FileMenuActions(7);
    ASSERT_TRUE(QFileInfo::exists(pdf));
    const QString page = dir.filePath(QStringLiteral("kortti"));
    print_test::runProgram(QStringLiteral("pdftoppm"),
                           {QStringLiteral("-r"), QStringLiteral("20"), QStringLiteral("-png"),
                            QStringLiteral("-singlefile"), pdf, page});
    const QImage printed(page + QStringLiteral(".png"));
    ASSERT_FALSE(printed.isNull());
    EXPECT_GT(darkGreenPixels(printed), 100);

    const ProjectWindows back = saveAndOpen(projectOf(p));
    ASSERT_TRUE(back.complete());
    EXPECT_EQ(back.f1->Image1[0]->picture().sizeHint(), QSize(3600, 3600));
}

// Spreadsheets beyond what the import reads are refused with the reader's reason, through
// "&Avaa..." and "T&uo..." of the base list windows alike, and the window keeps its list and
// its file: nothing is half read into it.
TEST_F(LargeInputs, ASpreadsheetBeyondTheReadersLimitsIsRefusedAndTheListStaysAsItWas) {
    const QString data = testing_support::sourceDir() + QStringLiteral("/tests/lists/data/");
    // A workbook larger than the import reads at all: a compound file's signature, then nothing
    // (sparse, so it takes no disk).
    const QString big = dir.filePath(QStringLiteral("suuri.xls"));
    {
        QFile file(big);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("\xd0\xcf\x11\xe0\xa1\xb1\x1a\xe1", 8);
        ASSERT_TRUE(file.resize((qint64(256) << 20) + 1));
    }
    const std::pair<QString, QString> refused[] = {
        {big, QStringLiteral("tiedosto on liian suuri (yli 256 Mt)")},
        {data + QStringLiteral("damaged/pitka-teksti.xlsx"),
         QStringLiteral("solun teksti on yli 1048576 tavua pitkä")},
        {data + QStringLiteral("damaged/osa-liian-suuri.xlsx"),
         QStringLiteral("osan _rels/.rels koko on mahdoton")},
    };
    for (lists::BaseListWindow* window : {main->Form6, main->Form7}) {
        const std::vector<lists::Row> rows = window->list()->allRows();
        const QString caption = window->windowTitle();
        for (const auto& [file, reason] : refused) {
            SCOPED_TRACE(file.toStdString());
            for (const bool open : {true, false}) {
                dialogs.chooseFile(file);
                if (open)
                    window->SubMenu0[0]->trigger(); // "&Avaa..."
                else
                    window->ListViewFileMenuActions(4); // "T&uo..."
                EXPECT_EQ(dialogs.lastText(), QStringLiteral("Taulukkotiedostoa: ") + file +
                                                  QStringLiteral(" ei voitu lukea: ") + reason +
                                                  QLatin1Char('.'));
                ASSERT_EQ(window->list()->rows(), static_cast<int>(rows.size()));
                for (int r = 1; r <= window->list()->rows(); ++r)
                    ASSERT_EQ(window->list()->row(r).cells, rows[r - 1].cells) << r;
                EXPECT_EQ(window->windowTitle(), caption);
            }
        }
    }
}

// The project's quantity list made `n` rows long by repeating its own rows, as a large
// project of many bridges copied into one would be.
void repeatRows(lists::ListModel& list, int n) {
    std::vector<lists::Row> rows;
    rows.reserve(n);
    const int own = list.rows();
    for (int r = 0; r < n; ++r) {
        lists::Row row = list.row(r % own + 1);
        row.cells.set(row.cells.size() - 1, lists::formatRowNumber(r + 1));
        row.selected = false;
        rows.push_back(std::move(row));
    }
    list.reset(list.columns(), std::move(rows));
}

// Cancels the print run's progress window once it shows the pages being printed, as the user
// would with its button; remembers what it saw.
struct ProgressCanceller {
    ProgressCanceller() {
        QObject::connect(&timer, &QTimer::timeout, [this] {
            for (QWidget* w : QApplication::topLevelWidgets()) {
                auto* progress = qobject_cast<QProgressDialog*>(w);
                if (!progress || !progress->isVisible() ||
                    !progress->labelText().startsWith(QStringLiteral("Tulostaa sivua")))
                    continue;
                label = progress->labelText();
                value = progress->value();
                if (auto* button = progress->findChild<QPushButton*>()) button->click();
                timer.stop();
            }
        });
        timer.start(20);
    }
    QTimer timer;
    QString label;
    int value = -1;
};

TEST_F(LargeInputs, APrintOfALargeProjectShowsItsProgressAndCancelsWithoutAFile) {
    const ProjectWindows p = sample();
    main->activateWindow(p.f2);
    repeatRows(*p.f2->list(0), 100000);
    const QString folder = dir.filePath(QStringLiteral("pdf"));
    ASSERT_TRUE(QDir().mkpath(folder));
    const QString pdf = folder + QStringLiteral("/Esimerkkisilta.pdf");
    const QString caption = p.f2->windowTitle();

    bool selectionSeen = false;
    std::unique_ptr<ProgressCanceller> canceller;
    whenModal([&](QWidget* modal) {
        auto* selection = qobject_cast<print::ui::Form11*>(modal);
        ASSERT_NE(selection, nullptr);
        selectionSeen = true;
        chooseOnly(*selection, print::doc::Quantities);
        dialogs.chooseFile(pdf);
        canceller = std::make_unique<ProgressCanceller>();
        selection->PdfButton->click();
        // Cancelled: no file, not even a half-written one beside it, and the dialog stays open
        // with the pointer given back.
        EXPECT_TRUE(canceller->label.startsWith(QStringLiteral("Tulostaa sivua")))
            << canceller->label.toStdString();
        EXPECT_LT(canceller->value, 1000);
        EXPECT_TRUE(QDir(folder).entryList(QDir::Files | QDir::Hidden).isEmpty())
            << QDir(folder).entryList(QDir::Files | QDir::Hidden).join(QLatin1Char(' ')).toStdString();
        EXPECT_TRUE(selection->isVisible());
        EXPECT_EQ(QApplication::overrideCursor(), nullptr);

        // The same dialog prints again: a short document goes through whole.
        chooseOnly(*selection, print::doc::PlanDescription);
        dialogs.chooseFile(pdf);
        selection->PdfButton->click();
        EXPECT_TRUE(QFileInfo(pdf).size() > 0);
    });
    main->FileMenuActions(7);
    EXPECT_TRUE(selectionSeen);
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
    // The windows take input again and the project is as it was: unchanged and whole.
    EXPECT_TRUE(main->isEnabled());
    EXPECT_EQ(p.f2->windowTitle(), caption);
    EXPECT_EQ(p.f2->list(0)->rows(), 100000);
    EXPECT_TRUE(dialogs.messages().empty()) << dialogs.lastText().toStdString();
}

} // namespace
