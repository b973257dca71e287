#include "NodePathSet.h"

NodePathSet::NodePathSet() : m_records(1) {}

bool NodePathSet::contains(const NodePath& path) const { return contains(place(path)); }

void NodePathSet::insert(const NodePath& path) {
    Place at = root();
    for (const std::uint32_t position : path.indices) {
        at = add(at, position);
    }
    m_records[at.raw].isMember = true;
}

void NodePathSet::erase(const NodePath& path) {
    if (const Place at = place(path); !at.isNone()) {
        m_records[at.raw].isMember = false;
    }
}

void NodePathSet::insertAncestors(const NodePath& of) {
    Place at = root();
    for (std::size_t level = 0; level + 1 < of.indices.size(); ++level) {
        at = add(at, of.indices[level]);
        m_records[at.raw].isMember = true;
    }
}

NodePathSet::Place NodePathSet::place(const NodePath& of) const {
    Place at = root();
    for (std::size_t level = 0; level < of.indices.size() && !at.isNone(); ++level) {
        at = below(at).advance(of.indices[level]);
    }
    return at;
}

NodePathSet::Place NodePathSet::insert(Place parent, std::uint32_t position, bool isMember) {
    const Place added = add(parent, position);
    m_records[added.raw].isMember |= isMember;
    return added;
}

/// The record of `position` below another, which is made when there is none.
NodePathSet::Place NodePathSet::add(Place below, std::uint32_t position) {
    Place previous;
    Place next = m_records[below.raw].firstBelow;
    if (const Place last = m_records[below.raw].lastAdded;
        !last.isNone() && m_records[last.raw].position < position) {
        previous = last;
        next = m_records[last.raw].next;
    }
    while (!next.isNone() && m_records[next.raw].position < position) {
        previous = next;
        next = m_records[next.raw].next;
    }
    if (!next.isNone() && m_records[next.raw].position == position) {
        return next;
    }
    const Place added{static_cast<std::uint32_t>(m_records.size())};
    m_records.push_back({.position = position, .next = next});
    (previous.isNone() ? m_records[below.raw].firstBelow : m_records[previous.raw].next) = added;
    m_records[below.raw].lastAdded = added;
    return added;
}
