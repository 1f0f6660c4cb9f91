// The basic data window: its fields at their identities, its lists, and a new project's defaults.
#include "FormsTestHost.h"
#include "common/ScriptedDialogs.h"
#include "documents/Controls.h"
#include "documents/Form1.h"
#include "lists/ListModel.h"
#include "lists/ui/ListView.h"
#include "platform/ui/PictureBox.h"

#include <QApplication>
#include <QDate>
#include <QFile>
#include <QGroupBox>
#include <QTemporaryDir>
#include <QKeyEvent>
#include <gtest/gtest.h>

using documents::Form1;
using testing_support::buddiesOf;
using testing_support::FormsTestHost;
using testing_support::frameTitled;

namespace {

struct Named {
    const char* label;
    QList<QWidget*> fields; // the fields labels of this text name, in any order
};

void expectLabels(const QWidget& window, const std::vector<Named>& table) {
    for (const Named& n : table) {
        QList<QWidget*> found = buddiesOf(&window, QString::fromUtf8(n.label));
        QList<QWidget*> expected = n.fields;
        std::sort(found.begin(), found.end());
        std::sort(expected.begin(), expected.end());
        EXPECT_EQ(found, expected) << n.label;
    }
}

} // namespace

TEST(Form1, FieldsStandAtTheirIdentities) {
    FormsTestHost host;
    Form1 w(host);
    ASSERT_EQ(w.Text1.size(), 14u);
    ASSERT_EQ(w.Combo1.size(), 18u);
    ASSERT_EQ(w.ListView1.size(), 3u);
    for (std::size_t i = 0; i < w.Text1.size(); ++i) {
        ASSERT_NE(w.Text1[i], nullptr) << i;
        EXPECT_EQ(w.Text1[i]->objectName(), QStringLiteral("Text1_%1").arg(i));
        EXPECT_EQ(w.Text1[i]->isMultiLine(), i == 9 || i == 10 || i == 11) << i;
    }
    for (std::size_t i = 0; i < w.Combo1.size(); ++i)
        ASSERT_NE(w.Combo1[i], nullptr) << i;

    auto T = [&](int i) -> QWidget* { return w.Text1[i]; };
    auto C = [&](int i) -> QWidget* { return w.Combo1[i]; };
    expectLabels(w, {
                        {"Sillan nimi", {T(0)}},
                        {"Kunta", {C(9)}},
                        {"Tieosa", {T(1)}},
                        {"Tiepiiri", {C(2)}},
                        {"Sillan tyyppi", {C(0)}},
                        {"Suunn. nro", {T(2)}},
                        {"Jm (m)", {T(3)}},
                        {"Kok. pituus (m)", {T(4)}},
                        {"Hl (m)", {T(8)}},
                        {"Va (m)", {T(5)}},
                        {"Kannen pit. (m)", {T(6)}},
                        {"Suun. kuorma", {C(1)}},
                        {"Kohtis. va (m)", {T(12)}},
                        {"Vinous (gon)", {T(7)}},
                        {"Alikulkukorkeus (m)", {T(13)}},
                        {"Sillan osanumerointi", {w.ListView1[0]}},
                        {"Rahayksikkö", {C(4)}},
                        {"Kustannus i", {C(10)}},
                        {"Vuosi (i = 100)", {C(13)}},
                        {"Yhteiskustannus %", {C(11)}},
                        {"Yksikköhintojen i", {C(3)}},
                        {"ALV %", {C(12)}},
                        {"Tilaaja", {T(11)}},
                        {"Laati", {C(5), C(17)}},
                        {"Pvm", {C(8), C(7), C(15), C(14)}},
                        {"Tarkasti", {C(6), C(16)}},
                        {"Yritys", {T(9), T(10)}},
                    });

    EXPECT_EQ(w.list(0)->kind(), QStringLiteral("Sillan osanumerointi"));
    EXPECT_EQ(w.list(1)->kind(), QStringLiteral("Muutokset"));
    EXPECT_EQ(w.list(2)->kind(), QStringLiteral("Muutokset"));

    // The two frames, and which fields each holds.
    QGroupBox* basic = frameTitled(w, QStringLiteral("Sillan perustiedot"));
    QGroupBox* parties =
        frameTitled(w, QStringLiteral("TAMRIK suunnitelman laatija ja tarkastaja sekä muutostiedot"));
    ASSERT_TRUE(basic && parties);
    for (int i : {0, 1, 2, 3, 4, 5, 6, 7, 8, 11, 12, 13})
        EXPECT_TRUE(basic->isAncestorOf(T(i))) << i;
    for (int i : {0, 1, 2, 3, 4, 9, 10, 11, 12, 13})
        EXPECT_TRUE(basic->isAncestorOf(C(i))) << i;
    for (int i : {5, 6, 7, 8, 14, 15, 16, 17})
        EXPECT_TRUE(parties->isAncestorOf(C(i))) << i;
    EXPECT_TRUE(parties->isAncestorOf(T(9)) && parties->isAncestorOf(T(10)));
    EXPECT_TRUE(basic->isAncestorOf(w.ListView1[0]));
    EXPECT_TRUE(parties->isAncestorOf(w.ListView1[1]) && parties->isAncestorOf(w.ListView1[2]));
}

