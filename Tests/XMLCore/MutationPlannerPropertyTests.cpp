#include "Escaping.h"
#include "MutationPlanner.h"
#include "RandomDocument.h"
#include "TreeParser.h"
#include "UnitScan.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <memory>

namespace {

using namespace MutationPlanner;
using Kind = TreeNode::Kind;
using Placement = TreeMutation::Placement;
using TM = TreeMutation;

/// A model of a document: a separate tree of nodes, which mutations really change.
struct Model {
    struct Attribute {
        std::u16string name;
        std::u16string value;
    };

    Kind kind = Kind::document;
    std::u16string name;
    std::vector<Attribute> attributes;
    std::u16string content; ///< As written.
    std::vector<std::unique_ptr<Model>> children;
    Model* parent = nullptr;

    bool isText() const { return kind == Kind::text; }
    bool hasOnlyText() const {
        return std::ranges::all_of(
            children, [](const auto& child) { return child->isText() || child->kind == Kind::cdata; });
    }

    std::unique_ptr<Model> copy() const {
        auto result = std::make_unique<Model>();
        result->kind = kind;
        result->name = name;
        result->attributes = attributes;
        result->content = content;
        for (const auto& child : children) {
            result->add(child->copy(), result->children.size());
        }
        return result;
    }

    void add(std::unique_ptr<Model> child, std::size_t at) {
        child->parent = this;
        children.insert(children.begin() + static_cast<std::ptrdiff_t>(at), std::move(child));
    }

    std::size_t index() const {
        return static_cast<std::size_t>(
            std::ranges::find(parent->children, this, &std::unique_ptr<Model>::get) -
            parent->children.begin());
    }

    Model* at(const NodePath& path) {
        Model* node = this;
        for (const std::uint32_t i : path.indices) {
            node = node->children.at(i).get();
        }
        return node;
    }

    Attribute* attribute(const std::u16string& wanted) {
        const auto found = std::ranges::find(attributes, wanted, &Attribute::name);
        return found == attributes.end() ? nullptr : &*found;
    }

    /// Everything that a mutation must preserve, as one string. White space is left out, because the layout
    /// may change it, and adjacent texts and CDATA sections are joined.
    std::u16string canonical() const {
        std::u16string result =
            u"[" + std::u16string(1, static_cast<char16_t>(u'0' + static_cast<int>(kind)));
        result.append(name);
        for (const Attribute& attribute : attributes) {
            result.append(u"@").append(attribute.name).append(u"=").append(withoutSpace(attribute.value));
        }
        result.append(withoutSpace(content));
        Kind previous = Kind::document;
        for (const auto& child : children) {
            const bool joinsPrevious =
                child->kind == previous && (child->isText() || child->kind == Kind::cdata);
            if (child->isText() && withoutSpace(child->content).empty()) {
                continue;
            }
            if (joinsPrevious) {
                result.pop_back();
                result.append(withoutSpace(child->content)).append(u"]");
            } else {
                result.append(child->canonical());
            }
            previous = child->kind;
        }
        return result.append(u"]");
    }

    static std::u16string withoutSpace(std::u16string text) {
        std::erase_if(text, UnitScan::isWhitespace);
        return text;
    }
};

std::unique_ptr<Model> model(const DocumentTree& tree, NodeID id) {
    const TreeNode& node = tree[id];
    auto result = std::make_unique<Model>();
    result->kind = node.kind;
    if (node.isElement()) {
        result->name = tree.text.units(node.nameRange);
        for (const AttributeSpan& attribute : tree.attributesOf(id)) {
            result->attributes.push_back(
                {std::u16string(tree.text.units(attribute.name)),
                 Escaping::unescape(std::u16string(tree.text.units(attribute.value)))});
        }
    } else if (node.kind != Kind::document) {
        result->content = tree.text.units(node.contentRange);
    }
    for (const NodeID child : tree.children(id)) {
        result->add(model(tree, child), result->children.size());
    }
    return result;
}

std::unique_ptr<Model> leaf(Kind kind, std::u16string content) {
    auto result = std::make_unique<Model>();
    result->kind = kind;
    result->content = std::move(content);
    return result;
}

std::u16string replacedAll(std::u16string text, std::u16string_view from, std::u16string_view to) {
    for (std::size_t at = 0; (at = text.find(from, at)) != std::u16string::npos; at += to.size()) {
        text.replace(at, from.size(), to);
    }
    return text;
}

std::u16string spacedHyphens(std::u16string text) {
    while (text.find(u"--") != std::u16string::npos) {
        text = replacedAll(text, u"--", u"- -");
    }
    return text;
}

/// Applies mutations to a model. Each call returns the node that is to be selected afterwards.
struct Mutator {
    Model& document;

