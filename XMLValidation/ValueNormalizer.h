#pragma once

#include "DocumentType.h"

#include <cstddef>
#include <string>
#include <string_view>

/// Turns values of attributes, as they are written inside their quotes, into what a processor hands over:
/// white space becomes spaces, a line end one, and references are resolved, those to internal entities too.
class ValueNormalizer {
public:
    /// `type` is borrowed; without one only the five entities are known that every processor knows.
    explicit ValueNormalizer(const DocumentType* type) : m_type(type) {}

    /// Whether a value is what it stands for.
    static bool isNormalized(std::u16string_view written) {
        return written.find_first_of(u"&\t\r\n") == std::u16string_view::npos;
    }

    /// What a value stands for. A reference that means nothing stays as it is written, and so do references
    /// to entities once those resolved so far, in all values, have grown beyond what documents need.
    std::u16string normalized(std::u16string_view written);

private:
    /// A text that is being read: the value, or in it an entity, or in that another.
    struct Source {
        std::u16string text;
        std::size_t at = 0;
    };

    void take(Source& source, std::u16string& result);
    void takeReference(Source& source, std::u16string& result);
    bool enterEntity(std::u16string_view name);

    const DocumentType* m_type;
    std::vector<Source> m_sources;
    std::size_t m_budget = 1'000'000; ///< In units of replacement text.
};
