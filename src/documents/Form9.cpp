#include "documents/Form9.h"

#include "calc/QualityIndex.h"
#include "documents/Controls.h"
#include "documents/DocumentHost.h"
#include "documents/Form10.h"
#include "documents/Form2.h"
#include "platform/CommonDialog.h"
#include "platform/Cp1252.h"
#include "platform/Dialogs.h"
#include "platform/Rtf.h"
#include "platform/TextFile.h"
#include "platform/ui/Menus.h"

#include <QAction>
#include <QDateTime>
#include <QFontDatabase>
#include <QMenu>
#include <QMenuBar>
#include <QTextCursor>
#include <QTextDocumentFragment>
#include <QTextEdit>
#include <QToolBar>
#include <QVBoxLayout>

namespace documents {

namespace {

constexpr int kWindowSlot = 9;
constexpr int kHelpTopic = 300;
constexpr int kSummaryMode = 100;
constexpr int kTemplateMode = 8;

const char* const kStyles[] = {"Header1", "Header2",     "Bold",      "Italic", "Underline",
                               "Normal",  "Superscript", "Subscript", "Custom"};

bool fieldMode(int mode) {
    return mode >= 2 && mode <= 7;
}

// "Rakennussuunnitelmaselostus" reads "rakennussuunnitelmaselostus" inside a menu text.
QString inSentence(const QString& name) {
    return name.isEmpty() ? name : name.left(1).toLower() + name.mid(1);
}

} // namespace

bool InsertFromFile(QTextEdit* box, const QString& fileName) {
    if (!box) return false;
    QString error;
    QTextCursor cursor = box->textCursor();
    if (platform::isRtfFileName(fileName)) {
        QTextDocument document;
        if (!platform::ReadRtfFile(document, fileName, &error)) {
            platform::MsgBox(error, platform::MsgIcon::Exclamation);
            return false;
        }
        cursor.insertFragment(QTextDocumentFragment(&document));
    } else {
        QByteArray bytes;
        if (!platform::readFileBytes(fileName, bytes, &error)) {
            platform::MsgBox(error, platform::MsgIcon::Exclamation);
            return false;
        }
        QString text = platform::fromCp1252(bytes);
        text.replace(QLatin1String("\r\n"), QLatin1String("\n"));
        cursor.insertText(text);
    }
    box->setTextCursor(cursor);
    return true;
}

Form9::Form9(DocumentHost& host, const EditorSource& source, QWidget* parent)
    : QDialog(parent)
    , m_host(host)
    , m_source(source) {
    setObjectName(QStringLiteral("Form9"));
    setModal(true);
    setSizeGripEnabled(true);
    resize(860, 640);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    RichTextBox1 = new QTextEdit(this);
    RichTextBox1->setObjectName(QStringLiteral("RichTextBox1"));
    RichTextBox1->setAcceptRichText(true);
    createMenus();
    createToolbar();
    layout->addWidget(Toolbar1);
    layout->addWidget(RichTextBox1, 1);
    load();
    m_host.restoreWindowPosition(kWindowSlot, this);
    RichTextBox1->setFocus();
}

void Form9::createMenus() {
    auto* bar = new QMenuBar(this);
    layout()->setMenuBar(bar);
    QMenu* file = bar->addMenu(QStringLiteral("&Tiedosto"));
    const QStringList fileItems = {QString::fromUtf8("Päivitä rakennussuunnitelmaselostus"),
                                   QStringLiteral("Tuo tiedosto..."),
                                   QStringLiteral("Vie tiedosto..."),
                                   QStringLiteral("Tuo osoittimen kohdalle tiedostosta..."),
                                   QStringLiteral("-"),
                                   QStringLiteral("&Sulje")};
    for (int i = 0; i < fileItems.size(); ++i) {
        QAction* a = platform::addMenuItem(file, SubMenu0, fileItems[i]);
        connect(a, &QAction::triggered, this, [this, i] { FileMenuClick(i); });
    }

    createEditMenu(bar->addMenu(QStringLiteral("&Muokkaa")));

    platform::addGuideMenu(bar, this, [this] { m_host.showHelp(kHelpTopic, this); });
}

void Form9::createEditMenu(QMenu* edit) {
    const QStringList editItems = {QString::fromUtf8("Lisää otsikkorivit..."),
                                   QStringLiteral("-"),
                                   QStringLiteral("Leikkaa"),
                                   QStringLiteral("Kopio"),
                                   QString::fromUtf8("Liitä"),
                                   QStringLiteral("Poista"),
                                   QStringLiteral("-"),
                                   QStringLiteral("Siirry..."),
                                   QStringLiteral("-"),
                                   QStringLiteral("&Valitse kaikki"),
                                   QStringLiteral("-"),
                                   QStringLiteral("Tyyli")};
    for (int i = 0; i < editItems.size(); ++i) {
        QAction* a = nullptr;
        if (editItems[i] == QLatin1String("-")) {
            a = edit->addSeparator();
        } else if (i == 11) {
            QMenu* styles = edit->addMenu(editItems[i]);
            a = styles->menuAction();
            const QStringList styleItems = {QString::fromUtf8("Pääotsikko"), QStringLiteral("Alaotsikko"),
                                            QStringLiteral("Lihavoitu"),     QStringLiteral("Kursivoitu"),
                                            QStringLiteral("Alleviivattu"),  QStringLiteral("Normaali"),
                                            QString::fromUtf8("Yläindeksi"), QStringLiteral("Alaindeksi"),
                                            QString::fromUtf8("Määritä...")};
            for (int k = 0; k < styleItems.size(); ++k) {
                QAction* s = styles->addAction(styleItems[k]);
                SubMenu11.push_back(s);
                connect(s, &QAction::triggered, this, [this, k] { StyleMenuClick(k); });
            }
        } else {
            a = edit->addAction(editItems[i]);
            connect(a, &QAction::triggered, this, [this, i] { EditMenuClick(i); });
        }
        SubMenu1.push_back(a);
    }
    // The clipboard items act on the text box, which handles these keys itself; the menu shows
    // them so that they can be found.
    SubMenu1[2]->setShortcut(QKeySequence::Cut);
    SubMenu1[3]->setShortcut(QKeySequence::Copy);
    SubMenu1[4]->setShortcut(QKeySequence::Paste);
    SubMenu1[7]->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_F));
    SubMenu1[9]->setShortcut(QKeySequence::SelectAll);
    SubMenu11[2]->setShortcut(QKeySequence::Bold);
    SubMenu11[3]->setShortcut(QKeySequence::Italic);
    SubMenu11[4]->setShortcut(QKeySequence::Underline);
    for (QAction* a : SubMenu1)
        a->setShortcutContext(Qt::WindowShortcut);
}

