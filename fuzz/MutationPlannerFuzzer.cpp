#include "MutationPlanner.h"
#include "Precondition.h"
#include "TreeParser.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>

namespace {

/// Reads choices from the start of the input.
class Choices {
public:
    Choices(const std::uint8_t* data, std::size_t size) : m_data(data), m_size(size) {}

    std::uint8_t next() {
        if (m_size == 0) {
            return 0;
        }
        --m_size;
        return *m_data++;
    }

    std::u16string shortText() {
        std::u16string text;
        for (std::size_t left = next() % 5U; left > 0; --left) {
            const std::uint8_t unit = next();
            // The last ones become surrogates.
            text.push_back(unit < 0xF0 ? unit : static_cast<char16_t>(0xD7F8 + unit));
        }
        return text;
    }

    /// The rest of the input, as UTF-16 or as Latin-1.
    std::u16string rest() {
        if (next() % 2 == 0) {
            return {m_data, m_data + m_size};
        }
        std::u16string text(m_size / sizeof(char16_t), u'\0');
        std::memcpy(text.data(), m_data, text.size() * sizeof(char16_t));
        return text;
    }

private:
    const std::uint8_t* m_data;
    std::size_t m_size;
};

/// The choices of a mutation, read before there is a tree from which nodes can be chosen.
struct Recipe {
    std::uint8_t mutation;
    std::uint8_t node;
    std::uint8_t target;
    TreeMutation::Placement placement;
    std::u16string name;
    std::u16string text;
};

NodePath path(const DocumentTree& tree, std::uint8_t choice) {
    return tree.path({static_cast<std::uint32_t>(choice % tree.nodes.size())});
}

TreeMutation make(const Recipe& recipe, const DocumentTree& tree) {
    const NodePath node = path(tree, recipe.node);
    const NodePath target = path(tree, recipe.target);
    switch (recipe.mutation % 11) {
    case 0:
        return TreeMutation::Rename{node, recipe.name};
    case 1:
        return TreeMutation::SetAttribute{node, recipe.name, recipe.text};
    case 2:
        return TreeMutation::RenameAttribute{node, recipe.text, recipe.name};
    case 3:
        return TreeMutation::RemoveAttribute{node, recipe.name};
    case 4:
        return TreeMutation::SetText{node, recipe.text};
    case 5:
        return TreeMutation::InsertElement{recipe.name, target, recipe.placement};
    case 6:
        return TreeMutation::InsertComment{recipe.text, target, recipe.placement};
    case 7:
        return TreeMutation::Delete{node};
    case 8:
        return TreeMutation::Duplicate{node};
    case 9:
        return TreeMutation::Move{node, target, recipe.placement};
    default:
        return TreeMutation::Wrap{node, recipe.name};
    }
}

} // namespace

/// Plans can be applied: their edits lie inside the text and do not overlap, which `apply` checks. The node
/// to select lies inside the new text. The path of a node resolves to this node.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Choices choices(data, size);
    const Recipe recipe{.mutation = choices.next(),
                        .node = choices.next(),
                        .target = choices.next(),
                        .placement = static_cast<TreeMutation::Placement>(choices.next() % 4),
                        .name = choices.shortText(),
                        .text = choices.shortText()};
    const SourceText text(choices.rest());
    const DocumentTree tree = TreeParser::parse(text);
    const NodeID node{static_cast<std::uint32_t>(recipe.node % tree.nodes.size())};
    precondition(tree.resolve(tree.path(node)) == node, "a path leads to its node");
    precondition(tree.xpath(node).starts_with(u"/"), "a path for display starts at the document");

    const auto plan = MutationPlanner::plan(make(recipe, tree), tree, IndentStyle::spaces(2));
    if (plan) {
        const std::u16string after = TextEdit::apply(plan->edits, text.units());
        precondition(plan->selectOffset.value_or(0) <= after.size(), "the selection lies inside the text");
    }
    return 0;
}
