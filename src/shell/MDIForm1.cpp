#include "shell/MDIForm1.h"

#include "calc/CostEstimate.h"
#include "documents/CardText.h"
#include "documents/Form1.h"
#include "documents/Form2.h"
#include "documents/Form3.h"
#include "documents/Form4.h"
#include "lists/EditHistory.h"
#include "lists/ListModel.h"
#include "lists/ListProcedures.h"
#include "lists/ui/ListView.h"
#include "platform/Dialogs.h"
#include "platform/ui/Menus.h"
#include "platform/SettingsStore.h"
#include "print/ui/PrintSession.h"
#include "shell/Captions.h"
#include "shell/Modes.h"
#include "shell/Settings.h"
#include "shell/ProjectCheckWindow.h"
#include "shell/ProjectFiles.h"
#include "shell/ProjectLocks.h"
#include "shell/Recovery.h"
#include "shell/ShellActions.h"
#include "shell/frmSplash.h"
#include "platform/CommonDialog.h"
#include "platform/TempDir.h"
#include "platform/ui/QtDialogs.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QDialog>
#include <QDir>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QLayout>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenuBar>
#include <QProgressBar>
#include <QScreen>
#include <QStatusBar>
#include <QStyle>
#include <QToolBar>
#include <QVBoxLayout>

namespace shell {

using platform::MsgAnswer;
using platform::MsgButtons;
using platform::MsgIcon;

namespace {
const QString kWaitingNote = QStringLiteral("Avattavana odottaa tiedosto ");
}

std::vector<documents::ProjectWindow*> ProjectWindows::all() const {
    std::vector<documents::ProjectWindow*> out;
    for (documents::ProjectWindow* w :
         {static_cast<documents::ProjectWindow*>(f1), static_cast<documents::ProjectWindow*>(f2),
          static_cast<documents::ProjectWindow*>(f3), static_cast<documents::ProjectWindow*>(f4)})
        if (w) out.push_back(w);
    return out;
}

MDIForm1::MDIForm1(QWidget* parent)
    : QMainWindow(parent)
    , m_store(std::make_unique<platform::SettingsStore>()) {
    platform::useQtDialogs();
    // Files dragged from the file manager open (Drops.cpp).
    setAcceptDrops(true);
    m_recovery = new Recovery(*this);
    m_locks = new ProjectLocks(*this);
    setWindowTitle(platform::applicationTitle());
    resize(1100, 760);
    auto* central = new QWidget(this);
    auto* layout = new QVBoxLayout(central);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    mdiArea = new QMdiArea(central);
    mdiArea->setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    mdiArea->setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    mdiArea->setActivationOrder(QMdiArea::ActivationHistoryOrder);
    layout->addWidget(mdiArea, 1);
    // The progress strip replaces the status bar while a long operation runs.
    m_progressStrip = new QWidget(central);
    auto* strip = new QHBoxLayout(m_progressStrip);
    strip->setContentsMargins(4, 2, 4, 2);
    ProgressBar1 = new QProgressBar(m_progressStrip);
    ProgressBar1->setRange(0, 100);
    ProgressBar1->setTextVisible(false);
    ProgressBar1->setFixedWidth(240);
    m_progressText = new QLabel(m_progressStrip);
    strip->addWidget(ProgressBar1);
    strip->addSpacing(7); // 100 twips
    strip->addWidget(m_progressText, 1);
    m_progressStrip->hide();
    layout->addWidget(m_progressStrip);
    setCentralWidget(central);

    createMenus();
    createToolbar();
    createUndoActions(*this);
    createStatusBar();
    connect(mdiArea, &QMdiArea::subWindowActivated, this, [this](QMdiSubWindow*) {
        if (m_shuttingDown) return;
        EnableControlsMDI();
        if (documents::ProjectWindow* w = activeWindow()) EnableControlsPage(*this, w, false);
    });
}

MDIForm1::~MDIForm1() {
    // Sub-windows activate one another while they are destroyed; the menus may be gone by then.
    m_shuttingDown = true;
    // The session's copies go first, before the windows that they watch.
    delete m_recovery;
    m_recovery = nullptr;
    disconnect(mdiArea, nullptr, this, nullptr);
    // Focus changes while the windows go must not reach the undo items, which go first.
    disconnect(qApp, nullptr, this, nullptr);
    undoAction = redoAction = nullptr;
}

void MDIForm1::createMenus() {
    QMenuBar* bar = menuBar();
    for (const QString& c : {QStringLiteral("&Tiedosto"), QStringLiteral("&Asetukset"),
                             QStringLiteral("&Muokkaa"), QStringLiteral("&Näytä"), QStringLiteral("&Ohjeet")})
        MainMenu.push_back(bar->addMenu(c));
    createFileMenu(MainMenu[0]);
    createSettingsMenu(MainMenu[1]);
    createEditMenu(MainMenu[2]);
    createViewMenu(MainMenu[3]);
    createHelpMenu(MainMenu[4]);
}

void MDIForm1::createFileMenu(QMenu* file) {
    // Ctrl+N, O, S, Shift+S and P: the keys every desktop program has for these items.
    platform::addMenuItems(
        file, SubMenu0,
        {{QStringLiteral("&Uusi"), QKeySequence(Qt::CTRL | Qt::Key_N)},
         {QStringLiteral("&Avaa..."), QKeySequence(Qt::CTRL | Qt::Key_O)},
         {QStringLiteral("&Tallenna"), QKeySequence(Qt::CTRL | Qt::Key_S)},
         {QStringLiteral("Tallenna &nimellä..."), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_S)},
         {QStringLiteral("-")},
         {QStringLiteral("&Sulje")},
         {QStringLiteral("-")},
         {QStringLiteral("Tu&losta"), QKeySequence(Qt::CTRL | Qt::Key_P)},
         {QStringLiteral("Läh&etä")},
         {QStringLiteral("-")},
         {QStringLiteral("Tuo ainostataan teksi...")},
         {QStringLiteral("&Vie")},
         {QStringLiteral("-")}});
    SubMenu0[11]->setVisible(false);
    // The comparison of the active project with another version, beside the other imports.
    CompareAction = new QAction(QStringLiteral("&Vertaa projektia..."), this);
    file->insertAction(SubMenu0[11], CompareAction);
    connect(CompareAction, &QAction::triggered, this, [this] { showCompareWindow(*this); });
    // Items 13 to 18 are the recent files, shown when there are some.
    for (int i = 13; i <= 18; ++i)
        platform::addMenuItem(file, SubMenu0, QString())->setVisible(false);
    // The recent files show their folder as a tooltip; files that are gone leave the list
    // before it is shown.
    file->setToolTipsVisible(true);
    connect(file, &QMenu::aboutToShow, this, [this] {
        if (DropMissingRecentFiles(m_state.RecentFiles)) UpdateRecentFiles(QString());
    });
    platform::addMenuItem(file, SubMenu0, QStringLiteral("-"))->setVisible(false);
    platform::addMenuItem(file, SubMenu0, QStringLiteral("L&opeta"));
    for (int i = 0; i < static_cast<int>(SubMenu0.size()); ++i) {
        connect(SubMenu0[i], &QAction::triggered, this, [this, i] {
            if (i == 20)
                close();
            else
                FileMenuActions(i);
        });
    }
}

