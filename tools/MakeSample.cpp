// Makes the sample project data/Esimerkkisilta.sl with the program itself: a new project is
// filled as a user would fill it, rows are added from the shipped base lists, and the project
// is saved. Run by hand when the sample needs to change:
//   cmake --build build --target tamrik_make_sample && build/tamrik_make_sample data/Esimerkkisilta.sl
#include "documents/CardText.h"
#include "documents/Controls.h"
#include "documents/Form1.h"
#include "documents/Form2.h"
#include "documents/Form3.h"
#include "documents/Form4.h"
#include "lists/ui/BaseListWindow.h"
#include "lists/ListEditing.h"
#include "lists/ListModel.h"
#include "lists/ListProcedures.h"
#include "platform/Picture.h"
#include "platform/ui/PictureBox.h"
#include "platform/Rtf.h"
#include "shell/Captions.h"
#include "shell/MDIForm1.h"
#include "shell/ProjectFiles.h"

#include <QApplication>
#include <QBuffer>
#include <QCheckBox>
#include <QDir>
#include <QPainter>
#include <QPainterPath>
#include <QTemporaryDir>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextEdit>
#include <cstdio>
#include <map>

namespace {

void setText(documents::TextBox* box, const QString& text) {
    box->setText(text);
}
void setCombo(documents::ComboBox* box, const QString& text) {
    box->setText(text);
}

// Rows of a list with a littera, by littera.
int rowOfLittera(const lists::ListModel& list, const QString& littera) {
    for (int r = 1; r <= list.rows(); ++r)
        if (list.cell(r, 1) == littera) return r;
    return 0;
}

// The entries (rows that start an entry) under a caption row, up to the next row with a littera.
std::vector<int> entriesUnder(const lists::ListModel& list, int captionRow) {
    std::vector<int> out;
    const int entryCol = lists::entryColumn(list);
    for (int r = captionRow + 1; r <= list.rows(); ++r) {
        if (!lists::BlankString(list.cell(r, 1))) break;
        if (!lists::BlankString(list.cell(r, entryCol))) out.push_back(r);
    }
    return out;
}

// Adds the first `count` entries under a base list caption to the project list, sorted in
// under their captions, as "Lisää" does.
void addFromBase(shell::MDIForm1& main, lists::BaseListWindow* base, const QString& littera, int count,
                 std::vector<QString>* added = nullptr) {
    lists::ListModel& source = *base->list();
    const int caption = rowOfLittera(source, littera);
    if (caption == 0) {
        std::fprintf(stderr, "littera %s puuttuu\n", qPrintable(littera));
        return;
    }
    const std::vector<int> entries = entriesUnder(source, caption);
    source.clearSelection();
    for (int i = 0; i < count && i < static_cast<int>(entries.size()); ++i) {
        source.setSelected(entries[i], true);
        if (added) added->push_back(source.cell(entries[i], base->slot() == 6 ? 2 : 3));
    }
    base->editMenuClick(0);
}

int rowOfText(const lists::ListModel& list, int column, const QString& text) {
    for (int r = 1; r <= list.rows(); ++r)
        if (list.cell(r, column) == text && lists::BlankString(list.cell(r, 1))) return r;
    return 0;
}

// Adds the base list's "TIETYÖT SILTAPAIKALLA" caption row to the project list, as a user adds
// it with "Lisää": the road works at the bridge site stand under it, apart from the bridge.
void addRoadWorksCaption(lists::BaseListWindow* base) {
    lists::ListModel& source = *base->list();
    const int row = rowOfText(source, base->slot() == 6 ? 2 : 3, QStringLiteral("TIETYÖT SILTAPAIKALLA"));
    if (row == 0) {
        std::fprintf(stderr, "TIETYÖT SILTAPAIKALLA puuttuu\n");
        return;
    }
    source.clearSelection();
    source.setSelected(row, true);
    base->editMenuClick(0);
}

// A side view of a three-span bridge, drawn as a picture of the card.
platform::Picture sideView() {
    QImage image(480, 180, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    p.scale(0.75, 0.75);
    p.setPen(QPen(QColor(70, 110, 60), 2));
    p.setBrush(QColor(205, 225, 190));
    QPainterPath ground;
    ground.moveTo(0, 150);
    ground.cubicTo(180, 150, 220, 215, 320, 215);
    ground.cubicTo(420, 215, 460, 150, 640, 150);
    ground.lineTo(640, 240);
    ground.lineTo(0, 240);
    ground.closeSubpath();
    p.drawPath(ground);
    p.setPen(QPen(QColor(40, 80, 160), 2));
    p.drawLine(250, 200, 390, 200);
    p.setPen(QPen(Qt::black, 2));
    p.setBrush(QColor(200, 200, 200));
    p.drawRect(40, 110, 560, 16); // deck
    p.drawRect(40, 126, 24, 34);  // abutment 1
    p.drawRect(576, 126, 24, 34); // abutment 2
    p.drawRect(220, 126, 14, 80); // pier 1
    p.drawRect(406, 126, 14, 80); // pier 2
    p.setPen(QPen(QColor(60, 60, 60), 1));
    for (int x = 44; x < 600; x += 12)
        p.drawLine(x, 110, x, 96);
    p.drawLine(40, 96, 600, 96);
    p.setPen(Qt::black);
    QFont f(QStringLiteral("Liberation Sans"), 12);
    p.setFont(f);
    p.drawText(QRect(0, 20, 640, 30), Qt::AlignCenter, QStringLiteral("Kirkkojoen silta, sivukuva"));
    p.drawText(QRect(60, 60, 160, 20), Qt::AlignCenter, QStringLiteral("15,0 m"));
    p.drawText(QRect(240, 60, 160, 20), Qt::AlignCenter, QStringLiteral("18,0 m"));
    p.drawText(QRect(420, 60, 160, 20), Qt::AlignCenter, QStringLiteral("15,0 m"));
    p.end();
    // A drawing of few colours is stored as an 8-bit bitmap, which keeps the project file small.
    QByteArray bmp;
    QBuffer buffer(&bmp);
    buffer.open(QIODevice::WriteOnly);
    image.convertToFormat(QImage::Format_Indexed8, Qt::ThresholdDither).save(&buffer, "BMP");
    return platform::Picture::fromBytes(bmp, platform::Picture::Bitmap);
}

void writeDocument(QTextEdit* box, const QStringList& paragraphs) {
    box->clear();
    QTextCursor c(box->document());
    bool first = true;
    for (const QString& para : paragraphs) {
        if (!first) c.insertBlock();
        first = false;
        const bool heading = para.startsWith(QLatin1Char('#'));
        const QString text = heading ? para.mid(1).trimmed() : para;
        c.insertText(text);
        QTextCursor line(c.block());
        line.movePosition(QTextCursor::EndOfBlock, QTextCursor::KeepAnchor);
        platform::FormatRichText(line, heading ? QStringLiteral("Header2") : QStringLiteral("Normal"));
    }
}

} // namespace

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QTemporaryDir config;
    qputenv("XDG_CONFIG_HOME", config.path().toLocal8Bit());
    QApplication app(argc, argv);
    if (argc != 2) {
        std::fprintf(stderr, "käyttö: tamrik_make_sample KOHDE.sl\n");
        return 1;
    }
    const QString target = QDir::current().absoluteFilePath(QString::fromLocal8Bit(argv[1]));
    shell::MDIForm1 main;
    main.setProgramDirectory(QStringLiteral(TAMRIK_SOURCE_DIR) + QStringLiteral("/data/"));
    main.appState().settings.SaveSettingsOnExit = false;
    main.startUp(false);
    main.appState().settings.SaveSettingsOnExit = false;
    main.appState().ProgramMode = 3;
    main.Submenu10Click(2);
    const shell::ProjectWindows w = main.ParseFormIndeces();

