// The list editor on a shown list view: keys that start, move and end an edit, double-click,
// header clicks, and drops of rows from another list.
#include "EditingBuilders.h"
#include "common/ScriptedDialogs.h"
#include "lists/ui/ListEditor.h"
#include "lists/ui/ListView.h"

#include <QApplication>
#include <QDragEnterEvent>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLineEdit>
#include <QMimeData>
#include <QTest>
#include <gtest/gtest.h>

#include <memory>

using namespace lists;
using namespace lists_test;
using platform::MsgAnswer;
using testing_support::ScriptedDialogs;

namespace {

class TestHost : public ListEditHost {
public:
    EditContext ctx{3, -1, false};
    TransferOptions options{3, 5};
    int edits = 0;
    int transfers = 0;
    TransferResult lastTransfer;

    EditContext editContext(ListView*) override { return ctx; }
    void listEdited(ListView*) override { ++edits; }
    TransferOptions transferOptions(ListView*, ListView*) override { return options; }
    void transferDone(ListView*, const TransferResult& result) override {
        ++transfers;
        lastTransfer = result;
    }
};

// A shown window with one or more lists, each with its editor.
class EditorWindow {
public:
    explicit EditorWindow(int lists = 1) {
        auto* layout = new QHBoxLayout(&window);
        for (int i = 0; i < lists; ++i) {
            models.push_back(std::make_unique<ListModel>());
            auto* view = new ListView(&window);
            view->setList(models.back().get());
            layout->addWidget(view);
            views.push_back(view);
            editors.push_back(new ListEditor(view, &host));
        }
        window.resize(900, 420);
        window.show();
        window.activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
        views[0]->setFocus();
    }

    ListModel& list(int i = 0) { return *models[i]; }
    ListView* view(int i = 0) { return views[i]; }
    ListEditor* editor(int i = 0) { return editors[i]; }
    QLineEdit* box(int i = 0) { return editors[i]->editBox(); }
    // Types into the edit box and presses a key there.
    void type(const QString& text, Qt::Key key = Qt::Key_Return,
              Qt::KeyboardModifiers mods = Qt::NoModifier) {
        QTest::keyClicks(box(), text);
        QTest::keyClick(box(), key, mods);
    }

    TestHost host;
    QWidget window;

private:
    std::vector<std::unique_ptr<ListModel>> models;
    std::vector<ListView*> views;
    std::vector<ListEditor*> editors;
};

// Five columns besides "Rivi", four rows.
void fillFiveColumns(ListModel& list) {
    fill(list, kind::ChargeChambers, {"TUKI", "RAK.AINE", "A", "B", "C"},
         {{"T1", "betoni"}, {"T2", "teräs"}, {"T3", "betoni"}, {"T4", "puu"}});
}

QPoint rowPoint(ListView* view, int row) {
    return view->cellRect(row, 1).center();
}

} // namespace

