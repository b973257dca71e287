#include "MutationPlanner.h"

#include "TreeParser.h"

#include <gtest/gtest.h>
#include <unordered_set>

namespace {

using namespace MutationPlanner;
using Placement = TreeMutation::Placement;
using TM = TreeMutation;

constexpr IndentStyle twoSpaces = IndentStyle::spaces(2);
const NodePath document;
const NodePath root{{0}};
const NodePath first{{0, 0}};
const NodePath second{{0, 1}};
const NodePath third{{0, 2}};

std::expected<Plan, Failure> plan(const std::u16string& text, const TM& mutation,
                                  IndentStyle indent = twoSpaces) {
    return MutationPlanner::plan(mutation, TreeParser::parse(SourceText(text)), indent);
}

/// The text after the plan, with `|` where the node to select starts.
std::u16string applied(const std::u16string& text, const Plan& plan) {
    std::u16string result = TextEdit::apply(plan.edits, text);
    if (plan.selectOffset) {
        result.insert(*plan.selectOffset, u"|");
    }
    return result;
}

struct Row {
    std::u16string before;
    TM mutation;
    std::u16string after; ///< With `|` at `selectOffset`.
};

void check(const std::vector<Row>& rows, IndentStyle indent = twoSpaces) {
    for (const Row& row : rows) {
        const auto result = plan(row.before, row.mutation, indent);
        if (!result) {
            ADD_FAILURE() << ::testing::PrintToString(row.before) << " fails: " << result.error().index();
            continue;
        }
        EXPECT_EQ(applied(row.before, *result), row.after) << ::testing::PrintToString(row.before);
    }
}

struct FailureRow {
    std::u16string text;
    TM mutation;
    Failure expected;
};

void checkFailures(const std::vector<FailureRow>& rows) {
    for (const FailureRow& row : rows) {
        const auto result = plan(row.text, row.mutation);
        if (result) {
            ADD_FAILURE() << ::testing::PrintToString(row.text) << " is planned";
            continue;
        }
        EXPECT_EQ(result.error(), row.expected)
            << ::testing::PrintToString(row.text) << ": " << result.error().index() << " instead of "
            << row.expected.index();
    }
}

} // namespace

TEST(MutationPlanner, RenamesBothTags) {
    check({
        {u"<a>x</a>", TM::Rename{root, u"b"}, u"|<b>x</b>"},
        {u"<a/>", TM::Rename{root, u"b"}, u"|<b/>"},
        {u"<r><item k='1'>x</item ></r>", TM::Rename{first, u"\u00E9"}, u"<r>|<\u00E9 k='1'>x</\u00E9 ></r>"},
        {u"<r><a></r>", TM::Rename{first, u"b"}, u"<r>|<b></r>"},
        {u"<a", TM::Rename{root, u"longer"}, u"|<longer"},
        {u"<a>x</a>", TM::Rename{root, u"a"}, u"|<a>x</a>"},
    });
    EXPECT_EQ(plan(u"<a>x</a>", TM::Rename{root, u"b"})->edits.size(), 2U);
    EXPECT_EQ(plan(u"<a/>", TM::Rename{root, u"b"})->edits.size(), 1U);
    const Plan renamed = *plan(u"<a>x</a>", TM::Rename{root, u"bc"});
    EXPECT_EQ(renamed.edits, (std::vector<TextEdit>{{{1, 2}, u"bc"}, {{6, 7}, u"bc"}}));
}

TEST(MutationPlanner, RefusesNamesThatAreNone) {
    const std::u16string text = u"<a b='1'>x</a>";
    const std::u16string lone(1, 0xD800);
    for (const std::u16string& name : {std::u16string(), std::u16string(u"1x"), std::u16string(u"x y"),
                                       std::u16string(u"-"), std::u16string(u"a<"), std::u16string(u"<")}) {
        const Failure expected = InvalidName{name};
        checkFailures({
            {text, TM::Rename{root, name}, expected},
            {text, TM::SetAttribute{root, name, u""}, expected},
            {text, TM::RenameAttribute{root, u"b", name}, expected},
            {text, TM::InsertElement{name, root, Placement::firstChild}, expected},
            {text, TM::Wrap{root, name}, expected},
        });
    }
    checkFailures({{text, TM::Rename{root, u" " + lone}, InvalidName{u" \uFFFD"}}});
}

