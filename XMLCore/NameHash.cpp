#include "NameHash.h"

#include <cstdint>
#include <cstring>
#include <random>

namespace {

std::uint64_t randomOddNumber() {
    std::random_device device;
    return (std::uint64_t{device()} << 32 | device()) | 1;
}

} // namespace

std::size_t NameHash::operator()(std::u16string_view name) const noexcept {
    static const std::uint64_t seed = randomOddNumber();
    static const std::uint64_t factor = randomOddNumber();
    std::uint64_t hash = seed ^ name.size();
    const auto mix = [&hash](std::uint64_t word) {
        hash = (hash ^ word) * factor;
        hash ^= hash >> 29;
    };
    constexpr std::size_t unitsInWord = sizeof(std::uint64_t) / sizeof(char16_t);
    while (name.size() >= unitsInWord) {
        std::uint64_t word;
        std::memcpy(&word, name.data(), sizeof word);
        mix(word);
        name.remove_prefix(unitsInWord);
    }
    std::uint64_t rest = 0;
    for (const char16_t unit : name) {
        rest = rest << 16 | unit;
    }
    mix(rest);
    return hash;
}
