// "Tu&losta" and the toolbar's "Print" on the main window, with the sample project.
#include "documents/Form10.h"
#include "print/ui/Form11.h"
#include "print/ui/PrintSession.h"
#include "shell/MainWindowFixture.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QPushButton>
#include <QTimer>
#include <QTreeWidget>
#include <gtest/gtest.h>

using PrintMenu = MainWindowFixture;

TEST_F(PrintMenu, PrintOpensTheSelectionOnTheActiveProject) {
    EXPECT_EQ(main->SubMenu0[7]->text(), QStringLiteral("Tu&losta"));
    EXPECT_TRUE(main->SubMenu0[7]->isEnabled());
    EXPECT_TRUE(main->toolbarButtons[QStringLiteral("Print")]->isEnabled());
    main->openFromCommandLine(sampleCopy());

    print::ui::PrintSession& session = main->printSession();
    session.selection.DocumentSelected[print::doc::Costs] = true;
    int pages = 0;
    QString bridge;
    auto* timer = new QTimer(main.get());
    QObject::connect(timer, &QTimer::timeout, [&] {
        auto* dialog = qobject_cast<print::ui::Form11*>(QApplication::activeModalWidget());
        if (!dialog) return;
        timer->stop();
        EXPECT_TRUE(dialog->Check1[1]->isChecked());
        dialog->Check1[0]->setChecked(true);
        dialog->Check1Click(0);
        // The selection is stored and the run paginated from the project's windows.
        dialog->Command1Click(print::ui::Form11::Preview);
        dialog->reject();
    });
    timer->start(10);
    // The preview is closed as soon as it opens; what it showed is read from the run.
    auto* closer = new QTimer(main.get());
    QObject::connect(closer, &QTimer::timeout, [&] {
        QWidget* w = QApplication::activeModalWidget();
        if (!w || w->objectName() != QLatin1String("Form12")) return;
        closer->stop();
        auto* dialog = qobject_cast<print::ui::Form11*>(w->parentWidget());
        ASSERT_TRUE(dialog && dialog->run());
        pages = dialog->run()->TotalPages();
        bridge = dialog->run()->source().basicText(basic::BridgeName);
        qobject_cast<QDialog*>(w)->reject();
    });
    closer->start(10);
    main->ToolbarMenuActions(QStringLiteral("Print"));
    EXPECT_GE(pages, 6);
    EXPECT_EQ(bridge, QStringLiteral("Kirkkojoen silta"));
    EXPECT_TRUE(session.selection.DocumentSelected[print::doc::Quantities]);
    EXPECT_TRUE(dialogs.messages().empty()) << dialogs.lastText().toStdString();
}

// "Valitse työvaihe..." beside a quality document opens the project's index of requirement
// headings; the work phase of the chosen heading is what the document prints.
TEST_F(PrintMenu, AWorkPhaseIsChosenFromTheProjectsRequirementHeadings) {
    main->openFromCommandLine(sampleCopy());
    print::ui::PrintSession& session = main->printSession();
    const int inspections = print::doc::Inspections;
    QString shownLittera, shownText, captionAfterChoice, captionAfterCancel;
    int headingsShown = 0;

    // Answers the index of headings: the last heading, or "Peruuta".
    bool cancel = false;
    auto* chooser = new QTimer(main.get());
    QObject::connect(chooser, &QTimer::timeout, [&] {
        auto* index = qobject_cast<documents::Form10*>(QApplication::activeModalWidget());
        if (!index) return;
        chooser->stop();
        headingsShown = index->ListView1->topLevelItemCount();
        if (cancel || headingsShown < 2) {
            index->Command1[2]->click();
            return;
        }
        // The last heading; its work phase is the nearest caption in capitals at or above it.
        const int last = headingsShown - 1;
        for (int i = last; i >= 0 && shownText.isEmpty(); --i) {
            const QTreeWidgetItem* item = index->ListView1->topLevelItem(i);
            if (item->text(1) != item->text(1).toUpper()) continue;
            shownLittera = item->text(0).trimmed();
            shownText = item->text(1).trimmed();
        }
        index->selectHeading(last);
        index->Command1[0]->click();
    });
    auto* timer = new QTimer(main.get());
    QObject::connect(timer, &QTimer::timeout, [&] {
        auto* dialog = qobject_cast<print::ui::Form11*>(QApplication::activeModalWidget());
        if (!dialog) return;
        timer->stop();
        EXPECT_EQ(dialog->Command1[11]->text(), QStringLiteral("Valitse työvaihe..."));
        // The button works for a document that is to be printed.
        EXPECT_FALSE(dialog->Command1[11]->isEnabled());
        dialog->Check1[inspections]->click();
        EXPECT_TRUE(dialog->Command1[11]->isEnabled());
        chooser->start(10);
        dialog->Command1[11]->click();
        captionAfterChoice = dialog->Check1[inspections]->text();
        cancel = true;
        chooser->start(10);
        dialog->Command1[11]->click();
        captionAfterCancel = dialog->Check1[inspections]->text();
        dialog->reject();
    });
    timer->start(10);
    main->ToolbarMenuActions(QStringLiteral("Print"));

    ASSERT_GE(headingsShown, 2);
    const QString phase = shownLittera + QStringLiteral(": ") + shownText;
    EXPECT_EQ(captionAfterChoice, QStringLiteral("&D Tarkastus- ja mittausraportit: ") + phase);
    EXPECT_EQ(captionAfterCancel, captionAfterChoice);
    EXPECT_EQ(session.selection.WorkPhaseFilter[inspections], phase);
    EXPECT_TRUE(dialogs.messages().empty()) << dialogs.lastText().toStdString();
}
