#include "common/FakeMail.h"
#include "platform/MailSession.h"
#include "platform/TextFile.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace platform;
using testing_support::FakeMail;

namespace {

// Attachment files whose bytes are easy to get wrong: every byte value, line ends of both
// kinds and a lone CR, nothing at all, and names that need encoding in a mail header.
struct Attachments {
    QTemporaryDir dir;
    MailMessage message;
    std::vector<QByteArray> bytes;

    Attachments() {
        QByteArray binary;
        for (int i = 0; i < 70000; ++i)
            binary += char(i % 256);
        for (int i = 0; i < 3000; ++i)
            binary += char(QRandomGenerator::global()->bounded(256));
        add(QStringLiteral("Esimerkkisilta.sl"), binary);
        add(QStringLiteral("Yksikköhinnat 2002.sl1"),
            QByteArray("LITTERA;TYÖVAIHE\r\n7110;Kaivu\nrivi\rloppu").replace("TYÖ", "TY\xd6"));
        add(QStringLiteral("tyhjä.txt"), QByteArray());
        add(QStringLiteral("Silta \"A\" & B; (arkisto).pdf"), QByteArray("%PDF-1.4\n%\xe2\xe3\n"));
        add(QStringLiteral(
                "Äänekosken ylikulkusillan laatuvaatimukset ja mittausraportit vuodelta 2006.xlsx"),
            QByteArray("PK\x03\x04 not really a zip"));
    }
    void add(const QString& name, const QByteArray& data) {
        // The file on disk has another name than the one the recipient sees.
        const QString path = dir.filePath(QStringLiteral("f%1.bin").arg(bytes.size()));
        EXPECT_TRUE(writeFileAtomically(path, data));
        message.attachments.push_back({static_cast<int>(5 * bytes.size()), name, path});
        bytes.push_back(data);
    }
};

QJsonObject readBack(const QString& eml, const QString& outDir) {
    const QByteArray json = testing_support::readDraftWithPython(eml, outDir);
    return QJsonDocument::fromJson(json).object();
}

} // namespace

TEST(MailDraft, AnotherMailReaderGetsEveryAttachmentByteForByteAndTheFinnishText) {
    Attachments a;
    a.message.subject = QStringLiteral("Sillan tiedot – Äänekoski, päivitys 12.3.2006 (ÅÄÖ åäö €)");
    a.message.body = QStringLiteral("Hyvää päivää,\r\nliitteenä sillan tiedot.\nTerveisin Öljymäki");
    const QByteArray eml = ComposeEml(a.message);
    ASSERT_FALSE(eml.isEmpty());
    // Plain 7-bit mail with CR LF line ends, no line longer than the standard allows.
    for (const QByteArray& line : eml.split('\n')) {
        EXPECT_LE(line.size(), 999);
        for (char c : line)
            ASSERT_TRUE(c >= 0) << "8-bit byte in the draft";
    }
    EXPECT_EQ(eml.count("\r\n"), eml.count('\n'));

    QTemporaryDir out;
    const QString file = out.filePath(QStringLiteral("viesti.eml"));
    ASSERT_TRUE(writeFileAtomically(file, eml));
    const QJsonObject m = readBack(file, out.path());
    ASSERT_FALSE(m.isEmpty());
    EXPECT_TRUE(m[QStringLiteral("defects")].toArray().isEmpty());
    EXPECT_TRUE(m[QStringLiteral("multipart")].toBool());
    EXPECT_EQ(m[QStringLiteral("unsent")].toString(), QStringLiteral("1"));
    EXPECT_EQ(m[QStringLiteral("subject")].toString(), a.message.subject);
    QString body = m[QStringLiteral("body")].toString();
    body.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    EXPECT_EQ(body, QStringLiteral("Hyvää päivää,\nliitteenä sillan tiedot.\nTerveisin Öljymäki"));

    const QJsonArray parts = m[QStringLiteral("parts")].toArray();
    ASSERT_EQ(parts.size(), static_cast<qsizetype>(a.bytes.size()));
    for (qsizetype i = 0; i < parts.size(); ++i) {
        const QJsonObject p = parts[i].toObject();
        EXPECT_EQ(p[QStringLiteral("name")].toString(), a.message.attachments[i].name);
        EXPECT_TRUE(p[QStringLiteral("defects")].toArray().isEmpty()) << i;
        QByteArray got;
        ASSERT_TRUE(readFileBytes(out.filePath(QString::number(i)), got));
        EXPECT_EQ(got, a.bytes[i]) << "attachment " << i;
    }
    EXPECT_EQ(parts[3].toObject()[QStringLiteral("type")].toString(), QStringLiteral("application/pdf"));

    // An attachment that cannot be read makes no draft, and says which file.
    a.message.attachments.push_back(
        {0, QStringLiteral("puuttuu.pdf"), a.dir.filePath(QStringLiteral("puuttuu"))});
    QString error;
    EXPECT_TRUE(ComposeEml(a.message, QDateTime::currentDateTime(), &error).isEmpty());
    EXPECT_TRUE(error.contains(a.dir.filePath(QStringLiteral("puuttuu"))));
}

TEST(MailDraft, MessageWithoutAttachmentsOrTextIsStillAMessage) {
    QTemporaryDir out;
    const QString file = out.filePath(QStringLiteral("tyhja.eml"));
    ASSERT_TRUE(writeFileAtomically(file, ComposeEml(MailMessage{})));
    const QJsonObject m = readBack(file, out.path());
    EXPECT_TRUE(m[QStringLiteral("defects")].toArray().isEmpty());
    EXPECT_TRUE(m[QStringLiteral("parts")].toArray().isEmpty());
    EXPECT_EQ(m[QStringLiteral("body")].toString(), QString());
}

