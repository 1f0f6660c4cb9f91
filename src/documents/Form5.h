#pragma once
// The list row editor: one row of a list as a card of labelled fields, written back on request
// and stepped through the list, optionally only to rows that pass a filter. On the project's
// requirement list it is the inspection tool: "Täyttää vaatimukset, siirry seuraavaan" marks
// the requirement met and moves on. The rules live in RowCard; this is the window.
#include "documents/RowCard.h"

#include <QDialog>
#include <QPointer>
#include <map>
#include <vector>

class QAction;
class QLabel;
class QMenu;
class QScrollArea;
class QStatusBar;
class QToolBar;

namespace lists {
class ListModel;
class ListView;
} // namespace lists

namespace documents {

class ComboBox;
class DocumentHost;
class TextBox;

class Form5 : public QDialog {
    Q_OBJECT
public:
    explicit Form5(DocumentHost& host, QWidget* parent = nullptr);
    ~Form5() override;

    // Sets the card up for the list and shows its current row (its first row when none is
    // current). A list that the program mode made read-only is refused with the mode's message.
    // Returns whether the card is ready; the caller then shows the window modally.
    bool ShowListViewEditor(lists::ListView* view);

    lists::ListView* view() const { return m_view; }
    lists::ListModel* list() const;
    // The list row the card shows; 0 for none.
    int row() const { return m_row; }
    const std::vector<CardField>& fields() const { return m_fields; }
    // Whether the card holds changes not yet written into its row.
    bool hasUnwrittenChanges() const;
    TextBox* textOfColumn(int column) const;
    ComboBox* comboOfColumn(int column) const;

    // Fills the card from the list's current row and applies the program mode's rules.
    void ImportToEditor();
    // The program mode's rules on the card (the project's requirement list only).
    void EnableControlsForm5();
    // "Update": writes the card back into its row. A requirement without an identifier is
    // refused with a message, and so is a contractor's type 1 or 2; nothing is written then.
    bool UpdateRow();
    // Steps with a browse filter code: the row found becomes the current one and is shown.
    // With none found the end message is shown and the card stays. Changes not yet written to
    // the row are asked about before it moves. Returns whether it moved.
    bool Browse(int code);
    // Moves the list's current row by `distance` and shows it.
    void BrowseRow(int distance);
    // "Check and browse next": in the contractor's and the client's mode, marks the shown
    // requirement "Kyllä", writes it back and steps to the next row.
    bool CheckAndBrowseNext();
    // "New" (0), "Dublicate" (1), "New to end" (2). A new blank row asks first about changes not
    // yet written to the shown row; a copy takes the card as it is.
    void AddRow(int how);
    // The contractor's type rule for the type field: false, with the message, the field's text
    // selected and the focus kept in it, while it holds a type 1 or 2 that the contractor gave.
    // Such a type is never accepted: the rules stay those of the row's own type, and the card
    // is not written back while the field holds it.
    bool checkContractorType();

    // Every toolbar button, menu item and key ends here, by key: "Update", "Update and browse
    // next", "Check and browse next", "PgUp", "PgDn", "New", "Dublicate", "New to end", "Cut",
    // "Copy", "Paste", "Del", "Edit", "Select all", "Find", "Index", "Browse document",
    // "Browse attachment", "Open document", "Open attachment", "Close", "Delete all".
    void ToolbarClick(const QString& key);

    std::vector<QLabel*> Label1; // captions of Combo1
    std::vector<QLabel*> Label2; // captions of Text1
    std::vector<TextBox*> Text1;
    std::vector<ComboBox*> Combo1;
    // "&Tiedosto", "&Muokkaa", "&Selaa" and its submenus "&Edellinen..." / "&Seuraava...".
    std::vector<QAction*> SubMenu0, SubMenu1, SubMenu2, SubMenu20, SubMenu21;
    QToolBar* Toolbar1 = nullptr;
    std::map<QString, QAction*> toolbarButtons;
    QStatusBar* StatusBar1 = nullptr;

    // Closing asks first when the card holds changes not yet written to its row.
    void reject() override;
    void done(int result) override;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void createMenus();
    // The "Selaa" menu: steps to the previous and next row of each kind.
    void createBrowseMenu(QMenu* browse);
    void createToolbar();
    // The card's fields for the list's columns, built again only when the list's kind or
    // headers changed; its parts: a long text field, a short field, the rules' signals, the
    // window's size.
    void buildCard();
    TextBox* makeLongField(const CardField& f, QWidget* card, int lines);
    ComboBox* makeShortField(const CardField& f, QWidget* card, bool quality);
    void connectRuleFields();
    void sizeToCard(QWidget* card, bool quality);
    void fillComboLists();
    void touch();
    bool handleKey(int key, Qt::KeyboardModifiers modifiers);
    QWidget* focusedField() const;
    void openTextEditor();
    void showIndex();
    void browseFile(int column);
    void openFile(int column);
    QStringList comboTexts() const;
    QStringList textTexts() const;
    void focusFirstField();
    bool typeRefused() const;
    // Changes not yet written to the row, before the card is closed or shows another row: asks
    // whether to write them ("ennen " + `before`); false when the user cancelled or the write
    // was refused.
    bool settleUnwrittenChanges(const QString& before);

    DocumentHost& m_host;
    QPointer<lists::ListView> m_view;
    std::vector<CardField> m_fields;
    QString m_cardLayout; // the kind and headers the card was built for
    QScrollArea* m_scroll = nullptr;
    QLabel* m_unwritten = nullptr;
    int m_row = 0;
    bool m_loading = false;
    bool m_typeMessageOpen = false;
    bool m_positioned = false;
};

} // namespace documents
