#pragma once

#include "DoctypeReading.h"
#include "DocumentTree.h"

#include <stop_token>

/// Turns text into a tree in one forward pass over the lexer's tokens. Never fails: end tags are matched
/// with the open elements, those that match none stay as text, elements left open are closed implicitly,
/// and every problem becomes a diagnostic. Time and memory are linear in the text, whatever it holds.
namespace TreeParser {

/// The tree of `text`. Asks `stop` every 16384 tokens; once it was requested, returns the tree as it
/// stands, which the caller discards. The storage of `recycled`, a tree that nobody needs any more, is used
/// for the new one, which spares the operating system's work of handing out fresh memory.
/// `doctype` is the reading of `text`; by default all declarations are read by the letter.
DocumentTree parse(const SourceText& text, std::stop_token stop = {}, DocumentTree recycled = {},
                   DoctypeReading doctype = {});

} // namespace TreeParser
