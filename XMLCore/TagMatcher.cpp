#include "TagMatcher.h"

#include "Lexer.h"
#include "UnitScanBackward.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <vector>

namespace {

using TagMatcher::Context;
using UnitScanBackward::findLastAny;
using UnitScanBackward::nowhere;
using UnitScanBackward::Position;

/// A construct that contains no markup: what looks like markup inside it is text.
struct Construct {
    Context context;
    std::u16string_view opener;
    std::u16string_view closer;
};

constexpr std::array constructs = {
    Construct{Context::comment, u"<!--", u"-->"},
    Construct{Context::cdata, u"<![CDATA[", u"]]>"},
    Construct{Context::instruction, u"<?", u"?>"},
};

Position size(std::u16string_view text) { return static_cast<Position>(text.size()); }

/// The offset just after the first `closer` of `text` that starts at `from` or later; `nowhere` if there is
/// none.
Position closerEnd(std::u16string_view text, Position from, std::u16string_view closer) {
    for (Position at = from;; ++at) {
        at = UnitScan::findAny(text.data(), at, size(text), closer.front());
        if (at >= size(text)) {
            return nowhere;
        }
        if (text.substr(at).starts_with(closer)) {
            return at + size(closer);
        }
    }
}

/// For each construct, the offset of its last opener in `text`, or `nowhere`.
std::array<Position, constructs.size()> lastOpeners(std::u16string_view text) {
    std::array<Position, constructs.size()> openers;
    openers.fill(nowhere);
    // One search for all three openers: if a document does not contain one of them, the search goes back to
    // the start of the text.
    Position end = size(text);
    while (std::ranges::find(openers, nowhere) != openers.end()) {
        const Position at = UnitScanBackward::findLastPair(text.data(), 0, end, u'<', u'!', u'?');
        if (at == nowhere) {
            break;
        }
        for (std::size_t i = 0; i < constructs.size(); ++i) {
            if (openers[i] == nowhere && text.substr(at).starts_with(constructs[i].opener)) {
                openers[i] = at;
            }
        }
        end = at + 1;
    }
    return openers;
}

/// The range of a construct, with its opener and closer.
struct HiddenStretch {
    Position start = nowhere;
    Position end = nowhere;
};
using HiddenStretches = std::array<HiddenStretch, constructs.size()>;

/// Whether `at` lies in one of `stretches`. A construct that starts inside another one is ignored, because
/// its opener is only text.
bool isHidden(Position at, HiddenStretches stretches) {
    std::ranges::sort(stretches, {}, &HiddenStretch::start);
    Position end = 0;
    for (const HiddenStretch& stretch : stretches) {
        if (stretch.start >= end) {
            end = stretch.end;
            if (stretch.start <= at && at < end) {
                return true;
            }
        }
    }
    return false;
}

/// The context at the end of `markup`, which starts with its only `<`, that of a tag.
Context contextAfter(std::u16string_view markup) {
    for (Position at = 0;; ++at) {
        at = UnitScan::findAny(markup.data(), at, size(markup), u'>', u'"', u'\'');
        if (at >= size(markup)) {
            return Context::tag;
        }
        if (markup[at] == u'>') {
            return Context::content;
        }
        at = UnitScan::findAny(markup.data(), at + 1, size(markup), markup[at]);
        if (at >= size(markup)) {
            return Context::attributeValue;
        }
    }
}

/// The range of the name that starts at `from`; empty if there is none.
SourceRange nameRange(std::u16string_view text, Position from) {
    const bool isName = from < size(text) && UnitScan::isNameStart(text[from]);
    return {from, isName ? UnitScan::findNameEnd(text.data(), from, size(text)) : from};
}

std::u16string_view part(std::u16string_view text, SourceRange range) {
    return text.substr(range.lower, range.length());
}

/// The range of the name around `around`; none if there is no name there, or if `opener` is not directly
/// before it.
std::optional<SourceRange> nameAfter(std::u16string_view opener, Offset around, const SourceText& in) {
    const std::u16string_view before = in.units({0, around});
    const auto start = std::find_if_not(before.rbegin(), before.rend(), UnitScan::isName).base();
    if (!std::u16string_view(before.begin(), start).ends_with(opener)) {
        return std::nullopt;
    }
    const SourceRange name = nameRange(in.units(), start - before.begin());
    return name.isEmpty() ? std::nullopt : std::optional(name);
}

/// Whether `tag` starts with a start tag that ends with `>` and not with `/>`. `index` is working space for
/// the lexer.
bool opensElement(std::u16string_view tag, UnitIndex& index) {
    const SourceRange name = nameRange(tag, 1);
    if (!name.isEmpty() && tag.substr(name.upper).starts_with(u'>')) {
        return true; // Most tags are that simple.
    }
    Lexer lexer(tag, index);
    auto token = lexer.next();
    if (!token || token->kind != Token::Kind::openTagStart) {
        return false;
    }
    while ((token = lexer.next()) && lexer.mode == Lexer::Mode::tag) {
    }
    return token && token->kind == Token::Kind::tagEnd;
}

/// Finds, for each `>` of a text in descending order, the start of the construct that it closes.
class ClosedConstructs {
public:
    explicit ClosedConstructs(std::u16string_view text) : m_text(text) {}

