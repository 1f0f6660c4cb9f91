#pragma once
// The texts of the two cards over the card windows. The procedures themselves work on plain
// texts (calc/CardText.h); the wrappers here read the windows' fields and write the results
// back.
#include "calc/CardText.h"

#include <QString>
#include <QStringList>

namespace documents {

class Form1;
class Form2;
class Form3;
class Form4;
class ProjectWindow;
} // namespace documents

namespace lists {
class ListModel;
}

namespace documents {

using calc::CardBasicData;
using calc::CardBasicDataOf;
using calc::CardLabels;
using calc::RemoveInfo;
using calc::UpdateCardText;
using calc::UpdateSTCard;
using calc::UpdateSTCharge;
using calc::WindowTexts;

// Wrappers over the windows.
WindowTexts windowTexts(const ProjectWindow& window);
CardBasicData cardBasicData(const Form1& basic);
// Runs the cost estimate on the detailed data window's quantity list (none: an empty list),
// computes the card's grey fields and sets its money-unit labels.
calc::CostRecord UpdateCardText(const Form1& basic, Form2* detailed, Form3& card);
// The same with the quantity list given directly (none: an empty list).
calc::CostRecord UpdateCardText(const Form1& basic, lists::ListModel* quantities, Form3& card);
QStringList UpdateSTCard(const Form1& basic, const Form3& card);
QStringList UpdateSTCharge(const Form1& basic, const Form4& charge);

} // namespace documents
