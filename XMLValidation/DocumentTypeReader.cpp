#include "DocumentTypeReader.h"

#include "MarkupCheck.h"
#include "UTF16.h"
#include "UnitScan.h"

#include <algorithm>
#include <array>

namespace {

using ItemKind = DocumentType::Item::Kind;
using XMLCharacters::isSpace;

constexpr std::u16string_view opener = u"<!DOCTYPE";

struct TypeName {
    std::u16string_view name;
    DocumentType::AttributeType type;
};
constexpr std::array<TypeName, 9> attributeTypes{{
    {u"CDATA", DocumentType::AttributeType::cdata},
    {u"ID", DocumentType::AttributeType::id},
    {u"IDREF", DocumentType::AttributeType::idref},
    {u"IDREFS", DocumentType::AttributeType::idrefs},
    {u"ENTITY", DocumentType::AttributeType::entity},
    {u"ENTITIES", DocumentType::AttributeType::entities},
    {u"NMTOKEN", DocumentType::AttributeType::nmtoken},
    {u"NMTOKENS", DocumentType::AttributeType::nmtokens},
    {u"NOTATION", DocumentType::AttributeType::notation},
}};

bool isPublicIdentifierUnit(char16_t unit) {
    constexpr std::u16string_view others = u" \r\n-'()+,./:=?;!*#@$_%";
    const char16_t letter = unit | 0x20;
    return (unit < 0x80 && u'a' <= letter && letter <= u'z') || (u'0' <= unit && unit <= u'9') ||
           others.find(unit) != std::u16string_view::npos;
}

/// Whether `value` stands for `scalar` as the standard asks of the entities that every processor knows.
bool standsFor(std::u16string_view value, char16_t scalar) {
    const std::u16string text = replacementText(value);
    const bool mayBeItself = scalar != u'<' && scalar != u'&';
    if (mayBeItself && text == std::u16string_view(&scalar, 1)) {
        return true;
    }
    const Reference reference = text.starts_with(u'&') ? Reference::read(text, 0) : Reference();
    return reference.kind == Reference::Kind::character && reference.scalar == scalar &&
           reference.range.upper == text.size();
}

} // namespace

std::u16string replacementText(std::u16string_view value) {
    std::u16string text;
    text.reserve(value.size());
    std::size_t at = 0;
    while (true) {
        const std::size_t ampersand = std::min(value.find(u'&', at), value.size());
        text.append(value, at, ampersand - at);
        if (ampersand == value.size()) {
            return text;
        }
        const Reference reference = Reference::read(value, static_cast<Offset>(ampersand));
        if (reference.kind == Reference::Kind::character && reference.scalar <= 0x10FFFF) {
            UTF16::append(text, reference.scalar);
        } else {
            text.append(value, ampersand, reference.range.length());
        }
        at = reference.range.upper;
    }
}

DocumentTypeReader::DocumentTypeReader(const SourceText& text, Offset lower, Offset limit, DeclaredForm form)
    : m_text(text), m_declaration(lower) {
    m_type.texts.push_back(text);
    m_type.version = form.version;
    m_type.isStandalone = form.isStandalone;
    m_frames.push_back({.text = 0, .at = lower, .end = limit});
    loadFrame();
}

DocumentType DocumentTypeReader::read() {
    const Offset lower = m_at;
    m_at += static_cast<Offset>(opener.size());
    readHead();
    m_type.range = {lower, m_at};
    const auto place = [](const Violation& violation) { return violation.range.lower; };
    std::ranges::stable_sort(m_type.violations, {}, place);
    m_type.sortNames();
    return std::move(m_type);
}

// Places.

void DocumentTypeReader::loadFrame() {
    const Frame& frame = m_frames.back();
    m_units = m_type.texts[frame.text].units();
    m_at = frame.at;
    m_end = frame.end;
}

bool DocumentTypeReader::isAtParameterReference() const {
    return unit() == u'%' && Reference::read(m_units.substr(0, m_end), m_at).kind == Reference::Kind::entity;
}

void DocumentTypeReader::add(ItemKind kind, Offset lower, std::size_t first, std::size_t end) {
    m_type.items.push_back(
        {kind, placeFrom(lower), static_cast<std::uint32_t>(first), static_cast<std::uint32_t>(end)});
}

