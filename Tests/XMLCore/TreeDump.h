#pragma once

#include "ReferenceParser.h"

#include <string>
#include <string_view>

/// The tree and the diagnostics of `text` as lines to read and compare: one line per node, indented below its
/// parent and followed by its attributes, then one line per diagnostic, followed by its fix.
std::string treeDump(const ReferenceParser::Result& result, std::u16string_view text);

/// `text` as UTF-8 in quotes on one line, with controls, quotes, backslashes and lone surrogates escaped.
std::string asLiteral(std::u16string_view text);
