#pragma once

#include "Hash.h"

#include <compare>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

/// The position of a node in a tree: its index, counted from 0, among the children of each node on the way
/// down from the document. Node IDs change with every parse; a path finds the node at the same position in
/// the next tree.
///
///
/// The empty path is that of the document. Paths are ordered as their nodes are in the document: a node comes
/// before its children.
struct NodePath {
    std::vector<std::uint32_t> indices;

    /// Whether the node at the path `node` is a descendant of the node at this path.
    bool contains(const NodePath& node) const;

    /// "/0/2/1", or "/" for the document.
    std::string description() const;

    auto operator<=>(const NodePath&) const = default;
};

template <>
struct std::hash<NodePath> {
    std::size_t operator()(const NodePath& path) const noexcept;
};