// Problems.

/// Whatever is wrong in a parameter entity is said once, of the reference that leads to it.
void DocumentTypeReader::report(Rule rule, SourceRange range, Offset detail) {
    Frame& frame = m_frames.back();
    if (frame.text == 0) {
        m_type.violations.push_back({range, detail, rule});
    } else if (!std::exchange(frame.hasFailed, true)) {
        m_type.violations.push_back({m_reference, 0, Rule::illFormedParameterEntity});
    }
}

void DocumentTypeReader::reportAll(const std::vector<Violation>& violations) {
    for (const Violation& violation : violations) {
        report(violation.rule, violation.range, violation.detail);
    }
}

/// Reports what stands at the place of reading.
bool DocumentTypeReader::fail(Rule rule) {
    if (isAtParameterReference()) {
        report(Rule::parameterReferenceInDeclaration, Reference::read(m_units, m_at).range);
    } else if (isAtEnd()) {
        report(Rule::unterminatedInSubset, SourceRange::at(m_declaration, 2));
    } else {
        const char32_t scalar = UTF16::scalarAt(m_units.data() + m_at, m_units.data() + m_end);
        report(rule, SourceRange::at(m_at, static_cast<std::int64_t>(UTF16::length(scalar))));
    }
    return false;
}

/// Goes on after the `>` of a declaration that could not be read, or at the next `<`.
void DocumentTypeReader::recover() {
    m_at = static_cast<Offset>(UnitScan::findAny(m_units.data(), m_at, m_end, u'>', u'<'));
    if (unit() == u'>') {
        ++m_at;
    }
}

// What declarations are made of.

bool DocumentTypeReader::skipSpaces() {
    const Offset before = m_at;
    while (m_at < m_end && isSpace(m_units[m_at], m_type.version)) {
        ++m_at;
    }
    return m_at != before;
}

bool DocumentTypeReader::takeSpaces(Rule otherwise) { return skipSpaces() || fail(otherwise); }

bool DocumentTypeReader::takeUnit(char16_t wanted, Rule otherwise) {
    if (unit() != wanted || isAtEnd()) {
        return fail(otherwise);
    }
    ++m_at;
    return true;
}

bool DocumentTypeReader::takeName(Place& name, Rule otherwise) {
    const auto length = static_cast<Offset>(XMLCharacters::nameLength(rest()));
    if (length == 0) {
        return fail(otherwise);
    }
    m_at += length;
    name = placeFrom(m_at - length);
    return true;
}

bool DocumentTypeReader::takeNameToken(Rule otherwise) {
    const auto length = static_cast<Offset>(XMLCharacters::nameTokenLength(rest()));
    m_at += length;
    return length != 0 || fail(otherwise);
}

bool DocumentTypeReader::takeLiteral(Place& inside, Rule otherwise) {
    const char16_t quote = unit();
    if (quote != u'"' && quote != u'\'') {
        return fail(otherwise);
    }
    const auto close = static_cast<Offset>(UnitScan::findAny(m_units.data(), m_at + 1, m_end, quote));
    if (close == m_end) {
        return fail(otherwise);
    }
    inside = {{m_at + 1, close}, m_frames.back().text};
    m_at = close + 1;
    return true;
}

bool DocumentTypeReader::takeEnd(Rule otherwise) {
    skipSpaces();
    return takeUnit(u'>', otherwise);
}

/// The ASCII letters that stand here.
std::u16string_view DocumentTypeReader::takeKeyword() {
    const Offset lower = m_at;
    while (m_at < m_end && UnitScan::isName(m_units[m_at])) {
        ++m_at;
    }
    return m_units.substr(lower, m_at - lower);
}

// The declaration itself.

void DocumentTypeReader::readHead() {
    constexpr Rule rule = Rule::malformedDoctype;
    Place name;
    if (!takeSpaces(rule) || !takeName(name, rule)) {
        return;
    }
    m_type.name = name.range;
    if (skipSpaces() && unit() != u'[' && unit() != u'>') {
        if (!readExternalIdentifier(m_type.external, Literals::asOfEntity)) {
            return;
        }
        skipSpaces();
    }
    m_type.hasUnread = m_type.external.isPresent();
    if (unit() == u'[') {
        const Offset lower = ++m_at;
        const bool hasEnd = readSubset();
        m_type.subset = SourceRange(lower, m_at);
        if (!hasEnd) {
            return;
        }
        ++m_at;
    }
    m_isComplete = takeEnd(rule);
}

