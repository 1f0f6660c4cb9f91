// The files under data/ ship beside the program exactly as they are stored: Windows-1252 with
// CR LF. These tests read them byte for byte and check what the program relies on when it
// reads them: the encoding, the line ends, the column counts of the lists and combo data, and
// the caption scheme of the default unit price list.
#include "common/ListHeaders.h"
#include "common/TestSupport.h"
#include "platform/Cp1252.h"

#include <QDir>
#include <QFile>
#include <QHash>
#include <QRegularExpression>
#include <QSet>
#include <gtest/gtest.h>

#include <optional>

namespace {

// Every kind of text file the program reads from its own directory.
const QStringList kTextFilePatterns = {QStringLiteral("*.csv"), QStringLiteral("*.sl1"),
                                       QStringLiteral("*.sl2"), QStringLiteral("*.txt"),
                                       QStringLiteral("*.dat")};

const QString kRoadWorks = QStringLiteral("TIETYÖT SILTAPAIKALLA");

QStringList shippedTextFiles() {
    // Name filters of QDir ignore letter case, so "HelpFiles.TXT" is found as well.
    return QDir(testing_support::dataDir()).entryList(kTextFilePatterns, QDir::Files, QDir::Name);
}

QStringList shippedFiles(const QString& pattern) {
    return QDir(testing_support::dataDir()).entryList({pattern}, QDir::Files, QDir::Name);
}

QByteArray readBytes(const QString& name) {
    QFile file(testing_support::dataDir() + name);
    if (!file.open(QIODevice::ReadOnly)) return {};
    return file.readAll();
}

QString hexByte(unsigned char b) {
    return QStringLiteral("0x%1").arg(b, 2, 16, QLatin1Char('0'));
}

// The first byte that does not belong in a Windows-1252 text file, described; empty when the
// bytes are clean. A lead byte followed by the right number of continuation bytes is taken for
// UTF-8 that was never converted: no Finnish text written in Windows-1252 has such pairs.
QString encodingProblem(const QByteArray& bytes) {
    const auto at = [](qsizetype i) { return QStringLiteral(" at byte %1").arg(i); };
    for (qsizetype i = 0; i < bytes.size(); ++i) {
        const auto b = static_cast<unsigned char>(bytes[i]);
        if (b == 0x81 || b == 0x8D || b == 0x8F || b == 0x90 || b == 0x9D)
            return QStringLiteral("unassigned Windows-1252 byte ") + hexByte(b) + at(i);
        if (b < 0x20 && b != '\t' && b != '\r' && b != '\n')
            return QStringLiteral("control byte ") + hexByte(b) + at(i);
        int continuation = 0;
        if (b >= 0xC2 && b <= 0xDF)
            continuation = 1;
        else if (b >= 0xE0 && b <= 0xEF)
            continuation = 2;
        else if (b >= 0xF0 && b <= 0xF4)
            continuation = 3;
        if (continuation == 0 || i + continuation >= bytes.size()) continue;
        bool utf8 = true;
        for (int k = 1; k <= continuation; ++k) {
            const auto c = static_cast<unsigned char>(bytes[i + k]);
            utf8 = utf8 && c >= 0x80 && c <= 0xBF;
        }
        if (utf8) return QStringLiteral("UTF-8 sequence") + at(i);
    }
    return {};
}

// The first line end that is not CR LF, described; empty when every line ends in CR LF.
QString lineEndProblem(const QByteArray& bytes) {
    if (bytes.isEmpty()) return QStringLiteral("the file is empty");
    for (qsizetype i = 0; i < bytes.size(); ++i) {
        if (bytes[i] == '\n' && (i == 0 || bytes[i - 1] != '\r'))
            return QStringLiteral("LF without CR at byte %1").arg(i);
        if (bytes[i] == '\r' && (i + 1 == bytes.size() || bytes[i + 1] != '\n'))
            return QStringLiteral("CR without LF at byte %1").arg(i);
    }
    if (!bytes.endsWith("\r\n")) return QStringLiteral("the last line has no CR LF");
    return {};
}

QStringList readLines(const QString& name) {
    QStringList lines = platform::fromCp1252(readBytes(name)).split(QStringLiteral("\r\n"));
    if (!lines.isEmpty() && lines.last().isEmpty()) lines.removeLast();
    return lines;
}

// A list file as the program reads it: the header's fields and each row's fields.
struct ListFile {
    QStringList header;
    QList<QStringList> rows;
    QString cell(qsizetype row, int column) const { // column counted from 1, as in the lists
        const QStringList& fields = rows[row];
        return column <= fields.size() ? fields[column - 1] : QString();
    }
};

std::optional<ListFile> readList(const QString& name) {
    const QStringList lines = readLines(name);
    if (lines.isEmpty()) return std::nullopt;
    ListFile list;
    list.header = lines.first().split(QLatin1Char(';'));
    for (qsizetype i = 1; i < lines.size(); ++i)
        list.rows.append(lines[i].split(QLatin1Char(';')));
    return list;
}

bool isBlank(const QString& text) {
    return text.trimmed().isEmpty();
}

bool isLower(QChar c) {
    return (c >= u'a' && c <= u'z') || c == u'å' || c == u'ä' || c == u'ö';
}
bool isUpper(QChar c) {
    return (c >= u'A' && c <= u'Z') || c == u'Å' || c == u'Ä' || c == u'Ö';
}

// The lists' rule for a work-phase heading: no lower-case letter and at least two capitals.
bool isCapitalString(const QString& text) {
    int capitals = 0;
    for (QChar c : text) {
        if (isLower(c)) return false;
        if (isUpper(c)) ++capitals;
    }
    return capitals >= 2;
}

bool hasLowerCase(const QString& text) {
    return std::any_of(text.begin(), text.end(), isLower);
}

std::optional<double> price(const QString& text) {
    bool ok = false;
    const double value = QString(text).replace(QLatin1Char(','), QLatin1Char('.')).toDouble(&ok);
    return ok ? std::optional<double>(value) : std::nullopt;
}

// A littera with its six-character form widened ("7131.1" -> "7131.01"), so that the
// ordinal order of litteras is the order of their numbers.
QString normalisedLittera(const QString& littera) {
    if (littera.size() != 6) return littera;
    return littera.left(5) + QLatin1Char('0') + littera.right(1);
}

const QStringList& requirementHeader() {
    static const QStringList header = testing_support::requirementHeaders();
    return header;
}

// Field count of every line against the header's, for any list file.
void expectRowsFitHeader(const QString& name, const ListFile& list) {
    for (qsizetype r = 0; r < list.rows.size(); ++r)
        EXPECT_LE(list.rows[r].size(), list.header.size())
            << name.toStdString() << " line " << r + 2 << " has more fields than the header";
}

} // namespace

