#pragma once

#include "UTF16.h"

#include <cstddef>
#include <cstdint>
#include <iostream>
#include <random>
#include <span>
#include <string>

/// The random numbers of a property test. Prints the seed; the environment variable `TAMO_SEED` sets it.
class Random {
public:
    Random();

    /// A number from 0 to `limit` - 1.
    std::size_t below(std::size_t limit) {
        return std::uniform_int_distribution<std::size_t>(0, limit - 1)(m_engine);
    }

    /// A text of at most `longest` scalars of `alphabet`. They may include lone surrogates.
    std::u16string text(std::span<const char32_t> alphabet, std::size_t longest);

private:
    std::mt19937_64 m_engine;
};
