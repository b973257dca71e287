#include "ViolationText.h"

#include "HTMLEntities.h"
#include "UTF16.h"
#include "UnitScan.h"
#include "WellKnownNamespaces.h"
#include "XMLCharacters.h"

#include <utility>

namespace {

using Rule = Violation::Rule;
using Fix = Diagnostic::Fix;

std::u16string asUTF16(std::string_view ascii) { return {ascii.begin(), ascii.end()}; }

std::u16string decimal(std::uint64_t number) { return asUTF16(std::to_string(number)); }

/// "U+00A0"
std::u16string codePoint(char32_t scalar) {
    constexpr std::u16string_view digits = u"0123456789ABCDEF";
    std::u16string result;
    for (int shift = scalar > 0xFFFF ? 20 : 12; shift >= 0; shift -= 4) {
        result += digits[scalar >> shift & 0xF];
    }
    return u"U+" + result;
}

std::u16string quoted(std::u16string_view name) { return u"“" + repaired(name) + u"”"; }

/// Composes what is said of one violation.
class Composer {
public:
    Composer(const Violation& violation, const SourceText& text)
        : m_violation(violation), m_text(text), m_range(violation.range) {}

    std::u16string message() const;
    std::optional<Fix> fix() const;

private:
    std::u16string_view units() const { return m_text.units(m_range); }
    std::u16string quotedUnits() const { return quoted(units()); }
    std::u16string_view entityName() const { return units().substr(1, units().size() - 2); }
    std::u16string_view nameFrom(Offset at) const;
    char32_t scalar() const { return UTF16::scalarAt(units().data(), units().data() + units().size()); }

    std::u16string nameMessage() const;
    std::u16string characterMessage() const;
    std::u16string doctypeMessage() const;
    std::u16string namespaceMessage() const;

    std::optional<Fix> replacing(std::u16string title, std::u16string replacement) const {
        return Fix{std::move(title), {{m_range, std::move(replacement)}}};
    }
    std::optional<Fix> inserting(std::u16string title, std::u16string insertion, Offset at) const {
        return Fix{std::move(title), {TextEdit::insert(std::move(insertion), at)}};
    }
    std::optional<Fix> entityFix() const;
    std::optional<Fix> characterReferenceFix() const;
    std::optional<Fix> hyphensFix() const;
    std::optional<Fix> targetFix() const;
    std::optional<Fix> standaloneFix() const;
    std::optional<Fix> orderFix() const;
    std::optional<Fix> prefixFix() const;