void MDIForm1::createSettingsMenu(QMenu* settings) {
    platform::addMenuItem(settings, SubMenu1, QStringLiteral("&Asetukset"));
    QMenu* modes = settings->addMenu(QStringLiteral("&Ohjelman moodi"));
    SubMenu1.push_back(modes->menuAction());
    connect(SubMenu1[0], &QAction::triggered, this, [this] { showSettingsDialog(*this); });
    platform::addCheckableItems(modes, Submenu10,
                                {QStringLiteral("&1 Suunnittelija"), QStringLiteral("&2 Urakoitsija"),
                                 QStringLiteral("&3 Rakennuttaja")},
                                this, [this](int i) { Submenu10Click(i); });
}

void MDIForm1::createEditMenu(QMenu* edit) {
    platform::addMenuItems(
        edit, SubMenu2,
        {
            {QStringLiteral("&Muokkaa...")},
            {QStringLiteral("&Lisää luettelosta")},
            {QStringLiteral("Lisää &rivi"), QKeySequence(Qt::CTRL | Qt::Key_I)},
            {QStringLiteral("Lis&ää rivi luettelon loppuun"), QKeySequence(Qt::CTRL | Qt::Key_L)},
            {QStringLiteral("Poi&sta rivi"), QKeySequence(Qt::SHIFT | Qt::Key_Delete)},
            {QStringLiteral("-")},
            {QStringLiteral("Leikkaa"), QKeySequence(Qt::CTRL | Qt::Key_X)},
            {QStringLiteral("Kopio"), QKeySequence(Qt::CTRL | Qt::Key_C)},
            {QStringLiteral("Liitä"), QKeySequence(Qt::CTRL | Qt::Key_V)},
            {QStringLiteral("Poista"), QKeySequence(Qt::Key_Delete)},
            {QStringLiteral("-")},
            {QStringLiteral("Siirry..."), QKeySequence(Qt::CTRL | Qt::Key_F)},
            {QStringLiteral("-")},
            {QStringLiteral("&Valitse kaikki")},
            {QStringLiteral("-")},
            {QStringLiteral("M&uoteile luettelo")},
        });
    for (int i = 0; i < static_cast<int>(SubMenu2.size()); ++i)
        connect(SubMenu2[i], &QAction::triggered, this, [this, i] { EditMenuClick(i); });
}

void MDIForm1::createViewMenu(QMenu* view) {
    platform::addMenuItems(view, Submenu3,
                           {{QStringLiteral("&Perustiedot"), QKeySequence(Qt::CTRL | Qt::Key_Q)},
                            {QStringLiteral("&Yksityiskohtaiset tiedot"), QKeySequence(Qt::CTRL | Qt::Key_W)},
                            {QStringLiteral("&Ominaistietokortti"), QKeySequence(Qt::CTRL | Qt::Key_E)},
                            {QStringLiteral("P&anostilakortti"), QKeySequence(Qt::CTRL | Qt::Key_R)},
                            {QStringLiteral("-")}});
    QMenu* docs = view->addMenu(QStringLiteral("&Tekstiasiakirjat..."));
    Submenu3.push_back(docs->menuAction());
    platform::addMenuItems(
        view, Submenu3,
        {{QStringLiteral("-")},
         {QStringLiteral("&Yksikköhintaluettelo"), QKeySequence(Qt::Key_F7)},
         {QStringLiteral("&Laatuvaatimusten perusluettelo"), QKeySequence(Qt::Key_F8)},
         {QStringLiteral("Teksti&editori"), QKeySequence(Qt::Key_F9)},
         {QStringLiteral("Laatu&vaatimusten yhteenveto"), QKeySequence(Qt::SHIFT | Qt::Key_F8)},
         {QStringLiteral("-")}});
    // The project check stands beside the summary; it is not one of the numbered items.
    QAction* check = new QAction(QStringLiteral("&Tarkista projekti"), view);
    check->setObjectName(QStringLiteral("CheckProject"));
    check->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_T));
    view->insertAction(Submenu3.back(), check);
    connect(check, &QAction::triggered, this, [this] { showProjectCheck(*this); });
    QMenu* windows = view->addMenu(QStringLiteral("&Ikkuna"));
    Submenu3.push_back(windows->menuAction());
    createWindowMenu(windows);

    const char* keys[] = {"Bridge", "Rulers", "Card", "Dynamite"};
    for (int i = 0; i < 4; ++i)
        connect(Submenu3[i], &QAction::triggered, this,
                [this, key = QString::fromLatin1(keys[i])] { ToolbarMenuActions(key); });
    connect(Submenu3[7], &QAction::triggered, this, [this] { showBaseListWindow(*this, 6); });
    connect(Submenu3[8], &QAction::triggered, this, [this] { showBaseListWindow(*this, 7); });
    // "Teksti&editori" opens the shown document of the detailed data window; the summary needs
    // only an active project.
    connect(Submenu3[9], &QAction::triggered, this, [this] {
        if (qobject_cast<documents::Form2*>(activeWindow())) ShowTextEditor(*this, 1);
    });
    connect(Submenu3[10], &QAction::triggered, this, [this] {
        if (activeWindow()) ShowTextEditor(*this, 100);
    });

    platform::addCheckableItems(docs, Submenu30,
                                {QStringLiteral("&1 Rakennussuunnitelmaselostus"),
                                 QStringLiteral("&2 Koodaussuunnitelma"),
                                 QStringLiteral("&3 Urakan laatusuunnitelma")},
                                this, [this](int i) { Submenu30Click(i); });
}

