#include "CheckedText.h"

#include "TreeParser.h"
#include "ViolationText.h"

#include <algorithm>

namespace {

DocumentTree parsed(std::u16string_view units) {
    const SourceText text(units);
    return TreeParser::parse(text, {}, {}, DoctypeReading::of(text));
}

} // namespace

CheckedText::CheckedText(std::u16string_view units)
    : tree(parsed(units)), findings(StandardsCheck::check(tree)) {}

std::vector<SourceRange> CheckedText::ranges() const {
    std::vector<SourceRange> ranges;
    for (std::size_t i = 0; i < tree.diagnostics.size(); ++i) {
        if (tree.diagnostics.severity(i) == Diagnostic::Severity::error) {
            ranges.push_back(tree.diagnostics.range(i));
        }
    }
    for (const Violation& violation : findings.violations) {
        ranges.push_back(violation.range);
    }
    std::ranges::stable_sort(ranges, {}, &SourceRange::lower);
    return ranges;
}

std::string CheckedText::description() const {
    std::string lines;
    for (const Diagnostic& diagnostic : tree.diagnostics) {
        const bool isError = diagnostic.severity == Diagnostic::Severity::error;
        lines += diagnostic.range.description() +
                 (isError ? " error of the parser\n" : " warning of the parser\n");
    }
    for (const Violation& violation : findings.violations) {
        lines +=
            violation.range.description() + " " + std::string(sourceOf(violation.constraint()).name) + "\n";
    }
    return lines;
}

MarkedRange::MarkedRange(std::u16string_view marked) {
    const std::size_t lower = marked.find(u'⟦');
    const std::size_t upper = marked.find(u'⟧');
    text = std::u16string(marked.substr(0, lower)) +
           std::u16string(marked.substr(lower + 1, upper - lower - 1)) +
           std::u16string(marked.substr(upper + 1));
    range = {static_cast<Offset>(lower), static_cast<Offset>(upper - 1)};
}
