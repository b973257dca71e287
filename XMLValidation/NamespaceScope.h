#pragma once

#include "DocumentType.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// The namespaces that are bound to prefixes at one node of a tree. Judges nothing: bindings that the
/// standard forbids are told like others.
class NamespaceScope {
public:
    struct Binding {
        std::u16string prefix; ///< Empty for the default namespace.
        std::u16string name;   ///< Of the namespace; empty where a declaration takes the binding away.
        NodeID declaredBy;     ///< The element whose tag or whose defaults declare it; none for `xml`.
        SourceRange range;     ///< The attribute; empty where a default value declares it.

        bool operator==(const Binding&) const = default;
    };

    /// The bindings at `node`: an element's own declarations count. Without `type` no attribute has a
    /// default. Linear in the attributes of the node and of its ancestors.
    static NamespaceScope at(const DocumentTree& tree, NodeID node, const DocumentType* type = nullptr);

    /// All bindings, each prefix once: that of `xml`, then the innermost first.
    const std::vector<Binding>& bindings() const { return m_bindings; }

    /// The name of the namespace that `prefix` is bound to; none when it is bound to none.
    std::optional<std::u16string_view> name(std::u16string_view prefix) const;

    /// A prefix that is bound to the namespace `name`, the innermost of several; the default namespace, which
    /// attributes have no part in, is none.
    std::optional<std::u16string_view> prefix(std::u16string_view name) const;

private:
    std::vector<Binding> m_bindings;
};