TEST(MailSession, ComposeCallCarriesEveryAttachmentInOrder) {
    FakeMail mail(0);
    Attachments a;
    a.message.body = QString(25, QLatin1Char(' '));
    QTemporaryDir drafts;
    MailSession session;
    ASSERT_TRUE(session.SignOn(drafts.path()));
    EXPECT_EQ(session.mailClient(), QStringLiteral("thunderbird.desktop"));
    ASSERT_TRUE(session.Send(a.message));
    EXPECT_EQ(session.route(), MailSession::Route::Compose);
    QStringList expected{QStringLiteral("--utf8"), QStringLiteral("--body"), a.message.body};
    for (const MailAttachment& m : a.message.attachments)
        expected << QStringLiteral("--attach") << m.path;
    EXPECT_EQ(mail.arguments(), expected);
    // The compose window has the message: no draft, nothing opened.
    EXPECT_TRUE(QDir(drafts.path()).entryList(QDir::Files).isEmpty());
    EXPECT_TRUE(mail.opened.empty());
}

TEST(MailSession, WithoutAMailClientTheDraftIsWrittenAndOpened) {
    Attachments a;
    // xdg-email's exit status (-1: not installed), the mail client and the draft program the
    // desktop names, and whether opening the draft works.
    const struct {
        const char* what;
        int exitStatus;
        QByteArray client, reader;
        bool opens;
        bool sent;              // the draft was written and opened
        int composeAttachments; // the attachments of a compose call that was tried first
    } cases[] = {
        {"no mail client answers xdg-email", 3, "thunderbird.desktop", "fakereader.desktop", true, true, 5},
        {"the desktop names no mail client", 0, "", "fakereader.desktop", true, true, 0},
        // The desktop would start its opener and never tell that it failed: no program
        // for drafts, no attempt to open one.
        {"nor a program for drafts", 0, "", "", true, false, 0},
        {"no xdg-email, and nothing opens the draft", -1, "thunderbird.desktop", "fakereader.desktop", false,
         false, 0}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        QTemporaryDir drafts;
        FakeMail mail(c.exitStatus, 0, c.client, c.reader);
        mail.openSucceeds = c.opens;
        MailSession session;
        ASSERT_TRUE(session.SignOn(drafts.path()));
        EXPECT_EQ(session.Send(a.message), c.sent);
        EXPECT_EQ(session.route(), c.sent ? MailSession::Route::Draft : MailSession::Route::DraftUnopened);
        EXPECT_EQ(mail.arguments().count(QStringLiteral("--attach")), c.composeAttachments);
        // The draft is named after the first attachment, and is written in every case.
        EXPECT_EQ(session.draftPath(), drafts.filePath(QStringLiteral("Esimerkkisilta.eml")));
        QByteArray draft;
        ASSERT_TRUE(readFileBytes(session.draftPath(), draft));
        EXPECT_TRUE(draft.contains("X-Unsent: 1"));
        EXPECT_EQ(mail.opened,
                  c.reader.isEmpty() ? std::vector<QString>{} : std::vector<QString>{session.draftPath()});
    }
    // Nowhere to send and nowhere to write: the session cannot sign on.
    FakeMail none(-1);
    MailSession session;
    EXPECT_FALSE(session.SignOn(QString()));
    EXPECT_FALSE(session.Send(a.message));
    EXPECT_EQ(session.route(), MailSession::Route::None);
}

// Many mail programs ignore the attachments of a mail address: the compose call counted as
// sent whenever it started one, and the message left without its files. Only the programs
// known to take them get the compose call with attachments; the others get the draft.
TEST(MailSession, AttachmentsGoToTheComposeCallOnlyWhenTheClientTakesThem) {
    Attachments a;
    QTemporaryDir drafts;
    for (const char* client : {"org.gnome.Geary.desktop", "claws-mail.desktop", "mutt"}) {
        FakeMail mail(0, 0, client);
        MailSession session;
        ASSERT_TRUE(session.SignOn(drafts.path()));
        ASSERT_TRUE(session.Send(a.message)) << client;
        EXPECT_TRUE(mail.arguments().isEmpty()) << client;
        EXPECT_EQ(session.route(), MailSession::Route::Draft) << client;
        EXPECT_TRUE(session.attachmentsNeededDraft());
        EXPECT_EQ(mail.opened.size(), 1u);
        // Without attachments the compose call is enough for any client.
        ASSERT_TRUE(session.Send(MailMessage{QStringLiteral("Aihe"), QString(), {}}));
        EXPECT_EQ(session.route(), MailSession::Route::Compose) << client;
        EXPECT_FALSE(session.attachmentsNeededDraft());
    }
    for (const char* client : {"thunderbird.desktop", "icedove.desktop", "org.gnome.Evolution.desktop",
                               "org.kde.kmail2.desktop", "/usr/bin/thunderbird -compose"})
        EXPECT_TRUE(MailSession::takesAttachments(QString::fromLatin1(client))) << client;
}

TEST(MailSession, ComposeCommandStillRunningHasOpenedTheMailProgram) {
    // A mail program started by xdg-email may keep it waiting until the user closes it.
    FakeMail mail(0, 3);
    QTemporaryDir drafts;
    MailSession session;
    session.setComposeWait(200);
    ASSERT_TRUE(session.SignOn(drafts.path()));
    EXPECT_TRUE(session.Send(MailMessage{}));
    EXPECT_EQ(session.route(), MailSession::Route::Compose);
    EXPECT_TRUE(mail.opened.empty());
}
