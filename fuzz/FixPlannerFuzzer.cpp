#include "FixPlanner.h"
#include "Precondition.h"
#include "TreeParser.h"

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string>
#include <string_view>

namespace {

/// ASCII units as they are; each other byte stands for a piece of markup.
std::u16string asMarkup(const std::uint8_t* data, std::size_t size) {
    constexpr std::u16string_view pieces[] = {
        u"<item>", u"</item>", u"</itm>", u"<a b=\"", u"\" c=\"", u" b='x'", u"=\"\"", u"<!--",  u"-->",
        u"&amp;",  u"</",      u"/>",     u"é",       u"\xD83D",  u"<r>",    u"</r>",  u"<div>", u"</dvi>"};
    std::u16string text;
    for (std::size_t at = 0; at < size; ++at) {
        if (data[at] < 0x80) {
            text.push_back(data[at]);
        } else {
            text += pieces[data[at] % std::size(pieces)];
        }
    }
    return text;
}

DocumentTree parsed(const std::u16string& units) {
    const SourceText text(units);
    return TreeParser::parse(text, {}, {}, DoctypeReading::of(text));
}

} // namespace

/// The edits of a plan fit the text and never increase the number of errors, and the plan correctly reports
/// what it leaves.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::u16string text = asMarkup(data, size);
    const DocumentTree tree = parsed(text);
    const auto plan = FixPlanner::plan(tree.text);
    precondition(plan.has_value(), "a plan that is not stopped is made");
    const std::u16string after = TextEdit::apply(plan->edits, text);
    const DocumentTree fixed = parsed(after);
    precondition(fixed.diagnostics.errorCount() <= tree.diagnostics.errorCount(), "errors never grow");
    precondition(fixed.diagnostics.size() == plan->left, "a plan knows what it leaves");
    if (!plan->mayMendMore) {
        precondition(FixPlanner::plan(fixed.text)->edits.empty(), "what cannot be mended stays as it is");
    }
    for (std::size_t at = 1; at < plan->edits.size(); ++at) {
        precondition(plan->edits[at - 1].range.upper < plan->edits[at].range.lower, "edits do not touch");
    }
    for (std::size_t index = 0; index < tree.diagnostics.size(); ++index) {
        for (const Diagnostic::Fix& fix : FixPlanner::fixes(tree, index)) {
            precondition(!fix.title.empty() && TextEdit::apply(fix.edits, text) != text,
                         "a fix changes the text");
        }
    }
    return 0;
}
