#include "platform/ui/QtDialogs.h"

#include <QApplication>
#include <QColorDialog>
#include <QFileDialog>
#include <QFontDialog>
#include <QAbstractButton>
#include <QMessageBox>
#include <QTimer>

namespace platform {

namespace {

QWidget* dialogParent() {
    return QApplication::activeWindow();
}

QMessageBox::StandardButton toButton(MsgAnswer a) {
    switch (a) {
        case MsgAnswer::Yes:
            return QMessageBox::Yes;
        case MsgAnswer::No:
            return QMessageBox::No;
        case MsgAnswer::Cancel:
            return QMessageBox::Cancel;
        case MsgAnswer::Ok:
            break;
    }
    return QMessageBox::Ok;
}

class QtDialogs final : public Dialogs {
public:
    MsgAnswer message(const MessageRequest& r) override {
        QMessageBox box(dialogParent());
        box.setWindowTitle(r.title.isEmpty() ? applicationTitle() : r.title);
        box.setText(QString(r.text).replace(QLatin1String("\r\n"), QLatin1String("\n")));
        switch (r.icon) {
            case MsgIcon::None:
                box.setIcon(QMessageBox::NoIcon);
                break;
            case MsgIcon::Information:
                box.setIcon(QMessageBox::Information);
                break;
            case MsgIcon::Question:
                box.setIcon(QMessageBox::Question);
                break;
            case MsgIcon::Exclamation:
                box.setIcon(QMessageBox::Warning);
                break;
            case MsgIcon::Critical:
                box.setIcon(QMessageBox::Critical);
                break;
        }
        switch (r.buttons) {
            case MsgButtons::Ok:
                box.setStandardButtons(QMessageBox::Ok);
                break;
            case MsgButtons::YesNo:
                box.setStandardButtons(QMessageBox::Yes | QMessageBox::No);
                break;
            case MsgButtons::YesNoCancel:
                box.setStandardButtons(QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel);
                break;
        }
        box.setDefaultButton(toButton(r.defaultButton));
        const MsgAnswer order[] = {MsgAnswer::Yes, MsgAnswer::No, MsgAnswer::Cancel};
        for (int i = 0; i < r.buttonTexts.size() && i < 3; ++i)
            if (QAbstractButton* b = box.button(toButton(order[i]))) b->setText(r.buttonTexts[i]);
        if (r.toFront) {
            box.setWindowFlag(Qt::WindowStaysOnTopHint);
            QTimer::singleShot(0, &box, [&box] {
                box.raise();
                box.activateWindow();
            });
        }
        switch (box.exec()) {
            case QMessageBox::Yes:
                return MsgAnswer::Yes;
            case QMessageBox::No:
                return MsgAnswer::No;
            case QMessageBox::Ok:
                return MsgAnswer::Ok;
            default:
                break;
        }
        return r.buttons == MsgButtons::YesNo ? MsgAnswer::No : MsgAnswer::Cancel;
    }

    QStringList files(const FileRequest& r) override {
        QFileDialog dlg(dialogParent());
        dlg.setNameFilters(r.filters);
        dlg.setDirectory(r.directory);
        if (r.save) {
            dlg.setAcceptMode(QFileDialog::AcceptSave);
            dlg.setFileMode(QFileDialog::AnyFile);
            if (!r.defaultSuffix.isEmpty()) dlg.setDefaultSuffix(r.defaultSuffix);
            if (!r.fileName.isEmpty()) dlg.selectFile(r.fileName);
        } else {
            dlg.setAcceptMode(QFileDialog::AcceptOpen);
            dlg.setFileMode(r.multiple ? QFileDialog::ExistingFiles : QFileDialog::ExistingFile);
        }
        if (dlg.exec() != QDialog::Accepted) return {};
        return dlg.selectedFiles();
    }

    std::optional<QFont> font(const QFont& initial) override {
        bool ok = false;
        QFont f = QFontDialog::getFont(&ok, initial, dialogParent());
        if (!ok) return std::nullopt;
        return f;
    }

    std::optional<QColor> color(const QColor& initial) override {
        QColor c = QColorDialog::getColor(initial, dialogParent());
        if (!c.isValid()) return std::nullopt;
        return c;
    }
};

} // namespace

void useQtDialogs() {
    static QtDialogs dialogs;
    Dialogs::setDefault(&dialogs);
}

} // namespace platform