void MDIForm1::createWindowMenu(QMenu* windows) {
    // Ctrl+Tab and Ctrl+Shift+Tab go round the open windows. The actions belong to the main
    // window, so that their keys act while the menu, which is rebuilt when shown, is closed.
    auto* nextWindow = new QAction(QStringLiteral("&Seuraava ikkuna"), this);
    nextWindow->setObjectName(QStringLiteral("NextWindow"));
    nextWindow->setShortcuts(QKeySequence::NextChild);
    connect(nextWindow, &QAction::triggered, this, [this] { stepWindow(1); });
    auto* previousWindow = new QAction(QStringLiteral("&Edellinen ikkuna"), this);
    previousWindow->setObjectName(QStringLiteral("PreviousWindow"));
    previousWindow->setShortcuts(QKeySequence::PreviousChild);
    connect(previousWindow, &QAction::triggered, this, [this] { stepWindow(-1); });
    addAction(nextWindow);
    addAction(previousWindow);
    connect(windows, &QMenu::aboutToShow, this, [this, windows, nextWindow, previousWindow] {
        windows->clear();
        windows->addAction(nextWindow);
        windows->addAction(previousWindow);
        windows->addSeparator();
        for (QMdiSubWindow* sub : mdiArea->subWindowList()) {
            if (!sub->isVisible()) continue;
            QAction* a = windows->addAction(sub->windowTitle());
            a->setCheckable(true);
            a->setChecked(sub == mdiArea->currentSubWindow());
            connect(a, &QAction::triggered, this, [this, sub] { mdiArea->setActiveSubWindow(sub); });
        }
        windows->addSeparator();
        connect(windows->addAction(QStringLiteral("&Limittäin")), &QAction::triggered, mdiArea,
                &QMdiArea::cascadeSubWindows);
        connect(windows->addAction(QStringLiteral("&Vierekkäin")), &QAction::triggered, mdiArea,
                &QMdiArea::tileSubWindows);
    });
}

void MDIForm1::createHelpMenu(QMenu* help) {
    platform::addMenuItem(help, SubMenu4, QStringLiteral("Käyttäjän opas"), QKeySequence(Qt::Key_F1));
    QMenu* helpFiles = help->addMenu(QStringLiteral("Erilliset ohjetiedostot"));
    SubMenu4.push_back(helpFiles->menuAction());
    platform::addMenuItems(help, SubMenu4,
                           {{QStringLiteral("-")}, {QStringLiteral("&Tietoja ohjelmasta...")}});
    for (int i = 0; i < 20; ++i) {
        QAction* a = platform::addMenuItem(helpFiles, SubMenu41, QString::number(i));
        a->setVisible(i == 0);
        connect(a, &QAction::triggered, this, [this, i] { openHelpFile(*this, i); });
    }
    for (int i = 0; i < static_cast<int>(SubMenu4.size()); ++i)
        if (i != 1) connect(SubMenu4[i], &QAction::triggered, this, [this, i] { HelpMenuClick(i); });
}

void MDIForm1::createToolbar() {
    Toolbar1 = addToolBar(QStringLiteral("Toolbar1"));
    Toolbar1->setMovable(false);
    Toolbar1->setIconSize(QSize(20, 20));
    struct Button {
        const char* key;
        const char* tip;
        QStyle::StandardPixmap icon;
    };
    const Button buttons[] = {
        {"New", "Uusi", QStyle::SP_FileIcon},
        {"Open", "Avaa...", QStyle::SP_DialogOpenButton},
        {"Save", "Tallenna", QStyle::SP_DialogSaveButton},
        {"Cut", "Leikkaa", QStyle::SP_CustomBase},
        {"Copy", "Kopio", QStyle::SP_CustomBase},
        {"Paste", "Liitä", QStyle::SP_CustomBase},
        {"Del", "Poista", QStyle::SP_TrashIcon},
        {"Undo", "Kumoa", QStyle::SP_ArrowBack},
        {"Redo", "Tee uudelleen", QStyle::SP_ArrowForward},
        {"Print", "Tulosta...", QStyle::SP_CustomBase},
        {"Bridge", "Perustiedot", QStyle::SP_CustomBase},
        {"Rulers", "Yksityiskohtaiset tiedot", QStyle::SP_CustomBase},
        {"Card", "Ominaistietokortti", QStyle::SP_CustomBase},
        {"Dynamite", "Panostilakortti", QStyle::SP_CustomBase},
        {"Find", "Siirry kohtaan...", QStyle::SP_FileDialogContentsView},
    };
    for (const Button& b : buttons) {
        const QString key = QString::fromLatin1(b.key);
        const QString tip = QString::fromUtf8(b.tip);
        QAction* a = new QAction(toolbarIcon(key, b.icon), tip, this);
        a->setToolTip(tip);
        a->setObjectName(key);
        a->setData(key);
        Toolbar1->addAction(a);
        toolbarButtons[key] = a;
        connect(a, &QAction::triggered, this, [this, key] { ToolbarMenuActions(key); });
        if (key == QLatin1String("Save") || key == QLatin1String("Redo") || key == QLatin1String("Print") ||
            key == QLatin1String("Dynamite"))
            Toolbar1->addSeparator();
    }
}

void MDIForm1::createStatusBar() {
    QStatusBar* bar = statusBar();
    m_panels.assign(6, nullptr);
    for (int i = 1; i <= 5; ++i) {
        auto* l = new QLabel(bar);
        l->setObjectName(QStringLiteral("Panel%1").arg(i));
        l->setFrameShape(QFrame::Panel);
        l->setFrameShadow(QFrame::Sunken);
        l->setTextFormat(Qt::PlainText);
        if (i == 2 || i == 4) {
            l->setFixedWidth(4);
            l->setFrameShape(QFrame::NoFrame);
        }
        bar->addWidget(l, (i % 2) ? 1 : 0);
        m_panels[i] = l;
    }
}

QString MDIForm1::statusText(int panel) const {
    return panel >= 1 && panel <= 5 ? m_panels[panel]->text() : QString();
}

void MDIForm1::pendingEvents() {
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
}

// ---------------------------------------------------------------------------------------------
// Start-up and shutdown

