#include "ContentCheck.h"

#include "MarkupCheck.h"
#include "UTF16.h"
#include "UnitScan.h"

#include <algorithm>

namespace {

using Kind = TreeNode::Kind;

constexpr std::u16string_view doctypeOpener = u"<!DOCTYPE";

bool equalsIgnoringCase(std::u16string_view text, std::u16string_view upperCase) {
    const auto isSame = [](char16_t unit, char16_t upper) {
        return unit == upper || (u'A' <= upper && upper <= u'Z' && unit == (upper | 0x20));
    };
    return std::ranges::equal(text, upperCase, isSame);
}

/// Whether what stands behind an `&` makes it a reference to an entity that every processor knows.
bool isPredefined(std::u16string_view rest) {
    return rest.starts_with(u"amp;") || rest.starts_with(u"lt;") || rest.starts_with(u"gt;") ||
           rest.starts_with(u"quot;") || rest.starts_with(u"apos;");
}

} // namespace

ContentCheck::ContentCheck(const DocumentTree& tree, Subject subject, XMLVersion version, SourceRange doctype,
                           std::vector<Violation>& violations, ReferenceHandler onReference)
    : m_tree(tree), m_units(tree.text.units()), m_violations(violations),
      m_onReference(std::move(onReference)), m_doctype(doctype), m_subject(subject), m_version(version) {}

/// Where a unit stands, as far as references and `]]>` need to know.
ContentCheck::Place ContentCheck::placeOf(Offset at) {
    while (m_node + 1 < m_tree.nodes.size() && m_tree.nodes[m_node + 1].range.lower <= at) {
        ++m_node;
    }
    const TreeNode& node = m_tree.nodes[m_node];
    if (node.kind == Kind::text) {
        return at < node.range.upper && !isOutsideRoot(node) ? Place::content : Place::elsewhere;
    }
    if (!node.isElement() || at >= node.startTagRange().upper) {
        return Place::elsewhere;
    }
    m_attribute = std::max(m_attribute, node.firstAttribute);
    const std::uint32_t end = node.firstAttribute + node.attributeCount;
    while (m_attribute < end && m_tree.attributes[m_attribute].range.upper <= at) {
        ++m_attribute;
    }
    if (m_attribute == end) {
        return Place::elsewhere;
    }
    const AttributeSpan& attribute = m_tree.attributes[m_attribute];
    const bool isClosed = attribute.quote != 0 && attribute.value.upper < attribute.range.upper;
    return isClosed && attribute.value.contains(at) ? Place::attributeValue : Place::elsewhere;
}

void ContentCheck::visitUnit(Offset at) {
    const char16_t unit = m_units[at];
    if (unit == u'&') {
        visitAmpersand(at);
    } else if (unit == u']') {
        if (m_tree.text.hasPrefix(u"]]>", at) && placeOf(at) == Place::content) {
            report(Rule::sectionEndInText, SourceRange::at(at, 3));
        }
    } else {
        report(Rule::forbiddenCharacter, SourceRange::at(at, 1));
    }
}

void ContentCheck::visitAmpersand(Offset at) {
    // Most references are good wherever they stand.
    if (isPredefined(m_units.substr(at + 1, 5))) {
        return;
    }
    const Reference reference = Reference::read(m_units, at);
    if (reference.kind == Reference::Kind::character &&
        XMLCharacters::isReferable(reference.scalar, m_version)) {
        return;
    }
    switch (placeOf(at)) {
    case Place::content:
        return visitReference(reference, ReferenceContext::content);
    case Place::attributeValue:
        return visitReference(reference, ReferenceContext::attributeValue);
    case Place::elsewhere:
        return;
    }
}