void Form9::createToolbar() {
    Toolbar1 = new QToolBar(this);
    Toolbar1->setObjectName(QStringLiteral("Toolbar1"));
    Toolbar1->setIconSize(QSize(20, 20));
    const std::pair<const char*, const char*> buttons[] = {{"Update", "Päivitä"}, {"Find", "Siirry..."},
                                                           {"Cut", "Leikkaa"},    {"Copy", "Kopio"},
                                                           {"Paste", "Liitä"},    {"Del", "Poista"}};
    for (const auto& [key, tip] : buttons) {
        const QString k = QString::fromLatin1(key);
        QAction* a = Toolbar1->addAction(m_host.toolIcon(k), QString::fromUtf8(tip));
        a->setToolTip(QString::fromUtf8(tip));
        a->setObjectName(k);
        toolbarButtons[k] = a;
        connect(a, &QAction::triggered, this, [this, k] { ToolbarClick(k); });
        if (k == QLatin1String("Find")) Toolbar1->addSeparator();
    }
}

void Form9::load() {
    const QString title = platform::applicationTitle();
    const int mode = m_source.mode;
    QTextEdit* document = m_source.project ? m_source.project->RichTextBox1[0] : nullptr;
    if (mode == 1 && document) {
        const QString name = Form2::documentName(m_source.project->shownDocument());
        setWindowTitle(title + QStringLiteral(" (") + name + QLatin1Char(')'));
        SubMenu0[0]->setText(QString::fromUtf8("Päivitä ") + inSentence(name));
        RichTextBox1->setDocument(document->document()->clone(RichTextBox1));
        QTextCursor c(RichTextBox1->document());
        c.setPosition(
            std::min(document->textCursor().position(), RichTextBox1->document()->characterCount() - 1));
        RichTextBox1->setTextCursor(c);
        m_locked = document->isReadOnly();
        m_canWriteBack = true;
    } else if (fieldMode(mode) && m_source.field) {
        setWindowTitle(title + QStringLiteral(" (Tekstieditori)"));
        SubMenu0[0]->setText(QString::fromUtf8("Päivitä teksti"));
        RichTextBox1->setPlainText(toWidgetText(m_source.field->text()));
        m_locked = m_source.field->locked();
        m_canWriteBack = true;
    } else if (mode == kTemplateMode && document) {
        loadTemplate(*document);
    } else if (mode == kSummaryMode) {
        loadSummary();
    } else {
        setWindowTitle(title + QStringLiteral(" (Tekstieditori)"));
    }

    enableForContent(mode == kSummaryMode);
    RichTextBox1->document()->setModified(false);
    // A field or the template is read from its beginning; a document from where its caret was.
    if (mode != 1) RichTextBox1->moveCursor(QTextCursor::Start);

    if (m_locked && m_canWriteBack)
        platform::MsgBox(QString::fromUtf8("Olet muokkaamassa suojattua kenttää tekstieditorissa.\r\n"
                                           "Tietojen tuonti takaisin tekstieditorista on estetty."),
                         platform::MsgIcon::Information);
}

