// Files dragged from the file manager: each kind dropped where a user would drop it, as the
// drop events with the file manager's data (file URLs) reach the windows.
#include "MainWindowFixture.h"
#include "documents/Controls.h"
#include "documents/Form1.h"
#include "documents/Form2.h"
#include "documents/Form3.h"
#include "lists/ListConvert.h"
#include "lists/ListModel.h"
#include "lists/ui/ListView.h"
#include "platform/ui/PictureBox.h"
#include "shell/Captions.h"

#include <QDir>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QFile>
#include <QImage>
#include <QMimeData>
#include <QPushButton>
#include <QTemporaryDir>
#include <QUrl>

using shell::ParseFileName;

namespace {

class FileDropsTest : public MainWindowFixture {
protected:
    void SetUp() override {
        MainWindowFixture::SetUp();
        main->show();
    }
    QString copyOf(const QString& shipped, const QString& name) {
        const QString file = dir.filePath(name);
        QFile::copy(testing_support::dataDir() + shipped, file);
        return file;
    }
    // Drags the files over `target` at `pos` and drops them there; whether the widget took
    // the drag.
    bool drop(QWidget* target, const QStringList& files, QPoint pos = QPoint(5, 5)) {
        QMimeData data;
        QList<QUrl> urls;
        for (const QString& f : files)
            urls << QUrl::fromLocalFile(f);
        data.setUrls(urls);
        QDragEnterEvent enter(pos, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(target, &enter);
        if (!enter.isAccepted()) return false;
        QDropEvent dropped(QPointF(pos), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(target, &dropped);
        return dropped.isAccepted();
    }
    // A drop on a control of a project window reaches the window, as the control takes none.
    bool dropOn(QWidget* control, const QStringList& files) {
        auto* window =
            qobject_cast<documents::ProjectWindow*>(control->window()) ? control->window() : nullptr;
        for (QWidget* w = control; w && !window; w = w->parentWidget())
            if (qobject_cast<documents::ProjectWindow*>(w)) window = w;
        EXPECT_NE(window, nullptr);
        return drop(window, files, control->mapTo(window, control->rect().center()));
    }
    QStringList projects() {
        QStringList out;
        for (auto* w : main->projectWindows())
            if (qobject_cast<documents::Form1*>(w)) out << ParseFileName(w->caption()).project();
        return out;
    }
    QTemporaryDir dir;
};

} // namespace

TEST_F(FileDropsTest, ProjectsDroppedOnTheMainWindowOpenOneByOne) {
    const QString a = copyOf("Esimerkkisilta.sl", "A.sl");
    const QString b = copyOf("Esimerkkisilta.sl", "B.SL");
    ASSERT_TRUE(drop(main.get(), {a, b, dir.filePath("poissa.sl")}));
    // The first goes into the untouched Projekti1, as "&Avaa..." would put it.
    EXPECT_EQ(projects(), (QStringList{a, b}));
    EXPECT_EQ(main->appState().RecentFiles[0], b);
    EXPECT_EQ(dialogs.lastText(), QStringLiteral("Tiedostoa: ") + dir.filePath("poissa.sl") + " ei löydy.");
    // The same project again gives the refusal of "&Avaa...".
    dialogs.clear();
    ASSERT_TRUE(drop(main.get(), {a}));
    EXPECT_TRUE(dialogs.lastText().contains("on jo avoinna")) << dialogs.lastText().toStdString();
    EXPECT_EQ(projects().size(), 2);
    // Also dropped on a project window outside its lists.
    auto* f1 = main->projectWindowsOf(b).f1;
    const QString c = copyOf("Esimerkkisilta.sl", "C.sl");
    ASSERT_TRUE(drop(f1, {c}));
    EXPECT_EQ(projects().size(), 3);
    // What is not a file (text, a web address) is not taken.
    QMimeData text;
    text.setText("A.sl");
    QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction, &text, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(main.get(), &enter);
    EXPECT_FALSE(enter.isAccepted());
}

TEST_F(FileDropsTest, AProjectDroppedOnATextFieldOpensAndLeavesTheFieldAlone) {
    // A file manager offers a dragged file as text too; the field under the pointer is the
    // widget the drag goes to, as in a real drag between programs.
    const QString file = copyOf("Esimerkkisilta.sl", "Kentta.sl");
    auto* f1 = main->ParseFormIndeces().f1;
    ASSERT_NE(f1, nullptr);
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(file)});
    data.setText(QUrl::fromLocalFile(file).toString());
    auto* client = qobject_cast<QPlainTextEdit*>(f1->Text1[11]->editor());
    ASSERT_NE(client, nullptr);
    QWidget* target = client->viewport();
    QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(target, &enter);
    ASSERT_TRUE(enter.isAccepted());
    QDropEvent dropped(QPointF(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(target, &dropped);
    // The untouched Projekti1 took the project; no address went into its client field.
    EXPECT_EQ(projects(), QStringList{file});
    EXPECT_FALSE(f1->Text1[11]->text().contains(QStringLiteral("Kentta.sl")));
    EXPECT_TRUE(f1->Text1[11]->text().startsWith(QStringLiteral("Tiehallinto")));
    // The same on a single-line field of another window.
    const QString other = copyOf("Esimerkkisilta.sl", "Toinen.sl");
    data.setUrls({QUrl::fromLocalFile(other)});
    data.setText(QUrl::fromLocalFile(other).toString());
    auto* name = qobject_cast<QLineEdit*>(main->projectWindowsOf(file).f1->Text1[0]->editor());
    ASSERT_NE(name, nullptr);
    const QString bridge = name->text();
    QDragEnterEvent again(QPoint(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(name, &again);
    QDropEvent droppedAgain(QPointF(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(name, &droppedAgain);
    EXPECT_EQ(name->text(), bridge);
    EXPECT_EQ(projects(), (QStringList{file, other}));
}

TEST_F(FileDropsTest, ListsAndSpreadsheetsOpenInTheirBaseListWindow) {
    const QString prices = copyOf("Yksikköhinnat2002.sl1", "hinnat.sl1");
    const QString requirements = copyOf("Laatuvaatimukset2006.sl2", "vaatimukset.sl2");
    const QString pricesCsv = dir.filePath("hinnat.csv");
    const QString requirementsSheet = dir.filePath("vaatimukset.xlsx");
    ASSERT_TRUE(lists::ConvertListFile(prices, pricesCsv));
    ASSERT_TRUE(lists::ConvertListFile(requirements, requirementsSheet));

    ASSERT_TRUE(drop(main.get(), {prices, requirements}));
    EXPECT_EQ(main->Form6->currentFile(), prices);
    EXPECT_EQ(main->Form7->currentFile(), requirements);
    EXPECT_TRUE(main->Form6->isVisible());
    EXPECT_TRUE(main->Form7->isVisible());

    // A .csv and a spreadsheet go where their columns belong.
    const int priceRows = main->Form6->list()->rows();
    main->Form6->list()->clearRows();
    main->Form7->list()->clearRows();
    main->FormUntouch(main->Form6);
    main->FormUntouch(main->Form7);
    ASSERT_TRUE(drop(main.get(), {requirementsSheet, pricesCsv}));
    EXPECT_EQ(main->Form6->currentFile(), pricesCsv);
    EXPECT_EQ(main->Form6->list()->rows(), priceRows);
    EXPECT_GT(main->Form7->list()->rows(), 100);
    EXPECT_TRUE(dialogs.messages().empty()) << dialogs.lastText().toStdString();

    // Dropped on a base list window's list, a file opens in that window.
    main->FormUntouch(main->Form7);
    QWidget* viewport = main->Form6->view()->viewport();
    ASSERT_TRUE(drop(viewport, {prices}));
    EXPECT_EQ(main->Form6->currentFile(), prices);

    // Columns of neither list, and an unknown type, are refused with a message.
    const QString other = dir.filePath("muu.csv");
    QFile f(other);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write("a;b\r\n1;2\r\n");
    f.close();
    ASSERT_TRUE(drop(main.get(), {other, dir.filePath("A.sl")}));
    ASSERT_EQ(dialogs.messages().size(), 2u);
    EXPECT_TRUE(dialogs.texts()[0].startsWith("Tiedostoa " + other + " ei voi avata"));
    QFile::copy(other, dir.filePath("muu.txt"));
    dialogs.clear();
    ASSERT_TRUE(drop(main.get(), {dir.filePath("muu.txt")}));
    EXPECT_TRUE(dialogs.lastText().contains("tiedostotyyppiä ei tunneta"))
        << dialogs.lastText().toStdString();
}

TEST_F(FileDropsTest, APictureDroppedOnAPictureSlotTakesItsPlace) {
    const QString png = dir.filePath("kuva.png");
    QImage image(40, 30, QImage::Format_RGB32);
    image.fill(Qt::red);
    ASSERT_TRUE(image.save(png));
    const shell::ProjectWindows w = main->ParseFormIndeces();
    ASSERT_TRUE(w.complete());

    // On the basic data window's picture of the side view.
    main->showProjectWindow(1);
    ASSERT_TRUE(dropOn(w.f1->Image1[0], {png}));
    EXPECT_FALSE(w.f1->Image1[0]->picture().isNull());
    EXPECT_FALSE(shell::CaptionIsUnchanged(w.f1->caption()));
    // On the characteristics card's "&Poikkileikkaus..." button: the cross-section.
    main->showProjectWindow(3);
    ASSERT_TRUE(dropOn(w.f3->Command2[1], {png}));
    EXPECT_FALSE(w.f1->Image1[1]->picture().isNull());
    EXPECT_TRUE(w.f1->Image1[2]->picture().isNull());
    // Elsewhere a picture has no place, and a damaged one is not taken.
    ASSERT_TRUE(drop(main.get(), {png}));
    EXPECT_TRUE(dialogs.lastText().contains("kuvapaikalle")) << dialogs.lastText().toStdString();
    const QString damaged = dir.filePath("rikki.png");
    QFile f(damaged);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write("\x89PNG\r\n\x1a\nrikki");
    f.close();
    ASSERT_TRUE(dropOn(w.f1->Image1[2], {damaged}));
    EXPECT_TRUE(w.f1->Image1[2]->picture().isNull());
    EXPECT_TRUE(dialogs.lastText().startsWith("Kuvaa " + damaged)) << dialogs.lastText().toStdString();
}

TEST_F(FileDropsTest, AListFileDroppedOnAProjectListComesInAsBaseListRows) {
    main->Submenu10Click(0); // the designer fills the lists
    const QString prices = copyOf("Yksikköhinnat2002.sl1", "hinnat.sl1");
    const QString requirements = copyOf("Laatuvaatimukset2006.sl2", "vaatimukset.sl2");
    main->showProjectWindow(2);
    documents::Form2* f2 = main->ParseFormIndeces().f2;
    ASSERT_NE(f2, nullptr);
    lists::ListModel& quantities = *f2->list(0);
    lists::ListModel& base = *main->Form6->list();
    quantities.clearRows();
    main->FormUntouch(f2);

    // The unit price list's rows come in converted to the quantity list's columns, as rows
    // dragged from the unit price window would.
    ASSERT_TRUE(drop(f2->ListView1[0]->viewport(), {prices}));
    EXPECT_GE(quantities.rows(), base.rows() / 2);
    EXPECT_FALSE(shell::CaptionIsUnchanged(f2->caption()));
    // Into an empty list the rows go as they stand; the first priced entry is among them.
    int entry = 1;
    while (entry < base.rows() && base.cell(entry, 4).toString().isEmpty())
        ++entry;
    bool found = false;
    for (int r = 1; r <= quantities.rows() && !found; ++r)
        found = quantities.cell(r, 2).toString() == base.cell(entry, 2).toString();
    EXPECT_TRUE(found) << base.cell(entry, 2).toString().toStdString();

    // The list rules hold: requirements do not go into the quantity list.
    const int before = quantities.rows();
    dialogs.clear();
    ASSERT_TRUE(drop(f2->ListView1[0]->viewport(), {requirements}));
    EXPECT_EQ(quantities.rows(), before);
    EXPECT_FALSE(dialogs.messages().empty());
    // The requirement base list goes into the requirement list.
    lists::ListModel& reqs = *f2->list(1);
    reqs.clearRows();
    ASSERT_TRUE(drop(f2->ListView1[1]->viewport(), {requirements}));
    EXPECT_GT(reqs.rows(), 100);
}
