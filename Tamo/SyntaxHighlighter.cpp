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

using SyntaxHighlighter::Run;
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

/// Where lexing starts for `visible`: at most `lookBack` units before it, or before its line when that is
/// read from its start.
Offset lexStart(const Rope& text, SourceRange visible, const DocumentTree* tree, Offset lookBack) {
    const SourceRange line = text.lineRange(text.line(visible.lower));
    const Offset start = line.length() > SyntaxHighlighter::longestLine ? visible.lower : line.lower;
    const Offset anchor = tree != nullptr ? tree->lexStart(visible.lower) : start;
    const bool isFar = anchor < start && start - anchor > lookBack;
    return isFar ? start : anchor;
}

/// Whether lexing goes on from one stretch to the next, over at most `longestGap` units.
bool goesOn(SourceRange from, SourceRange to, const DocumentTree* tree, Offset longestGap) {
    const Offset gap = to.lower - from.upper;
    return gap == 0 || (gap <= longestGap && (tree == nullptr || tree->lexStart(to.lower) < from.upper));
}

/// Adds the runs of `visible`, read in one go from `start` on.
void read(const Rope& text, Offset start, std::span<const SourceRange> visible, DoctypeReading doctype,
          std::vector<Run>& runs) {
    const std::u16string units = text.units({start, visible.back().upper});
    UnitIndex index;
    Lexer lexer(units, index);
    lexer.doctype = doctype.after(start);
    auto stretch = visible.begin();
    while (const auto token = lexer.next()) {
        const SourceRange range = token->range.shifted(start);
        const bool isColoured = SyntaxHighlighter::style(token->kind).has_value();
        while (stretch != visible.end() && stretch->lower < range.upper) {
            const SourceRange shown = SourceRange::unchecked(std::max(range.lower, stretch->lower),
                                                             std::min(range.upper, stretch->upper));
            if (isColoured && shown.lower < shown.upper) {
                runs.push_back({shown, token->kind});
            }
            if (stretch->upper > range.upper) {
                break;
            }
            ++stretch;
        }
    }
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

std::vector<Run> SyntaxHighlighter::runs(const Rope& text, std::span<const SourceRange> visible,
                                         const DocumentTree* tree, DoctypeReading doctype) {
    std::vector<Run> runs;
    Offset room = longestLookBack; // What may be read between the stretches yet.
    for (std::size_t first = 0; first < visible.size();) {
        const Offset start = lexStart(text, visible[first], tree, first == 0 ? longestLookBack : room);
        if (first > 0) {
            room -= std::min(room, visible[first].lower - start);
        }
        std::size_t end = first + 1;
        while (end < visible.size() && goesOn(visible[end - 1], visible[end], tree, room)) {
            room -= visible[end].lower - visible[end - 1].upper;
            ++end;
        }
        read(text, start, visible.subspan(first, end - first), doctype, runs);
        first = end;
    }
    return runs;
}

void SyntaxHighlighter::highlight(TextView& view, const TextBuffer& buffer, const DocumentTree* tree,
                                  DoctypeReading doctype) {
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
    const std::vector<Run> found = runs(buffer.text(), stretches, tree, doctype);
    auto run = found.begin();
    std::vector<AttributeRuns::Run> coloured;
    for (const SourceRange stretch : stretches) {
        coloured.clear();
        for (; run != found.end() && run->range.lower < stretch.upper; ++run) {
            coloured.push_back({run->range, looks[static_cast<std::size_t>(run->kind)]});
        }
        view.setTemporaryAttributes(stretch, coloured);
    }
}
