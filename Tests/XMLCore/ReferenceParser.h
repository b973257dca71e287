#pragma once

#include "Diagnostic.h"
#include "Token.h"
#include "TreeNode.h"

#include <string_view>
#include <vector>

/// A second implementation of the lexer and the parser, written as plainly as their rules: token by token,
/// with at most one token pushed back, and every search as a simple loop. It is slow, and finds errors in the
/// fast implementation.
namespace ReferenceParser {

/// What a parse found.
struct Result {
    std::vector<TreeNode> nodes;
    std::vector<AttributeSpan> attributes;
    std::vector<Diagnostic> diagnostics;

    bool operator==(const Result&) const = default;
};

/// Whether a stop of the parse is requested before it starts.
enum class Stop : bool { notRequested, requested };

/// The tokens or the tree of the text. `doctype` is the range of a document type declaration whose end is
/// already known; empty if there is none.
std::vector<Token> tokens(std::u16string_view units, SourceRange range, SourceRange doctype = {});
Result parse(std::u16string_view units, Stop stop = Stop::notRequested, SourceRange doctype = {});

/// The range of the first `<!DOCTYPE` before any start tag: to its end by the strict rule or, if there is
/// none, to the end that is found when comments and instructions in its brackets are skipped. Empty if there
/// is none.
SourceRange doctype(std::u16string_view units);

} // namespace ReferenceParser