/// Whether the `]` was found.
bool DocumentTypeReader::readSubset() {
    while (true) {
        skipSpaces();
        if (isAtEnd()) {
            if (m_frames.size() == 1) {
                return false;
            }
            leaveParameterEntity();
        } else if (unit() == u']' && m_frames.size() == 1) {
            return true;
        } else {
            readInSubset();
        }
    }
}

void DocumentTypeReader::readInSubset() {
    switch (unit()) {
    case u'%':
        return readParameterReference();
    case u'<':
        m_declaration = m_at;
        if (!readDeclaration()) {
            recover();
        }
        return;
    case u']':
        if (m_frames.back().openSections > 0 && rest().starts_with(u"]]>")) {
            --m_frames.back().openSections;
            m_at += 3;
            return;
        }
        [[fallthrough]];
    default:
        fail(Rule::unexpectedInSubset);
        ++m_at;
        skipUnexpected();
    }
}

void DocumentTypeReader::skipUnexpected() {
    m_at = static_cast<Offset>(UnitScan::findAny(m_units.data(), m_at, m_end, u'<', u'%', u']'));
}

bool DocumentTypeReader::readDeclaration() {
    if (rest().starts_with(u"<!--")) {
        readDelimited(ItemKind::comment, u"<!--", u"-->");
        return true;
    }
    if (rest().starts_with(u"<?")) {
        readDelimited(ItemKind::instruction, u"<?", u"?>");
        return true;
    }
    if (rest().starts_with(u"<![")) {
        readConditionalSection();
        return true;
    }
    const Offset lower = m_at;
    if (rest().starts_with(u"<!")) {
        m_at += 2;
        const std::u16string_view keyword = takeKeyword();
        if (keyword == u"ELEMENT") {
            return readElement();
        }
        if (keyword == u"ATTLIST") {
            return readAttributes();
        }
        if (keyword == u"ENTITY") {
            return readEntity();
        }
        if (keyword == u"NOTATION") {
            return readNotation();
        }
    }
    report(Rule::unexpectedInSubset, {lower, std::max(m_at, lower + 1)});
    m_at = std::max(m_at, lower + 1);
    return false;
}

void DocumentTypeReader::readDelimited(ItemKind kind, std::u16string_view start,
                                       std::u16string_view terminator) {
    const Offset lower = m_at;
    const auto length = static_cast<Offset>(start.size());
    const std::size_t stop = m_units.substr(0, m_end).find(terminator, m_at + length);
    if (stop == std::u16string_view::npos) {
        report(Rule::unterminatedInSubset, SourceRange::at(lower, length));
        m_at = m_end;
        return;
    }
    m_at = static_cast<Offset>(stop + terminator.size());
    const SourceRange content(lower + length, static_cast<Offset>(stop));
    std::vector<Violation> violations;
    if (kind == ItemKind::comment) {
        MarkupCheck::checkComment(m_units, content, violations);
    } else {
        MarkupCheck::checkInstruction(m_units, content, violations);
    }
    reportAll(violations);
    add(kind, lower);
}

// Elements.

bool DocumentTypeReader::readElement() {
    constexpr Rule rule = Rule::malformedElementDeclaration;
    const Offset lower = m_declaration;
    DocumentType::Element element;
    if (!takeSpaces(rule) || !takeName(element.name, rule) || !takeSpaces(rule) ||
        !readContentModel(element) || !takeEnd(rule)) {
        return false;
    }
    m_type.elements.push_back(element);
    add(ItemKind::element, lower, m_type.elements.size() - 1, m_type.elements.size());
    return true;
}

