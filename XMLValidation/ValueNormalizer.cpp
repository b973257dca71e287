#include "ValueNormalizer.h"

#include "DocumentTypeReader.h"
#include "Reference.h"
#include "UTF16.h"

#include <algorithm>
#include <array>

namespace {

struct Predefined {
    std::u16string_view name;
    char16_t unit;
};
constexpr std::array<Predefined, 5> predefined{
    {{u"amp", u'&'}, {u"lt", u'<'}, {u"gt", u'>'}, {u"quot", u'"'}, {u"apos", u'\''}}};

} // namespace

std::u16string ValueNormalizer::normalized(std::u16string_view written) {
    std::u16string result;
    m_sources.push_back({std::u16string(written)});
    while (!m_sources.empty()) {
        Source& source = m_sources.back();
        if (source.at == source.text.size()) {
            m_sources.pop_back();
        } else {
            take(source, result);
        }
    }
    return result;
}

void ValueNormalizer::take(Source& source, std::u16string& result) {
    const char16_t unit = source.text[source.at];
    if (unit == u'&') {
        return takeReference(source, result);
    }
    const bool isTwoUnits =
        unit == u'\r' && source.at + 1 < source.text.size() && source.text[source.at + 1] == u'\n';
    source.at += isTwoUnits ? 2 : 1;
    result.push_back(XMLCharacters::isSpace(unit) ? u' ' : unit);
}

void ValueNormalizer::takeReference(Source& source, std::u16string& result) {
    const Reference reference = Reference::read(source.text, static_cast<Offset>(source.at));
    const std::u16string written = source.text.substr(source.at, reference.range.length());
    source.at = reference.range.upper;
    if (reference.kind == Reference::Kind::character && reference.scalar <= 0x10FFFF) {
        return UTF16::append(result, reference.scalar);
    }
    if (reference.kind == Reference::Kind::entity) {
        const std::u16string_view name = std::u16string_view(written).substr(1, written.size() - 2);
        const auto* const known = std::ranges::find(predefined, name, &Predefined::name);
        if (known != predefined.end()) {
            result.push_back(known->unit);
            return;
        }
        if (enterEntity(name)) {
            return;
        }
    }
    result += written;
}

/// Goes on with the text of an entity, if there is one that may be read.
bool ValueNormalizer::enterEntity(std::u16string_view name) {
    constexpr std::size_t deepest = 64;
    const auto index = m_type == nullptr ? std::nullopt : m_type->generalEntity(name);
    if (!index || !m_type->entities[*index].isInternal() || m_sources.size() >= deepest) {
        return false;
    }
    const DocumentType::Place& value = m_type->entities[*index].value;
    const std::size_t cost = std::size_t{value.range.length()} + 1;
    if (cost > m_budget) {
        return false;
    }
    m_budget -= cost;
    m_sources.push_back({replacementText(m_type->units(value))});
    return true;
}
