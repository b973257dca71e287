#include "ReflowTrace.h"

#include <algorithm>

namespace {

/// Whether the attribute `xml:space` of the element preserves white space; none without the attribute.
std::optional<bool> preserves(const DocumentTree& tree, NodeID element) {
    const auto space = tree.attribute(u"xml:space", element);
    if (!space) {
        return std::nullopt;
    }
    return tree.text.units(space->value) == u"preserve";
}

/// For each node, whether white space in its content may be part of the text.
std::vector<bool> nodesWithTextSpace(const DocumentTree& tree) {
    const std::size_t count = tree.nodes.size();
    std::vector<bool> keeps(count);
    std::vector<bool> holdsText(count);
    std::vector<bool> holdsOther(count);
    for (std::uint32_t raw = 1; raw < count; ++raw) {
        const TreeNode& node = tree.nodes[raw];
        const bool isText = node.kind == TreeNode::Kind::text || node.kind == TreeNode::Kind::cdata;
        (isText ? holdsText : holdsOther)[node.parent.raw] = true;
        if (node.isElement()) {
            keeps[raw] = preserves(tree, NodeID{raw}).value_or(keeps[node.parent.raw]);
        }
    }
    // Starts after the document, because white space outside the root is never text.
    for (std::uint32_t raw = 1; raw < count; ++raw) {
        keeps[raw] = keeps[raw] || (holdsText[raw] && holdsOther[raw]);
    }
    return keeps;
}

} // namespace

ReflowTrace::ReflowTrace(const DocumentTree& tree, std::span<const Offset> places) : m_tree(tree) {
    for (const Offset place : places) {
        m_places.push_back({std::min(place, tree.text.count()), m_places.size()});
    }
    std::ranges::sort(m_places, {}, &Place::before);
}

void ReflowTrace::keep(SourceRange range, NodeID in, std::u16string_view output) {
    noteSpace({m_oldEnd, range.lower}, output.substr(m_newEnd), in);
    // An empty range stands for added text, which comes after a place at its offset.
    const Offset end = range.isEmpty() ? range.upper + 1 : range.upper;
    for (; m_next < m_places.size() && m_places[m_next].before < end; ++m_next) {
        Place& place = m_places[m_next];
        if (place.before >= range.lower && !range.isEmpty()) {
            place.after = output.size() + (place.before - range.lower);
        } else {
            place.after = hasLineBreak({m_oldEnd, place.before}) ? output.size() : m_newEnd;
        }
    }
    m_oldEnd = range.upper;
    m_newEnd = output.size() + range.length();
}

void ReflowTrace::finish(std::u16string_view output) {
    for (; m_next < m_places.size(); ++m_next) {
        Place& place = m_places[m_next];
        place.after = hasLineBreak({m_oldEnd, place.before}) ? output.size() : m_newEnd;
    }
}

std::vector<Offset> ReflowTrace::places() const {
    std::vector<Offset> places(m_places.size());
    for (const Place& place : m_places) {
        places[place.index] = static_cast<Offset>(place.after);
    }
    return places;
}

bool ReflowTrace::hasLineBreak(SourceRange space) const { return m_tree.text.units(space).contains(u'\n'); }

void ReflowTrace::noteSpace(SourceRange before, std::u16string_view after, NodeID in) {
    if (m_changesTextSpace || m_tree.text.units(before) == after) {
        return;
    }
    if (m_mayBeText.empty()) {
        m_mayBeText = nodesWithTextSpace(m_tree);
    }
    m_changesTextSpace = m_mayBeText[in.raw];
}
