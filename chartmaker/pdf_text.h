// The text layer of the PDF files the program writes.
#pragma once

#include <QByteArray>
#include <QHash>
#include <QStringList>

// Qt writes the ToUnicode map of an embedded font from the font's character map, taking
// the lowest code point that reaches each glyph. A CJK font draws an ideograph and its
// radical (U+2E80 to U+2FDF), or the katakana middle dot and U+2027, with one glyph, so
// 山 would be read back as the radical U+2F2D and 長 as U+2ED1, and a search for the name
// finds nothing.

// The code points below U+3000 that the fonts draw with the glyph of a character from
// U+3000 to U+9FFF (CJK punctuation, kana, ideographs), each mapped to the first such
// character. Needs a QGuiApplication (fonts).
QHash<char16_t, char16_t> SharedGlyphCodes(const QStringList& families);

// Puts the preferred character in place of each such code point in every ToUnicode map
// of the file. Each code keeps its four hex digits, so no length or offset in the file
// changes. Returns how many codes were changed.
int RestoreTextInPdf(QByteArray& pdf, const QHash<char16_t, char16_t>& preferred);
