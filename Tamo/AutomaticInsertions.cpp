#include "AutomaticInsertions.h"

#include "Lexer.h"
#include "UnitScan.h"

#include <algorithm>
#include <utility>

namespace {

using Behind = AutomaticInsertions::Behind;
using EndTag = AutomaticInsertions::EndTag;
using Inside = AutomaticInsertions::Inside;
using Reply = AutomaticInsertions::Reply;
using State = AutomaticInsertions::State;
using Value = AutomaticInsertions::Value;

constexpr std::u16string_view opener = u"</";
constexpr Offset mostBlanks = 16;          ///< After a name that is read again.
constexpr Offset longestStartTag = 65'536; ///< Whose `<` is looked for.

bool isBlank(char16_t unit) { return unit == u' ' || unit == u'\t'; }

bool isSpace(char16_t unit) { return isBlank(unit) || unit == u'\n' || unit == u'\r'; }

Offset count(std::u16string_view units) { return static_cast<Offset>(units.size()); }

bool stands(std::u16string_view units, Offset at, const Rope& text) {
    return at <= text.size() && text.size() - at >= units.size() &&
           text.units({at, at + count(units)}) == units;
}

std::u16string tagOf(const EndTag& endTag) { return std::u16string(opener) + endTag.name + u'>'; }

/// How many units at the start of `tag`, which a `>` ends, `typed` stands for; it may have blanks before the
/// `>`. None where it is something else.
std::optional<std::size_t> lengthOfStart(std::u16string_view tag, std::u16string_view typed) {
    if (tag.starts_with(typed)) {
        return typed.size();
    }
    const std::u16string_view unended = tag.substr(0, tag.size() - 1);
    if (!typed.starts_with(unended)) {
        return std::nullopt;
    }
    const bool isEnded = typed.ends_with(u'>');
    const std::u16string_view blanks = typed.substr(unended.size(), typed.size() - unended.size() - isEnded);
    return std::ranges::all_of(blanks, isBlank) ? std::optional(unended.size() + isEnded) : std::nullopt;
}

/// Puts `units` in the place of `range`, which ends in what was typed over of an end tag, and the rest of
/// that after them, so that it waits again.
Reply changeInside(const Inside& inside, SourceRange range, std::u16string_view units, const Rope& text) {
    const std::u16string tag = tagOf(inside.tag);
    const std::u16string typed = std::u16string(units) + text.units({range.upper, inside.caret});
    const Offset caret = range.lower + count(units);
    EndTag endTag = inside.tag;
    endTag.space = {endTag.space.lower, range.lower + count(typed)};
    const std::u16string passed = tag.substr(0, tag.size() - inside.rest.size());
    return {TextEdit{{range.lower, inside.caret}, typed + inside.tag.gap + passed},
            caret,
            {},
            std::move(endTag),
            {}};
}

/// Whether what was typed over of an end tag holds the end of `range`.
bool endsInside(const Inside& inside, SourceRange range, const Rope& text) {
    return inside.tag.space.lower <= range.lower && inside.lower < range.upper &&
           range.upper <= inside.caret && stands(inside.rest, inside.caret, text);
}

bool isQuoted(const Value& value, const Rope& text) {
    const auto& [lower, upper] = value.inside;
    return upper < text.size() && text.unit(lower - 1) == text.unit(upper);
}

/// Whether what was replaced from `edited.lower` to `replacedUpper` lies in `space`, its ends included.
bool holds(SourceRange space, SourceRange edited, std::int64_t replacedUpper) {
    return space.lower <= edited.lower && replacedUpper <= space.upper;
}

/// Whether a selection is at most one place out of `range`.
bool isNear(SourceRange range, SourceRange selection) {
    return range.lower <= std::int64_t{selection.lower} + 1 &&
           selection.upper <= std::int64_t{range.upper} + 1;
}

} // namespace

std::u16string EndTag::units() const { return gap + tagOf(*this); }

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
                                               const IsBalanced& isBalanced) const {
    auto reply =
        std::visit([&](const auto& current) { return typeIn(current, typed, caret, text); }, m_state);
    return reply ? reply : enterEndTag(typed, caret, text, isBalanced);
}

