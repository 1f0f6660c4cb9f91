#pragma once
// The characters of the Symbol and Wingdings fonts. Documents written with them hold font codes,
// not characters: the byte 0xB7 in the Symbol font is a bullet, and Windows programs give such
// codes as the private-use characters U+F020..U+F0FF. Mapped to their Unicode characters, as word
// processors do when they paste such text as plain text, they show in any font.
#include <QString>

namespace platform {

enum class SymbolFont { None, Symbol, Wingdings };

// The symbol font of that name ("Symbol", "Wingdings", in any letter case); None for any other.
SymbolFont symbolFontNamed(const QString& name);

// The Unicode character of the code (0x20..0xFF, or the private-use U+F020..U+F0FF) in the font;
// 0 when the font's table has none for it. The Symbol table is complete (Adobe's Symbol encoding
// with the Windows font's euro sign); the Wingdings table holds the characters Unicode has in its
// Basic Multilingual Plane: bullets, boxes and check marks, arrows, hands, numbers in circles,
// stars, signs of the zodiac, and the like.
char16_t symbolFontCharacter(SymbolFont font, char16_t code);

} // namespace platform