TEST(MutationPlanner, TellsNamesBeforePathsAndPathsBeforeKinds) {
    const NodePath nowhere{{7}};
    const std::u16string text = u"<a>x</a>";
    checkFailures({
        {text, TM::Rename{nowhere, u""}, InvalidName{}},
        {text, TM::Rename{nowhere, u"b"}, NodeNotFound{}},
        {text, TM::Rename{first, u""}, InvalidName{}},
        {text, TM::Rename{first, u"b"}, NotAnElement{}},
        {text, TM::Rename{document, u"b"}, NotAnElement{}},
        {text, TM::SetAttribute{nowhere, u"b", u""}, NodeNotFound{}},
        {text, TM::SetAttribute{first, u"b", u""}, NotAnElement{}},
        {text, TM::RenameAttribute{nowhere, u"b", u""}, InvalidName{}},
        {text, TM::RenameAttribute{nowhere, u"b", u"c"}, NodeNotFound{}},
        {text, TM::RenameAttribute{first, u"b", u"c"}, NotAnElement{}},
        {text, TM::RemoveAttribute{nowhere, u"b"}, NodeNotFound{}},
        {text, TM::RemoveAttribute{first, u"b"}, NotAnElement{}},
        {text, TM::SetText{nowhere, u""}, NodeNotFound{}},
        {text, TM::InsertElement{u"", nowhere, Placement::before}, InvalidName{}},
        {text, TM::InsertElement{u"b", nowhere, Placement::before}, NodeNotFound{}},
        {text, TM::InsertComment{u"b", nowhere, Placement::before}, NodeNotFound{}},
        {text, TM::Delete{nowhere}, NodeNotFound{}},
        {text, TM::Duplicate{nowhere}, NodeNotFound{}},
        {text, TM::Move{nowhere, nowhere, Placement::before}, NodeNotFound{}},
        {text, TM::Move{root, nowhere, Placement::before}, NodeNotFound{}},
        {text, TM::Wrap{nowhere, u""}, InvalidName{}},
        {text, TM::Wrap{nowhere, u"b"}, NodeNotFound{}},
        {text, TM::Wrap{document, u""}, InvalidName{}},
    });
}

TEST(MutationPlanner, SetsAttributes) {
    check({
        {u"<a class='x'>", TM::SetAttribute{root, u"id", u"v"}, u"|<a class='x' id=\"v\">"},
        {u"<a/>", TM::SetAttribute{root, u"id", u"v"}, u"|<a id=\"v\"/>"},
        {u"<a  />", TM::SetAttribute{root, u"id", u"v"}, u"|<a id=\"v\"  />"},
        {u"<a></a>", TM::SetAttribute{root, u"id", u"say \"x\" & it's <\n>\t"},
         u"|<a id=\"say &quot;x&quot; &amp; it's &lt;&#10;>&#9;\"></a>"},
        {u"<a class='x'/>", TM::SetAttribute{root, u"class", u"it's \"y\""},
         u"|<a class='it&apos;s \"y\"'/>"},
        {u"<a class=\"x\"/>", TM::SetAttribute{root, u"class", u"it's \"y\""},
         u"|<a class=\"it's &quot;y&quot;\"/>"},
        {u"<a class=''/>", TM::SetAttribute{root, u"class", u"y"}, u"|<a class='y'/>"},
        {u"<a class='x'/>", TM::SetAttribute{root, u"class", u""}, u"|<a class=''/>"},
        {u"<a class='x'/>", TM::SetAttribute{root, u"Class", u"y"}, u"|<a class='x' Class=\"y\"/>"},
        {u"<a class/>", TM::SetAttribute{root, u"class", u"\""}, u"|<a class=\"&quot;\"/>"},
        {u"<a class= b='1'/>", TM::SetAttribute{root, u"class", u"y"}, u"|<a class=\"y\" b='1'/>"},
        {u"<a b c/>", TM::SetAttribute{root, u"d", u"y"}, u"|<a b c d=\"y\"/>"},
        {u"<a b='1' b='2'/>", TM::SetAttribute{root, u"b", u"3"}, u"|<a b='3' b='2'/>"},
        {u"<a b='1", TM::SetAttribute{root, u"b", u"3"}, u"|<a b='3"},
        {u"<r>\n <a/></r>", TM::SetAttribute{first, u"b", u"3"}, u"<r>\n |<a b=\"3\"/></r>"},
    });
}

TEST(MutationPlanner, RenamesAttributes) {
    check({
        {u"<x a='1'/>", TM::RenameAttribute{root, u"a", u"b"}, u"|<x b='1'/>"},
        {u"<x a='1'/>", TM::RenameAttribute{root, u"a", u"a"}, u"|<x a='1'/>"},
        {u"<x a='1' b='2' a='3'/>", TM::RenameAttribute{root, u"a", u"c"}, u"|<x c='1' b='2' a='3'/>"},
        {u"<x a/>", TM::RenameAttribute{root, u"a", u"b"}, u"|<x b/>"},
        {u"<x a='1' b='2' a='3'/>", TM::RenameAttribute{root, u"a", u"a"}, u"|<x a='1' b='2' a='3'/>"},
    });
    EXPECT_EQ(plan(u"<x a='1'/>", TM::RenameAttribute{root, u"a", u"a"})->edits.size(), 1U);
    checkFailures({
        {u"<x a='1' b='2'/>", TM::RenameAttribute{root, u"a", u"b"}, DuplicateAttribute{u"b"}},
        {u"<x b='2' a='1'/>", TM::RenameAttribute{root, u"a", u"b"}, DuplicateAttribute{u"b"}},
        {u"<x b='2'/>", TM::RenameAttribute{root, u"a", u"b"}, NodeNotFound{}},
        {u"<x A='2'/>", TM::RenameAttribute{root, u"a", u"b"}, NodeNotFound{}},
    });
}

