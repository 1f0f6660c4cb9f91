#pragma once
// The detailed data window: the quantity list and cost estimate, the quality requirement list,
// and the text documents, one above the other.
#include "documents/ProjectWindow.h"

#include <array>

class QCheckBox;
class QLabel;
class QSplitter;
class QTextDocument;
class QTextEdit;

namespace documents {

class Form2 : public ProjectWindow {
    Q_OBJECT
public:
    explicit Form2(DocumentHost& host, QWidget* parent = nullptr);

    void prepareNewProject() override;
    QSize sizeHint() const override { return QSize(1000, 760); }

    // RichTextBox1[0] is the visible document; [1]..[3] hold "Rakennussuunnitelmaselostus",
    // "Koodaussuunnitelma" and "Urakan laatusuunnitelma".
    std::vector<QTextEdit*> RichTextBox1;
    std::vector<QLabel*> Label1;
    std::vector<QCheckBox*> Check1;

    // Stores the shown document into holder `oldIndex` + 1 and shows holder `newIndex` + 1.
    void switchDocument(int oldIndex, int newIndex);
    // Shows holder `index` + 1 in the visible box without storing anything first (after a read).
    void showDocument(int index);
    // Gives holder `index` + 1 a copy of a document (a project being read).
    void setStoredDocument(int index, const QTextDocument& document);
    // Copies the visible box into the holder of the shown document.
    void StoreRichTextDocument();
    // Replaces the shown document with a copy of another one (the text editor writing back);
    // the project is marked changed.
    void replaceShownDocument(const QTextDocument& document);
    // Formats the blank rows of the quantity list with the program's blank-row settings.
    // Returns whether rows changed.
    bool FormatListView();
    // The index (0..2) of the document shown, from the visible box's tag.
    int shownDocument() const;

    // Restricted editing of the two lists: only the structural part and quantity columns of
    // the quantity list, or only the numeric values of the requirement list.
    bool restrictEdit(int listIndex) const;

    static QString documentName(int index);

private:
    // The constructor's areas: the list `i` under its heading and restriction box, and the
    // shown text document under its heading.
    QWidget* listArea(int i);
    QWidget* documentArea();
    static QLabel* boldLabel(const QString& text, QWidget* parent, int index);
    void listFocused(int index);
    std::array<bool, 2> m_restrict{false, false};
    QSplitter* m_splitter = nullptr;
};

} // namespace documents
