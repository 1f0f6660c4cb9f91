#pragma once
// The layout files of the two cards ("Tamrik30Card.dat", "Tamrik30Charge.dat"): what a card
// page prints where, in twips from the card's top-left corner.
//
// One record a line, values separated by commas, texts in double quotes (a quote inside a
// text is written twice). Blank lines are skipped. In order:
//   the font name ("" for the printing font of the settings)
//   the card's width and height
//   the number of fixed texts, then per text: "text", x, y, size (negative: bold)
//   the number of lines, then per line: x1, y1, x2, y2, width (in line widths)
//   the number of field slots, then per slot: "name", x, y, alignment
//     alignment 0 left, 2 right (ends at x), 4 centred on x; one more for bold (1, 3, 5)
// The charge chamber card's file goes on with the "Panostilat" table:
//   the number of table columns, then per column: "heading", x, y, alignment (the heading's
//     place; the column's cells follow below it with the same alignment, regular)
//   the number of table areas (0 or 1), then: x1, y1, x2, y2, width: the frame of the table,
//     whose rows stop at its bottom
#include <QByteArray>
#include <QString>
#include <vector>

namespace platform {
struct ReadError;
}

namespace print {

struct CardText {
    QString text;
    int x = 0;
    int y = 0;
    int size = 11; // points; negative for bold
};

struct CardLine {
    int x1 = 0, y1 = 0, x2 = 0, y2 = 0;
    int width = 1;
};

struct CardSlot {
    QString name; // what the slot holds, for whoever edits the file; not printed
    int x = 0;
    int y = 0;
    int alignment = 0;
};

struct CardLayout {
    QString font;
    int width = 0;
    int height = 0;
    std::vector<CardText> texts;
    std::vector<CardLine> lines;
    std::vector<CardSlot> fieldSlots;
    std::vector<CardSlot> tableColumns;
    std::vector<CardLine> tableArea;
};

// Reads a layout from the bytes of its file (Windows-1252). `withTable` reads the charge chamber
// card's table blocks too. On failure returns false with a message naming the file (`name`) and
// the line, `where` (when given) holds the line and what was wrong with it, and `layout` is left
// as it was.
bool ReadCardLayout(const QByteArray& bytes, const QString& name, bool withTable, CardLayout& layout,
                    QString* error, platform::ReadError* where = nullptr);
// Reads the layout file `name` from the folder `appPath` (ending in "/"). On failure `error`
// says what failed in Finnish, naming the file only (it can stand on the card's page);
// `detail`, when given, adds where the file was looked for and why it could not be read.
bool ReadCardLayoutFile(const QString& appPath, const QString& name, bool withTable, CardLayout& layout,
                        QString* error, QString* detail = nullptr);

inline const QString kCardLayoutFile = QStringLiteral("Tamrik30Card.dat");
inline const QString kChargeLayoutFile = QStringLiteral("Tamrik30Charge.dat");

} // namespace print