TEST(MutationPlanner, RemovesAttributesWithTheSpaceBefore) {
    check({
        {u"<a  x=\"1\" >", TM::RemoveAttribute{root, u"x"}, u"|<a >"},
        {u"<a x='1'\n  y='2' z/>", TM::RemoveAttribute{root, u"x"}, u"|<a\n  y='2' z/>"},
        {u"<a x='1'\n  y='2' z/>", TM::RemoveAttribute{root, u"y"}, u"|<a x='1' z/>"},
        {u"<a x='1'\n  y='2' z/>", TM::RemoveAttribute{root, u"z"}, u"|<a x='1'\n  y='2'/>"},
        {u"<a x='1' x='2'/>", TM::RemoveAttribute{root, u"x"}, u"|<a x='2'/>"},
        {u"<a x='1", TM::RemoveAttribute{root, u"x"}, u"|<a"},
        {u"<a x= >", TM::RemoveAttribute{root, u"x"}, u"|<a >"},
    });
    // White space between two names stays.
    check({
        {u"<a x=1>", TM::RemoveAttribute{root, u"x"}, u"|<a 1>"},
        {u"<a  x=y z>", TM::RemoveAttribute{root, u"x"}, u"|<a  y z>"},
        {u"<a x='1'y='2'/>", TM::RemoveAttribute{root, u"x"}, u"|<a y='2'/>"},
        {u"<a b x='1'y='2'/>", TM::RemoveAttribute{root, u"x"}, u"|<a b y='2'/>"},
        {u"<a b='0' x='1'y='2'/>", TM::RemoveAttribute{root, u"x"}, u"|<a b='0'y='2'/>"},
        {u"<a x='1'y='2'/>", TM::RemoveAttribute{root, u"y"}, u"|<a x='1'/>"},
    });
    checkFailures({{u"<a x='1'/>", TM::RemoveAttribute{root, u"y"}, NodeNotFound{}},
                   {u"<a/>", TM::RemoveAttribute{root, u""}, NodeNotFound{}}});
}

TEST(MutationPlanner, SetsText) {
    check({
        {u"<a>x</a>", TM::SetText{root, u"1 < 2 & \"3\" > 0"}, u"|<a>1 &lt; 2 &amp; \"3\" &gt; 0</a>"},
        {u"<a><b/>x<c/></a>", TM::SetText{root, u"y"}, u"|<a>y</a>"},
        {u"<a></a>", TM::SetText{root, u"y"}, u"|<a>y</a>"},
        {u"<a>x</a>", TM::SetText{root, u""}, u"|<a></a>"},
        {u"<a k='1' />", TM::SetText{root, u"<"}, u"|<a k='1' >&lt;</a>"},
        {u"<r><a>x</r>", TM::SetText{first, u"y"}, u"<r>|<a>y</r>"},
        {u"<r><b/> x </r>", TM::SetText{second, u"y&"}, u"<r><b/>|y&amp;</r>"},
        {u"<a><!-- c --></a>", TM::SetText{first, u"a--b"}, u"<a>|<!--a- -b--></a>"},
        {u"<a><!-- c --></a>", TM::SetText{first, u"----"}, u"<a>|<!--- - - ---></a>"},
        {u"<!-- c --><a/>", TM::SetText{root, u"a---b"}, u"|<!--a- - -b--><a/>"},
        {u"<a><![CDATA[c]]></a>", TM::SetText{first, u"x]]>y]]>"},
         u"<a>|<![CDATA[x]]]]><![CDATA[>y]]]]><![CDATA[>]]></a>"},
        {u"<a><![CDATA[c]]></a>", TM::SetText{first, u"]]]>]] >&<"},
         u"<a>|<![CDATA[]]]]]><![CDATA[>]] >&<]]></a>"},
        {u"<!-- c", TM::SetText{root, u"d"}, u"|<!--d"},
    });
    checkFailures({
        {u"<?go?><a/>", TM::SetText{root, u"x"}, InvalidTarget{}},
        {u"<!DOCTYPE a><a/>", TM::SetText{root, u"x"}, InvalidTarget{}},
        {u"<a/>", TM::SetText{document, u"x"}, InvalidTarget{}},
    });
}

