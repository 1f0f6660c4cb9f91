#pragma once
// Where and why a reader of an outside file stopped. Readers fill in the fields; text() turns
// them into the Finnish words of the message, in one place, so every reader says "where" the
// same way and tests can check the place rather than the wording.
#include <QString>

namespace platform {

struct ReadError {
    QString what;       // what failed, in Finnish without a full stop ("tietue on vajaa")
    QString part;       // the part of a package it lay in ("xl/worksheets/sheet1.bin"); empty: none
    QString record;     // the record as its format numbers it ("0x0004", "517"); empty: none
    qint64 offset = -1; // byte offset of the record, or where the data ran out; -1: none
    int line = -1;      // line of a text, from 1 (0 when the parser had none); -1: none
    int column = -1;    // column on that line; -1: a format read by whole lines

    // A failure with nothing to say about where.
    static ReadError reason(const QString& what) { return ReadError{what, {}, {}, -1, -1, -1}; }

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
