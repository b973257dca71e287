#include "DocumentType.h"

#include "DocumentTypeReader.h"

#include <algorithm>

namespace {

constexpr std::u16string_view opener = u"<!DOCTYPE";

/// The node of the declaration: before the root element.
std::optional<NodeID> declarationOf(const DocumentTree& tree) {
    for (const NodeID child : tree.children(NodeID::document())) {
        const TreeNode& node = tree[child];
        if (node.isElement()) {
            return std::nullopt;
        }
        if (node.kind == TreeNode::Kind::doctype && tree.text.hasPrefix(opener, node.range.lower)) {
            return child;
        }
    }
    return std::nullopt;
}

} // namespace

void DocumentType::sortNames() {
    for (std::uint32_t i = 0; i < entities.size(); ++i) {
        if (!entities[i].isParameter) {
            m_byName.push_back(i);
        }
    }
    const auto nameOf = [this](std::uint32_t index) { return units(entities[index].name); };
    std::ranges::stable_sort(m_byName, {}, nameOf);
    const auto repeated = std::ranges::unique(m_byName, {}, nameOf);
    m_byName.erase(repeated.begin(), repeated.end());
}

std::optional<std::uint32_t> DocumentType::generalEntity(std::u16string_view wanted) const {
    const auto nameOf = [this](std::uint32_t index) { return units(entities[index].name); };
    const auto found = std::ranges::lower_bound(m_byName, wanted, {}, nameOf);
    return found != m_byName.end() && nameOf(*found) == wanted ? std::optional(*found) : std::nullopt;
}

DocumentType DocumentType::read(const DocumentTree& tree) {
    std::vector<Violation> unused;
    return read(tree, XMLDeclarationCheck::check(tree, unused));
}

DocumentType DocumentType::read(const DocumentTree& tree, DeclaredForm form) {
    const auto node = declarationOf(tree);
    if (!node) {
        DocumentType none;
        none.texts.push_back(tree.text);
        none.version = form.version;
        none.isStandalone = form.isStandalone;
        return none;
    }
    const SourceRange range = tree[*node].range;
    DocumentTypeReader reader(tree.text, range.lower, range.upper, form);
    DocumentType type = reader.read();
    if (reader.isComplete() && type.range == range && type.violations.empty()) {
        return type;
    }
    // The parser finds the end without looking at declarations. Where the grammar finds another, and nothing
    // wrong before it, that is the end.
    DocumentTypeReader beyond(tree.text, range.lower, tree.text.count(), form);
    DocumentType whole = beyond.read();
    if (beyond.isComplete() && whole.violations.empty()) {
        return whole;
    }
    type.range = range;
    return type;
}