TEST(MutationPlanner, GivesCutOffTagsTheirContentBehindThem) {
    check({
        {u"<r><a k='1' <b/></r>", TM::SetText{first, u"x"}, u"<r>|<a k='1'>x</a> <b/></r>"},
        {u"<a", TM::SetText{root, u"x"}, u"|<a>x</a>"},
        {u"<a b='/>", TM::SetText{root, u"x"}, u"|<a b='/>>x</a>"},
        {u"<r>\n  <a\n  <b/>\n</r>", TM::InsertElement{u"n", first, Placement::firstChild},
         u"<r>\n  <a>\n    |<n></n>\n  </a>\n  <b/>\n</r>"},
        {u"<r>\n  <a\n  <b/>\n</r>", TM::InsertElement{u"n", first, Placement::lastChild},
         u"<r>\n  <a>\n    |<n></n>\n  </a>\n  <b/>\n</r>"},
    });
}

TEST(MutationPlanner, InsertsBesideNodes) {
    const auto insert = [](const NodePath& target, Placement placement) {
        return TM::InsertElement{u"n", target, placement};
    };
    check({
        {u"<r>\n  <a/>\n</r>", insert(first, Placement::before), u"<r>\n  |<n></n>\n  <a/>\n</r>"},
        {u"<r>\n  <a/>\n</r>", insert(first, Placement::after), u"<r>\n  <a/>\n  |<n></n>\n</r>"},
        {u"<r> <a/> </r>", insert(first, Placement::before), u"<r> |<n></n><a/> </r>"},
        {u"<r> <a/> </r>", insert(first, Placement::after), u"<r> <a/>|<n></n> </r>"},
        {u"<r>\n\t<a>\n\t</a> <b/></r>", insert(first, Placement::after),
         u"<r>\n\t<a>\n\t</a>\n\t|<n></n> <b/></r>"},
        {u"<r>x<a/></r>", insert(first, Placement::before), u"<r>|<n></n>x<a/></r>"},
        {u"<r>x<a/></r>", insert(first, Placement::after), u"<r>x|<n></n><a/></r>"},
        {u"<a/>", insert(root, Placement::before), u"|<n></n>\n<a/>"},
        {u"<a/>", insert(root, Placement::after), u"<a/>\n|<n></n>"},
        {u"  <a/>", insert(root, Placement::after), u"  <a/>\n  |<n></n>"},
        {u"<a/>", insert(document, Placement::before), u"|<n></n>\n<a/>"},
        {u"<a/>\n", insert(document, Placement::after), u"<a/>\n\n|<n></n>"},
        {u" <a/>", insert(document, Placement::before), u"|<n></n> <a/>"},
        {u" <a/>", insert(document, Placement::after), u" <a/>|<n></n>"},
        {u" x", insert(root, Placement::before), u"|<n></n> x"},
        {u"x", insert(root, Placement::before), u"|<n></n>\nx"},
    });
}

TEST(MutationPlanner, InsertsIntoEmptyElements) {
    const auto insert = [](Placement placement) { return TM::InsertElement{u"n", first, placement}; };
    for (const Placement placement : {Placement::firstChild, Placement::lastChild}) {
        check({
            {u"<r>\n  <a/>\n</r>", insert(placement), u"<r>\n  <a>\n    |<n></n>\n  </a>\n</r>"},
            {u"<r>\n  <a k='1' />\n</r>", insert(placement),
             u"<r>\n  <a k='1' >\n    |<n></n>\n  </a>\n</r>"},
            {u"<r>\n  <a> </a>\n</r>", insert(placement), u"<r>\n  <a>\n    |<n></n>\n  </a>\n</r>"},
            {u"<r>\n  <a></a>\n</r>", insert(placement), u"<r>\n  <a>\n    |<n></n>\n  </a>\n</r>"},
            {u"<r>\n  <a>\n\n  </a>\n</r>", insert(placement), u"<r>\n  <a>\n    |<n></n>\n  </a>\n</r>"},
            {u"\t<r><a/></r>", insert(placement), u"\t<r><a>\n\t  |<n></n>\n\t</a></r>"},
            {u"<r><a></r>", insert(placement), u"<r><a>\n  |<n></n>\n</r>"},
        });
        check({{u"<r>\n\t<a/>\n</r>", insert(placement), u"<r>\n\t<a>\n\t\t|<n></n>\n\t</a>\n</r>"}},
              IndentStyle::tabs());
    }
}