std::optional<Reply> AutomaticInsertions::typeIn(const Value& value, char16_t typed, Offset caret,
                                                 const Rope& text) const {
    const auto& [inside, isOpened, isClosed] = value;
    if (caret < inside.lower || caret > inside.upper || !isQuoted(value, text)) {
        return std::nullopt;
    }
    const bool isQuote = typed == u'"' || typed == u'\'';
    const bool isClosing = typed == text.unit(inside.upper);
    if (isQuote && caret == inside.upper && !isOpened) {
        const std::u16string blanks = text.units(inside);
        if (blanks.empty() && isClosing) {
            return Reply{{}, caret, Value{inside, true}, {}, {}};
        }
        if (std::ranges::all_of(blanks, isSpace)) {
            // The blanks were typed before the value, not into it.
            const TextEdit edit{{inside.lower - 1, inside.upper + 1}, blanks + std::u16string(2, typed)};
            return Reply{edit, caret, Value{SourceRange::empty(caret), true}, {}, {}};
        }
    }
    if (isClosing && caret == inside.upper) {
        return Reply{{}, caret + 1, Value{inside, isOpened, true}, {}, {}};
    }
    // Whatever looks like markup in a value is none.
    return Reply{TextEdit::insert({typed}, caret),
                 caret + 1,
                 Value{{inside.lower, inside.upper + 1}, isOpened},
                 {},
                 {}};
}

std::optional<Reply> AutomaticInsertions::typeIn(const Inside& inside, char16_t typed, Offset caret,
                                                 const Rope& text) const {
    if (!endsInside(inside, SourceRange::empty(caret), text)) {
        return std::nullopt;
    }
    Inside next = inside;
    ++next.caret;
    if (caret == inside.caret && typed == inside.rest.front()) {
        next.rest.erase(0, 1);
        return Reply{{}, next.caret, next.rest.empty() ? State() : State(std::move(next)), {}, {}};
    }
    if (caret == inside.caret && isBlank(typed) && inside.rest == u">") {
        return Reply{TextEdit::insert({typed}, caret), next.caret, std::move(next), {}, {}};
    }
    return changeInside(inside, SourceRange::empty(caret), {&typed, 1}, text);
}

std::optional<Reply> AutomaticInsertions::typeIn(const Behind& behind, char16_t typed, Offset caret,
                                                 const Rope&) const {
    if (caret != behind.tagEnd || behind.others > 0) {
        return std::nullopt;
    }
    Behind next = behind;
    next.typed += typed;
    const auto length = lengthOfStart(next.rest, next.typed);
    if (!length) {
        if (behind.typed.empty()) {
            return std::nullopt;
        }
        next.others = count(next.typed);
        const TextEdit edit = TextEdit::insert(std::exchange(next.typed, {}), caret);
        return Reply{edit, caret + next.others, std::move(next), {}, {}};
    }
    if (*length < next.rest.size()) {
        return Reply{{}, caret, std::move(next), {}, {}};
    }
    const std::u16string blanks = next.typed.substr(next.rest.size() - 1, next.typed.size() - *length);
    return blanks.empty() ? Reply{{}, caret, {}, {}, {}}
                          : Reply{TextEdit::insert(blanks, caret - 1), caret + count(blanks), {}, {}, {}};
}

std::optional<Reply> AutomaticInsertions::typeIn(const Cut& cut, char16_t typed, Offset caret,
                                                 const Rope&) const {
    if (typed != u'/' || caret != cut.caret) {
        return std::nullopt;
    }
    return Reply{TextEdit::insert(u">", caret), caret + 1, Behind{caret + 1, cut.rest, {}, 0}, {}, {}};
}

