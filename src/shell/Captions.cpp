#include "shell/Captions.h"

#include <array>

namespace shell {

const QString kUnchangedMarker = QStringLiteral(" Ei muutettu");
const QString kSuffixBasic = QStringLiteral(" (Perustiedot)");
const QString kSuffixDetailed = QStringLiteral(" (Yksityiskohtaiset tiedot)");
const QString kSuffixCard = QStringLiteral(" (Ominaistietokortti)");
const QString kSuffixCharge = QStringLiteral(" (Panostilakortti)");
const QString kSuffixUnitPrices = QStringLiteral(" (Yksikköhintaluettelo)");
const QString kSuffixRequirements = QStringLiteral(" (Laatuvaatimusluettelo)");

ParsedCaption ParseFileName(const QString& c) {
    ParsedCaption out;
    qsizetype p = c.indexOf(kUnchangedMarker);
    if (p >= 0) {
        out.unchanged = c.endsWith(kUnchangedMarker);
    } else {
        p = c.size();
    }
    const std::array<const QString*, 6> suffixes = {&kSuffixBasic,  &kSuffixDetailed,   &kSuffixCard,
                                                    &kSuffixCharge, &kSuffixUnitPrices, &kSuffixRequirements};
    qsizetype end = p;
    for (const QString* s : suffixes) {
        const qsizetype q = c.indexOf(*s);
        if (q >= 0) {
            end = q;
            break;
        }
    }
    const qsizetype s = std::max(c.lastIndexOf(QLatin1Char('\\')), c.lastIndexOf(QLatin1Char('/')));
    if (s < 0) {
        out.name = c.left(end);
    } else {
        out.directory = c.left(s + 1);
        out.name = s + 1 < end ? c.mid(s + 1, end - s - 1) : QString();
    }
    return out;
}

QString KindSuffix(int kind) {
    switch (kind) {
        case 1:
            return kSuffixBasic;
        case 2:
            return kSuffixDetailed;
        case 3:
            return kSuffixCard;
        case 4:
            return kSuffixCharge;
        default:
            return {};
    }
}

QString MakeCaption(const QString& project, int kind, bool unchanged) {
    return project + KindSuffix(kind) + (unchanged ? kUnchangedMarker : QString());
}

bool CaptionIsUnchanged(const QString& caption) {
    return caption.endsWith(kUnchangedMarker);
}

QString CaptionTouched(const QString& caption) {
    return CaptionIsUnchanged(caption) ? caption.left(caption.size() - kUnchangedMarker.size()) : caption;
}

QString CaptionUntouched(const QString& caption) {
    return CaptionIsUnchanged(caption) ? caption : caption + kUnchangedMarker;
}

} // namespace shell
