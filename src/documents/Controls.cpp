#include "documents/Controls.h"

#include <limits>
#include <QAbstractItemView>
#include <QApplication>
#include <QCompleter>
#include <QFocusEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPointer>
#include <QTextEdit>
#include <QTimer>
#include <QVBoxLayout>

namespace documents {

QString toWidgetText(const QString& value) {
    QString t = value;
    t.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    t.replace(QLatin1Char('\r'), QLatin1Char('\n'));
    return t;
}

QString fromWidgetText(const QString& text) {
    QString t = text;
    t.replace(QChar::ParagraphSeparator, QLatin1Char('\n'));
    t.replace(QLatin1Char('\n'), QLatin1String("\r\n"));
    return t;
}

void ReturnControl(QWidget* control) {
    if (!control) return;
    QWidget* target = control->focusProxy() ? control->focusProxy() : control;
    QKeyEvent tab(QEvent::KeyPress, Qt::Key_Tab, Qt::NoModifier);
    QApplication::sendEvent(target, &tab);
}

namespace {
// The widget that holds the text of a control.
QWidget* textWidget(QWidget* control) {
    if (auto* box = qobject_cast<TextBox*>(control)) return box->editor();
    if (auto* combo = qobject_cast<QComboBox*>(control)) return combo->lineEdit();
    return control;
}
} // namespace

void CutCopyPasteDelSelection(QWidget* control, int operation) {
    QWidget* w = textWidget(control);
    if (auto* line = qobject_cast<QLineEdit*>(w)) {
        if (operation == 1) line->copy();
        if (line->isReadOnly()) return;
        if (operation == 0) line->cut();
        if (operation == 2) line->paste();
        // Delete removes the selection; with nothing selected it does nothing.
        if (operation == 3 && line->hasSelectedText()) line->del();
    } else if (auto* plain = qobject_cast<QPlainTextEdit*>(w)) {
        if (operation == 1) plain->copy();
        if (plain->isReadOnly()) return;
        if (operation == 0) plain->cut();
        if (operation == 2) plain->paste();
        if (operation == 3) plain->textCursor().removeSelectedText();
    } else if (auto* rich = qobject_cast<QTextEdit*>(w)) {
        if (operation == 1) rich->copy();
        if (rich->isReadOnly()) return;
        if (operation == 0) rich->cut();
        if (operation == 2) rich->paste();
        if (operation == 3) rich->textCursor().removeSelectedText();
    }
}

void SelectAllText(QWidget* control) {
    QWidget* w = textWidget(control);
    if (auto* line = qobject_cast<QLineEdit*>(w))
        line->selectAll();
    else if (auto* plain = qobject_cast<QPlainTextEdit*>(w))
        plain->selectAll();
    else if (auto* rich = qobject_cast<QTextEdit*>(w))
        rich->selectAll();
}

void applyFieldLook(QWidget* w, bool readOnly) {
    QPalette p = w->palette();
    if (readOnly) {
        const QColor face = QApplication::palette().color(QPalette::Button);
        p.setColor(QPalette::Base, face);
        p.setColor(QPalette::Text, QColor(64, 64, 64));
    } else {
        p.setColor(QPalette::Base, Qt::white);
        p.setColor(QPalette::Text, Qt::black);
    }
    w->setPalette(p);
    w->setFocusPolicy(readOnly ? Qt::ClickFocus : Qt::StrongFocus);
}

TextBox::TextBox(bool multiLine, QWidget* parent)
    : QWidget(parent) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    if (multiLine) {
        m_plain = new QPlainTextEdit(this);
        m_plain->setTabChangesFocus(true);
        m_plain->setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
        layout->addWidget(m_plain);
        connect(m_plain, &QPlainTextEdit::textChanged, this, &TextBox::changed);
        m_plain->installEventFilter(this);
        setFocusProxy(m_plain);
    } else {
        m_line = new QLineEdit(this);
        // A field holds any length; Qt's default of 32767 characters would cut a longer value
        // read from a project file, and saving would then lose the rest.
        m_line->setMaxLength(std::numeric_limits<int>::max());
        layout->addWidget(m_line);
        connect(m_line, &QLineEdit::textChanged, this, &TextBox::changed);
        connect(m_line, &QLineEdit::returnPressed, this, &TextBox::returnPressed);
        m_line->installEventFilter(this);
        setFocusProxy(m_line);
    }
}

QWidget* TextBox::editor() const {
    return m_line ? static_cast<QWidget*>(m_line) : m_plain;
}

QString TextBox::text() const {
    return m_line ? m_line->text() : fromWidgetText(m_plain->toPlainText());
}

void TextBox::setText(const QString& text) {
    if (m_line) {
        // A single-line box keeps line breaks of a value read from a file as they are.
        if (m_line->text() != text) {
            m_line->setText(text);
            // A long value shows from its beginning.
            m_line->setCursorPosition(0);
        }
    } else if (text != this->text()) {
        m_plain->setPlainText(toWidgetText(text));
    }
}

bool TextBox::locked() const {
    return m_line ? m_line->isReadOnly() : m_plain->isReadOnly();
}

void TextBox::setLocked(bool locked) {
    if (m_line)
        m_line->setReadOnly(locked);
    else
        m_plain->setReadOnly(locked);
}

void TextBox::setReadOnlyLook(bool readOnly) {
    setLocked(readOnly);
    applyFieldLook(editor(), readOnly);
    clearSelection();
}