TEST(MutationPlanner, InsertsIntoTextBeforeIt) {
    const auto insert = [](Placement placement) { return TM::InsertElement{u"n", root, placement}; };
    for (const Placement placement : {Placement::firstChild, Placement::lastChild}) {
        check({
            {u"<p>hello</p>", insert(placement), u"<p>\n  |<n></n>hello</p>"},
            {u"<p>\n  hello\n</p>", insert(placement), u"<p>\n  |<n></n>\n  hello\n</p>"},
            {u"<p><![CDATA[x]]></p>", insert(placement), u"<p>\n  |<n></n><![CDATA[x]]></p>"},
            {u"<p>\n      <![CDATA[x]]></p>", insert(placement),
             u"<p>\n      |<n></n>\n      <![CDATA[x]]></p>"},
            {u"<p>x<![CDATA[y]]></p>", insert(placement), u"<p>\n  |<n></n>x<![CDATA[y]]></p>"},
            {u"<p>\u00A0</p>", insert(placement), u"<p>\n  |<n></n>\u00A0</p>"},
        });
    }
}

TEST(MutationPlanner, InsertsAmongChildren) {
    const auto insert = [](Placement placement) { return TM::InsertElement{u"n", root, placement}; };
    check({
        {u"<r>\n   <a/>\n   <b/>\n</r>", insert(Placement::firstChild),
         u"<r>\n   |<n></n>\n   <a/>\n   <b/>\n</r>"},
        {u"<r>\n   <a/>\n   <b/>\n</r>", insert(Placement::lastChild),
         u"<r>\n   <a/>\n   <b/>\n   |<n></n>\n</r>"},
        {u"<r><a/><b/></r>", insert(Placement::firstChild), u"<r>|<n></n><a/><b/></r>"},
        {u"<r><a/><b/></r>", insert(Placement::lastChild), u"<r><a/><b/>|<n></n></r>"},
        {u"<r>x<b/></r>", insert(Placement::firstChild), u"<r>|<n></n>x<b/></r>"},
        {u"<r><b/>x</r>", insert(Placement::lastChild), u"<r><b/>x|<n></n></r>"},
        {u"<r><!-- c --></r>", insert(Placement::lastChild), u"<r><!-- c -->|<n></n></r>"},
        {u"<r>\n  <?go?>\n</r>", insert(Placement::lastChild), u"<r>\n  <?go?>\n  |<n></n>\n</r>"},
    });
}

TEST(MutationPlanner, InsertsIntoTheDocument) {
    const auto insert = [](Placement placement) { return TM::InsertElement{u"n", document, placement}; };
    check({
        {u"", insert(Placement::firstChild), u"|<n></n>"},
        {u"", insert(Placement::lastChild), u"|<n></n>"},
        {u" \n", insert(Placement::firstChild), u"|<n></n> \n"},
        {u"<?xml version='1.0'?>\n<a/>", insert(Placement::firstChild),
         u"|<n></n>\n<?xml version='1.0'?>\n<a/>"},
        {u"<?xml version='1.0'?>\n<a/>\n", insert(Placement::lastChild),
         u"<?xml version='1.0'?>\n<a/>\n|<n></n>\n"},
        {u"x", insert(Placement::lastChild), u"x\n|<n></n>"},
    });
}

TEST(MutationPlanner, InsertsComments) {
    check({
        {u"<a/>", TM::InsertComment{u"note", root, Placement::before}, u"|<!-- note -->\n<a/>"},
        {u"<a></a>", TM::InsertComment{u"a---b-", root, Placement::firstChild},
         u"<a>\n  |<!-- a- - -b- -->\n</a>"},
        {u"<a>x</a>", TM::InsertComment{u"", first, Placement::after}, u"<a>x|<!--  --></a>"},
    });
}

TEST(MutationPlanner, PutsChildrenIntoElementsOnly) {
    for (const Placement placement : {Placement::firstChild, Placement::lastChild}) {
        for (const std::u16string& text :
             {std::u16string(u"x<a/>"), std::u16string(u"<!-- c --><a/>"), std::u16string(u"<?go?><a/>"),
              std::u16string(u"<!DOCTYPE a><a/>"), std::u16string(u"<![CDATA[x]]><a/>")}) {
            checkFailures({
                {text, TM::InsertElement{u"n", root, placement}, NotAnElement{}},
                {text, TM::InsertComment{u"n", root, placement}, NotAnElement{}},
                {text, TM::Move{{{1}}, root, placement}, NotAnElement{}},
            });
        }
    }
}

TEST(MutationPlanner, DeletesWholeLines) {
    check({
        {u"<r>\n  <a/>\n  <b/>\n</r>", TM::Delete{first}, u"<r>\n  |<b/>\n</r>"},
        {u"<r>\n  <a/>\n  <b/>\n</r>", TM::Delete{second}, u"<r>\n  |<a/>\n</r>"},
        {u"<r>\n  <a/> \t\n</r>", TM::Delete{first}, u"|<r>\n</r>"},
        {u"<r>\r\n  <a/>\r\n</r>", TM::Delete{first}, u"|<r>\r\n</r>"},
        {u"<r>\n  <a>\n  </a>\n  <b/>\n</r>", TM::Delete{first}, u"<r>\n  |<b/>\n</r>"},
        {u"<a/>\n<b/>", TM::Delete{{{1}}}, u"|<a/>"},
        {u"<a/>\r\n<b/> \t", TM::Delete{{{1}}}, u"|<a/>"},
        {u"<a/>\n\n  <b/>", TM::Delete{{{1}}}, u"|<a/>\n"},
        {u"<a/>\n<b/>\n", TM::Delete{{{1}}}, u"|<a/>\n"},
        {u"  <a/>  ", TM::Delete{root}, u""},
        {u"<a/>", TM::Delete{root}, u""},
        {u"<a/>\n", TM::Delete{root}, u""},
    });
}

