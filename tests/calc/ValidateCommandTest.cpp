// `tamrik validate` and the error count of `tamrik costs` and `tamrik summary`, run as a user
// runs them, on copies of the sample project with cells typed wrong.
#include "common/RunProgram.h"
#include "persist/ProjectFile.h"
#include "platform/TextFile.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <functional>
#include <gtest/gtest.h>

using testing_support::Result;
using testing_support::run;

namespace {

QString sample() {
    return testing_support::dataDir() + QStringLiteral("Esimerkkisilta.sl");
}

// The quantity list's rows that enter the estimate (quantity and unit price filled), as cells
// of the stored record: 0 littera .. 5 unit price.
std::vector<lists::RowCells*> pricedRows(persist::ProjectContent& content) {
    std::vector<lists::RowCells*> out;
    for (lists::RowCells& cells : content.windows[1].lists[0].rows)
        if (cells.size() > 5 && !cells[3].isEmpty() && !cells[5].isEmpty()) out.push_back(&cells);
    return out;
}

// A copy of the sample with its content changed by `change`, written into `dir`.
QString changedSample(const QTemporaryDir& dir, const QString& name,
                      const std::function<void(persist::ProjectContent&)>& change) {
    persist::ProjectFile project;
    QString error;
    EXPECT_TRUE(persist::ReadProjectFile(sample(), false, project, &error)) << error.toStdString();
    change(project.content);
    project.members[0].data = persist::WriteProjectText(project.content, false);
    const QString file = dir.filePath(name);
    EXPECT_TRUE(platform::writeFileAtomically(file, persist::PackContainer(project.members)));
    return file;
}

} // namespace