TEST(ShippedDataFiles, TheFilesTheProgramReadsAreThere) {
    const QStringList files = shippedTextFiles();
    for (const char* name :
         {"TAMRIK30_T1.csv", "TAMRIK30_T2.csv", "TAMRIK30_T3.csv", "TAMRIK30_T4.csv", "TAMRIK30_T5.csv",
          "Tamrik30_combodata1.csv", "Tamrik30_combodata2.csv", "Tamrik30_combodata3.csv",
          "Tamrik30_combodata4.csv", "Yksikköhinnat2002.sl1", "Tamrik2000_office.txt"})
        EXPECT_TRUE(files.contains(QString::fromUtf8(name))) << name << " is missing from data/";
}

TEST(ShippedDataFiles, EveryTextFileIsWindows1252WithCrLf) {
    const QStringList files = shippedTextFiles();
    ASSERT_GE(files.size(), 11) << "data/ holds fewer text files than the program needs";
    for (const QString& name : files) {
        SCOPED_TRACE(name.toStdString());
        const QByteArray bytes = readBytes(name);
        EXPECT_EQ(encodingProblem(bytes).toStdString(), "");
        EXPECT_EQ(lineEndProblem(bytes).toStdString(), "");
    }
}

TEST(ShippedDataFiles, CheckerCatchesUnconvertedAndDamagedText) {
    // The checks above are only worth their silence if they speak up on the usual mistakes.
    EXPECT_FALSE(encodingProblem(QByteArray("V\xC3\xA4lituki")).isEmpty());     // UTF-8 "ä"
    EXPECT_FALSE(encodingProblem(QByteArray("\xEF\xBB\xBFLITTERA")).isEmpty()); // UTF-8 BOM
    EXPECT_FALSE(encodingProblem(QByteArray("a\x81 b")).isEmpty());
    EXPECT_FALSE(encodingProblem(QByteArray("a\0b", 3)).isEmpty());
    EXPECT_TRUE(encodingProblem(QByteArray("V\xE4lituki \x80 \xC4\xD6")).isEmpty());
    EXPECT_FALSE(lineEndProblem(QByteArray("a\r\nb\n")).isEmpty());
    EXPECT_FALSE(lineEndProblem(QByteArray("a\rb\r\n")).isEmpty());
    EXPECT_FALSE(lineEndProblem(QByteArray("a\r\nb")).isEmpty());
    EXPECT_TRUE(lineEndProblem(QByteArray("a\r\n\r\nb\r\n")).isEmpty());
}

