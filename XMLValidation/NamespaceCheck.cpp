#include "NamespaceCheck.h"

#include "UTF16.h"
#include "UnitScan.h"

#include <algorithm>
#include <tuple>

NamespaceCheck::NamespaceCheck(const DocumentTree& tree, const DocumentType& type,
                               std::vector<Violation>& violations)
    : m_tree(tree), m_type(type), m_units(tree.text.units()), m_violations(violations), m_stack(tree, &type) {
    if (const auto root = tree.rootElement()) {
        m_declarationPlace = tree[*root].nameRange.upper;
    }
    for (const DocumentType::Attribute& attribute : type.attributes) {
        const std::u16string_view name = type.units(attribute.name);
        const QualifiedName split = QualifiedName::of(name);
        if (attribute.name.text == 0 && attribute.hasDefault() && !split.prefix.empty() &&
            !declaredPrefix(name)) {
            m_defaults[type.units(attribute.element)].push_back(
                SourceRange::at(attribute.name.range.lower, static_cast<std::int64_t>(split.prefix.size())));
        }
    }
}

/// The position in `name` of its first colon, or `noColon`.
std::ptrdiff_t NamespaceCheck::findColon(SourceRange name) const {
    const std::ptrdiff_t length = name.length();
    if (length < UnitVector::lanes && name.lower + std::size_t{UnitVector::lanes} <= m_units.size())
        [[likely]] {
        const UnitVector vector = UnitVector::load(m_units.data() + name.lower);
        const UnitMask colons = (vector == UnitVector::all(u':')).mask().firstLanes(length);
        return colons.any() ? colons.first() : noColon;
    }
    const std::ptrdiff_t found = UnitScan::findAny(m_units.data() + name.lower, 0, length, u':');
    return found == length ? noColon : found;
}

/// Whether a name with its first colon at `colon` has a name on both sides of it, and no other colon.
bool NamespaceCheck::isQualified(SourceRange range, std::ptrdiff_t colon) {
    const std::u16string_view name = units(range);
    const auto local = static_cast<std::size_t>(colon) + 1;
    const bool isPlain =
        colon != 0 && local < name.size() && name[local] < 0x80 && name[local] != u':' &&
        UnitScan::isNameStart(name[local]) &&
        findColon(SourceRange::unchecked(range.lower + static_cast<Offset>(local), range.upper)) == noColon;
    return isPlain || checkQualified(range);
}

void NamespaceCheck::visitElement(const TreeNode& element, NamespaceStack::Declarations declarations) {
    m_stack.enter(element, declarations);
    if (!m_defaults.empty()) {
        visitDefaults(element);
    }
    if (const std::ptrdiff_t colon = findColon(element.nameRange); colon != noColon) {
        visitPrefixed(element.nameRange, colon);
    }
    m_expanded.clear();
    const AttributeSpan* const attributes = m_tree.attributes.begin() + element.firstAttribute;
    for (const AttributeSpan& attribute : std::span(attributes, element.attributeCount)) {
        const std::ptrdiff_t colon = findColon(attribute.name);
        if (colon != noColon) {
            visitPrefixedAttribute(attribute, colon);
        } else if (declarations == NamespaceStack::Declarations::some && units(attribute.name) == u"xmlns") {
            visitDeclaration(attribute, u"");
        }
    }
    if (m_expanded.size() > 1) {
        checkUnique();
    }
}

/// The name of an element, whose first colon stands at `colon`.
void NamespaceCheck::visitPrefixed(SourceRange name, std::ptrdiff_t colon) {
    if (!isQualified(name, colon)) {
        return;
    }
    const std::u16string_view prefix = units(name).substr(0, static_cast<std::size_t>(colon));
    if (prefix == u"xmlns") {
        report(Rule::elementPrefixXMLNS, SourceRange::at(name.lower, colon));
    } else {
        checkPrefix(name, prefix);
    }
}

