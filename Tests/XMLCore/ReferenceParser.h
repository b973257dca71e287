#pragma once

#include "Diagnostic.h"
#include "Token.h"
#include "TreeNode.h"

#include <string_view>
#include <vector>

/// The lexer and the parser once more, written as their rules are told: token by token, one of them pushed
/// back at most, every search a plain loop. Slow, and right where the quick ones may be wrong.
namespace ReferenceParser {

/// What a parse found.
struct Result {
    std::vector<TreeNode> nodes;
    std::vector<AttributeSpan> attributes;
    std::vector<Diagnostic> diagnostics;

    bool operator==(const Result&) const = default;
};

/// Whether the parse is asked to stop from its start on.
enum class Stop : bool { notRequested, requested };

/// `doctype` is where a document type declaration ends whatever it holds; empty for none.
std::vector<Token> tokens(std::u16string_view units, SourceRange range, SourceRange doctype = {});
Result parse(std::u16string_view units, Stop stop = Stop::notRequested, SourceRange doctype = {});

/// The first `<!DOCTYPE` before any start tag, to its end by the letter, else to the end that is found past
/// comments and instructions in its brackets. Empty when there is none.
SourceRange doctype(std::u16string_view units);

} // namespace ReferenceParser