    // Basic data.
    documents::Form1& f1 = *w.f1;
    setText(f1.Text1[0], QStringLiteral("Kirkkojoen silta"));
    setText(f1.Text1[1], QStringLiteral("Vt 4, tieosa 215, etäisyys 1 840"));
    setText(f1.Text1[2], QStringLiteral("KeS-2817"));
    setText(f1.Text1[3], QStringLiteral("15,0 + 18,0 + 15,0"));
    setText(f1.Text1[4], QStringLiteral("52,4"));
    setText(f1.Text1[5], QStringLiteral("16,2"));
    setText(f1.Text1[6], QStringLiteral("48,0"));
    setText(f1.Text1[7], QStringLiteral("100"));
    setText(f1.Text1[8], QStringLiteral("12,5"));
    setText(f1.Text1[12], QStringLiteral("16,2"));
    setText(f1.Text1[13], QStringLiteral("4,8"));
    setText(f1.Text1[11], QStringLiteral("Tiehallinto, Keski-Suomen tiepiiri\r\nPL 250\r\n40101 JYVÄSKYLÄ"));
    setCombo(f1.Combo1[0], QStringLiteral("Teräsbetoninen jatkuva laattapalkkisilta"));
    setCombo(f1.Combo1[1], QStringLiteral("LM1 (SFS-EN 1991-2)"));
    setCombo(f1.Combo1[2], QStringLiteral("Keski-Suomi"));
    setCombo(f1.Combo1[9], QStringLiteral("Jyväskylä"));
    setCombo(f1.Combo1[10], QStringLiteral("127"));
    setCombo(f1.Combo1[5], QStringLiteral("Matti Virtanen"));
    setCombo(f1.Combo1[8], QStringLiteral("14.3.2006"));
    setCombo(f1.Combo1[6], QStringLiteral("Liisa Korhonen"));
    setCombo(f1.Combo1[7], QStringLiteral("21.3.2006"));
    setCombo(f1.Combo1[17], QStringLiteral("Pekka Nieminen"));
    setCombo(f1.Combo1[15], QStringLiteral("2.5.2006"));
    setCombo(f1.Combo1[16], QStringLiteral("Anna Mäkinen"));
    setCombo(f1.Combo1[14], QStringLiteral("5.5.2006"));
    setText(
        f1.Text1[9],
        QStringLiteral(
            "Insinööritoimisto Kaarisilta Oy\r\nVapaudenkatu 48\r\n40100 JYVÄSKYLÄ\r\npuh. 014 333 4400"));
    setText(f1.Text1[10],
            QStringLiteral("Rakennus Kivijalka Oy\r\nTyömaantie 3\r\n40320 JYVÄSKYLÄ\r\npuh. 014 555 1200"));
    lists::ListModel& changes = *f1.list(1);
    for (const auto& [nro, pvm, what, who] :
         {std::tuple{"1", "28.3.2006", "Välitukien paalutus muutettu porapaaluiksi", "MV"},
          std::tuple{"2", "4.4.2006", "Reunapalkin vedenpoistoputkien paikat tarkennettu", "LK"}}) {
        lists::AddListViewRow(changes, changes.rows() + 1, true);
        const int r = changes.rows();
        changes.setCell(r, 1, QString::fromUtf8(nro));
        changes.setCell(r, 2, QString::fromUtf8(pvm));
        changes.setCell(r, 3, QString::fromUtf8(what));
        changes.setCell(r, 4, QString::fromUtf8(who));
    }
    f1.Image1[0]->setPicture(sideView());
    QString error;
    f1.Image1[2]->setPicture(
        platform::Picture::fromFile(main.appState().AppPath + QStringLiteral("Tamrik2006-logo.wmf"), &error));

