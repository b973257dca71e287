#include "Violation.h"

#include <utility>

namespace {

using Standard = ConstraintSource::Standard;
using Rule = Violation::Rule;

constexpr ConstraintSource xml(std::string_view section, std::string_view name) {
    return {Standard::xml, section, name};
}
constexpr ConstraintSource namespaces(std::string_view section, std::string_view name) {
    return {Standard::namespaces, section, name};
}

} // namespace

ConstraintSource sourceOf(Constraint constraint) {
    switch (constraint) {
    case Constraint::document:
        return xml("2.1", "document [1]");
    case Constraint::character:
        return xml("2.2", "Char [2]");
    case Constraint::name:
        return xml("2.3", "Name [5]");
    case Constraint::entityValue:
        return xml("2.3", "EntityValue [9]");
    case Constraint::publicIdentifierLiteral:
        return xml("2.3", "PubidLiteral [12]");
    case Constraint::characterData:
        return xml("2.4", "CharData [14]");
    case Constraint::comment:
        return xml("2.5", "Comment [15]");
    case Constraint::instruction:
        return xml("2.6", "PI [16]");
    case Constraint::instructionTarget:
        return xml("2.6", "PITarget [17]");
    case Constraint::cdataSection:
        return xml("2.7", "CDSect [18]");
    case Constraint::xmlDeclaration:
        return xml("2.8", "XMLDecl [23]");
    case Constraint::versionNumber:
        return xml("2.8", "VersionNum [26]");
    case Constraint::documentTypeDeclaration:
        return xml("2.8", "doctypedecl [28]");
    case Constraint::internalSubset:
        return xml("2.8", "intSubset [28b]");
    case Constraint::parameterEntitiesInInternalSubset:
        return xml("2.8", "PEs in Internal Subset");
    case Constraint::parameterEntityBetweenDeclarations:
        return xml("2.8", "PE Between Declarations");
    case Constraint::standaloneDeclaration:
        return xml("2.9", "SDDecl [32]");
    case Constraint::startTag:
        return xml("3.1", "STag [40]");
    case Constraint::noExternalEntityReferences:
        return xml("3.1", "No External Entity References");
    case Constraint::noLessThanInAttributeValues:
        return xml("3.1", "No < in Attribute Values");
    case Constraint::elementDeclaration:
        return xml("3.2", "elementdecl [45]");
    case Constraint::elementContent:
        return xml("3.2.1", "children [47]");
    case Constraint::mixedContent:
        return xml("3.2.2", "Mixed [51]");
    case Constraint::attributeListDeclaration:
        return xml("3.3", "AttlistDecl [52]");
    case Constraint::attributeDefault:
        return xml("3.3.2", "DefaultDecl [60]");
    case Constraint::conditionalSection:
        return xml("3.4", "conditionalSect [61]");
    case Constraint::characterReference:
        return xml("4.1", "CharRef [66]");
    case Constraint::legalCharacter:
        return xml("4.1", "Legal Character");
    case Constraint::entityReference:
        return xml("4.1", "EntityRef [68]");
    case Constraint::parameterEntityReference:
        return xml("4.1", "PEReference [69]");
    case Constraint::entityDeclared:
        return xml("4.1", "Entity Declared");
    case Constraint::parsedEntity:
        return xml("4.1", "Parsed Entity");
    case Constraint::noRecursion:
        return xml("4.1", "No Recursion");
    case Constraint::entityDeclaration:
        return xml("4.2", "EntityDecl [70]");
    case Constraint::externalIdentifier:
        return xml("4.2.2", "ExternalID [75]");
    case Constraint::wellFormedParsedEntity:
        return xml("4.3.2", "Well-Formed Parsed Entities");
    case Constraint::encodingDeclaration:
        return xml("4.3.3", "EncodingDecl [80]");
    case Constraint::predefinedEntity:
        return xml("4.6", "Predefined Entities");
    case Constraint::notationDeclaration:
        return xml("4.7", "NotationDecl [82]");
    case Constraint::reservedNames:
        return namespaces("3", "Reserved Prefixes and Namespace Names");
    case Constraint::qualifiedName:
        return namespaces("4", "QName [7]");
    case Constraint::prefixDeclared:
        return namespaces("5", "Prefix Declared");
    case Constraint::noPrefixUndeclaring:
        return namespaces("5", "No Prefix Undeclaring");
    case Constraint::attributesUnique:
        return namespaces("6.3", "Attributes Unique");
    case Constraint::conformance:
        return namespaces("7", "Conformance of Documents");
    }
    std::unreachable();
}

