#pragma once

#include "UTF16.h"

#include <cstddef>
#include <cstdint>
#include <iostream>
#include <random>
#include <span>
#include <string>

/// The random numbers of a property test. Prints its seed, which `TAMO_SEED` in the environment sets.
class Random {
public:
    Random();

    /// A number from 0 to `limit` - 1.
    std::size_t below(std::size_t limit) {
        return std::uniform_int_distribution<std::size_t>(0, limit - 1)(m_engine);
    }

    /// Up to `longest` scalars out of `alphabet`, lone surrogates among them if it holds some.
    std::u16string text(std::span<const char32_t> alphabet, std::size_t longest);

private:
    std::mt19937_64 m_engine;
};