TEST(Form1, PartiesStandInTheirColumnsAndPicturesAtTheRightEdge) {
    FormsTestHost host;
    Form1 w(host);
    w.resize(w.sizeHint());
    w.show();
    QApplication::processEvents();

    QLabel* designer = nullptr;
    QLabel* contractor = nullptr;
    for (QLabel* l : w.findChildren<QLabel*>()) {
        if (l->text() == QStringLiteral("SUUNNITTELIJA")) designer = l;
        if (l->text() == QStringLiteral("URAKOITSIJA")) contractor = l;
    }
    ASSERT_TRUE(designer && contractor);
    const int split = testing_support::rectIn(contractor, &w).left();
    EXPECT_LT(testing_support::rectIn(designer, &w).left(), split);
    for (QWidget* f : std::initializer_list<QWidget*>{w.Combo1[5], w.Combo1[8], w.Combo1[6], w.Combo1[7],
                                                      w.Text1[9], w.ListView1[1]})
        EXPECT_LT(testing_support::rectIn(f, &w).right(), split) << f->objectName().toStdString();
    for (QWidget* f : std::initializer_list<QWidget*>{w.Combo1[17], w.Combo1[15], w.Combo1[16], w.Combo1[14],
                                                      w.Text1[10], w.ListView1[2]})
        EXPECT_GE(testing_support::rectIn(f, &w).left(), split) << f->objectName().toStdString();
    // The laying-out date beside the name, the checking date below it.
    EXPECT_TRUE(testing_support::sameRow(w.Combo1[5], w.Combo1[8], &w));
    EXPECT_TRUE(testing_support::sameRow(w.Combo1[6], w.Combo1[7], &w));
    EXPECT_TRUE(testing_support::sameRow(w.Combo1[17], w.Combo1[15], &w));
    EXPECT_TRUE(testing_support::sameRow(w.Combo1[16], w.Combo1[14], &w));

    // Four lines for the companies, three for the client.
    EXPECT_GT(w.Text1[9]->height(), w.Text1[11]->height());
    EXPECT_GT(w.Text1[11]->height(), w.Text1[0]->height() * 2);

    ASSERT_EQ(w.Image1.size(), 6u);
    const int framesRight =
        testing_support::rectIn(frameTitled(w, QStringLiteral("Sillan perustiedot")), &w).right();
    for (int i = 0; i < 6; ++i) {
        EXPECT_EQ(w.Image1[i]->objectName(), QStringLiteral("Image1_%1").arg(i));
        EXPECT_GT(testing_support::rectIn(w.Image1[i], &w).left(), framesRight) << i;
    }
}

