// Wrapping and counting printed lines; the page model and the preview's zoom.
#include "print/PageModel.h"
#include "print/TextLines.h"

#include <QFont>
#include <QRawFont>
#include <gtest/gtest.h>
#include <cmath>

namespace {

const QString kFont = QStringLiteral("Arial");

double widthOf(print::FontBook& fonts, const QString& text, double size = 11) {
    return fonts.width(print::Font{kFont, size}, text);
}

} // namespace

TEST(TextLines, InsertLineFeedsWrapsParagraphsWithinTheWidth) {
    print::FontBook fonts;
    const QString paragraph =
        QStringLiteral("Betonin lujuusluokka on vähintään C35/45 ja rasitusluokat XC4 XF2");
    const double width = widthOf(fonts, paragraph) / 2.5;
    QString text = paragraph + QStringLiteral("\r\n\r\nLyhyt.");
    ASSERT_TRUE(print::InsertLineFeeds(fonts, text, kFont, 11, width));
    const QStringList lines = text.split(QStringLiteral("\r\n"));
    ASSERT_EQ(lines.last(), QString()); // every line, the last one too, ends with CR LF
    EXPECT_EQ(print::EvaluateNRows(text), lines.size() - 1);
    // The first paragraph's words, in order and whole, on lines that fit; then the empty
    // paragraph and the short one.
    const int n = static_cast<int>(lines.size()) - 1;
    ASSERT_GE(n, 5);
    EXPECT_EQ(lines[n - 2], QString());
    EXPECT_EQ(lines[n - 1], QStringLiteral("Lyhyt."));
    QStringList words;
    for (int i = 0; i < n - 2; ++i) {
        EXPECT_LT(widthOf(fonts, lines[i].trimmed()), width) << lines[i].toStdString();
        words << lines[i].split(QLatin1Char(' '), Qt::SkipEmptyParts);
    }
    EXPECT_EQ(words.join(QLatin1Char(' ')), paragraph);
    // Wrapping a wrapped text changes nothing.
    QString again = text;
    ASSERT_TRUE(print::InsertLineFeeds(fonts, again, kFont, 11, width));
    EXPECT_EQ(again, text);
}

TEST(TextLines, ALongWordStandsAloneOrIsSplitWithTheMessage) {
    print::FontBook fonts;
    const QString word = QStringLiteral("Teräsbetonirakenteet");
    const double wordWidth = widthOf(fonts, word);
    // A word that fits stands on a line of its own.
    QString fits = QStringLiteral("ja ") + word + QStringLiteral(" on");
    ASSERT_TRUE(print::InsertLineFeeds(fonts, fits, kFont, 11, wordWidth * 1.05));
    EXPECT_TRUE(fits.split(QStringLiteral("\r\n")).contains(word + QLatin1Char(' ')));
    // A word longer than the line: reported, and split so that every piece fits.
    QString tooLong = QStringLiteral("a ") + word + QStringLiteral(" b");
    EXPECT_FALSE(print::InsertLineFeeds(fonts, tooLong, kFont, 11, wordWidth / 3));
    QString joined;
    for (const QString& line : tooLong.split(QStringLiteral("\r\n"), Qt::SkipEmptyParts)) {
        SCOPED_TRACE(line.toStdString());
        EXPECT_LT(widthOf(fonts, line.trimmed()), wordWidth / 3);
        joined += line;
    }
    EXPECT_EQ(joined.remove(QLatin1Char(' ')), QStringLiteral("a") + word + QStringLiteral("b"));
    // An empty text has no lines.
    QString empty;
    EXPECT_TRUE(print::InsertLineFeeds(fonts, empty, kFont, 11, 1000));
    EXPECT_EQ(empty, QString());
    EXPECT_EQ(print::EvaluateNRows(empty), 0);
}

// The book asks the font once per glyph and once per glyph pair; the advances it gives must be
// the ones the font gives for the whole text at once, kerning included ("AV", "To", "Ty" are
// kerned in the printer font), for texts met first and for texts made of glyphs met before.
TEST(TextLines, LaidOutAdvancesAreTheFontsOwnKernedAdvances) {
    print::FontBook fonts;
    for (bool bold : {false, true}) {
        QFont qfont(kFont);
        qfont.setBold(bold);
        qfont.setPixelSize(2048);
        qfont.setHintingPreference(QFont::PreferNoHinting);
        qfont.setKerning(true);
        const QRawFont raw = QRawFont::fromFont(qfont);
        ASSERT_TRUE(raw.isValid());
        print::FontBook::Face& face = fonts.face(print::Font{kFont, 11, bold, false});
        bool kerned = false;
        for (const QString& text :
             {QStringLiteral("AVATA Työmaa To Ty LT"), QStringLiteral("7150 BETONITYÖT"),
              QStringLiteral("TAVATTAVA, Työt; Yy \"AV\" 12,50 €/m³"), QStringLiteral("VATA"),
              QStringLiteral("oTyA"), QStringLiteral("A")}) {
            const QList<quint32> glyphs = raw.glyphIndexesForString(text);
            const QList<QPointF> own =
                raw.advancesForGlyphIndexes(glyphs, QRawFont::KernedAdvances | QRawFont::UseDesignMetrics);
            const QList<QPointF> plain = raw.advancesForGlyphIndexes(glyphs, QRawFont::UseDesignMetrics);
            const print::FontBook::Shaped& shaped = fonts.shape(face, text);
            ASSERT_EQ(shaped.glyphs, glyphs) << text.toStdString();
            ASSERT_EQ(shaped.advances.size(), own.size());
            double em = 0;
            for (qsizetype i = 0; i < own.size(); ++i) {
                EXPECT_EQ(shaped.advances[i] * 2048, own[i].x()) << text.toStdString() << " glyph " << i;
                em += own[i].x() / 2048;
                kerned = kerned || own[i].x() != plain[i].x();
            }
            EXPECT_DOUBLE_EQ(shaped.em, em);
        }
        // The texts above do meet kerned pairs, so the kerning is checked.
        EXPECT_TRUE(kerned);
    }
}

