#pragma once

#include "Hash.h"

#include <compare>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

/// Where a node stands: its position, counted from 0, among the children of each node on the way down from
/// the document. Node ids change with every parse; a path finds the node again in the next tree.
///
/// The empty path is the document. Paths order as their nodes do in the document, a node before its children.
struct NodePath {
    std::vector<std::uint32_t> indices;

    /// Whether `node` is the path of a node inside this path's node; no node is inside itself.
    bool contains(const NodePath& node) const;

    /// "/0/2/1", or "/" for the document.
    std::string description() const;

    auto operator<=>(const NodePath&) const = default;
};

template <>
struct std::hash<NodePath> {
    std::size_t operator()(const NodePath& path) const noexcept;
};
