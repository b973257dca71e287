#include "DocumentType.h"

#include "CheckedText.h"
#include "Repeated.h"
#include "TreeParser.h"

#include <gtest/gtest.h>

namespace {

using Content = DocumentType::Content;
using Default = DocumentType::Default;
using ItemKind = DocumentType::Item::Kind;
using Occurrence = DocumentType::Occurrence;
using Particle = DocumentType::Particle;
using Type = DocumentType::AttributeType;

DocumentType typeOf(std::u16string_view units) {
    const SourceText text(units);
    return DocumentType::read(TreeParser::parse(text, {}, {}, DoctypeReading::of(text)));
}

/// A content model as it would be written with all parentheses and without white space.
std::u16string written(const DocumentType& type, std::uint32_t first) {
    const Particle& particle = type.particles[first];
    std::u16string text(type.units(particle.name));
    if (particle.kind != Particle::Kind::name) {
        const std::u16string_view connector = particle.kind == Particle::Kind::choice ? u"|" : u",";
        for (std::uint32_t member = first + 1; member < particle.end; member = type.particles[member].end) {
            text += text.empty() ? u"(" : connector;
            text += written(type, member);
        }
        text += u")";
    }
    constexpr std::u16string_view signs[] = {u"", u"?", u"*", u"+"};
    return text.append(signs[static_cast<int>(particle.occurrence)]);
}

TEST(DocumentType, HasNothingWithoutDeclaration) {
    for (const std::u16string_view text :
         {u"", u"<a/>", u"<!--<!DOCTYPE a>--><a/>", u"<a/><!DOCTYPE a>", u"<!doctype a>"}) {
        const DocumentType type = typeOf(text);
        EXPECT_FALSE(type.isPresent());
        EXPECT_TRUE(type.items.empty());
        EXPECT_TRUE(type.mustDeclareEntities());
    }
}

TEST(DocumentType, ReadsIdentifiers) {
    const std::u16string_view text = u"<!-- a --><!DOCTYPE html PUBLIC \"-//W3C//DTD\" 'x.dtd' [ ] ><html/>";
    const DocumentType type = typeOf(text);
    EXPECT_EQ(type.range, SourceRange(10, static_cast<Offset>(text.find(u"<html/>"))));
    EXPECT_EQ(type.texts[0].units(type.name), u"html");
    EXPECT_EQ(type.units(type.external.publicLiteral), u"-//W3C//DTD");
    EXPECT_EQ(type.units(type.external.systemLiteral), u"x.dtd");
    EXPECT_EQ(type.texts[0].units(*type.subset), u" ");
    EXPECT_TRUE(type.hasUnread);
    EXPECT_FALSE(type.mustDeclareEntities());
    EXPECT_TRUE(type.violations.empty());
}

TEST(DocumentType, ReadsElementsWithTheirModels) {
    struct Row {
        std::u16string_view model;
        Content content;
        std::u16string_view written;
    };
    for (const Row& row : {
             Row{u"EMPTY", Content::empty, u""},
             Row{u"ANY", Content::any, u""},
             Row{u"(#PCDATA)", Content::mixed, u""},
             Row{u"( #PCDATA | b | c )*", Content::mixed, u"b c"},
             Row{u"(b)", Content::children, u"(b)"},
             Row{u"( b , c? )+", Content::children, u"(b,c?)+"},
             Row{u"(b|(c,d*)+|((e)))?", Content::children, u"(b|(c,d*)+|((e)))?"},
         }) {
        const DocumentType type =
            typeOf(u"<!DOCTYPE a [<!ELEMENT a " + std::u16string(row.model) + u" >]><a/>");
        ASSERT_EQ(type.elements.size(), 1);
        const DocumentType::Element& element = type.elements[0];
        EXPECT_EQ(type.units(element.name), u"a");
        EXPECT_EQ(type.units(element.model), row.model);
        EXPECT_EQ(element.content, row.content);
        std::u16string particles;
        for (std::uint32_t i = element.firstParticle; i < element.particlesEnd; i = type.particles[i].end) {
            particles += (particles.empty() ? u"" : u" ") + written(type, i);
        }
        EXPECT_EQ(particles, row.written);
    }
}

TEST(DocumentType, ReadsAttributeLists) {
    const DocumentType type = typeOf(u"<!DOCTYPE a [<!ATTLIST a b CDATA #IMPLIED c (d|e) 'd' "
                                     u"f NOTATION (g) #REQUIRED h IDREFS #FIXED \"i j\">]><a/>");
    struct Row {
        std::u16string_view name;
        Type kind;
        std::u16string_view type;
        Default defaults;
        std::u16string_view value;
    };
    const Row rows[] = {
        {u"b", Type::cdata, u"CDATA", Default::implied, u""},
        {u"c", Type::enumeration, u"(d|e)", Default::value, u"d"},
        {u"f", Type::notation, u"NOTATION (g)", Default::required, u""},
        {u"h", Type::idrefs, u"IDREFS", Default::fixed, u"i j"},
    };
    ASSERT_EQ(type.attributes.size(), std::size(rows));
    for (std::size_t i = 0; i < std::size(rows); ++i) {
        const DocumentType::Attribute& attribute = type.attributes[i];
        EXPECT_EQ(type.units(attribute.element), u"a");
        EXPECT_EQ(type.units(attribute.name), rows[i].name);
        EXPECT_EQ(attribute.kind, rows[i].kind);
        EXPECT_EQ(type.units(attribute.type), rows[i].type);
        EXPECT_EQ(attribute.defaults, rows[i].defaults);
        EXPECT_EQ(type.units(attribute.value), rows[i].value);
    }
    EXPECT_EQ(type.items.size(), 1);
    EXPECT_EQ(type.items[0].end - type.items[0].first, 4);
}

TEST(DocumentType, ReadsEntitiesAndNotations) {
    const DocumentType type =
        typeOf(u"<!DOCTYPE a [<!ENTITY b 'c'><!ENTITY % d SYSTEM 'e'><!ENTITY f PUBLIC 'g' 'h' "
               u"NDATA i><!NOTATION i PUBLIC 'j'><!ENTITY b 'k'>]><a/>");
    ASSERT_EQ(type.entities.size(), 4);
    EXPECT_EQ(type.units(type.entities[0].value), u"c");
    EXPECT_TRUE(type.entities[1].isParameter);
    EXPECT_EQ(type.units(type.entities[1].external.systemLiteral), u"e");
    EXPECT_EQ(type.units(type.entities[2].external.publicLiteral), u"g");
    EXPECT_EQ(type.units(type.entities[2].notation), u"i");
    EXPECT_TRUE(type.entities[2].isUnparsed());
    ASSERT_EQ(type.notations.size(), 1);
    EXPECT_EQ(type.units(type.notations[0].external.publicLiteral), u"j");
    EXPECT_EQ(type.generalEntity(u"b"), 0);
    EXPECT_EQ(type.generalEntity(u"d"), std::nullopt);
    EXPECT_EQ(type.generalEntity(u"f"), 2);
}

TEST(DocumentType, KeepsEverythingInOrder) {
    const DocumentType type =
        typeOf(u"<!DOCTYPE a [\n<!-- b --><?c d?><!ELEMENT a ANY>%e;<!NOTATION f SYSTEM 'g'>\n]><a/>");
    const ItemKind kinds[] = {ItemKind::comment, ItemKind::instruction, ItemKind::element,
                              ItemKind::parameterReference, ItemKind::notation};
    const std::u16string_view texts[] = {u"<!-- b -->", u"<?c d?>", u"<!ELEMENT a ANY>", u"%e;",
                                         u"<!NOTATION f SYSTEM 'g'>"};
    ASSERT_EQ(type.items.size(), std::size(kinds));
    for (std::size_t i = 0; i < std::size(kinds); ++i) {
        EXPECT_EQ(type.items[i].kind, kinds[i]);
        EXPECT_EQ(type.units(type.items[i].place), texts[i]);
    }
}

TEST(DocumentType, ReadsWhatParameterEntitiesDeclareOnce) {
    const DocumentType type = typeOf(
        u"<!DOCTYPE a [<!ENTITY % b '<!ENTITY &#37; c \"<!ELEMENT d ANY>\">&#37;c;&#37;c;'>%b;%b;]><a/>");
    ASSERT_EQ(type.elements.size(), 1);
    EXPECT_EQ(type.units(type.elements[0].name), u"d");
    EXPECT_NE(type.elements[0].name.text, 0);
    EXPECT_TRUE(type.hasParameterReferences);
    EXPECT_FALSE(type.hasUnread);
    EXPECT_TRUE(type.violations.empty());
}

TEST(DocumentType, GoesOnAfterAnError) {
    const DocumentType type =
        typeOf(u"<!DOCTYPE a [<!ELEMENT><!ENTITY b><!ATTLIST c d><!ELEMENT e ANY>]><a/>");
    EXPECT_EQ(type.violations.size(), 3);
    ASSERT_EQ(type.elements.size(), 1);
    EXPECT_EQ(type.units(type.elements[0].name), u"e");
}

TEST(DocumentType, EndsWhereTheGrammarHasIt) {
    for (const std::u16string_view text : {
             u"<!DOCTYPE a [<!-- don't -->]><a>]></a>",
             u"<!DOCTYPE a [<!-- don't -->]><a>it's ]&gt;</a>",
             u"<!DOCTYPE a [<!-- don't --><?b ]>?><!ENTITY c ']>'>]><a>&c;'</a>",
         }) {
        const CheckedText checked(text);
        EXPECT_EQ(checked.findings.type.range.upper, text.find(u"<a>")) << checked.description();
        EXPECT_TRUE(checked.findings.violations.empty()) << checked.description();
    }
}

TEST(DocumentType, TakesHostileSubsets) {
    constexpr std::size_t many = 20'000;
    std::u16string chain = u"<!ENTITY % e0 ''>";
    std::u16string deepModel = u"<!ELEMENT a " + repeated(u"(", many) + u"b" + repeated(u")", many) + u">";
    for (std::size_t i = 1; i < many; ++i) {
        const auto number = [](std::size_t value) {
            const std::string digits = std::to_string(value);
            return std::u16string(digits.begin(), digits.end());
        };
        chain +=
            u"<!ENTITY % e" + number(i) + u" '&#37;e" + number(i - 1) + u";&#37;e" + number(i - 1) + u";'>";
    }
    chain += u"%e19999;";
    const std::u16string subsets[] = {
        chain,
        deepModel,
        repeated(u"<!ELEMENT a (", many),
        repeated(u"<!ENTITY a \"", many),
        repeated(u"%a;", many),
        repeated(u"<![", many),
        repeated(u"]]", many),
        u"<!ATTLIST a b (" + repeated(u"c|", many) + u"c) #IMPLIED>",
    };
    for (const std::u16string& subset : subsets) {
        const DocumentType type = typeOf(u"<!DOCTYPE a [" + subset + u"]><a/>");
        EXPECT_TRUE(type.isPresent());
    }
    EXPECT_TRUE(typeOf(u"<!DOCTYPE a [" + chain + u"]><a/>").violations.empty());
    EXPECT_EQ(typeOf(u"<!DOCTYPE a [" + deepModel + u"]><a/>").particles.size(), many + 1);
}

} // namespace
