#include "NamespaceScope.h"

#include "NameHash.h"
#include "QualifiedName.h"
#include "ValueNormalizer.h"

#include <algorithm>
#include <unordered_set>

namespace {

class Collector {
public:
    Collector(const DocumentTree& tree, const DocumentType* type)
        : m_tree(tree), m_type(type), m_normalizer(type) {
        add(u"xml", {.prefix = u"xml", .name = std::u16string(ReservedNamespace::xml)});
    }

    void collect(NodeID id) {
        for (const AttributeSpan& attribute : m_tree.attributesOf(id)) {
            if (const auto prefix = declaredPrefix(m_tree.text.units(attribute.name))) {
                add(*prefix, binding(*prefix, m_tree.text.units(attribute.value), id, attribute.range));
            }
        }
        if (m_type == nullptr) {
            return;
        }
        for (const DocumentType::Attribute& attribute : m_type->attributes) {
            const auto prefix = declaredPrefix(m_type->units(attribute.name));
            if (attribute.hasDefault() && prefix &&
                m_type->units(attribute.element) == m_tree.text.units(m_tree[id].nameRange)) {
                add(*prefix, binding(*prefix, m_type->units(attribute.value), id, {}));
            }
        }
    }

    std::vector<NamespaceScope::Binding> bindings;

private:
    NamespaceScope::Binding binding(std::u16string_view prefix, std::u16string_view written, NodeID node,
                                    SourceRange range) {
        return {std::u16string(prefix), m_normalizer.normalized(written), node, range};
    }

    void add(std::u16string_view prefix, NamespaceScope::Binding binding) {
        if (m_prefixes.insert(prefix).second) {
            bindings.push_back(std::move(binding));
        }
    }

    const DocumentTree& m_tree;
    const DocumentType* m_type;
    ValueNormalizer m_normalizer;
    std::unordered_set<std::u16string_view, NameHash> m_prefixes;
};

} // namespace

NamespaceScope NamespaceScope::at(const DocumentTree& tree, NodeID node, const DocumentType* type) {
    Collector collector(tree, type);
    for (NodeID id = node; !id.isNone(); id = tree[id].parent) {
        if (tree[id].isElement()) {
            collector.collect(id);
        }
    }
    NamespaceScope scope;
    scope.m_bindings = std::move(collector.bindings);
    return scope;
}

std::optional<std::u16string_view> NamespaceScope::name(std::u16string_view prefix) const {
    const auto found = std::ranges::find(m_bindings, prefix, &Binding::prefix);
    return found == m_bindings.end() || found->name.empty() ? std::nullopt
                                                            : std::optional<std::u16string_view>(found->name);
}

std::optional<std::u16string_view> NamespaceScope::prefix(std::u16string_view name) const {
    const auto isBound = [&](const Binding& binding) {
        return !binding.prefix.empty() && binding.name == name;
    };
    const auto found = std::ranges::find_if(m_bindings, isBound);
    return found == m_bindings.end() ? std::nullopt : std::optional<std::u16string_view>(found->prefix);
}