    /// The start of the construct that ends at `end`. `nowhere` if no construct ends there, or if the units
    /// before `end` only look like a closer because the opener was closed before. Call it with descending
    /// `end`.
    Position openerOf(Position end) {
        for (std::size_t i = 0; i < constructs.size(); ++i) {
            if (m_text.substr(0, end).ends_with(constructs[i].closer)) {
                const Found& found = lastBefore(end - size(constructs[i].closer), i);
                return found.end == end ? found.start : nowhere;
            }
        }
        return nowhere;
    }

private:
    struct Found {
        Position start = 0;
        Position end = 0; ///< Just after its closer.
    };

    /// The construct with the last opener that ends at or before `limit`.
    const Found& lastBefore(Position limit, std::size_t construct) {
        const auto& [context, opener, closer] = constructs[construct];
        std::optional<Found>& found = m_found[construct];
        const bool isStale = !found || (found->start != nowhere && found->start + size(opener) > limit);
        if (isStale) {
            const Position start = UnitScanBackward::findLastSequence(m_text.data(), 0, limit, opener);
            found = {start, start == nowhere ? nowhere : closerEnd(m_text, start + size(opener), closer)};
        }
        return *found;
    }

    std::u16string_view m_text;
    std::array<std::optional<Found>, constructs.size()> m_found;
};

} // namespace

Context TagMatcher::context(Offset at, const SourceText& in) {
    const std::u16string_view before = in.units({0, at});
    const auto openers = lastOpeners(before);
    HiddenStretches closed;
    for (std::size_t i = 0; i < constructs.size(); ++i) {
        const auto& [context, opener, closer] = constructs[i];
        if (openers[i] != nowhere) {
            const Position end = closerEnd(before, openers[i] + size(opener), closer);
            if (end == nowhere) {
                return context;
            }
            closed[i] = {openers[i], end};
        }
    }
    const Position start = findLastAny(before.data(), 0, size(before), u'<');
    return start == nowhere || isHidden(start, closed) ? Context::content
                                                       : contextAfter(before.substr(start));
}

std::optional<std::u16string> TagMatcher::openTagName(Offset endingAt, const SourceText& in) {
    const std::u16string_view before = in.units({0, endingAt});
    if (before.ends_with(u'/') || context(endingAt, in) != Context::tag) {
        return std::nullopt;
    }
    const Position start = findLastAny(before.data(), 0, size(before), u'<');
    const std::u16string_view name = part(in.units(), nameRange(in.units(), start + 1));
    return name.empty() ? std::nullopt : std::optional<std::u16string>(name);
}

