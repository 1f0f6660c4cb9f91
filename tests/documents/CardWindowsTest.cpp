// The characteristics card and the charge chamber card: fields at their identities, grey
// computed fields, the buttons, and a new project's drop-down lists.
#include "FormsTestHost.h"
#include "common/ScriptedDialogs.h"
#include "documents/Controls.h"
#include "documents/Form3.h"
#include "documents/Form4.h"
#include "lists/ListModel.h"
#include "lists/ui/ListView.h"

#include <QApplication>
#include <QCheckBox>
#include <QDate>
#include <QGroupBox>
#include <QPushButton>
#include <gtest/gtest.h>
#include <set>

using documents::Form3;
using documents::Form4;
using testing_support::buddiesOf;
using testing_support::FormsTestHost;
using testing_support::frameTitled;
using testing_support::rectIn;
using testing_support::sameColumn;
using testing_support::sameRow;

namespace {

QWidget* only(const QWidget& root, const char* label) {
    const QList<QWidget*> b = buddiesOf(&root, QString::fromUtf8(label));
    EXPECT_EQ(b.size(), 1) << label;
    return b.isEmpty() ? nullptr : b.first();
}

QLabel* labelWithText(const QWidget* root, const QString& text) {
    for (QLabel* l : root->findChildren<QLabel*>())
        if (l->text() == text) return l;
    return nullptr;
}

void layOut(QWidget& w) {
    w.resize(w.sizeHint());
    w.show();
    QApplication::processEvents();
}

const std::set<int> kGreyCardFields = {3,  4,  5,  6,  7,  8,  9,  10, 12, 29, 30,
                                       31, 32, 44, 46, 48, 50, 52, 54, 56, 58, 60};

} // namespace

TEST(Form3, ArraysAndLabelledFields) {
    FormsTestHost host;
    Form3 w(host);
    ASSERT_EQ(w.Text1.size(), 62u);
    ASSERT_EQ(w.Combo1.size(), 20u);
    EXPECT_TRUE(w.ListView1.empty());
    for (std::size_t i = 0; i < w.Text1.size(); ++i) {
        ASSERT_NE(w.Text1[i], nullptr) << i;
        EXPECT_EQ(w.Text1[i]->isMultiLine(), i == 61) << i;
        // Grey computed fields cannot be typed into; every other field can.
        EXPECT_EQ(w.Text1[i]->locked(), kGreyCardFields.count(static_cast<int>(i)) == 1) << i;
    }
    for (std::size_t i = 0; i < w.Combo1.size(); ++i)
        ASSERT_NE(w.Combo1[i], nullptr) << i;

    const std::pair<const char*, QWidget*> named[] = {
        {"Siltalaji", w.Combo1[8]},
        {"Toimenpide", w.Combo1[9]},
        {"Vapaa korkeus", w.Text1[0]},
        {"Päällysrak. rak. korkeus, aukossa", w.Text1[1]},
        {"tuella", w.Text1[2]},
        {"Kokonaispinta-ala HlxL", w.Text1[3]},
        {"Pinta-ala A", w.Text1[4]},
        {"Perustamistapa, maatuet", w.Combo1[0]},
        {"välituet", w.Combo1[1]},
        {"Arvio", w.Text1[5]},
        {"Toteuma", w.Text1[11]},
        {"Betonielem.", w.Text1[43]},
        {"Betonia", w.Text1[47]},
        {"Betoniterästä", w.Text1[51]},
        {"Jänneterästä", w.Text1[55]},
        {"Rakenneterästä", w.Text1[57]},
        {"Liimapuuta", w.Text1[59]},
        {"Sahatavaraa", w.Text1[45]},
        {"Maalauspinta-ala", w.Text1[49]},
        {"Muottipintoja", w.Text1[53]},
        {"&Lisätiedot:", w.Text1[61]},
        {"L", w.Combo1[16]},
        {"T", w.Combo1[15]},
        {"m2/rak.teräs t", w.Text1[50]},
        {"m2/m3", w.Text1[54]},
        {"kg/A", w.Text1[58]},
    };
    for (const auto& [label, field] : named)
        EXPECT_EQ(only(w, label), field) << label;

    // Repeated labels: every one names a field of its own.
    auto set = [](const QList<QWidget*>& l) { return std::set<QWidget*>(l.begin(), l.end()); };
    auto C = [&](std::initializer_list<int> ids) {
        std::set<QWidget*> s;
        for (int i : ids)
            s.insert(w.Combo1[i]);
        return s;
    };
    auto T = [&](std::initializer_list<int> ids) {
        std::set<QWidget*> s;
        for (int i : ids)
            s.insert(w.Text1[i]);
        return s;
    };
    EXPECT_EQ(set(buddiesOf(&w, QStringLiteral("K"))), C({7, 13, 3, 5, 6, 12, 2, 4, 10, 14}));
    EXPECT_EQ(set(buddiesOf(&w, QStringLiteral("Lk"))), C({11, 17, 18, 19}));
    EXPECT_EQ(set(buddiesOf(&w, QStringLiteral("kg/m3"))), T({29, 30, 31, 32, 52, 56}));
    EXPECT_EQ(set(buddiesOf(&w, QStringLiteral("m3/A"))), T({44, 48, 60, 46}));
    EXPECT_EQ(set(buddiesOf(&w, QStringLiteral("kpl"))), T({37, 40}));
    EXPECT_EQ(set(buddiesOf(&w, QStringLiteral("m koko"))), T({39, 42}));

    // The indexed money-unit labels.
    for (int i : {2, 3, 4, 5, 6, 7, 79}) {
        ASSERT_NE(w.Label1[i], nullptr) << i;
        EXPECT_EQ(w.Label1[i]->objectName(), QStringLiteral("Label1_%1").arg(i));
    }
    w.setMoneyUnit(QStringLiteral("€"));
    for (int i : {2, 3, 5, 6, 7})
        EXPECT_EQ(w.Label1[i]->text(), QStringLiteral("€")) << i;
    for (int i : {4, 79})
        EXPECT_EQ(w.Label1[i]->text(), QStringLiteral("€/m2")) << i;
    EXPECT_EQ(w.Label1[2]->buddy(), w.Text1[5]);
    EXPECT_EQ(w.Label1[4]->buddy(), w.Text1[6]);
    EXPECT_EQ(w.Label1[79]->buddy(), w.Text1[12]);
}