std::optional<Reply> AutomaticInsertions::enterEndTag(char16_t typed, Offset caret, const Rope& text,
                                                      const IsBalanced& isBalanced) const {
    if (m_endTags.empty() || m_endTags.back().space.upper != caret ||
        !stands(m_endTags.back().units(), caret, text)) {
        return std::nullopt;
    }
    const EndTag& endTag = m_endTags.back();
    const std::u16string tag = tagOf(endTag);
    const SourceRange space = endTag.space;
    const Offset from = caret - std::min(space.length(), count(tag) + mostBlanks);
    const std::u16string before = text.units({from, caret});
    const std::size_t bracket = before.rfind(u'<');
    if (bracket == std::u16string::npos) {
        return std::nullopt;
    }
    const std::u16string start = before.substr(bracket) + typed;
    const auto passed = lengthOfStart(tag, start);
    const Offset tagStart = from + static_cast<Offset>(bracket);
    if (!passed || !isBalanced({space.lower, tagStart})) {
        return std::nullopt;
    }
    // On a line of its own the tag is indented as it was on the line that goes away.
    const Offset lineStart = text.lineStart(text.line(tagStart));
    const bool isLineBlank = !endTag.gap.empty() && lineStart >= space.lower &&
                             std::ranges::all_of(text.units({lineStart, tagStart}), isBlank);
    const Offset lower = isLineBlank ? lineStart : tagStart;
    const std::u16string indentation =
        isLineBlank ? endTag.gap.substr(endTag.gap.rfind(u'\n') + 1) : std::u16string();

    Inside inside{endTag, lower + count(indentation), 0, tag.substr(*passed)};
    inside.caret = inside.lower + count(start);
    const SourceRange replaced = {lower, caret + count(endTag.gap) + static_cast<Offset>(*passed)};
    const Offset end = inside.caret;
    return Reply{TextEdit{replaced, indentation + start},
                 end,
                 inside.rest.empty() ? State() : State(std::move(inside)),
                 {},
                 {}};
}

std::optional<Reply> AutomaticInsertions::erase(SourceRange range, const Rope& text) const {
    auto reply = std::visit([&](const auto& current) { return eraseIn(current, range, text); }, m_state);
    return reply ? reply : reopen(range, text);
}

std::optional<Reply> AutomaticInsertions::eraseIn(const Value& value, SourceRange range,
                                                  const Rope& text) const {
    const auto& [inside, isOpened, isClosed] = value;
    if (isClosed && range == SourceRange::at(inside.upper, 1)) {
        return Reply{{}, inside.upper, Value{inside, isOpened}, {}, {}};
    }
    const bool takesOpeningQuote =
        range.lower < inside.lower && inside.lower <= range.upper && range.upper <= inside.upper;
    if (!takesOpeningQuote || !isQuoted(value, text)) {
        return std::nullopt;
    }
    // A quote that was not typed is not what the key is meant for.
    const bool followsEqualsSign = inside.lower > 1 && text.unit(inside.lower - 2) == u'=';
    const Offset lower =
        isOpened || !followsEqualsSign ? range.lower : std::min(range.lower, inside.lower - 2);
    return Reply{
        TextEdit{{lower, inside.upper + 1}, text.units({range.upper, inside.upper})}, lower, {}, {}, {}};
}

std::optional<Reply> AutomaticInsertions::eraseIn(const Inside& inside, SourceRange range,
                                                  const Rope& text) const {
    if (!endsInside(inside, range, text)) {
        return std::nullopt;
    }
    const Offset passed = count(tagOf(inside.tag)) - count(inside.rest);
    const Offset blanks = inside.caret - inside.lower - passed;
    if (range.length() > 1 || range.upper != inside.caret || passed <= opener.size()) {
        return changeInside(inside, range, {}, text);
    }
    Inside next = inside;
    --next.caret;
    if (blanks > 0) {
        return Reply{TextEdit::deleteRange(range), next.caret, std::move(next), {}, {}};
    }
    next.rest.insert(0, 1, text.unit(range.lower));
    return Reply{{}, next.caret, std::move(next), {}, {}};
}

std::optional<Reply> AutomaticInsertions::eraseIn(const Behind& behind, SourceRange range,
                                                  const Rope& text) const {
    Behind next = behind;
    if (range.upper == behind.tagEnd && !behind.typed.empty()) {
        next.typed.pop_back();
        return Reply{{}, range.upper, std::move(next), {}, {}};
    }
    if (range.upper == behind.tagEnd && range.length() == 1 && behind.others == 0) {
        return Reply{TextEdit::deleteRange(range), range.lower, Cut{range.lower, behind.rest}, {}, {}};
    }
    const bool isCorrected = behind.tagEnd < range.lower && range.upper == behind.tagEnd + behind.others &&
                             range.lower - behind.tagEnd <= behind.rest.size() + mostBlanks;
    next.typed = isCorrected ? text.units({behind.tagEnd, range.lower}) : std::u16string();
    if (!isCorrected || !lengthOfStart(behind.rest, next.typed)) {
        return std::nullopt;
    }
    next.others = 0;
    return Reply{TextEdit::deleteRange({behind.tagEnd, range.upper}), behind.tagEnd, std::move(next), {}, {}};
}

