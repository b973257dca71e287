#include "AutomaticInsertions.h"

#include "Lexer.h"

#include <algorithm>
#include <type_traits>
#include <utility>

namespace {

using EndTag = AutomaticInsertions::EndTag;
using Inside = AutomaticInsertions::Inside;
using Reply = AutomaticInsertions::Reply;

constexpr std::u16string_view opener = u"</";

bool isBlank(char16_t unit) { return unit == u' ' || unit == u'\t'; }

Offset count(std::u16string_view units) { return static_cast<Offset>(units.size()); }

bool stands(std::u16string_view units, Offset at, const Rope& text) {
    return text.size() - at >= units.size() && text.units({at, at + count(units)}) == units;
}

/// What of the end tag was typed over: `</` and the start of its name.
std::u16string passed(const Inside& inside) {
    const std::u16string tag = std::u16string(opener) + inside.tag.name + u'>';
    return tag.substr(0, tag.size() - inside.rest.size());
}

/// Puts `units` and the gap in before the end tag that the caret moves through, so that the tag waits again.
Reply typeBeforeEndTag(const Inside& inside, const std::u16string& units) {
    const Offset caret = inside.lower + count(units);
    EndTag endTag = inside.tag;
    endTag.space = {inside.tag.space.lower, caret};
    return {TextEdit::insert(units + inside.tag.gap, inside.lower), caret, {}, std::move(endTag)};
}

/// Whether what was replaced from `edited.lower` to `replacedUpper` lies in `space`, its ends included.
bool holds(SourceRange space, SourceRange edited, std::int64_t replacedUpper) {
    return space.lower <= edited.lower && replacedUpper <= space.upper;
}

} // namespace

std::u16string EndTag::units() const { return gap + std::u16string(opener) + name + u'>'; }

bool AutomaticInsertions::isBalanced(std::u16string_view text) {
    // Where nothing is open at the end, a `<` after it is a token of its own in content.
    const std::u16string probe = std::u16string(text) + u'<';
    UnitIndex index;
    Lexer lexer(probe, index);
    Offset depth = 0;
    bool isInStartTag = false;
    while (true) {
        const Lexer::Mode mode = lexer.mode;
        const auto token = lexer.next();
        if (!token || token->range.upper == probe.size()) {
            return depth == 0 && mode == Lexer::Mode::content && token->range.lower == text.size();
        }
        switch (token->kind) {
        case Token::Kind::openTagStart:
            isInStartTag = true;
            break;
        case Token::Kind::tagEnd:
            depth += isInStartTag ? 1 : 0;
            break;
        case Token::Kind::closeTagStart:
            isInStartTag = false;
            depth -= depth > 0 ? 1 : 0;
            break;
        default:
            break;
        }
    }
}

// Keys

std::optional<Reply> AutomaticInsertions::type(char16_t typed, Offset caret, const Rope& text,
                                               const IsBalanced& isBalanced) {
    const State state = std::exchange(m_state, {});
    auto reply = std::visit([&](const auto& current) { return typeIn(current, typed, caret, text); }, state);
    return !reply && typed == u'/' ? enterEndTag(caret, text, isBalanced) : reply;
}

std::optional<Reply> AutomaticInsertions::typeIn(const Quotes& quotes, char16_t typed, Offset caret,
                                                 const Rope& text) const {
    const std::u16string blanks = text.units({quotes.caret - quotes.blanks, quotes.caret});
    const Offset lower = quotes.caret - quotes.blanks - 1;
    if (caret != quotes.caret || !stands(u'"' + blanks + u'"', lower, text)) {
        return std::nullopt;
    }
    if (isBlank(typed)) {
        return Reply{TextEdit::insert({typed}, caret), caret + 1, Quotes{caret + 1, quotes.blanks + 1}, {}};
    }
    if (typed != u'"' && typed != u'\'') {
        return std::nullopt;
    }
    if (typed == u'"' && blanks.empty()) {
        return Reply{{}, caret, {}, {}};
    }
    // The blanks were typed before the value, not into it.
    return Reply{TextEdit{{lower, caret + 1}, blanks + std::u16string(2, typed)}, caret, {}, {}};
}

std::optional<Reply> AutomaticInsertions::typeIn(const Inside& inside, char16_t typed, Offset caret,
                                                 const Rope& text) const {
    if (caret != inside.caret || !stands(inside.rest, caret, text)) {
        return std::nullopt;
    }
    Inside next = inside;
    ++next.caret;
    if (typed == inside.rest.front()) {
        next.rest.erase(0, 1);
        return Reply{{}, next.caret, next.rest.empty() ? State() : State(std::move(next)), {}};
    }
    if (isBlank(typed) && inside.rest == u">") {
        ++next.blanks;
        return Reply{TextEdit::insert({typed}, caret), next.caret, std::move(next), {}};
    }
    return inside.blanks > 0 ? std::nullopt : std::optional(typeBeforeEndTag(inside, passed(inside) + typed));
}

std::optional<Reply> AutomaticInsertions::typeIn(const Behind& behind, char16_t typed, Offset caret,
                                                 const Rope&) const {
    if (caret != behind.caret) {
        return std::nullopt;
    }
    Behind next = behind;
    next.typed += typed;
    if (typed != behind.rest.front()) {
        if (isBlank(typed) && behind.rest == u">") {
            return Reply{{}, caret, std::move(next), {}};
        }
        const Offset end = caret + count(next.typed);
        return behind.typed.empty() ? std::nullopt
                                    : std::optional(Reply{TextEdit::insert(next.typed, caret), end, {}, {}});
    }
    next.rest.erase(0, 1);
    if (!next.rest.empty()) {
        return Reply{{}, caret, std::move(next), {}};
    }
    const auto nameEnd = std::ranges::find_if(behind.typed, isBlank);
    const std::u16string blanks(nameEnd, behind.typed.end());
    return blanks.empty() ? Reply{{}, caret, {}, {}}
                          : Reply{TextEdit::insert(blanks, caret - 1), caret + count(blanks), {}, {}};
}