TEST(Form3, CostBlockAndSupportsFollowTheirRowsAndColumns) {
    FormsTestHost host;
    Form3 w(host);
    layOut(w);

    // Costs: the estimate row and the realised row, column by column.
    QGroupBox* costs = frameTitled(w, QStringLiteral("K&USTANNUKSET"));
    ASSERT_NE(costs, nullptr);
    const char* const heads[] = {"Koko silta", nullptr, "Yhteiskustan.", "Päällysrakenne", "Indeksi"};
    for (int k = 0; k < 5; ++k) {
        QWidget* estimate = w.Text1[5 + k];
        QWidget* realised = w.Text1[11 + k];
        EXPECT_TRUE(costs->isAncestorOf(estimate) && costs->isAncestorOf(realised)) << k;
        EXPECT_TRUE(sameColumn(estimate, realised, &w)) << k;
        EXPECT_LT(rectIn(estimate, &w).top(), rectIn(realised, &w).top()) << k;
        EXPECT_TRUE(sameRow(estimate, w.Text1[5], &w)) << k;
        EXPECT_TRUE(sameRow(realised, w.Text1[11], &w)) << k;
        if (heads[k]) {
            QLabel* head = labelWithText(costs, QString::fromUtf8(heads[k]));
            ASSERT_NE(head, nullptr) << heads[k];
            EXPECT_TRUE(sameColumn(head, estimate, &w)) << heads[k];
        }
    }
    // The base year after the index, on the same row.
    EXPECT_TRUE(sameRow(w.Text1[9], w.Text1[10], &w));
    EXPECT_GT(rectIn(w.Text1[10], &w).left(), rectIn(w.Text1[9], &w).right());

    // Supports: column j holds concrete 1, concrete 2, reinforcement, ratio and formwork.
    const char* const frames[] = {"Maa- ja päätytuet", "Maa- ja päätytuet", "Välituet", "Välituet"};
    const char* const columnHeads[] = {"Perustus", "Pystyrakenne", "Perustus", "Pystyrakenne"};
    const int class1[] = {7, 13, 3, 5};
    const int class2[] = {6, 12, 2, 4};
    for (int j = 0; j < 4; ++j) {
        QGroupBox* frame = frameTitled(w, QString::fromUtf8(frames[j]));
        ASSERT_NE(frame, nullptr);
        QLabel* head = nullptr;
        for (QLabel* l : frame->findChildren<QLabel*>())
            if (l->text() == QString::fromUtf8(columnHeads[j])) head = l;
        ASSERT_NE(head, nullptr);
        int previousTop = rectIn(head, &w).bottom();
        for (int field : {17 + j, 21 + j, 25 + j, 29 + j, 33 + j}) {
            EXPECT_TRUE(frame->isAncestorOf(w.Text1[field])) << field;
            EXPECT_TRUE(sameColumn(head, w.Text1[field], &w)) << field;
            EXPECT_GT(rectIn(w.Text1[field], &w).top(), previousTop) << field;
            previousTop = rectIn(w.Text1[field], &w).top();
        }
        EXPECT_TRUE(frame->isAncestorOf(w.Combo1[class1[j]]));
        EXPECT_TRUE(sameRow(w.Combo1[class1[j]], w.Text1[17 + j], &w)) << j;
        EXPECT_TRUE(sameRow(w.Combo1[class2[j]], w.Text1[21 + j], &w)) << j;
    }
    // Piles below the foundations: number, length, size on one row.
    for (int first : {37, 40}) {
        SCOPED_TRACE(first);
        EXPECT_TRUE(sameRow(w.Text1[first], w.Text1[first + 1], &w));
        EXPECT_TRUE(sameRow(w.Text1[first], w.Text1[first + 2], &w));
        EXPECT_GT(rectIn(w.Text1[first], &w).top(), rectIn(w.Text1[first == 37 ? 33 : 35], &w).top());
    }

    // Superstructure rows: amount, class and ratio side by side.
    QGroupBox* superstructure = frameTitled(w, QStringLiteral("&Päällysrakenne"));
    ASSERT_NE(superstructure, nullptr);
    const int rows[][3] = {{43, 10, 44}, {47, 14, 48}, {51, 17, 52}, {55, 18, 56}, {57, 19, 58},
                           {59, 16, 60}, {45, 15, 46}, {49, -1, 50}, {53, -1, 54}};
    for (const auto& r : rows) {
        EXPECT_TRUE(superstructure->isAncestorOf(w.Text1[r[0]])) << r[0];
        EXPECT_TRUE(sameRow(w.Text1[r[0]], w.Text1[r[2]], &w)) << r[0];
        if (r[1] >= 0) EXPECT_TRUE(sameRow(w.Text1[r[0]], w.Combo1[r[1]], &w)) << r[0];
    }
}

