// The names the forms give their fields for a screen reader: the label's text without its
// mnemonic marks.
#include "documents/Controls.h"
#include "documents/FormLayout.h"

#include <QLineEdit>
#include <gtest/gtest.h>

TEST(FormLayout, AFieldIsNamedByItsLabelWithoutTheMnemonic) {
    QWidget window;
    const auto nameOf = [&window](const QString& label) {
        auto* field = new QLineEdit(&window);
        documents::nameControl(field, label);
        return field->accessibleName();
    };
    EXPECT_EQ(nameOf(QStringLiteral("Sillan &nimi")), QStringLiteral("Sillan nimi"));
    EXPECT_EQ(nameOf(QStringLiteral("&Kunta&")), QStringLiteral("Kunta"));
    // A doubled mark is a written "&".
    EXPECT_EQ(nameOf(QStringLiteral("T&&K &tiedot")), QStringLiteral("T&K tiedot"));
    EXPECT_EQ(nameOf(QStringLiteral("a&&&b")), QStringLiteral("a&&b"));
    EXPECT_EQ(nameOf(QStringLiteral("Vinous (gon)")), QStringLiteral("Vinous (gon)"));

    // The edit box inside a text box gets the name too; a name given before stays.
    auto* box = new documents::TextBox(false, &window);
    ASSERT_NE(box->focusProxy(), nullptr);
    documents::nameControl(box, QStringLiteral("&Tiepiiri"));
    EXPECT_EQ(box->accessibleName(), QStringLiteral("Tiepiiri"));
    EXPECT_EQ(box->focusProxy()->accessibleName(), QStringLiteral("Tiepiiri"));
    documents::nameControl(box, QStringLiteral("Toinen"));
    EXPECT_EQ(box->accessibleName(), QStringLiteral("Tiepiiri"));
}