TEST(ShippedDataFiles, ListFilesHaveCapitalHeadersAndNoLineWiderThanTheHeader) {
    QStringList lists = shippedFiles(QStringLiteral("TAMRIK30_T*.csv"));
    lists << shippedFiles(QStringLiteral("*.sl1")) << shippedFiles(QStringLiteral("*.sl2"));
    ASSERT_GE(lists.size(), 6);
    for (const QString& name : lists) {
        SCOPED_TRACE(name.toStdString());
        const auto list = readList(name);
        ASSERT_TRUE(list.has_value());
        // The row editor picks its drop-down lists by header words in capitals.
        for (const QString& word : list->header) {
            EXPECT_FALSE(isBlank(word));
            EXPECT_FALSE(hasLowerCase(word)) << word.toStdString();
        }
        expectRowsFitHeader(name, *list);
    }
}

TEST(ShippedDataFiles, TemplatesPlaceTheColumnsWhereTheProgramReadsThem) {
    const auto t1 = readList(QStringLiteral("TAMRIK30_T1.csv"));
    const auto t2 = readList(QStringLiteral("TAMRIK30_T2.csv"));
    const auto t3 = readList(QStringLiteral("TAMRIK30_T3.csv"));
    const auto t4 = readList(QStringLiteral("TAMRIK30_T4.csv"));
    const auto t5 = readList(QStringLiteral("TAMRIK30_T5.csv"));
    ASSERT_TRUE(t1 && t2 && t3 && t4 && t5);

    EXPECT_EQ(t1->header, (QStringList{"TUNNUS", "OSA"}));
    EXPECT_EQ(t2->header.size(), 4);
    EXPECT_EQ(t2->header.value(1), QStringLiteral("PVM"));
    EXPECT_EQ(t3->header, (QStringList{"LITTERA", "TYÖVAIHE", "RAK. OSA", "MÄÄRÄ", "YKSIKKÖ", "YKS.HINTA",
                                       "HUOMAUTUKSET"}));
    EXPECT_EQ(t4->header, requirementHeader());
    EXPECT_EQ(t5->header.size(), 5);
    EXPECT_EQ(t5->header.mid(0, 2), (QStringList{"TUKI", "RAK.AINE"}));

    // A new project starts with empty change logs, quantity list and requirement list.
    EXPECT_TRUE(t2->rows.isEmpty());
    EXPECT_TRUE(t3->rows.isEmpty());
    EXPECT_TRUE(t4->rows.isEmpty());

    // The part numbering uses the codes and names of the row editor's "TUNNUS" and "OSA" lists.
    QHash<QString, QString> parts = {{"000", "Koko silta"},           {"100", "Maatuki 1"},
                                     {"110", "Kehän anturat 1"},      {"200", "Maatuki 2"},
                                     {"210", "Kehän anturat 2"},      {"400", "Päällysrakenne"},
                                     {"500", "Päällysrak. kaariosa"}, {"600", "Varusteet ja laitteet"}};
    for (int i = 1; i <= 9; ++i)
        parts.insert(QString::number(300 + 10 * i), QStringLiteral("Välituki %1").arg(i));
    ASSERT_FALSE(t1->rows.isEmpty());
    QSet<QString> seen;
    for (qsizetype r = 0; r < t1->rows.size(); ++r) {
        const QString code = t1->cell(r, 1);
        EXPECT_TRUE(parts.contains(code)) << code.toStdString();
        EXPECT_EQ(t1->cell(r, 2), parts.value(code)) << code.toStdString();
        EXPECT_FALSE(seen.contains(code)) << "part " << code.toStdString() << " twice";
        seen.insert(code);
    }
    EXPECT_TRUE(seen.contains(QStringLiteral("000")) && seen.contains(QStringLiteral("400")));

    // The charge chamber list starts with the two abutments, as the "TUKI" drop-down names them.
    ASSERT_GE(t5->rows.size(), 2);
    EXPECT_EQ(t5->cell(0, 1), QStringLiteral("MT 1"));
    EXPECT_EQ(t5->cell(1, 1), QStringLiteral("MT 2"));
    for (qsizetype r = 0; r < t5->rows.size(); ++r) {
        EXPECT_TRUE(
            QRegularExpression(QStringLiteral("^(MT [12]|VT [1-9])$")).match(t5->cell(r, 1)).hasMatch());
        EXPECT_EQ(t5->cell(r, 2), QStringLiteral("teräsbetoni"));
    }
}