TEST(ListEditor, EnterMovesAcrossColumnsThenToTheNextRow) {
    ScriptedDialogs dialogs;
    EditorWindow w;
    fillFiveColumns(w.list());
    EXPECT_EQ(ListEditor::of(w.view()), w.editor());
    EXPECT_EQ(w.box()->objectName(), "TXTEDIT");
    EXPECT_FALSE(w.editor()->isEditing());

    // Enter on the list opens the first column of the selected row with its text selected.
    selectRows(w.list(), {3});
    QTest::keyClick(w.view(), Qt::Key_Return);
    ASSERT_TRUE(w.editor()->isEditing());
    EXPECT_EQ(w.editor()->editColumn(), 1);
    EXPECT_EQ(w.box()->text(), "T3");
    EXPECT_EQ(w.box()->selectedText(), "T3");
    EXPECT_TRUE(w.box()->hasFocus());
    EXPECT_FALSE(w.list().isSelected(3)) << "the edited row is deselected";
    const QRect cell = w.view()->cellRect(3, 1);
    EXPECT_EQ(w.box()->geometry().top(), cell.top());
    EXPECT_LE(w.box()->geometry().width(), cell.width());

    // Enter in column 4 moves to column 5 of the same row; in column 5 to the next row.
    w.editor()->setEditCell(3, 4);
    ASSERT_TRUE(w.editor()->EditListView(1));
    w.type("nelja");
    EXPECT_EQ(w.list().cell(3, 4).toString(), "nelja");
    EXPECT_EQ(w.editor()->editColumn(), 5);
    EXPECT_EQ(w.editor()->editRow(), 3);
    EXPECT_TRUE(w.editor()->isEditing());
    w.type("viisi");
    EXPECT_EQ(w.list().cell(3, 5).toString(), "viisi");
    EXPECT_EQ(w.editor()->editRow(), 4);
    EXPECT_FALSE(w.editor()->isEditing());
    EXPECT_TRUE(w.view()->hasFocus());
    EXPECT_EQ(w.list().selectedRows(), std::vector<int>{4});
    EXPECT_EQ(w.host.edits, 2);
    EXPECT_TRUE(dialogs.messages().empty());

    // Alt+Enter stores and goes down at once; Shift+Enter goes one column back.
    QTest::keyClick(w.view(), Qt::Key_Return);
    w.type("T2b", Qt::Key_Return, Qt::ShiftModifier);
    EXPECT_EQ(w.list().cell(4, 1).toString(), "T2b");
    EXPECT_EQ(w.editor()->editRow(), 3);
    w.editor()->setEditCell(2, 3);
    w.editor()->EditListView(1);
    w.type("x", Qt::Key_Return, Qt::AltModifier);
    EXPECT_EQ(w.list().cell(2, 3).toString(), "x");
    EXPECT_EQ(w.editor()->editRow(), 3);
    w.editor()->setEditCell(2, 3);
    w.editor()->EditListView(1);
    w.type("y", Qt::Key_Return, Qt::ShiftModifier);
    EXPECT_EQ(w.list().cell(2, 3).toString(), "y");
    EXPECT_EQ(w.editor()->editColumn(), 2);
    EXPECT_TRUE(w.editor()->isEditing());
}

TEST(ListEditor, LastAndFirstRow) {
    ScriptedDialogs dialogs;
    EditorWindow w;
    fillFiveColumns(w.list());

    w.editor()->setEditCell(4, 5);
    ASSERT_TRUE(w.editor()->EditListView(1));
    dialogs.answer(MsgAnswer::No);
    w.type("");
    EXPECT_EQ(dialogs.lastText(), "Viimeinen rivi. Lisätäänkö rivi?");
    EXPECT_EQ(dialogs.messages().back().buttons, platform::MsgButtons::YesNo);
    EXPECT_EQ(w.list().rows(), 4);
    EXPECT_EQ(w.list().selectedRows(), std::vector<int>{4});

    w.editor()->setEditCell(4, 5);
    w.editor()->EditListView(1);
    dialogs.answer(MsgAnswer::Yes);
    w.type("c");
    ASSERT_EQ(w.list().rows(), 5);
    EXPECT_EQ(w.list().cell(4, 5).toString(), "c");
    EXPECT_EQ(w.list().rowNumberText(5).toString(), "00005");
    EXPECT_TRUE(BlankListItem(w.list(), 5).blank);
    EXPECT_EQ(w.list().selectedRows(), std::vector<int>{5});
    EXPECT_EQ(w.editor()->editRow(), 5);

    dialogs.clear();
    w.editor()->setEditCell(1, 1);
    w.editor()->EditListView(1);
    w.type("", Qt::Key_Return, Qt::ShiftModifier);
    EXPECT_EQ(dialogs.texts(), QStringList{"Ensimmäinen rivi"});
    EXPECT_EQ(w.editor()->editRow(), 1);
    EXPECT_EQ(w.list().selectedRows(), std::vector<int>{1});
    EXPECT_EQ(w.list().cell(1, 1).toString(), "T1");
}

