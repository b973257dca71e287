#include "XMLDeclaration.h"

#include <algorithm>
#include <string>

namespace {

constexpr std::u16string_view opener = u"<?xml";

constexpr bool isSpace(char16_t unit) {
    return unit == u' ' || unit == u'\t' || unit == u'\n' || unit == u'\r';
}

std::size_t afterSpaces(std::u16string_view text, std::size_t at) {
    while (at < text.size() && isSpace(text[at])) {
        ++at;
    }
    return at;
}

/// The end of the declaration at the start of `text`. One without `?>` ends after the next `>` or before the
/// next `<`.
std::size_t end(std::u16string_view text) {
    const std::size_t closer = text.find(u"?>", opener.size());
    const std::size_t next = text.find_first_of(u"<>", opener.size());
    if (closer != std::u16string_view::npos && closer < next) {
        return closer + 2;
    }
    return next == std::u16string_view::npos ? text.size() : next + (text[next] == u'>' ? 1 : 0);
}

/// The range of the value in `name="value"` inside `declaration`; none if this does not occur.
std::optional<SourceRange> value(std::u16string_view name, std::u16string_view declaration) {
    for (std::size_t at = declaration.find(name); at != std::u16string_view::npos;
         at = declaration.find(name, at + 1)) {
        const std::size_t equals = afterSpaces(declaration, at + name.size());
        if (equals >= declaration.size() || declaration[equals] != u'=') {
            continue;
        }
        const std::size_t quote = afterSpaces(declaration, equals + 1);
        if (quote >= declaration.size() || (declaration[quote] != u'"' && declaration[quote] != u'\'')) {
            continue;
        }
        const std::size_t closer = declaration.find(declaration[quote], quote + 1);
        if (closer != std::u16string_view::npos) {
            return SourceRange(static_cast<Offset>(quote + 1), static_cast<Offset>(closer));
        }
    }
    return std::nullopt;
}

} // namespace

std::optional<XMLDeclaration> XMLDeclaration::of(std::u16string_view text) {
    text = text.substr(0, longest);
    const bool isDeclaration = text.starts_with(opener) && text.size() > opener.size() &&
                               (isSpace(text[opener.size()]) || text[opener.size()] == u'?');
    if (!isDeclaration) {
        return std::nullopt;
    }
    const std::u16string_view declaration = text.substr(0, end(text));
    const auto version = value(u"version", declaration);
    return XMLDeclaration{
        .range = {0, static_cast<Offset>(declaration.size())},
        .encoding = value(u"encoding", declaration),
        .encodingPlace = version ? version->upper + 1 : static_cast<Offset>(opener.size()),
        .quote = version ? declaration[version->upper] : u'"',
    };
}

std::u16string_view XMLDeclaration::declaredEncoding(std::u16string_view text) {
    const auto declaration = of(text);
    return declaration && declaration->encoding
               ? text.substr(declaration->encoding->lower, declaration->encoding->length())
               : std::u16string_view();
}

TextEdit XMLDeclaration::declaring(std::u16string_view name, std::u16string_view text,
                                   std::u16string_view lineEnding) {
    const auto declaration = of(text);
    if (!declaration) {
        return TextEdit::insert(std::u16string(u"<?xml version=\"1.0\" encoding=\"")
                                    .append(name)
                                    .append(u"\"?>")
                                    .append(lineEnding),
                                0);
    }
    if (declaration->encoding) {
        return {*declaration->encoding, std::u16string(name)};
    }
    std::u16string attribute = u" encoding=";
    attribute += declaration->quote;
    attribute += name;
    attribute += declaration->quote;
    return TextEdit::insert(std::move(attribute), declaration->encodingPlace);
}
