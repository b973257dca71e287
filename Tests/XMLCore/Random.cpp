#include "Random.h"

#include <cstdlib>

namespace {

std::uint64_t seed() {
    const char* const wanted = std::getenv("TAMO_SEED");
    return wanted != nullptr ? std::strtoull(wanted, nullptr, 10) : std::random_device()();
}

} // namespace

Random::Random() {
    const std::uint64_t chosen = seed();
    std::cout << "TAMO_SEED=" << chosen << '\n';
    m_engine.seed(chosen);
}

std::u16string Random::text(std::span<const char32_t> alphabet, std::size_t longest) {
    std::u16string text;
    for (std::size_t left = below(longest + 1); left > 0; --left) {
        UTF16::append(text, alphabet[below(alphabet.size())]);
    }
    return text;
}
