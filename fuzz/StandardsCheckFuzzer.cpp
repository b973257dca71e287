#include "Precondition.h"
#include "StandardsCheck.h"
#include "TreeParser.h"
#include "ViolationText.h"
#include "WellFormedness.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string>
#include <string_view>

namespace {

/// ASCII as it is; the other bytes stand for what documents and their declarations are made of.
std::u16string asMarkup(const std::uint8_t* data, std::size_t size) {
    constexpr std::u16string_view pieces[] = {u"<?xml version='1.",
                                              u"' standalone='yes'",
                                              u"?>",
                                              u"<!DOCTYPE a ",
                                              u"SYSTEM 'b'",
                                              u"PUBLIC \"b\" 'c'",
                                              u"[",
                                              u"]>",
                                              u"<!ENTITY b '",
                                              u"<!ENTITY % c \"",
                                              u"%c;",
                                              u"&b;",
                                              u"&#38;",
                                              u"&#37;",
                                              u"&#60;",
                                              u"<!ELEMENT a (b,c*)",
                                              u"(#PCDATA|b)*",
                                              u"<!ATTLIST a ",
                                              u"b CDATA 'c'",
                                              u"xmlns:p CDATA 'u'",
                                              u"<!NOTATION n ",
                                              u"NDATA n",
                                              u"<![INCLUDE[",
                                              u"<![IGNORE[",
                                              u"]]>",
                                              u"<!--",
                                              u"-->",
                                              u"--",
                                              u"<![CDATA[",
                                              u"<a xmlns:p='u' ",
                                              u"xmlns='v'",
                                              u"p:b='c'",
                                              u"xml:",
                                              u"<p:d>",
                                              u"</p:d>",
                                              u"<a>",
                                              u"</a>",
                                              u"<?t u?>",
                                              u"é",
                                              u"×",
                                              u"\xD83D",
                                              u"\xDE00",
                                              u"\xFFFE",
                                              u"\x85",
                                              u"&#x",
                                              u"http://www.w3.org/XML/1998/namespace"};
    std::u16string text;
    for (std::size_t at = 0; at < size; ++at) {
        if (data[at] < 0x80) {
            text.push_back(data[at]);
        } else {
            text += pieces[data[at] % std::size(pieces)];
        }
    }
    return text;
}

void checkFix(const Violation& violation, const SourceText& text) {
    if (const auto fix = ViolationText::fix(violation, text)) {
        precondition(!fix->title.empty() && TextEdit::apply(fix->edits, text.units()) != text.units(),
                     "a fix changes the text");
    }
}

} // namespace

/// Violations lie inside the text, in order, each with something to say; and what a standard finds does not
/// hang on the other.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const SourceText text(asMarkup(data, size));
    const DocumentTree tree = TreeParser::parse(text, {}, {}, DoctypeReading::of(text));
    const StandardsCheck::Findings findings = StandardsCheck::check(tree);
    Offset before = 0;
    std::size_t ofXML = 0;
    for (const Violation& violation : findings.violations) {
        precondition(before <= violation.range.lower && violation.range.upper <= text.count(),
                     "violations stand in the text, in order");
        precondition(!ViolationText::message(violation, text).empty(), "a violation says something");
        before = violation.range.lower;
        const auto source = sourceOf(violation.constraint());
        ofXML += source.standard == ConstraintSource::Standard::xml ? 1 : 0;
        constexpr std::size_t quickCount = 2000;
        if (text.count() <= quickCount) {
            checkFix(violation, text);
        }
    }
    precondition(WellFormedness::check(tree).size() == ofXML, "well-formedness does not hang on namespaces");
    const DocumentType& type = findings.type;
    for (const DocumentType::Item& item : type.items) {
        precondition(item.place.range.upper <= type.texts[item.place.text].count(),
                     "declarations lie in their text");
    }
    for (std::uint32_t i = 0; i < type.particles.size(); ++i) {
        precondition(type.particles[i].end <= type.particles.size(), "particles end inside their list");
    }
    return 0;
}
