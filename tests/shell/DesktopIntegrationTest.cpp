// The program's pictures and its place on the desktop: toolbar icons drawn for it, and a menu
// entry and file types that agree with each other.
#include "MainWindowFixture.h"
#include "common/TestSupport.h"
#include "platform/TextFile.h"
#include "platform/ui/Icons.h"

#include <QAction>
#include <QFile>
#include <QXmlStreamReader>
#include <gtest/gtest.h>

using DesktopIntegrationTest = MainWindowFixture;

TEST_F(DesktopIntegrationTest, EveryToolbarButtonHasTheProgramsOwnScalablePicture) {
    ASSERT_FALSE(main->toolbarButtons.empty());
    for (const auto& [key, action] : main->toolbarButtons) {
        EXPECT_TRUE(QFile::exists(QStringLiteral(":/icons/") + key + QStringLiteral(".svg")))
            << key.toStdString();
        // Drawn from SVG: as sharp at twice the size as at the toolbar's own.
        const QPixmap big = action->icon().pixmap(QSize(40, 40));
        EXPECT_EQ(big.size(), QSize(40, 40)) << key.toStdString();
    }
    EXPECT_FALSE(platform::applicationIcon().pixmap(256, 256).isNull());
    EXPECT_TRUE(platform::toolIcon(QStringLiteral("Ei tällaista")).isNull());
}

TEST(DesktopEntry, MenuEntryAndFileTypesAgree) {
    const QString packaging = testing_support::sourceDir() + QStringLiteral("/packaging/");
    QStringList lines;
    ASSERT_TRUE(platform::readTextLines(packaging + QStringLiteral("tamrik.desktop"), lines));
    QMap<QString, QString> entry;
    for (const QString& line : lines) {
        const qsizetype eq = line.indexOf(QLatin1Char('='));
        if (eq > 0) entry.insert(line.left(eq), line.mid(eq + 1));
    }
    EXPECT_EQ(entry.value(QStringLiteral("Exec")), QStringLiteral("tamrik %f"));
    EXPECT_TRUE(
        entry.value(QStringLiteral("Categories")).split(QLatin1Char(';')).contains(QStringLiteral("Office")));
    const QString icon = entry.value(QStringLiteral("Icon"));
    EXPECT_TRUE(QFile::exists(QStringLiteral(":/icons/") + icon + QStringLiteral(".svg")));

    QFile xml(packaging + QStringLiteral("tamrik-mime.xml"));
    ASSERT_TRUE(xml.open(QIODevice::ReadOnly));
    QXmlStreamReader reader(&xml);
    QMap<QString, QString> globs, icons, comments;
    QString type;
    while (!reader.atEnd()) {
        if (reader.readNext() != QXmlStreamReader::StartElement) continue;
        const auto attr = reader.attributes();
        if (reader.name() == QLatin1String("mime-type")) type = attr.value(QStringLiteral("type")).toString();
        if (reader.name() == QLatin1String("glob"))
            globs[type] = attr.value(QStringLiteral("pattern")).toString();
        if (reader.name() == QLatin1String("icon"))
            icons[type] = attr.value(QStringLiteral("name")).toString();
        if (reader.name() == QLatin1String("comment") && !comments.contains(type))
            comments[type] = reader.readElementText();
    }
    ASSERT_FALSE(reader.hasError()) << reader.errorString().toStdString();
    EXPECT_EQ(globs.value(QStringLiteral("application/x-tamrik-project")), QStringLiteral("*.sl"));
    EXPECT_EQ(comments.value(QStringLiteral("application/x-tamrik-project")),
              QStringLiteral("TAMRIK-projekti"));
    EXPECT_EQ(globs.value(QStringLiteral("application/x-tamrik-unit-prices")), QStringLiteral("*.sl1"));
    EXPECT_EQ(globs.value(QStringLiteral("application/x-tamrik-requirements")), QStringLiteral("*.sl2"));
    // Every type the menu entry opens is defined, with an icon the program ships.
    const QStringList opened =
        entry.value(QStringLiteral("MimeType")).split(QLatin1Char(';'), Qt::SkipEmptyParts);
    EXPECT_EQ(opened.size(), 3);
    for (const QString& t : opened) {
        EXPECT_TRUE(globs.contains(t)) << t.toStdString();
        EXPECT_TRUE(QFile::exists(QStringLiteral(":/icons/") + icons.value(t) + QStringLiteral(".svg")))
            << t.toStdString();
    }
}
