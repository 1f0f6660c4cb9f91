// Saving and opening a project: the windows' content to and from a ".sl" file.
#include "shell/ProjectFiles.h"
#include "shell/ProjectLocks.h"
#include "shell/ShellActions.h"

#include "documents/Controls.h"
#include "documents/Form1.h"
#include "documents/Form2.h"
#include "documents/Form3.h"
#include "documents/Form4.h"
#include "lists/EditHistory.h"
#include "lists/ListModel.h"
#include "lists/ui/ListView.h"
#include "persist/ProjectFile.h"
#include "platform/Cp1252.h"
#include "platform/Dialogs.h"
#include "platform/ui/PictureBox.h"
#include "platform/Rtf.h"
#include "platform/SettingsStore.h"
#include "platform/TextFile.h"
#include "shell/Captions.h"
#include "shell/MDIForm1.h"
#include "shell/Modes.h"
#include "shell/Settings.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFile>
#include <QFileInfo>
#include <QLabel>
#include <QLockFile>
#include <optional>
#include <QTextDocument>
#include <QTextEdit>

namespace shell {

namespace {

using platform::MsgIcon;

// Holds the private temporary folder for one save or open, so that two running programs do
// not overwrite each other's temporary files.
class TempLock {
public:
    explicit TempLock(const QString& tempPath)
        : m_lock(tempPath + QStringLiteral("tamrik.lock")) {
        m_locked = tempPath.isEmpty() || m_lock.tryLock(10000);
    }
    bool locked() const { return m_locked; }

private:
    QLockFile m_lock;
    bool m_locked = false;
};

// Menus and toolbar off, progress strip on; both come back however the operation ends.
class FileOperation {
public:
    FileOperation(MDIForm1& main, const QString& text)
        : m_main(main) {
        m_main.DisplayProgress(0, text);
        m_main.setFileOperation(true);
    }
    ~FileOperation() {
        m_main.DisplayProgress(100);
        m_main.setFileOperation(false);
    }

private:
    MDIForm1& m_main;
};

// The name a user knows a control by: the text of the label beside it, else its array name.
QString fieldName(const QWidget* field) {
    const QWidget* window = field->window();
    for (const QLabel* label : window->findChildren<QLabel*>())
        if (label->buddy() == field || (label->buddy() && label->buddy() == field->focusProxy()))
            return label->text().remove(QLatin1Char('&'));
    return field->objectName().replace(QLatin1Char('_'), QLatin1Char('(')) + QLatin1Char(')');
}

QString windowName(int kind) {
    static const char* const names[4] = {"Perustiedot", "Yksityiskohtaiset tiedot", "Ominaistietokortti",
                                         "Panostilakortti"};
    return QString::fromUtf8(names[kind - 1]);
}

// The fields whose text holds characters that the file's code page cannot store.
QStringList fieldsOutsideCp1252(const ProjectWindows& w) {
    QStringList out;
    for (documents::ProjectWindow* pw : w.all()) {
        for (const documents::TextBox* t : pw->Text1)
            if (t && !platform::isCp1252(t->text()))
                out << windowName(pw->kind()) + QStringLiteral(": ") + fieldName(t);
        for (const documents::ComboBox* c : pw->Combo1)
            if (c && !platform::isCp1252(c->text()))
                out << windowName(pw->kind()) + QStringLiteral(": ") + fieldName(c);
        for (int j = 0; j < pw->listCount(); ++j) {
            const lists::ListModel* m = pw->list(j);
            if (!m) continue;
            for (int r = 1; r <= m->rows(); ++r) {
                for (int c = 1; c < m->cols(); ++c) {
                    if (platform::isCp1252(m->cell(r, c))) continue;
                    out << windowName(pw->kind()) + QStringLiteral(": ") + m->kind() +
                               QStringLiteral(", rivi %1, sarake \"%2\"").arg(r).arg(m->column(c).header);
                    break;
                }
            }
        }
    }
    // The text documents are not named: their rich text keeps such characters as \uN.
    return out;
}

// Writes a temporary file of the save or open; the program does not depend on it.
void writeTemp(const QString& tempPath, const QString& name, const QByteArray& bytes) {
    if (!tempPath.isEmpty()) platform::writeFileAtomically(tempPath + name, bytes);
}

// Says which fields hold characters that the file cannot store; saving goes on with them
// stored as question marks.
void warnOutsideCp1252(const ProjectWindows& w) {
    const QStringList outside = fieldsOutsideCp1252(w);
    if (outside.isEmpty()) return;
    QStringList shown = outside.mid(0, 12);
    if (outside.size() > 12) shown << QStringLiteral("...");
    platform::MsgBox(QStringLiteral("Seuraavissa kentissä on merkkejä, joita tiedostoon ei voi tallentaa. Ne "
                                    "tallentuvat kysymysmerkkeinä (?):\r\n\r\n") +
                         shown.join(QStringLiteral("\r\n")),
                     MsgIcon::Exclamation);
}

// The combo texts of a saved project feed the drop-down lists of new projects.
void rememberComboDefaults(MDIForm1& main, const ProjectWindows& w) {
    std::array<QString, 5> defaults;
    const int comboIndex[5] = {10, 5, 6, 17, 16};
    for (int i = 0; i < 5; ++i)
        defaults[i] = w.f1->Combo1[comboIndex[i]]->text();
    main.appState().settings.DefaultComboData = defaults;
    WriteDefaultComboData(main.settingsStore(), defaults);
}

// What a project file holds besides its text member's bytes: the windows' content and the
// pictures (members[0] is left empty). The lists' records refer to the shown lists' rows, so
// the parts are written before anything changes. With `progress` it is a save: the progress
// strip moves and the documents and pictures also go to the temporary folder.
struct ProjectParts {
    persist::ProjectContent content;
    persist::Members members;
};

ProjectParts projectParts(MDIForm1& main, const ProjectWindows& w, bool progress) {
    AppState& state = main.appState();
    auto step = [&](int percent) {
        if (progress) main.DisplayProgress(percent);
    };
    auto temp = [&](const QString& name, const QByteArray& bytes) {
        if (progress) writeTemp(state.TempPath, name, bytes);
    };
    ProjectParts parts;
    persist::ProjectContent& content = parts.content;
    const QComboBox* references = w.f2->Combo1[0];
    for (int i = 0; i < 18 && i < references->count(); ++i)
        content.referenceItems << references->itemText(i);
    step(20);
    content.windows[0] = w.f1->toRecord(true);
    step(40);
    content.windows[1] = w.f2->toRecord(true);
    step(80);
    content.windows[2] = w.f3->toRecord(true);
    step(90);
    content.windows[3] = w.f4->toRecord(true);
    // Check box values as the file keeps them: 0 unchecked, 1 checked, 2 greyed.
    for (const QCheckBox* c : w.f4->Check1)
        content.checks << QString::number(
            c->checkState() == Qt::Checked ? 1 : (c->checkState() == Qt::Unchecked ? 0 : 2));
    w.f2->StoreRichTextDocument();
    for (int n = 1; n <= 3; ++n) {
        content.documents[n - 1] = platform::WriteRtf(*w.f2->RichTextBox1[n]->document());
        temp(QStringLiteral("Tamrik2000_tmp%1.rtf").arg(n), content.documents[n - 1]);
    }
    for (int k = 0; k < 6; ++k) {
        const platform::Picture& picture = w.f1->Image1[k]->picture();
        parts.members[k + 1].type = picture.type();
        parts.members[k + 1].data = picture.isNull() ? QByteArray() : picture.bytes();
        temp(QStringLiteral("~Tamrik30_%1.tmp").arg(k + 2), parts.members[k + 1].data);
    }
    return parts;
}

// Copies `length` bytes of `source` from `offset` into the scratch file `name` of the temporary
// folder, a block at a time.
void copyTemp(const QString& tempPath, const QString& name, QFile& source, qint64 offset, qint64 length) {
    if (tempPath.isEmpty() || !source.seek(offset)) return;
    platform::writeFileAtomically(tempPath + name, [&](QIODevice& out) {
        QByteArray block;
        for (qint64 left = length; left > 0; left -= block.size()) {
            block = source.read(std::min<qint64>(left, persist::RecordWriter::kBlock));
            if (block.isEmpty() || out.write(block) != block.size()) return false;
        }
        return true;
    });
}

// The scratch copies of a saved file's text member and of the whole file, read back from it.
void copyTemps(const QString& tempPath, const QString& file) {
    QFile saved(file);
    if (tempPath.isEmpty() || !saved.open(QIODevice::ReadOnly)) return;
    const QByteArray header = saved.read(persist::kHeaderSize);
    if (header.size() < persist::kHeaderSize) return;
    const auto* b = reinterpret_cast<const std::uint8_t*>(header.constData());
    copyTemp(tempPath, QStringLiteral("~Tamrik30_1.tmp"), saved, persist::kHeaderSize,
             persist::LongFromBytes(b[3], b[2], b[1], b[0]));
    copyTemp(tempPath, QStringLiteral("~Tamrik30.tmp"), saved, 0, saved.size());
}

} // namespace

QByteArray ProjectContainer(MDIForm1& main, const ProjectWindows& w, bool keepNames, bool progress) {
    ProjectParts parts = projectParts(main, w, progress);
    parts.members[0].data = persist::WriteProjectText(parts.content, keepNames);
    if (progress)
        writeTemp(main.appState().TempPath, QStringLiteral("~Tamrik30_1.tmp"), parts.members[0].data);
    const QByteArray container = persist::PackContainer(parts.members);
    if (progress) writeTemp(main.appState().TempPath, QStringLiteral("~Tamrik30.tmp"), container);
    return container;
}

bool WriteSlFile(MDIForm1& main, const QString& project, const QString& file, bool keepNames) {
    AppState& state = main.appState();
    const ProjectWindows w = main.projectWindowsOf(ParseFileName(project).project());
    if (!w.complete()) return false;
    // Saved under a new name: a file that another project here has open is refused (two
    // projects under one name would save over each other), and a file that another running
    // program has open is written over only when the user says so. The project's own file is
    // this program's to write.
    const QString own = ParseFileName(project).project();
    if (!keepNames && !sameFile(own, file) &&
        (main.FileNameInUse(file, own) || !ProjectLocks::mayWriteOver(file)))
        return false;

    // The office text of the current party is brought up to date.
    if (state.ProgramMode == 1) documents::UpdateOfficeText(*w.f1->Text1[9], state.OfficeRows);
    if (state.ProgramMode == 2) documents::UpdateOfficeText(*w.f1->Text1[10], state.OfficeRows);

    warnOutsideCp1252(w);

    TempLock lock(state.TempPath);
    if (!lock.locked()) {
        platform::MsgBox(
            QStringLiteral("Toinen TAMRIK-ohjelma käsittelee parhaillaan tiedostoja. Yritä hetken "
                           "kuluttua uudelleen."),
            MsgIcon::Exclamation);
        return false;
    }
    FileOperation operation(main, QStringLiteral("Tallentaa tiedostoa..."));

    // The file is written as it is made: a large project is never held whole as bytes.
    std::optional<ProjectParts> parts(projectParts(main, w, true));
    QString error;
    const bool written = platform::writeFileAtomically(
        file,
        [&](QIODevice& out) {
            return persist::WriteContainer(out, parts->members, [&](const persist::ByteSink& sink) {
                return persist::WriteProjectText(parts->content, keepNames, sink);
            });
        },
        &error);
    parts.reset(); // the lists' rows are shared no longer
    if (written) copyTemps(state.TempPath, file);
    if (!written) {
        platform::MsgBox(QStringLiteral("Tiedostoa ") + file + QStringLiteral(" ei voi tallentaa:\r\n") +
                             error,
                         MsgIcon::Critical);
        return false;
    }
    if (!keepNames) {
        main.UpdateRecentFiles(file);
        main.ChangeFormCaptions(project, file, true);
        // The saved state is where undo makes the project unchanged again; the steps stay.
        if (lists::EditHistory* history = w.f1->history()) history->markSaved();
    }
    rememberComboDefaults(main, w);
    return true;
}

namespace {

// A project file read and checked before any window changes.
struct ReadProject {
    persist::ProjectFile file;
    std::array<platform::Picture, 6> pictures;
    std::array<bool, 6> pictureGiven{};
    QStringList damagedPictures;
    std::array<std::unique_ptr<QTextDocument>, 3> documents;
};

// Writes the copies of the file's members to the temporary folder and reads its pictures.
void readMembers(const QString& tempPath, ReadProject& read) {
    QString error;
    for (int m = 1; m <= 7; ++m) {
        const persist::Member& member = read.file.members[m - 1];
        writeTemp(tempPath, QStringLiteral("~Tamrik30_%1_tmp").arg(m) + persist::FileExtension(member.type),
                  member.data);
        // A member of no known picture type leaves its picture box as it is.
        if (m == 1 || persist::FileExtension(member.type) == QLatin1String(".tmp")) continue;
        read.pictureGiven[m - 2] = true;
        read.pictures[m - 2] = platform::Picture::fromBytes(member.data, member.type, &error);
        // A damaged picture costs only itself: the rest of the project opens, and its
        // bytes are kept so that saving does not throw them away.
        if (read.pictures[m - 2].isNull() && !member.data.isEmpty()) {
            read.damagedPictures << QStringLiteral("kuva %1: ").arg(m - 1) + error;
            read.pictures[m - 2] = platform::Picture::keptAsStored(member.data, member.type);
        }
    }
}

// Reads the file, its members and its three documents; false with what failed in `error`.
bool readProject(MDIForm1& main, const QString& file, bool textOnly, ReadProject& read, QString& error) {
    if (!persist::ReadProjectFile(file, textOnly, read.file, &error)) return false;
    main.DisplayProgress(20);
    if (!textOnly) readMembers(main.appState().TempPath, read);
    // The members are read (and their copies written): they need no memory while the
    // windows fill.
    read.file.members = {};
    for (int n = 0; n < 3; ++n) {
        read.documents[n] = std::make_unique<QTextDocument>();
        const QByteArray& rtf = read.file.content.documents[n];
        if (!rtf.isEmpty() && !platform::ReadRtf(rtf, *read.documents[n], &error)) {
            error = documents::Form2::documentName(n) + QStringLiteral(": ") + error;
            return false;
        }
    }
    return true;
}

// Fills the project's windows with what was read.
void fillWindows(MDIForm1& main, const ProjectWindows& w, ReadProject& read, bool textOnly) {
    persist::ProjectContent& c = read.file.content;
    QComboBox* references = w.f2->Combo1[0];
    references->clear();
    // Every line is an item, an empty one too, so the items after it keep their places.
    for (const QString& item : c.referenceItems)
        references->addItem(item);
    main.DisplayProgress(30);
    w.f1->applyRecord(std::move(c.windows[0]));
    main.DisplayProgress(40);
    w.f2->applyRecord(std::move(c.windows[1]));
    main.DisplayProgress(80);
    w.f3->applyRecord(std::move(c.windows[2]));
    // The card's money labels show the project's own unit from the start.
    w.f3->setMoneyUnit(w.f1->Combo1[4]->text());
    main.DisplayProgress(90);
    w.f4->applyRecord(std::move(c.windows[3]));
    for (int i = 0; i < static_cast<int>(w.f4->Check1.size()); ++i) {
        const int v = i < c.checks.size() ? c.checks[i].toInt() : 0;
        w.f4->Check1[i]->setCheckState(v == 1 ? Qt::Checked
                                              : (v == 2 ? Qt::PartiallyChecked : Qt::Unchecked));
    }
    for (int n = 0; n < 3; ++n)
        w.f2->setStoredDocument(n, *read.documents[n]);
    // The shown document comes from its holder; nothing is stored back first.
    w.f2->showDocument(main.appState().settings.StartUpDocument);
    if (!textOnly)
        for (int k = 0; k < 6; ++k)
            if (read.pictureGiven[k]) w.f1->Image1[k]->setPicture(read.pictures[k]);
}

} // namespace

bool ReadSlFile(MDIForm1& main, const QString& project, const QString& file, bool textOnly,
                const QString& openAs) {
    AppState& state = main.appState();
    const ProjectWindows w = main.projectWindowsOf(ParseFileName(project).project());
    if (!w.complete()) return false;

    auto fail = [&](const QString& what) {
        platform::MsgBox(QStringLiteral("Tiedostoa ") + file + QStringLiteral(" ei voi avata:\r\n") + what,
                         MsgIcon::Critical);
        return false;
    };

    TempLock lock(state.TempPath);
    if (!lock.locked())
        return fail(QStringLiteral("toinen TAMRIK-ohjelma käsittelee parhaillaan tiedostoja."));

    // Everything is read and checked before any window changes.
    ReadProject read;
    // One progress strip for reading and for filling the windows: ending it in between would
    // lay out and paint the whole main window twice more.
    FileOperation operation(main, QStringLiteral("Lataa tiedostoa..."));
    QString error;
    if (!readProject(main, file, textOnly, read, error)) return fail(error);

    const bool wasLoading = state.Loading;
    state.Loading = true;
    // What is read is no step: the project starts a new history once it stands.
    lists::EditHistory* history = w.f1->history();
    std::optional<lists::EditHistory::Quiet> quiet(std::in_place, history);
    fillWindows(main, w, read, textOnly);
    if (openAs.isEmpty()) {
        main.UpdateRecentFiles(file);
        main.ChangeFormCaptions(project, file, true);
    } else {
        main.ChangeFormCaptions(project, openAs, false);
    }
    state.Loading = wasLoading;
    quiet.reset();
    // A recovered project is changed from the start, with nothing to undo.
    if (history) history->restart(!openAs.isEmpty());
    EnableControlsPage1(main, w.f1);
    EnableControlsPage(main, w.f2, true);
    if (!read.damagedPictures.isEmpty())
        platform::MsgBox(
            QStringLiteral("Tiedoston ") + file +
                QStringLiteral(" kaikkia kuvia ei voi näyttää. Ne säilyvät tiedostossa sellaisinaan:\r\n") +
                read.damagedPictures.join(QStringLiteral("\r\n")),
            MsgIcon::Exclamation);
    return true;
}

} // namespace shell