TEST(ListEditor, TypingStartsAnEditAndEscLeavesTheCell) {
    ScriptedDialogs dialogs;
    EditorWindow w;
    fillFiveColumns(w.list());
    selectRows(w.list(), {2});

    QTest::keyClick(w.view(), Qt::Key_X);
    ASSERT_TRUE(w.editor()->isEditing());
    EXPECT_EQ(w.box()->text(), "x");
    EXPECT_EQ(w.box()->cursorPosition(), 1);
    EXPECT_FALSE(w.box()->hasSelectedText());
    EXPECT_EQ(w.list().cell(2, 1).toString(), "T2");
    QTest::keyClick(w.box(), Qt::Key_Escape);
    EXPECT_FALSE(w.editor()->isEditing());
    EXPECT_EQ(w.list().cell(2, 1).toString(), "T2");
    EXPECT_EQ(w.host.edits, 0);
    EXPECT_TRUE(w.view()->hasFocus());

    // Typed and ended by moving the focus away: stored.
    selectRows(w.list(), {2});
    QTest::keyClick(w.view(), Qt::Key_X);
    QTest::keyClick(w.box(), Qt::Key_Y);
    w.view()->setFocus();
    EXPECT_FALSE(w.editor()->isEditing());
    EXPECT_EQ(w.list().cell(2, 1).toString(), "xy");
    EXPECT_EQ(w.host.edits, 1);

    // Keys with Ctrl or Alt, spaces and Delete start nothing.
    selectRows(w.list(), {1});
    QTest::keyClick(w.view(), Qt::Key_X, Qt::ControlModifier);
    QTest::keyClick(w.view(), Qt::Key_X, Qt::AltModifier);
    QTest::keyClick(w.view(), Qt::Key_Space);
    QTest::keyClick(w.view(), Qt::Key_Delete);
    EXPECT_FALSE(w.editor()->isEditing());
    for (auto [key, mods, text] : {std::tuple{Qt::Key_X, Qt::ControlModifier, QString("\x18")},
                                   std::tuple{Qt::Key_X, Qt::AltModifier, QString("x")},
                                   std::tuple{Qt::Key_Delete, Qt::NoModifier, QString(QChar(127))},
                                   std::tuple{Qt::Key_Tab, Qt::NoModifier, QString("\t")}}) {
        QKeyEvent event(QEvent::KeyPress, key, mods, text);
        EXPECT_FALSE(w.editor()->EditListViewKeyCode(&event)) << text.toStdString();
    }
    EXPECT_FALSE(w.editor()->isEditing());
    EXPECT_TRUE(dialogs.messages().empty());
}

TEST(ListEditor, RestrictedRequirementListEditsTheNumericValues) {
    ScriptedDialogs dialogs;
    EditorWindow w;
    fillRequirements(w.list());
    w.host.ctx = EditContext{3, 1, true};

    selectRows(w.list(), {3});
    QTest::keyClick(w.view(), Qt::Key_5);
    ASSERT_TRUE(w.editor()->isEditing());
    EXPECT_EQ(w.editor()->editColumn(), 6);
    w.type("");
    w.type("1");
    w.type("99");
    EXPECT_EQ(w.list().row(3).cells.toStringList().mid(5, 3), QStringList({"5", "1", "99"}));
    EXPECT_EQ(w.editor()->editRow(), 6) << "the continuation and blank rows are skipped";
    EXPECT_EQ(w.list().selectedRows(), std::vector<int>{6});

    // Double-click outside the editable columns does nothing.
    w.editor()->setEditCell(6, 3);
    EXPECT_FALSE(w.editor()->EditListView(1));

    w.editor()->setEditCell(10, 8);
    ASSERT_TRUE(w.editor()->EditListView(1));
    w.type("3");
    EXPECT_EQ(dialogs.texts(), QStringList{"Viimeinen kenttä."});
    EXPECT_EQ(w.editor()->editRow(), 10);
    EXPECT_EQ(w.list().cell(10, 8).toString(), "3");
}

