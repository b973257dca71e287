#pragma once

#include <QString>

#include <string_view>

/// The units of `string`, borrowed from it.
inline std::u16string_view unitsOf(const QString& string) {
    return {reinterpret_cast<const char16_t*>(string.utf16()), static_cast<std::size_t>(string.size())};
}
