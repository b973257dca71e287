#include "LineBlock.h"

#include "UnicodeProperties.h"
#include "UnitScan.h"

#include <algorithm>
#include <cstdint>

namespace {

using LineBlock::Change;

/// The offset of the last unit of the selection; for a caret, its offset.
Offset lastSelected(SourceRange selection) {
    return selection.isEmpty() ? selection.upper : selection.upper - 1;
}

/// The edits that `editLine` returns for the lines of `selection`. It is called with the start of each line.
template <class EditLine>
std::vector<TextEdit> editLines(const SourceText& in, SourceRange selection, EditLine editLine) {
    std::vector<TextEdit> edits;
    const std::u16string_view text = in.units();
    const Offset last = lastSelected(selection);
    for (Offset line = in.lineStart(selection.lower); line <= last;) {
        if (std::optional<TextEdit> edit = editLine(line)) {
            edits.push_back(*std::move(edit));
        }
        const auto lineFeed = UnitScan::findAny(text.data(), line, std::ssize(text), u'\n');
        if (lineFeed == std::ssize(text)) {
            break;
        }
        line = static_cast<Offset>(lineFeed + 1);
    }
    return edits;
}

/// `edits` with the selection after them: its start moves by `firstDelta`, but not to an earlier line; its
/// end moves by the sum of all changes in length. None if there are no edits.
std::optional<Change> change(std::vector<TextEdit> edits, const SourceText& in, SourceRange selection,
                             std::int64_t firstDelta) {
    if (edits.empty()) {
        return std::nullopt;
    }
    std::int64_t delta = 0;
    for (const TextEdit& edit : edits) {
        delta += edit.delta();
    }
    const std::int64_t lower =
        std::max<std::int64_t>(selection.lower + firstDelta, in.lineStart(selection.lower));
    const std::int64_t upper = std::max(selection.upper + delta, lower);
    return Change{std::move(edits), {lower, upper}};
}

/// The lines of `selection` without spaces and tabs before and without any white space after.
SourceRange core(const SourceText& in, SourceRange selection) {
    const SourceRange block = LineBlock::lines(in, selection);
    const std::u16string_view units = in.units(block);
    const auto isBlank = [](char16_t unit) { return unit == u' ' || unit == u'\t'; };
    const auto isWhitespace = [](char16_t unit) {
        return UnicodeProperties::isWhitespace(static_cast<char32_t>(unit));
    };
    const auto start = std::ranges::find_if_not(units, isBlank);
    const auto end = std::find_if_not(units.rbegin(), std::reverse_iterator(start), isWhitespace).base();
    return SourceRange(start - units.begin(), end - units.begin()).shifted(block.lower);
}

Change comment(SourceRange core) {
    constexpr std::u16string_view opener = u"<!-- ";
    constexpr std::u16string_view closer = u" -->";
    return {{TextEdit::insert(std::u16string(opener), core.lower),
             TextEdit::insert(std::u16string(closer), core.upper)},
            {core.lower, core.upper + std::ssize(opener) + std::ssize(closer)}};
}

/// Removes the delimiters of `comment`, each with one space inside it. If there is only one space, the opener
/// takes it.
Change uncomment(const SourceText& in, SourceRange comment) {
    const std::u16string_view units = in.units(comment);
    const Offset opener = units.starts_with(u"<!-- ") ? 5 : 4;
    const Offset closer = units.ends_with(u" -->") && units.size() >= opener + 4 ? 4 : 3;
    return {{TextEdit::deleteRange(SourceRange::at(comment.lower, opener)),
             TextEdit::deleteRange({comment.upper - closer, comment.upper})},
            {comment.lower, comment.upper - opener - closer}};
}

} // namespace

SourceRange LineBlock::lines(const SourceText& in, SourceRange selection) {
    return {in.lineStart(selection.lower), in.lineEnd(lastSelected(selection))};
}

std::optional<Change> LineBlock::indent(const SourceText& in, SourceRange selection,
                                        std::u16string_view unit) {
    precondition(selection.upper <= in.count(), "the selection lies inside the text");
    auto edits = editLines(in, selection, [&](Offset line) -> std::optional<TextEdit> {
        const bool isSkipped = !selection.isEmpty() && in.lineEnd(line) == line;
        return isSkipped ? std::nullopt : std::optional(TextEdit::insert(std::u16string(unit), line));
    });
    return change(std::move(edits), in, selection, std::ssize(unit));
}

std::optional<Change> LineBlock::outdent(const SourceText& in, SourceRange selection,
                                         std::u16string_view unit) {
    precondition(selection.upper <= in.count(), "the selection lies inside the text");
    auto edits = editLines(in, selection, [&](Offset line) -> std::optional<TextEdit> {
        const std::u16string_view start = in.units().substr(line, unit.size());
        const auto spaces = std::ranges::find_if(start, [](char16_t c) { return c != u' '; }) - start.begin();
        const Offset length = in.hasPrefix(u"\t", line) ? 1 : static_cast<Offset>(spaces);
        return length == 0 ? std::nullopt
                           : std::optional(TextEdit::deleteRange(SourceRange::at(line, length)));
    });
    std::int64_t firstDelta = 0;
    if (!edits.empty()) {
        const SourceRange removed = edits.front().range;
        firstDelta =
            -std::clamp<std::int64_t>(std::int64_t{selection.lower} - removed.lower, 0, removed.length());
    }
    return change(std::move(edits), in, selection, firstDelta);
}

std::optional<Change> LineBlock::toggleComment(const SourceText& in, SourceRange selection) {
    constexpr Offset shortestComment = 7;
    const SourceRange commented = core(in, selection);
    if (commented.isEmpty()) {
        return std::nullopt;
    }
    const std::u16string_view units = in.units(commented);
    const bool isComment =
        commented.length() >= shortestComment && units.starts_with(u"<!--") && units.ends_with(u"-->");
    return isComment ? uncomment(in, commented) : comment(commented);
}
