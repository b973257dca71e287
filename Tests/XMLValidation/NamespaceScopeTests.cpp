#include "NamespaceScope.h"

#include "TreeParser.h"

#include <gtest/gtest.h>

namespace {

DocumentTree parsed(std::u16string_view units) { return TreeParser::parse(SourceText(units)); }

/// "prefix=name" of all bindings but that of `xml`, separated by spaces.
std::u16string bindingsAt(const DocumentTree& tree, NodeID node, const DocumentType* type = nullptr) {
    std::u16string all;
    const NamespaceScope scope = NamespaceScope::at(tree, node, type);
    for (const NamespaceScope::Binding& binding : scope.bindings()) {
        if (binding.prefix != u"xml") {
            all += (all.empty() ? u"" : u" ") + binding.prefix + u"=" + binding.name;
        }
    }
    return all;
}

/// The last element of a text.
NodeID lastElement(const DocumentTree& tree) {
    std::uint32_t last = 0;
    for (std::uint32_t i = 0; i < tree.nodes.size(); ++i) {
        last = tree.nodes[i].isElement() ? i : last;
    }
    return {last};
}

TEST(NamespaceScope, HasTheInnermostBindings) {
    struct Row {
        std::u16string_view text, bindings;
    };
    for (const Row& row : {
             Row{u"<a/>", u""},
             Row{u"<a xmlns='b'/>", u"=b"},
             Row{u"<a xmlns:p='b' xmlns:q=\"c\"><d/></a>", u"p=b q=c"},
             Row{u"<a xmlns:p='b'><d xmlns:p='c'/></a>", u"p=c"},
             Row{u"<a xmlns:p='b'/><d/>", u""},
             Row{u"<a xmlns='b'><d xmlns=''/></a>", u"="},
             Row{u"<a xmlns:p=' b&amp;&#99;\n'/>", u"p= b&c "},
             Row{u"<a xmlns:p='b' c:xmlns='d'/>", u"p=b"},
         }) {
        const DocumentTree tree = parsed(row.text);
        EXPECT_EQ(bindingsAt(tree, lastElement(tree)), row.bindings);
    }
}

TEST(NamespaceScope, TellsWhereABindingComesFrom) {
    const DocumentTree tree = parsed(u"<a xmlns:p='b'><c/></a>");
    const NamespaceScope scope = NamespaceScope::at(tree, lastElement(tree));
    ASSERT_EQ(scope.bindings().size(), 2);
    EXPECT_TRUE(scope.bindings()[0].declaredBy.isNone());
    EXPECT_EQ(scope.bindings()[1].declaredBy, NodeID{1});
    EXPECT_EQ(tree.text.units(scope.bindings()[1].range), u"xmlns:p='b'");
}

TEST(NamespaceScope, LooksUpBothWays) {
    const DocumentTree tree = parsed(u"<a xmlns='b' xmlns:p='b' xmlns:q=''/>");
    const NamespaceScope scope = NamespaceScope::at(tree, lastElement(tree));
    EXPECT_EQ(scope.name(u""), u"b");
    EXPECT_EQ(scope.name(u"p"), u"b");
    EXPECT_EQ(scope.name(u"q"), std::nullopt);
    EXPECT_EQ(scope.name(u"r"), std::nullopt);
    EXPECT_EQ(scope.name(u"xml"), u"http://www.w3.org/XML/1998/namespace");
    EXPECT_EQ(scope.prefix(u"b"), u"p");
    EXPECT_EQ(scope.prefix(u"c"), std::nullopt);
}

TEST(NamespaceScope, TakesDefaultsOfTheDocumentType) {
    const DocumentTree tree =
        parsed(u"<!DOCTYPE a [<!ENTITY e 'f'><!ATTLIST a xmlns:p CDATA '&e;g' xmlns CDATA #FIXED 'h'>]>"
               u"<a xmlns:p='i'><a/></a>");
    const DocumentType type = DocumentType::read(tree);
    EXPECT_EQ(bindingsAt(tree, lastElement(tree), &type), u"p=fg =h");
    EXPECT_EQ(bindingsAt(tree, tree[lastElement(tree)].parent, &type), u"p=i =h");
    EXPECT_EQ(bindingsAt(tree, lastElement(tree)), u"p=i");
}

TEST(NamespaceScope, IsEmptyForTheDocument) {
    EXPECT_EQ(bindingsAt(parsed(u"<a xmlns='b'/>"), NodeID::document()), u"");
}

} // namespace
