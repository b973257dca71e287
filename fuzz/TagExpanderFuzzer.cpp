#include "Precondition.h"
#include "TagExpander.h"
#include "TreeParser.h"

#include <cstdint>
#include <string>

namespace {

void checkExpansion(const std::u16string& abbreviation) {
    const auto snippet = TagExpander::expand(abbreviation, u"\t", u"  ", false);
    if (!snippet) {
        return;
    }
    for (const SourceRange placeholder : snippet->placeholders) {
        precondition(placeholder.upper <= snippet->text.size(), "a placeholder lies inside the text");
    }
    const std::u16string root = u"<root>";
    const DocumentTree tree = TreeParser::parse(SourceText(root + snippet->text + u"</root>"));
    precondition(tree.diagnostics.empty(), "an expansion has no diagnostics");
}

} // namespace

/// Expansions have no diagnostics, and an abbreviation found in a text has the same expansion by itself. The
/// input is taken as Latin-1.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::u16string abbreviation(data, data + size);
    checkExpansion(abbreviation);
    const SourceText text(abbreviation);
    if (const auto found = TagExpander::expansion(text.count(), text, u"  ")) {
        const bool atDocumentStart = text.isWhitespace({0, found->range.lower});
        const auto snippet = TagExpander::expand(text.units(found->range), text.indentation(text.count()),
                                                 u"  ", atDocumentStart);
        precondition(snippet == found->snippet, "what is found expands by itself");
    }
    return 0;
}
