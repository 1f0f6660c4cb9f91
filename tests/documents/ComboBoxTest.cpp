// The forms' editable drop-down against Qt's own editable combo box: its drop-down list, and
// its completion, which it makes only on the first focus, are the same as Qt's.
#include "documents/Controls.h"

#include <QAbstractItemView>
#include <QCompleter>
#include <QLayout>
#include <QLineEdit>
#include <QScrollBar>
#include <QTest>
#include <gtest/gtest.h>
#include <utility>

namespace {

const QStringList kItems{QStringLiteral("Betoni"), QStringLiteral("Teräs"), QStringLiteral("Teräsbetoni"),
                         QStringLiteral("Puu")};

// What the user meets of a combo box's completion.
struct Completion {
    QCompleter::CompletionMode mode;
    Qt::CaseSensitivity caseSensitivity;
    Qt::MatchFlags filter;
    int column;
    int role;
    QCompleter::ModelSorting sorting;
    bool wrap;
    int maxVisible;
    bool sameModel;
    bool operator==(const Completion&) const = default;
};

Completion completionOf(QComboBox& box) {
    const QCompleter* c = box.lineEdit()->completer();
    if (!c) return {};
    return {c->completionMode(),   c->caseSensitivity(), c->filterMode(),
            c->completionColumn(), c->completionRole(),  c->modelSorting(),
            c->wrapAround(),       c->maxVisibleItems(), c->model() == box.model()};
}

// What the user sees of the drop-down list once it is open.
struct DropDown {
    QByteArray delegate;
    Qt::ScrollBarPolicy verticalPolicy;
    Qt::TextElideMode elide;
    QSize viewSize;
    QSize listSize;
    QMargins listMargins;
    bool operator==(const DropDown&) const = default;
};

DropDown openDropDown(QComboBox& box) {
    box.showPopup();
    QAbstractItemView* view = box.view();
    DropDown d{view->itemDelegate()->metaObject()->className(),
               view->verticalScrollBarPolicy(),
               view->textElideMode(),
               view->size(),
               view->parentWidget()->size(),
               view->parentWidget()->layout() ? view->parentWidget()->layout()->contentsMargins()
                                              : QMargins()};
    box.hidePopup();
    return d;
}

struct Pair {
    QWidget window;
    QComboBox* plain = new QComboBox(&window);
    documents::ComboBox* ours = new documents::ComboBox(&window);
    Pair() {
        plain->setEditable(true);
        plain->setInsertPolicy(QComboBox::NoInsert);
        plain->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
        plain->setMinimumContentsLength(4);
        for (QComboBox* box : {static_cast<QComboBox*>(ours), plain}) {
            box->addItems(kItems);
            box->setEditText(QString());
        }
        plain->move(0, 0);
        ours->move(0, 40);
        window.resize(300, 100);
        window.show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&window));
    }
};

} // namespace

TEST(ComboBox, LooksAndCompletesAsQtsEditableComboBox) {
    Pair p;
    EXPECT_TRUE(p.ours->isEditable());
    EXPECT_EQ(p.ours->sizeHint(), p.plain->sizeHint());
    EXPECT_EQ(p.ours->minimumSizeHint(), p.plain->minimumSizeHint());
    EXPECT_EQ(p.ours->focusPolicy(), p.plain->focusPolicy());
    EXPECT_EQ(p.ours->lineEdit()->hasFrame(), p.plain->lineEdit()->hasFrame());

    // Typing the start of an item completes it inline, ignoring case, as in Qt's box.
    const auto typed = [](QComboBox* box) {
        box->setFocus();
        QTest::keyClicks(box, QStringLiteral("ter"));
        return std::pair{box->currentText(), box->lineEdit()->selectedText()};
    };
    const auto ours = typed(p.ours);
    EXPECT_EQ(ours, typed(p.plain));
    EXPECT_EQ(ours.first, QStringLiteral("teräs"));
    EXPECT_EQ(completionOf(*p.ours), completionOf(*p.plain));
    // Leaving the box takes the item as it is written.
    p.plain->setFocus();
    EXPECT_EQ(p.ours->currentText(), QStringLiteral("Teräs"));

    EXPECT_EQ(openDropDown(*p.ours), openDropDown(*p.plain));
}

TEST(ComboBox, KeysSentWithoutFocusOnlyType) {
    Pair p;
    // Keys may reach a box that does not have the focus (a test driver): they type, and
    // completion waits for the focus.
    ASSERT_FALSE(p.ours->hasFocus());
    QTest::keyClicks(p.ours, QStringLiteral("p"));
    EXPECT_EQ(p.ours->currentText(), QStringLiteral("p"));
    p.ours->setFocus();
    QTest::keyClicks(p.ours, QStringLiteral("u"));
    EXPECT_EQ(p.ours->currentText(), QStringLiteral("puu"));
    EXPECT_EQ(p.ours->lineEdit()->selectedText(), QStringLiteral("u"));
}

TEST(ComboBox, TheDropDownOpensBeforeAnyTyping) {
    Pair p;
    // The first thing done with the box is opening its list: the list is made then, as Qt's.
    EXPECT_EQ(openDropDown(*p.ours), openDropDown(*p.plain));
    p.ours->showPopup();
    QTest::keyClick(p.ours->view(), Qt::Key_Down);
    QTest::keyClick(p.ours->view(), Qt::Key_Return);
    EXPECT_EQ(p.ours->currentText(), kItems[1]);
}