void NamespaceCheck::visitPrefixedAttribute(const AttributeSpan& attribute, std::ptrdiff_t colon) {
    if (!isQualified(attribute.name, colon)) {
        return;
    }
    const std::u16string_view name = units(attribute.name);
    const std::u16string_view prefix = name.substr(0, static_cast<std::size_t>(colon));
    const std::u16string_view local = name.substr(static_cast<std::size_t>(colon) + 1);
    if (prefix == u"xmlns") {
        return visitDeclaration(attribute, local);
    }
    const NamespaceStack::Namespace space = checkPrefix(attribute.name, prefix);
    // Only one prefix stands for the namespace `xml`.
    if (space > NamespaceStack::xml) {
        m_expanded.push_back({space, 0, attribute.name, local});
    }
}

/// The attributes that the element has without being written. A prefix is reported where it is declared,
/// once.
void NamespaceCheck::visitDefaults(const TreeNode& element) {
    const auto found = m_defaults.find(units(element.nameRange));
    if (found == m_defaults.end() || found->second.size() > m_defaultsLeft) {
        return;
    }
    m_defaultsLeft -= found->second.size();
    const std::size_t before = m_violations.size();
    for (const SourceRange prefix : found->second) {
        checkPrefix(prefix, units(prefix));
    }
    if (m_violations.size() != before) {
        m_defaults.erase(found);
    }
}

/// Whether a name has no colon, or one with a name on both sides.
bool NamespaceCheck::checkQualified(SourceRange name) {
    const std::u16string_view text = units(name);
    const std::size_t colon = text.find(u':');
    if (colon == std::u16string_view::npos) {
        return true;
    }
    const auto reportAt = [&](std::size_t at, std::size_t length) {
        report(Rule::invalidQualifiedName, SourceRange::at(static_cast<std::int64_t>(name.lower + at),
                                                           static_cast<std::int64_t>(length)));
        return false;
    };
    if (colon == 0 || colon + 1 == text.size()) {
        return reportAt(colon, 1);
    }
    if (const std::size_t second = text.find(u':', colon + 1); second != std::u16string_view::npos) {
        return reportAt(second, 1);
    }
    const char32_t first = UTF16::scalarAt(text.data() + colon + 1, text.data() + text.size());
    const bool isPartOfName = XMLCharacters::isName(first);
    if (isPartOfName && !XMLCharacters::isNameStart(first)) {
        return reportAt(colon + 1, UTF16::length(first));
    }
    return true;
}

/// What the prefix of `name` is bound to.
NamespaceStack::Namespace NamespaceCheck::checkPrefix(SourceRange name, std::u16string_view prefix) {
    const NamespaceStack::Namespace space = m_stack.find(prefix);
    if (space != NamespaceStack::none || m_stack.isIncomplete()) {
        return space;
    }
    // What was not read may give the root element a default value that declares it.
    const bool mayBeDeclared = m_type.hasUnread && !m_type.isStandalone;
    report(mayBeDeclared ? Rule::prefixPerhapsDeclaredOutside : Rule::undeclaredPrefix,
           SourceRange::at(name.lower, static_cast<std::int64_t>(prefix.size())), m_declarationPlace);
    return space;
}

/// The attribute that declares `prefix`, empty for the default namespace.
void NamespaceCheck::visitDeclaration(const AttributeSpan& attribute, std::u16string_view prefix) {
    const std::u16string_view name = m_stack.name(m_stack.find(prefix));
    const bool isWritten = attribute.quote != 0;
    if (prefix == u"xml") {
        if (ValueNormalizer(&m_type).normalized(units(attribute.value)) != ReservedNamespace::xml) {
            report(Rule::reservedPrefixXML, attribute.name);
        }
    } else if (prefix == u"xmlns") {
        report(Rule::reservedPrefixXMLNS, attribute.name);
    } else if (name == ReservedNamespace::xml) {
        report(Rule::reservedNamespaceXML, attribute.value);
    } else if (name == ReservedNamespace::xmlns) {
        report(Rule::reservedNamespaceXMLNS, attribute.value);
    } else if (name.empty() && isWritten && !prefix.empty() && m_type.version == XMLVersion::v1_0) {
        report(Rule::undeclaredAgain, attribute.range);
    }
}

