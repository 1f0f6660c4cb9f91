#include "platform/Dialogs.h"

#include <QApplication>
#include <QColorDialog>
#include <QFileDialog>
#include <QFileInfo>
#include <QFontDialog>
#include <QMessageBox>
#include <QPushButton>
#include <QRegularExpression>

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

QtDialogs& qtDialogs() {
    static QtDialogs d;
    return d;
}

Dialogs* g_installed = nullptr;

} // namespace

Dialogs::~Dialogs() = default;

Dialogs& Dialogs::instance() {
    return g_installed ? *g_installed : qtDialogs();
}

void Dialogs::install(Dialogs* dialogs) {
    g_installed = dialogs;
}

QString applicationTitle() {
    return QStringLiteral("TAMRIK 2006");
}

void MsgBox(const QString& text, MsgIcon icon) {
    MessageRequest r;
    r.text = text;
    r.icon = icon;
    Dialogs::instance().message(r);
}

MsgAnswer Ask(const QString& text, MsgButtons buttons, MsgIcon icon, MsgAnswer defaultButton) {
    MessageRequest r;
    r.text = text;
    r.buttons = buttons;
    r.icon = icon;
    r.defaultButton = defaultButton;
    return Dialogs::instance().message(r);
}

QStringList translateFilter(const QString& barFilter) {
    const QStringList parts = barFilter.split(QLatin1Char('|'));
    QStringList out;
    static const QRegularExpression trailingPatterns(QStringLiteral("\\s*\\([^()]*\\)\\s*$"));
    for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
        QString description = parts[i];
        description.remove(trailingPatterns);
        QStringList patterns;
        for (const QString& p : parts[i + 1].split(QLatin1Char(';'), Qt::SkipEmptyParts)) {
            const QString t = p.trimmed();
            if (t.isEmpty()) continue;
            patterns << t.toLower();
            if (t.toUpper() != t.toLower()) patterns << t.toUpper();
        }
        if (patterns.isEmpty()) continue;
        out << description.trimmed() + QLatin1String(" (") + patterns.join(QLatin1Char(' ')) +
                   QLatin1Char(')');
    }
    return out;
}

} // namespace platform