bool DocumentTypeReader::readContentModel(DocumentType::Element& element) {
    const Offset lower = m_at;
    element.firstParticle = static_cast<std::uint32_t>(m_type.particles.size());
    bool isRead = true;
    if (unit() == u'(') {
        Offset inside = m_at + 1;
        while (inside < m_end && isSpace(m_units[inside], m_type.version)) {
            ++inside;
        }
        const bool isMixed = m_units.substr(inside, m_end - inside).starts_with(u"#PCDATA");
        element.content = isMixed ? DocumentType::Content::mixed : DocumentType::Content::children;
        isRead = isMixed ? readMixed() : readChildren();
    } else {
        const std::u16string_view keyword = takeKeyword();
        element.content = keyword == u"ANY" ? DocumentType::Content::any : DocumentType::Content::empty;
        if (keyword != u"ANY" && keyword != u"EMPTY") {
            m_at = lower;
            return fail(Rule::malformedElementDeclaration);
        }
    }
    element.particlesEnd = static_cast<std::uint32_t>(m_type.particles.size());
    element.model = placeFrom(lower);
    return isRead;
}

bool DocumentTypeReader::readMixed() {
    constexpr Rule rule = Rule::malformedMixedContent;
    constexpr std::u16string_view keyword = u"#PCDATA";
    ++m_at;
    skipSpaces();
    m_at += static_cast<Offset>(keyword.size());
    bool hasNames = false;
    while (true) {
        skipSpaces();
        if (unit() != u'|') {
            break;
        }
        ++m_at;
        skipSpaces();
        DocumentType::Particle particle;
        if (!takeName(particle.name, rule)) {
            return false;
        }
        particle.end = static_cast<std::uint32_t>(m_type.particles.size() + 1);
        m_type.particles.push_back(particle);
        hasNames = true;
    }
    if (!takeUnit(u')', rule)) {
        return false;
    }
    if (unit() == u'*') {
        ++m_at;
        return true;
    }
    return !hasNames || fail(rule);
}

DocumentType::Occurrence DocumentTypeReader::takeOccurrence() {
    using Occurrence = DocumentType::Occurrence;
    const auto take = [this](Occurrence occurrence) {
        ++m_at;
        return occurrence;
    };
    switch (unit()) {
    case u'?':
        return take(Occurrence::optional);
    case u'*':
        return take(Occurrence::any);
    case u'+':
        return take(Occurrence::some);
    default:
        return Occurrence::once;
    }
}

bool DocumentTypeReader::readChildren() {
    using Particle = DocumentType::Particle;
    constexpr Rule rule = Rule::malformedContentModel;
    struct Group {
        std::size_t particle;
        char16_t connector = 0;
    };
    std::vector<Group> open;
    std::vector<Particle>& particles = m_type.particles;
    bool expectsParticle = true;
    do {
        skipSpaces();
        if (expectsParticle && unit() == u'(') {
            ++m_at;
            open.push_back({particles.size()});
            particles.push_back({.kind = Particle::Kind::sequence});
        } else if (expectsParticle) {
            Particle particle;
            if (!takeName(particle.name, rule)) {
                return false;
            }
            particle.occurrence = takeOccurrence();
            particle.end = static_cast<std::uint32_t>(particles.size() + 1);
            particles.push_back(particle);
            expectsParticle = false;
        } else if (unit() == u')') {
            ++m_at;
            Particle& group = particles[open.back().particle];
            group.kind = open.back().connector == u'|' ? Particle::Kind::choice : Particle::Kind::sequence;
            group.occurrence = takeOccurrence();
            group.end = static_cast<std::uint32_t>(particles.size());
            open.pop_back();
        } else {
            char16_t& connector = open.back().connector;
            const bool isConnector = unit() == u'|' || unit() == u',';
            if (!isConnector || (connector != 0 && connector != unit())) {
                return fail(rule);
            }
            connector = unit();
            ++m_at;
            expectsParticle = true;
        }
    } while (!open.empty());
    return true;
}

// Attributes.

bool DocumentTypeReader::readAttributes() {
    constexpr Rule rule = Rule::malformedAttributeList;
    const Offset lower = m_declaration;
    const std::size_t first = m_type.attributes.size();
    Place element;
    if (!takeSpaces(rule) || !takeName(element, rule)) {
        return false;
    }
    while (true) {
        const bool hasSpace = skipSpaces();
        if (unit() == u'>') {
            ++m_at;
            add(ItemKind::attributes, lower, first, m_type.attributes.size());
            return true;
        }
        if (!hasSpace) {
            return fail(rule);
        }
        if (!readAttribute(element)) {
            return false;
        }
    }
}