void NamespaceCheck::checkUnique() {
    constexpr std::size_t comparedInPairs = 8;
    if (m_expanded.size() <= comparedInPairs) {
        return checkUniqueInPairs();
    }
    for (ExpandedName& name : m_expanded) {
        name.hash = static_cast<std::uint32_t>(NameHash()(name.local));
    }
    const auto key = [](const ExpandedName& name) {
        return std::tuple(name.space, name.hash, name.name.lower);
    };
    std::ranges::sort(m_expanded, {}, key);
    for (std::size_t first = 0, at = 1; at < m_expanded.size(); ++at) {
        const bool isSame =
            m_expanded[first].space == m_expanded[at].space && m_expanded[first].hash == m_expanded[at].hash;
        if (isSame) {
            reportRepeated(m_expanded[first], m_expanded[at]);
        } else {
            first = at;
        }
    }
}

void NamespaceCheck::checkUniqueInPairs() {
    for (std::size_t second = 1; second < m_expanded.size(); ++second) {
        for (std::size_t first = 0; first < second; ++first) {
            const std::size_t before = m_violations.size();
            if (m_expanded[first].space == m_expanded[second].space) {
                reportRepeated(m_expanded[first], m_expanded[second]);
            }
            if (m_violations.size() != before) {
                break;
            }
        }
    }
}

/// Reports the second of two names of one namespace, unless the parser sees that they are the same.
void NamespaceCheck::reportRepeated(const ExpandedName& first, const ExpandedName& second) {
    if (first.local == second.local && units(first.name) != units(second.name)) {
        report(Rule::repeatedExpandedName, second.name, first.name.lower);
    }
}

void NamespaceCheck::visitTarget(const TreeNode& instruction) {
    const std::size_t colon = units(instruction.nameRange).find(u':');
    if (colon != std::u16string_view::npos) {
        report(Rule::colonInName,
               SourceRange::at(static_cast<std::int64_t>(instruction.nameRange.lower + colon), 1));
    }
}

void NamespaceCheck::visitDeclarations() {
    using Kind = DocumentType::Item::Kind;
    if (!m_type.isPresent()) {
        return;
    }
    checkQualified(m_type.name);
    for (const DocumentType::Item& item : m_type.items) {
        switch (item.kind) {
        case Kind::element:
            checkDeclared(m_type.elements[item.first].name);
            break;
        case Kind::attributes:
            for (std::uint32_t i = item.first; i < item.end; ++i) {
                checkDeclared(m_type.attributes[i].name);
            }
            break;
        case Kind::entity:
            checkColon(m_type.entities[item.first].name);
            break;
        case Kind::notation:
            checkColon(m_type.notations[item.first].name);
            break;
        case Kind::instruction:
            checkColon(targetOf(item));
            break;
        case Kind::parameterReference:
            checkColon(item.place);
            break;
        case Kind::comment:
            break;
        }
    }
    for (const DocumentType::Particle& particle : m_type.particles) {
        checkDeclared(particle.name);
    }
}

DocumentType::Place NamespaceCheck::targetOf(const DocumentType::Item& instruction) const {
    constexpr Offset openerLength = 2;
    const std::size_t length =
        XMLCharacters::nameTokenLength(m_type.units(instruction.place).substr(openerLength));
    return {SourceRange::at(instruction.place.range.lower + openerLength, static_cast<std::int64_t>(length)),
            instruction.place.text};
}

void NamespaceCheck::checkDeclared(const DocumentType::Place& name) {
    if (name.text == 0) {
        checkQualified(name.range);
    }
}

/// Of a name in a parameter entity nothing is said: it stands nowhere in the document.
void NamespaceCheck::checkColon(const DocumentType::Place& name) {
    const std::size_t colon = m_type.units(name).find(u':');
    if (name.text == 0 && colon != std::u16string_view::npos) {
        report(Rule::colonInName, SourceRange::at(static_cast<std::int64_t>(name.range.lower + colon), 1));
    }
}