void Form9::loadTemplate(const QTextEdit& document) {
    // The contract quality plan template: its parts are inserted into the project's plan.
    setWindowTitle(platform::applicationTitle() + QStringLiteral(" (Tekstieditori)"));
    SubMenu0[0]->setText(QString::fromUtf8("Lisää asiakirjaan"));
    QString file = m_host.appState().QualityPlanTemplate;
    if (file.isEmpty()) file = m_host.appState().AppPath + QStringLiteral("Urakan laatusuunnitelma.txt");
    QStringList lines;
    if (platform::readTextLines(file, lines))
        platform::loadPlainTextAsDefault(*RichTextBox1->document(), lines.join(QStringLiteral("\r\n")));
    else
        platform::MsgBox(QStringLiteral("Tiedostoa: ") + file + QString::fromUtf8(" ei löydy."),
                         platform::MsgIcon::Information);
    m_locked = document.isReadOnly();
    m_canWriteBack = true;
}

void Form9::loadSummary() {
    setWindowTitle(platform::applicationTitle() + QStringLiteral(" (Laatuvaatimusten yhteenveto)"));
    SubMenu0[0]->setText(QString::fromUtf8("Päivitä"));
    const lists::ListModel* requirements = m_source.project ? m_source.project->list(1) : nullptr;
    if (requirements) {
        const calc::QualityRecord record = calc::CalculateQualityIndex(*requirements);
        RichTextBox1->setPlainText(toWidgetText(
            calc::MakeSummaryText(record, m_source.projectFileName, QDateTime::currentDateTime())));
    }
    QFont mono(QStringLiteral("Courier New"), 10);
    mono.setStyleHint(QFont::TypeWriter);
    RichTextBox1->document()->setDefaultFont(mono);
    RichTextBox1->setLineWrapMode(QTextEdit::NoWrap);
    RichTextBox1->setReadOnly(true);
}

void Form9::enableForContent(bool summary) {
    const bool editable = !summary && !m_locked;
    RichTextBox1->setReadOnly(!editable);
    const bool headings = m_source.project && m_source.project->list(1);
    SubMenu0[0]->setEnabled(m_canWriteBack && !m_locked);
    SubMenu0[1]->setEnabled(editable);
    SubMenu0[3]->setEnabled(editable);
    SubMenu1[0]->setEnabled(editable && headings);
    for (int i : {2, 4, 5})
        SubMenu1[i]->setEnabled(editable);
    SubMenu1[3]->setEnabled(!summary);
    SubMenu1[7]->setEnabled(!summary && headings);
    SubMenu1[9]->setEnabled(!summary);
    SubMenu1[11]->setEnabled(editable);
    toolbarButtons[QStringLiteral("Update")]->setEnabled(SubMenu0[0]->isEnabled());
    toolbarButtons[QStringLiteral("Find")]->setEnabled(SubMenu1[7]->isEnabled());
    toolbarButtons[QStringLiteral("Cut")]->setEnabled(editable);
    toolbarButtons[QStringLiteral("Copy")]->setEnabled(!summary);
    toolbarButtons[QStringLiteral("Paste")]->setEnabled(editable);
    toolbarButtons[QStringLiteral("Del")]->setEnabled(editable);
}

bool Form9::isChanged() const {
    return RichTextBox1->document()->isModified();
}

bool Form9::WriteBack() {
    if (!m_canWriteBack || m_locked) return false;
    const int mode = m_source.mode;
    if (mode == 1 && m_source.project) {
        m_source.project->replaceShownDocument(*RichTextBox1->document());
    } else if (fieldMode(mode) && m_source.field) {
        m_source.field->setText(platform::plainTextWithCrLf(*RichTextBox1->document()));
    } else if (mode == kTemplateMode && m_source.project) {
        // The selection, or the whole text when nothing is selected, goes into the project's
        // document at its caret, and the caret moves past it.
        QTextEdit* target = m_source.project->RichTextBox1[0];
        QTextCursor at = target->textCursor();
        const QTextCursor selection = RichTextBox1->textCursor();
        if (selection.hasSelection())
            at.insertFragment(selection.selection());
        else
            at.insertText(RichTextBox1->toPlainText());
        target->setTextCursor(at);
        return true;
    } else {
        return false;
    }
    RichTextBox1->document()->setModified(false);
    return true;
}

