#include "peripherals/TamrikHelp.h"

#include "platform/Dialogs.h"
#include "platform/TextFile.h"

#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QTextBrowser>
#include <QAction>
#include <QToolBar>
#include <QVBoxLayout>

namespace peripherals {

HelpViewer::HelpViewer(QWidget* parent)
    : QWidget(parent, Qt::Window) {
    setWindowTitle(QStringLiteral("TAMRIK 2006 - Ohjeet"));
    resize(760, 620);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    auto* bar = new QToolBar(this);
    m_browser = new QTextBrowser(this);
    m_browser->setOpenExternalLinks(true);
    QAction* back = bar->addAction(QStringLiteral("Edellinen"));
    QAction* forward = bar->addAction(QStringLiteral("Seuraava"));
    QAction* home = bar->addAction(QStringLiteral("Sisällys"));
    connect(back, &QAction::triggered, m_browser, &QTextBrowser::backward);
    connect(forward, &QAction::triggered, m_browser, &QTextBrowser::forward);
    connect(home, &QAction::triggered, m_browser, [this] {
        QUrl u = m_browser->source();
        u.setFragment(QStringLiteral("topic200"));
        m_browser->setSource(u);
    });
    connect(m_browser, &QTextBrowser::backwardAvailable, back, &QAction::setEnabled);
    connect(m_browser, &QTextBrowser::forwardAvailable, forward, &QAction::setEnabled);
    layout->addWidget(bar);
    layout->addWidget(m_browser);
    auto* close = new QAction(this);
    close->setShortcut(QKeySequence(Qt::Key_Escape));
    connect(close, &QAction::triggered, this, &QWidget::close);
    addAction(close);
}

bool HelpViewer::showTopic(const QString& helpFile, int context) {
    if (!QFileInfo::exists(helpFile)) return false;
    QUrl url = QUrl::fromLocalFile(QFileInfo(helpFile).absoluteFilePath());
    url.setFragment(QStringLiteral("topic%1").arg(context == 0 ? 200 : context));
    m_browser->setSource(url);
    m_browser->scrollToAnchor(url.fragment());
    show();
    raise();
    activateWindow();
    return true;
}

QString HelpViewer::currentSource() const {
    return m_browser->source().toString();
}

std::vector<HelpFileEntry> ReadHelpFiles(const QString& appPath) {
    std::vector<HelpFileEntry> out;
    QStringList lines;
    if (!platform::readTextLines(appPath + QStringLiteral("HelpFiles.txt"), lines)) return out;
    for (const QString& line : lines) {
        if (out.size() >= 20) break;
        HelpFileEntry e;
        e.caption = line.section(QLatin1Char(';'), 0, 0);
        e.target = line.section(QLatin1Char(';'), 1, 1);
        // Absolute paths and addresses are used as they are; anything else lies beside the program.
        const bool absolute = e.target.contains(QLatin1String("://")) ||
                              e.target.contains(QLatin1String("\\\\")) || QDir::isAbsolutePath(e.target) ||
                              (e.target.size() > 2 && e.target[1] == QLatin1Char(':'));
        if (!absolute) e.target = appPath + e.target;
        out.push_back(e);
    }
    return out;
}

} // namespace peripherals