void MDIForm1::startUp(bool showSplash) {
    // The splash comes first; the main window shows once it stands at its stored place with
    // Projekti1 in it.
    std::unique_ptr<frmSplash> splash;
    if (showSplash) {
        splash = std::make_unique<frmSplash>();
        splash->show();
        splash->setProgress(0);
    }
    LoadSettings();
    if (splash) splash->setProgress(10);
    loadBaseListWindow(*this, 6);
    if (splash) splash->setProgress(20);
    loadBaseListWindow(*this, 7);
    LoadHelpFiles();
    if (splash) splash->setProgress(80);
    if (m_state.settings.pos.width[1] == 0) {
        // No stored position: most of the screen, centred.
        if (QScreen* screen = this->screen()) {
            const QRect avail = screen->availableGeometry();
            resize(avail.size() * 0.9);
            move(avail.center() - rect().center());
        }
    }
    GetWinPos(m_state.settings.pos, 1, this);
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
    NewProject();
    if (splash) splash->setProgress(100);
    m_state.Loading = true;
    pendingEvents();
    m_state.Loading = false;
    splash.reset();
    setWindowTitle(platform::applicationTitle());
    if (showSplash) show();
    QString error;
    const QString recoveryFolder = platform::recoveryPath(&error);
    if (recoveryFolder.isEmpty())
        platform::MsgBox(error + QStringLiteral("\r\nMuutetuista projekteista ei tehdä palautuskopioita."),
                         MsgIcon::Exclamation);
    m_recovery->start(recoveryFolder, m_state.settings.AutosaveMinutes);
    m_recovery->offerRecovery();
}

void MDIForm1::closeEvent(QCloseEvent* event) {
    if (shutDown()) {
        event->accept();
        return;
    }
    event->ignore();
}

bool MDIForm1::shutDown() {
    if (fileOperationRunning()) {
        const MsgAnswer a = platform::Ask(
            QStringLiteral(
                "Tiedoston käsittely kesken. Tallentamattomat tiedot menetetään jos jatkat.\r\nHaluatko jatkaa?"),
            MsgButtons::YesNo, MsgIcon::Critical, MsgAnswer::No);
        if (a != MsgAnswer::Yes) return false;
    }
    m_tag = QStringLiteral("HardEnd");
    // The base list windows reset the tag when their own unsaved-changes question is cancelled.
    const bool sixClosed = closeBaseListWindow(*this, 6);
    const bool sevenClosed = closeBaseListWindow(*this, 7);
    while (m_tag == QLatin1String("HardEnd")) {
        const std::vector<documents::ProjectWindow*> open = projectWindows();
        if (open.empty()) break;
        activateWindow(open.front());
        if (UnloadActiveProject()) m_tag.clear();
    }
    if (m_tag != QLatin1String("HardEnd")) {
        // The program goes on: a base list whose changes the user agreed to drop is read again.
        restoreBaseListWindow(*this, 6, sixClosed);
        restoreBaseListWindow(*this, 7, sevenClosed);
        return false;
    }
    m_shuttingDown = true;
    // The user answered for every project: nothing is kept for a recovery, even when the
    // session manager had asked for copies earlier and the logout was cancelled.
    m_recovery->removeAtEnd();
    platform::removeScratchFiles(m_state.TempPath);
    if (m_state.settings.SaveSettingsOnExit) {
        UpdateWinPosTable(m_state.settings.pos, 1, this);
        SaveSettings();
    }
    return true;
}

void MDIForm1::endWithoutQuestions() {
    m_terminating = true;
    if (m_state.settings.SaveSettingsOnExit) {
        UpdateWinPosTable(m_state.settings.pos, 1, this);
        SaveSettings();
    }
    m_recovery->keepForNextStart();
    platform::removeScratchFiles(m_state.TempPath);
}

// ---------------------------------------------------------------------------------------------
// Settings

void MDIForm1::LoadSettings() {
    ReadSettingsValues(*m_store, m_state);
    QString appPath =
        m_programDirectory.isEmpty() ? QCoreApplication::applicationDirPath() : m_programDirectory;
    if (!appPath.endsWith(QLatin1Char('/'))) appPath += QLatin1Char('/');
    m_state.AppPath = appPath;
    m_state.UserDataPath = platform::userDataPath();
    Settings& s = m_state.settings;
    // An older version stored a shipped logo by the program folder's path.
    s.PLogoFile = ShippedFilePath(m_state, StoredFileName(m_state, s.PLogoFile));
    LoadLogo(*this);
    QString error;
    m_state.TempPath = platform::privateTempPath(&error);
    if (m_state.TempPath.isEmpty()) platform::MsgBox(error, MsgIcon::Exclamation);
    // Mail drafts and leftovers of runs that did not end normally do not pile up.
    platform::removeOldTempFiles(m_state.TempPath);
    bool anyOffice = false;
    for (const QString& row : m_state.OfficeRows)
        anyOffice = anyOffice || !row.isEmpty();
    // The settings reader rebuilt the list in its stored order; this shows it in the File menu.
    UpdateRecentFiles(QString());
    m_state.HelpFile = appPath + QStringLiteral("Tamrik2006.html");
    s.File1 = ShippedFilePath(m_state, s.File1);
    s.File2 = ShippedFilePath(m_state, s.File2);
    m_state.QualityPlanTemplate = appPath + QStringLiteral("Urakan laatusuunnitelma.txt");
    for (int i = 0; i < 3; ++i)
        Submenu10[i]->setChecked(i == m_state.ProgramMode - 1);
    for (int i = 0; i < 3; ++i)
        Submenu30[i]->setChecked(i == s.StartUpDocument);
    if (!anyOffice) readOfficeRows(m_state);
    EnableControlsForm6(*this);
}

void MDIForm1::SaveSettings() {
    for (int i = 0; i < 3; ++i) {
        if (Submenu30[i]->isChecked()) {
            m_state.settings.StartUpDocument = i;
            break;
        }
    }
    WriteSettingsValues(*m_store, m_state);
}

void MDIForm1::LoadHelpFiles() {
    loadHelpFileMenu(*this);
}

// ---------------------------------------------------------------------------------------------
// Status bar and progress

void MDIForm1::ClearStatusBar() {
    for (int i : {1, 3, 5})
        m_panels[i]->clear();
}

void MDIForm1::DisplayProgress(int percent, const QString& text) {
    if (percent == 0) {
        ProgressBar1->setValue(0);
        m_progressText->setText(text);
        statusBar()->hide();
        ProgressBar1->show();
        m_progressStrip->show();
        // Only the strip is laid out and drawn: painting the whole window here would draw the
        // windows once more before the operation changes them.
        if (QLayout* l = layout()) l->activate();
        if (m_progressStrip->isVisible()) m_progressStrip->repaint();
        return;
    } else if (percent == 100) {
        statusBar()->show();
        m_progressStrip->hide();
    } else {
        // Between the first and the last step only the bar is drawn again (setValue repaints
        // it): running the event loop here would also lay out and paint the windows being
        // filled, several times over for a large project, when they show once it ends anyway.
        ProgressBar1->setValue(percent);
        return;
    }
    pendingEvents();
}

