#pragma once
// The two text tests the calculations need, the blank cell and the capital string, and the
// road-works caption. The list engine has the same rules; they are kept here, inline and private to calc, so
// that the calculations do not wait for the list procedures.
// TODO(lists): use lists::BlankString and lists::CapitalString once merged.
#include <QString>
#include <QStringView>

namespace calc::detail {

// The caption of the road works at the bridge site, which closes the bridge's own block.
inline constexpr QStringView kRoadWorks = u"TIETYÖT SILTAPAIKALLA";

// A cell is blank when it is empty or holds spaces only.
inline bool isBlank(QStringView text) {
    for (const QChar c : text)
        if (c != QLatin1Char(' ')) return false;
    return true;
}

// A capital string has no lower-case letter and at least two upper-case letters. Only the
// letters a-z, å, ä, ö and A-Z, Å, Ä, Ö count; every other character is ignored.
inline bool isCapital(QStringView text) {
    int capitals = 0;
    for (const QChar qc : text) {
        const char16_t c = qc.unicode();
        if ((c >= u'a' && c <= u'z') || c == u'å' || c == u'ä' || c == u'ö') return false;
        if ((c >= u'A' && c <= u'Z') || c == u'Å' || c == u'Ä' || c == u'Ö') ++capitals;
    }
    return capitals >= 2;
}

} // namespace calc::detail