    const Violation& m_violation;
    const SourceText& m_text;
    SourceRange m_range;
};

/// The name that starts at `at`.
std::u16string_view Composer::nameFrom(Offset at) const {
    const auto end = UnitScan::findNameEnd(m_text.units().data(), at, m_text.count());
    return m_text.units({at, end});
}

std::u16string Composer::characterMessage() const {
    if (UTF16::isSurrogate(units().front())) {
        return u"Aquí hay medio carácter (" + codePoint(units().front()) + u"), que no está permitido";
    }
    return u"El carácter " + codePoint(scalar()) + u" no está permitido en XML";
}

std::u16string Composer::nameMessage() const {
    const std::u16string character =
        scalar() < 0x80 ? quotedUnits() : quotedUnits() + u" (" + codePoint(scalar()) + u")";
    const bool isFirst = m_violation.detail == m_range.lower;
    return isFirst ? u"Un nombre no puede empezar por " + character
                   : character + u" no puede formar parte de un nombre";
}

std::u16string Composer::doctypeMessage() const {
    switch (m_violation.rule) {
    case Rule::misplacedDoctype:
        return u"La declaración DOCTYPE debe ir antes del elemento raíz";
    case Rule::secondDoctype:
        return u"Solo se permite una declaración DOCTYPE";
    case Rule::misspelledDoctype:
        return u"DOCTYPE se escribe en mayúsculas";
    case Rule::misplacedDeclaration:
        return quotedUnits() + u" no es una declaración que pueda ir aquí";
    case Rule::malformedDoctype:
        return quotedUnits() + u" sobra en la declaración DOCTYPE, o falta algo antes";
    case Rule::unexpectedInSubset:
        return quotedUnits() + u" no puede ir entre las declaraciones de DOCTYPE";
    case Rule::unterminatedInSubset:
        return u"Falta cerrar “" + m_text.string(m_range) + u"” dentro de DOCTYPE";
    case Rule::malformedElementDeclaration:
        return quotedUnits() + u" no puede ir aquí en la declaración de un elemento";
    case Rule::malformedContentModel:
        return quotedUnits() + u" no puede ir aquí en el modelo de contenido";
    case Rule::malformedMixedContent:
        return quotedUnits() + u" no puede ir aquí en un contenido mixto: es (#PCDATA | nombre)*";
    case Rule::malformedAttributeList:
        return quotedUnits() + u" no puede ir aquí en una lista de atributos";
    case Rule::malformedAttributeDefault:
        return quotedUnits() + u" no puede ir aquí: se espera #REQUIRED, #IMPLIED o un valor entre comillas";
    case Rule::malformedEntityDeclaration:
        return quotedUnits() + u" no puede ir aquí en la declaración de una entidad";
    case Rule::malformedNotationDeclaration:
        return quotedUnits() + u" no puede ir aquí en la declaración de una notación";
    case Rule::malformedExternalIdentifier:
        return quotedUnits() + u" no puede ir aquí: se espera SYSTEM o PUBLIC y sus comillas";
    case Rule::invalidPublicIdentifier:
        return quotedUnits() + u" no puede formar parte de un identificador público";
    case Rule::percentInEntityValue:
        return u"“%” sin escapar en el valor de una entidad";
    case Rule::parameterReferenceInDeclaration:
        return quotedUnits() + u" no puede ir dentro de una declaración";
    case Rule::malformedParameterReference:
        return u"Tras “%” falta el nombre de una entidad y “;”";
    case Rule::undeclaredParameterEntity:
        return u"La entidad de parámetros " + quoted(entityName()) + u" no está declarada";
    case Rule::recursiveParameterEntity:
        return u"La entidad de parámetros " + quoted(entityName()) + u" se contiene a sí misma";
    case Rule::illFormedParameterEntity:
        return u"El texto de " + quotedUnits() + u" no son declaraciones bien formadas";
    case Rule::conditionalSectionInSubset:
        return u"Las secciones condicionales solo pueden ir en un DTD externo";
    default:
        return u"La entidad " + quotedUnits() + u" ya tiene otro significado en XML";
    }
}

std::u16string Composer::namespaceMessage() const {
    switch (m_violation.rule) {
    case Rule::invalidQualifiedName:
        return units() == u":" ? u"Este “:” sobra: separa un prefijo de un nombre"
                               : u"Tras el prefijo, un nombre no puede empezar por " + quotedUnits();
    case Rule::colonInName:
        return u"Este nombre no puede llevar “:”";
    case Rule::undeclaredPrefix:
        return u"El prefijo " + quotedUnits() + u" no está declarado";
    case Rule::prefixPerhapsDeclaredOutside:
        return u"El prefijo " + quotedUnits() +
               u" no está declarado aquí; puede que lo declare el DTD externo";
    case Rule::reservedPrefixXML:
        return u"El prefijo “xml” no puede designar otro espacio de nombres";
    case Rule::reservedNamespaceXML:
        return u"Este espacio de nombres solo puede llevar el prefijo “xml”";
    case Rule::reservedPrefixXMLNS:
        return u"El prefijo “xmlns” no se puede declarar";
    case Rule::reservedNamespaceXMLNS:
        return u"Este espacio de nombres no se puede declarar";
    case Rule::elementPrefixXMLNS:
        return u"Un elemento no puede llevar el prefijo “xmlns”";
    case Rule::undeclaredAgain:
        return u"La declaración de un prefijo no puede quedar vacía";
    default:
        return u"Atributo duplicado: " + quotedUnits() + u" es el mismo que " +
               quoted(nameFrom(m_violation.detail));
    }
}

std::u16string Composer::message() const {
    switch (m_violation.rule) {
    case Rule::noRootElement:
        return u"El documento no tiene elemento raíz";
    case Rule::textOutsideRoot:
        return u"Texto fuera del elemento raíz";
    case Rule::cdataOutsideRoot:
        return u"Sección CDATA fuera del elemento raíz";
    case Rule::forbiddenCharacter:
        return characterMessage();
    case Rule::invalidName:
        return nameMessage();
    case Rule::missingSpaceBeforeAttribute:
        return u"Falta un espacio antes de " + quotedUnits();
    case Rule::bareAmpersand:
        return u"“&” sin escapar";
    case Rule::malformedCharacterReference:
        return quotedUnits() + u" no es una referencia a un carácter";
    case Rule::illegalCharacterReference:
        return quotedUnits() + u" designa un carácter que XML no permite";
    case Rule::undeclaredEntity:
        return u"La entidad " + quoted(entityName()) + u" no está declarada";
    case Rule::entityDeclaredLater:
        return u"La entidad " + quoted(entityName()) + u" se declara más abajo, y aquí ya hace falta";
    case Rule::unparsedEntityReference:
        return u"La entidad " + quoted(entityName()) + u" no es texto XML: no se puede insertar aquí";
    case Rule::recursiveEntity:
        return u"La entidad " + quoted(entityName()) + u" se contiene a sí misma";
    case Rule::illFormedEntity:
        return u"El texto de la entidad " + quoted(entityName()) + u" no está bien formado";
    case Rule::externalEntityInAttribute:
        return u"Un atributo no puede contener la entidad externa " + quoted(entityName());
    case Rule::lessThanInAttribute:
        return units() == u"<"
                   ? u"“<” sin escapar en el valor de un atributo"
                   : u"Un atributo no puede contener " + quoted(entityName()) + u", que lleva “<”";
    case Rule::sectionEndInText:
        return u"“]]>” no puede ir en el texto";
    case Rule::hyphensInComment:
        return u"Un comentario no puede contener “--” ni terminar en “-”";
    case Rule::missingTarget:
        return u"Falta el nombre de la instrucción de proceso";
    case Rule::reservedTarget:
        return u"El nombre " + quotedUnits() + u" está reservado";
    case Rule::misplacedXMLDeclaration:
        return u"La declaración XML solo puede ir al comienzo del documento";
    case Rule::missingSpaceAfterTarget:
        return u"Falta un espacio tras el nombre de la instrucción";
    case Rule::malformedXMLDeclaration:
        return quotedUnits() + u" no puede ir aquí en la declaración XML";
    case Rule::unknownInXMLDeclaration:
        return quotedUnits() + u" sobra en la declaración XML";
    case Rule::missingSpaceInXMLDeclaration:
        return u"Falta un espacio antes de " + quotedUnits();
    case Rule::disorderedXMLDeclaration:
        return u"El orden de la declaración XML es version, encoding y standalone";
    case Rule::missingVersion:
        return u"Falta la versión en la declaración XML";
    case Rule::invalidVersion:
        return quotedUnits() + u" no es una versión de XML";
    case Rule::invalidEncodingName:
        return quotedUnits() + u" no es el nombre de una codificación";
    case Rule::invalidStandalone:
        return u"El valor de standalone es yes o no";
    case Rule::invalidQualifiedName:
    case Rule::colonInName:
    case Rule::undeclaredPrefix:
    case Rule::prefixPerhapsDeclaredOutside:
    case Rule::reservedPrefixXML:
    case Rule::reservedNamespaceXML:
    case Rule::reservedPrefixXMLNS:
    case Rule::reservedNamespaceXMLNS:
    case Rule::elementPrefixXMLNS:
    case Rule::undeclaredAgain:
    case Rule::repeatedExpandedName:
        return namespaceMessage();
    default:
        return doctypeMessage();
    }
}

std::optional<Fix> Composer::entityFix() const {
    if (const auto scalar = HTMLEntities::scalar(entityName())) {
        std::u16string reference = u"&#" + decimal(*scalar) + u";";
        return replacing(u"Cambiar por " + reference, reference);
    }
    return inserting(u"Escapar como &amp;", u"amp;", m_range.lower + 1);
}

/// `&#X20;` is meant for `&#x20;`.
std::optional<Fix> Composer::characterReferenceFix() const {
    std::u16string digits(units().substr(2, units().size() - 3));
    const bool isHexadecimal =
        digits.starts_with(u'X') || digits.find_first_of(u"abcdefABCDEF") != std::u16string::npos;
    if (digits.starts_with(u'X') || digits.starts_with(u'x')) {
        digits.erase(0, 1);
    }
    if (!isHexadecimal || digits.empty() || digits.find_first_of(u"xX") != std::u16string::npos) {
        return inserting(u"Escapar como &amp;", u"amp;", m_range.lower + 1);
    }
    std::u16string reference = u"&#x" + digits + u";";
    return replacing(u"Cambiar por " + repaired(reference), reference);
}

/// Spaces between the hyphens, and one before the end of the comment where they reach it.
std::optional<Fix> Composer::hyphensFix() const {
    std::u16string apart;
    for (Offset i = 0; i < m_range.length(); ++i) {
        apart += i == 0 ? u"-" : u" -";
    }
    if (m_range.upper == m_violation.detail) {
        apart += u' ';
    }
    return replacing(u"Separar los guiones", std::move(apart));
}

/// White space alone before the declaration can go.
std::optional<Fix> Composer::targetFix() const {
    constexpr Offset openerLength = 2;
    const SourceRange before(0, m_range.lower - openerLength);
    if (before.isEmpty() || !m_text.isWhitespace(before)) {
        return std::nullopt;
    }
    return Fix{u"Eliminar el espacio anterior", {TextEdit::deleteRange(before)}};
}

std::optional<Fix> Composer::standaloneFix() const {
    std::u16string lower(units());
    for (char16_t& unit : lower) {
        unit |= 0x20;
    }
    if (lower == u"yes" || lower == u"true") {
        return replacing(u"Cambiar por yes", u"yes");
    }
    return replacing(u"Cambiar por no", u"no");
}

/// The declaration anew, its parts in order.
std::optional<Fix> Composer::orderFix() const {
    const std::u16string_view all = m_text.units();
    const std::size_t end = all.find(u"?>");
    std::u16string parts;
    std::size_t first = end;
    std::size_t last = 0;
    for (const std::u16string_view name : {u"version", u"encoding", u"standalone"}) {
        const std::size_t lower = all.find(name);
        const std::size_t open = all.find_first_of(u"\"'", lower);
        if (lower >= end || open >= end) {
            continue;
        }
        const std::size_t close = all.find(all[open], open + 1);
        if (close >= end) {
            return std::nullopt;
        }
        parts += parts.empty() ? u"" : u" ";
        parts += all.substr(lower, close + 1 - lower);
        first = std::min(first, lower);
        last = std::max(last, close + 1);
    }
    const SourceRange range(static_cast<Offset>(first), static_cast<Offset>(last));
    return Fix{u"Ordenar la declaración", {{range, std::move(parts)}}};
}

std::optional<Fix> Composer::prefixFix() const {
    const std::u16string_view name = WellKnownNamespaces::name(units());
    if (name.empty() || m_violation.detail == 0) {
        return std::nullopt;
    }
    std::u16string declaration = u" xmlns:" + std::u16string(units()) + u"=\"" + std::u16string(name) + u"\"";
    return inserting(u"Declarar el prefijo " + quotedUnits(), std::move(declaration), m_violation.detail);
}

std::optional<Fix> Composer::fix() const {
    const auto removing = [this](std::u16string title) {
        return std::optional(Fix{std::move(title), {TextEdit::deleteRange(m_range)}});
    };
    switch (m_violation.rule) {
    case Rule::forbiddenCharacter:
        return removing(u"Eliminar el carácter");
    case Rule::missingSpaceBeforeAttribute:
    case Rule::missingSpaceInXMLDeclaration:
    case Rule::missingSpaceAfterTarget:
        return inserting(u"Añadir un espacio", u" ", m_range.lower);
    case Rule::bareAmpersand:
        return replacing(u"Escapar como &amp;", u"&amp;");
    case Rule::malformedCharacterReference:
        return characterReferenceFix();
    case Rule::illegalCharacterReference:
        return removing(u"Eliminar la referencia");
    case Rule::undeclaredEntity:
        return entityFix();
    case Rule::lessThanInAttribute:
        return units() == u"<" ? replacing(u"Escapar como &lt;", u"&lt;") : std::nullopt;
    case Rule::sectionEndInText:
        return replacing(u"Escapar como ]]&gt;", u"]]&gt;");
    case Rule::hyphensInComment:
        return hyphensFix();
    case Rule::misplacedXMLDeclaration:
        return targetFix();
    case Rule::disorderedXMLDeclaration:
        return orderFix();
    case Rule::missingVersion:
        return inserting(u"Añadir version=\"1.0\"", u" version=\"1.0\"", m_range.upper);
    case Rule::invalidVersion:
        return replacing(u"Cambiar por 1.0", u"1.0");
    case Rule::invalidStandalone:
        return standaloneFix();
    case Rule::misspelledDoctype:
        return replacing(u"Cambiar por <!DOCTYPE", u"<!DOCTYPE");
    case Rule::percentInEntityValue:
        return replacing(u"Escapar como &#37;", u"&#37;");
    case Rule::undeclaredPrefix:
    case Rule::prefixPerhapsDeclaredOutside:
        return prefixFix();
    case Rule::undeclaredAgain:
        return removing(u"Eliminar la declaración");
    default:
        return std::nullopt;
    }
}

} // namespace

std::u16string ViolationText::message(const Violation& violation, const SourceText& text) {
    return Composer(violation, text).message();
}

std::optional<Diagnostic::Fix> ViolationText::fix(const Violation& violation, const SourceText& text) {
    return Composer(violation, text).fix();
}

std::u16string ViolationText::source(Constraint constraint) {
    const ConstraintSource source = sourceOf(constraint);
    const bool isXML = source.standard == ConstraintSource::Standard::xml;
    return (isXML ? u"XML 1.0, " : u"Espacios de nombres en XML 1.0, ") + asUTF16(source.section);
}
