#pragma once

#include "DocumentTree.h"

#include <cstddef>
#include <stop_token>
#include <string_view>
#include <vector>

/// Finds the nodes that hold a text, whatever their accents and case: the filter of the outline.
///
/// Query and document are compared unit by unit after folding each: `A` to `Z` and the accented letters of
/// Latin-1 become plain small letters (`Æ` and `æ` an `a`, `ß` an `s`, `Ð` a `d`, `Þ` a `þ`, `ð` stays);
/// every other unit stays as it is.
namespace NodeSearch {

/// The nodes that match `query`, in document order. An element matches when its name, or the name or the
/// value of one of its attributes, contains the query; every other node when the first 4096 units of its
/// content do. References are not resolved. Nothing matches the empty query, and the document never matches.
///
/// Takes time linear in the text. Asks `stop` before each node and attribute; once it was requested, returns
/// the matches so far, which the caller discards. May run on any thread.
std::vector<NodeID> matches(std::u16string_view query, const DocumentTree& in, std::stop_token stop = {});

/// Where `query` occurs in `in`, compared as `matches` does: the first `most` places from left to right, in
/// units of `in`, none overlapping the one before. The empty query occurs nowhere. Takes time linear in `in`.
std::vector<SourceRange> occurrences(std::u16string_view query, std::u16string_view in, std::size_t most);

} // namespace NodeSearch