std::optional<Reply> AutomaticInsertions::reopen(SourceRange erased, const Rope& text) const {
    const auto endTag =
        std::ranges::find(m_endTags, erased.upper, [](const EndTag& each) { return each.space.lower; });
    if (endTag == m_endTags.end() || erased.length() != 1 || text.unit(erased.lower) != u'>' ||
        !stands(endTag->units(), endTag->space.upper, text)) {
        return std::nullopt;
    }
    const SourceRange space = endTag->space;
    const Offset from = erased.lower - std::min(erased.lower, longestStartTag);
    const std::size_t bracket = text.units({from, erased.lower}).rfind(u'<');
    Reply reply{TextEdit{{erased.lower, space.upper + count(endTag->units())}, text.units(space)},
                erased.lower,
                {},
                {},
                {}};
    if (bracket != std::u16string::npos) {
        const SourceRange content = {from + static_cast<Offset>(bracket), erased.lower + space.length()};
        reply.reopened = Reopened{content, endTag->gap};
    }
    return reply;
}

std::optional<Reply> AutomaticInsertions::replace(SourceRange range, std::u16string_view units,
                                                  const Rope& text) const {
    const auto* inside = std::get_if<Inside>(&m_state);
    return inside != nullptr && endsInside(*inside, range, text)
               ? std::optional(changeInside(*inside, range, units, text))
               : std::nullopt;
}

std::optional<Reply> AutomaticInsertions::settle(Offset caret, const Rope& text) const {
    const auto* behind = std::get_if<Behind>(&m_state);
    if (behind == nullptr) {
        return replace(SourceRange::empty(caret), {}, text);
    }
    if (behind->typed.empty() || caret != behind->tagEnd) {
        return std::nullopt;
    }
    return Reply{TextEdit::insert(behind->typed, caret), caret + count(behind->typed), {}, {}, {}};
}

TextEdit AutomaticInsertions::endOfStartTag(const TextEdit& end, const Rope& text) const {
    // What was to be written is `></name>`.
    const Offset caret = end.range.lower;
    const std::size_t closed = end.replacement.find(opener);
    if (closed == std::u16string::npos) {
        return end;
    }
    std::u16string name = end.replacement.substr(closed + opener.size());
    name.pop_back();
    const std::u16string before = text.units({caret - std::min(caret, count(name)), caret});
    const std::u16string_view typed = std::u16string_view(before).substr(before.rfind(u'<') + 1);
    if (typed.size() < before.size() && name.starts_with(typed)) {
        name = typed; // What stands behind the caret goes on with it.
    }
    if (name.empty()) {
        return TextEdit::insert(u">", caret);
    }
    const std::u16string tag = std::u16string(opener) + name + u'>';
    const bool isReopened = m_reopened && m_reopened->content.lower < caret &&
                            caret <= m_reopened->content.upper &&
                            text.units({m_reopened->content.lower, caret}).rfind(u'<') == 0;
    if (!isReopened) {
        return TextEdit::insert(u'>' + tag, caret);
    }
    const SourceRange rest = {caret, m_reopened->content.upper};
    return TextEdit{rest, u'>' + text.units(rest) + m_reopened->gap + tag};
}

// What happened to the text

void AutomaticInsertions::done(Reply reply) {
    m_state = std::move(reply.state);
    if (reply.endTag) {
        m_endTags.push_back(std::move(*reply.endTag));
    }
    if (reply.reopened) {
        m_reopened = std::move(*reply.reopened);
    }
}