TEST(MutationPlanner, DeletesOnlyTheNodeFromASharedLine) {
    check({
        {u"<r>\n  <a/> <b/>\n</r>", TM::Delete{first}, u"<r>\n   |<b/>\n</r>"},
        {u"<r>\n  <a/> <b/>\n</r>", TM::Delete{second}, u"<r>\n  |<a/> \n</r>"},
        {u"<r><a/></r>", TM::Delete{first}, u"|<r></r>"},
        {u"<r>\n  <a/></r>", TM::Delete{first}, u"|<r>\n  </r>"},
        {u"<r>\n  <a/>\r<b/></r>", TM::Delete{first}, u"<r>\n  \r|<b/></r>"},
        {u"<r>\n  <a/>\r", TM::Delete{first}, u"|<r>\n  \r"},
        {u"<r>x<a/>y</r>", TM::Delete{second}, u"<r>x|y</r>"},
        {u"<r>x<a/></r>", TM::Delete{first}, u"<r>|<a/></r>"},
        {u"<r><a/>\n  x\n</r>", TM::Delete{second}, u"<r>|<a/></r>"},
        {u" x<a/>", TM::Delete{root}, u"|<a/>"},
    });
}

TEST(MutationPlanner, SelectsATextThatLostItsStartWhereItThenBegins) {
    check({
        {u"<r>\n  <a/>\n  text\n</r>", TM::Delete{first}, u"<r>|\n  text\n</r>"},
        {u"<r>\n  <b/>\n  <a/>\n  text\n</r>", TM::Delete{second}, u"<r>\n  <b/>|\n  text\n</r>"},
        {u"<r>x\n  <a/>\n  text\n</r>", TM::Delete{second}, u"<r>|x\n  text\n</r>"},
        {u"<a/>\ntext", TM::Delete{root}, u"|text"},
        {u"<r>\n  <a/>  \r\n text</r>", TM::Delete{first}, u"<r>|\n text</r>"},
    });
}

TEST(MutationPlanner, NeverTouchesTheDocumentItself) {
    checkFailures({
        {u"<a/>", TM::Delete{document}, InvalidTarget{}},
        {u"<a/>", TM::Duplicate{document}, InvalidTarget{}},
        {u"<a/>", TM::Wrap{document, u"b"}, InvalidTarget{}},
        {u"<a/>", TM::Move{document, root, Placement::after}, InvalidTarget{}},
        {u"<a/>", TM::Move{document, document, Placement::after}, InvalidTarget{}},
    });
}

TEST(MutationPlanner, Duplicates) {
    check({
        {u"<r>\n  <a>\n  </a>\n</r>", TM::Duplicate{first}, u"<r>\n  <a>\n  </a>\n  |<a>\n  </a>\n</r>"},
        {u"<r><a k='&lt;'/></r>", TM::Duplicate{first}, u"<r><a k='&lt;'/>|<a k='&lt;'/></r>"},
        {u"<r><a/>x</r>", TM::Duplicate{second}, u"<r><a/>x|x</r>"},
        {u"<!-- c --><a/>", TM::Duplicate{root}, u"<!-- c -->\n|<!-- c --><a/>"},
    });
    const std::u16string lone(1, 0xDC00);
    check({{u"<r><" + lone + u"/></r>", TM::Duplicate{first}, u"<r><" + lone + u"/>|<" + lone + u"/></r>"}});
}

