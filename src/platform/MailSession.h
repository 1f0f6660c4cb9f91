#pragma once
// The mail session: a message with attachments handed to the user's mail program, which shows
// it in its own compose window for the user to address and send. The desktop's compose call is
// xdg-email, used for a message with attachments only when the mail client is one that takes
// them; otherwise, or where it is missing or no mail client answers it, the message is written
// as an Internet mail draft (.eml) and opened, so that the user always gets the whole message.
#include <QByteArray>
#include <QDateTime>
#include <QString>
#include <vector>

namespace platform {

struct MailAttachment {
    int position = 0; // character position in the body where the attachment belongs
    QString name;     // the name the recipient sees
    QString path;     // the file to attach
};

struct MailMessage {
    QString subject;
    QString body;
    std::vector<MailAttachment> attachments;
};

// The message as a draft in Internet mail format with MIME: multipart/mixed with the body as
// UTF-8 text and every attachment in base64 under its own name, CR LF line ends, and marked
// unsent so that mail programs that know the mark open it for sending. Returns an empty array
// and an error naming the file when an attachment cannot be read.
QByteArray ComposeEml(const MailMessage& message, const QDateTime& date = QDateTime::currentDateTime(),
                      QString* error = nullptr);

class MailSession {
public:
    // How the last Send went.
    enum class Route {
        None,          // nothing was sent
        Compose,       // the mail client's compose window has the message
        Draft,         // the draft was written and opened
        DraftUnopened, // the draft was written, but no program opened it
    };

    // Signs on: finds the desktop's compose command (xdg-email on the search path) and whether
    // a mail client is set up to answer it, and takes the folder where a draft is written.
    // False when there is neither.
    bool SignOn(const QString& draftFolder);
    bool signedOn() const { return m_signedOn; }
    // The mail client found at sign-on: its desktop file or command; empty when there is none.
    QString mailClient() const { return m_client; }

    // Hands the message to the mail program: the compose command first, the draft when the
    // command is missing or fails. False when the message reached no program; then the draft,
    // if one could be written, is named by draftPath().
    bool Send(const MailMessage& message);

    Route route() const { return m_route; }
    // True when the last Send wrote the draft because the mail client would have dropped the
    // attachments (it is not one that takes them from the compose call).
    bool attachmentsNeededDraft() const { return m_attachmentsNeededDraft; }

    // Whether the compose call reaches `client` (a desktop file or command) with its
    // attachments. xdg-email passes them on only to the mail programs it knows: Thunderbird
    // and its Debian names, whose own compose call it makes, and Evolution and KMail, which
    // read the attachments from the mail address; any other program gets an address whose
    // attachments it may ignore.
    static bool takesAttachments(const QString& client);
    QString draftPath() const { return m_draftPath; }

    // How long the compose command may take to report a failure; a command still running after
    // this has opened the mail program, which then lives on by itself.
    void setComposeWait(int milliseconds) { m_composeWait = milliseconds; }

    // The compose command's arguments for a message: UTF-8 texts, the subject and body when
    // they are not empty, and an --attach for every attachment in order.
    static QStringList composeArguments(const MailMessage& message);
    // The draft's file name: the first attachment's name without its extension, else "Viesti".
    static QString draftName(const MailMessage& message);

private:
    bool compose(const MailMessage& message);

    bool m_signedOn = false;
    QString m_composer;
    QString m_client;
    QString m_draftFolder;
    QString m_draftPath;
    Route m_route = Route::None;
    bool m_attachmentsNeededDraft = false;
    int m_composeWait = 3000;
};

} // namespace platform
