// Every damaged file of the test folders, opened the way a user opens that kind of file: each
// gives one message that names the file and says what failed, and what was open stays as it was.
// A file that once crashed or hung a reader is kept in these folders.
#include "MainWindowFixture.h"
#include "documents/Controls.h"
#include "documents/Form1.h"
#include "documents/Form9.h"
#include "lists/ListFiles.h"
#include "lists/ListModel.h"
#include "lists/Spreadsheet.h"
#include "platform/Picture.h"
#include "shell/Captions.h"
#include "shell/ProjectFiles.h"

#include <QDir>
#include <QFileInfo>
#include <QTextEdit>
#include <gtest/gtest.h>

using namespace shell;

namespace {

QStringList damagedFiles() {
    QStringList out;
    for (const char* folder :
         {"/tests/shell/data/damaged", "/tests/lists/data/damaged", "/tests/platform/data/damaged"}) {
        const QDir dir(testing_support::sourceDir() + QLatin1String(folder));
        for (const QString& name : dir.entryList(QDir::Files, QDir::Name))
            out << dir.filePath(name);
    }
    return out;
}

void fillList(lists::ListModel& list) {
    std::vector<lists::Column> columns{
        {QStringLiteral("LITTERA"), 1000}, {QStringLiteral("TYÖVAIHE"), 1000}, {QStringLiteral("Rivi"), 0}};
    std::vector<lists::Row> rows(1);
    rows[0].cells = QStringList{QStringLiteral("7100"), QStringLiteral("YLEISET"), QStringLiteral("00001")};
    list.reset(std::move(columns), std::move(rows));
    list.selectOnly(1);
}

class DamagedFilesTest : public MainWindowFixture {};

TEST_F(DamagedFilesTest, EveryDamagedFileGivesItsMessageAndChangesNothing) {
    const QStringList files = damagedFiles();
    ASSERT_GE(files.size(), 20);
    QSet<QString> kinds;
    const ProjectWindows p1 = main->projectWindowsOf(QStringLiteral("Projekti1"));
    p1.f1->Text1[0]->setText(QStringLiteral("Ennallaan"));

    for (const QString& path : files) {
        SCOPED_TRACE(path.toStdString());
        const QString ext = QFileInfo(path).suffix().toLower();
        kinds.insert(ext);
        dialogs.clear();
        QString message;
        if (ext == QLatin1String("sl")) {
            const QString caption = p1.f1->caption();
            EXPECT_FALSE(ReadSlFile(*main, QStringLiteral("Projekti1"), path, false));
            EXPECT_EQ(p1.f1->Text1[0]->text(), QStringLiteral("Ennallaan"));
            EXPECT_EQ(p1.f1->caption(), caption);
            EXPECT_EQ(main->projectWindows().size(), 4u);
            ASSERT_EQ(dialogs.messages().size(), 1u);
            message = dialogs.lastText();
            EXPECT_TRUE(message.startsWith(QStringLiteral("Tiedostoa ") + path +
                                           QStringLiteral(" ei voi avata:\r\n")));
        } else if (ext == QLatin1String("sl1") || ext == QLatin1String("sl2") ||
                   ext == QLatin1String("csv") || ext == QLatin1String("xls") ||
                   ext == QLatin1String("xlsx") || ext == QLatin1String("ods")) {
            lists::ListModel list;
            fillList(list);
            const bool sheet = lists::isSpreadsheetFile(path);
            EXPECT_FALSE(sheet ? lists::ImportListViewXls(list, path) : lists::InitListView(list, path));
            EXPECT_EQ(list.rows(), 1);
            EXPECT_EQ(list.cell(1, 2).toString(), QStringLiteral("YLEISET"));
            ASSERT_EQ(dialogs.messages().size(), 1u);
            message = dialogs.lastText();
        } else if (ext == QLatin1String("rtf")) {
            QTextEdit box;
            box.setPlainText(QStringLiteral("Ennallaan"));
            EXPECT_FALSE(documents::InsertFromFile(&box, path));
            EXPECT_EQ(box.toPlainText(), QStringLiteral("Ennallaan"));
            ASSERT_EQ(dialogs.messages().size(), 1u);
            message = dialogs.lastText();
        } else if (ext == QLatin1String("wmf") || ext == QLatin1String("emf")) {
            QString error;
            const platform::Picture picture = platform::Picture::fromFile(path, &error);
            EXPECT_TRUE(picture.isNull());
            message = error;
        } else {
            ADD_FAILURE() << "no way to open this kind of file";
            continue;
        }
        const QString name = QFileInfo(path).fileName();
        EXPECT_TRUE(message.contains(name)) << "the message names the file: " << message.toStdString();
        // Something about what failed comes with the name.
        EXPECT_GT(message.size(), (message.contains(path) ? path.size() : name.size()) + 20)
            << message.toStdString();
    }
    for (const char* kind : {"sl", "sl1", "sl2", "csv", "rtf", "xls", "xlsx", "ods", "wmf", "emf"})
        EXPECT_TRUE(kinds.contains(QLatin1String(kind))) << "a damaged ." << kind << " file";
}

} // namespace
