#include "Diagnostic.h"

#include "UnitScan.h"

#include <algorithm>

namespace {

using Rule = DiagnosticRecord::Rule;
using Fix = Diagnostic::Fix;

Fix insertion(std::u16string title, std::u16string string, Offset at) {
    return {std::move(title), {TextEdit::insert(std::move(string), at)}};
}

std::u16string terminatorOf(Rule rule) {
    switch (rule) {
    case Rule::unterminatedComment:
        return u"-->";
    case Rule::unterminatedCDATA:
        return u"]]>";
    case Rule::unterminatedInstruction:
        return u"?>";
    default:
        return u">";
    }
}

/// The name of a start tag that was cut off; empty if `range` is the `<` of a tag without a name.
std::u16string startTagName(const SourceText& text, SourceRange range) {
    return text.hasPrefix(u"<", range.lower) ? u"" : text.string(range);
}

/// The name inside the end tag that covers `range`.
std::u16string endTagName(const SourceText& text, SourceRange range) {
    const std::u16string_view tag = text.units(range).substr(2);
    const bool hasName = !tag.empty() && UnitScan::isNameStart(tag.front());
    const auto end = static_cast<std::ptrdiff_t>(tag.size());
    return repaired(tag.substr(0, hasName ? UnitScan::findNameEnd(tag.data(), 0, end) : 0));
}

/// The quote that closes the value which starts at `at`.
std::u16string closingQuote(const SourceText& text, Offset at) {
    return text.hasPrefix(u"'", at) ? u"'" : u"\"";
}

std::u16string message(const DiagnosticRecord& record, const SourceText& text) {
    const auto name = [&] { return text.string(record.range); };
    switch (record.rule) {
    case Rule::unescapedLessThan:
        return u"“<” sin escapar";
    case Rule::unescapedAmpersand:
        return u"“&” sin escapar";
    case Rule::textOutsideRoot:
        return u"Texto fuera del elemento raíz";
    case Rule::unterminatedComment:
    case Rule::unterminatedCDATA:
    case Rule::unterminatedInstruction:
    case Rule::unterminatedDeclaration:
        return u"Falta cerrar con " + terminatorOf(record.rule);
    case Rule::missingTagName:
        return u"Falta el nombre de la etiqueta";
    case Rule::unexpectedInTag:
        return u"Carácter inesperado dentro de la etiqueta";
    case Rule::unterminatedStartTag:
        return u"La etiqueta <" + startTagName(text, record.range) + u"> no termina con >";
    case Rule::secondRoot:
        return u"Solo se permite un elemento raíz";
    case Rule::duplicateAttribute:
        return u"Atributo duplicado “" + name() + u"”";
    case Rule::attributeWithoutValue:
        return u"El atributo “" + name() + u"” no tiene valor";
    case Rule::unquotedValue:
        return u"Falta el valor entre comillas";
    case Rule::unclosedQuote:
        return u"Falta cerrar la comilla";
    case Rule::unterminatedEndTag:
        return u"La etiqueta de cierre no termina con >";
    case Rule::unexpectedInEndTag:
        return u"Contenido inesperado en la etiqueta de cierre";
    case Rule::unmatchedEndTag:
        return u"</" + endTagName(text, record.range) + u"> no tiene etiqueta de apertura";
    case Rule::unclosedElement:
        return u"Falta cerrar <" + name() + u">";
    case Rule::noRoot:
        return u"El documento no tiene elemento raíz";
    }
    return {};
}

std::optional<Fix> fix(const DiagnosticRecord& record, const SourceText& text) {
    const Offset at = record.fixOffset;
    switch (record.rule) {
    case Rule::unescapedLessThan:
        return Fix{u"Escapar como &lt;", {{record.range, u"&lt;"}}};
    case Rule::unescapedAmpersand:
        return Fix{u"Escapar como &amp;", {{record.range, u"&amp;"}}};
    case Rule::unterminatedComment:
    case Rule::unterminatedCDATA:
    case Rule::unterminatedInstruction:
    case Rule::unterminatedDeclaration:
        return insertion(u"Cerrar con " + terminatorOf(record.rule), terminatorOf(record.rule), at);
    case Rule::unterminatedStartTag:
    case Rule::unterminatedEndTag:
        return insertion(u"Añadir >", u">", at);
    case Rule::attributeWithoutValue:
        return insertion(u"Añadir valor", u"=\"\"", at);
    case Rule::unclosedQuote:
        return insertion(u"Cerrar comilla", closingQuote(text, record.range.lower), at);
    case Rule::unmatchedEndTag:
        return Fix{u"Eliminar cierre", {TextEdit::deleteRange(record.range)}};
    case Rule::unclosedElement: {
        // The inserted end tag repeats the name unit for unit; the title shows it with lone surrogates
        // replaced.
        const std::u16string_view name = text.units(record.range);
        return insertion(u"Cerrar <" + text.string(record.range) + u">", u"</" + std::u16string(name) + u">",
                         at);
    }
    case Rule::textOutsideRoot:
    case Rule::missingTagName:
    case Rule::unexpectedInTag:
    case Rule::secondRoot:
    case Rule::duplicateAttribute:
    case Rule::unquotedValue:
    case Rule::unexpectedInEndTag:
    case Rule::noRoot:
        return std::nullopt;
    }
    return std::nullopt;
}

} // namespace

Diagnostic::Severity DiagnosticRecord::severity() const {
    return rule == Rule::textOutsideRoot || rule == Rule::noRoot ? Diagnostic::Severity::warning
                                                                 : Diagnostic::Severity::error;
}

DiagnosticList::DiagnosticList(SourceText text, RecordArray<DiagnosticRecord> records)
    : m_text(std::move(text)), m_records(std::move(records)),
      m_errorCount(std::ranges::count(m_records, Diagnostic::Severity::error, &DiagnosticRecord::severity)) {}

Diagnostic DiagnosticList::operator[](std::size_t index) const {
    precondition(index < size(), "there is a diagnostic of that index");
    const DiagnosticRecord& record = m_records[index];
    return {record.range, message(record, m_text), record.severity(), fix(record, m_text)};
}

std::size_t DiagnosticList::firstIndex(Offset from) const {
    const auto first = std::ranges::lower_bound(
        m_records, from, {}, [](const DiagnosticRecord& record) { return record.range.lower; });
    return static_cast<std::size_t>(first - m_records.begin());
}