std::optional<Reply> AutomaticInsertions::enterEndTag(Offset caret, const Rope& text,
                                                      const IsBalanced& isBalanced) {
    if (m_endTags.empty()) {
        return std::nullopt;
    }
    const EndTag& endTag = m_endTags.back();
    const bool isThere = endTag.space.upper == caret && caret > endTag.space.lower &&
                         text.unit(caret - 1) == u'<' && stands(endTag.units(), caret, text);
    if (!isThere || !isBalanced({endTag.space.lower, caret - 1})) {
        return std::nullopt;
    }
    // On a line of its own the tag is indented as it was on the line that goes away.
    const Offset lineStart = text.lineStart(text.line(caret));
    const bool isLineBlank = !endTag.gap.empty() && lineStart >= endTag.space.lower &&
                             std::ranges::all_of(text.units({lineStart, caret - 1}), isBlank);
    const Offset lower = isLineBlank ? lineStart : caret - 1;
    const std::u16string indentation =
        isLineBlank ? endTag.gap.substr(endTag.gap.rfind(u'\n') + 1) : std::u16string();

    Inside inside{endTag, lower + count(indentation), 0, 0, endTag.name + u'>'};
    inside.caret = inside.lower + count(opener);
    m_endTags.pop_back();
    const SourceRange replaced = {lower, caret + count(inside.tag.gap) + count(opener)};
    const Offset end = inside.caret;
    return Reply{TextEdit{replaced, indentation + std::u16string(opener)}, end, std::move(inside), {}};
}

std::optional<Reply> AutomaticInsertions::erase(Offset caret, const Rope& text) {
    const State state = std::exchange(m_state, {});
    if (const auto* behind = std::get_if<Behind>(&state);
        behind != nullptr && behind->caret == caret && !behind->typed.empty()) {
        Behind next = *behind;
        if (!isBlank(next.typed.back())) {
            next.rest.insert(0, 1, next.typed.back());
        }
        next.typed.pop_back();
        return Reply{{}, caret, std::move(next), {}};
    }
    const auto* inside = std::get_if<Inside>(&state);
    if (inside == nullptr || inside->caret != caret || !stands(inside->rest, caret, text)) {
        return std::nullopt;
    }
    Inside next = *inside;
    --next.caret;
    if (inside->blanks > 0) {
        --next.blanks;
        return Reply{TextEdit::deleteRange({caret - 1, caret}), next.caret, std::move(next), {}};
    }
    const std::u16string typed = passed(*inside);
    if (typed == opener) {
        return typeBeforeEndTag(*inside, {opener.front()});
    }
    next.rest.insert(0, 1, typed.back());
    return Reply{{}, next.caret, std::move(next), {}};
}

std::u16string AutomaticInsertions::takeUndecided() {
    const State state = std::exchange(m_state, {});
    const auto* behind = std::get_if<Behind>(&state);
    return behind != nullptr ? behind->typed : std::u16string();
}

// What happened to the text

void AutomaticInsertions::done(Reply reply) {
    m_state = std::move(reply.state);
    if (reply.endTag) {
        m_endTags.push_back(std::move(*reply.endTag));
    }
}

void AutomaticInsertions::add(char16_t typed, const TextEdit& inserted, Offset caret) {
    const std::u16string& units = inserted.replacement;
    switch (typed) {
    case u'=':
        m_state = Quotes{caret, 0};
        break;
    case u'/':
        m_state = Behind{caret, units.substr(1), {}};
        break;
    case u'>': {
        const std::size_t nameStart = 1 + opener.size();
        m_endTags.push_back(
            {SourceRange::empty(caret), {}, units.substr(nameStart, units.size() - nameStart - 1)});
        break;
    }
    default:
        break;
    }
}

void AutomaticInsertions::addLineBreak(const TextEdit& inserted, Offset caret) {
    const Offset end = inserted.range.lower + count(inserted.replacement);
    if (caret < end && !m_endTags.empty() && m_endTags.back().space.upper == end) {
        EndTag& endTag = m_endTags.back();
        endTag.gap.insert(0, inserted.replacement.substr(caret - inserted.range.lower));
        endTag.space.upper = caret;
    }
}

void AutomaticInsertions::followEdit(SourceRange edited, std::int64_t changeInLength) {
    m_state = {};
    const std::int64_t replacedUpper = edited.upper - changeInLength;
    const auto isChanged = [&](const EndTag& endTag) {
        const Offset upper = endTag.space.upper + count(endTag.units());
        return replacedUpper > endTag.space.lower && edited.lower < upper &&
               !holds(endTag.space, edited, replacedUpper);
    };
    std::erase_if(m_endTags, isChanged);
    for (EndTag& endTag : m_endTags) {
        if (holds(endTag.space, edited, replacedUpper)) {
            endTag.space = {endTag.space.lower, endTag.space.upper + changeInLength};
        } else if (replacedUpper <= endTag.space.lower) {
            endTag.space = endTag.space.shifted(changeInLength);
        }
    }
}

void AutomaticInsertions::followSelection(SourceRange selection) {
    std::erase_if(m_endTags, [&](const EndTag& endTag) {
        return selection.lower < endTag.space.lower || selection.upper > endTag.space.upper;
    });
    const bool stays = std::visit(
        [&](const auto& state) {
            if constexpr (requires { state.caret; }) {
                return selection == SourceRange::empty(state.caret);
            }
            return true;
        },
        m_state);
    if (!stays) {
        m_state = {};
    }
}