void MDIForm1::UpdateCaptionText(lists::ListView* view) {
    if (!view || !view->list()) return;
    const lists::ListModel& list = *view->list();
    const QString kind = list.kind();
    if (kind != QStringLiteral("Määräluettelo ja kustannusarvio") &&
        kind != QStringLiteral("Laatuvaatimukset") && kind != QStringLiteral("Yksikköhintaluettelo") &&
        kind != QStringLiteral("Laatuvaatimusten perusluettelo"))
        return;
    const int row = list.currentRow();
    ClearStatusBar();
    if (row < 1) return;
    const std::array<QString, 3> texts = lists::CaptionStatusTexts(list, row);
    for (int i = 0; i < 3; ++i)
        m_panels[1 + 2 * i]->setText(texts[i]);
}

void MDIForm1::listFocused(lists::ListView* view) {
    UpdateCaptionText(view);
}

void MDIForm1::setFileOperation(bool running) {
    for (QMenu* m : MainMenu)
        m->menuAction()->setEnabled(!running);
    Toolbar1->setEnabled(!running);
    if (!running) EnableControlsMDI();
}

bool MDIForm1::userBusy() const {
    if (fileOperationRunning() || m_state.Loading) return true;
    if (QApplication::activeModalWidget() || QApplication::activePopupWidget()) return true;
    // Any dialog of the program still open: the row editor, the text editor, the print
    // selection and its preview, e-mail, the image viewer.
    for (QWidget* w : QApplication::topLevelWidgets())
        if (w->isVisible() && qobject_cast<QDialog*>(w)) return true;
    return false;
}

void MDIForm1::setWaitingFileNote(const QString& file) {
    if (file.isEmpty()) {
        if (statusBar()->currentMessage().startsWith(kWaitingNote)) statusBar()->clearMessage();
        return;
    }
    statusBar()->showMessage(kWaitingNote + QFileInfo(file).fileName() +
                             QStringLiteral(" (avataan, kun avoin ikkuna on suljettu)"));
}

bool MDIForm1::fileOperationRunning() const {
    return !Toolbar1->isEnabled();
}

// ---------------------------------------------------------------------------------------------
// Dispatchers

void MDIForm1::FileMenuActions(int index) {
    switch (index) {
        case 0:
            NewProject();
            break;
        case 1:
        case 10:
            // The dialogs start in the active project's folder, else where projects were last.
            m_state.CurrentFileName = platform::ShowCommonDialog(
                1, QStringLiteral(".sl"), false, m_state.dialog, ParseFileName(ActiveCaption()).directory);
            if (m_state.CurrentFileName.isEmpty()) return;
            openProjectFile(m_state.CurrentFileName, index == 10);
            break;
        case 2:
        case 3:
            saveActiveProject(index == 3);
            break;
        case 5:
            UnloadActiveProject();
            break;
        case 7:
            showPrintDialog(*this);
            break;
        case 8:
            showMailDialog(*this);
            break;
        case 13:
        case 14:
        case 15:
        case 16:
        case 17:
        case 18:
            openRecentFile(index - 13);
            break;
        default:
            break;
    }
}

void MDIForm1::saveActiveProject(bool newName) {
    const ParsedCaption c = ParseFileName(ActiveCaption());
    if (c.name.isEmpty()) return;
    if (newName) {
        // A saved project's dialog starts at its own file, named as it is.
        m_state.CurrentFileName = platform::ShowCommonDialog(2, QStringLiteral(".sl"), false, m_state.dialog,
                                                             c.directory.isEmpty() ? QString() : c.project());
        if (m_state.CurrentFileName.isEmpty()) return;
        WriteSlFile(*this, c.project(), m_state.CurrentFileName, false);
        return;
    }
    QString target = c.project();
    if (c.directory.isEmpty()) {
        m_state.CurrentFileName = platform::ShowCommonDialog(2, QStringLiteral(".sl"), false, m_state.dialog);
        if (m_state.CurrentFileName.isEmpty()) return;
        target = m_state.CurrentFileName;
    }
    WriteSlFile(*this, c.project(), target, false);
}

void MDIForm1::openRecentFile(int n) {
    m_state.CurrentFileName = m_state.RecentFiles[n];
    if (m_state.CurrentFileName.isEmpty()) return;
    if (!QFileInfo::exists(m_state.CurrentFileName)) {
        platform::MsgBox(QStringLiteral("Tiedostoa: ") + m_state.CurrentFileName +
                             QStringLiteral(" ei löydy."),
                         MsgIcon::Information);
        // A file that is gone leaves the list.
        if (DropMissingRecentFiles(m_state.RecentFiles)) UpdateRecentFiles(QString());
        return;
    }
    openProjectFile(m_state.CurrentFileName, false);
}

void MDIForm1::openFromCommandLine(const QString& file) {
    const QFileInfo fi(file);
    if (!fi.exists()) {
        platform::MsgBox(QStringLiteral("Tiedostoa: ") + file + QStringLiteral(" ei löydy."),
                         MsgIcon::Information);
        return;
    }
    // A unit price list or a requirement base list opens in its own window.
    const QString suffix = fi.suffix().toLower();
    if (suffix == QLatin1String("sl1") || suffix == QLatin1String("sl2")) {
        const int slot = suffix == QLatin1String("sl1") ? 6 : 7;
        lists::BaseListWindow* window = slot == 6 ? Form6 : Form7;
        if (!window || FormTouched(window)) return;
        if (window->openFile(fi.absoluteFilePath())) showBaseList(slot);
        return;
    }
    m_state.CurrentFileName = fi.absoluteFilePath();
    openProjectFile(m_state.CurrentFileName, false);
}