    Model* put(std::unique_ptr<Model> node, Model* target, Placement placement) const {
        Model* const added = node.get();
        const bool isInside = placement == Placement::firstChild || placement == Placement::lastChild;
        if (isInside || target == &document) {
            const bool isDocument = target == &document;
            const bool isFirst = placement == Placement::firstChild || placement == Placement::before ||
                                 (!isDocument && target->hasOnlyText());
            target->add(std::move(node), isFirst ? 0 : target->children.size());
        } else {
            target->parent->add(std::move(node), target->index() + (placement == Placement::after ? 1 : 0));
        }
        return added;
    }

    Model* operator()(const TM::Rename& rename) const {
        Model* const node = document.at(rename.path);
        node->name = rename.name;
        return node;
    }
    Model* operator()(const TM::SetAttribute& set) const {
        Model* const node = document.at(set.path);
        if (Model::Attribute* const attribute = node->attribute(set.name)) {
            attribute->value = set.value;
        } else {
            node->attributes.push_back({set.name, set.value});
        }
        return node;
    }
    Model* operator()(const TM::RenameAttribute& rename) const {
        Model* const node = document.at(rename.path);
        node->attribute(rename.oldName)->name = rename.newName;
        return node;
    }
    Model* operator()(const TM::RemoveAttribute& remove) const {
        Model* const node = document.at(remove.path);
        const Model::Attribute* const attribute = node->attribute(remove.name);
        node->attributes.erase(node->attributes.begin() + (attribute - node->attributes.data()));
        return node;
    }
    Model* operator()(const TM::SetText& set) const {
        Model* const node = document.at(set.path);
        switch (node->kind) {
        case Kind::element:
            node->children.clear();
            node->add(leaf(Kind::text, Escaping::escapeText(set.text)), 0);
            break;
        case Kind::text:
            node->content = Escaping::escapeText(set.text);
            break;
        case Kind::comment:
            node->content = spacedHyphens(set.text);
            break;
        default:
            node->content = set.text;
            break;
        }
        return node;
    }
    Model* operator()(const TM::InsertElement& insert) const {
        auto node = std::make_unique<Model>();
        node->kind = Kind::element;
        node->name = insert.name;
        return put(std::move(node), document.at(insert.target), insert.placement);
    }
    Model* operator()(const TM::InsertComment& insert) const {
        return put(leaf(Kind::comment, u" " + spacedHyphens(insert.text) + u" "), document.at(insert.target),
                   insert.placement);
    }
    Model* operator()(const TM::Delete& remove) const {
        Model* const node = document.at(remove.path);
        Model* const parent = node->parent;
        const std::size_t index = node->index();
        parent->children.erase(parent->children.begin() + static_cast<std::ptrdiff_t>(index));
        if (index < parent->children.size()) {
            return parent->children[index].get();
        }
        return index > 0 ? parent->children[index - 1].get() : parent;
    }
    Model* operator()(const TM::Duplicate& duplicate) const {
        Model* const node = document.at(duplicate.path);
        return put(node->copy(), node, Placement::after);
    }
    Model* operator()(const TM::Move& move) const {
        Model* const node = document.at(move.path);
        Model* const moved = put(node->copy(), document.at(move.target), move.placement);
        std::erase_if(node->parent->children, [node](const auto& child) { return child.get() == node; });
        return moved;
    }
    Model* operator()(const TM::Wrap& wrap) const {
        Model* const node = document.at(wrap.path);
        auto wrapper = std::make_unique<Model>();
        wrapper->kind = Kind::element;
        wrapper->name = wrap.name;
        wrapper->add(node->copy(), 0);
        auto& place = node->parent->children[node->index()];
        wrapper->parent = node->parent;
        place = std::move(wrapper);
        return place.get();
    }
};

template <class Value>
const Value& oneOf(Random& random, const std::vector<Value>& values) {
    return values[random.below(values.size())];
}

const std::vector<std::u16string> names = {u"a", u"b", u"n", u"id", u"class", u"\u00E9", u"1", u""};
const std::vector<std::u16string> texts = {u"",  u"v",     u"1 < 2 & \"3\" > 'x'", u"]]>",
                                           u"-", u"a---b", u"]]]]>--]]>",          u"two\n\tlines"};

NodePath randomPath(Random& random, const DocumentTree& tree) {
    if (random.below(50) == 0) {
        return {{9, 9}};
    }
    return tree.path({static_cast<std::uint32_t>(random.below(tree.nodes.size()))});
}

TM randomMutation(Random& random, const DocumentTree& tree) {
    const NodePath path = randomPath(random, tree);
    const NodePath target = randomPath(random, tree);
    const auto placement = static_cast<Placement>(random.below(4));
    const std::u16string& name = oneOf(random, names);
    const std::u16string& text = oneOf(random, texts);
    switch (random.below(11)) {
    case 0:
        return TM::Rename{path, name};
    case 1:
        return TM::SetAttribute{path, name, text};
    case 2:
        return TM::RenameAttribute{path, oneOf(random, names), name};
    case 3:
        return TM::RemoveAttribute{path, name};
    case 4:
        return TM::SetText{path, text};
    case 5:
        return TM::InsertElement{name, target, placement};
    case 6:
        return TM::InsertComment{text, target, placement};
    case 7:
        return TM::Delete{path};
    case 8:
        return TM::Duplicate{path};
    case 9:
        return TM::Move{path, target, placement};
    default:
        return TM::Wrap{path, name};
    }
}

IndentStyle randomIndent(Random& random) {
    return random.below(2) == 0 ? IndentStyle::tabs()
                                : IndentStyle::spaces(static_cast<int>(random.below(5)));
}

/// Whether the edits lie inside `text` and do not overlap: each ends before or where the next begins.
bool areApplicable(const std::vector<TextEdit>& edits, const std::u16string& text) {
    std::vector<TextEdit> ordered = TextEdit::applicationOrder(edits);
    std::ranges::reverse(ordered);
    Offset kept = 0;
    return std::ranges::all_of(ordered, [&](const TextEdit& edit) {
        return edit.range.lower >= std::exchange(kept, edit.range.upper) && kept <= text.size();
    });
}

/// `text` without the ranges that the edits replace.
std::u16string removed(const std::vector<TextEdit>& edits, const std::u16string& text) {
    std::vector<TextEdit> deletions = edits;
    for (TextEdit& edit : deletions) {
        edit.replacement.clear();
    }
    return TextEdit::apply(deletions, text);
}

/// Whether `part` is `whole` with units left out.
bool isSubsequence(const std::u16string& part, const std::u16string& whole) {
    std::size_t at = 0;
    for (const char16_t unit : whole) {
        at += at < part.size() && part[at] == unit ? 1 : 0;
    }
    return at == part.size();
}

/// Checks the node at `selectOffset`: it starts there, unless it is a text, which may have been joined with
/// others.
void checkSelection(const DocumentTree& tree, std::optional<Offset> selectOffset, const Model& expected) {
    if (expected.kind == Kind::document) {
        EXPECT_EQ(selectOffset, std::nullopt);
        return;
    }
    ASSERT_TRUE(selectOffset);
    const NodeID selected = tree.node(*selectOffset);
    if (expected.isText()) {
        // A text that is empty now has no node.
        const bool isText = tree[selected].kind == Kind::text && tree[selected].range.upper >= *selectOffset;
        EXPECT_TRUE(isText || Model::withoutSpace(expected.content).empty());
        return;
    }
    EXPECT_EQ(tree[selected].range.lower, *selectOffset);
    // If a section was split, its first part is selected.
    if (expected.kind != Kind::cdata) {
        EXPECT_EQ(model(tree, selected)->canonical(), expected.canonical());
    }
}

void checkExactness(const std::u16string& text, const DocumentTree& tree, const TM& mutation,
                    const Plan& plan) {
    const DocumentTree after = TreeParser::parse(SourceText(TextEdit::apply(plan.edits, text)));
    const std::unique_ptr<Model> expected = model(tree, NodeID::document());
    const Model* const selected = std::visit(Mutator{*expected}, mutation.value);
    EXPECT_EQ(model(after, NodeID::document())->canonical(), expected->canonical());
    checkSelection(after, plan.selectOffset, *selected);
}

} // namespace

