#pragma once
// The plain-text alternative of a composed message, made from its HTML by a
// fixed, small vocabulary: "<p>" and "</div>" become a blank line, "<br>" a
// line break, every other tag disappears, runs of spaces shrink to one,
// source line breaks join their lines, and a table of named entities gives
// their Windows-1252 characters.
//
// The rules are those of a front-to-back scan that takes one character off
// the input per step. This version walks an index instead and keeps the
// "is there a '>' / ';' / ' ' further on" answers in forward-only cursors,
// so the cost is linear in the input's length while the output stays the
// same, character for character.
#include <QByteArray>

namespace mirel {

/// HTML bytes (Windows-1252) to plain text with CR LF line breaks; never fails.
QByteArray HTML2Text(QByteArrayView html);

} // namespace mirel
