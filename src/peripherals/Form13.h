#pragma once
// The image viewer: one of the project's card pictures or the print logo, scaled to fit the
// window with its proportions kept. The picture can be replaced from a file or the clipboard,
// copied or deleted; it goes back to its owner when the window closes, unless "Peruuta" closed
// it, and only when it was changed.
#include "platform/CommonDialog.h"
#include "platform/Picture.h"

#include <QDialog>
#include <functional>

class QAction;
class QMenuBar;
class QStatusBar;

namespace platform {
class PictureBox;
}

namespace peripherals {

class Form13 : public QDialog {
    Q_OBJECT
public:
    // Receives the changed picture: the slot, the picture, and the file it was loaded from
    // (empty when it came from the clipboard or was deleted).
    using GiveBack = std::function<void(int slot, const platform::Picture& picture, const QString& file)>;

    // Opens on a copy of the owner's picture of `slot` (1 the print logo, 2..7 the project's
    // pictures 0..5). The caption is `owner` followed by the slot's suffix.
    Form13(int slot, const QString& owner, const platform::Picture& picture,
           platform::CommonDialogState& dialogState, GiveBack giveBack, QWidget* parent = nullptr);

    // The caption suffix of a slot: " (Logotiedosto)", " (Ominaistietokortti - sivukuva)", ...
    static QString SlotSuffix(int slot);

    // "&Avaa kuvatiedosto...": a picture from a file.
    void OpenPictureFile();
    // "&Päivitä ja sulje".
    void UpdateAndClose();
    // "Lisää kuva leikepöydältä": metafile, device-independent bitmap, bitmap, in this order.
    void PastePicture();
    // "Kopioi kuva leikepöydälle".
    void CopyPicture();
    // "Poista kuva".
    void DeletePicture();
    // "Peruuta": closes and the owner keeps its picture.
    void Cancel();

    // The picture's number; negative once the picture has been changed.
    int ImageSlot = 0;
    platform::PictureBox* Image1 = nullptr;
    // The file the picture was loaded from; empty when it came from the clipboard or was deleted.
    QString tag() const { return m_tag; }
    QStatusBar* StatusBar1 = nullptr;
    QMenuBar* MenuBar = nullptr;
    // The menu items, in menu order: open, update and close, paste, copy, delete, cancel.
    std::vector<QAction*> MenuItems;

    QSize sizeHint() const override;

protected:
    // Every way of closing ends here: Esc and the close box give the picture back too.
    void done(int result) override;

private:
    void markChanged();
    void showStatus();

    platform::CommonDialogState& m_dialog;
    GiveBack m_giveBack;
    QString m_tag;
    bool m_cancel = false;
    bool m_closed = false;
};

} // namespace peripherals
