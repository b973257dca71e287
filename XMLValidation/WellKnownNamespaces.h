#pragma once

#include <string_view>

/// Namespaces that documents usually bind to the same prefix.
namespace WellKnownNamespaces {

/// The name of the namespace that `prefix` usually stands for, empty when it stands for none.
std::u16string_view name(std::u16string_view prefix);

} // namespace WellKnownNamespaces
