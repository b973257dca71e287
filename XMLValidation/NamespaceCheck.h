#pragma once

#include "NamespaceStack.h"
#include "Violation.h"

#include <vector>

/// The rules of namespaces for elements, shown to it in order.
class NamespaceCheck {
public:
    /// `type` is that of the document; both are borrowed.
    NamespaceCheck(const DocumentTree& tree, const DocumentType& type, std::vector<Violation>& violations);

    /// Whether elements without a colon or a declaration matter too.
    bool wantsAll() const { return m_stack.hasDefaults() || !m_defaults.empty(); }

    void visitElement(const TreeNode& element, NamespaceStack::Declarations declarations);

    /// The target of an instruction.
    void visitTarget(const TreeNode& instruction);

    /// The names that the document type declares.
    void visitDeclarations();

private:
    using Rule = Violation::Rule;

    /// An attribute with a prefix that is bound.
    struct ExpandedName {
        NamespaceStack::Namespace space;
        std::uint32_t hash;
        SourceRange name;
        std::u16string_view local;
    };

    void visitDeclaration(const AttributeSpan& attribute, std::u16string_view prefix);
    static constexpr std::ptrdiff_t noColon = -1;
    std::ptrdiff_t findColon(SourceRange name) const;
    bool isQualified(SourceRange name, std::ptrdiff_t colon);
    bool checkQualified(SourceRange name);
    void visitPrefixed(SourceRange name, std::ptrdiff_t colon);
    void visitPrefixedAttribute(const AttributeSpan& attribute, std::ptrdiff_t colon);
    NamespaceStack::Namespace checkPrefix(SourceRange name, std::u16string_view prefix);
    void visitDefaults(const TreeNode& element);
    void checkUnique();
    void checkUniqueInPairs();
    void reportRepeated(const ExpandedName& first, const ExpandedName& second);
    DocumentType::Place targetOf(const DocumentType::Item& instruction) const;
    void checkDeclared(const DocumentType::Place& name);
    void checkColon(const DocumentType::Place& name);
    std::u16string_view units(SourceRange range) const { return m_units.substr(range.lower, range.length()); }
    void report(Rule rule, SourceRange range, Offset detail = 0) {
        m_violations.push_back({range, detail, rule});
    }

    const DocumentTree& m_tree;
    const DocumentType& m_type;
    std::u16string_view m_units;
    std::vector<Violation>& m_violations;
    NamespaceStack m_stack;
    /// The prefixes of attributes with a default, as the declarations have them, by the name of their
    /// element.
    std::unordered_map<std::u16string_view, std::vector<SourceRange>, NameHash> m_defaults;
    std::size_t m_defaultsLeft = 1'000'000; ///< To be looked up.
    std::vector<ExpandedName> m_expanded;   ///< Of the element that is visited.
    Offset m_declarationPlace = 0;          ///< Where the root element takes another attribute.
};
