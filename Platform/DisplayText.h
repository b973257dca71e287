#pragma once

#include <QString>

#include <string_view>

/// Whether a text view shows `unit` as a visible stand-in, because drawn as it is it would be invisible, end
/// a line, or turn the order of its neighbours: control characters other than tab, line and paragraph
/// separators, bidirectional controls, the object replacement character, a byte-order mark. LF does not occur
/// inside a line and counts as a control character.
bool needsStandIn(char16_t unit);

/// What a text view draws for `units`, unit for unit: those that need it are replaced by a stand-in, and so
/// are lone surrogates. A CR in last position is the end of a CRLF and becomes a space. Offsets into the
/// answer are offsets into `units`.
QString displayText(std::u16string_view units);
