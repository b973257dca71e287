#pragma once

#include "Diagnostic.h"
#include "SourceRange.h"

#include <cstdint>
#include <string_view>

/// The productions and constraints of the standards that are checked, named as the standards name them.
enum class Constraint : std::uint8_t {
    document,
    character,
    name,
    entityValue,
    publicIdentifierLiteral,
    characterData,
    comment,
    instruction,
    instructionTarget,
    cdataSection,
    xmlDeclaration,
    versionNumber,
    documentTypeDeclaration,
    internalSubset,
    parameterEntitiesInInternalSubset,
    parameterEntityBetweenDeclarations,
    standaloneDeclaration,
    startTag,
    noExternalEntityReferences,
    noLessThanInAttributeValues,
    elementDeclaration,
    elementContent,
    mixedContent,
    attributeListDeclaration,
    attributeDefault,
    conditionalSection,
    characterReference,
    legalCharacter,
    entityReference,
    parameterEntityReference,
    entityDeclared,
    parsedEntity,
    noRecursion,
    entityDeclaration,
    externalIdentifier,
    wellFormedParsedEntity,
    encodingDeclaration,
    predefinedEntity,
    notationDeclaration,
    reservedNames,
    qualifiedName,
    prefixDeclared,
    noPrefixUndeclaring,
    attributesUnique,
    conformance,
};

/// Where a constraint stands in its standard.
struct ConstraintSource {
    enum class Standard : std::uint8_t { xml, namespaces };

    Standard standard;
    std::string_view section; ///< Such as "2.8".
    std::string_view name;    ///< As the standard has it, such as "Entity Declared" or "Comment [15]".
};

ConstraintSource sourceOf(Constraint constraint);

/// One place where a text, which the parser could read, is not what the standards ask. Plain data, millions
/// of which a hostile document may have: message and fix are composed when they are shown (`ViolationText`).
struct Violation {
    enum class Rule : std::uint8_t {
        noRootElement,
        textOutsideRoot,
        cdataOutsideRoot,
        forbiddenCharacter,
        invalidName,
        missingSpaceBeforeAttribute,
        bareAmpersand,
        malformedCharacterReference,
        illegalCharacterReference,
        undeclaredEntity,
        entityDeclaredLater,
        unparsedEntityReference,
        recursiveEntity,
        illFormedEntity,
        externalEntityInAttribute,
        lessThanInAttribute,
        sectionEndInText,
        hyphensInComment,
        missingTarget,
        reservedTarget,
        misplacedXMLDeclaration,
        missingSpaceAfterTarget,
        malformedXMLDeclaration,
        unknownInXMLDeclaration,
        missingSpaceInXMLDeclaration,
        disorderedXMLDeclaration,
        missingVersion,
        invalidVersion,
        invalidEncodingName,
        invalidStandalone,
        misplacedDoctype,
        secondDoctype,
        misspelledDoctype,
        misplacedDeclaration,
        malformedDoctype,
        unexpectedInSubset,
        unterminatedInSubset,
        malformedElementDeclaration,
        malformedContentModel,
        malformedMixedContent,
        malformedAttributeList,
        malformedAttributeDefault,
        malformedEntityDeclaration,
        malformedNotationDeclaration,
        malformedExternalIdentifier,
        invalidPublicIdentifier,
        percentInEntityValue,
        parameterReferenceInDeclaration,
        malformedParameterReference,
        undeclaredParameterEntity,
        recursiveParameterEntity,
        illFormedParameterEntity,
        conditionalSectionInSubset,
        redeclaredPredefinedEntity,
        invalidQualifiedName,
        colonInName,
        undeclaredPrefix,
        prefixPerhapsDeclaredOutside,
        reservedPrefixXML,
        reservedNamespaceXML,
        reservedPrefixXMLNS,
        reservedNamespaceXMLNS,
        elementPrefixXMLNS,
        undeclaredAgain,
        repeatedExpandedName,
    };
    static constexpr Rule lastRule = Rule::repeatedExpandedName;

    SourceRange range; ///< Exactly the character, name, reference, attribute or delimiter.
    Offset detail = 0; ///< Where the fix inserts, for the rules that need to know.
    Rule rule = Rule::noRootElement;

    Constraint constraint() const;
    Diagnostic::Severity severity() const;

    bool operator==(const Violation&) const = default;
};
static_assert(sizeof(Violation) == 16);