    // Quantity list and cost estimate from the unit price list.
    main.activateWindow(w.f2);
    lists::BaseListWindow* f6 = main.Form6;
    for (const auto& [littera, n] : std::vector<std::pair<QString, int>>{
             {QStringLiteral("7101"), 1},   {QStringLiteral("7102"), 1}, {QStringLiteral("7111"), 2},
             {QStringLiteral("7113"), 1},   {QStringLiteral("7123"), 1}, {QStringLiteral("7131"), 1},
             {QStringLiteral("7132.1"), 1}, {QStringLiteral("7141"), 1}, {QStringLiteral("7151"), 1},
             {QStringLiteral("7152"), 1},   {QStringLiteral("7171"), 2}, {QStringLiteral("7172"), 1},
             {QStringLiteral("7173"), 1},   {QStringLiteral("7174"), 1}, {QStringLiteral("7186"), 1},
             {QStringLiteral("7187"), 1},   {QStringLiteral("7191"), 1}, {QStringLiteral("7192"), 1},
             {QStringLiteral("7196"), 1},   {QStringLiteral("1120"), 1}, {QStringLiteral("1130"), 1},
             {QStringLiteral("2120"), 1}}) {
        if (littera == QStringLiteral("1120")) addRoadWorksCaption(f6);
        addFromBase(main, f6, littera, n);
    }
    lists::ListModel& quantities = *w.f2->list(0);
    // Quantities for every priced row by its unit, as a bridge of this size needs them.
    const std::map<QString, QString> byUnit = {
        {QStringLiteral("m3"), QStringLiteral("380")},    {QStringLiteral("m3ktr"), QStringLiteral("1450")},
        {QStringLiteral("m3rtr"), QStringLiteral("620")}, {QStringLiteral("m2"), QStringLiteral("640")},
        {QStringLiteral("m"), QStringLiteral("112")},     {QStringLiteral("kg"), QStringLiteral("46000")},
        {QStringLiteral("t"), QStringLiteral("46")},      {QStringLiteral("kpl"), QStringLiteral("8")},
        {QStringLiteral("erä"), QStringLiteral("1")}};
    int k = 0;
    for (int r = 1; r <= quantities.rows(); ++r) {
        if (lists::BlankString(quantities.cell(r, 6))) continue;
        const auto unit = byUnit.find(quantities.cell(r, 5).trimmed());
        quantities.setCell(r, 4, unit == byUnit.end() ? QStringLiteral("1") : unit->second);
        quantities.setCell(r, 3,
                           k % 3 == 0 ? QStringLiteral("000")
                                      : (k % 3 == 1 ? QStringLiteral("100") : QStringLiteral("400")));
        ++k;
    }