TEST(Form1, ChangesReachTheHostAndEnterMovesOn) {
    FormsTestHost host;
    Form1 w(host);
    w.Text1[0]->setText(QStringLiteral("Kalasilta"));
    w.Combo1[9]->setText(QStringLiteral("Espoo"));
    w.Text1[10]->setText(QStringLiteral("Rakennus Oy\r\nKatu 1"));
    EXPECT_GE(host.changed.size(), 3u);
    for (QWidget* changed : host.changed)
        EXPECT_EQ(changed, &w);

    // A picture put into a slot is a change too.
    host.changed.clear();
    QImage image(8, 6, QImage::Format_RGB32);
    image.fill(Qt::red);
    w.Image1[2]->setPicture(platform::Picture::fromImage(image));
    ASSERT_EQ(host.changed.size(), 1u);
    EXPECT_EQ(host.changed[0], &w);

    host.changed.clear();
    host.state.Loading = true;
    w.Text1[1]->setText(QStringLiteral("123/4"));
    EXPECT_TRUE(host.changed.empty());
    host.state.Loading = false;

    // Enter in a single-line box and in a drop-down moves the focus on, as Tab would.
    w.show();
    w.activateWindow();
    QApplication::processEvents();
    for (QWidget* field : {static_cast<QWidget*>(w.Text1[0]), static_cast<QWidget*>(w.Combo1[9])}) {
        field->setFocus();
        QApplication::processEvents();
        QWidget* before = QApplication::focusWidget();
        ASSERT_TRUE(before && (before == field || field->isAncestorOf(before)))
            << field->objectName().toStdString();
        QKeyEvent press(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier);
        QKeyEvent release(QEvent::KeyRelease, Qt::Key_Return, Qt::NoModifier);
        QApplication::sendEvent(before, &press);
        QApplication::sendEvent(before, &release);
        QApplication::processEvents();
        QWidget* after = QApplication::focusWidget();
        EXPECT_TRUE(after && after != field && !field->isAncestorOf(after))
            << field->objectName().toStdString();
    }
}

TEST(Form1, OfficeTextHasFourLinesEvenWithAnEmptyLast) {
    EXPECT_EQ(documents::OfficeText({QStringLiteral("Silta Oy"), QStringLiteral("Tie 1"),
                                     QStringLiteral("00100 Helsinki"), QString()}),
              QStringLiteral("Silta Oy\r\nTie 1\r\n00100 Helsinki\r\n"));
    EXPECT_EQ(documents::OfficeText({}), QStringLiteral("\r\n\r\n\r\n"));
}

class Form1NewProject : public ::testing::Test {
protected:
    // Prepares a window as the main window does: with the loading flag on.
    void prepare(Form1& w) {
        host.state.Loading = true;
        w.prepareNewProject();
        host.state.Loading = false;
    }
    FormsTestHost host;
    testing_support::ScriptedDialogs dialogs;
};

TEST_F(Form1NewProject, ListsCostParametersAndComboData) {
    host.state.ProgramMode = 3;
    host.state.OfficeRows = {QStringLiteral("Silta Oy"), QStringLiteral("Tie 1"), QString(), QString()};
    host.state.settings.MoneyUnit = QStringLiteral("mk");
    host.state.settings.Index = QStringLiteral("98");
    host.state.settings.GeneralCostFraction = QStringLiteral("30");
    host.state.settings.VAT = QStringLiteral("24");
    host.state.settings.IndexBaseYear = QStringLiteral("2000");
    host.state.settings.DefaultComboData = {QStringLiteral("112"), QStringLiteral("Aino Suunnittelija"),
                                            QStringLiteral("Eero Tarkastaja"), QStringLiteral("Urho Laatija"),
                                            QString()};
    Form1 w(host);
    prepare(w);
    EXPECT_TRUE(dialogs.messages().empty()) << dialogs.lastText().toStdString();

    // Mode 3: neither party's company is filled.
    EXPECT_EQ(w.Text1[9]->text(), QString());
    EXPECT_EQ(w.Text1[10]->text(), QString());

    EXPECT_EQ(w.Combo1[4]->text(), QStringLiteral("mk"));
    EXPECT_EQ(w.Combo1[3]->text(), QStringLiteral("98"));
    EXPECT_EQ(w.Combo1[11]->text(), QStringLiteral("30"));
    EXPECT_EQ(w.Combo1[12]->text(), QStringLiteral("24"));
    EXPECT_EQ(w.Combo1[13]->text(), QStringLiteral("2000"));
    EXPECT_EQ(w.Combo1[10]->text(), QString());

    // Stored texts are offered in the drop-down lists, the boxes themselves stay empty.
    EXPECT_GE(w.Combo1[10]->findText(QStringLiteral("112")), 0);
    EXPECT_GE(w.Combo1[5]->findText(QStringLiteral("Aino Suunnittelija")), 0);
    EXPECT_GE(w.Combo1[6]->findText(QStringLiteral("Eero Tarkastaja")), 0);
    EXPECT_GE(w.Combo1[17]->findText(QStringLiteral("Urho Laatija")), 0);
    EXPECT_EQ(w.Combo1[5]->text(), QString());
    EXPECT_EQ(w.Combo1[16]->findText(QString()), -1);

    // The combo data file: field i of a line to Combo1(i - 1), "{DATE}" as today's date.
    EXPECT_GE(w.Combo1[9]->findText(QStringLiteral("Helsinki")), 0);
    EXPECT_GE(w.Combo1[0]->findText(QStringLiteral("Teräsbetoninen laattasilta")), 0);
    const QString today = QDate::currentDate().toString(QStringLiteral("d.M.yyyy"));
    EXPECT_GE(w.Combo1[7]->findText(today), 0);
    EXPECT_GE(w.Combo1[14]->findText(today), 0);
    EXPECT_EQ(w.Combo1[0]->text(), QString());

    // The lists from the templates.
    ASSERT_GT(w.list(0)->rows(), 0);
    EXPECT_EQ(w.list(0)->column(1).header, QStringLiteral("TUNNUS"));
    EXPECT_EQ(w.list(0)->cell(1, 1).toString(), QStringLiteral("000"));
    for (int i : {1, 2}) {
        EXPECT_EQ(w.list(i)->cols(), 5) << i;
        EXPECT_EQ(w.list(i)->column(2).header, QStringLiteral("PVM")) << i;
    }
    EXPECT_TRUE(host.changed.empty());
}

