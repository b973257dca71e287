#pragma once

#include "NodePath.h"

#include <concepts>
#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <variant>

/// A change to a document that the user requests in the tree or the inspector; `MutationPlanner` turns it
/// into edits. Names and texts are unescaped; the planner escapes them where necessary.
struct TreeMutation {
    /// The new position of a node: inside the target, or beside it.
    enum class Placement : std::uint8_t { firstChild, lastChild, before, after };

    struct Rename {
        NodePath path;
        std::u16string name;
        bool operator==(const Rename&) const = default;
    };
    struct SetAttribute {
        NodePath path;
        std::u16string name;
        std::u16string value;
        bool operator==(const SetAttribute&) const = default;
    };
    struct RenameAttribute {
        NodePath path;
        std::u16string oldName;
        std::u16string newName;
        bool operator==(const RenameAttribute&) const = default;
    };
    struct RemoveAttribute {
        NodePath path;
        std::u16string name;
        bool operator==(const RemoveAttribute&) const = default;
    };
    struct SetText {
        NodePath path;
        std::u16string text;
        bool operator==(const SetText&) const = default;
    };
    struct InsertElement {
        std::u16string name;
        NodePath target;
        Placement placement;
        bool operator==(const InsertElement&) const = default;
    };
    struct InsertComment {
        std::u16string text;
        NodePath target;
        Placement placement;
        bool operator==(const InsertComment&) const = default;
    };
    struct Delete {
        NodePath path;
        bool operator==(const Delete&) const = default;
    };
    struct Duplicate {
        NodePath path;
        bool operator==(const Duplicate&) const = default;
    };
    struct Move {
        NodePath path;
        NodePath target;
        Placement placement;
        bool operator==(const Move&) const = default;
    };
    /// Puts the node into a new element named `name`.
    struct Wrap {
        NodePath path;
        std::u16string name;
        bool operator==(const Wrap&) const = default;
    };

    using Case = std::variant<Rename, SetAttribute, RenameAttribute, RemoveAttribute, SetText, InsertElement,
                              InsertComment, Delete, Duplicate, Move, Wrap>;
    Case value;

    /// Each of the cases converts to a mutation.
    TreeMutation(Case mutation) : value(std::move(mutation)) {}
    template <class Specific>
        requires std::constructible_from<Case, Specific>
    TreeMutation(Specific mutation) : value(std::move(mutation)) {}

    bool operator==(const TreeMutation&) const = default;
};

template <>
struct std::hash<TreeMutation> {
    std::size_t operator()(const TreeMutation& mutation) const noexcept;
};
