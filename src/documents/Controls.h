#pragma once
// The text box and drop-down of the windows' control arrays. A text box is single-line or
// multi-line but offers one interface; both hold their values with CR LF line breaks, as the
// project file and the lists do, and convert at the widget.
#include <QComboBox>
#include <QWidget>

class QLineEdit;
class QPlainTextEdit;

namespace documents {

class TextBox : public QWidget {
    Q_OBJECT
public:
    explicit TextBox(bool multiLine = false, QWidget* parent = nullptr);

    QString text() const;
    void setText(const QString& text);
    bool isMultiLine() const { return m_plain != nullptr; }
    bool locked() const;
    void setLocked(bool locked);
    // The read-only look: button-face background and dark grey text, not a tab stop.
    void setReadOnlyLook(bool readOnly);
    void selectAll();
    void clearSelection();
    QString selectedText() const;
    void insertText(const QString& text); // replaces the selection
    void removeSelectedText();
    QWidget* editor() const;
    void setAlignmentRight();

signals:
    void changed();
    // Enter in a single-line box: the window moves the focus on.
    void returnPressed();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QLineEdit* m_line = nullptr;
    QPlainTextEdit* m_plain = nullptr;
};

// An editable drop-down. While locked it cannot be changed by popup, wheel or keys.
class ComboBox : public QComboBox {
    Q_OBJECT
public:
    explicit ComboBox(QWidget* parent = nullptr);

    QString text() const;
    void setText(const QString& text);
    bool locked() const { return m_locked; }
    void setLocked(bool locked);
    void setReadOnlyLook(bool readOnly);
    void addUniqueItem(const QString& item);

    void showPopup() override;

signals:
    void changed();
    void returnPressed();

protected:
    void wheelEvent(QWheelEvent* e) override;
    void keyPressEvent(QKeyEvent* e) override;
    void focusInEvent(QFocusEvent* e) override;

private:
    // Typing's completion, made on the first focus.
    void prepareCompletion();

    bool m_locked = false;
    bool m_completionReady = false;
};

// Enter in a single-line box or a drop-down moves the focus on to the next control, as Tab.
void ReturnControl(QWidget* control);

// Cut 0, copy 1, paste 2, delete 3 on the selection of a text box, drop-down, rich-text box or
// line edit (the list edit box among them). A read-only control allows copying only.
void CutCopyPasteDelSelection(QWidget* control, int operation);
// Selects the whole text of such a control.
void SelectAllText(QWidget* control);

// Palettes of the two looks of a field.
void applyFieldLook(QWidget* w, bool readOnly);

// CR LF inside values, LF inside widgets.
QString toWidgetText(const QString& value);
QString fromWidgetText(const QString& text);

} // namespace documents
