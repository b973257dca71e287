#pragma once

#include "SourceRange.h"

#include <cstdint>
#include <optional>
#include <string>

/// Identifies a node by its index in `DocumentTree::nodes`. Valid for one tree only.
struct NodeID {
    static constexpr std::uint32_t noneRaw = 0xFFFFFFFF;

    std::uint32_t raw = noneRaw;

    /// The document node of every tree.
    static constexpr NodeID document() { return {0}; }
    static constexpr NodeID none() { return {}; }

    constexpr bool isNone() const { return raw == noneRaw; }

    /// The ID as text: "#3", or "#none".
    std::string description() const {
        return std::string("#").append(isNone() ? "none" : std::to_string(raw));
    }

    constexpr auto operator<=>(const NodeID&) const = default;
};

/// One node of a parsed document. It contains ranges of the text, not copies.
struct TreeNode {
    enum class Kind : std::uint8_t { document, element, text, comment, cdata, instruction, doctype };

    /// States of an element; other nodes have none.
    struct Flags {
        std::uint8_t rawValue = 0;

        constexpr bool contains(Flags others) const {
            return (rawValue & others.rawValue) == others.rawValue;
        }
        constexpr Flags operator|(Flags other) const {
            return {static_cast<std::uint8_t>(rawValue | other.rawValue)};
        }
        constexpr bool operator==(const Flags&) const = default;
    };
    /// The start tag ends with `/>`, or was cut off.
    static constexpr Flags selfClosing{1};
    /// A matching end tag closed the element.
    static constexpr Flags hasCloseTag{2};
    /// The start tag was cut off before `>` or `/>`; always together with `selfClosing`.
    static constexpr Flags unterminated{4};
    /// The element was closed implicitly, without an end tag.
    static constexpr Flags unclosed{8};

    Kind kind = Kind::document;
    Flags flags;

    /// All units of the node. An element extends from its `<` to the end of its end tag; without an end tag,
    /// to the end of the start tag or to where it was closed implicitly.
    SourceRange range;
    /// An element's name in its start tag, an instruction's target; otherwise empty at `range.lower`.
    SourceRange nameRange;
    /// The units between the tags of an element or between the delimiters of another construct; for a text,
    /// all of them.
    SourceRange contentRange;

    std::uint32_t firstAttribute = 0; ///< Index in `DocumentTree::attributes`.
    std::uint32_t attributeCount = 0;

    NodeID parent;
    NodeID firstChild;
    NodeID nextSibling;
    std::uint32_t childCount = 0;

    bool isElement() const { return kind == Kind::element; }
    bool hasChildren() const { return childCount != 0; }

    /// The start tag of an element; any other node's `range`.
    SourceRange startTagRange() const;

    /// The name inside the end tag, for an element that has one.
    std::optional<SourceRange> closeNameRange() const;

    bool operator==(const TreeNode&) const = default;
};
static_assert(sizeof(TreeNode) == 52);

/// One attribute of an element.
struct AttributeSpan {
    SourceRange range; ///< From the name to the end of the value, or to the `=`, or just the name.
    SourceRange name;
    SourceRange value;  ///< Inside the quotes; without a value, empty at the end of the name.
    char16_t quote = 0; ///< The opening quote; 0 without a value.

    bool operator==(const AttributeSpan&) const = default;
};
static_assert(sizeof(AttributeSpan) == 28);

template <>
struct std::hash<NodeID> {
    std::size_t operator()(NodeID node) const noexcept { return hashOf(node.raw); }
};

template <>
struct std::hash<TreeNode> {
    std::size_t operator()(const TreeNode& node) const noexcept {
        return hashOf(static_cast<int>(node.kind), node.flags.rawValue, node.range, node.nameRange,
                      node.contentRange, node.parent);
    }
};

template <>
struct std::hash<AttributeSpan> {
    std::size_t operator()(const AttributeSpan& attribute) const noexcept {
        return hashOf(attribute.range, attribute.name, attribute.value);
    }
};