TEST(MutationPlanner, MovesNodes) {
    const std::u16string lines = u"<r>\n  <a/>\n  <b/>\n  <c/>\n</r>";
    check({
        {lines, TM::Move{first, second, Placement::after}, u"<r>\n  <b/>\n  |<a/>\n  <c/>\n</r>"},
        {lines, TM::Move{first, third, Placement::before}, u"<r>\n  <b/>\n  |<a/>\n  <c/>\n</r>"},
        {lines, TM::Move{third, first, Placement::before}, u"<r>\n  |<c/>\n  <a/>\n  <b/>\n</r>"},
        {lines, TM::Move{third, first, Placement::after}, u"<r>\n  <a/>\n  |<c/>\n  <b/>\n</r>"},
        {lines, TM::Move{first, third, Placement::firstChild},
         u"<r>\n  <b/>\n  <c>\n    |<a/>\n  </c>\n</r>"},
        {lines, TM::Move{third, first, Placement::lastChild}, u"<r>\n  <a>\n    |<c/>\n  </a>\n  <b/>\n</r>"},
        {lines, TM::Move{first, root, Placement::lastChild}, u"<r>\n  <b/>\n  <c/>\n  |<a/>\n</r>"},
        {lines, TM::Move{third, root, Placement::firstChild}, u"<r>\n  |<c/>\n  <a/>\n  <b/>\n</r>"},
        {lines, TM::Move{second, root, Placement::before}, u"|<b/>\n<r>\n  <a/>\n  <c/>\n</r>"},
        {lines, TM::Move{second, document, Placement::lastChild}, u"<r>\n  <a/>\n  <c/>\n</r>\n|<b/>"},
        {u"<r><a/><b/><c/></r>", TM::Move{first, third, Placement::after}, u"<r><b/><c/>|<a/></r>"},
        {u"<r><a/><b/></r>", TM::Move{first, second, Placement::before}, u"<r>|<a/><b/></r>"},
        {u"<r><a/><b/></r>", TM::Move{second, first, Placement::after}, u"<r><a/>|<b/></r>"},
        {u"<r>x<b/>y</r>", TM::Move{first, third, Placement::after}, u"<r><b/>y|x</r>"},
    });
}

TEST(MutationPlanner, PlansAMoveAsInsertionThenDeletion) {
    const Plan down = *plan(u"<r><a/><b/></r>", TM::Move{first, second, Placement::after});
    EXPECT_EQ(down.edits, (std::vector<TextEdit>{{{11, 11}, u"<a/>"}, {{3, 7}, u""}}));
    const Plan up = *plan(u"<r><a/><b/></r>", TM::Move{second, first, Placement::before});
    EXPECT_EQ(up.edits, (std::vector<TextEdit>{{{3, 3}, u"<b/>"}, {{7, 11}, u""}}));
}

TEST(MutationPlanner, ReindentsWhatItMoves) {
    check({
        {u"<r>\n  <a>\n    <x>\n      1\n    </x>\n  </a>\n  <b/>\n</r>",
         TM::Move{{{0, 0, 0}}, root, Placement::after}, u"<r>\n  <a>\n  </a>\n  <b/>\n</r>\n|<x>\n  1\n</x>"},
        {u"<r>\n  <a>\n  <x/>\n odd\n  </a>\n  <b>\n      <c/>\n  </b>\n</r>",
         TM::Move{first, second, Placement::firstChild},
         u"<r>\n  <b>\n      |<a>\n      <x/>\n odd\n      </a>\n      <c/>\n  </b>\n</r>"},
        {u"<a>\n<b/>\n</a>\n  <c/>", TM::Move{root, {{1}}, Placement::after},
         u"  <c/>\n  |<a>\n  <b/>\n  </a>"},
        {u"<r>\r\n  <a>\r\n\r\n  </a>\r\n  <b/>\r\n</r>", TM::Move{first, second, Placement::firstChild},
         u"<r>\r\n  <b>\r\n    |<a>\r\n\r\n    </a>\r\n  </b>\r\n</r>"},
    });
}

TEST(MutationPlanner, RefusesToMoveNodesIntoThemselves) {
    const std::u16string text = u"<r><a><b/></a><c/></r>";
    for (const Placement placement :
         {Placement::firstChild, Placement::lastChild, Placement::before, Placement::after}) {
        checkFailures({
            {text, TM::Move{first, first, placement}, InvalidTarget{}},
            {text, TM::Move{first, {{0, 0, 0}}, placement}, InvalidTarget{}},
            {text, TM::Move{root, {{0, 0, 0}}, placement}, InvalidTarget{}},
            {text, TM::Move{root, {{0, 7}}, placement}, InvalidTarget{}},
        });
    }
    checkFailures({
        // The insertion would be inside the lines that are deleted.
        {u"<r>\n  <a/>\n</r>", TM::Move{first, root, Placement::lastChild}, InvalidTarget{}},
        {u"<r>\n  <a/>\n</r>", TM::Move{first, root, Placement::firstChild}, InvalidTarget{}},
        {u"<r>\n  <a/>\n  x\n</r>", TM::Move{first, second, Placement::before}, InvalidTarget{}},
    });
    check({
        {u"<r><a/></r>", TM::Move{first, root, Placement::lastChild}, u"<r>|<a/></r>"},
    });
}