void MDIForm1::openProjectFile(const QString& file, bool textOnly, const QString& recoveredAs,
                               bool readOnlyCopy) {
    if (recoveredAs.isEmpty() && FileNameInUse(m_state.CurrentFileName)) return;
    if (recoveredAs.isEmpty()) {
        // A project that another running program has open.
        switch (ProjectLocks::askBeforeOpening(file)) {
            case ProjectLocks::OpenChoice::Cancel:
                return;
            case ProjectLocks::OpenChoice::ReadOnly:
                openProjectFile(file, textOnly, QStringLiteral("Projekti"), true);
                return;
            case ProjectLocks::OpenChoice::Edit:
                break;
        }
    }
    ParsedCaption c = ParseFileName(ActiveCaption());
    bool created = false;
    if (!(c.directory.isEmpty() && c.unchanged && !c.name.isEmpty())) {
        const QString name = NewProject();
        c = ParseFileName(name);
        created = true;
    }
    // A project never saved keeps the name of the windows it opens into, so that no two
    // projects share a name.
    QString openAs = recoveredAs;
    if (!openAs.isEmpty() && ParseFileName(openAs).directory.isEmpty()) openAs = c.project();
    const bool read = ReadSlFile(*this, c.project(), file, textOnly, openAs);
    // The copy opened read-only is a new project that nobody changed yet.
    if (read && readOnlyCopy) ChangeFormCaptions(openAs, openAs, true);
    if (!read && created) {
        // A project created only for this open goes away again.
        ProjectWindows w = projectWindowsOf(c.project());
        for (documents::ProjectWindow* pw : w.all())
            unloadWindow(pw);
        ClearStatusBar();
        EnableControlsMDI();
    }
}

void MDIForm1::openRecoveredProject(const QString& copy, const QString& project) {
    openProjectFile(copy, false, project);
}

void MDIForm1::EditMenuClick(int index) {
    if (index != 1 && index != 7) Touch();
    EditMenuActions(index);
}

void MDIForm1::EditMenuActions(int index) {
    editMenuAction(*this, index);
}

void MDIForm1::ToolbarMenuActions(const QString& key) {
    if (key == QLatin1String("New"))
        FileMenuActions(0);
    else if (key == QLatin1String("Open"))
        FileMenuActions(1);
    else if (key == QLatin1String("Save"))
        FileMenuActions(2);
    else if (key == QLatin1String("Cut"))
        EditMenuActions(6);
    else if (key == QLatin1String("Copy"))
        EditMenuActions(7);
    else if (key == QLatin1String("Paste"))
        EditMenuActions(8);
    else if (key == QLatin1String("Del"))
        EditMenuActions(9);
    else if (key == QLatin1String("Undo"))
        undoOrRedo(*this, false);
    else if (key == QLatin1String("Redo"))
        undoOrRedo(*this, true);
    else if (key == QLatin1String("Find"))
        EditMenuActions(11);
    else if (key == QLatin1String("Print"))
        FileMenuActions(7);
    else if (key == QLatin1String("Bridge"))
        showProjectWindow(1);
    else if (key == QLatin1String("Rulers"))
        showProjectWindow(2);
    else if (key == QLatin1String("Card"))
        showProjectWindow(3);
    else if (key == QLatin1String("Dynamite"))
        showProjectWindow(4);
}

void MDIForm1::Submenu10Click(int index) {
    if (index == m_state.ProgramMode - 1) {
        Submenu10[index]->setChecked(true);
        return;
    }
    Submenu10[m_state.ProgramMode - 1]->setChecked(false);
    m_state.ProgramMode = index + 1;
    Submenu10[index]->setChecked(true);
    followProgramMode(*this);
    EnableControlsMDI();
    EnableControlsForm6(*this);
    for (documents::ProjectWindow* w : projectWindows())
        EnableControlsPage(*this, w, true);
    // The active window's menu state is the one that counts.
    if (documents::ProjectWindow* w = activeWindow()) EnableControlsPage(*this, w, false);
}

void MDIForm1::Submenu30Click(int index) {
    if (!activeWindow()) {
        // Keep the check where it was.
        for (int i = 0; i < 3; ++i)
            if (Submenu30[i]->isChecked() != (i == m_state.settings.StartUpDocument))
                Submenu30[i]->setChecked(i == m_state.settings.StartUpDocument);
        return;
    }
    int checked = m_state.settings.StartUpDocument;
    if (checked != index) {
        Submenu30[checked]->setChecked(false);
        Submenu30[index]->setChecked(true);
        m_state.settings.StartUpDocument = index;
        UpdateTextDocuments(*this, checked);
    } else {
        Submenu30[index]->setChecked(true);
    }
    showProjectWindow(2);
    focusTextDocument(*this);
}

void MDIForm1::HelpMenuClick(int index) {
    if (index == static_cast<int>(SubMenu4.size()) - 1) {
        showAbout(*this);
        return;
    }
    if (index == 0) TamrikHelp(*this, 200);
}

// ---------------------------------------------------------------------------------------------
// Projects, captions and changes

std::vector<documents::ProjectWindow*> MDIForm1::projectWindows() const {
    std::vector<documents::ProjectWindow*> out;
    for (QMdiSubWindow* sub : mdiArea->subWindowList(QMdiArea::CreationOrder))
        if (auto* w = qobject_cast<documents::ProjectWindow*>(sub->widget())) out.push_back(w);
    return out;
}

documents::ProjectWindow* MDIForm1::activeWindow() const {
    QMdiSubWindow* sub = mdiArea->currentSubWindow();
    return sub ? qobject_cast<documents::ProjectWindow*>(sub->widget()) : nullptr;
}

QString MDIForm1::ActiveCaption() const {
    documents::ProjectWindow* w = activeWindow();
    return w ? w->caption() : QString();
}

ProjectWindows MDIForm1::projectWindowsOf(const QString& project) const {
    ProjectWindows out;
    if (project.isEmpty()) return out;
    for (documents::ProjectWindow* w : projectWindows()) {
        if (ParseFileName(w->caption()).project() != project) continue;
        if (auto* f = qobject_cast<documents::Form1*>(w))
            out.f1 = f;
        else if (auto* f = qobject_cast<documents::Form2*>(w))
            out.f2 = f;
        else if (auto* f = qobject_cast<documents::Form3*>(w))
            out.f3 = f;
        else if (auto* f = qobject_cast<documents::Form4*>(w))
            out.f4 = f;
    }
    return out;
}

ProjectWindows MDIForm1::ParseFormIndeces() const {
    return projectWindowsOf(ParseFileName(ActiveCaption()).project());
}

