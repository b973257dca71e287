#include "NamespaceStack.h"

#include <algorithm>

NamespaceStack::NamespaceStack(const DocumentTree& tree, const DocumentType* type)
    : m_tree(tree), m_type(type), m_normalizer(type) {
    m_names.push_back(u"");
    m_numbers.emplace(u"", none);
    prefixNumber(u"");
    m_bound[prefixNumber(u"xml")] = number(ReservedNamespace::xml);
    m_bound[prefixNumber(u"xmlns")] = number(ReservedNamespace::xmlns);
    collectDefaults();
}

void NamespaceStack::collectDefaults() {
    if (m_type == nullptr) {
        return;
    }
    for (std::uint32_t i = 0; i < m_type->attributes.size(); ++i) {
        const DocumentType::Attribute& attribute = m_type->attributes[i];
        if (attribute.hasDefault() && declaredPrefix(m_type->units(attribute.name))) {
            m_defaults[m_type->units(attribute.element)].push_back(i);
        }
    }
}

void NamespaceStack::leaveInnermost() {
    for (; m_changes.size() > m_scopes.back().changes; m_changes.pop_back()) {
        m_bound[m_changes.back().prefix] = m_changes.back().before;
    }
    m_scopes.pop_back();
}

void NamespaceStack::bindAll(const TreeNode& element) {
    const std::size_t changes = m_changes.size();
    if (hasDefaults()) {
        bindDefaults(element);
    }
    for (std::uint32_t i = 0; i < element.attributeCount; ++i) {
        const AttributeSpan& attribute = m_tree.attributes[element.firstAttribute + i];
        if (m_tree.text.units()[attribute.name.lower] != u'x') {
            continue;
        }
        if (const auto prefix = declaredPrefix(m_tree.text.units(attribute.name))) {
            bind(*prefix, m_tree.text.units(attribute.value));
        }
    }
    if (m_changes.size() > changes) {
        const bool isCutOff = element.flags.contains(TreeNode::unterminated);
        m_scopes.push_back({isCutOff ? m_tree[element.parent].range.upper : element.range.upper, changes});
    }
}

void NamespaceStack::bindDefaults(const TreeNode& element) {
    const auto found = m_defaults.find(m_tree.text.units(element.nameRange));
    if (found == m_defaults.end()) {
        return;
    }
    for (const std::uint32_t index : found->second) {
        const std::size_t cost = std::size_t{element.attributeCount} + 1;
        m_defaultsLeft -= std::min(m_defaultsLeft, cost);
        if (isIncomplete()) {
            return;
        }
        const DocumentType::Attribute& attribute = m_type->attributes[index];
        const std::u16string_view name = m_type->units(attribute.name);
        if (!hasAttribute(element, name)) {
            bind(*declaredPrefix(name), m_type->units(attribute.value));
        }
    }
}

bool NamespaceStack::hasAttribute(const TreeNode& element, std::u16string_view name) const {
    for (std::uint32_t i = 0; i < element.attributeCount; ++i) {
        if (m_tree.text.units(m_tree.attributes[element.firstAttribute + i].name) == name) {
            return true;
        }
    }
    return false;
}

/// A prefix that is reserved stays bound to what it is.
void NamespaceStack::bind(std::u16string_view prefix, std::u16string_view written) {
    if (prefix == u"xml" || prefix == u"xmlns") {
        return;
    }
    std::u16string_view name = written;
    if (!ValueNormalizer::isNormalized(written)) {
        name = m_owned.emplace_back(m_normalizer.normalized(written));
    }
    const std::uint32_t index = prefixNumber(prefix);
    m_changes.push_back({index, m_bound[index]});
    m_bound[index] = number(name);
}

NamespaceStack::Namespace NamespaceStack::number(std::u16string_view name) {
    const auto [found, isNew] = m_numbers.try_emplace(name, static_cast<Namespace>(m_names.size()));
    if (isNew) {
        m_names.push_back(name);
    }
    return found->second;
}

std::uint32_t NamespaceStack::prefixNumber(std::u16string_view prefix) {
    const auto [found, isNew] = m_prefixes.try_emplace(prefix, static_cast<std::uint32_t>(m_bound.size()));
    if (isNew) {
        m_bound.push_back(none);
    }
    return found->second;
}
