#include "SyntaxHighlighter.h"

#include "ApplicationIdentifier.h"
#include "Lexer.h"
#include "Signposter.h"
#include "TextBuffer.h"
#include "TextView.h"

#include <algorithm>
#include <array>
#include <string>

namespace {

using SyntaxHighlighter::Style;
using enum SystemColor;

constexpr Signposter signposter(applicationIdentifier, "Highlight");

constexpr std::size_t kinds = static_cast<std::size_t>(Token::Kind::invalid) + 1;

/// In the order of the kinds. A value and what is wrong share their red: the line below tells them apart.
constexpr std::array<std::optional<Style>, kinds> styles = {
    std::nullopt,                                            // text
    Style{systemBrown},                                      // entity
    Style{secondaryLabel},                                   // openTagStart
    Style{secondaryLabel},                                   // closeTagStart
    Style{systemBlue},                                       // tagName
    Style{systemOrange},                                     // attributeName
    Style{secondaryLabel},                                   // equals
    Style{systemRed},                                        // attributeValue
    Style{secondaryLabel},                                   // tagEnd
    Style{secondaryLabel},                                   // selfCloseEnd
    Style{systemGray},                                       // comment
    Style{systemTeal},                                       // cdata
    Style{systemPurple},                                     // instruction
    Style{systemPurple},                                     // doctype
    Style{systemRed, TemporaryAttributes::Underline::thick}, // invalid
};

Offset lexStart(const Rope& text, SourceRange visible, const DocumentTree* tree) {
    const SourceRange line = text.lineRange(text.line(visible.lower));
    const Offset start = line.length() > SyntaxHighlighter::longestLine ? visible.lower : line.lower;
    const Offset anchor = tree != nullptr ? tree->lexStart(visible.lower) : start;
    const bool isFar = visible.lower - anchor > SyntaxHighlighter::longestLookBack;
    return isFar ? start : anchor;
}

} // namespace

std::optional<Style> SyntaxHighlighter::style(Token::Kind of) {
    return styles.at(static_cast<std::size_t>(of));
}

TemporaryAttributes SyntaxHighlighter::attributes(Token::Kind of, const QPalette& palette) {
    const auto looks = style(of);
    return looks ? TemporaryAttributes{color(looks->color, palette), looks->underline}
                 : TemporaryAttributes{};
}

std::vector<SyntaxHighlighter::Run> SyntaxHighlighter::runs(const Rope& text, SourceRange visible,
                                                            const DocumentTree* tree) {
    const Offset start = lexStart(text, visible, tree);
    const std::u16string units = text.units({start, visible.upper});
    UnitIndex index;
    Lexer lexer(units, index);
    std::vector<Run> runs;
    while (const auto token = lexer.next()) {
        const SourceRange range = token->range.shifted(start);
        if (range.upper > visible.lower && style(token->kind)) {
            runs.push_back({{std::max(range.lower, visible.lower), range.upper}, token->kind});
        }
    }
    return runs;
}

void SyntaxHighlighter::highlight(TextView& view, const TextBuffer& buffer, const DocumentTree* tree) {
    const std::vector<SourceRange> stretches = view.visibleStretches(longestWholeLine);
    Offset count = 0;
    for (const SourceRange stretch : stretches) {
        count += stretch.length();
    }
    if (buffer.text().isEmpty() || count == 0) {
        return;
    }
    const auto interval = signposter.interval("Highlight", std::to_string(count) + " units");
    std::array<TemporaryAttributes, kinds> looks;
    for (std::size_t kind = 0; kind < kinds; ++kind) {
        looks[kind] = attributes(static_cast<Token::Kind>(kind), view.palette());
    }
    std::vector<AttributeRuns::Run> coloured;
    for (const SourceRange stretch : stretches) {
        coloured.clear();
        for (const auto& [range, kind] : runs(buffer.text(), stretch, tree)) {
            coloured.push_back({range, looks[static_cast<std::size_t>(kind)]});
        }
        view.setTemporaryAttributes(stretch, coloured);
    }
}
