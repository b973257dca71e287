#include "StandardsCheck.h"

#include "CheckedText.h"
#include "Namespaces.h"
#include "RandomDocument.h"
#include "RandomMarkup.h"
#include "Repeated.h"
#include "ViolationText.h"
#include "WellFormedness.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace {

std::u16string decimal(std::size_t number) {
    const std::string digits = std::to_string(number);
    return {digits.begin(), digits.end()};
}

/// A piece for each of the numbers below `count`, one behind the other.
std::u16string numbered(std::size_t count, auto piece) {
    std::u16string text;
    for (std::size_t i = 0; i < count; ++i) {
        text += piece(decimal(i));
    }
    return text;
}

/// What must hold of the violations in any text.
void checkInvariants(std::u16string_view text) {
    SCOPED_TRACE(testing::PrintToString(text));
    const CheckedText checked(text);
    Offset before = 0;
    std::size_t composed = 0;
    for (const Violation& violation : checked.findings.violations) {
        ASSERT_LE(before, violation.range.lower);
        ASSERT_LE(violation.range.lower, violation.range.upper);
        ASSERT_LE(violation.range.upper, text.size());
        before = violation.range.lower;
        if (++composed > 50) {
            continue;
        }
        ASSERT_FALSE(ViolationText::message(violation, checked.tree.text).empty());
        if (const auto fix = ViolationText::fix(violation, checked.tree.text)) {
            ASSERT_NE(TextEdit::apply(fix->edits, text), text);
        }
    }
    // Each standard by itself finds what it finds in company.
    std::vector<Violation> ofXML = checked.findings.violations;
    std::erase_if(ofXML, [](const Violation& violation) {
        return sourceOf(violation.constraint()).standard == ConstraintSource::Standard::namespaces;
    });
    ASSERT_EQ(WellFormedness::check(checked.tree), ofXML);
    ASSERT_LE(Namespaces::check(checked.tree).size() + ofXML.size(), checked.findings.violations.size());
}

constexpr std::u16string_view declared =
    u"<?xml version='1.0' encoding='UTF-8' standalone='yes'?>\n<!DOCTYPE a PUBLIC 'b' \"c\" [\n<!ELEMENT a "
    u"(b|(c,d)*)+>"
    u"<!ELEMENT b (#PCDATA|c)*><!ATTLIST a b CDATA 'c&d;' xmlns:p CDATA #FIXED 'u' e (f|g) #IMPLIED>"
    u"<!ENTITY d 'e<b/>&#38;#38;'><!ENTITY % f '<!ENTITY g \"h&#38;d;\">'>%f;<!NOTATION n SYSTEM 'o'>"
    u"<!ENTITY u SYSTEM 'v' NDATA n><!-- x - y --><?z?>]>\n<a b='&lt;' p:c=\"&#65;\" "
    u"xmlns='w'>&d;<p:b/>]]&gt;"
    u"<!-- c --><![CDATA[&]]><?t u?></a>\n";

TEST(StandardsCheck, FindsNothingInWellFormedDocuments) {
    Random random;
    for (int round = 0; round < 500; ++round) {
        // They use a prefix that they do not declare.
        const std::u16string text = RandomDocument::wellFormed(random);
        EXPECT_TRUE(WellFormedness::check(CheckedText(text).tree).empty()) << testing::PrintToString(text);
    }
}

TEST(StandardsCheck, KeepsItsInvariantsOnAnyText) {
    Random random;
    RandomMarkup markup(random);
    for (int round = 0; round < 400; ++round) {
        std::u16string text;
        switch (random.below(5)) {
        case 0:
            text = markup.tagSoup();
            break;
        case 1:
            text = markup.pieces();
            break;
        case 2:
            text = RandomDocument::broken(random);
            break;
        default:
            text = declared;
            for (std::size_t places = 1 + random.below(4); places > 0; --places) {
                markup.damage(text);
            }
            break;
        }
        checkInvariants(text);
    }
}

TEST(StandardsCheck, TakesEveryPrefixAndSuffix) {
    for (std::size_t at = 0; at <= declared.size(); ++at) {
        checkInvariants(declared.substr(0, at));
        checkInvariants(declared.substr(at));
    }
}

TEST(StandardsCheck, HoldsDocumentsOfVersion1_1ToItsRules) {
    struct Row {
        std::u16string_view content;
        std::size_t in1_0, in1_1; ///< How many violations.
    };
    for (const Row& row : {
             Row{u"<a>&#1;</a>", 1, 0},
             Row{u"<a>&#0;</a>", 1, 1},
             Row{u"<a>\x1</a>", 1, 1},
             Row{u"<a>\x7F</a>", 0, 1},
             Row{u"<a>\x80</a>", 0, 1},
             Row{u"<a>\x85</a>", 0, 0},
             Row{u"<a/>\x85\x2028", 1, 0},
             Row{u"<a\x85></a\x85>", 1, 0},
             Row{u"<!DOCTYPE\x85"
                 u"a><a/>",
                 1, 0},
             Row{u"<b:a xmlns:b='c'><d xmlns:b=''/></b:a>", 1, 0},
             Row{u"<b:a xmlns:b='c'><b:d xmlns:b=''/></b:a>", 2, 1},
         }) {
        const std::u16string content(row.content);
        EXPECT_EQ(CheckedText(u"<?xml version='1.0'?>" + content).findings.violations.size(), row.in1_0)
            << testing::PrintToString(content);
        EXPECT_EQ(CheckedText(u"<?xml version='1.1'?>" + content).findings.violations.size(), row.in1_1)
            << testing::PrintToString(content);
    }
}