void ContentCheck::visitReference(const Reference& reference, ReferenceContext context) {
    switch (reference.kind) {
    case Reference::Kind::none:
        // In text the parser says so.
        if (context == ReferenceContext::attributeValue) {
            report(Rule::bareAmpersand, reference.range);
        }
        return;
    case Reference::Kind::malformedCharacter:
        return report(Rule::malformedCharacterReference, reference.range);
    case Reference::Kind::character:
        return report(Rule::illegalCharacterReference, reference.range);
    case Reference::Kind::entity:
        if (XMLCharacters::isValidName(m_tree.text.units(reference.name))) {
            return m_onReference(reference, context);
        }
        return MarkupCheck::checkName(m_units, reference.name, m_violations);
    }
}

void ContentCheck::visitNames(const TreeNode& element) {
    const auto check = [this](SourceRange name) {
        // XML 1.1 translates these to line ends before names are looked at.
        while (m_version == XMLVersion::v1_1 && !name.isEmpty() &&
               XMLCharacters::isSpace(m_units[name.upper - 1], m_version)) {
            --name.upper;
        }
        MarkupCheck::checkName(m_units, name, m_violations);
    };
    check(element.nameRange);
    for (std::uint32_t i = 0; i < element.attributeCount; ++i) {
        check(m_tree.attributes[element.firstAttribute + i].name);
    }
}

void ContentCheck::visitNode(NodeID id) {
    const TreeNode& node = m_tree.nodes[id.raw];
    switch (node.kind) {
    case Kind::text:
        if (isOutsideRoot(node)) {
            visitOutsideRoot(node);
        }
        return;
    case Kind::cdata:
        if (isOutsideRoot(node)) {
            constexpr Offset openerLength = 9;
            report(Rule::cdataOutsideRoot, SourceRange::at(node.range.lower, openerLength));
        }
        return;
    case Kind::comment:
        if (node.contentRange.upper < node.range.upper) {
            MarkupCheck::checkComment(m_units, node.contentRange, m_violations);
        }
        return;
    case Kind::instruction:
        return visitInstruction(id);
    case Kind::doctype:
        return visitDeclaration(node);
    case Kind::document:
    case Kind::element:
        return;
    }
}

void ContentCheck::visitOutsideRoot(const TreeNode& text) {
    const auto isSpace = [this](Offset at) { return XMLCharacters::isSpace(m_units[at], m_version); };
    SourceRange range = text.range;
    while (!range.isEmpty() && isSpace(range.lower)) {
        ++range.lower;
    }
    while (!range.isEmpty() && isSpace(range.upper - 1)) {
        --range.upper;
    }
    if (!range.isEmpty()) {
        report(Rule::textOutsideRoot, range);
    }
}

void ContentCheck::visitInstruction(NodeID id) {
    const TreeNode& node = m_tree.nodes[id.raw];
    const bool isDeclaration =
        m_subject == Subject::document && node.range.lower == 0 && m_tree.text.equals(node.nameRange, u"xml");
    if (!isDeclaration) {
        MarkupCheck::checkInstruction(m_units, node.contentRange, m_violations);
    }
}

/// A `<!` that is neither a comment nor a section.
void ContentCheck::visitDeclaration(const TreeNode& node) {
    if (m_subject == Subject::document && !m_doctype.isEmpty() && node.range.lower == m_doctype.lower) {
        return;
    }
    const Offset lower = node.range.lower;
    const auto upper =
        static_cast<Offset>(UnitScan::findNameEnd(m_units.data(), lower + 2, node.range.upper));
    const SourceRange keyword(lower, std::min(upper, lower + 32));
    const std::u16string_view spelling = m_tree.text.units(keyword);
    if (!isOutsideRoot(node) || !equalsIgnoringCase(spelling, doctypeOpener)) {
        return report(Rule::misplacedDeclaration, keyword);
    }
    const bool isFirst = m_doctype.isEmpty() || lower < m_doctype.lower;
    if (spelling != doctypeOpener) {
        return report(isFirst ? Rule::misspelledDoctype : Rule::secondDoctype, keyword);
    }
    report(isFirst ? Rule::misplacedDoctype : Rule::secondDoctype, keyword);
}

void ContentCheck::finish() {
    if (m_subject == Subject::document && !m_tree.rootElement()) {
        report(Rule::noRootElement, SourceRange::empty(m_tree.text.count()));
    }
}
