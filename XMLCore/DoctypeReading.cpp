#include "DoctypeReading.h"

#include "DeclarationEnd.h"
#include "Lexer.h"

namespace {

constexpr std::u16string_view opener = u"<!DOCTYPE";

/// The end of the declaration that starts at `start` by the strict rule or, if there is none, with comments
/// and instructions skipped.
std::optional<std::ptrdiff_t> endOf(std::u16string_view units, std::ptrdiff_t start) {
    using DeclarationEnd::Skipping;
    for (const Skipping skipping : {Skipping::quotesOnly, Skipping::commentsAndInstructions}) {
        const auto end =
            DeclarationEnd::find(units.data(), start + std::ssize(opener), std::ssize(units), skipping);
        if (end) {
            return end;
        }
    }
    return std::nullopt;
}

} // namespace

DoctypeReading DoctypeReading::of(const SourceText& text) {
    const std::u16string_view units = text.units();
    UnitIndex index;
    Lexer lexer(units, index);
    while (const auto token = lexer.next()) {
        if (token->kind == Token::Kind::openTagStart) {
            break;
        }
        if (token->kind == Token::Kind::doctype && text.hasPrefix(opener, token->range.lower)) {
            const auto end = endOf(units, token->range.lower);
            return end ? DoctypeReading{{token->range.lower, *end}} : DoctypeReading();
        }
    }
    return {};
}

DoctypeReading DoctypeReading::after(Offset units) const {
    return declaration.lower < units ? DoctypeReading()
                                     : DoctypeReading{declaration.shifted(-std::int64_t(units))};
}
