#include "EntityTable.h"

#include "DocumentTypeReader.h"
#include "NodeWalk.h"
#include "TreeParser.h"
#include "UnitScan.h"

#include <algorithm>
#include <array>

namespace {

using Rule = Violation::Rule;

/// What a problem inside an entity's text makes of the reference to that entity.
Rule seenFromOutside(Rule inside) {
    switch (inside) {
    case Rule::recursiveEntity:
    case Rule::lessThanInAttribute:
    case Rule::externalEntityInAttribute:
        return inside;
    default:
        return Rule::illFormedEntity;
    }
}

} // namespace

bool EntityTable::isPredefined(std::u16string_view name) {
    constexpr std::array<std::u16string_view, 5> names{u"amp", u"lt", u"gt", u"quot", u"apos"};
    return std::ranges::find(names, name) != names.end();
}

EntityTable::EntityTable(const DocumentType& type) : m_type(type), m_entries(type.entities.size()) {}

std::optional<Rule> EntityTable::problem(std::u16string_view name, ReferenceContext context) {
    if (const auto entity = m_type.generalEntity(name)) {
        read(*entity);
    }
    return problemOf(name, context);
}

/// `problem`, where all that `name` leads to is read or open.
EntityTable::Problem EntityTable::problemOf(std::u16string_view name, ReferenceContext context) const {
    if (isPredefined(name)) {
        return std::nullopt;
    }
    const auto index = m_type.generalEntity(name);
    const bool isDeclared = index && (!m_type.isStandalone || m_type.entities[*index].name.text == 0);
    if (!isDeclared) {
        return m_type.mustDeclareEntities() ? Problem(Rule::undeclaredEntity) : std::nullopt;
    }
    const DocumentType::Entity& entity = m_type.entities[*index];
    const bool isInAttribute = context == ReferenceContext::attributeValue;
    if (entity.isUnparsed()) {
        return Rule::unparsedEntityReference;
    }
    if (!entity.isInternal()) {
        return isInAttribute ? Problem(Rule::externalEntityInAttribute) : std::nullopt;
    }
    const Entry& entry = m_entries[*index];
    if (entry.state == State::open) {
        return Rule::recursiveEntity;
    }
    return isInAttribute ? entry.inAttribute : entry.inContent;
}

/// Reads `entity` after all that it refers to, depth first.
void EntityTable::read(std::uint32_t first) {
    if (m_entries[first].state != State::unread) {
        return;
    }
    std::vector<Frame> frames;
    frames.push_back(open(first));
    while (!frames.empty()) {
        Frame& frame = frames.back();
        if (frame.next == frame.uses.size()) {
            close(frame);
            frames.pop_back();
            continue;
        }
        const auto used = m_type.generalEntity(frame.text.units(frame.uses[frame.next++].name));
        if (used && m_entries[*used].state == State::unread) {
            frames.push_back(open(*used));
        }
    }
}

EntityTable::Frame EntityTable::open(std::uint32_t index) {
    const DocumentType::Entity& entity = m_type.entities[index];
    Entry& entry = m_entries[index];
    entry.state = State::open;
    Frame frame{.entity = index};
    if (!entity.isInternal()) {
        return frame;
    }
    frame.text = SourceText(replacementText(m_type.units(entity.value)));
    const bool hasMarkup = frame.text.units().find(u'<') != std::u16string_view::npos;
    entry = hasMarkup ? readMarkup(frame.text, frame.uses) : readText(frame.text, frame.uses);
    entry.state = State::open;
    return frame;
}

void EntityTable::close(const Frame& frame) {
    Entry& entry = m_entries[frame.entity];
    for (const Use& use : frame.uses) {
        const std::u16string_view name = frame.text.units(use.name);
        if (!entry.inContent) {
            entry.inContent = problemOf(name, use.context).transform(seenFromOutside);
        }
        if (!entry.inAttribute) {
            entry.inAttribute = problemOf(name, ReferenceContext::attributeValue).transform(seenFromOutside);
        }
    }
    entry.state = State::read;
}

/// What is wrong with a text without markup, apart from what it refers to.
EntityTable::Entry EntityTable::readText(const SourceText& text, std::vector<Use>& uses) const {
    const std::u16string_view units = text.units();
    const auto end = static_cast<std::ptrdiff_t>(units.size());
    for (std::ptrdiff_t at = 0; (at = UnitScan::findAny(units.data(), at, end, u'&')) < end;) {
        const Reference reference = Reference::read(units, static_cast<Offset>(at));
        const bool isCharacter = reference.kind == Reference::Kind::character &&
                                 XMLCharacters::isReferable(reference.scalar, m_type.version);
        if (reference.kind == Reference::Kind::entity) {
            uses.push_back({reference.name, ReferenceContext::content});
        } else if (!isCharacter) {
            return {.inContent = Rule::illFormedEntity, .inAttribute = Rule::illFormedEntity};
        }
        at = reference.range.upper;
    }
    const bool hasSectionEnd = units.find(u"]]>") != std::u16string_view::npos;
    return {.inContent = hasSectionEnd ? Problem(Rule::illFormedEntity) : std::nullopt};
}

/// The same of a text that holds a `<`.
EntityTable::Entry EntityTable::readMarkup(const SourceText& text, std::vector<Use>& uses) const {
    Entry entry{.inAttribute = Rule::lessThanInAttribute};
    const DocumentTree tree = TreeParser::parse(text);
    for (std::size_t i = 0; i < tree.diagnostics.size(); ++i) {
        const bool isError = tree.diagnostics.severity(i) == Diagnostic::Severity::error;
        if (isError && tree.diagnostics.rule(i) != DiagnosticRecord::Rule::secondRoot) {
            entry.inContent = Rule::illFormedEntity;
            return entry;
        }
    }
    std::vector<Violation> violations;
    ContentCheck check(tree, ContentCheck::Subject::replacementText, m_type.version, {}, violations,
                       [&](const Reference& reference, ReferenceContext context) {
                           uses.push_back({reference.name, context});
                       });
    NodeWalk::walk(tree, m_type.version, &check, nullptr);
    // A reference may stand for a character that the text itself may not hold.
    const auto isOther = [](const Violation& violation) {
        return violation.rule != Rule::forbiddenCharacter;
    };
    if (std::ranges::any_of(violations, isOther)) {
        entry.inContent = Rule::illFormedEntity;
    }
    return entry;
}
