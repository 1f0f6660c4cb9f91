#include "peripherals/Form13.h"

#include "platform/Dialogs.h"
#include "platform/ui/PictureBox.h"
#include "platform/PictureClipboard.h"

#include <QAction>
#include <QClipboard>
#include <QGuiApplication>
#include <QMenuBar>
#include <QMimeData>
#include <QStatusBar>
#include <QVBoxLayout>

namespace peripherals {

namespace {

QString describe(const platform::Picture& picture) {
    const QSize size = picture.sizeHint();
    const QString dimensions = size.isValid()
                                   ? QStringLiteral(", %1 × %2 pikseliä").arg(size.width()).arg(size.height())
                                   : QString();
    switch (picture.type()) {
        case platform::Picture::Bitmap:
            return QStringLiteral("Bittikarttakuva") + dimensions;
        case platform::Picture::Metafile:
            return QStringLiteral("Metatiedosto (WMF)") + dimensions;
        case platform::Picture::Icon:
            return QStringLiteral("Kuvake") + dimensions;
        case platform::Picture::EnhancedMetafile:
            return QStringLiteral("Metatiedosto (EMF)") + dimensions;
        default:
            return QStringLiteral("Ei kuvaa");
    }
}

} // namespace

QString Form13::SlotSuffix(int slot) {
    static const char* const suffixes[] = {" (Logotiedosto)",
                                           " (Ominaistietokortti - sivukuva)",
                                           " (Ominaistietokortti - poikkileikkaus)",
                                           " (Omainaistietokortti - logo)",
                                           " (Panostilakortti - sivukuva)",
                                           " (Panostilakortti - poikkileikkaus)",
                                           " (Panostilakortti - merkkikilpi)"};
    slot = std::abs(slot);
    return slot >= 1 && slot <= 7 ? QString::fromUtf8(suffixes[slot - 1]) : QString();
}

Form13::Form13(int slot, const QString& owner, const platform::Picture& picture,
               platform::CommonDialogState& dialogState, GiveBack giveBack, QWidget* parent)
    : QDialog(parent)
    , ImageSlot(slot)
    , m_dialog(dialogState)
    , m_giveBack(std::move(giveBack)) {
    setWindowTitle(owner + SlotSuffix(slot));
    setSizeGripEnabled(true);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);

    MenuBar = new QMenuBar(this);
    layout->setMenuBar(MenuBar);
    QMenu* file = MenuBar->addMenu(QStringLiteral("&Tiedosto"));
    MenuItems.push_back(
        file->addAction(QStringLiteral("&Avaa kuvatiedosto..."), this, &Form13::OpenPictureFile));
    MenuItems.push_back(file->addAction(QStringLiteral("&Päivitä ja sulje"), this, &Form13::UpdateAndClose));
    QMenu* edit = MenuBar->addMenu(QStringLiteral("&Muokkaa"));
    MenuItems.push_back(
        edit->addAction(QStringLiteral("Lisää kuva leikepöydältä"), this, &Form13::PastePicture));
    MenuItems.back()->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_V));
    MenuItems.push_back(
        edit->addAction(QStringLiteral("Kopioi kuva leikepöydälle"), this, &Form13::CopyPicture));
    MenuItems.back()->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_C));
    MenuItems.push_back(edit->addAction(QStringLiteral("Poista kuva"), this, &Form13::DeletePicture));
    MenuItems.push_back(MenuBar->addAction(QStringLiteral("Peruuta"), this, &Form13::Cancel));

    // The picture fills the window from its top-left corner.
    Image1 = new platform::PictureBox(this);
    Image1->setObjectName(QStringLiteral("Image1"));
    Image1->setFrameStyle(QFrame::NoFrame);
    Image1->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    Image1->setMinimumSize(120, 90);
    Image1->setPicture(picture);
    layout->addWidget(Image1, 1);

    StatusBar1 = new QStatusBar(this);
    StatusBar1->setSizeGripEnabled(false);
    layout->addWidget(StatusBar1);
    showStatus();
}

QSize Form13::sizeHint() const {
    return QSize(640, 480);
}

void Form13::markChanged() {
    if (ImageSlot > 0) ImageSlot = -ImageSlot;
    showStatus();
}

void Form13::showStatus() {
    QString text = describe(Image1->picture());
    if (!m_tag.isEmpty()) text += QStringLiteral("  –  ") + m_tag;
    StatusBar1->showMessage(text);
}

void Form13::OpenPictureFile() {
    const QString file = platform::ShowCommonDialog(1, QStringLiteral(".wmf"), false, m_dialog);
    if (file.isEmpty()) return;
    QString error, reduced;
    const platform::Picture picture = platform::Picture::fromFile(file, &error, &reduced);
    if (picture.isNull()) {
        // The viewer keeps the picture it had.
        platform::MsgBox(error, platform::MsgIcon::Exclamation);
        return;
    }
    Image1->setPicture(picture);
    m_tag = file;
    markChanged();
    if (!reduced.isEmpty()) platform::MsgBox(reduced, platform::MsgIcon::Information);
}

void Form13::UpdateAndClose() {
    accept();
}

void Form13::PastePicture() {
    // With no picture on the clipboard nothing shows, but the picture still counts as changed.
    if (const QMimeData* data = QGuiApplication::clipboard()->mimeData()) {
        const platform::Picture picture = platform::pictureFromMimeData(*data);
        if (!picture.isNull()) Image1->setPicture(picture);
    }
    m_tag.clear();
    markChanged();
}

void Form13::CopyPicture() {
    QClipboard* clipboard = QGuiApplication::clipboard();
    clipboard->clear();
    if (!Image1->picture().isNull()) clipboard->setMimeData(platform::mimeDataFromPicture(Image1->picture()));
}

void Form13::DeletePicture() {
    Image1->clear();
    m_tag.clear();
    markChanged();
}

void Form13::Cancel() {
    m_cancel = true;
    reject();
}

void Form13::done(int result) {
    if (!m_closed) {
        m_closed = true;
        if (!m_cancel && ImageSlot < 0 && m_giveBack) m_giveBack(-ImageSlot, Image1->picture(), m_tag);
    }
    QDialog::done(result);
}

} // namespace peripherals