TEST(ValidateCommand, ExitStatusSaysWhatWasFound) {
    QTemporaryDir dir;
    // The sample is clean.
    const Result clean = run({QStringLiteral("validate"), sample()});
    EXPECT_EQ(clean.status, 0) << clean.out.toStdString() << clean.err.toStdString();
    EXPECT_TRUE(clean.out.isEmpty());
    EXPECT_EQ(run({QStringLiteral("validate"), sample(), QStringLiteral("--json")}).out.trimmed(),
              QStringLiteral("[\n]"));

    // A unit after a quantity: the number reads right, so it is only a remark.
    const QString remarks =
        changedSample(dir, QStringLiteral("huomautus.sl"), [](persist::ProjectContent& c) {
            lists::RowCells& row = *pricedRows(c).at(0);
            row.set(3, row[3].toString() + QStringLiteral(" m3"));
        });
    const Result r = run({QStringLiteral("validate"), remarks});
    EXPECT_EQ(r.status, 2) << r.out.toStdString();
    EXPECT_EQ(r.out.count(u'\n'), 1);
    EXPECT_TRUE(r.out.startsWith(QStringLiteral("huomautus\tmääräluettelo\t"))) << r.out.toStdString();

    // Thousands points and a price in the unit column change the estimate: errors.
    int firstRow = 0;
    const QString errors = changedSample(dir, QStringLiteral("virheet.sl"), [&](persist::ProjectContent& c) {
        std::vector<lists::RowCells*> rows = pricedRows(c);
        ASSERT_GE(rows.size(), 3u);
        for (std::size_t i = 0; i < c.windows[1].lists[0].rows.size(); ++i)
            if (&c.windows[1].lists[0].rows[i] == rows[0]) firstRow = static_cast<int>(i) + 1;
        rows[0]->set(3, u"1.200,50");
        rows[1]->set(3, u"n. 40");
        rows[2]->set(4, (*rows[2])[5]);
        rows[2]->set(5, {});
    });
    const Result e = run({QStringLiteral("validate"), errors});
    EXPECT_EQ(e.status, 3);
    const QStringList lines = e.out.split(u'\n', Qt::SkipEmptyParts);
    ASSERT_EQ(lines.size(), 3) << e.out.toStdString();
    EXPECT_EQ(lines[0],
              QStringLiteral("virhe\tmääräluettelo\t%1\tMÄÄRÄ\t1.200,50\tMäärä \"1.200,50\" luetaan "
                             "arvoksi 1,2: kaksi desimaalierotinta")
                  .arg(firstRow));
    for (const QString& line : lines)
        EXPECT_EQ(line.split(u'\t').size(), 6) << line.toStdString();

    // The same findings as JSON, read back.
    const Result j = run({QStringLiteral("validate"), QStringLiteral("--json"), errors});
    EXPECT_EQ(j.status, 3);
    QJsonParseError parseError;
    const QJsonDocument doc = QJsonDocument::fromJson(j.out.toUtf8(), &parseError);
    ASSERT_EQ(parseError.error, QJsonParseError::NoError) << j.out.toStdString();
    const QJsonArray array = doc.array();
    ASSERT_EQ(array.size(), 3);
    const QJsonObject first = array[0].toObject();
    EXPECT_EQ(first["severity"].toString(), QStringLiteral("virhe"));
    EXPECT_EQ(first["list"].toString(), QStringLiteral("määräluettelo"));
    EXPECT_EQ(first["row"].toInt(), firstRow);
    EXPECT_EQ(first["column"].toString(), QStringLiteral("MÄÄRÄ"));
    EXPECT_EQ(first["text"].toString(), QStringLiteral("1.200,50"));
    EXPECT_EQ(first["message"].toString(),
              QStringLiteral("Määrä \"1.200,50\" luetaan arvoksi 1,2: kaksi desimaalierotinta"));
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(array[i].toObject()["message"].toString(), lines[i].section(u'\t', 5)) << i;

    // Costs and summary say how many errors there are, on standard error only.
    for (const char* command : {"costs", "summary"}) {
        const Result before = run({QString::fromLatin1(command), sample()});
        EXPECT_EQ(before.status, 0);
        EXPECT_TRUE(before.err.isEmpty()) << before.err.toStdString();
        const Result after = run({QString::fromLatin1(command), errors});
        EXPECT_EQ(after.status, 0) << command;
        EXPECT_EQ(after.err, QStringLiteral("tamrik: 3 virhettä, katso tamrik validate\n")) << command;
        EXPECT_FALSE(after.out.contains(QStringLiteral("tamrik validate"))) << command;
        EXPECT_EQ(after.out.count(u'\n'), before.out.count(u'\n')) << command;
        // Remarks are not counted.
        EXPECT_TRUE(run({QString::fromLatin1(command), remarks}).err.isEmpty()) << command;
    }
    const QString one = changedSample(dir, QStringLiteral("yksi.sl"),
                                      [](persist::ProjectContent& c) { pricedRows(c).at(0)->set(5, u"?"); });
    EXPECT_EQ(run({QStringLiteral("costs"), one}).err,
              QStringLiteral("tamrik: 1 virhe, katso tamrik validate\n"));
}

TEST(ValidateCommand, BadFilesAndArgumentsGiveStatusOne) {
    QTemporaryDir dir;
    const QString damaged = dir.filePath(QStringLiteral("rikki.sl"));
    ASSERT_TRUE(platform::writeFileAtomically(damaged, QByteArray("ei projektitiedosto")));
    const Result bad = run({QStringLiteral("validate"), damaged});
    EXPECT_EQ(bad.status, 1);
    EXPECT_TRUE(bad.err.startsWith(QStringLiteral("tamrik: ") + damaged)) << bad.err.toStdString();
    EXPECT_TRUE(bad.out.isEmpty());
    EXPECT_EQ(run({QStringLiteral("validate"), dir.filePath(QStringLiteral("ei.sl"))}).status, 1);
    for (const QStringList& args :
         {QStringList{QStringLiteral("validate")},
          QStringList{QStringLiteral("validate"), QStringLiteral("--json")},
          QStringList{QStringLiteral("validate"), sample(), QStringLiteral("--xml")},
          QStringList{QStringLiteral("validate"), sample(), sample()}}) {
        const Result r = run(args);
        EXPECT_EQ(r.status, 1) << args.join(u' ').toStdString();
        EXPECT_TRUE(r.err.contains(QStringLiteral("käyttö: tamrik validate"))) << r.err.toStdString();
    }
}
