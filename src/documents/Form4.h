#pragma once
// The demolition-charge chamber card: the bridge's identification and, per support, the charge
// chambers and charge fixings built into the structure.
#include "documents/ProjectWindow.h"

class QCheckBox;
class QLayout;
class QVBoxLayout;
class QPushButton;

namespace documents {

class Form4 : public ProjectWindow {
    Q_OBJECT
public:
    explicit Form4(DocumentHost& host, QWidget* parent = nullptr);

    // The support list from its template and the drop-down lists from the combo data file.
    void prepareNewProject() override;

    // Use the characteristics card's side view (0) or cross-section (1) instead of the own one.
    std::vector<QCheckBox*> Check1;
    // The card's own pictures: side view, cross-section, name plate.
    std::vector<QPushButton*> Command1;

    QSize sizeHint() const override;

protected:
    QCheckBox* recordCheck(int i) const override {
        return i >= 0 && i < static_cast<int>(Check1.size()) ? Check1[i] : nullptr;
    }

private:
    QLayout* buildCardFields();
    void addSupportList(QVBoxLayout* layout);
    QLayout* buildNotes();
    QLayout* buildPictures();

signals:
    // A picture button: 5 side view, 6 cross-section, 7 name plate.
    void pictureRequested(int pictureNumber);
};

} // namespace documents
