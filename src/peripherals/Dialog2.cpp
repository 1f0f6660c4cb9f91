#include "peripherals/Dialog2.h"

#include "lists/ListProcedures.h"
#include "platform/CommonDialog.h"
#include "platform/Dialogs.h"
#include "platform/TempDir.h"
#include "shell/Captions.h"

#include <QApplication>
#include <QCheckBox>
#include <QFileInfo>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

namespace peripherals {

namespace {
// The user's guide topic of sending by e-mail.
constexpr int kHelpTopic = 2300;
} // namespace

QString ProjectAttachmentName(const QString& name) {
    // An extension in any letter case counts, so that no name gets a second one.
    if (name.startsWith(QLatin1String("Projekti")) &&
        !name.endsWith(QLatin1String(".sl"), Qt::CaseInsensitive))
        return name + QStringLiteral(".sl");
    return name;
}

platform::MailMessage BuildMailMessage(const QString& projectName, const QString& projectPath,
                                       const QStringList& files, bool withFiles) {
    platform::MailMessage message;
    const bool withProject = !projectPath.isEmpty();
    const qsizetype counted = (withProject ? 1 : 0) + (withFiles ? files.size() : 0);
    message.body = QString(5 * counted, QLatin1Char(' '));
    int k = 0;
    if (withProject) message.attachments.push_back({5 * k++, projectName, projectPath});
    if (withFiles) {
        for (const QString& file : files) {
            if (lists::BlankString(file)) continue;
            message.attachments.push_back({5 * k++, shell::ParseFileName(file).name, file});
        }
    }
    return message;
}

Dialog2::Dialog2(MailHost& host, QWidget* parent)
    : QDialog(parent)
    , m_host(host) {
    setWindowTitle(platform::applicationTitle() + QStringLiteral(" (tietojen lähettäminen sähköpostilla)"));
    auto* layout = new QVBoxLayout(this);

    Check1.push_back(new QCheckBox(QStringLiteral("Lähetä aktiivinen &TAMRIK 2006 tiedosto"), this));
    Check1.push_back(new QCheckBox(QStringLiteral("L&ähetä liitetiedostot"), this));
    for (QCheckBox* c : Check1)
        layout->addWidget(c);

    Frame1 = new QGroupBox(QStringLiteral("Liitetiedostot"), this);
    auto* frame = new QHBoxLayout(Frame1);
    List1 = new QListWidget(Frame1);
    List1->setObjectName(QStringLiteral("List1"));
    List1->setSelectionMode(QAbstractItemView::ExtendedSelection);
    List1->setMinimumSize(420, 160);
    frame->addWidget(List1, 1);
    auto* frameButtons = new QVBoxLayout;
    frame->addLayout(frameButtons);
    layout->addWidget(Frame1, 1);

    const char* captions[] = {"&Lähetä...", "Sulje / peruuta", "&Ohjeet", "L&isää tiedosto",
                              "&Poista tiedosto"};
    for (int i = 0; i < 5; ++i) {
        Command1.push_back(new QPushButton(QString::fromUtf8(captions[i]), this));
        Command1.back()->setObjectName(QStringLiteral("Command1_%1").arg(i));
        Command1.back()->setAutoDefault(false);
    }
    frameButtons->addWidget(Command1[3]);
    frameButtons->addWidget(Command1[4]);
    frameButtons->addStretch(1);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(Command1[0]);
    buttons->addWidget(Command1[1]);
    buttons->addStretch(1);
    buttons->addWidget(Command1[2]);
    layout->addLayout(buttons);

    for (int i = 0; i < 2; ++i)
        connect(Check1[i], &QCheckBox::toggled, this, [this, i] { Check1_Click(i); });
    connect(Command1[0], &QPushButton::clicked, this, &Dialog2::Send);
    connect(Command1[1], &QPushButton::clicked, this, &QDialog::reject);
    connect(Command1[2], &QPushButton::clicked, this, [this] { m_host.ShowHelp(kHelpTopic, this); });
    connect(Command1[3], &QPushButton::clicked, this, &Dialog2::AddFiles);
    connect(Command1[4], &QPushButton::clicked, this, &Dialog2::RemoveFiles);

    // The files the requirement list refers to are offered; the user decides whether they go.
    List1->addItems(m_host.RequirementFiles());
    Check1[0]->setChecked(true);
    Check1_Click(1);
}

void Dialog2::Check1_Click(int index) {
    if (index == 1) {
        const bool on = Check1[1]->isChecked();
        for (QWidget* w : {static_cast<QWidget*>(Frame1), static_cast<QWidget*>(List1),
                           static_cast<QWidget*>(Command1[3]), static_cast<QWidget*>(Command1[4])})
            w->setEnabled(on);
    }
    Command1[0]->setEnabled(Check1[0]->isChecked() || Check1[1]->isChecked());
}

void Dialog2::AddFiles() {
    QString files = platform::ShowCommonDialog(1, QStringLiteral(".*"), true, m_host.DialogState());
    if (platform::EvaluateNFiles(files) == 0) return;
    List1->addItems(files.split(QChar(0)));
}

void Dialog2::RemoveFiles() {
    for (int i = List1->count() - 1; i >= 0; --i)
        if (List1->item(i)->isSelected()) delete List1->takeItem(i);
}

QStringList Dialog2::listEntries() const {
    QStringList out;
    for (int i = 0; i < List1->count(); ++i)
        out << List1->item(i)->text();
    return out;
}

void Dialog2::Send() {
    const QStringList entries = listEntries();
    const bool withFiles = Check1[1]->isChecked();
    if (withFiles) {
        // A file that is gone is named before anything is sent, so that the user can take it off
        // the list; the dialog stays open.
        QStringList missing;
        for (const QString& entry : entries) {
            const QFileInfo fi(entry);
            if (!lists::BlankString(entry) && (!fi.isFile() || !fi.isReadable())) missing << entry;
        }
        if (!missing.isEmpty()) {
            platform::MsgBox(
                QStringLiteral("Seuraavia liitetiedostoja ei löydy tai niitä ei voi lukea:\r\n\r\n") +
                    missing.join(QStringLiteral("\r\n")),
                platform::MsgIcon::Exclamation);
            return;
        }
    }

    QApplication::setOverrideCursor(Qt::WaitCursor);
    const bool sent = sendMessage(entries, withFiles);
    const bool unopened = !sent && MAPISession1.route() == platform::MailSession::Route::DraftUnopened;
    QApplication::restoreOverrideCursor();
    // A draft instead of the compose window is told, so that the user sends it from there.
    if (sent && MAPISession1.route() == platform::MailSession::Route::Draft)
        platform::MsgBox(
            (MAPISession1.attachmentsNeededDraft()
                 ? QStringLiteral("Sähköpostiohjelmasi ei ota liitteitä vastaan suoraan, joten viesti "
                                  "liitteineen tallennettiin tiedostoon\r\n")
                 : QStringLiteral("Viesti liitteineen tallennettiin tiedostoon\r\n")) +
                MAPISession1.draftPath() +
                QStringLiteral("\r\nja avattiin sähköpostiohjelmassa. Lähetä viesti sieltä."),
            platform::MsgIcon::Information);
    // Other failures of the mail program are not told: the user sees them in the mail program.
    // A draft that no program took exists, though: the user is told where it is.
    if (unopened)
        platform::MsgBox(
            QStringLiteral("Viestiä ei voitu avata sähköpostiohjelmassa. Viesti liitteineen on "
                           "tallennettu tiedostoon\r\n") +
                MAPISession1.draftPath() +
                QStringLiteral("\r\njonka voit avata sähköpostiohjelmallasi ja lähettää sieltä."),
            platform::MsgIcon::Information);
    accept();
}

bool Dialog2::sendMessage(const QStringList& entries, bool withFiles) {
    // The mail program reads these files after the send, perhaps after this program ended.
    const QString temp = platform::mailFolder(m_host.TempPath());
    if (!MAPISession1.SignOn(temp)) return false;
    QString projectName;
    QString projectPath;
    if (Check1[0]->isChecked()) {
        const shell::ParsedCaption caption = shell::ParseFileName(m_host.ActiveCaption());
        if (caption.name.isEmpty() || temp.isEmpty()) return false;
        // A copy for sending: the project's windows keep their captions and their file.
        projectName = ProjectAttachmentName(caption.name);
        projectPath = temp + projectName;
        if (!m_host.SaveProjectCopy(caption.project(), projectPath)) return false;
    }
    MAPIMessages1 = BuildMailMessage(projectName, projectPath, entries, withFiles);
    return MAPISession1.Send(MAPIMessages1);
}

} // namespace peripherals