void AutomaticInsertions::add(char16_t typed, const TextEdit& inserted, Offset caret) {
    const std::u16string& units = inserted.replacement;
    switch (typed) {
    case u'=':
        m_state = Value{SourceRange::empty(caret), false};
        break;
    case u'/':
        m_state = Behind{caret, units.substr(1), {}, 0};
        break;
    case u'>': {
        const std::size_t tag = units.rfind(opener);
        if (tag == std::u16string::npos) {
            break;
        }
        // Only an end tag that goes back to its place stands behind more than the `>`.
        const bool isReopened = m_reopened && tag > 1;
        const std::u16string gap = isReopened ? std::exchange(m_reopened, {})->gap : std::u16string();
        const std::size_t nameStart = tag + opener.size();
        m_endTags.push_back({SourceRange::at(caret, static_cast<std::int64_t>(tag - 1 - gap.size())), gap,
                             units.substr(nameStart, units.size() - nameStart - 1)});
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
    followEditInState(edited, changeInLength);
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
    if (m_reopened) {
        SourceRange& content = m_reopened->content;
        if (replacedUpper <= content.lower) {
            content = content.shifted(changeInLength);
        } else if (content.lower < edited.lower && replacedUpper <= content.upper) {
            content = {content.lower, content.upper + changeInLength};
        } else if (edited.lower < content.upper) {
            m_reopened.reset();
        }
    }
}

void AutomaticInsertions::followEditInState(SourceRange edited, std::int64_t changeInLength) {
    const std::int64_t replacedUpper = edited.upper - changeInLength;
    const auto change = static_cast<Offset>(changeInLength); // Adds modulo 2^32.
    bool isChanged = true;
    if (auto* value = std::get_if<Value>(&m_state)) {
        SourceRange& inside = value->inside;
        if (holds(inside, edited, replacedUpper)) {
            inside = {inside.lower, inside.upper + changeInLength};
            isChanged = false;
        } else if (replacedUpper < inside.lower) {
            inside = inside.shifted(changeInLength);
            isChanged = false;
        } else {
            isChanged = edited.lower <= inside.upper;
        }
    } else if (auto* inside = std::get_if<Inside>(&m_state)) {
        SourceRange& space = inside->tag.space;
        if (replacedUpper <= inside->lower && (edited.lower >= space.lower || replacedUpper <= space.lower)) {
            inside->lower += change;
            inside->caret += change;
            space = edited.lower >= space.lower ? space : space.shifted(changeInLength);
            isChanged = false;
        } else {
            isChanged = edited.lower < inside->caret + inside->rest.size();
        }
    } else if (auto* behind = std::get_if<Behind>(&m_state)) {
        const SourceRange others = SourceRange::at(behind->tagEnd, behind->others);
        if (holds(others, edited, replacedUpper) && behind->typed.empty()) {
            behind->others += change;
            isChanged = false;
        } else if (replacedUpper <= behind->tagEnd - std::int64_t(opener.size() + behind->rest.size())) {
            behind->tagEnd += change;
            isChanged = false;
        } else {
            isChanged = edited.lower <= others.upper;
        }
    }
    if (isChanged) {
        m_state = {};
    }
}

void AutomaticInsertions::followSelection(SourceRange selection) {
    std::erase_if(m_endTags, [&](const EndTag& endTag) { return !isNear(endTag.space, selection); });
    if (m_reopened && !isNear(m_reopened->content, selection)) {
        m_reopened.reset();
    }
    bool stays = true;
    if (const auto* value = std::get_if<Value>(&m_state)) {
        stays = isNear(value->inside, selection);
    } else if (const auto* inside = std::get_if<Inside>(&m_state)) {
        stays = isNear({inside->tag.space.lower, inside->caret}, selection);
    } else if (const auto* behind = std::get_if<Behind>(&m_state)) {
        const std::int64_t length = opener.size() + behind->rest.size();
        stays = isNear({behind->tagEnd - length, behind->tagEnd + behind->others}, selection);
    } else if (const auto* cut = std::get_if<Cut>(&m_state)) {
        stays = selection == SourceRange::empty(cut->caret);
    }
    if (!stays) {
        m_state = {};
    }
}

bool AutomaticInsertions::isEmpty() const {
    return m_endTags.empty() && !m_reopened && std::holds_alternative<std::monostate>(m_state);
}
