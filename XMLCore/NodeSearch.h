#pragma once

#include "DocumentTree.h"

#include <cstddef>
#include <stop_token>
#include <string_view>
#include <vector>

/// Finds the nodes that contain a text, regardless of accents and case. The filter of the outline uses it.
///
/// Query and document are compared unit by unit after each unit has been folded: `A` to `Z` and the accented
/// letters of Latin-1 become plain lower-case letters (`Æ` and `æ` become `a`, `ß` becomes `s`, `Ð` becomes
/// `d`, `Þ` becomes `þ`, `ð` stays); every other unit stays as it is.
namespace NodeSearch {

/// The nodes that match `query`, in document order. An element matches if its name, or the name or the value
/// of one of its attributes, contains the query; any other node matches if the first 4096 units of its
/// content do. References are not resolved. The document never matches, and the empty query matches no node.
///
/// Takes time linear in the text. Checks `stop` before each node and attribute; after a stop request, returns
/// the matches found so far, which the caller should discard. May run on any thread.
std::vector<NodeID> matches(std::u16string_view query, const DocumentTree& in, std::stop_token stop = {});

/// Whether `node` is one of those matches.
bool isMatch(NodeID node, std::u16string_view query, const DocumentTree& in);

/// The first `most` occurrences of `query` in `in`, from left to right, as ranges of `in` that do not
/// overlap. Units are compared as in `matches`. The empty query does not occur. Takes time linear in `in`.
std::vector<SourceRange> occurrences(std::u16string_view query, std::u16string_view in, std::size_t most);

} // namespace NodeSearch
