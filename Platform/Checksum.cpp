#include "Checksum.h"

#include <QtEndian>

#include <array>
#include <cstddef>

namespace {

/// Different for different words, and for different states before.
std::uint64_t mixed(std::uint64_t state, std::uint64_t word) {
    state = (state ^ word) * 0x9E3779B97F4A7C15U;
    return state ^ (state >> 32);
}

} // namespace

std::uint64_t checksum(Bytes bytes, std::uint64_t seed) {
    constexpr std::size_t step = sizeof(std::uint64_t);
    std::uint64_t state = mixed(mixed(0, seed + 1), bytes.size());
    for (; bytes.size() >= step; bytes = bytes.subspan(step)) {
        state = mixed(state, qFromLittleEndian<std::uint64_t>(bytes.data()));
    }
    std::array<std::uint8_t, step> last{};
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        last[i] = bytes[i];
    }
    return mixed(state, qFromLittleEndian<std::uint64_t>(last.data()));
}
