#include "shell/frmSplash.h"

#include "platform/Dialogs.h"
#include "platform/ui/Icons.h"
#include "platform/ui/PictureBox.h"

#include <QApplication>
#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QScreen>
#include <QVBoxLayout>

namespace shell {

QString versionText() {
    return QStringLiteral("Ohjelmakäännös ") + QStringLiteral("%1.%2.%3")
                                                   .arg(TAMRIK_VERSION_MAJOR)
                                                   .arg(TAMRIK_VERSION_MINOR)
                                                   .arg(TAMRIK_VERSION_PATCH);
}

QString copyrightText() {
    return QStringLiteral("Copyright © 2000–2026 TAMRIK-kehitystiimi");
}

QString companyText() {
    return QStringLiteral("TAMRIK-kehitystiimi");
}

frmSplash::frmSplash(QWidget* parent)
    : QWidget(parent, Qt::SplashScreen | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint) {
    setAttribute(Qt::WA_ShowWithoutActivating);
    auto* outer = new QVBoxLayout(this);
    outer->setContentsMargins(0, 0, 0, 0);
    auto* frame = new QFrame(this);
    frame->setFrameShape(QFrame::Box);
    frame->setLineWidth(2);
    outer->addWidget(frame);
    auto* layout = new QVBoxLayout(frame);
    layout->setContentsMargins(24, 18, 24, 18);
    // The program's logo beside the executable.
    auto* imgLogo = new platform::PictureBox(frame);
    imgLogo->setObjectName(QStringLiteral("imgLogo"));
    imgLogo->setFrameShape(QFrame::NoFrame);
    imgLogo->setMinimumSize(360, 90);
    imgLogo->setPicture(platform::Picture::fromFile(QCoreApplication::applicationDirPath() +
                                                    QStringLiteral("/Tamrik2006-logo.wmf")));
    auto* lblProductName = new QLabel(platform::applicationTitle(), frame);
    lblProductName->setObjectName(QStringLiteral("lblProductName"));
    QFont title = lblProductName->font();
    title.setPointSize(16);
    lblProductName->setFont(title);
    auto* icon = new QLabel(frame);
    icon->setObjectName(QStringLiteral("imgIcon"));
    icon->setPixmap(platform::applicationIcon().pixmap(48, 48));
    auto* titleRow = new QHBoxLayout;
    titleRow->addWidget(icon);
    titleRow->addSpacing(8);
    titleRow->addWidget(lblProductName, 1);
    auto* lblVersion = new QLabel(versionText(), frame);
    lblVersion->setObjectName(QStringLiteral("lblVersion"));
    auto* lblCopyright = new QLabel(copyrightText(), frame);
    lblCopyright->setObjectName(QStringLiteral("lblCopyright"));
    auto* loading = new QLabel(QStringLiteral("Lataa perusluetteloita..."), frame);
    ProgressBar1 = new QProgressBar(frame);
    ProgressBar1->setRange(0, 100);
    ProgressBar1->setTextVisible(false);
    layout->addWidget(imgLogo);
    layout->addLayout(titleRow);
    layout->addWidget(lblVersion);
    layout->addSpacing(12);
    layout->addWidget(loading);
    layout->addWidget(ProgressBar1);
    layout->addSpacing(8);
    layout->addWidget(lblCopyright);
    setFixedSize(sizeHint().expandedTo(QSize(420, 240)));
    if (QScreen* s = QApplication::primaryScreen()) move(s->availableGeometry().center() - rect().center());
}

void frmSplash::setProgress(int percent) {
    ProgressBar1->setValue(percent);
    // The main window is not shown yet, so the splash is the only window input can reach: a
    // key or a click closes it early.
    QCoreApplication::processEvents();
}

void frmSplash::keyPressEvent(QKeyEvent*) {
    hide();
}

void frmSplash::mousePressEvent(QMouseEvent*) {
    hide();
}

} // namespace shell