std::optional<std::u16string> TagMatcher::unclosedElement(Offset before, const SourceText& in) {
    const std::u16string_view text = in.units({0, before});
    std::vector<SourceRange> closed; // The names of end tags whose start tags are not found yet.
    bool mayHoldInstructions = true;
    Position at = size(text);
    while ((at = findLastAny(text.data(), 0, at, u'>')) != nowhere) {
        const auto construct = std::ranges::find_if(constructs, [&](const Construct& candidate) {
            return text.substr(0, at + 1).ends_with(candidate.closer);
        });
        if (construct != constructs.end() &&
            (construct->context != Context::instruction || mayHoldInstructions)) {
            const Position opener = UnitScanBackward::findLastSequence(
                text.data(), 0, at + 1 - size(construct->closer), construct->opener);
            if (opener != nowhere) {
                at = opener;
                continue;
            }
            if (construct->context != Context::instruction) {
                return std::nullopt;
            }
            mayHoldInstructions = false;
        }
        const Position start = findLastAny(text.data(), 0, at, u'<');
        if (start == nowhere) {
            return std::nullopt;
        }
        const SourceRange name = nameRange(text, start + 1);
        if (text[start + 1] == u'/') {
            closed.push_back(nameRange(text, start + 2));
        } else if (!name.isEmpty() && text[at - 1] != u'/') {
            const auto isSame = [&](SourceRange other) { return in.equals(name, other); };
            const auto match = std::find_if(closed.rbegin(), closed.rend(), isSame);
            if (match == closed.rend()) {
                return std::u16string(part(text, name));
            }
            // The end tags above it belong to elements inside this one whose start tags are missing. Each
            // name is compared at most once more, because the search ends when a name is not found.
            closed.erase(std::prev(match.base()), closed.end());
        }
        at = start;
    }
    return std::nullopt;
}

std::optional<SourceRange> TagMatcher::startTagName(Offset around, const SourceText& in) {
    return nameAfter(u"<", around, in);
}

std::optional<SourceRange> TagMatcher::endTagName(Offset around, const SourceText& in) {
    return nameAfter(u"</", around, in);
}

std::optional<SourceRange> TagMatcher::matchingCloseName(Offset forStartTagAt, const SourceText& in) {
    precondition(forStartTagAt <= in.count(), "the start tag lies inside the text");
    if (nameRange(in.units(), forStartTagAt + 1).isEmpty() || in.units()[forStartTagAt] != u'<') {
        return std::nullopt;
    }
    UnitIndex index;
    Lexer lexer(in.units(), index, forStartTagAt, in.count(), Lexer::Mode::content);
    Offset depth = 0;
    bool isInStartTag = false;
    Position start = 0;
    for (Token::Kind kind; (kind = lexer.scan(start)) != Lexer::noToken;) {
        switch (kind) {
        case Token::Kind::openTagStart:
            if (depth == 0 && start != Position{forStartTagAt}) {
                return std::nullopt;
            }
            isInStartTag = true;
            break;
        case Token::Kind::tagEnd:
            depth += isInStartTag ? 1 : 0;
            isInStartTag = false;
            break;
        case Token::Kind::selfCloseEnd:
            if (depth == 0) {
                return std::nullopt;
            }
            isInStartTag = false;
            break;
        case Token::Kind::closeTagStart:
            isInStartTag = false;
            if (depth <= 1) {
                const SourceRange name = nameRange(in.units(), lexer.position);
                return depth == 0 || name.isEmpty() ? std::nullopt : std::optional(name);
            }
            --depth;
            break;
        default:
            break;
        }
    }
    return std::nullopt;
}

std::optional<SourceRange> TagMatcher::matchingOpenName(Offset forEndTagAt, const SourceText& in) {
    const std::u16string_view text = in.units();
    const bool isEndTag = in.hasPrefix(u"</", forEndTagAt);
    const SourceRange closeName = nameRange(text, Position{forEndTagAt} + 2);
    if (!isEndTag || closeName.isEmpty()) {
        return std::nullopt;
    }
    ClosedConstructs closedConstructs(text);
    UnitIndex index;
    Offset unopened = 0;
    // The start of the last markup found; the markup before it ends there at the latest.
    Position markup = forEndTagAt;
    Position at = forEndTagAt;
    while ((at = findLastAny(text.data(), 0, at, u'<', u'>')) != nowhere) {
        if (text[at] == u'>') {
            const Position opener = closedConstructs.openerOf(at + 1);
            if (opener != nowhere) {
                at = markup = opener;
            }
            continue;
        }
        const std::u16string_view tag = text.substr(at, markup - at);
        markup = at;
        if (tag.starts_with(u"</")) {
            ++unopened;
        } else if (opensElement(tag, index)) {
            if (unopened == 0) {
                // Counting backwards knows less than counting forwards; if the two disagree, there is no
                // match.
                const auto start = static_cast<Offset>(at);
                const bool isMatch = matchingCloseName(start, in) == closeName;
                return isMatch ? std::optional(nameRange(text, at + 1)) : std::nullopt;
            }
            --unopened;
        }
    }
    return std::nullopt;
}
