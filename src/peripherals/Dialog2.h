#pragma once
// The e-mail dialog: sends the active project, a copy saved in the temporary folder, and the
// files the user picks, through the user's mail program. The user addresses and sends the
// message in the mail program's own compose window.
#include "platform/MailSession.h"

#include <QDialog>
#include <vector>

class QCheckBox;
class QGroupBox;
class QListWidget;
class QPushButton;

namespace platform {
struct CommonDialogState;
}

namespace peripherals {

// What the dialog needs from the main window.
class MailHost {
public:
    virtual ~MailHost() = default;
    // The caption of the active project window; empty when there is none.
    virtual QString ActiveCaption() const = 0;
    // Saves the project (its folder and name) to `file` as a copy: its windows keep their
    // captions. False when nothing was saved.
    virtual bool SaveProjectCopy(const QString& project, const QString& file) = 0;
    // The private temporary folder, ending in "/".
    virtual QString TempPath() const = 0;
    virtual platform::CommonDialogState& DialogState() = 0;
    // The files the active project's requirement list refers to.
    virtual QStringList RequirementFiles() = 0;
    // The user's guide at a topic, usable while the dialog is open.
    virtual void ShowHelp(int context, QWidget* dialog) = 0;
};

// The name the project is attached under: an unsaved project ("Projekti" and a number) gets
// ".sl" unless it ends so already; a saved project's file name is used as it is.
QString ProjectAttachmentName(const QString& name);

// The message of a send: the project first (when given), then the non-blank files of the
// list, in order. The body holds five spaces for each attachment counted (the project and
// every list entry), and attachment k sits at body position 5 × k.
platform::MailMessage BuildMailMessage(const QString& projectName, const QString& projectPath,
                                       const QStringList& files, bool withFiles);

class Dialog2 : public QDialog {
    Q_OBJECT
public:
    explicit Dialog2(MailHost& host, QWidget* parent = nullptr);

    // Enabling after a click on a check box: the attachment frame follows Check1(1), and
    // "&Lähetä..." needs at least one of the boxes checked.
    void Check1_Click(int index);
    // "L&isää tiedosto": files chosen in the open dialog go to the end of the list.
    void AddFiles();
    // "&Poista tiedosto": removes every selected entry.
    void RemoveFiles();
    // "&Lähetä...": the message to the mail program; the dialog closes however it went.
    void Send();

    std::vector<QCheckBox*> Check1;     // 0 the active project, 1 the attachment files
    QGroupBox* Frame1 = nullptr;        // "Liitetiedostot"
    QListWidget* List1 = nullptr;       // full paths of the attachment files
    std::vector<QPushButton*> Command1; // 0 send, 1 close, 2 help, 3 add, 4 remove

    // The messaging session and the message of the last send.
    platform::MailSession MAPISession1;
    platform::MailMessage MAPIMessages1;

private:
    QStringList listEntries() const;
    // Signs on, saves the project copy, builds and sends the message; false when it reached no
    // mail program.
    bool sendMessage(const QStringList& entries, bool withFiles);
    MailHost& m_host;
};

} // namespace peripherals
