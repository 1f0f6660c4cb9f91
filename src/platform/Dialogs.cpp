#include "platform/Dialogs.h"

#include <QRegularExpression>
#include <cstdio>

namespace platform {

namespace {

// Without windows (the command line, a program that has not set up its dialogs) a message goes
// to standard error and every question is answered as if the user cancelled.
class ConsoleDialogs final : public Dialogs {
public:
    MsgAnswer message(const MessageRequest& r) override {
        const QString text = QString(r.text).replace(QLatin1String("\r\n"), QLatin1String("\n"));
        std::fprintf(stderr, "%s\n", text.toLocal8Bit().constData());
        switch (r.buttons) {
            case MsgButtons::Ok:
                return MsgAnswer::Ok;
            case MsgButtons::YesNo:
                return MsgAnswer::No;
            case MsgButtons::YesNoCancel:
                break;
        }
        return MsgAnswer::Cancel;
    }
    QStringList files(const FileRequest&) override { return {}; }
    std::optional<QFont> font(const QFont&) override { return std::nullopt; }
    std::optional<QColor> color(const QColor&) override { return std::nullopt; }
};

Dialogs* g_installed = nullptr;
Dialogs* g_default = nullptr;

} // namespace

Dialogs::~Dialogs() = default;

Dialogs& Dialogs::instance() {
    static ConsoleDialogs console;
    if (g_installed) return *g_installed;
    return g_default ? *g_default : console;
}

void Dialogs::setDefault(Dialogs* dialogs) {
    g_default = dialogs;
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

MsgAnswer Ask(const MessageRequest& request) {
    return Dialogs::instance().message(request);
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
            QString t = p.trimmed();
            if (t.isEmpty()) continue;
            // "All files" are all, also those without an extension, which "*.*" would not match.
            if (t == QLatin1String("*.*")) t = QStringLiteral("*");
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