TEST_F(Form1NewProject, OfficeTextGoesToTheCurrentParty) {
    host.state.OfficeRows = {QStringLiteral("Silta Oy"), QStringLiteral("Tie 1"),
                             QStringLiteral("00100 Helsinki"), QString()};
    host.state.ProgramMode = 1;
    Form1 designer(host);
    prepare(designer);
    EXPECT_EQ(designer.Text1[9]->text(), QStringLiteral("Silta Oy\r\nTie 1\r\n00100 Helsinki\r\n"));
    EXPECT_EQ(designer.Text1[10]->text(), QString());

    host.state.ProgramMode = 2;
    Form1 contractor(host);
    prepare(contractor);
    EXPECT_EQ(contractor.Text1[9]->text(), QString());
    EXPECT_EQ(contractor.Text1[10]->text(), QStringLiteral("Silta Oy\r\nTie 1\r\n00100 Helsinki\r\n"));
}

TEST_F(Form1NewProject, MissingComboDataIsReportedAndTheRestIsPrepared) {
    QTemporaryDir dir;
    for (const char* name : {"TAMRIK30_T1.csv", "TAMRIK30_T2.csv"})
        ASSERT_TRUE(QFile::copy(testing_support::dataDir() + QString::fromLatin1(name),
                                dir.filePath(QString::fromLatin1(name))));
    host.state.AppPath = dir.path() + QLatin1Char('/');
    Form1 w(host);
    prepare(w);
    ASSERT_EQ(dialogs.messages().size(), 1u);
    EXPECT_FALSE(dialogs.lastText().isEmpty());
    EXPECT_GT(w.list(0)->rows(), 0);
    EXPECT_EQ(w.Combo1[4]->text(), host.state.settings.MoneyUnit);
    EXPECT_EQ(w.Combo1[9]->count(), 0);
}

TEST(Form1Inputs, CostInputsAreTheFieldsTheEstimateReads) {
    FormsTestHost host;
    Form1 w(host);
    w.Combo1[4]->setText(QStringLiteral("€"));
    w.Combo1[3]->setText(QStringLiteral("104"));
    w.Combo1[10]->setText(QStringLiteral("112,5"));
    w.Combo1[11]->setText(QStringLiteral("25"));
    w.Combo1[12]->setText(QStringLiteral("24"));
    const calc::CostInputs in = w.costInputs();
    EXPECT_EQ(in.moneyUnit, QStringLiteral("€"));
    EXPECT_EQ(in.unitPriceIndex, QStringLiteral("104"));
    EXPECT_EQ(in.costIndex, QStringLiteral("112,5"));
    EXPECT_EQ(in.generalPercent, QStringLiteral("25"));
    EXPECT_EQ(in.vatPercent, QStringLiteral("24"));
}