TEST(ShippedDataFiles, RequirementBaseListsHaveTheTwentyFourColumns) {
    const QStringList files = shippedFiles(QStringLiteral("*.sl2"));
    if (files.isEmpty()) GTEST_SKIP() << "no requirement base list shipped yet";
    for (const QString& name : files) {
        SCOPED_TRACE(name.toStdString());
        const auto list = readList(name);
        ASSERT_TRUE(list.has_value());
        ASSERT_EQ(list->header.size(), 24);
        // Transfers into the project's list go by column position and the row editor by header.
        for (int c : {1, 2, 3, 4, 5, 9, 10, 11, 16, 21, 24})
            EXPECT_EQ(list->header[c - 1], requirementHeader()[c - 1]) << "column " << c;
        expectRowsFitHeader(name, *list);
    }
}

TEST(ShippedDataFiles, ComboDataHaveOneFieldPerComboBox) {
    // Window type -> number of Combo1 boxes of that window.
    const QList<std::pair<int, int>> windows = {{1, 18}, {2, 1}, {3, 20}, {4, 5}};
    QHash<int, ListFile> data;
    for (const auto& [type, combos] : windows) {
        const QString name = QStringLiteral("Tamrik30_combodata%1.csv").arg(type);
        SCOPED_TRACE(name.toStdString());
        const auto list = readList(name);
        ASSERT_TRUE(list.has_value());
        EXPECT_EQ(list->header.size(), combos);
        ASSERT_FALSE(list->rows.isEmpty());
        for (qsizetype r = 0; r < list->rows.size(); ++r)
            EXPECT_EQ(list->rows[r].size(), combos) << "line " << r + 2;
        // Every combo box gets at least one entry.
        for (int c = 1; c <= combos; ++c) {
            bool filled = false;
            for (qsizetype r = 0; r < list->rows.size(); ++r)
                filled = filled || !isBlank(list->cell(r, c));
            EXPECT_TRUE(filled) << "Combo1(" << c - 1 << ") gets no entry";
        }
        data.insert(type, *list);
    }

    const auto column = [&data](int type, int combo) {
        QStringList items;
        const ListFile& list = data[type];
        for (qsizetype r = 0; r < list.rows.size(); ++r)
            if (!isBlank(list.cell(r, combo + 1))) items << list.cell(r, combo + 1);
        return items;
    };
    // Date boxes offer today's date; the cost parameters offer numbers the estimate can read.
    for (int combo : {7, 8, 14, 15})
        EXPECT_EQ(column(1, combo), QStringList{"{DATE}"}) << combo;
    for (int combo : {2, 4})
        EXPECT_EQ(column(4, combo), QStringList{"{DATE}"}) << combo;
    for (int combo : {3, 10, 11, 12, 13})
        for (const QString& item : column(1, combo))
            EXPECT_TRUE(price(item).has_value()) << "Combo1(" << combo << "): " << item.toStdString();
    EXPECT_TRUE(column(1, 4).contains(QStringLiteral("€")));
    EXPECT_TRUE(column(1, 13).contains(QStringLiteral("1995")));
    EXPECT_EQ(column(4, 1), (QStringList{"Vasen", "Oikea"}));
    EXPECT_EQ(column(4, 3), (QStringList{"Kyllä", "Ei"}));

    // The reference documents of the requirement list: a code with its explanation in brackets,
    // which the row editor cuts off when the value is written into the list.
    const QStringList references = column(2, 0);
    EXPECT_GE(references.size(), 8);
    EXPECT_LE(references.size(), 18);
    for (const QString& reference : references)
        EXPECT_TRUE(QRegularExpression(QStringLiteral("^\\S.* \\([^()]+\\)$")).match(reference).hasMatch())
            << reference.toStdString();
}

TEST(ShippedDataFiles, OfficeTextHasFourLines) {
    const QStringList lines = readLines(QStringLiteral("Tamrik2000_office.txt"));
    ASSERT_EQ(lines.size(), 4);
    EXPECT_FALSE(isBlank(lines.first()));
}

