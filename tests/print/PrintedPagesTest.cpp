// Printed pages read back from the PDF that `tamrik print` writes: the sample project and
// projects made from it with the edge cases a real project meets.
#include "calc/NumberText.h"
#include "lists/Columns.h"
#include "lists/ListModel.h"
#include "lists/ListProcedures.h"
#include "print/PdfSupport.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

using print_test::pdfText;
using print_test::printToPdf;

namespace {

const QString kRoadWorks = QStringLiteral("TIETYÖT SILTAPAIKALLA");

// The digits of a text: amounts compare alike whatever the grouping.
QString digits(const QString& text) {
    QString out;
    for (QChar c : text)
        if (c.isDigit() || c == u',') out += c;
    return out;
}

// The line of a page's text that holds `label`, without the label.
QString lineAfter(const QString& text, const QString& label) {
    for (const QString& line : text.split(QLatin1Char('\n')))
        if (line.contains(label)) return line.mid(line.indexOf(label) + label.size());
    return QStringLiteral("<no line>");
}

} // namespace

TEST(SampleProject, RoadWorksStandUnderTheirCaptionAndTheEstimateSumsThemApart) {
    persist::ProjectFile project;
    ASSERT_TRUE(persist::ReadProjectFile(print_test::sampleProject(), false, project, nullptr));
    // In both lists every work phase below 7100 (the road works) comes after the caption.
    const persist::ListRecord lists[] = {print_test::quantityRecord(project.content),
                                         print_test::requirementRecord(project.content)};
    const int headingColumn[] = {2, 3};
    float roadSum = 0;
    for (int k = 0; k < 2; ++k) {
        const persist::ListRecord& list = lists[k];
        int caption = -1, roadRows = 0;
        for (int r = 0; r < static_cast<int>(list.rows.size()); ++r) {
            const QStringList row = list.rows[r].toStringList();
            if (caption < 0 && row.value(headingColumn[k] - 1) == kRoadWorks) caption = r;
            const QString littera = row.value(0).trimmed();
            if (littera.isEmpty() || littera >= QLatin1String("7100")) continue;
            EXPECT_GT(r, caption) << "list " << k << " littera " << littera.toStdString();
            ++roadRows;
        }
        EXPECT_GE(caption, 0) << "list " << k;
        EXPECT_GT(roadRows, 0);
        if (k == 0)
            for (int r = caption + 1; caption >= 0 && r < static_cast<int>(list.rows.size()); ++r)
                roadSum += static_cast<float>(calc::CustomVal(list.rows[r].value(3)) *
                                              calc::CustomVal(list.rows[r].value(5)));
    }
    ASSERT_GT(roadSum, 0);

    // The estimate's summary carries the sum of the road works under their own heading.
    QTemporaryDir dir;
    const QString out = dir.filePath(QStringLiteral("arvio.pdf"));
    QString err;
    ASSERT_EQ(printToPdf(print_test::sampleProject(), out, QStringLiteral("1"), &err), 0)
        << err.toStdString();
    const QString text = pdfText(out);
    EXPECT_EQ(digits(lineAfter(text, QStringLiteral("Tietöiden rakennuskustannukset (i = 104)"))),
              digits(calc::MoneyS(roadSum, 2)));
    EXPECT_LT(text.indexOf(kRoadWorks), text.indexOf(QStringLiteral("MAA- JA POHJARAKENTEET")));
}