TEST(ListEditor, ContractorTypesRequirementTypes) {
    ScriptedDialogs dialogs;
    EditorWindow w;
    fillRequirements(w.list());
    w.host.ctx = EditContext{2, 1, false};

    w.editor()->setEditCell(10, 4);
    ASSERT_TRUE(w.editor()->EditListView(1));
    w.type("1");
    EXPECT_EQ(dialogs.texts(), QStringList{"Siltakohtaisia (tyyppi 1) laatuvaatimuksia\r\n"
                                           "voi lisätä ainoastaan suunnitelija ja tilaaja."});
    EXPECT_EQ(w.list().cell(10, 4).toString(), "3");
    EXPECT_EQ(w.editor()->editColumn(), 5) << "the edit goes on";
    QTest::keyClick(w.box(), Qt::Key_Escape);

    w.editor()->setEditCell(10, 4);
    ASSERT_TRUE(w.editor()->EditListView(1));
    w.type("3 (Ohjeellinen)");
    EXPECT_EQ(w.list().cell(10, 4).toString(), "3 (Ohjeellinen)");
    QTest::keyClick(w.box(), Qt::Key_Escape);

    // A row of a bridge-specific requirement cannot be edited at all.
    dialogs.clear();
    selectRows(w.list(), {9});
    QTest::keyClick(w.view(), Qt::Key_Return);
    EXPECT_FALSE(w.editor()->isEditing());
    EXPECT_EQ(dialogs.texts(),
              QStringList{"Toiminto on sallittu ainoastaan\r\nsuunnitelijalle ja tilaajalle"});
}

TEST(ListEditor, DoubleClickAndHeaderClick) {
    ScriptedDialogs dialogs;
    EditorWindow w;
    fillFiveColumns(w.list());
    selectRows(w.list(), {2});

    QTest::mouseDClick(w.view()->viewport(), Qt::LeftButton, {}, w.view()->cellRect(2, 2).center());
    ASSERT_TRUE(w.editor()->isEditing());
    EXPECT_EQ(w.editor()->editRow(), 2);
    EXPECT_EQ(w.editor()->editColumn(), 2);
    EXPECT_EQ(w.box()->selectedText(), "teräs");
    EXPECT_EQ(w.editor()->GetListViewCol(), 2);
    QTest::keyClick(w.box(), Qt::Key_Escape);

    QHeaderView* header = w.view()->header();
    dialogs.answer(MsgAnswer::Yes);
    QTest::mouseClick(header->viewport(), Qt::LeftButton, {},
                      QPoint(header->sectionViewportPosition(1) + 5, 5));
    EXPECT_EQ(columnTexts(w.list(), 2), QStringList({"betoni", "betoni", "puu", "teräs"}));
    QTest::mouseClick(header->viewport(), Qt::LeftButton, {},
                      QPoint(header->sectionViewportPosition(0) + 5, 5));
    EXPECT_EQ(columnTexts(w.list(), 1), QStringList({"T1", "T2", "T3", "T4"}));
    EXPECT_TRUE(dialogs.allAnswersUsed());
}

TEST(ListEditor, MenuOperationsCloseTheEditFirst) {
    ScriptedDialogs dialogs;
    EditorWindow w;
    fillFiveColumns(w.list());
    selectRows(w.list(), {2});
    QTest::keyClick(w.view(), Qt::Key_Z);
    ASSERT_TRUE(w.editor()->isEditing());

    EXPECT_TRUE(w.editor()->rowEdit(action::AppendRow));
    EXPECT_FALSE(w.editor()->isEditing());
    EXPECT_EQ(w.list().cell(2, 1).toString(), "z") << "the open edit was stored";
    EXPECT_EQ(w.list().rows(), 5);
    EXPECT_EQ(w.host.edits, 2);

    selectRows(w.list(), {1});
    EXPECT_FALSE(w.editor()->cutCopyDelete(1)) << "copying changes nothing";
    selectRows(w.list(), {5});
    EXPECT_TRUE(w.editor()->paste());
    EXPECT_EQ(columnTexts(w.list(), 1), QStringList({"T1", "z", "T3", "T4", "T1", ""}));
    EXPECT_EQ(w.host.edits, 3);
    EXPECT_TRUE(dialogs.messages().empty());
}

