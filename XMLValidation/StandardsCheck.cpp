#include "StandardsCheck.h"

#include "EntityTable.h"
#include "MarkupCheck.h"
#include "NodeWalk.h"
#include "RunSort.h"
#include "TreeParser.h"

#include <algorithm>

namespace {

using Rule = Violation::Rule;

/// Whether a diagnostic of this rule says of its place all that there is to say.
bool saysAll(DiagnosticRecord::Rule rule) {
    switch (rule) {
    case DiagnosticRecord::Rule::unescapedLessThan:
    case DiagnosticRecord::Rule::unescapedAmpersand:
    case DiagnosticRecord::Rule::unterminatedComment:
    case DiagnosticRecord::Rule::unterminatedCDATA:
    case DiagnosticRecord::Rule::unterminatedInstruction:
    case DiagnosticRecord::Rule::unterminatedDeclaration:
    case DiagnosticRecord::Rule::missingTagName:
    case DiagnosticRecord::Rule::unexpectedInTag:
    case DiagnosticRecord::Rule::unexpectedInEndTag:
    case DiagnosticRecord::Rule::unmatchedEndTag:
        return true;
    default:
        return false;
    }
}

/// Both are sorted.
void removeRepeated(std::vector<Violation>& violations, const DiagnosticList& diagnostics) {
    std::size_t next = 0;
    std::erase_if(violations, [&](const Violation& violation) {
        while (next < diagnostics.size() && diagnostics.range(next).lower < violation.range.lower) {
            ++next;
        }
        for (std::size_t at = next;
             at < diagnostics.size() && diagnostics.range(at).lower == violation.range.lower; ++at) {
            if (saysAll(diagnostics.rule(at))) {
                return true;
            }
        }
        return false;
    });
}

/// What is wrong with a reference in a default value: the entity has to be declared before it.
std::optional<Rule> problemInDefault(const DocumentType& type, EntityTable& entities,
                                     const Reference& reference) {
    const std::u16string_view name = type.texts.front().units(reference.name);
    const auto entity = type.generalEntity(name);
    const DocumentType::Place declared = entity ? type.entities[*entity].name : DocumentType::Place();
    const bool isLater = declared.text == 0 && declared.range.lower > reference.range.lower;
    return isLater && !EntityTable::isPredefined(name)
               ? Rule::entityDeclaredLater
               : entities.problem(name, ReferenceContext::attributeValue);
}

/// The entities in the default values of the document's attribute lists.
void checkDefaults(const DocumentType& type, EntityTable& entities, std::vector<Violation>& violations) {
    for (const DocumentType::Attribute& attribute : type.attributes) {
        if (attribute.value.text != 0) {
            continue;
        }
        const std::u16string_view upToEnd = type.texts.front().units().substr(0, attribute.value.range.upper);
        std::size_t at = attribute.value.range.lower;
        while ((at = upToEnd.find(u'&', at)) != std::u16string_view::npos) {
            const Reference reference = Reference::read(upToEnd, static_cast<Offset>(at));
            at = reference.range.upper;
            if (reference.kind == Reference::Kind::entity) {
                if (const auto problem = problemInDefault(type, entities, reference)) {
                    violations.push_back({reference.range, 0, *problem});
                }
            }
        }
    }
}

void checkTree(const DocumentTree& tree, const DocumentType& type, StandardsCheck::Scope scope,
               std::vector<Violation>& violations) {
    using Scope = StandardsCheck::Scope;
    EntityTable entities(type);
    const auto onReference = [&](const Reference& reference, ReferenceContext context) {
        const std::u16string_view name = tree.text.units(reference.name);
        if (const auto problem = entities.problem(name, context)) {
            violations.push_back({reference.range, 0, *problem});
        } else if (const std::size_t colon = name.find(u':');
                   scope == Scope::everything && colon != std::u16string_view::npos) {
            const Offset at = reference.name.lower + static_cast<Offset>(colon);
            violations.push_back({{at, at + 1}, 0, Rule::colonInName});
        }
    };
    std::optional<ContentCheck> content;
    std::optional<NamespaceCheck> namespaces;
    if (scope != Scope::namespaces) {
        XMLDeclarationCheck::check(tree, violations);
        violations.insert(violations.end(), type.violations.begin(), type.violations.end());
        checkDefaults(type, entities, violations);
        content.emplace(tree, ContentCheck::Subject::document, type.version, type.range, violations,
                        onReference);
    }
    if (scope != Scope::wellFormedness) {
        namespaces.emplace(tree, type, violations);
        namespaces->visitDeclarations();
    }
    NodeWalk::walk(tree, type.version, content ? &*content : nullptr, namespaces ? &*namespaces : nullptr);
}

/// Whether the tree has the declaration where the grammar has it.
bool agrees(const DocumentTree& tree, const DocumentType& type) {
    return !type.isPresent() || tree[tree.node(type.range.lower)].range == type.range;
}

} // namespace

StandardsCheck::Findings StandardsCheck::check(const DocumentTree& tree) {
    Findings findings{.type = DocumentType::read(tree), .violations = {}};
    findings.violations = check(tree, findings.type, Scope::everything);
    return findings;
}

std::vector<Violation> StandardsCheck::check(const DocumentTree& tree, const DocumentType& type,
                                             Scope scope) {
    std::vector<Violation> violations;
    if (agrees(tree, type)) {
        checkTree(tree, type, scope, violations);
    } else {
        // Where the parser reads the declaration to another end, everything behind it is judged as it stands.
        checkTree(TreeParser::parse(tree.text, {}, {}, {type.range}), type, scope, violations);
    }
    const auto place = [](const Violation& violation) { return violation.range.lower; };
    sortByRuns(std::span(violations), place);
    removeRepeated(violations, tree.diagnostics);
    return violations;
}
