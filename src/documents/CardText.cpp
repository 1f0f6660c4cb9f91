#include "documents/CardText.h"

#include "documents/Controls.h"
#include "documents/Form1.h"
#include "documents/Form2.h"
#include "documents/Form3.h"
#include "documents/Form4.h"
#include "lists/ListModel.h"

#include <vector>

namespace documents {

WindowTexts windowTexts(const ProjectWindow& window) {
    WindowTexts out;
    for (const TextBox* t : window.Text1)
        out.Text1.append(t ? t->text() : QString());
    for (const ComboBox* c : window.Combo1)
        out.Combo1.append(c ? c->text() : QString());
    return out;
}

CardBasicData cardBasicData(const Form1& basic) {
    return calc::CardBasicDataOf(windowTexts(basic));
}

calc::CostRecord UpdateCardText(const Form1& basic, Form2* detailed, Form3& card) {
    return UpdateCardText(basic, detailed ? detailed->list(0) : nullptr, card);
}

calc::CostRecord UpdateCardText(const Form1& basic, lists::ListModel* quantities, Form3& card) {
    lists::ListModel noList;
    const calc::CostRecord costs =
        calc::CalculateCosts(quantities ? *quantities : noList, basic.costInputs());

    QStringList texts = windowTexts(card).Text1;
    const CardLabels labels = UpdateCardText(cardBasicData(basic), costs, texts);
    for (int i = 0; i < static_cast<int>(card.Text1.size()); ++i)
        if (card.Text1[i]) card.Text1[i]->setText(texts[i]);
    card.setMoneyUnit(labels.money);
    return costs;
}

QStringList UpdateSTCard(const Form1& basic, const Form3& card) {
    return UpdateSTCard(windowTexts(basic), windowTexts(card));
}

QStringList UpdateSTCharge(const Form1& basic, const Form4& charge) {
    return UpdateSTCharge(windowTexts(basic), windowTexts(charge));
}

} // namespace documents