    // Requirements from the base list, some of them inspected.
    lists::BaseListWindow* f7 = main.Form7;
    std::vector<QString> requirementTexts;
    for (const auto& [littera, n] : std::vector<std::pair<QString, int>>{{QStringLiteral("7111"), 2},
                                                                         {QStringLiteral("7123"), 2},
                                                                         {QStringLiteral("7141"), 2},
                                                                         {QStringLiteral("7151"), 2},
                                                                         {QStringLiteral("7173"), 3},
                                                                         {QStringLiteral("7186"), 2},
                                                                         {QStringLiteral("7196"), 1},
                                                                         {QStringLiteral("1130"), 2}}) {
        if (littera == QStringLiteral("1130")) addRoadWorksCaption(f7);
        addFromBase(main, f7, littera, n, &requirementTexts);
    }
    lists::ListModel& requirements = *w.f2->list(1);
    int inspected = 0;
    for (int r = 1; r <= requirements.rows(); ++r) {
        if (lists::BlankString(requirements.cell(r, 2))) continue;
        ++inspected;
        if (inspected % 4 == 0) continue; // not inspected yet
        const bool fails = inspected == 5;
        requirements.setCell(r, 21, fails ? QStringLiteral("Ei") : QStringLiteral("Kyllä"));
        if (requirements.cell(r, 10).startsWith(QLatin1Char('M'))) {
            requirements.setCell(r, 15,
                                 QStringLiteral("Mittaukset tehty työkohteessa, pöytäkirja liitteenä."));
            requirements.setCell(r, 16, QStringLiteral("5"));
        }
        if (fails) {
            requirements.setCell(r, 22, QStringLiteral("Vaatimus ei täyttynyt kahdessa mittauspisteessä."));
            requirements.setCell(r, 23,
                                 QStringLiteral("Puutteellinen kohta korjataan ja mitataan uudelleen."));
            requirements.setCell(r, 24, QStringLiteral("0,5"));
        }
    }