TEST(ListEditorDrag, ThresholdInTwips) {
    EXPECT_FALSE(ListEditor::dragThresholdReached({10, 10}, {12, 10})) << "900 twips squared";
    EXPECT_TRUE(ListEditor::dragThresholdReached({10, 10}, {12, 11})) << "1125 twips squared";
    EXPECT_TRUE(ListEditor::dragThresholdReached({10, 10}, {10, 7}));
    EXPECT_FALSE(ListEditor::dragThresholdReached({10, 10}, {11, 11}));
    for (auto which :
         {ListEditor::DragPicture::Drag, ListEditor::DragPicture::Drop, ListEditor::DragPicture::NoDrop})
        EXPECT_FALSE(ListEditor::dragPicture(which).isNull());
    EXPECT_NE(ListEditor::dragPicture(ListEditor::DragPicture::Drop).toImage(),
              ListEditor::dragPicture(ListEditor::DragPicture::NoDrop).toImage());
}

TEST(ListEditorDrag, PressOnASelectedRowKeepsTheSelectionForDragging) {
    EditorWindow w;
    fillFiveColumns(w.list());
    selectRows(w.list(), {1, 2, 3});
    QTest::mousePress(w.view()->viewport(), Qt::LeftButton, {}, rowPoint(w.view(), 2));
    EXPECT_EQ(w.list().selectedRows(), (std::vector<int>{1, 2, 3}));
    QTest::mouseRelease(w.view()->viewport(), Qt::LeftButton, {}, rowPoint(w.view(), 2));
    EXPECT_EQ(w.list().selectedRows(), std::vector<int>{2})
        << "a click without dragging selects the row alone";
}

