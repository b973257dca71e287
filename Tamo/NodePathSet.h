#pragma once

#include "NodePath.h"

#include <cstdint>
#include <vector>

/// A set of paths that share what they have in common: adding the million ancestors of one deep node takes a
/// million small records, not a million paths.
///
/// The place of a path is where its record stands. Walks over a tree go down the places in step with it, so
/// that asking about every node costs no more than the walk.
class NodePathSet {
public:
    /// The record of a path, until the set changes; none where the set knows no path that leads there.
    struct Place {
        static constexpr std::uint32_t noneRaw = 0xFFFFFFFF;

        std::uint32_t raw = noneRaw;

        bool isNone() const { return raw == noneRaw; }
    };

    /// The records below one place, asked for in ascending order of their positions.
    class Cursor;

    NodePathSet();

    bool contains(const NodePath& path) const;
    void insert(const NodePath& path);
    void erase(const NodePath& path);

    /// Adds the path of every node around the one at `of`, but neither that one nor the document.
    void insertAncestors(const NodePath& of);

    /// The place of the document.
    static Place root() { return {0}; }

    Place place(const NodePath& of) const;
    Cursor below(Place place) const;

    /// Adds the path below `parent` that ends in `position`, as a member or as one that only leads to others.
    /// Takes constant time when positions ascend.
    Place insert(Place parent, std::uint32_t position, bool isMember);
    bool contains(Place place) const { return !place.isNone() && m_records[place.raw].isMember; }

private:
    /// A path by its last position. The records below it form a list in ascending order.
    struct Record {
        std::uint32_t position = 0;
        Place firstBelow;
        Place next;
        /// The record below that was last added: the next one mostly comes right after it.
        Place lastAdded;
        bool isMember = false;
    };

    Place add(Place below, std::uint32_t position);

    std::vector<Record> m_records;
};

class NodePathSet::Cursor {
public:
    /// Whether there are no more records.
    bool isAtEnd() const { return m_current.isNone(); }

    /// The place of the path that ends in `position`, which is not below the one asked for before.
    Place advance(std::uint32_t position) {
        while (!m_current.isNone() && (*m_records)[m_current.raw].position < position) {
            m_current = (*m_records)[m_current.raw].next;
        }
        return !m_current.isNone() && (*m_records)[m_current.raw].position == position ? m_current : Place();
    }

private:
    friend class NodePathSet;

    Cursor(const std::vector<Record>& records, Place first) : m_records(&records), m_current(first) {}

    const std::vector<Record>* m_records;
    Place m_current;
};

inline NodePathSet::Cursor NodePathSet::below(Place place) const {
    return {m_records, place.isNone() ? Place() : m_records[place.raw].firstBelow};
}
