#include "ExpansionCarry.h"

#include <algorithm>
#include <unordered_map>
#include <utility>

namespace {

using Absent = ExpansionCarry::Absent;

constexpr std::size_t mostDeleted = 100'000;

/// A member of the set in the earlier tree, and the node of the later tree that stands at the same path.
struct Member {
    NodeID node;
    NodeID samePath;
};

/// The nodes of `nodes.from()` that `expanded` has the paths of, in document order.
std::vector<Member> members(const NodePathSet& expanded, const NodeCarry& nodes) {
    struct Siblings {
        NodeID node;
        NodeID samePath;
        std::uint32_t position;
        NodePathSet::Cursor cursor;
    };
    const DocumentTree& from = nodes.from();
    const DocumentTree& to = nodes.to();
    const auto firstChild = [](const DocumentTree& tree, NodeID node) {
        return node.isNone() ? NodeID() : tree[node].firstChild;
    };
    const auto next = [](const DocumentTree& tree, NodeID node) {
        return node.isNone() ? NodeID() : tree[node].nextSibling;
    };
    std::vector<Member> found;
    // Each level waits at the sibling that comes next; one that has no more records leaves nothing behind.
    std::vector<Siblings> levels;
    const NodeID document = NodeID::document();
    levels.push_back(
        {firstChild(from, document), firstChild(to, document), 0, expanded.below(NodePathSet::root())});
    while (!levels.empty()) {
        Siblings at = levels.back();
        levels.pop_back();
        while (!at.node.isNone() && !at.cursor.isAtEnd()) {
            const NodePathSet::Place place = at.cursor.advance(at.position);
            const Siblings here = at;
            at = {next(from, at.node), next(to, at.samePath), at.position + 1, at.cursor};
            if (expanded.contains(place)) {
                found.push_back({here.node, here.samePath});
            }
            if (!place.isNone() && !expanded.below(place).isAtEnd()) {
                if (!at.node.isNone() && !at.cursor.isAtEnd()) {
                    levels.push_back(at);
                }
                at = {firstChild(from, here.node), firstChild(to, here.samePath), 0, expanded.below(place)};
            }
        }
    }
    return found;
}

/// The members of the later tree, with the nodes that lead to them.
class Carried {
public:
    explicit Carried(const DocumentTree& tree)
        : m_tree(tree), m_isMember(tree.nodes.size(), false), m_leads(tree.nodes.size(), false) {}

    /// Adds `node`, and those around it that are new.
    void add(NodeID node, NodeCarry& nodes) {
        m_last = std::max(m_last, node);
        m_isMember[node.raw] = true;
        for (; node != NodeID::document() && !m_leads[node.raw]; node = m_tree[node].parent) {
            m_leads[node.raw] = true;
            if (nodes.isAdded(node)) {
                m_isMember[node.raw] = true;
            }
        }
    }

    NodePathSet paths() const {
        struct Siblings {
            NodeID node;
            std::uint32_t position;
            NodePathSet::Place parent;
        };
        NodePathSet paths;
        std::vector<Siblings> levels{{m_tree[NodeID::document()].firstChild, 0, NodePathSet::root()}};
        while (!levels.empty()) {
            Siblings at = levels.back();
            levels.pop_back();
            while (!at.node.isNone() && at.node <= m_last) {
                const Siblings here = at;
                at = {m_tree[at.node].nextSibling, at.position + 1, at.parent};
                if (m_leads[here.node.raw]) {
                    const NodePathSet::Place place =
                        paths.insert(here.parent, here.position, m_isMember[here.node.raw]);
                    if (!at.node.isNone()) {
                        levels.push_back(at);
                    }
                    at = {m_tree[here.node].firstChild, 0, place};
                }
            }
        }
        return paths;
    }

private:
    const DocumentTree& m_tree;
    NodeID m_last = NodeID::document(); ///< Nothing behind it leads anywhere.
    std::vector<bool> m_isMember;
    std::vector<bool> m_leads;
};

/// Notes that an expanded node is gone from the later tree.
void goAbsent(NodeID node, Absent& absent, const NodeCarry& nodes) {
    const DocumentTree& from = nodes.from();
    const std::uint64_t fingerprint = NodeCarry::fingerprint(from, node);
    if (const auto name = nodes.edits().now(from[node].nameRange.lower)) {
        absent.hidden.push_back({*name, fingerprint});
    } else {
        absent.deleted.push_back(fingerprint);
    }
}

/// Gives `carried` what comes back, and returns what stays absent.
Absent comeBack(const Absent& absent, Carried& carried, NodeCarry& nodes) {
    const DocumentTree& to = nodes.to();
    Absent still;
    still.deleted = absent.deleted;
    for (const Absent::Hidden& hidden : absent.hidden) {
        const auto name = nodes.edits().now(hidden.name);
        if (!name) {
            still.deleted.push_back(hidden.fingerprint);
            continue;
        }
        const NodeID found = to.node(*name);
        if (to[found].isElement() && to[found].nameRange.lower == *name) {
            carried.add(found, nodes);
        } else {
            still.hidden.push_back({*name, hidden.fingerprint});
        }
    }
    if (still.deleted.empty()) {
        return still;
    }
    std::unordered_map<std::uint64_t, std::size_t> wanted;
    for (const std::uint64_t fingerprint : still.deleted) {
        ++wanted[fingerprint];
    }
    std::unordered_map<std::uint64_t, std::size_t> returned;
    for (const NodeID node : nodes.newNodes()) {
        const auto found = wanted.find(NodeCarry::fingerprint(to, node));
        if (found != wanted.end() && found->second > 0) {
            --found->second;
            ++returned[found->first];
            carried.add(node, nodes);
        }
    }
    std::erase_if(still.deleted, [&](std::uint64_t fingerprint) {
        const auto found = returned.find(fingerprint);
        return found != returned.end() && found->second > 0 && found->second-- > 0;
    });
    if (still.deleted.size() > mostDeleted) {
        still.deleted.erase(still.deleted.begin(), still.deleted.end() - mostDeleted);
    }
    return still;
}

} // namespace

ExpansionCarry::Expansion ExpansionCarry::carried(const NodePathSet& expanded, const Absent& absent,
                                                  NodeCarry& nodes) {
    const DocumentTree& to = nodes.to();
    Carried carried(to);
    Absent gone;
    for (const Member& member : members(expanded, nodes)) {
        if (const auto found = nodes.carried(member.node)) {
            carried.add(*found, nodes);
            continue;
        }
        const bool hasSuccessor =
            !member.samePath.isNone() && to[member.samePath].isElement() && nodes.isAdded(member.samePath);
        if (hasSuccessor) {
            carried.add(member.samePath, nodes);
        }
        goAbsent(member.node, gone, nodes);
    }
    Absent now = comeBack(absent, carried, nodes);
    now.hidden.insert(now.hidden.end(), gone.hidden.begin(), gone.hidden.end());
    now.deleted.insert(now.deleted.end(), gone.deleted.begin(), gone.deleted.end());
    return {carried.paths(), std::move(now)};
}
