#pragma once

#include "DocumentTree.h"
#include "Reference.h"
#include "Violation.h"
#include "XMLCharacters.h"

#include <functional>
#include <vector>

/// Where a reference to an entity stands.
enum class ReferenceContext : std::uint8_t { content, attributeValue };

/// The rules for what a tree holds, whether it is a document's or that of an entity's replacement text:
/// names, tags, references, comments, instructions, sections, places. Is shown every node and every watched
/// unit of the text, both in ascending order, and adds what it finds to a list.
class ContentCheck {
public:
    enum class Subject : std::uint8_t { document, replacementText };

    /// Called for each reference to an entity in content or in an attribute value.
    using ReferenceHandler = std::function<void(const Reference&, ReferenceContext)>;

    /// `doctype` is the declaration of the document, empty without one.
    ContentCheck(const DocumentTree& tree, Subject subject, XMLVersion version, SourceRange doctype,
                 std::vector<Violation>& violations, ReferenceHandler onReference);

    /// A unit that `TextWatch` found.
    void visitUnit(Offset at);

    /// A node other than an element.
    void visitNode(NodeID node);

    /// The name of an element and of its attributes, some of which are not plain ASCII.
    void visitNames(const TreeNode& element);

    /// An attribute right behind another, without white space between.
    void visitTightAttribute(const AttributeSpan& attribute) {
        report(Violation::Rule::missingSpaceBeforeAttribute, attribute.name, attribute.name.lower);
    }

    /// What can be said only of all.
    void finish();

private:
    using Rule = Violation::Rule;

    enum class Place : std::uint8_t { content, attributeValue, elsewhere };
    Place placeOf(Offset at);

    void visitAmpersand(Offset at);
    void visitReference(const Reference& reference, ReferenceContext context);
    void visitOutsideRoot(const TreeNode& text);
    void visitInstruction(NodeID node);
    void visitDeclaration(const TreeNode& node);
    void report(Rule rule, SourceRange range, Offset detail = 0) {
        m_violations.push_back({range, detail, rule});
    }
    bool isOutsideRoot(const TreeNode& node) const {
        return m_subject == Subject::document && node.parent == NodeID::document();
    }

    const DocumentTree& m_tree;
    std::u16string_view m_units;
    std::vector<Violation>& m_violations;
    ReferenceHandler m_onReference;
    SourceRange m_doctype;
    Subject m_subject;
    XMLVersion m_version;
    std::uint32_t m_node = 0;      ///< The last that starts at or before the unit of the last visit.
    std::uint32_t m_attribute = 0; ///< The first that may hold the unit of the next visit.
};
