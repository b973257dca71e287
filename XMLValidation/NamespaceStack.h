#pragma once

#include "DocumentType.h"
#include "NameHash.h"
#include "QualifiedName.h"
#include "ValueNormalizer.h"

#include <array>
#include <cstdint>
#include <cstring>
#include <deque>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

/// The namespaces bound to prefixes while the elements of a tree are walked in order: looked up in constant
/// time however many there are. Judges nothing. Declarations of a start tag that was cut off hold until its
/// parent ends, since the parser takes what follows it for siblings.
class NamespaceStack {
public:
    /// A namespace, numbered in order of first appearance. 0 is none.
    using Namespace = std::uint32_t;
    static constexpr Namespace none = 0;
    static constexpr Namespace xml = 1;
    static constexpr Namespace xmlns = 2;

    /// Both are borrowed; without `type` no attribute has a default.
    NamespaceStack(const DocumentTree& tree, const DocumentType* type);

    /// Whether default values declare namespaces, so that every element must be entered.
    bool hasDefaults() const { return !m_defaults.empty(); }

    /// Whether the default values were so many, for so many elements, that the last of them were left out.
    /// What is not bound may have been among them.
    bool isIncomplete() const { return m_defaultsLeft == 0; }

    /// Whether a tag may have attributes that declare a namespace.
    enum class Declarations : std::uint8_t { none, some };

    /// Leaves the elements that end before `element` and takes in what it declares. Elements may be left out
    /// that declare nothing.
    void enter(const TreeNode& element, Declarations declarations = Declarations::some) {
        leave(element.range.lower);
        if (declarations == Declarations::some || hasDefaults()) {
            bindAll(element);
        }
    }

    /// What `prefix` is bound to in the element entered last; the empty prefix is that of elements.
    Namespace find(std::u16string_view prefix) {
        if (prefix.empty()) {
            return m_bound[0];
        }
        Recent& recent = m_recent[(prefix.front() ^ prefix.back() ^ (prefix.size() << 2)) % m_recent.size()];
        if (recent.prefix.size() != prefix.size() ||
            std::memcmp(recent.prefix.data(), prefix.data(), prefix.size() * sizeof(char16_t)) != 0) {
            recent = {prefix, prefixNumber(prefix)};
        }
        return m_bound[recent.number];
    }

    /// The name of a namespace.
    std::u16string_view name(Namespace number) const { return m_names[number]; }

private:
    struct Change {
        std::uint32_t prefix;
        Namespace before;
    };
    struct Recent {
        std::u16string_view prefix;
        std::uint32_t number = 0;
    };
    struct Scope {
        Offset upper;
        std::size_t changes; ///< How many there were before.
    };

    void leave(Offset before) {
        while (!m_scopes.empty() && m_scopes.back().upper <= before) {
            leaveInnermost();
        }
    }
    void leaveInnermost();
    void bindAll(const TreeNode& element);
    void bindDefaults(const TreeNode& element);
    void bind(std::u16string_view prefix, std::u16string_view written);
    Namespace number(std::u16string_view name);
    std::uint32_t prefixNumber(std::u16string_view prefix);
    bool hasAttribute(const TreeNode& element, std::u16string_view name) const;
    void collectDefaults();

    const DocumentTree& m_tree;
    const DocumentType* m_type;
    ValueNormalizer m_normalizer;
    std::unordered_map<std::u16string_view, std::uint32_t, NameHash> m_prefixes;
    std::vector<Namespace> m_bound; ///< By the number of the prefix.
    std::unordered_map<std::u16string_view, Namespace, NameHash> m_numbers;
    std::vector<std::u16string_view> m_names;
    std::deque<std::u16string> m_owned; ///< Names that are written differently.
    std::vector<Change> m_changes;
    std::vector<Scope> m_scopes;
    /// The attributes with a default that declare a namespace, by the name of their element.
    std::unordered_map<std::u16string_view, std::vector<std::uint32_t>, NameHash> m_defaults;
    std::size_t m_defaultsLeft = 1'000'000; ///< To be bound or compared.
    std::array<Recent, 16> m_recent{};      ///< The prefixes that were looked up last.
};
