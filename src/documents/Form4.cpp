#include "documents/Form4.h"

#include "documents/Controls.h"
#include "documents/DocumentHost.h"
#include "documents/FormLayout.h"
#include "documents/NewWindow.h"
#include "lists/ui/ListView.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace documents {

Form4::Form4(DocumentHost& host, QWidget* parent)
    : ProjectWindow(host, 4, parent) {
    auto* body = new QWidget;
    auto* layout = new QVBoxLayout(body);
    layout->addLayout(buildCardFields());
    // The municipality comes from the basic data window; the structure type is not typed here.
    Text1[1]->setReadOnlyLook(true);
    Text1[4]->setReadOnlyLook(true);
    addSupportList(layout);
    layout->addLayout(buildNotes());
    layout->addLayout(buildPictures());
    installScrollingBody(this, body);
    connectReturnKeys(this);
}

// The bridge's identification and structure fields, in pairs of label and field.
QLayout* Form4::buildCardFields() {
    auto* grid = new QGridLayout;
    auto addPair = [grid](int row, int col, const QString& text, QWidget* field, int span = 1) {
        grid->addWidget(fieldLabel(text, field), row, col);
        grid->addWidget(field, row, col + 1, 1, span);
    };
    addPair(0, 0, QStringLiteral("Sillan numero"), makeText(0));
    addPair(0, 2, QStringLiteral("Kunta"), makeText(1));
    addPair(0, 4, QStringLiteral("Tiemestaripiiri"), makeCombo(0));
    addPair(1, 0, QStringLiteral("Vas/oik"), makeCombo(1));
    addPair(1, 2, QStringLiteral("Vesitösilta"), makeCombo(3));
    addPair(1, 4, QStringLiteral("Päivitys pvm"), makeCombo(2));
    addPair(2, 0, QStringLiteral("Tien numero ja tien (jakson nimi)"), makeText(2), 3);
    addPair(2, 4, QStringLiteral("Tie/tieosa/etäisyys"), makeText(3));
    addPair(3, 0, QStringLiteral("Rakenne"), makeText(4), 3);
    addPair(3, 4, QStringLiteral("MaxJän/MaxVa"), makeText(6));
    addPair(4, 0, QStringLiteral("Jänsum/VAsum"), makeText(5));
    addPair(4, 2, QStringLiteral("Jänlkm/valkm"), makeText(7));
    addPair(4, 4, QStringLiteral("Panostila päivitys"), makeCombo(4));
    for (int i : {0, 5, 7})
        setWidthInChars(Text1[i], 12);
    for (int i : {1, 3, 6})
        setWidthInChars(Text1[i], 16);
    for (int i : {0, 1, 2, 3, 4})
        setWidthInChars(Combo1[i], 14);
    grid->setColumnStretch(1, 1);
    grid->setColumnStretch(3, 1);
    grid->setColumnStretch(5, 1);
    return grid;
}

void Form4::addSupportList(QVBoxLayout* layout) {
    lists::ListView* supports = makeList(0, QStringLiteral("Panostilat"));
    supports->setMinimumHeight(140);
    auto* listLabel = fieldLabel(
        QStringLiteral(
            "Tuki, (a) rakennetut panostilat, (b) rakenteelliset panostilat ja (c) panoskiinnikkeet"),
        supports);
    listLabel->setWordWrap(true);
    layout->addWidget(listLabel);
    layout->addWidget(supports, 1);
}

QLayout* Form4::buildNotes() {
    auto* notesRow = new QHBoxLayout;
    TextBox* notes = makeText(8, true);
    setVisibleLines(notes, 4);
    notesRow->addWidget(fieldLabel(QStringLiteral("Huom."), notes), 0, Qt::AlignTop);
    notesRow->addWidget(notes, 1);

    return notesRow;
}

// The two checks that take the characteristics card's pictures, and the card's own picture buttons.
QLayout* Form4::buildPictures() {
    auto* pictures = new QHBoxLayout;
    auto* checks = new QVBoxLayout;
    const char* const checkTexts[] = {"Käytä &ominaistietokortin &sivukuvaa",
                                      "Käytä ominaistietokortin &poikkileikkauskuvaa"};
    for (int i = 0; i < 2; ++i) {
        auto* box = new QCheckBox(QString::fromUtf8(checkTexts[i]));
        box->setObjectName(QStringLiteral("Check1_%1").arg(i));
        connect(box, &QCheckBox::stateChanged, this, [this, i] {
            fieldChanged({persist::FieldRef::Kind::Check, i});
        });
        Check1.push_back(box);
        checks->addWidget(box);
    }
    pictures->addLayout(checks);
    pictures->addStretch(1);
    // Picture numbers 5, 6 and 7 belong to the charge chamber card.
    Command1 =
        pictureButtons({"Sivukuva...", "Poikkileikkaus...", "M&erkkikilpi..."}, QStringLiteral("Command1"), 5,
                       pictures, [this](int n) { emit pictureRequested(n); });

    return pictures;
}

void Form4::prepareNewProject() {
    LoadListTemplate(*this, 0, QStringLiteral("TAMRIK30_T5.csv"));
    UpdateComboListFromFile(*this, 4);
}

QSize Form4::sizeHint() const {
    return scrollingBodySizeHint(this);
}

} // namespace documents
