#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// `part`, repeated `times` times.
inline std::u16string repeated(std::u16string_view part, std::size_t times) {
    std::u16string result;
    result.reserve(part.size() * times);
    for (; times > 0; --times) {
        result += part;
    }
    return result;
}
