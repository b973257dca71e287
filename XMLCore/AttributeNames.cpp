#include "AttributeNames.h"

#include <algorithm>

bool AttributeNames::isRepeated(SourceRange name, std::span<const AttributeSpan> earlier) {
    const std::u16string_view wanted = units(name);
    constexpr std::size_t comparedOneByOne = 16;
    if (earlier.size() <= comparedOneByOne) {
        return std::ranges::any_of(
            earlier, [&](const AttributeSpan& attribute) { return units(attribute.name) == wanted; });
    }
    if (earlier.front().name.lower != m_firstName) {
        m_firstName = earlier.front().name.lower;
        // Clearing would take the time of the largest tag so far, again and again.
        m_names = decltype(m_names)();
        m_namesCount = 0;
    }
    for (; m_namesCount < earlier.size(); ++m_namesCount) {
        m_names.insert(units(earlier[m_namesCount].name));
    }
    return m_names.contains(wanted);
}
