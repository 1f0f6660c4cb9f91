#include "calc/QualityIndex.h"

#include "calc/NumberText.h"
#include "lists/ListProcedures.h"
#include "lists/Columns.h"
#include "lists/ListModel.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLocale>
#include <algorithm>
#include <array>

namespace calc {

namespace {

using namespace lists::requirementCol;

const QString kCrLf = QStringLiteral("\r\n");

// Drop-down values are known by their first character ("1 (siltakohtainen)", "Kyllä").
QChar firstChar(QStringView text) {
    return text.isEmpty() ? QChar() : text.front();
}

// "@@@@" fields: right-aligned in `width` characters, never cut.
QString padLeft(const QString& text, int width) {
    return text.rightJustified(width, QLatin1Char(' '));
}

// "!@@@@" fields: left-aligned in `width` characters, never cut.
QString padRight(const QString& text, int width) {
    return text.leftJustified(width, QLatin1Char(' '));
}

// One line of the type table: count, checked, checked per cent (blank without requirements)
// and not checked.
QString typeLine(const QString& label, int count, int checked) {
    const QString percent =
        count == 0 ? QString(7, QLatin1Char(' '))
                   : padLeft(QString::number(RoundHalfEven(static_cast<double>(checked) / count * 100)), 7);
    return label + padLeft(QString::number(count), 8) + padLeft(QString::number(checked), 6) + percent +
           padLeft(QString::number(count - checked), 10);
}

} // namespace

CaptionInfo ListViewCaption(const lists::ListModel& list, int row, int captionColumn) {
    CaptionInfo info;
    const QStringView littera = list.cell(row, kLittera);
    const QStringView text = list.cell(row, captionColumn);
    const bool roadWorks = text == lists::kRoadWorksCaption;
    if (!roadWorks && lists::BlankString(littera)) return info;
    info.littera = littera.isEmpty() ? QStringView(u" ") : littera;
    info.text = text;
    info.level = roadWorks || lists::CapitalString(text) ? 1 : 2;
    return info;
}

QualityRecord CalculateQualityIndex(const lists::ListModel& list) {
    QualityRecord rec;
    // Running sums of the current work phase (level 1) and sub-phase (level 2), and the slots
    // they are stored in when their group closes.
    float phaseMax = 0, phaseRealized = 0, subMax = 0, subRealized = 0;
    int phaseSlot = 0, subSlot = 0;
    const auto storePhase = [&] {
        rec.groupMax[phaseSlot] = phaseMax;
        rec.groupRealized[phaseSlot] = phaseRealized;
    };
    const auto storeSub = [&] {
        rec.groupMax[subSlot] = subMax;
        rec.groupRealized[subSlot] = subRealized;
    };
    const auto openGroup = [&rec](const CaptionInfo& caption) {
        rec.groupLittera.push_back(caption.littera.toString());
        rec.groupText.push_back(caption.text.toString());
        rec.groupMax.push_back(0);
        rec.groupRealized.push_back(0);
        rec.longestGroupText = std::max(rec.longestGroupText, static_cast<int>(caption.text.size()));
        return static_cast<int>(rec.groupText.size()) - 1;
    };

    for (int r = 1; r <= list.rows(); ++r) {
        const CaptionInfo caption = ListViewCaption(list, r, kText);
        if (caption.level == 1) {
            storePhase();
            storeSub();
            phaseSlot = openGroup(caption);
            subSlot = 0;
            phaseMax = phaseRealized = subMax = subRealized = 0;
            continue;
        }
        if (caption.level == 2) {
            storeSub();
            subSlot = openGroup(caption);
            subMax = subRealized = 0;
            continue;
        }
        if (lists::BlankString(list.cell(r, kNumber))) continue;

        const QChar type = firstChar(list.cell(r, kType));
        const QChar result = firstChar(list.cell(r, kFulfilled));
        const bool met = result == u'K';
        const bool failed = result == u'E';
        if (type == u'1' || type == u'2') {
            const bool type1 = type == u'1';
            (type1 ? rec.countType1 : rec.countType2)++;
            const float weight = static_cast<float>(CustomVal(list.cell(r, kWeight)));
            rec.totalMax += weight;
            phaseMax += weight;
            subMax += weight;
            if (met || failed) {
                // A failed requirement still earns the share of its weight that its factor says.
                const float earned =
                    met ? weight : static_cast<float>(CustomVal(list.cell(r, kFactor))) * weight;
                rec.totalRealized += earned;
                phaseRealized += earned;
                subRealized += earned;
                (type1 ? rec.checkedType1 : rec.checkedType2)++;
            }
        } else {
            ++rec.countType3;
            if (met || failed) ++rec.checkedType3;
        }
    }
    storePhase();
    storeSub();
    rec.groupCount = static_cast<int>(rec.groupText.size()) - 1;
    if (rec.totalMax != 0) rec.qualityNumber = rec.totalRealized / rec.totalMax * 100;
    return rec;
}

std::optional<float> WorkPhaseShare(const QualityRecord& rec, int group) {
    // Only work phases (captions in capitals) show their share of the bridge's weight.
    if (!lists::CapitalString(rec.groupText[group]) || rec.totalMax == 0) return std::nullopt;
    return rec.groupMax[group] / rec.totalMax * 100;
}

std::optional<float> WorkPhaseAchieved(const QualityRecord& rec, int group) {
    if (rec.groupMax[group] == 0) return std::nullopt;
    return rec.groupRealized[group] / rec.groupMax[group] * 100;
}

QString MakeSummaryText(const QualityRecord& rec, const QString& projectFileName,
                        const QDateTime& printedAt) {
    QString out;
    const auto line = [&out](const QString& text) { out += text + kCrLf; };
    const QLocale c = QLocale::c();

    line(QStringLiteral("TAMRIK 2006 - ") + projectFileName);
    line(QString());
    line(QStringLiteral("LAATUVAATIMUSTEN YHTEENVETO"));
    line(QStringLiteral("Tulostettu: ") + c.toString(printedAt, QStringLiteral("dd.MM.yyyy")) +
         QStringLiteral("  ") + c.toString(printedAt, QStringLiteral("HH:mm")));
    line(QString());
    line(QStringLiteral("Tyyppi") + QString(15, QLatin1Char(' ')) +
         QStringLiteral("lkm  tark.  tark%  ei tark."));
    line(QString(48, QLatin1Char('-')));
    line(typeLine(QStringLiteral("1 Siltakohtainen"), rec.countType1, rec.checkedType1));
    line(typeLine(QStringLiteral("2 KLVn mukainen "), rec.countType2, rec.checkedType2));
    line(typeLine(QStringLiteral("3 Ohjeellinen    "), rec.countType3, rec.checkedType3));
    line(QString(48, QLatin1Char('-')));
    line(typeLine(QStringLiteral("Yhteensä        "), rec.countType1 + rec.countType2 + rec.countType3,
                  rec.checkedType1 + rec.checkedType2 + rec.checkedType3));
    line(QString());
    line(QStringLiteral("Toteutunut painoarvojen summa (TotPA) koko sillalle: ") +
         DecimalS(rec.totalRealized, 0) + QStringLiteral(" (") + DecimalS(rec.totalMax, 0) +
         QStringLiteral(")"));
    line(QString());
    line(QStringLiteral("SILLAN LAATULUKU : ") + FormatHashDotHash(rec.qualityNumber) +
         QStringLiteral(" (100)"));
    line(QString());

    // The captions start under "Työvaihe" (8 characters) and take the longest caption's width.
    const int gap = std::max(1, rec.longestGroupText + 4 - 8);
    const QString header = QStringLiteral("Littera Työvaihe") + QString(gap, QLatin1Char(' ')) +
                           QStringLiteral("Pa%  TotPa  MaksPa  Tot%");
    line(header);
    line(QString(header.size(), QLatin1Char('-')));

    const QString none = QStringLiteral("-");
    const int groups = std::min<int>(rec.groupCount, static_cast<int>(rec.groupText.size()) - 1);
    for (int g = 1; g <= groups; ++g) {
        const QString& text = rec.groupText[g];
        const float max = rec.groupMax[g];
        const float realized = rec.groupRealized[g];
        const std::optional<float> sharePercent = WorkPhaseShare(rec, g);
        const std::optional<float> achievedPercent = WorkPhaseAchieved(rec, g);
        const QString share = sharePercent ? DecimalS(*sharePercent, 0) : none;
        const QString achieved = achievedPercent ? DecimalS(*achievedPercent, 0) : none;
        line(padRight(rec.groupLittera[g], 8) + padRight(text, rec.longestGroupText) + padLeft(share, 7) +
             padLeft(DecimalS(realized, 0), 7) + padLeft(DecimalS(max, 0), 7) + padLeft(achieved, 7));
    }
    return out;
}

QByteArray SummaryAsJson(const QualityRecord& rec, const QString& projectFileName) {
    const auto figure = [](std::optional<float> v) { return v ? QJsonValue(FigureValue(*v)) : QJsonValue(); };
    QJsonArray types;
    const std::array<std::array<int, 2>, 3> counts = {{{rec.countType1, rec.checkedType1},
                                                       {rec.countType2, rec.checkedType2},
                                                       {rec.countType3, rec.checkedType3}}};
    const char* const names[] = {"Siltakohtainen", "KLVn mukainen", "Ohjeellinen"};
    const auto countObject = [](int count, int checked) {
        QJsonObject o;
        o.insert(QLatin1String("count"), count);
        o.insert(QLatin1String("checked"), checked);
        o.insert(QLatin1String("unchecked"), count - checked);
        return o;
    };
    for (int t = 0; t < 3; ++t) {
        QJsonObject o = countObject(counts[t][0], counts[t][1]);
        o.insert(QLatin1String("type"), t + 1);
        o.insert(QLatin1String("name"), QString::fromUtf8(names[t]));
        types.append(o);
    }
    QJsonArray phases;
    const int groups = std::min<int>(rec.groupCount, static_cast<int>(rec.groupText.size()) - 1);
    for (int g = 1; g <= groups; ++g) {
        QJsonObject o;
        o.insert(QLatin1String("littera"), rec.groupLittera[g]);
        o.insert(QLatin1String("text"), rec.groupText[g]);
        o.insert(QLatin1String("realized"), FigureValue(rec.groupRealized[g]));
        o.insert(QLatin1String("max"), FigureValue(rec.groupMax[g]));
        o.insert(QLatin1String("sharePercent"), figure(WorkPhaseShare(rec, g)));
        o.insert(QLatin1String("achievedPercent"), figure(WorkPhaseAchieved(rec, g)));
        phases.append(o);
    }
    QJsonObject out;
    out.insert(QLatin1String("project"), projectFileName);
    out.insert(QLatin1String("qualityNumber"), FigureValue(rec.qualityNumber));
    out.insert(QLatin1String("totalRealized"), FigureValue(rec.totalRealized));
    out.insert(QLatin1String("totalMax"), FigureValue(rec.totalMax));
    out.insert(QLatin1String("types"), types);
    out.insert(QLatin1String("total"), countObject(rec.countType1 + rec.countType2 + rec.countType3,
                                                   rec.checkedType1 + rec.checkedType2 + rec.checkedType3));
    out.insert(QLatin1String("workPhases"), phases);
    return QJsonDocument(out).toJson(QJsonDocument::Indented);
}

} // namespace calc
