#pragma once
// The one way the program shows a modal message box or asks for a file, a font or a colour.
// The desktop program sets the Qt dialogs as the default (platform/ui/QtDialogs.h); tests install
// a scripted implementation that answers from a queue and records what was shown. Without
// either, messages go to standard error and questions are cancelled (the command line).
#include <QColor>
#include <QFont>
#include <QString>
#include <QStringList>
#include <optional>

namespace platform {

enum class MsgIcon { None, Information, Question, Exclamation, Critical };
enum class MsgButtons { Ok, YesNo, YesNoCancel };
enum class MsgAnswer { Ok, Yes, No, Cancel };

struct MessageRequest {
    QString text;
    QString title;
    MsgButtons buttons = MsgButtons::Ok;
    MsgIcon icon = MsgIcon::None;
    MsgAnswer defaultButton = MsgAnswer::Ok;
    // Own texts for the buttons, in the order Yes, No, Cancel; empty keeps the standard ones.
    QStringList buttonTexts;
    // Shown above every other window and activated: a question at start-up that would
    // otherwise stay behind the window of a program already running.
    bool toFront = false;
};

struct FileRequest {
    bool save = false;
    QStringList filters;   // Qt syntax, one entry per filter: "Kuvaus (*.sl *.SL)"
    QString defaultSuffix; // added to a saved name that has no extension
    bool multiple = false;
    QString directory;
    QString fileName; // the name a save dialog suggests
};

class Dialogs {
public:
    virtual ~Dialogs();
    virtual MsgAnswer message(const MessageRequest& request) = 0;
    // The chosen files; empty when the user cancelled.
    virtual QStringList files(const FileRequest& request) = 0;
    virtual std::optional<QFont> font(const QFont& initial) = 0;
    virtual std::optional<QColor> color(const QColor& initial) = 0;

    static Dialogs& instance();
    // Installs another implementation (tests); nullptr restores the default.
    static void install(Dialogs* dialogs);
    // The implementation used when none is installed (the windows set the Qt dialogs).
    static void setDefault(Dialogs* dialogs);
};

// The title of the program's message boxes.
QString applicationTitle();

// An information box with an OK button.
void MsgBox(const QString& text, MsgIcon icon = MsgIcon::None);
// A question; returns the button the user chose (Cancel also for closing the box).
MsgAnswer Ask(const QString& text, MsgButtons buttons, MsgIcon icon, MsgAnswer defaultButton);

// A question as the request describes it (own button texts, shown in front).
MsgAnswer Ask(const MessageRequest& request);
// Translates a filter of the form "Kuvaus (*.a)|*.a|Muut (*.*)|*.*" to Qt's syntax, making
// every pattern match both letter cases.
QStringList translateFilter(const QString& barFilter);

} // namespace platform