bool DocumentTypeReader::readAttribute(const Place& element) {
    constexpr Rule rule = Rule::malformedAttributeList;
    DocumentType::Attribute attribute{.element = element};
    if (!takeName(attribute.name, rule) || !takeSpaces(rule) || !readAttributeType(attribute) ||
        !takeSpaces(rule) || !readDefault(attribute)) {
        return false;
    }
    m_type.attributes.push_back(attribute);
    return true;
}

bool DocumentTypeReader::readAttributeType(DocumentType::Attribute& attribute) {
    constexpr Rule rule = Rule::malformedAttributeList;
    const Offset lower = m_at;
    if (unit() == u'(') {
        attribute.kind = DocumentType::AttributeType::enumeration;
        if (!readEnumeration(false)) {
            return false;
        }
    } else {
        const std::u16string_view keyword = takeKeyword();
        const auto* const found = std::ranges::find(attributeTypes, keyword, &TypeName::name);
        if (found == attributeTypes.end()) {
            m_at = lower;
            return fail(rule);
        }
        attribute.kind = found->type;
        if (found->type == DocumentType::AttributeType::notation &&
            (!takeSpaces(rule) || !readEnumeration(true))) {
            return false;
        }
    }
    attribute.type = placeFrom(lower);
    return true;
}

bool DocumentTypeReader::readEnumeration(bool areNames) {
    constexpr Rule rule = Rule::malformedAttributeList;
    if (!takeUnit(u'(', rule)) {
        return false;
    }
    while (true) {
        skipSpaces();
        Place name;
        if (areNames ? !takeName(name, rule) : !takeNameToken(rule)) {
            return false;
        }
        skipSpaces();
        if (unit() != u'|') {
            return takeUnit(u')', rule);
        }
        ++m_at;
    }
}

bool DocumentTypeReader::readDefault(DocumentType::Attribute& attribute) {
    using Default = DocumentType::Default;
    constexpr Rule rule = Rule::malformedAttributeDefault;
    attribute.defaults = Default::value;
    if (unit() == u'#') {
        const Offset lower = m_at++;
        const std::u16string_view keyword = takeKeyword();
        if (keyword == u"REQUIRED" || keyword == u"IMPLIED") {
            attribute.defaults = keyword == u"REQUIRED" ? Default::required : Default::implied;
            return true;
        }
        if (keyword != u"FIXED") {
            m_at = lower;
            return fail(rule);
        }
        attribute.defaults = Default::fixed;
        if (!takeSpaces(rule)) {
            return false;
        }
    }
    if (!takeLiteral(attribute.value, rule)) {
        return false;
    }
    const std::size_t lessThan = m_type.units(attribute.value).find(u'<');
    if (lessThan != std::u16string_view::npos) {
        report(Rule::lessThanInAttribute,
               SourceRange::at(static_cast<std::int64_t>(attribute.value.range.lower + lessThan), 1));
    }
    checkReferences(attribute.value, Literal::attributeValue);
    return true;
}

// Entities and notations.

bool DocumentTypeReader::readEntity() {
    constexpr Rule rule = Rule::malformedEntityDeclaration;
    const Offset lower = m_declaration;
    DocumentType::Entity entity;
    if (!takeSpaces(rule)) {
        return false;
    }
    if (unit() == u'%' && m_at + 1 < m_end && isSpace(m_units[m_at + 1], m_type.version)) {
        entity.isParameter = true;
        ++m_at;
        skipSpaces();
    }
    if (!takeName(entity.name, rule) || !takeSpaces(rule) || !readEntityDefinition(entity) ||
        !takeEnd(rule)) {
        return false;
    }
    const auto index = static_cast<std::uint32_t>(m_type.entities.size());
    m_type.entities.push_back(entity);
    m_states.push_back(EntityState::unread);
    if (entity.isParameter) {
        m_parameterEntities.try_emplace(m_type.units(entity.name), index);
    } else {
        checkPredefined(entity);
    }
    add(ItemKind::entity, lower, index, index + 1);
    return true;
}

