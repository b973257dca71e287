#include "MarkupCheck.h"

#include "UTF16.h"
#include "UnitScan.h"

namespace {

using Rule = Violation::Rule;

bool isReserved(std::u16string_view target) {
    return target.size() == 3 && (target[0] | 0x20) == u'x' && (target[1] | 0x20) == u'm' &&
           (target[2] | 0x20) == u'l';
}

} // namespace

void MarkupCheck::checkComment(std::u16string_view units, SourceRange content,
                               std::vector<Violation>& violations) {
    const auto end = static_cast<std::ptrdiff_t>(content.upper);
    for (auto at = UnitScan::findAny(units.data(), content.lower, end, u'-'); at < end;
         at = UnitScan::findAny(units.data(), at, end, u'-')) {
        const std::ptrdiff_t lower = at;
        while (at < end && units[at] == u'-') {
            ++at;
        }
        if (at - lower > 1 || at == end) {
            violations.push_back(
                {.range = {lower, at}, .detail = content.upper, .rule = Rule::hyphensInComment});
        }
    }
}

void MarkupCheck::checkInstruction(std::u16string_view units, SourceRange content,
                                   std::vector<Violation>& violations) {
    const auto add = [&](Rule rule, Offset lower, Offset upper) {
        violations.push_back({.range = {lower, upper}, .rule = rule});
    };
    const auto upper = static_cast<Offset>(UnitScan::findNameEnd(units.data(), content.lower, content.upper));
    const auto target = units.substr(content.lower, upper - content.lower);
    if (target.empty()) {
        return add(Rule::missingTarget, content.lower - 2, content.lower);
    }
    checkName(units, {content.lower, upper}, violations);
    if (isReserved(target)) {
        add(target == u"xml" ? Rule::misplacedXMLDeclaration : Rule::reservedTarget, content.lower, upper);
    }
    if (upper < content.upper && !XMLCharacters::isSpace(units[upper])) {
        add(Rule::missingSpaceAfterTarget, upper, upper + 1);
    }
}

void MarkupCheck::checkName(std::u16string_view units, SourceRange name, std::vector<Violation>& violations) {
    const auto text = units.substr(name.lower, name.length());
    const std::size_t at = XMLCharacters::findNonName(text);
    if (at < text.size()) {
        const char32_t scalar = UTF16::scalarAt(text.data() + at, text.data() + text.size());
        violations.push_back({.range = SourceRange::at(name.lower + at, UTF16::length(scalar)),
                              .detail = name.lower,
                              .rule = Rule::invalidName});
    }
}
