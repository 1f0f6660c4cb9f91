#pragma once
// Captions of the document windows: project part + kind suffix + " Ei muutettu" while the
// document has no unsaved changes. The windows of one project are found by their captions.
#include <QString>

namespace shell {

extern const QString kUnchangedMarker;    // " Ei muutettu"
extern const QString kSuffixBasic;        // " (Perustiedot)"
extern const QString kSuffixDetailed;     // " (Yksityiskohtaiset tiedot)"
extern const QString kSuffixCard;         // " (Ominaistietokortti)"
extern const QString kSuffixCharge;       // " (Panostilakortti)"
extern const QString kSuffixUnitPrices;   // " (Yksikköhintaluettelo)"
extern const QString kSuffixRequirements; // " (Laatuvaatimusluettelo)"

struct ParsedCaption {
    QString directory; // ends in the separator; empty for a project never saved
    QString name;
    bool unchanged = false;
    QString project() const { return directory + name; }
};

// Splits a caption or a plain file path. "\" and "/" both separate folders.
ParsedCaption ParseFileName(const QString& caption);

// The kind suffix of a project window kind 1..4; empty for other kinds.
QString KindSuffix(int kind);

// The caption of a project window: project + suffix (+ marker when unchanged).
QString MakeCaption(const QString& project, int kind, bool unchanged);

// Removes or adds the marker at the end of a caption.
QString CaptionTouched(const QString& caption);
QString CaptionUntouched(const QString& caption);
bool CaptionIsUnchanged(const QString& caption);

} // namespace shell