TEST(TextLines, ParseTextPageCutsLinesAndLastSpaceFindsTheSpace) {
    const QString text = QStringLiteral("yksi\r\nkaksi\r\nkolme\r\nneljä\r\n");
    EXPECT_EQ(print::ParseTextPage(text, 1, 1), QStringLiteral("yksi\r\n"));
    EXPECT_EQ(print::ParseTextPage(text, 2, 3), QStringLiteral("kaksi\r\nkolme\r\n"));
    EXPECT_EQ(print::ParseTextPage(text, 3, 9), QStringLiteral("kolme\r\nneljä\r\n"));
    EXPECT_EQ(print::ParseTextPage(text, 5, 6), QString());
    EXPECT_EQ(print::ParseTextPage(QString(), 1, 1), QString());
    EXPECT_EQ(print::ParseTextPage(QStringLiteral("x"), 1, 1), QStringLiteral("x"));
    EXPECT_EQ(print::EvaluateNRows(text), 4);
    EXPECT_EQ(print::LastSpace(QStringLiteral("Teräs S355 ja")), 11);
    EXPECT_EQ(print::LastSpace(QStringLiteral("Teräs")), 0);
}

TEST(PageModel, A4WithAQuarterInchBorder) {
    const print::DeviceMetrics d = print::MetricsOf(print::DefaultPageLayout(), print::kDefaultResolution);
    const print::PageModel m = print::PrintArea(d, 1.0f, print::Margins{});
    EXPECT_EQ(m.PageWidth, 11906);
    EXPECT_EQ(m.PageHeight, 16838);
    EXPECT_EQ(m.PrintableWidth, 11906 - 720);
    EXPECT_EQ(m.PrintableHeight, 16838 - 720);
    EXPECT_FLOAT_EQ(m.OriginX, 1400 - 360);
    EXPECT_FLOAT_EQ(m.OriginY, 800 - 360);
    EXPECT_FLOAT_EQ(m.UsableWidth, 11906 - 2200);
    EXPECT_FLOAT_EQ(m.UsableHeight, 16838 - 1600);
    EXPECT_FLOAT_EQ(m.BodyHeight, 16838 - 1600 - 1300);
    EXPECT_TRUE(print::AreaFits(m));
    // A 1200-dpi printer draws a 10-twip line 8 pixels wide.
    EXPECT_EQ(print::AdjustLineWidth(d), 8);
    EXPECT_EQ(print::PrinterDrawWidth(d), 8);
    print::DeviceMetrics coarse = d;
    coarse.dpiX = coarse.dpiY = 72;
    EXPECT_EQ(print::AdjustLineWidth(coarse), 1);

    // At half scale everything halves.
    const print::PageModel half = print::PrintArea(d, 0.5f, print::Margins{});
    EXPECT_EQ(half.PageWidth, 5953);
    EXPECT_NEAR(half.OriginX, 700 - std::round((5953 - 5593) / 2.0), 0.01);
    const print::PageModel landscape =
        print::PrintArea(print::MetricsOf(print::DefaultPageLayout(QPageLayout::Landscape), 1200), 1.0f, {});
    EXPECT_TRUE(landscape.Landscape);
    EXPECT_EQ(landscape.PageWidth, 16838);
}

TEST(PageModel, PreviewZoomStepsStopAtTheirLimits) {
    float s = 1.0f;
    for (int i = 1; i <= 32; ++i)
        s = print::ZoomOut(s);
    EXPECT_NEAR(s, 0.1937, 0.0001);
    EXPECT_EQ(print::ZoomOut(s), s);
    s = 1.0f;
    for (int i = 1; i <= 33; ++i)
        s = print::ZoomIn(s);
    EXPECT_NEAR(s, 5.003, 0.001);
    EXPECT_EQ(print::ZoomIn(s), s);
    EXPECT_EQ(print::StartScale(0.2f), 1.0f);
    EXPECT_EQ(print::StartScale(0.0f), 1.0f);
    EXPECT_EQ(print::StartScale(0.75f), 0.75f);
}