TEST(MutationPlanner, WrapsNodes) {
    check({
        {u"<a/>", TM::Wrap{root, u"w"}, u"|<w>\n  <a/>\n</w>"},
        {u"<r>\n  <a>\n    <b/>\n  </a>\n</r>", TM::Wrap{first, u"w"},
         u"<r>\n  |<w>\n    <a>\n      <b/>\n    </a>\n  </w>\n</r>"},
        {u"<r>\n  <a>\n odd\n  </a>\n</r>", TM::Wrap{first, u"w"},
         u"<r>\n  |<w>\n    <a>\n odd\n    </a>\n  </w>\n</r>"},
        {u"\t<r>x<b/></r>", TM::Wrap{first, u"w"}, u"\t<r>|<w>\n\t  x\n\t</w><b/></r>"},
        {u"<a>\n\n</a>", TM::Wrap{root, u"w"}, u"|<w>\n  <a>\n  \n  </a>\n</w>"},
        {u"<r>\r\n<a/></r>", TM::Wrap{first, u"w"}, u"<r>\r\n|<w>\r\n  <a/>\r\n</w></r>"},
    });
    check({{u"<a/>", TM::Wrap{root, u"w"}, u"|<w>\n\t<a/>\n</w>"}}, IndentStyle::tabs());
}

TEST(MutationPlanner, BreaksLinesAsTheDocumentDoes) {
    check({
        {u"<r>\r\n  <a/>\r\n</r>", TM::InsertElement{u"n", first, Placement::after},
         u"<r>\r\n  <a/>\r\n  |<n></n>\r\n</r>"},
        {u"<r>\r\n  <a/>\r\n</r>", TM::InsertElement{u"n", first, Placement::before},
         u"<r>\r\n  |<n></n>\r\n  <a/>\r\n</r>"},
        {u"<r>\r\n  <a/>\r\n</r>", TM::InsertElement{u"n", first, Placement::firstChild},
         u"<r>\r\n  <a>\r\n    |<n></n>\r\n  </a>\r\n</r>"},
        {u"<r>\r\n  <a/>\r\n</r>", TM::Duplicate{first}, u"<r>\r\n  <a/>\r\n  |<a/>\r\n</r>"},
        {u"\n<r/>\r\n", TM::Duplicate{root}, u"\n<r/>\n|<r/>\r\n"},
        {u"<r/>\r", TM::Duplicate{root}, u"<r/>\n|<r/>\r"},
    });
}

TEST(MutationPlanner, ComparesMutationsPlansAndFailures) {
    const std::unordered_set<TM> mutations = {TM::Delete{root},
                                              TM::Delete{first},
                                              TM::Duplicate{root},
                                              TM::Delete{root},
                                              TM::InsertElement{u"a", root, Placement::before},
                                              TM::InsertElement{u"a", root, Placement::after}};
    EXPECT_EQ(mutations.size(), 5U);
    const std::unordered_set<Failure> failures = {InvalidName{u"a"}, InvalidName{u"b"}, NodeNotFound{},
                                                  NodeNotFound{}, DuplicateAttribute{u"a"}};
    EXPECT_EQ(failures.size(), 4U);
    const std::unordered_set<Plan> plans = {Plan{{}, 1}, Plan{{}, {}}, Plan{{{{0, 1}, u""}}, 1}, Plan{{}, 1}};
    EXPECT_EQ(plans.size(), 3U);
}

TEST(MutationPlanner, PlansFarDownAndFarAlong) {
    constexpr std::uint32_t many = 1'000'000;
    std::u16string text;
    for (std::uint32_t i = 0; i < many; ++i) {
        text += u"<a>";
    }
    const DocumentTree deep = TreeParser::parse(SourceText(text));
    const NodePath deepest = deep.path({many});
    const Offset start = 3 * (many - 1);
    EXPECT_EQ(MutationPlanner::plan(TM::Rename{deepest, u"b"}, deep, twoSpaces)->selectOffset, start);
    EXPECT_EQ(MutationPlanner::plan(TM::Delete{deepest}, deep, twoSpaces)->selectOffset, start - 3);
    EXPECT_EQ(MutationPlanner::plan(TM::Wrap{deepest, u"w"}, deep, twoSpaces)->edits.front().replacement,
              u"<w>\n  <a>\n</w>");
    EXPECT_EQ(MutationPlanner::plan(TM::Move{deepest, root, Placement::after}, deep, twoSpaces)->selectOffset,
              3 * many - 3 + 1);
    EXPECT_EQ(MutationPlanner::plan(TM::Move{root, deepest, Placement::after}, deep, twoSpaces).error(),
              Failure(InvalidTarget{}));

    text = u"<r>";
    for (std::uint32_t i = 0; i < many; ++i) {
        text += u"<a/>";
    }
    text += u"</r>";
    const DocumentTree wide = TreeParser::parse(SourceText(text));
    const NodePath last{{0, many - 1}};
    const TM insertion = TM::InsertElement{u"n", root, Placement::lastChild};
    EXPECT_EQ(MutationPlanner::plan(insertion, wide, twoSpaces)->selectOffset, 4 * many + 3);
    EXPECT_EQ(MutationPlanner::plan(TM::Delete{last}, wide, twoSpaces)->selectOffset, 4 * many - 5);
}
