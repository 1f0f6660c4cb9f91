#pragma once
// The bridge's basic data window: identification and main dimensions, the cost parameters of
// the estimate, the client, who drew up and checked the plan on each side, the part numbering
// and the two change logs, and the six picture slots of the cards.
//
// Field identities (the control arrays' indices) are fixed: the project file, the cost
// estimate, the cards and the reports address the fields by them.
#include "calc/CostEstimate.h"
#include "documents/ProjectWindow.h"
#include "platform/Picture.h"

#include <array>

class QLayout;

namespace platform {
class PictureBox;
}

namespace documents {

class Form1 : public ProjectWindow {
    Q_OBJECT
public:
    explicit Form1(DocumentHost& host, QWidget* parent = nullptr);

    // The lists from their templates, the cost parameters from the settings, the drop-down
    // lists from the stored defaults and the combo data file, and the office text in the
    // "Yritys" box of the current party.
    void prepareNewProject() override;

    // The texts the cost estimate reads: Combo1(4), (3), (10), (11) and (12).
    calc::CostInputs costInputs() const;

    // The picture slots: side view, cross-section and logo of the characteristics card, then
    // side view, cross-section and name plate of the charge chamber card.
    std::vector<platform::PictureBox*> Image1;

    QSize sizeHint() const override;

    // RecordFields: the picture slots.
    platform::Picture picture(int slot) const override;
    void setPicture(int slot, const platform::Picture& picture) override;
    void revealPicture(int slot) override;

private:
    // A slot's picture changed: a step of the project's history, as a field's change is.
    void pictureChanged(int slot);
    std::vector<platform::Picture> m_lastPictures;
    QWidget* buildBasicData();
    // Below the bridge's data: the part numbering, the cost parameters and the client.
    QLayout* buildPartsAndCosts();
    QWidget* buildParties();
};

// Puts the four office lines into a multi-line box, CR LF between them and none after the
// last, so that an empty last line still gives four lines.
QString OfficeText(const std::array<QString, 4>& rows);
void UpdateOfficeText(TextBox& box, const std::array<QString, 4>& rows);

} // namespace documents