TEST(Form3, ButtonsAskForPicturesAndFigures) {
    FormsTestHost host;
    Form3 w(host);
    ASSERT_NE(w.Command1, nullptr);
    EXPECT_EQ(w.Command1->text(), QStringLiteral("Las&ke tunnusluvut"));
    ASSERT_EQ(w.Command2.size(), 3u);
    EXPECT_EQ(w.Command2[0]->text(), QStringLiteral("&Sivukuva..."));
    EXPECT_EQ(w.Command2[1]->text(), QStringLiteral("&Poikkileikkaus..."));
    EXPECT_EQ(w.Command2[2]->text(), QStringLiteral("&Logo..."));

    std::vector<int> asked;
    QObject::connect(&w, &Form3::pictureRequested, [&asked](int n) { asked.push_back(n); });
    for (QPushButton* b : w.Command2)
        b->click();
    EXPECT_EQ(asked, (std::vector<int>{2, 3, 4}));

    w.Command1->click();
    ASSERT_EQ(host.computed.size(), 1u);
    EXPECT_EQ(host.computed[0], &w);
}

TEST(Form3, NewProjectFillsDropDownsAndMoneyUnit) {
    FormsTestHost host;
    testing_support::ScriptedDialogs dialogs;
    host.state.settings.MoneyUnit = QStringLiteral("€");
    Form3 w(host);
    EXPECT_EQ(w.Label1[2]->text(), QStringLiteral("mk"));
    host.state.Loading = true;
    w.prepareNewProject();
    host.state.Loading = false;
    EXPECT_TRUE(dialogs.messages().empty());
    EXPECT_GE(w.Combo1[8]->findText(QStringLiteral("Tiesilta")), 0);
    EXPECT_GE(w.Combo1[11]->findText(QStringLiteral("A500HW")), 0);
    EXPECT_GE(w.Combo1[19]->findText(QStringLiteral("S235J2")), 0);
    EXPECT_EQ(w.Combo1[8]->text(), QString());
    EXPECT_EQ(w.Label1[3]->text(), QStringLiteral("€"));
    EXPECT_EQ(w.Label1[79]->text(), QStringLiteral("€/m2"));
}