bool DocumentTypeReader::readEntityDefinition(DocumentType::Entity& entity) {
    constexpr Rule rule = Rule::malformedEntityDeclaration;
    if (unit() == u'"' || unit() == u'\'') {
        if (!takeLiteral(entity.value, rule)) {
            return false;
        }
        checkReferences(entity.value, Literal::entityValue);
        return true;
    }
    if (!readExternalIdentifier(entity.external, Literals::asOfEntity)) {
        return false;
    }
    const bool hasSpace = skipSpaces();
    if (entity.isParameter || unit() == u'>') {
        return true;
    }
    if (!hasSpace) {
        return fail(rule);
    }
    const Offset keyword = m_at;
    if (takeKeyword() != u"NDATA") {
        m_at = keyword;
        return fail(rule);
    }
    return takeSpaces(rule) && takeName(entity.notation, rule);
}

/// What of a literal is no reference, though it starts like one.
void DocumentTypeReader::checkReferences(const Place& value, Literal literal) {
    const std::u16string_view units = m_units.substr(0, value.range.upper);
    const auto end = static_cast<std::ptrdiff_t>(units.size());
    const char16_t percent = literal == Literal::entityValue ? u'%' : u'&';
    auto at = static_cast<std::ptrdiff_t>(value.range.lower);
    while ((at = UnitScan::findAny(units.data(), at, end, u'&', percent)) < end) {
        const Reference reference = Reference::read(units, static_cast<Offset>(at));
        const bool isEntity = reference.kind == Reference::Kind::entity;
        if (units[at] == u'%') {
            report(isEntity ? Rule::parameterReferenceInDeclaration : Rule::percentInEntityValue,
                   reference.range);
        } else if (reference.kind == Reference::Kind::none) {
            report(Rule::bareAmpersand, reference.range);
        } else if (reference.kind == Reference::Kind::malformedCharacter) {
            report(Rule::malformedCharacterReference, reference.range);
        } else if (!isEntity && !XMLCharacters::isReferable(reference.scalar, m_type.version)) {
            report(Rule::illegalCharacterReference, reference.range);
        } else if (isEntity) {
            std::vector<Violation> violations;
            MarkupCheck::checkName(units, reference.name, violations);
            reportAll(violations);
        }
        at = reference.range.upper;
    }
}

void DocumentTypeReader::checkPredefined(const DocumentType::Entity& entity) {
    struct Predefined {
        std::u16string_view name;
        char16_t scalar;
    };
    constexpr std::array<Predefined, 5> all{
        {{u"amp", u'&'}, {u"lt", u'<'}, {u"gt", u'>'}, {u"quot", u'"'}, {u"apos", u'\''}}};
    const auto* const found = std::ranges::find(all, m_type.units(entity.name), &Predefined::name);
    if (found != all.end() &&
        (!entity.isInternal() || !standsFor(m_type.units(entity.value), found->scalar))) {
        report(Rule::redeclaredPredefinedEntity, entity.name.range);
    }
}

bool DocumentTypeReader::readNotation() {
    constexpr Rule rule = Rule::malformedNotationDeclaration;
    const Offset lower = m_declaration;
    DocumentType::Notation notation;
    if (!takeSpaces(rule) || !takeName(notation.name, rule) || !takeSpaces(rule) ||
        !readExternalIdentifier(notation.external, Literals::asOfNotation) || !takeEnd(rule)) {
        return false;
    }
    m_type.notations.push_back(notation);
    add(ItemKind::notation, lower, m_type.notations.size() - 1, m_type.notations.size());
    return true;
}

bool DocumentTypeReader::readExternalIdentifier(DocumentType::ExternalIdentifier& external,
                                                Literals literals) {
    constexpr Rule rule = Rule::malformedExternalIdentifier;
    const Offset lower = m_at;
    const std::u16string_view keyword = takeKeyword();
    if (keyword == u"SYSTEM") {
        return takeSpaces(rule) && takeLiteral(external.systemLiteral, rule);
    }
    if (keyword != u"PUBLIC") {
        m_at = lower;
        return fail(rule);
    }
    if (!takeSpaces(rule) || !takeLiteral(external.publicLiteral, rule)) {
        return false;
    }
    checkPublicLiteral(external.publicLiteral);
    const bool hasSpace = skipSpaces();
    if (literals == Literals::asOfNotation && unit() != u'"' && unit() != u'\'') {
        return true;
    }
    return (hasSpace || fail(rule)) && takeLiteral(external.systemLiteral, rule);
}