TEST(StandardsCheck, RepeatsNoErrorOfTheParser) {
    for (const std::u16string_view text : {
             u"<a>b & c</a>",
             u"<a>&b c;</a>",
             u"<a b=&c;/>",
             u"<a \x1/>",
             u"<a></b></a>",
             u"<a></a></b>",
             u"<a/>&",
             u"<a><!-- -- ",
             u"<!DOCTYPE a [",
             u"<!DOCTYPE",
             u"<a/><b/>",
             u"<a b='' b=''/>",
             u"<a>< b</a>",
         }) {
        const CheckedText checked(text);
        EXPECT_TRUE(checked.tree.hasErrors());
        for (const Violation& violation : checked.findings.violations) {
            for (const Diagnostic& diagnostic : checked.tree.diagnostics) {
                EXPECT_TRUE(diagnostic.severity == Diagnostic::Severity::warning ||
                            diagnostic.range.lower != violation.range.lower)
                    << testing::PrintToString(text) << checked.description();
            }
        }
    }
}

TEST(StandardsCheck, BindsPrefixesOfACutOffTagForWhatFollows) {
    EXPECT_TRUE(CheckedText(u"<r><a xmlns:p='u' <p:b/></r>").findings.violations.empty());
    EXPECT_EQ(CheckedText(u"<r><s><a xmlns:p='u' <p:b/></s><p:c/></r>").findings.violations.size(), 1);
}

TEST(StandardsCheck, TakesHostileDocuments) {
    constexpr std::size_t many = 100'000;
    struct Row {
        const char* name;
        std::u16string text;
        std::size_t violations;
    };
    const auto chain = [](std::size_t count) {
        return u"<!DOCTYPE a [<!ENTITY e0 'x'>" + numbered(count, [](const std::u16string& number) {
                   const std::size_t index = std::stoul(std::string(number.begin(), number.end()));
                   const std::u16string inner = u"&e" + number + u";";
                   return u"<!ENTITY e" + decimal(index + 1) + u" '" + inner + u"<b>" + inner + u"</b>'>";
               });
    };
    constexpr std::size_t deep = 20'000;
    const Row rows[] = {
        {"entities that would grow beyond all bounds", chain(deep) + u"]><a>&e" + decimal(deep) + u";</a>",
         0},
        {"a circle of entities",
         u"<!DOCTYPE a [" +
             numbered(deep,
                      [](const std::u16string& number) {
                          const std::size_t index = std::stoul(std::string(number.begin(), number.end()));
                          return u"<!ENTITY e" + number + u" '&e" + decimal((index + 1) % deep) + u";'>";
                      }) +
             u"]><a>&e7;</a>",
         1},
        {"prefixes in scope",
         numbered(many, [](const std::u16string& number) { return u"<a xmlns:p" + number + u"='u'>"; }) +
             repeated(u"<p0:b p9:c='' p8:d=''/>", many) + repeated(u"</a>", many),
         0},
        {"prefixes of one tag",
         u"<a" +
             numbered(many,
                      [](const std::u16string& n) { return u" xmlns:p" + n + u"='u' p" + n + u":a=''"; }) +
             u"/>",
         many - 1},
        {"attributes of one tag",
         u"<a xmlns:p='u'" + numbered(many, [](const std::u16string& n) { return u" p:a" + n + u"='&b;'"; }) +
             u"/>",
         many},
        {"defaults that declare",
         u"<!DOCTYPE a [<!ATTLIST a" +
             numbered(deep, [](const std::u16string& n) { return u" xmlns:p" + n + u" CDATA 'u'"; }) +
             u">]><a>" + repeated(u"<a/>", deep) + u"</a>",
         0},
        {"bad references", u"<a>" + repeated(u"&b;&#0;]]>", many) + u"</a>", 3 * many},
        {"bare ampersands", u"<a b='" + repeated(u"&", many) + u"'/>", many},
        {"hyphens", u"<!--" + repeated(u"-- ", many) + u"--><a/>", many},
        {"texts outside the root", u"<a/>" + repeated(u"x<!---->", many), many},
        {"declarations", u"<?xml version='1.0' " + repeated(u"a='b' ", many) + u"?><a/>", many},
        {"types", repeated(u"<!DOCTYPE a>", many) + u"<a/>", many - 1},
        {"names of namespaces",
         u"<!DOCTYPE a [<!ENTITY e '" + repeated(u"x", many) + u"'>]><a>" +
             repeated(u"<b xmlns='&e;'/>", many) + u"</a>",
         0},
        {"depth", repeated(u"<a:b>", many) + repeated(u"</a:b>", many), many},
        {"subset", u"<!DOCTYPE a [" + repeated(u"<!ELEMENT a (b,c|d)>", many) + u"]><a/>", many},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(CheckedText(row.text).findings.violations.size(), row.violations) << row.name;
    }
}

} // namespace