TEST(ListEditorDrag, DropsBetweenUnitPricesAndQuantities) {
    EditorWindow w(3);
    ListModel& prices = w.list(0);
    ListModel& quantities = w.list(1);
    ListModel& otherQuantities = w.list(2);
    fill(prices, kind::UnitPriceList, unitPriceHeaders(),
         {{"7170", "KANSIRAKENTEET"},
          {"", "Kansilaatan muotti", "m2", "40,00", "45,50", "52,00"},
          {"", "Reunapalkin muotti", "m2", "50,00", "55,00", "61,00"}});
    fill(quantities, kind::QuantityList, quantityHeaders(),
         {{"", "A", "", "1", "m"}, {"", "B", "", "2", "m"}});
    fill(otherQuantities, kind::QuantityList, quantityHeaders(), {{"", "muu", "", "1", "m"}});
    selectRows(prices, {2});
    selectRows(quantities, {1});

    // The pointer enters the list at `pos`, and with Drop the button is released there.
    auto send = [&](int target, QEvent::Type type, const QMimeData* data, QPoint pos) {
        QDragEnterEvent enter(pos, Qt::CopyAction, data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(w.view(target)->viewport(), &enter);
        if (type != QEvent::Drop || !enter.isAccepted()) return enter.isAccepted();
        QDropEvent drop(QPointF(pos), Qt::CopyAction, data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(w.view(target)->viewport(), &drop);
        return drop.isAccepted();
    };

    // Over a row of the quantity list: allowed, the row is marked and the selection cleared.
    std::unique_ptr<QMimeData> plain(w.editor(0)->dragData(false));
    EXPECT_EQ(ListEditor::dragSource(plain.get()), w.view(0));
    EXPECT_FALSE(plain->hasText()) << "text boxes must not take a list drag";
    EXPECT_TRUE(send(1, QEvent::DragEnter, plain.get(), rowPoint(w.view(1), 2)));
    EXPECT_EQ(w.editor(1)->dropRow(), 2);
    EXPECT_EQ(quantities.selectedCount(), 0);

    // A drop on a row without Shift sorts the item in with its caption (here: to the end).
    EXPECT_TRUE(send(1, QEvent::Drop, plain.get(), rowPoint(w.view(1), 2)));
    EXPECT_EQ(columnTexts(quantities, 2), QStringList({"A", "B", "KANSIRAKENTEET", "Kansilaatan muotti"}));
    EXPECT_EQ(quantities.cell(4, 6).toString(), "45,50");
    EXPECT_EQ(w.editor(1)->dropRow(), 0) << "the mark goes";
    EXPECT_EQ(w.host.transfers, 1);

    // With Shift held at the start of the drag the item goes above the drop row, alone.
    selectRows(prices, {3});
    std::unique_ptr<QMimeData> shifted(w.editor(0)->dragData(true));
    EXPECT_TRUE(send(1, QEvent::Drop, shifted.get(), rowPoint(w.view(1), 2)));
    EXPECT_EQ(columnTexts(quantities, 2),
              QStringList({"A", "Reunapalkin muotti", "B", "KANSIRAKENTEET", "Kansilaatan muotti"}));
    EXPECT_EQ(w.host.lastTransfer.lastPosition, 2);

    // Below the last row: appended.
    const QPoint below(20, w.view(1)->viewport()->height() - 3);
    ASSERT_FALSE(w.view(1)->indexAt(below).isValid());
    EXPECT_TRUE(send(1, QEvent::Drop, shifted.get(), below));
    EXPECT_EQ(quantities.cell(6, 2).toString(), "Reunapalkin muotti");

    // Back the other way into an empty list: placed at the top.
    ListModel& target = prices;
    target.clearRows();
    selectRows(quantities, {2});
    std::unique_ptr<QMimeData> fromQuantities(w.editor(1)->dragData(false));
    EXPECT_TRUE(send(0, QEvent::Drop, fromQuantities.get(), QPoint(20, 20)));
    EXPECT_EQ(columnTexts(target, 2), QStringList({"Reunapalkin muotti"}));
    EXPECT_EQ(w.host.transfers, 4);

    // The same kind, the list itself, text from elsewhere: refused.
    std::unique_ptr<QMimeData> sameKind(w.editor(2)->dragData(false));
    EXPECT_FALSE(send(1, QEvent::DragEnter, sameKind.get(), rowPoint(w.view(1), 1)));
    EXPECT_FALSE(send(1, QEvent::Drop, sameKind.get(), rowPoint(w.view(1), 1)));
    EXPECT_FALSE(send(1, QEvent::DragEnter, fromQuantities.get(), rowPoint(w.view(1), 1)));
    QMimeData text;
    text.setText("7100\tYLEISET\r");
    EXPECT_FALSE(send(1, QEvent::DragEnter, &text, rowPoint(w.view(1), 1)));
    EXPECT_EQ(quantities.rows(), 6);
    EXPECT_EQ(w.host.transfers, 4);
}

TEST(ListEditorDrag, ReadOnlyTargetAndVanishedSource) {
    EditorWindow w(2);
    fill(w.list(0), kind::UnitPriceList, unitPriceHeaders(), {{"", "Muotti", "m2", "1", "2", "3"}});
    fill(w.list(1), kind::QuantityList, quantityHeaders(), {{"", "A", "", "1", "m"}});
    selectRows(w.list(0), {1});
    std::unique_ptr<QMimeData> data(w.editor(0)->dragData(false));

    w.list(1).setReadOnly(true);
    EXPECT_FALSE(w.editor(1)->CheckListViewDrop(w.view(0), rowPoint(w.view(1), 1)))
        << "a contractor's quantity list";
    w.list(1).setReadOnly(false);
    EXPECT_TRUE(w.editor(1)->CheckListViewDrop(w.view(0), rowPoint(w.view(1), 1)));

    delete w.view(0);
    EXPECT_EQ(ListEditor::dragSource(data.get()), nullptr);
}
