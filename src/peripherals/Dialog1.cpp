#include "peripherals/Dialog1.h"

#include "platform/Dialogs.h"
#include "platform/ui/Icons.h"

#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace peripherals {

Dialog1::Dialog1(const QString& version, const QString& copyright, const QString& company, QWidget* parent)
    : QDialog(parent) {
    setWindowTitle(QStringLiteral("Tietoja ohjelmasta"));
    auto* layout = new QVBoxLayout(this);
    auto* frame = new QGroupBox(this);
    auto* inner = new QVBoxLayout(frame);
    Label1.assign(10, nullptr);
    const QString texts[10] = {
        platform::applicationTitle(),
        QStringLiteral("Siltojen laadunvarmistusohjelmisto"),
        QStringLiteral("Ohjelman on suunnitellut ja ohjelmoinut"),
        copyright,
        QStringLiteral("TAMRIK-kehitystiimi"),
        QStringLiteral("Suunnittelijan, urakoitsijan ja tilaajan yhteinen työkalu"),
        QStringLiteral("Omistettu siltojen rakennuttajille ja niiden laadun vaalijoille"),
        company,
        QStringLiteral("Ohjelmakäännös ") + version,
        QStringLiteral("Tämä ohjelma on vapaasti käytettävissä sillanrakennushankkeissa."),
    };
    for (int i = 0; i < 10; ++i) {
        Label1[i] = new QLabel(texts[i], frame);
        Label1[i]->setObjectName(QStringLiteral("Label1_%1").arg(i));
        Label1[i]->setWordWrap(true);
    }
    QFont big = Label1[0]->font();
    big.setPointSize(big.pointSize() + 6);
    big.setBold(true);
    Label1[0]->setFont(big);
    // The program's icon beside its name.
    auto* title = new QHBoxLayout;
    auto* icon = new QLabel(frame);
    icon->setObjectName(QStringLiteral("imgIcon"));
    icon->setPixmap(platform::applicationIcon().pixmap(64, 64));
    icon->setFixedSize(64, 64);
    Label1[0]->setWordWrap(false);
    title->addWidget(icon, 0, Qt::AlignTop);
    title->addSpacing(8);
    title->addWidget(Label1[0], 1);
    inner->addLayout(title);
    for (int i : {1, 8, 3, 7, 2, 4, 5, 6, 9})
        inner->addWidget(Label1[i]);
    layout->addWidget(frame);
    setMinimumWidth(480);
    auto* Command1 = new QPushButton(QStringLiteral("OK"), this);
    Command1->setDefault(true);
    connect(Command1, &QPushButton::clicked, this, &QDialog::accept);
    layout->addWidget(Command1, 0, Qt::AlignRight);
}

} // namespace peripherals