TEST(Form4, FieldsChecksAndButtons) {
    FormsTestHost host;
    Form4 w(host);
    ASSERT_EQ(w.Text1.size(), 9u);
    ASSERT_EQ(w.Combo1.size(), 5u);
    ASSERT_EQ(w.ListView1.size(), 1u);
    EXPECT_EQ(w.list(0)->kind(), QStringLiteral("Panostilat"));
    for (std::size_t i = 0; i < w.Text1.size(); ++i) {
        ASSERT_NE(w.Text1[i], nullptr);
        EXPECT_EQ(w.Text1[i]->locked(), i == 1 || i == 4) << i;
        EXPECT_EQ(w.Text1[i]->isMultiLine(), i == 8) << i;
    }
    const std::pair<const char*, QWidget*> named[] = {
        {"Sillan numero", w.Text1[0]},
        {"Kunta", w.Text1[1]},
        {"Tiemestaripiiri", w.Combo1[0]},
        {"Vas/oik", w.Combo1[1]},
        {"Vesitösilta", w.Combo1[3]},
        {"Päivitys pvm", w.Combo1[2]},
        {"Tien numero ja tien (jakson nimi)", w.Text1[2]},
        {"Tie/tieosa/etäisyys", w.Text1[3]},
        {"Rakenne", w.Text1[4]},
        {"MaxJän/MaxVa", w.Text1[6]},
        {"Jänsum/VAsum", w.Text1[5]},
        {"Jänlkm/valkm", w.Text1[7]},
        {"Panostila päivitys", w.Combo1[4]},
        {"Tuki, (a) rakennetut panostilat, (b) rakenteelliset panostilat ja (c) panoskiinnikkeet",
         w.ListView1[0]},
        {"Huom.", w.Text1[8]},
    };
    for (const auto& [label, field] : named)
        EXPECT_EQ(only(w, label), field) << label;

    ASSERT_EQ(w.Check1.size(), 2u);
    EXPECT_EQ(w.Check1[0]->text(), QStringLiteral("Käytä &ominaistietokortin &sivukuvaa"));
    EXPECT_EQ(w.Check1[1]->text(), QStringLiteral("Käytä ominaistietokortin &poikkileikkauskuvaa"));
    w.Check1[1]->setChecked(true);
    ASSERT_EQ(host.changed.size(), 1u);
    EXPECT_EQ(host.changed[0], &w);

    ASSERT_EQ(w.Command1.size(), 3u);
    EXPECT_EQ(w.Command1[2]->text(), QStringLiteral("M&erkkikilpi..."));
    std::vector<int> asked;
    QObject::connect(&w, &Form4::pictureRequested, [&asked](int n) { asked.push_back(n); });
    for (QPushButton* b : w.Command1)
        b->click();
    EXPECT_EQ(asked, (std::vector<int>{5, 6, 7}));
}

TEST(Form4, NewProjectFillsListAndDropDowns) {
    FormsTestHost host;
    testing_support::ScriptedDialogs dialogs;
    Form4 w(host);
    host.state.Loading = true;
    w.prepareNewProject();
    host.state.Loading = false;
    EXPECT_TRUE(dialogs.messages().empty());
    ASSERT_GT(w.list(0)->rows(), 0);
    EXPECT_EQ(w.list(0)->column(1).header, QStringLiteral("TUKI"));
    EXPECT_EQ(w.list(0)->cell(1, 1).toString(), QStringLiteral("MT 1"));
    EXPECT_GE(w.Combo1[0]->findText(QStringLiteral("Espoo")), 0);
    EXPECT_GE(w.Combo1[4]->findText(QDate::currentDate().toString(QStringLiteral("d.M.yyyy"))), 0);
    EXPECT_TRUE(host.changed.empty());
}
