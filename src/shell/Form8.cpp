#include "shell/Form8.h"

#include "documents/Controls.h"
#include "documents/FormLayout.h"
#include "platform/Dialogs.h"
#include "platform/SettingsStore.h"
#include "shell/MDIForm1.h"
#include "shell/Recovery.h"
#include "shell/Settings.h"
#include "shell/ShellActions.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFontDatabase>
#include <QFormLayout>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QVBoxLayout>

namespace shell {

namespace {
// Enter in a text box of the dialog moves on to the next field.
void returnMovesOn(QDialog* dialog, documents::TextBox* box) {
    QObject::connect(box, &documents::TextBox::returnPressed, dialog,
                     [box] { documents::ReturnControl(box); });
}
} // namespace

Form8::Form8(MDIForm1& main)
    : QDialog(&main)
    , m_main(main) {
    setWindowTitle(QStringLiteral("Asetukset"));
    setMinimumWidth(680);
    auto* layout = new QVBoxLayout(this);
    SSTab1 = new QTabWidget(this);
    layout->addWidget(SSTab1);

    SSTab1->addTab(generalTab(), QStringLiteral("Yleiset"));
    SSTab1->addTab(formatTab(), QStringLiteral("Automaattinen muotoilu"));
    SSTab1->addTab(officeTab(), QStringLiteral("Yritys"));
    layout->addLayout(buttonRow());

    connect(Command1[0], &QPushButton::clicked, this, &Form8::saveAndClose);
    connect(Command1[1], &QPushButton::clicked, this, &QDialog::reject);
    connect(Command1[2], &QPushButton::clicked, this, [this] { TamrikHelp(m_main, 2100, this); });
    connect(Command1[3], &QPushButton::clicked, this, &Form8::changeFont);
    connect(Command1[4], &QPushButton::clicked, this, &Form8::chooseLogo);
    connect(Command1[5], &QPushButton::clicked, this, &Form8::restoreDefaults);

    loadFields();
    GetWinPos(m_main.appState().settings.pos, 8, this);
}

QWidget* Form8::generalTab() {
    auto* general = new QWidget(SSTab1);
    auto* grid = new QGridLayout(general);
    const char* labels[] = {"Rahayksikkö uusille luetteloille",
                            "Yhteiskustannusprosentti uusille kustannusarvioille (%)",
                            "Arvonlisäveroprosentti uusille kustannusarvioille (%)",
                            "Yksikköhintojen indeksi uusille luetteloille",
                            "Kustannusindeksin perusvuosi (i = 100) uusille luetteloille"};
    Text1.assign(6, nullptr);
    Command1.assign(6, nullptr);
    for (int i = 0; i < 5; ++i) {
        Text1[i] = new documents::TextBox(false, general);
        grid->addWidget(documents::fieldLabel(QString::fromUtf8(labels[i]), Text1[i], general), i, 0);
        Text1[i]->setMinimumWidth(120);
        returnMovesOn(this, Text1[i]);
        grid->addWidget(Text1[i], i, 1);
    }
    Combo1.push_back(new QComboBox(general));
    grid->addWidget(documents::fieldLabel(QStringLiteral("Tulostuskirjasinlaji"), Combo1[0], general), 5, 0);
    Combo1[0]->setEditable(true);
    Combo1[0]->setEnabled(false);
    grid->addWidget(Combo1[0], 5, 1);
    Command1[3] = new QPushButton(QStringLiteral("Vaihda..."), general);
    grid->addWidget(Command1[3], 5, 2);
    Text1[5] = new documents::TextBox(false, general);
    grid->addWidget(documents::fieldLabel(QStringLiteral("Logotiedosto tulosteisiin"), Text1[5], general), 6,
                    0);
    Text1[5]->setLocked(true);
    grid->addWidget(Text1[5], 6, 1);
    Command1[4] = new QPushButton(QStringLiteral("Hae..."), general);
    grid->addWidget(Command1[4], 6, 2);
    Check1.assign(3, nullptr);
    Check1[1] = new QCheckBox(QStringLiteral("Tulosta logo"), general);
    Check1[2] = new QCheckBox(QStringLiteral("Tallenna ohjelman asetukset lopetettaessa"), general);
    grid->addWidget(Check1[1], 7, 0, 1, 3);
    grid->addWidget(Check1[2], 8, 0, 1, 3);
    // A short number with its label, on a row of its own.
    auto numberRow = [&](const QString& label, int row) {
        auto* box = new documents::TextBox(false, general);
        grid->addWidget(documents::fieldLabel(label, box, general), row, 0);
        box->setMaximumWidth(60);
        returnMovesOn(this, box);
        grid->addWidget(box, row, 1, Qt::AlignLeft);
        return box;
    };
    Text4 = numberRow(QStringLiteral("Palautuskopio muutetuista projekteista (min, 0 = ei kopiota)"), 9);
    Text5 = numberRow(QStringLiteral("Kumottavien vaiheiden enimmäismäärä projektia kohden"), 10);
    Command1[5] = new QPushButton(QStringLiteral("Palauta ohjelman alkuperäisasetukset"), general);
    grid->addWidget(Command1[5], 11, 0, 1, 2, Qt::AlignLeft);
    grid->setRowStretch(12, 1);
    return general;
}

QWidget* Form8::formatTab() {
    auto* format = new QWidget(SSTab1);
    auto* fgrid = new QGridLayout(format);
    Check2.push_back(new QCheckBox(QStringLiteral("Muotoile luettelot automaattisesti"), format));
    fgrid->addWidget(Check2[0], 0, 0, 1, 2);
    const char* blank[] = {"Tyhjiä rivejä 1. ja 2. tason otsikon välissä",
                           "Tyhjiä rivejä 2. tason otsikon ja tekstirivin välissä",
                           "Tyhjiä rivejä tekstirivien välissä",
                           "Tyhjiä rivejä ennen 1. tason otsikkoa",
                           "Tyhjiä rivejä ennen 2. tason otsikkoa",
                           "Tyhjiä rivejä luettelon alussa"};
    Text2.assign(6, nullptr);
    for (int i = 0; i < 6; ++i) {
        Text2[i] = new documents::TextBox(false, format);
        Text2[i]->setMaximumWidth(60);
        returnMovesOn(this, Text2[i]);
        fgrid->addWidget(Text2[i], i + 1, 0);
        fgrid->addWidget(documents::fieldLabel(QString::fromUtf8(blank[i]), Text2[i], format), i + 1, 1);
    }
    fgrid->setRowStretch(7, 1);
    fgrid->setColumnStretch(1, 1);
    return format;
}

QWidget* Form8::officeTab() {
    auto* office = new QWidget(SSTab1);
    auto* olayout = new QVBoxLayout(office);
    Text3 = new documents::TextBox(true, office);
    olayout->addWidget(documents::fieldLabel(
        QStringLiteral("Yrityksen nimi ja yhteystiedot (maks. 4  riviä)"), Text3, office));
    olayout->addWidget(Text3, 1);
    return office;
}

QHBoxLayout* Form8::buttonRow() {
    auto* buttons = new QHBoxLayout;
    Command1[0] = new QPushButton(QStringLiteral("Tallenna ja sulje"), this);
    Command1[1] = new QPushButton(QStringLiteral("Peruuta"), this);
    Command1[2] = new QPushButton(QStringLiteral("Ohjeet"), this);
    Command1[0]->setAutoDefault(false);
    Command1[1]->setAutoDefault(false);
    Command1[2]->setAutoDefault(false);
    buttons->addWidget(Command1[0]);
    buttons->addWidget(Command1[1]);
    buttons->addStretch(1);
    buttons->addWidget(Command1[2]);
    return buttons;
}

void Form8::loadFields() {
    const AppState& state = m_main.appState();
    const Settings& s = state.settings;
    Text1[0]->setText(s.MoneyUnit);
    Text1[1]->setText(s.GeneralCostFraction);
    Text1[2]->setText(s.VAT);
    Text1[3]->setText(s.Index);
    Text1[4]->setText(s.IndexBaseYear);
    Text1[5]->setText(s.PLogoFile);
    Combo1[0]->clear();
    Combo1[0]->addItem(s.PrinterFont);
    Combo1[0]->setEditText(s.PrinterFont);
    Check1[1]->setChecked(s.PrintLogo);
    Check1[2]->setChecked(s.SaveSettingsOnExit);
    Check2[0]->setChecked(s.AutoFormat);
    for (int i = 0; i < 6; ++i)
        Text2[i]->setText(QString::number(s.BlankLines[i]));
    Text4->setText(QString::number(s.AutosaveMinutes));
    Text5->setText(QString::number(s.UndoLimit));
    QStringList office;
    int last = -1;
    for (int i = 0; i < 4; ++i)
        if (!state.OfficeRows[i].isEmpty()) last = i;
    for (int i = 0; i <= last; ++i)
        office << state.OfficeRows[i];
    Text3->setText(office.join(QStringLiteral("\r\n")));
}

void Form8::saveAndClose() {
    bool ok = false;
    const int minutes = Text4->text().trimmed().toInt(&ok);
    // A bad interval is said at once, and the dialog stays open on it: nothing is taken.
    if (!ok || minutes < 0 || minutes > kMaxAutosaveMinutes) {
        platform::MsgBox(
            QStringLiteral("Palautuskopion väli \"%1\" ei kelpaa.\r\nAnna minuutit kokonaislukuna "
                           "0...%2 (0 = ei palautuskopiota).")
                .arg(Text4->text().trimmed())
                .arg(kMaxAutosaveMinutes),
            platform::MsgIcon::Exclamation);
        SSTab1->setCurrentIndex(0);
        Text4->setFocus();
        return;
    }
    AppState& state = m_main.appState();
    Settings& s = state.settings;
    s.MoneyUnit = Text1[0]->text();
    s.GeneralCostFraction = Text1[1]->text();
    s.VAT = Text1[2]->text();
    s.Index = Text1[3]->text();
    s.IndexBaseYear = Text1[4]->text();
    s.PrinterFont = Combo1[0]->currentText();
    s.PrintLogo = Check1[1]->isChecked();
    s.SaveSettingsOnExit = Check1[2]->isChecked();
    s.AutoFormat = Check2[0]->checkState() != Qt::Unchecked;
    for (int i = 0; i < 6; ++i) {
        bool ok = false;
        const double v = Text2[i]->text().trimmed().replace(QLatin1Char(','), QLatin1Char('.')).toDouble(&ok);
        // A count that is not a number, or a negative one, keeps the value it had.
        if (ok && v >= 0 && v < 1000) s.BlankLines[i] = static_cast<int>(std::nearbyint(v));
    }
    s.AutosaveMinutes = minutes;
    m_main.recovery().setInterval(minutes);
    bool stepsOk = false;
    const int steps = Text5->text().trimmed().toInt(&stepsOk);
    // A count out of range keeps the one it had; the histories take it when next empty.
    if (stepsOk && steps >= 1 && steps <= kMaxUndoLimit) setUndoLimit(m_main, steps);
    state.OfficeRows = {};
    const QStringList lines = Text3->text().split(QStringLiteral("\r\n"));
    for (int k = 0; k < 4 && k < lines.size(); ++k)
        state.OfficeRows[k] = lines[k];
    // The store is written when the run ends (a normal end or a termination request), not here.
    accept();
}

void Form8::changeFont() {
    const QString current = m_main.appState().settings.PrinterFont;
    Combo1[0]->clear();
    Combo1[0]->addItems(QFontDatabase::families());
    Combo1[0]->setEnabled(true);
    Combo1[0]->setEditText(current);
    const int i = Combo1[0]->findText(current);
    if (i >= 0) Combo1[0]->setCurrentIndex(i);
    Combo1[0]->lineEdit()->selectAll();
    Combo1[0]->setFocus();
}

void Form8::chooseLogo() {
    showImageViewer(m_main, 1, QString(), this);
    Text1[5]->setText(m_main.appState().settings.PLogoFile);
}

void Form8::restoreDefaults() {
    m_main.settingsStore().deleteAll();
    Check1[2]->setChecked(false);
    // The defaults come back at the next start only if this run does not write its settings.
    m_main.appState().settings.SaveSettingsOnExit = false;
    platform::MsgBox(
        QStringLiteral("Ohjelman alkuperäiset asetukset palautuvat\r\nkun ohjelma käynnistetään uudestaan."),
        platform::MsgIcon::Information);
}

void Form8::done(int result) {
    UpdateWinPosTable(m_main.appState().settings.pos, 8, this);
    QDialog::done(result);
}

void showSettingsDialog(MDIForm1& main) {
    Form8 dialog(main);
    dialog.exec();
}

} // namespace shell
