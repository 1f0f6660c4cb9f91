#pragma once
// A started main window with Projekti1, on the shipped data files, with scripted dialogs and
// empty settings. Whatever is left open at the end is closed without questions.
#include "common/ScriptedDialogs.h"
#include "common/TestSupport.h"
#include "documents/ProjectWindow.h"
#include "platform/SettingsStore.h"
#include "shell/MDIForm1.h"

#include <QApplication>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <functional>
#include <gtest/gtest.h>
#include <memory>

namespace documents {
class Form2;
}

class MainWindowFixture : public ::testing::Test {
protected:
    void SetUp() override {
        platform::SettingsStore().deleteAll();
        main = std::make_unique<shell::MDIForm1>();
        main->setProgramDirectory(testing_support::dataDir());
        main->startUp(false);
    }
    void TearDown() override {
        main->appState().settings.SaveSettingsOnExit = false;
        for (auto* w : main->projectWindows())
            main->FormUntouch(w);
        if (main->Form6) main->FormUntouch(main->Form6);
        if (main->Form7) main->FormUntouch(main->Form7);
        main.reset();
    }
    // Runs `inside` on the modal window the next action opens, then closes that window.
    static void whenModal(const std::function<void(QWidget*)>& inside) {
        QTimer::singleShot(0, [inside] {
            QWidget* modal = QApplication::activeModalWidget();
            ASSERT_NE(modal, nullptr);
            inside(modal);
            if (modal->isVisible()) modal->close();
        });
    }
    // Shows a top-level window (a base list window) as the active one.
    static void showActive(QWidget* window) {
        window->show();
        window->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window));
        QApplication::setActiveWindow(window);
    }
    // A copy of the shipped sample project in a folder of the test's own. Opening the shipped
    // file itself would put this program's lock beside it, where tests running at the same
    // time meet it as "open in another program".
    QString sampleCopy() {
        const QString file = m_sampleDir.filePath(QStringLiteral("Esimerkkisilta.sl"));
        if (!QFile::exists(file))
            EXPECT_TRUE(QFile::copy(testing_support::dataDir() + QStringLiteral("Esimerkkisilta.sl"), file));
        return file;
    }
    testing_support::ScriptedDialogs dialogs;
    std::unique_ptr<shell::MDIForm1> main;

private:
    QTemporaryDir m_sampleDir;
};

// The same, with the main window shown and active, for tests that need the focus.
class ShownMainWindowFixture : public MainWindowFixture {
protected:
    void SetUp() override {
        MainWindowFixture::SetUp();
        main->show();
        main->QWidget::activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(main.get()));
    }
};

// The main window shown, for tests on a copy of the sample project through its windows.
class SampleProjectFixture : public MainWindowFixture {
protected:
    void SetUp() override {
        MainWindowFixture::SetUp();
        main->show();
        QApplication::setActiveWindow(main.get());
    }
    // Opens the sample project in the untouched Projekti1 and shows its detailed data window.
    documents::Form2* openSample() {
        const QString file = dir.filePath(QStringLiteral("Esimerkkisilta.sl"));
        QFile::copy(testing_support::dataDir() + QStringLiteral("Esimerkkisilta.sl"), file);
        main->openFromCommandLine(file);
        main->ToolbarMenuActions(QStringLiteral("Rulers"));
        return main->ParseFormIndeces().f2;
    }
    // Gives `w` the focus in its window, made the active one.
    void focus(QWidget* w) {
        QApplication::setActiveWindow(w->window());
        w->setFocus(Qt::OtherFocusReason);
        QApplication::processEvents();
        ASSERT_TRUE(w == QApplication::focusWidget() || w->isAncestorOf(QApplication::focusWidget()));
    }
    // Runs `inside` on the modal window the next action opens, then closes that window.
    void whenModal(const std::function<void(QWidget*)>& inside) {
        QTimer::singleShot(0, [inside] {
            QWidget* modal = QApplication::activeModalWidget();
            ASSERT_NE(modal, nullptr);
            inside(modal);
            if (modal->isVisible()) modal->close();
        });
    }

    QTemporaryDir dir;
};