Constraint Violation::constraint() const {
    switch (rule) {
    case Rule::noRootElement:
    case Rule::textOutsideRoot:
        return Constraint::document;
    case Rule::cdataOutsideRoot:
        return Constraint::cdataSection;
    case Rule::forbiddenCharacter:
        return Constraint::character;
    case Rule::invalidName:
        return Constraint::name;
    case Rule::missingSpaceBeforeAttribute:
        return Constraint::startTag;
    case Rule::bareAmpersand:
        return Constraint::entityReference;
    case Rule::malformedCharacterReference:
        return Constraint::characterReference;
    case Rule::illegalCharacterReference:
        return Constraint::legalCharacter;
    case Rule::undeclaredEntity:
    case Rule::entityDeclaredLater:
    case Rule::undeclaredParameterEntity:
        return Constraint::entityDeclared;
    case Rule::unparsedEntityReference:
        return Constraint::parsedEntity;
    case Rule::recursiveEntity:
    case Rule::recursiveParameterEntity:
        return Constraint::noRecursion;
    case Rule::illFormedEntity:
        return Constraint::wellFormedParsedEntity;
    case Rule::externalEntityInAttribute:
        return Constraint::noExternalEntityReferences;
    case Rule::lessThanInAttribute:
        return Constraint::noLessThanInAttributeValues;
    case Rule::sectionEndInText:
        return Constraint::characterData;
    case Rule::hyphensInComment:
        return Constraint::comment;
    case Rule::missingTarget:
    case Rule::missingSpaceAfterTarget:
        return Constraint::instruction;
    case Rule::reservedTarget:
    case Rule::misplacedXMLDeclaration:
        return Constraint::instructionTarget;
    case Rule::malformedXMLDeclaration:
    case Rule::unknownInXMLDeclaration:
    case Rule::missingSpaceInXMLDeclaration:
    case Rule::disorderedXMLDeclaration:
    case Rule::missingVersion:
        return Constraint::xmlDeclaration;
    case Rule::invalidVersion:
        return Constraint::versionNumber;
    case Rule::invalidEncodingName:
        return Constraint::encodingDeclaration;
    case Rule::invalidStandalone:
        return Constraint::standaloneDeclaration;
    case Rule::misplacedDoctype:
    case Rule::secondDoctype:
    case Rule::misspelledDoctype:
    case Rule::malformedDoctype:
        return Constraint::documentTypeDeclaration;
    case Rule::misplacedDeclaration:
    case Rule::unexpectedInSubset:
    case Rule::unterminatedInSubset:
        return Constraint::internalSubset;
    case Rule::malformedElementDeclaration:
        return Constraint::elementDeclaration;
    case Rule::malformedContentModel:
        return Constraint::elementContent;
    case Rule::malformedMixedContent:
        return Constraint::mixedContent;
    case Rule::malformedAttributeList:
        return Constraint::attributeListDeclaration;
    case Rule::malformedAttributeDefault:
        return Constraint::attributeDefault;
    case Rule::malformedEntityDeclaration:
        return Constraint::entityDeclaration;
    case Rule::malformedNotationDeclaration:
        return Constraint::notationDeclaration;
    case Rule::malformedExternalIdentifier:
        return Constraint::externalIdentifier;
    case Rule::invalidPublicIdentifier:
        return Constraint::publicIdentifierLiteral;
    case Rule::percentInEntityValue:
        return Constraint::entityValue;
    case Rule::parameterReferenceInDeclaration:
        return Constraint::parameterEntitiesInInternalSubset;
    case Rule::malformedParameterReference:
        return Constraint::parameterEntityReference;
    case Rule::illFormedParameterEntity:
        return Constraint::parameterEntityBetweenDeclarations;
    case Rule::conditionalSectionInSubset:
        return Constraint::conditionalSection;
    case Rule::redeclaredPredefinedEntity:
        return Constraint::predefinedEntity;
    case Rule::invalidQualifiedName:
        return Constraint::qualifiedName;
    case Rule::colonInName:
        return Constraint::conformance;
    case Rule::undeclaredPrefix:
    case Rule::prefixPerhapsDeclaredOutside:
        return Constraint::prefixDeclared;
    case Rule::reservedPrefixXML:
    case Rule::reservedNamespaceXML:
    case Rule::reservedPrefixXMLNS:
    case Rule::reservedNamespaceXMLNS:
    case Rule::elementPrefixXMLNS:
        return Constraint::reservedNames;
    case Rule::undeclaredAgain:
        return Constraint::noPrefixUndeclaring;
    case Rule::repeatedExpandedName:
        return Constraint::attributesUnique;
    }
    std::unreachable();
}

Diagnostic::Severity Violation::severity() const {
    switch (rule) {
    case Rule::undeclaredParameterEntity:
    case Rule::redeclaredPredefinedEntity:
    case Rule::prefixPerhapsDeclaredOutside:
        return Diagnostic::Severity::warning;
    default:
        return Diagnostic::Severity::error;
    }
}