    // Text documents.
    main.Submenu30Click(0);
    writeDocument(
        w.f2->RichTextBox1[0],
        {QStringLiteral("# 1 Yleistä"),
         QStringLiteral("Kirkkojoen silta sijaitsee valtatiellä 4 Jyväskylän pohjoispuolella. Silta korvaa "
                        "nykyisen, kantavuudeltaan riittämättömän teräsbetonisen laattasillan."),
         QStringLiteral("# 2 Rakenne"),
         QStringLiteral("Silta on kolmiaukkoinen jatkuva teräsbetoninen laattapalkkisilta. Jännemitat ovat "
                        "15,0 + 18,0 + 15,0 m ja hyödyllinen leveys 12,5 m."),
         QStringLiteral("# 3 Perustaminen"),
         QStringLiteral("Maatuet perustetaan maanvaraisesti tiivistetyn murskearinan varaan. Välituet "
                        "perustetaan porapaaluille, jotka porataan kallioon.")});
    main.Submenu30Click(1);
    writeDocument(
        w.f2->RichTextBox1[0],
        {QStringLiteral("# Koodaussuunnitelma"),
         QStringLiteral("Rakenneosat numeroidaan sillan osanumeroinnin mukaan: 100 maatuki 1, 310 ja 320 "
                        "välituet, 200 maatuki 2, 400 päällysrakenne.")});
    main.Submenu30Click(0);

    // The cards.
    documents::Form3& f3 = *w.f3;
    setCombo(f3.Combo1[8], QStringLiteral("Laattapalkkisilta"));
    setCombo(f3.Combo1[9], QStringLiteral("Uusi silta"));
    setText(f3.Text1[0], QStringLiteral("4,8"));
    setText(f3.Text1[1], QStringLiteral("1,10"));
    setText(f3.Text1[2], QStringLiteral("1,35"));
    setCombo(f3.Combo1[0], QStringLiteral("Maanvarainen"));
    setCombo(f3.Combo1[1], QStringLiteral("Porapaalut"));
    const int cardValues[][2] = {{17, 120},  {18, 64},   {19, 48},    {20, 36},   {21, 8},
                                 {22, 6},    {23, 4},    {24, 3},     {25, 9800}, {26, 7100},
                                 {27, 5300}, {28, 5200}, {33, 180},   {34, 260},  {35, 90},
                                 {36, 140},  {47, 420},  {51, 66000}, {53, 780}};
    for (const auto& v : cardValues)
        setText(f3.Text1[v[0]], QString::number(v[1]));
    setCombo(f3.Combo1[14], QStringLiteral("C35/45"));
    setCombo(f3.Combo1[17], QStringLiteral("A500HW"));
    documents::UpdateCardText(f1, w.f2, f3);
    documents::Form4& f4 = *w.f4;
    setText(f4.Text1[0], QStringLiteral("KeS-2817"));
    setText(f4.Text1[2], QStringLiteral("4 Jyväskylä–Oulu"));
    setText(f4.Text1[3], QStringLiteral("4/215/1840"));
    setText(f4.Text1[5], QStringLiteral("48,0"));
    setText(f4.Text1[6], QStringLiteral("18,0"));
    setText(f4.Text1[7], QStringLiteral("3"));
    setCombo(f4.Combo1[1], QStringLiteral("Oikea"));
    setCombo(f4.Combo1[3], QStringLiteral("Kyllä"));
    f4.Check1[0]->setChecked(true);

    main.activateWindow(w.f1);
    const QString project = shell::ParseFileName(main.ActiveCaption()).project();
    if (!shell::WriteSlFile(main, project, target, false)) return 1;
    std::printf("%s: %d määrärivi(ä), %d laatuvaatimusriviä\n", qPrintable(target), quantities.rows(),
                requirements.rows());
    return 0;
}