ProjectWindows MDIForm1::ChangeFormCaptions(const QString& oldProject, const QString& newFile, bool mark) {
    const QString newProject = ParseFileName(newFile).project();
    ProjectWindows w = projectWindowsOf(ParseFileName(oldProject).project());
    int kind = 1;
    for (documents::ProjectWindow* pw :
         {static_cast<documents::ProjectWindow*>(w.f1), static_cast<documents::ProjectWindow*>(w.f2),
          static_cast<documents::ProjectWindow*>(w.f3), static_cast<documents::ProjectWindow*>(w.f4)}) {
        if (pw) pw->setCaption(MakeCaption(newProject, kind, mark));
        ++kind;
    }
    emit projectsChanged();
    return w;
}

void MDIForm1::Touch() {
    documents::ProjectWindow* w = activeWindow();
    if (!w || !CaptionIsUnchanged(w->caption())) return;
    const QString project = ParseFileName(w->caption()).project();
    ChangeFormCaptions(project, project, false);
}

void MDIForm1::touchProjectOf(QWidget* window) {
    auto* w = qobject_cast<documents::ProjectWindow*>(window);
    if (!w || !CaptionIsUnchanged(w->caption())) return;
    const QString project = ParseFileName(w->caption()).project();
    ChangeFormCaptions(project, project, false);
}

void MDIForm1::contentChanged(QWidget* window) {
    if (m_state.Loading) return;
    if (auto* w = qobject_cast<documents::ProjectWindow*>(window)) {
        // A change outside the history (a rich-text document): changed until it is saved.
        if (lists::EditHistory* h = w->history()) h->markUnrecorded();
        touchProjectOf(window);
    } else {
        FormTouch(window);
    }
}

void MDIForm1::bringForward(QWidget* window) {
    if (auto* w = qobject_cast<documents::ProjectWindow*>(window)) activateWindow(w);
}

// "Las&ke tunnusluvut": the card's figures come from its project's basic data and quantity list.
void MDIForm1::computeCardFigures(QWidget* card) {
    auto* f3 = qobject_cast<documents::Form3*>(card);
    if (!f3) return;
    const ProjectWindows w = projectWindowsOf(ParseFileName(f3->caption()).project());
    if (!w.f1) return;
    // Every field it computes is one step.
    lists::EditHistory* history = f3->history();
    if (history) history->beginGroup(persist::kComputeFiguresStep);
    const calc::CostRecord costs = documents::UpdateCardText(*w.f1, w.f2, *f3);
    if (history) history->endGroup();
    // The card shows "#####" for an overflowed figure; the message says where it began.
    if (costs.nonFiniteRow != 0) {
        QString message = calc::NonFiniteMessage(costs);
        message[0] = message[0].toUpper();
        platform::MsgBox(message + QStringLiteral(" (määräluettelo ja kustannusarvio)."),
                         MsgIcon::Exclamation);
    }
}

void MDIForm1::FormTouch(QWidget* window) {
    if (window) window->setWindowTitle(CaptionTouched(window->windowTitle()));
}

void MDIForm1::FormUntouch(QWidget* window) {
    if (window) window->setWindowTitle(CaptionUntouched(window->windowTitle()));
}

bool MDIForm1::FormTouched(QWidget* window) {
    if (!window || CaptionIsUnchanged(window->windowTitle())) return false;
    const MsgAnswer a = platform::Ask(QStringLiteral("Perusluettelotiedostoa: ") + window->windowTitle() +
                                          QStringLiteral("\non muutettu. Jatka tallentamatta tiedostoa?"),
                                      MsgButtons::YesNo, MsgIcon::Exclamation, MsgAnswer::Yes);
    if (a == MsgAnswer::Yes) return false;
    m_tag.clear();
    return true;
}

bool MDIForm1::FormUnload(QWidget* window) {
    if (!window || CaptionIsUnchanged(window->windowTitle())) return false;
    const MsgAnswer a = platform::Ask(QStringLiteral("Tallentamattomat tiedot menetetään. Haluatko jatkaa?"),
                                      MsgButtons::YesNoCancel, MsgIcon::Question, MsgAnswer::No);
    return a != MsgAnswer::Yes;
}

void MDIForm1::unloadWindow(documents::ProjectWindow* window) {
    QMdiSubWindow* sub = qobject_cast<QMdiSubWindow*>(window->parentWidget());
    window->setProperty("unloading", true);
    if (sub) {
        mdiArea->removeSubWindow(window);
        sub->deleteLater();
    }
    window->hide();
    window->deleteLater();
    window->setParent(nullptr);
}

bool MDIForm1::UnloadActiveProject() {
    documents::ProjectWindow* active = activeWindow();
    if (!active) return false;
    const ParsedCaption c = ParseFileName(active->caption());
    if (!c.unchanged) {
        const MsgAnswer a = platform::Ask(QStringLiteral("Tiedostoa: ") + c.project() +
                                              QStringLiteral("\non muutettu. Tallennetaanko tiedosto:"),
                                          MsgButtons::YesNoCancel, MsgIcon::Exclamation, MsgAnswer::Yes);
        if (a == MsgAnswer::Cancel) return true;
        if (a == MsgAnswer::Yes) {
            const QString file = platform::ShowCommonDialog(2, QStringLiteral(".sl"), false, m_state.dialog,
                                                            c.directory.isEmpty() ? QString() : c.project());
            m_state.CurrentFileName = file;
            if (file.isEmpty()) return true;
            // A failed save keeps the project open.
            if (!WriteSlFile(*this, c.project(), file, false)) return true;
        }
    }
    // The save may have renamed the windows: find them again by the active window.
    const ProjectWindows w = projectWindowsOf(ParseFileName(active->caption()).project());
    for (documents::ProjectWindow* pw : w.all())
        unloadWindow(pw);
    ClearStatusBar();
    // Another project becomes the active one.
    const auto rest = projectWindows();
    if (!rest.empty() && !mdiArea->currentSubWindow()) activateWindow(rest.back());
    EnableControlsMDI();
    emit projectsChanged();
    return false;
}

bool MDIForm1::FileNameInUse(const QString& file, const QString& except) {
    for (documents::ProjectWindow* w : projectWindows()) {
        const QString project = ParseFileName(w->caption()).project();
        if (project == except) continue;
        if (sameFile(project, file)) {
            platform::MsgBox(QStringLiteral("Tiedosto:") + file + QStringLiteral("\non jo avoinna."),
                             MsgIcon::Information);
            return true;
        }
    }
    return false;
}

