#include "TypingAssistant.h"

#include "Lexer.h"
#include "LineBlock.h"
#include "TagExpander.h"
#include "TagMatcher.h"
#include "UnitScan.h"

#include <algorithm>

namespace {

using namespace TypingAssistant;
using TagMatcher::Context;

/// An edit that replaces `range` by `replacement`. `caret` is the offset of the caret in the text afterwards.
Edit replace(SourceRange range, std::u16string replacement, std::int64_t caret) {
    return {{TextEdit{range, std::move(replacement)}}, SourceRange::empty(caret), {}};
}

/// The same with the caret after the replacement.
Edit replace(SourceRange range, std::u16string replacement) {
    const std::int64_t end = range.lower + std::ssize(replacement);
    return replace(range, std::move(replacement), end);
}

Edit insert(std::u16string string, Offset at, Offset caret) {
    return replace(SourceRange::empty(at), std::move(string), caret);
}

std::optional<Action> change(std::optional<LineBlock::Change> change) {
    return change ? std::optional<Action>(Edit{std::move(change->edits), change->selection, {}})
                  : std::nullopt;
}

std::u16string concatenated(std::initializer_list<std::u16string_view> parts) {
    std::u16string whole;
    for (const std::u16string_view part : parts) {
        whole += part;
    }
    return whole;
}

std::optional<Action> endStartTag(const SourceText& in, Offset caret) {
    const auto name = TagMatcher::openTagName(caret, in);
    return name ? std::optional(insert(concatenated({u"></", *name, u">"}), caret, caret + 1)) : std::nullopt;
}

std::optional<Action> writeEndTag(const SourceText& in, Offset caret) {
    const bool followsBracket = caret > 0 && in.units()[caret - 1] == u'<';
    if (!followsBracket || TagMatcher::context(caret - 1, in) != Context::content) {
        return std::nullopt;
    }
    const auto name = TagMatcher::unclosedElement(caret - 1, in);
    return name ? std::optional(replace(SourceRange::empty(caret), concatenated({u"/", *name, u">"})))
                : std::nullopt;
}

std::optional<Action> openValue(const SourceText& in, Offset caret) {
    const bool followsName = caret > 0 && UnitScan::isName(in.units()[caret - 1]);
    if (!followsName || TagMatcher::context(caret, in) != Context::tag) {
        return std::nullopt;
    }
    return insert(u"=\"\"", caret, caret + 2);
}

std::optional<Action> stepOverQuote(char16_t quote, const SourceText& in, Offset caret) {
    const bool isBeforeQuote = caret < in.count() && in.units()[caret] == quote;
    if (!isBeforeQuote || TagMatcher::context(caret, in) != Context::attributeValue) {
        return std::nullopt;
    }
    return Edit{{}, SourceRange::empty(caret + 1), {}};
}

/// The state of the editor. The call operators return the action for each kind of input.
struct Handler {
    const SourceText& text;
    SourceRange selection;
    std::u16string unit; ///< One level of indentation.
    bool inSnippet;

    std::optional<Action> operator()(const Character& typed) const {
        if (!selection.isEmpty() || typed.string.size() != 1) {
            return std::nullopt;
        }
        const Offset caret = selection.lower;
        switch (const char16_t character = typed.string.front()) {
        case u'>':
            return endStartTag(text, caret);
        case u'/':
            return writeEndTag(text, caret);
        case u'=':
            return openValue(text, caret);
        case u'"':
        case u'\'':
            return stepOverQuote(character, text, caret);
        default:
            return std::nullopt;
        }
    }

    std::optional<Action> operator()(Newline) const {
        const std::u16string start = concatenated({text.lineEnding(), text.indentation(selection.lower)});
        if (!followsStartTag()) {
            return replace(selection, start);
        }
        const std::u16string inner = concatenated({start, unit});
        const bool precedesEndTag = text.hasPrefix(u"</", selection.upper);
        return replace(selection, precedesEndTag ? concatenated({inner, start}) : inner,
                       selection.lower + std::ssize(inner));
    }

    std::optional<Action> operator()(Tab) const {
        if (auto expanded = expansion()) {
            return expanded;
        }
        if (inSnippet) {
            return NextPlaceholder();
        }
        const bool isWithinLine = text.units(selection).find(u'\n') == std::u16string_view::npos;
        return isWithinLine ? replace(selection, unit) : change(LineBlock::indent(text, selection, unit));
    }

    std::optional<Action> operator()(Backtab) const {
        return inSnippet ? PreviousPlaceholder() : change(LineBlock::outdent(text, selection, unit));
    }

private:
    bool followsStartTag() const {
        const Offset start = selection.lower;
        return start > 0 && text.units()[start - 1] == u'>' &&
               TagMatcher::openTagName(start - 1, text).has_value();
    }

    std::optional<Action> expansion() const {
        if (!selection.isEmpty()) {
            return std::nullopt;
        }
        auto found = TagExpander::expansion(selection.lower, text, unit);
        // In a snippet, a mere name is what the user has just typed at a stop, and Tab moves on to the next
        // stop.
        const bool isMeant = found && !(inSnippet && Lexer::isValidName(text.units(found->range)));
        if (!isMeant || TagMatcher::context(selection.lower, text) != Context::content) {
            return std::nullopt;
        }
        auto& [range, snippet] = *found;
        std::vector<SourceRange> placeholders;
        for (const SourceRange placeholder : snippet.placeholders) {
            placeholders.push_back(placeholder.shifted(range.lower));
        }
        Edit edit = replace(range, std::move(snippet.text));
        if (!placeholders.empty()) {
            edit.selection = placeholders.front();
        }
        edit.placeholders = std::move(placeholders);
        return edit;
    }
};

} // namespace

std::optional<Action> TypingAssistant::handle(const Input& input, const SourceText& in, SourceRange selection,
                                              IndentStyle indent, bool inSnippet) {
    precondition(selection.upper <= in.count(), "the selection lies inside the text");
    return std::visit(Handler{in, selection, indent.unit(), inSnippet}, input);
}

std::optional<Action> TypingAssistant::toggleComment(const SourceText& in, SourceRange selection) {
    precondition(selection.upper <= in.count(), "the selection lies inside the text");
    return change(LineBlock::toggleComment(in, selection));
}
