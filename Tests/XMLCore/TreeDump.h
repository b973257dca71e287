#pragma once

#include "ReferenceParser.h"

#include <string>
#include <string_view>

/// The tree and the diagnostics of `text` as lines to read and compare: a node a line, indented below its
/// parent, its attributes under it; then a diagnostic a line, its fix under it.
std::string treeDump(const ReferenceParser::Result& result, std::u16string_view text);

/// `text` as UTF-8 on one line: controls, quotes, backslashes and lone surrogates escaped, between quotes.
std::string asLiteral(std::u16string_view text);
