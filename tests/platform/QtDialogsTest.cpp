// The Qt implementation of the dialog facade, worked as a user works it.
#include "platform/Dialogs.h"
#include "platform/ui/QtDialogs.h"

#include <QApplication>
#include <QCheckBox>
#include <QDir>
#include <QFileDialog>
#include <QTemporaryDir>
#include <QTimer>
#include <gtest/gtest.h>

TEST(QtDialogs, ASaveDialogShowsItsCheckBoxAndGivesBackTheUsersChoice) {
    platform::useQtDialogs();
    // The other tests of this executable keep the console answers.
    struct Restore {
        ~Restore() { platform::Dialogs::setDefault(nullptr); }
    } restore;
    QTemporaryDir dir;
    platform::FileRequest request;
    request.save = true;
    request.filters = platform::translateFilter(QStringLiteral("PDF-tiedostot (*.pdf)|*.pdf"));
    request.defaultSuffix = QStringLiteral("pdf");
    request.directory = dir.path();
    request.fileName = QStringLiteral("silta");
    bool archival = false;
    request.optionText = QStringLiteral("PDF/A (arkistointi)");
    request.option = &archival;

    // The user finds the box unchecked, checks it and saves.
    bool shown = false, startedChecked = true;
    QTimer::singleShot(0, [&] {
        auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
        ASSERT_NE(dialog, nullptr);
        for (QCheckBox* box : dialog->findChildren<QCheckBox*>())
            if (box->text() == QLatin1String("PDF/A (arkistointi)")) {
                shown = box->isVisible();
                startedChecked = box->isChecked();
                box->setChecked(true);
            }
        static_cast<QDialog*>(dialog)->accept();
    });
    const QStringList files = platform::Dialogs::instance().files(request);
    EXPECT_TRUE(shown);
    EXPECT_FALSE(startedChecked);
    EXPECT_TRUE(archival);
    EXPECT_EQ(files, QStringList{QDir(dir.path()).filePath(QStringLiteral("silta.pdf"))});

    // Cancelled, the choice stays as it was.
    QTimer::singleShot(0, [&] {
        auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
        ASSERT_NE(dialog, nullptr);
        for (QCheckBox* box : dialog->findChildren<QCheckBox*>())
            box->setChecked(false);
        static_cast<QDialog*>(dialog)->reject();
    });
    EXPECT_TRUE(platform::Dialogs::instance().files(request).isEmpty());
    EXPECT_TRUE(archival);
}
