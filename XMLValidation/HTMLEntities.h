#pragma once

#include <optional>
#include <string_view>

/// The entities that HTML knows by name and XML does not.
namespace HTMLEntities {

/// The character that HTML means by `name`.
std::optional<char32_t> scalar(std::u16string_view name);

} // namespace HTMLEntities
