#pragma once
// Where and why a reader of an outside file stopped. Readers fill in the fields; text() turns
// them into the Finnish words of the message, in one place, so every reader says "where" the
// same way and tests can check the place rather than the wording.
#include <QString>

namespace platform {

struct ReadError {
    QString what;        // what failed, in Finnish without a full stop ("tietue on vajaa")
    QString part;        // the part of a package it lay in ("xl/worksheets/sheet1.bin"); empty: none
    QString record;      // the record as its format numbers it ("0x0004", "517"); empty: none
    qint64 offset = -1;  // byte offset of the record, or where the data ran out; -1: none
    int line = -1;       // line of a text, from 1 (0 when the parser had none); -1: none
    int column = -1;     // column on that line; -1: a format read by whole lines
    qint64 size = -1;    // a size the words give (the file's, or what a part claims); -1: none
    QString detail = {}; // words that follow the place, after a colon; empty: none

    // How the place is worded. The formats read first (the project file, rich text) name a byte
    // in parentheses or put the place in the middle of the sentence; they keep their words.
    enum class Wording {
        Trailing,          // the place after the words, as text() shows below
        ByteInParentheses, // "tiedoston otsake on virheellinen (tavu 35)";
                           // with a part: "osan 1 loppumerkki puuttuu (tavu 120)"
        SizeInParentheses, // "tiedosto on liian lyhyt projektitiedostoksi (20 tavua)"; with a
                           // part: "osa 1 (900 tavua, alkaa tavusta 37) ulottuu tiedoston lopun yli"
        ByteThenDetail,    // "RTF-teksti päättyy kesken tavussa 80: tavussa 3 alkanut ryhmä ..."
    };
    Wording wording = Wording::Trailing;

    // A failure with nothing to say about where.
    static ReadError reason(const QString& what) { return ReadError{what, {}, {}, -1, -1, -1}; }
    // What failed at byte `offset`, the byte named in parentheses; `part` the numbered part.
    static ReadError atByte(const QString& what, qint64 offset, const QString& part = {});
    // What failed for a file or part of `size` bytes, the size in parentheses; a part also names
    // the byte it starts at.
    static ReadError ofSize(const QString& what, qint64 size, const QString& part = {}, qint64 offset = -1);
    // The data ran out at byte `offset`; `detail` says what was left open.
    static ReadError endsAt(const QString& what, qint64 offset, const QString& detail);

    // The words for the message, without a full stop:
    //   "tietue on vajaa (tietue 0x0004 tavussa 27)"
    //   "osa xl/workbook.bin: tietue katkeaa tavussa 12"
    //   "osa content.xml ei ole kelvollista XML:ää (rivi 3, sarake 7)"
    //   "rivi 12: lukumäärä \"x\" ei kelpaa"
    QString text() const;
};

// Puts `failure` into `out` when there is one; always false, so a reader can return it.
inline bool fail(ReadError* out, ReadError failure) {
    if (out) *out = std::move(failure);
    return false;
}

} // namespace platform
