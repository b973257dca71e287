#include "AttributeNames.h"

#include "NameHash.h"

#include <algorithm>

bool AttributeNames::isAmong(std::span<const AttributeSpan> earlier, SourceRange name) const {
    const std::u16string_view wanted = units(name);
    return std::ranges::any_of(
        earlier, [&](const AttributeSpan& attribute) { return units(attribute.name) == wanted; });
}

std::vector<SourceRange> AttributeNames::repeatedLater(std::span<const AttributeSpan> attributes) {
    // Each key is a hash and an index in one number: sorting puts equal names next to each other, in the
    // order of the tag.
    m_keys.clear();
    m_keys.reserve(attributes.size());
    for (std::size_t i = 0; i < attributes.size(); ++i) {
        m_keys.push_back(NameHash()(units(attributes[i].name)) << 32 | i);
    }
    std::ranges::sort(m_keys);
    const auto name = [&](std::uint64_t key) { return attributes[static_cast<std::uint32_t>(key)].name; };

    std::vector<SourceRange> repeated;
    std::vector<SourceRange> distinct; // The distinct names that have the current hash: almost always one.
    std::uint64_t hash = 0;
    for (const std::uint64_t key : m_keys) {
        if (distinct.empty() || key >> 32 != hash) {
            hash = key >> 32;
            distinct.clear();
        }
        const auto isSame = [&](SourceRange earlier) { return units(earlier) == units(name(key)); };
        if (std::ranges::none_of(distinct, isSame)) {
            distinct.push_back(name(key));
        } else if (static_cast<std::uint32_t>(key) >= comparedOneByOne) {
            repeated.push_back(name(key));
        }
    }
    return repeated;
}