void Form9::FileMenuClick(int index) {
    QString file;
    switch (index) {
        case 0:
            WriteBack();
            return;
        case 1:
            file = platform::ShowCommonDialog(1, QStringLiteral(".rtf"), false, m_host.appState().dialog);
            m_host.appState().CurrentFileName = file;
            if (file.isEmpty()) return;
            {
                QString error;
                if (!platform::ReadRtfFile(*RichTextBox1->document(), file, &error)) {
                    platform::MsgBox(error, platform::MsgIcon::Exclamation);
                    return;
                }
                RichTextBox1->document()->setModified(true);
            }
            return;
        case 2: {
            file = platform::ShowCommonDialog(2, QStringLiteral(".rtf"), false, m_host.appState().dialog);
            m_host.appState().CurrentFileName = file;
            if (file.isEmpty()) return;
            QString error;
            if (!platform::WriteRtfFile(*RichTextBox1->document(), file, &error))
                platform::MsgBox(error, platform::MsgIcon::Exclamation);
            return;
        }
        case 3:
            file = platform::ShowCommonDialog(1, QStringLiteral(".rtf"), false, m_host.appState().dialog);
            m_host.appState().CurrentFileName = file;
            if (!file.isEmpty()) InsertFromFile(RichTextBox1, file);
            return;
        case 5:
            reject();
            return;
        default:
            return;
    }
}

void Form9::EditMenuClick(int index) {
    if (index >= 0 && index < static_cast<int>(SubMenu1.size()) && !SubMenu1[index]->isEnabled()) return;
    switch (index) {
        case 0:
            showIndex(index_mode::EditorInsert);
            return;
        case 2:
        case 3:
        case 4:
        case 5:
            CutCopyPasteDelSelection(RichTextBox1, index - 2);
            return;
        case 7:
            showIndex(index_mode::EditorJump);
            return;
        case 9:
            RichTextBox1->selectAll();
            return;
        default:
            return;
    }
}

void Form9::StyleMenuClick(int index) {
    if (index < 0 || index >= static_cast<int>(std::size(kStyles)) || RichTextBox1->isReadOnly()) return;
    applyStyle(QString::fromLatin1(kStyles[index]));
}

void Form9::applyStyle(const QString& style) {
    QTextCursor cursor = RichTextBox1->textCursor();
    if (style == QLatin1String("Custom")) {
        const QTextCharFormat current = cursor.charFormat();
        const std::optional<QFont> font = platform::Dialogs::instance().font(current.font());
        if (!font) return;
        const QColor initial =
            current.foreground().style() == Qt::NoBrush ? QColor(Qt::black) : current.foreground().color();
        // Cancelling the colour dialog after the font one changes nothing either.
        const std::optional<QColor> color = platform::Dialogs::instance().color(initial);
        if (!color) return;
        platform::applyCustomStyle(cursor, *font, *color);
    } else {
        platform::FormatRichText(cursor, style);
    }
    RichTextBox1->setTextCursor(cursor);
    RichTextBox1->setFocus();
}

void Form9::ToolbarClick(const QString& key) {
    if (key == QLatin1String("Update"))
        FileMenuClick(0);
    else if (key == QLatin1String("Find"))
        EditMenuClick(7);
    else if (key == QLatin1String("Cut"))
        EditMenuClick(2);
    else if (key == QLatin1String("Copy"))
        EditMenuClick(3);
    else if (key == QLatin1String("Paste"))
        EditMenuClick(4);
    else if (key == QLatin1String("Del"))
        EditMenuClick(5);
}

void Form9::showIndex(const QString& indexMode) {
    if (!m_source.project || !m_source.project->list(1)) return;
    Form10::Source source;
    source.headings = m_source.project->list(1);
    source.text = RichTextBox1;
    Form10 index(indexMode, source, &m_host, this);
    index.exec();
}

void Form9::reject() {
    // Changes that could be written back are not dropped without asking (Esc, "&Sulje" and the
    // close box all come here).
    if (m_canWriteBack && !m_locked && m_source.mode != kTemplateMode && isChanged()) {
        const platform::MsgAnswer a = platform::Ask(
            QString::fromUtf8("Tekstiä on muutettu. Viedäänkö muutokset takaisin ennen sulkemista?"),
            platform::MsgButtons::YesNoCancel, platform::MsgIcon::Question, platform::MsgAnswer::Yes);
        if (a == platform::MsgAnswer::Cancel) return;
        if (a == platform::MsgAnswer::Yes) WriteBack();
    }
    QDialog::reject();
}

void Form9::done(int result) {
    m_host.storeWindowPosition(kWindowSlot, this);
    QDialog::done(result);
}

} // namespace documents
