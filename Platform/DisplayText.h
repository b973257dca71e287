#pragma once

#include <QString>

#include <string_view>

/// What a text view draws for `units`, unit for unit: what would be invisible, end a line or turn the order
/// of its neighbours is replaced by a stand-in that can be seen. These are control and format characters
/// other than tab (CR and LF among them), line and paragraph separators, bidirectional controls, the object
/// replacement character, a byte-order mark, blank letters, lone surrogates, and marks that have no character
/// to stand on. `units` start with a character as a reader sees it. Offsets into the answer are offsets into
/// `units`.
QString displayText(std::u16string_view units);