void DocumentTypeReader::checkPublicLiteral(const Place& literal) {
    const std::u16string_view units = m_type.units(literal);
    const auto found = std::ranges::find_if_not(units, isPublicIdentifierUnit);
    if (found != units.end()) {
        const char32_t scalar = UTF16::scalarAt(&*found, units.data() + units.size());
        report(Rule::invalidPublicIdentifier,
               SourceRange::at(literal.range.lower + (found - units.begin()),
                               static_cast<std::int64_t>(UTF16::length(scalar))));
    }
}

// Parameter entities and what may stand only in them.

void DocumentTypeReader::readConditionalSection() {
    const Offset lower = m_at;
    m_at += 3;
    if (m_frames.size() == 1) {
        report(Rule::conditionalSectionInSubset, {lower, m_at});
        return skipIgnoredSection();
    }
    skipSpaces();
    const std::u16string_view keyword = takeKeyword();
    skipSpaces();
    if ((keyword != u"INCLUDE" && keyword != u"IGNORE") || unit() != u'[') {
        fail(Rule::unexpectedInSubset);
        return recover();
    }
    ++m_at;
    if (keyword == u"INCLUDE") {
        ++m_frames.back().openSections;
    } else {
        skipIgnoredSection();
    }
}

/// Goes on behind the `]]>` that ends the section, past those that end sections in it.
void DocumentTypeReader::skipIgnoredSection() {
    std::size_t depth = 1;
    while (depth > 0) {
        m_at = static_cast<Offset>(UnitScan::findAny(m_units.data(), m_at, m_end, u'<', u']'));
        if (isAtEnd()) {
            return report(Rule::unterminatedInSubset, SourceRange::at(m_declaration, 3));
        }
        if (rest().starts_with(u"<![")) {
            ++depth;
            m_at += 3;
        } else if (rest().starts_with(u"]]>")) {
            --depth;
            m_at += 3;
        } else {
            ++m_at;
        }
    }
}

void DocumentTypeReader::readParameterReference() {
    const Reference reference = Reference::read(m_units.substr(0, m_end), m_at);
    if (reference.kind != Reference::Kind::entity) {
        report(Rule::malformedParameterReference, reference.range);
        m_at = reference.range.upper;
        return skipUnexpected();
    }
    m_type.hasParameterReferences = true;
    const Offset lower = m_at;
    m_at = reference.range.upper;
    add(ItemKind::parameterReference, lower);
    const auto found =
        m_parameterEntities.find(m_units.substr(reference.name.lower, reference.name.length()));
    if (found == m_parameterEntities.end()) {
        if (!m_type.hasUnread && m_frames.size() == 1) {
            report(Rule::undeclaredParameterEntity, reference.range);
        }
        m_type.hasUnread = true;
    } else if (!m_type.entities[found->second].isInternal()) {
        m_type.hasUnread = true;
    } else {
        enterParameterEntity(found->second, reference.range);
    }
}

void DocumentTypeReader::enterParameterEntity(std::uint32_t entity, SourceRange reference) {
    if (m_states[entity] == EntityState::open) {
        const bool isInDocument = m_frames.size() == 1;
        m_type.violations.push_back(
            {isInDocument ? reference : m_reference, 0, Rule::recursiveParameterEntity});
        return;
    }
    if (m_states[entity] == EntityState::read) {
        return;
    }
    m_states[entity] = EntityState::open;
    if (m_frames.size() == 1) {
        m_reference = reference;
    }
    storeFrame();
    const SourceText text(replacementText(m_type.units(m_type.entities[entity].value)));
    m_frames.push_back(
        {.text = static_cast<std::uint32_t>(m_type.texts.size()), .end = text.count(), .entity = entity});
    m_type.texts.push_back(text);
    loadFrame();
}

void DocumentTypeReader::leaveParameterEntity() {
    if (m_frames.back().openSections > 0) {
        report(Rule::unterminatedInSubset, {});
    }
    m_states[m_frames.back().entity] = EntityState::read;
    m_frames.pop_back();
    loadFrame();
}
