#include "shell/ProjectLocks.h"

#include "documents/ProjectWindow.h"
#include "platform/Dialogs.h"
#include "platform/ProjectLock.h"
#include "shell/Captions.h"
#include "shell/MDIForm1.h"

namespace shell {

namespace {
// A lock is renewed well within the age after which another host's lock counts as stale.
constexpr int kRenewMs = 60 * 60 * 1000;

// The other program's live lock on `file`; none when the file is free, the lock is stale or ours.
std::optional<platform::LockOwner> foreignLock(const QString& file) {
    std::optional<platform::LockOwner> owner = platform::readProjectLock(file);
    if (!owner || platform::isOwnLock(*owner) || platform::isStaleLock(*owner)) return std::nullopt;
    return owner;
}
} // namespace

ProjectLocks::ProjectLocks(MDIForm1& main)
    : QObject(&main)
    , m_main(main) {
    connect(&main, &MDIForm1::projectsChanged, this, &ProjectLocks::sync);
    m_renew.setInterval(kRenewMs);
    m_renew.setTimerType(Qt::VeryCoarseTimer);
    connect(&m_renew, &QTimer::timeout, this, &ProjectLocks::renew);
    m_renew.start();
}

ProjectLocks::~ProjectLocks() {
    for (const QString& file : m_held)
        platform::removeOwnProjectLock(file);
}

void ProjectLocks::sync() {
    std::set<QString> open;
    for (documents::ProjectWindow* w : m_main.projectWindows()) {
        const ParsedCaption c = ParseFileName(w->caption());
        if (!c.directory.isEmpty()) open.insert(c.project());
    }
    for (auto it = m_held.begin(); it != m_held.end();) {
        if (open.count(*it)) {
            ++it;
            continue;
        }
        platform::removeOwnProjectLock(*it);
        it = m_held.erase(it);
    }
    for (const QString& file : open)
        if (!m_held.count(file) && platform::writeProjectLock(file)) m_held.insert(file);
}

void ProjectLocks::renew() {
    for (const QString& file : m_held) {
        const std::optional<platform::LockOwner> owner = platform::readProjectLock(file);
        if (!owner || platform::isOwnLock(*owner)) platform::writeProjectLock(file);
    }
}

ProjectLocks::OpenChoice ProjectLocks::askBeforeOpening(const QString& file) {
    const std::optional<platform::LockOwner> owner = foreignLock(file);
    if (!owner) return OpenChoice::Edit;
    platform::MessageRequest q;
    q.text =
        QStringLiteral("Projekti\r\n\r\n") + file +
        QStringLiteral("\r\n\r\non jo avoinna toisessa TAMRIK-ohjelmassa (") +
        platform::describeLockOwner(*owner) +
        QStringLiteral(").\r\n\r\nJos sitä muokataan kahdessa ohjelmassa, viimeksi tallennettu korvaa toisen "
                       "muutokset. Vain luettavaksi avattu projekti avautuu nimettömänä kopiona, joka ei "
                       "tallennu tiedoston päälle.");
    q.buttons = platform::MsgButtons::YesNoCancel;
    q.icon = platform::MsgIcon::Exclamation;
    q.defaultButton = platform::MsgAnswer::Yes;
    q.buttonTexts = {QStringLiteral("Avaa vain luettavaksi"), QStringLiteral("Avaa silti"),
                     QStringLiteral("Peruuta")};
    switch (platform::Ask(q)) {
        case platform::MsgAnswer::Yes:
            return OpenChoice::ReadOnly;
        case platform::MsgAnswer::No:
            return OpenChoice::Edit;
        default:
            return OpenChoice::Cancel;
    }
}

bool ProjectLocks::mayWriteOver(const QString& file) {
    const std::optional<platform::LockOwner> owner = foreignLock(file);
    if (!owner) return true;
    return platform::Ask(QStringLiteral("Tiedosto\r\n\r\n") + file +
                             QStringLiteral("\r\n\r\non avoinna toisessa TAMRIK-ohjelmassa (") +
                             platform::describeLockOwner(*owner) +
                             QStringLiteral(").\r\n\r\nTallennetaanko silti sen päälle?"),
                         platform::MsgButtons::YesNo, platform::MsgIcon::Exclamation,
                         platform::MsgAnswer::No) == platform::MsgAnswer::Yes;
}

} // namespace shell
