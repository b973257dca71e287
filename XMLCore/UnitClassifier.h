#pragma once

#include "UnitIndex.h"

#include <span>

/// Classifies units for the index, with one implementation for each kind of processor.
namespace UnitClassifier {

/// Sets `flags`; each describes 64 of the units at `units`, in order.
using Function = void (*)(const char16_t* units, std::span<UnitFlags> flags);

/// All implementations that this processor can run, the fastest last.
std::span<const Function> available();

/// The fastest implementation that this processor can run.
Function quickest();

} // namespace UnitClassifier