TEST(MutationPlannerProperty, ChangesExactlyWhatWasAskedFor) {
    Random random;
    int planned = 0;
    for (int round = 0; round < 30'000; ++round) {
        const std::u16string text =
            round % 2 == 0 ? RandomDocument::wellFormed(random) : RandomDocument::faulty(random);
        const DocumentTree tree = TreeParser::parse(SourceText(text));
        const TM mutation = randomMutation(random, tree);
        const auto result = plan(mutation, tree, randomIndent(random));
        if (result) {
            ++planned;
            ASSERT_TRUE(areApplicable(result->edits, text));
            checkExactness(text, tree, mutation, *result);
        }
        if (::testing::Test::HasFailure()) {
            FAIL() << "round " << round << ", mutation " << mutation.value.index() << " of "
                   << ::testing::PrintToString(text) << " gives "
                   << ::testing::PrintToString(TextEdit::apply(result->edits, text));
        }
    }
    EXPECT_GT(planned, 10'000);
}

TEST(MutationPlannerProperty, KeepsWhateverTheEditsDoNotReplace) {
    Random random;
    for (int round = 0; round < 30'000; ++round) {
        const std::u16string text = RandomDocument::broken(random);
        const DocumentTree tree = TreeParser::parse(SourceText(text));
        const TM mutation = randomMutation(random, tree);
        const auto result = plan(mutation, tree, randomIndent(random));
        if (result) {
            ASSERT_TRUE(areApplicable(result->edits, text)) << ::testing::PrintToString(text);
            const std::u16string after = TextEdit::apply(result->edits, text);
            ASSERT_LE(result->selectOffset.value_or(0), after.size()) << ::testing::PrintToString(text);
            ASSERT_TRUE(isSubsequence(removed(result->edits, text), after)) << ::testing::PrintToString(text);
        }
    }
}
