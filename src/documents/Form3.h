#pragma once
// The characteristics card: the bridge's kind, heights and foundations, the estimated and the
// realised costs, the materials of the supports and the superstructure with their key ratios.
// The grey fields are computed by "Las&ke tunnusluvut" (UpdateCardText) and before printing.
#include "documents/ProjectWindow.h"

class QLabel;
class QLayout;
class QPushButton;

namespace documents {

class Form3 : public ProjectWindow {
    Q_OBJECT
public:
    explicit Form3(DocumentHost& host, QWidget* parent = nullptr);

    // The drop-down lists from the combo data file; the money-unit labels from the settings.
    void prepareNewProject() override;

    // Shows the money unit in the labels of the cost block: Label1(2), (3), (5), (6), (7) and
    // the label of the realised superstructure cost get the unit, Label1(4) and (79) the unit
    // followed by "/m2".
    void setMoneyUnit(const QString& unit);

    // Indexed labels; only Label1(2) to (7) and Label1(79) exist, the other entries are null.
    std::vector<QLabel*> Label1;
    QPushButton* Command1 = nullptr;    // "Las&ke tunnusluvut"
    std::vector<QPushButton*> Command2; // side view, cross-section, logo

    QSize sizeHint() const override;

signals:
    // A picture button: 2 side view, 3 cross-section, 4 logo.
    void pictureRequested(int pictureNumber);

private:
    QWidget* buildTopArea();
    QWidget* buildCosts();
    QWidget* buildSupports(const QString& title, int firstColumn);
    // The piles under a foundation: number, length and size, fields first … first + 2.
    QLayout* buildPiles(int first);
    QWidget* buildSuperstructure();
    QWidget* buildButtons();

    std::vector<QLabel*> m_moneyLabels;
};

} // namespace documents
