// "Tu&losta" and the toolbar's "Print" on the main window, with the sample project.
#include "print/ui/Form11.h"
#include "print/ui/PrintSession.h"
#include "shell/MainWindowFixture.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QTimer>
#include <gtest/gtest.h>

using PrintMenu = MainWindowFixture;

TEST_F(PrintMenu, PrintOpensTheSelectionOnTheActiveProject) {
    EXPECT_EQ(main->SubMenu0[7]->text(), QStringLiteral("Tu&losta"));
    EXPECT_TRUE(main->SubMenu0[7]->isEnabled());
    EXPECT_TRUE(main->toolbarButtons[QStringLiteral("Print")]->isEnabled());
    main->openFromCommandLine(testing_support::dataDir() + QStringLiteral("Esimerkkisilta.sl"));

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
        dialog->Command1Click(7);
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
        bridge = dialog->run()->source().basicText(0);
        qobject_cast<QDialog*>(w)->reject();
    });
    closer->start(10);
    main->ToolbarMenuActions(QStringLiteral("Print"));
    EXPECT_GE(pages, 6);
    EXPECT_EQ(bridge, QStringLiteral("Kirkkojoen silta"));
    EXPECT_TRUE(session.selection.DocumentSelected[print::doc::Quantities]);
    EXPECT_TRUE(dialogs.messages().empty()) << dialogs.lastText().toStdString();
}