void TextBox::setAlignmentRight() {
    if (m_line) m_line->setAlignment(Qt::AlignRight);
}

void TextBox::selectAll() {
    if (m_line)
        m_line->selectAll();
    else
        m_plain->selectAll();
}

void TextBox::clearSelection() {
    if (m_line) {
        m_line->deselect();
    } else {
        QTextCursor c = m_plain->textCursor();
        c.clearSelection();
        m_plain->setTextCursor(c);
    }
}

QString TextBox::selectedText() const {
    if (m_line) return m_line->selectedText();
    return fromWidgetText(m_plain->textCursor().selectedText());
}

void TextBox::insertText(const QString& text) {
    if (m_line)
        m_line->insert(text);
    else
        m_plain->insertPlainText(toWidgetText(text));
}

void TextBox::removeSelectedText() {
    if (m_line)
        m_line->del();
    else
        m_plain->textCursor().removeSelectedText();
}

bool TextBox::eventFilter(QObject* watched, QEvent* event) {
    // Entering a box selects its whole text, so typing replaces the value.
    if (event->type() == QEvent::FocusIn) {
        auto* fe = static_cast<QFocusEvent*>(event);
        if (fe->reason() == Qt::TabFocusReason || fe->reason() == Qt::BacktabFocusReason ||
            fe->reason() == Qt::OtherFocusReason || fe->reason() == Qt::MouseFocusReason)
            QTimer::singleShot(0, this, [this] { selectAll(); });
    }
    return QWidget::eventFilter(watched, event);
}

ComboBox::ComboBox(QWidget* parent)
    : QComboBox(parent) {
    // Editable through a line edit of its own rather than setEditable(true), which would also
    // make a completer for every box of a form at once, a fifth of a form's start-up time
    // though a user types in few of the boxes. The completer is made on the first focus, set up
    // as Qt sets up an editable box's (prepareCompletion).
    auto* edit = new QLineEdit(this);
    edit->setPalette(palette());
    // With no completer of its own the line edit would get Qt's default one here and now.
    edit->setCompleter(new QCompleter(edit));
    setLineEdit(edit);
    // The rest of what setEditable(true) does: an editable box's list scrolls with a scroll bar
    // rather than the menu's arrows.
    view()->setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    if (!testAttribute(Qt::WA_Resized)) adjustSize();
    setInsertPolicy(QComboBox::NoInsert);
    setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    setMinimumContentsLength(4);
    connect(this, &QComboBox::editTextChanged, this, &ComboBox::changed);
    connect(lineEdit(), &QLineEdit::returnPressed, this, &ComboBox::returnPressed);
    lineEdit()->setMaxLength(std::numeric_limits<int>::max());
}

QString ComboBox::text() const {
    return currentText();
}

void ComboBox::setText(const QString& text) {
    if (currentText() != text) setEditText(text);
}

void ComboBox::setLocked(bool locked) {
    m_locked = locked;
    lineEdit()->setReadOnly(locked);
}

void ComboBox::setReadOnlyLook(bool readOnly) {
    setLocked(readOnly);
    applyFieldLook(this, readOnly);
    applyFieldLook(lineEdit(), readOnly);
    lineEdit()->deselect();
}

void ComboBox::addUniqueItem(const QString& item) {
    if (item.isEmpty() || findText(item, Qt::MatchExactly) >= 0) return;
    const QString keep = currentText();
    addItem(item);
    setEditText(keep);
}

void ComboBox::showPopup() {
    if (!m_locked) QComboBox::showPopup();
}

void ComboBox::prepareCompletion() {
    if (m_completionReady) return;
    m_completionReady = true;
    // Typing completes inline to the first item that starts with the text, ignoring case.
    const QPointer<QCompleter> standIn = lineEdit()->completer();
    auto* completer = new QCompleter(model(), lineEdit());
    completer->setCaseSensitivity(Qt::CaseInsensitive);
    completer->setCompletionMode(QCompleter::InlineCompletion);
    completer->setCompletionColumn(modelColumn());
    setCompleter(completer);
    delete standIn; // when the box did not already take it down with its own
}

void ComboBox::wheelEvent(QWheelEvent* e) {
    if (m_locked) {
        e->ignore();
        return;
    }
    QComboBox::wheelEvent(e);
}

void ComboBox::keyPressEvent(QKeyEvent* e) {
    if (m_locked) {
        // Moving the focus and copying stay possible; nothing may change the value.
        if (e->key() == Qt::Key_Tab || e->key() == Qt::Key_Backtab || e->matches(QKeySequence::Copy) ||
            e->key() == Qt::Key_Left || e->key() == Qt::Key_Right || e->key() == Qt::Key_Home ||
            e->key() == Qt::Key_End) {
            QComboBox::keyPressEvent(e);
            return;
        }
        if (e->key() == Qt::Key_Return || e->key() == Qt::Key_Enter) {
            emit returnPressed();
            return;
        }
        e->accept();
        return;
    }
    QComboBox::keyPressEvent(e);
}

void ComboBox::focusInEvent(QFocusEvent* e) {
    // Completion works only in the box that has the focus: it is made before the first key.
    prepareCompletion();
    QComboBox::focusInEvent(e);
    QTimer::singleShot(0, this, [this] {
        if (lineEdit()) lineEdit()->selectAll();
    });
}

} // namespace documents