void MDIForm1::UpdateRecentFiles(const QString& file) {
    UpdateRecentFileList(m_state.RecentFiles, file);
    // A project opened or saved any way (dialog, drop, recent files) is where projects are.
    if (!file.isEmpty()) m_state.dialog.folders[QStringLiteral("Projects")] = QFileInfo(file).absolutePath();
    bool any = false;
    for (int i = 0; i < 6; ++i) {
        QAction* a = SubMenu0[13 + i];
        const QString& f = m_state.RecentFiles[i];
        if (f.isEmpty()) {
            a->setVisible(false);
        } else {
            QString shown = f;
            shown.replace(QLatin1Char('&'), QLatin1String("&&"));
            a->setText(QStringLiteral("&%1 ").arg(i + 1) + shown);
            a->setToolTip(QDir::toNativeSeparators(QFileInfo(f).absolutePath()));
            a->setVisible(true);
            any = true;
        }
    }
    SubMenu0[19]->setVisible(any);
}

QString MDIForm1::NewProject() {
    m_state.ProjectCounter += 1;
    m_state.Loading = true;
    const QString name = QStringLiteral("Projekti%1").arg(m_state.ProjectCounter);
    for (int kind = 1; kind <= 4; ++kind)
        CreateDocumentWindow(kind, MakeCaption(name, kind, true));
    attachProjectHistory(*this, projectWindowsOf(name));
    if (m_state.ProgramMode != 2) ShowWindowByCaption(MakeCaption(name, 4, true));
    ShowWindowByCaption(MakeCaption(name, 3, true));
    ShowWindowByCaption(MakeCaption(name, 2, true));
    ShowWindowByCaption(MakeCaption(name, 1, true));
    EnableControlsMDI();
    pendingEvents();
    m_state.Loading = false;
    emit projectsChanged();
    return name;
}

documents::ProjectWindow* MDIForm1::CreateDocumentWindow(int kind, const QString& caption) {
    documents::ProjectWindow* w = nullptr;
    switch (kind) {
        case 1:
            w = new documents::Form1(*this);
            break;
        case 2:
            w = new documents::Form2(*this);
            break;
        case 3:
            w = new documents::Form3(*this);
            break;
        case 4:
            w = new documents::Form4(*this);
            break;
        default:
            return nullptr;
    }
    w->setCaption(caption);
    QMdiSubWindow* sub = mdiArea->addSubWindow(w);
    sub->setAttribute(Qt::WA_DeleteOnClose, false);
    // The sub-window's own menu would claim Ctrl+W, which belongs to the View menu.
    if (QMenu* system = sub->systemMenu())
        for (QAction* a : system->actions())
            a->setShortcut(QKeySequence());
    // The four windows of a project cascade from the top left, each as large as it wants to
    // be within the frame.
    const int offset = 26 * (kind - 1);
    QSize size = sub->sizeHint();
    const QSize area = mdiArea->viewport()->size();
    if (area.width() > 300 && area.height() > 200)
        size = size.boundedTo(QSize(area.width() - offset, area.height() - offset));
    sub->resize(size);
    sub->move(offset, offset);
    sub->installEventFilter(this);
    sub->hide();
    const bool wasLoading = m_state.Loading;
    m_state.Loading = true;
    w->prepareNewProject();
    m_state.Loading = wasLoading;
    connectPictureButtons(*this, w);
    EnableControlsPage(*this, w, true);
    return w;
}

void MDIForm1::ShowWindowByCaption(const QString& caption) {
    const QString wanted = CaptionTouched(caption);
    for (documents::ProjectWindow* w : projectWindows()) {
        if (CaptionTouched(w->caption()) != wanted) continue;
        activateWindow(w);
        return;
    }
}

void MDIForm1::stepWindow(int step) {
    // In the order the windows were made, which stays put while they are visited.
    QList<QMdiSubWindow*> shown;
    for (QMdiSubWindow* sub : mdiArea->subWindowList(QMdiArea::CreationOrder))
        if (sub->isVisible()) shown << sub;
    if (shown.size() < 2) return;
    const qsizetype at = shown.indexOf(mdiArea->currentSubWindow());
    const qsizetype n = shown.size();
    QMdiSubWindow* target = shown[((at < 0 ? 0 : at) + step + n) % n];
    if (target->isMinimized()) target->showNormal();
    mdiArea->setActiveSubWindow(target);
}

void MDIForm1::activateWindow(documents::ProjectWindow* window) {
    auto* sub = qobject_cast<QMdiSubWindow*>(window->parentWidget());
    if (!sub) return;
    if (!sub->isVisible()) {
        sub->show();
        window->show();
    }
    if (sub->isMinimized()) sub->showNormal();
    mdiArea->setActiveSubWindow(sub);
    sub->raise();
}

void MDIForm1::showProjectWindow(int kind) {
    if (kind == 4 && m_state.ProgramMode == 2) return;
    const ProjectWindows w = ParseFormIndeces();
    documents::ProjectWindow* target = nullptr;
    switch (kind) {
        case 1:
            target = w.f1;
            break;
        case 2:
            target = w.f2;
            break;
        case 3:
            target = w.f3;
            break;
        case 4:
            target = w.f4;
            break;
        default:
            break;
    }
    if (!target) return;
    if (kind == 4 && w.f1) copyMunicipality(*this, w);
    activateWindow(target);
    if (kind == 2) EnableControlsPage(*this, target, false);
}

bool MDIForm1::eventFilter(QObject* watched, QEvent* event) {
    // The close box of a project window closes the whole project, with its question.
    if (event->type() == QEvent::Close) {
        auto* sub = qobject_cast<QMdiSubWindow*>(watched);
        auto* w = sub ? qobject_cast<documents::ProjectWindow*>(sub->widget()) : nullptr;
        if (w && !w->property("unloading").toBool()) {
            event->ignore();
            if (fileOperationRunning()) return true;
            activateWindow(w);
            UnloadActiveProject();
            return true;
        }
    }
    return QMainWindow::eventFilter(watched, event);
}

void MDIForm1::EnableControlsMDI() {
    const bool any = activeWindow() != nullptr;
    MainMenu[2]->menuAction()->setEnabled(any);
    MainMenu[3]->menuAction()->setEnabled(any);
    for (int i : {2, 3, 5, 7, 8})
        SubMenu0[i]->setEnabled(any);
    if (CompareAction) CompareAction->setEnabled(any);
    for (auto& [key, action] : toolbarButtons)
        if (key != QLatin1String("New") && key != QLatin1String("Open")) action->setEnabled(any);
    updateUndoActions(*this);
}

} // namespace shell
