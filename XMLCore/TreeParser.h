#pragma once

#include "DoctypeReading.h"
#include "DocumentTree.h"

#include <stop_token>

/// Parses a text to a tree in one forward pass over the lexer's tokens. It cannot fail: an end tag that
/// matches no open element becomes text, elements left open are closed implicitly, and every problem becomes
/// a diagnostic. Memory is linear and time near-linear in the text, whatever it contains.
namespace TreeParser {

/// The tree of `text`. Checks `stop` every 16384 tokens of content; after a stop request, returns an
/// incomplete tree, which the caller should discard. The new tree reuses the storage of `recycled`, a tree
/// that is no longer needed, because the first access to fresh memory is slow. `doctype` is the reading of
/// `text`; by default the strict rule applies to every declaration.
DocumentTree parse(const SourceText& text, std::stop_token stop = {}, DocumentTree recycled = {},
                   DoctypeReading doctype = {});

} // namespace TreeParser