TEST(ShippedDataFiles, UnitPriceListFollowsTheWorkPhaseScheme) {
    const auto list = readList(QStringLiteral("Yksikköhinnat2002.sl1"));
    ASSERT_TRUE(list.has_value());
    EXPECT_EQ(list->header, (QStringList{"LITTERA", "TYÖVAIHE", "YKSIKKÖ", "A (HELPOT)", "B (NORMAALIT)",
                                         "C (VAIKEAT)", "HUOMAUTUKSET"}));

    const QRegularExpression litteraForm(QStringLiteral("^\\d{4}(\\.\\d{1,2})?$"));
    int entries = 0;
    int roadCaptions = 0;
    int superstructureCaptions = 0;
    bool inRoadWorks = false;
    bool captionSeen = false;   // a first-level caption in the current block
    bool priceRowAbove = false; // the row above is an entry or its continuation
    QString previousLittera;
    for (qsizetype r = 0; r < list->rows.size(); ++r) {
        const std::string where = "line " + std::to_string(r + 2);
        const QString littera = list->cell(r, 1).trimmed();
        const QString heading = list->cell(r, 2);
        const QString unit = list->cell(r, 3);
        const QString a = list->cell(r, 4), b = list->cell(r, 5), c = list->cell(r, 6);
        const bool blankRow = std::all_of(list->rows[r].begin(), list->rows[r].end(), isBlank);

        if (heading == kRoadWorks) {
            EXPECT_FALSE(inRoadWorks) << where << ": the road works caption appears twice";
            EXPECT_TRUE(isBlank(littera) && isBlank(b)) << where;
            inRoadWorks = true;
            captionSeen = false;
            previousLittera.clear();
            priceRowAbove = false;
            continue;
        }
        EXPECT_FALSE(heading.toUpper().contains(kRoadWorks)) << where;
        if (blankRow) {
            priceRowAbove = false;
            continue;
        }

        if (!isBlank(littera)) {
            // A caption of either level: a well-formed littera in its block's range, in order.
            EXPECT_TRUE(litteraForm.match(littera).hasMatch()) << where << ": " << littera.toStdString();
            const QString phase = littera.left(4);
            if (inRoadWorks)
                EXPECT_LT(phase, QStringLiteral("7100")) << where;
            else
                EXPECT_TRUE(phase >= QStringLiteral("7100") && phase <= QStringLiteral("7199")) << where;
            if (!previousLittera.isEmpty()) {
                EXPECT_GT(littera, previousLittera) << where;
                EXPECT_GT(normalisedLittera(littera), normalisedLittera(previousLittera)) << where;
            }
            previousLittera = littera;
            EXPECT_FALSE(isBlank(heading)) << where;
            EXPECT_TRUE(isBlank(unit) && isBlank(a) && isBlank(b) && isBlank(c)) << where;
            if (isCapitalString(heading)) {
                captionSeen = true;
                if (inRoadWorks) ++roadCaptions;
                if (phase >= QStringLiteral("7170") && phase <= QStringLiteral("7199"))
                    ++superstructureCaptions;
            } else {
                EXPECT_TRUE(captionSeen)
                    << where << ": a second-level caption before the block's first caption";
            }
            priceRowAbove = false;
            continue;
        }

        // Rows without a littera must not read as captions, or the lists would take them for one.
        EXPECT_FALSE(isCapitalString(heading)) << where << ": " << heading.toStdString();
        EXPECT_TRUE(captionSeen) << where << ": a priced row before the block's first caption";
        if (!isBlank(b)) {
            ++entries;
            EXPECT_FALSE(isBlank(heading)) << where;
            EXPECT_FALSE(isBlank(unit)) << where;
            const auto pa = price(a), pb = price(b), pc = price(c);
            ASSERT_TRUE(pa && pb && pc) << where << ": prices must be numbers with a decimal comma";
            EXPECT_TRUE(*pa > 0 && *pa <= *pb && *pb <= *pc) << where << ": A <= B <= C";
            EXPECT_FALSE(b.contains(QLatin1Char('.'))) << where << ": decimal comma expected";
            priceRowAbove = true;
        } else {
            // A continuation row: more text for the item above, no unit and no prices.
            EXPECT_TRUE(priceRowAbove) << where << ": a continuation row without an item above it";
            EXPECT_TRUE(isBlank(unit) && isBlank(a) && isBlank(c)) << where;
        }
    }
    EXPECT_TRUE(inRoadWorks) << "no " << kRoadWorks.toStdString() << " row";
    EXPECT_GE(entries, 150);
    EXPECT_GE(roadCaptions, 1);
    EXPECT_GE(superstructureCaptions, 1);
}
