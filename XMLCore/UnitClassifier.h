#pragma once

#include "UnitIndex.h"

#include <span>

/// What tells units apart for the index, in one form for every kind of processor.
namespace UnitClassifier {

/// Sets `flags`, each those of 64 of the units at `units`.
using Function = void (*)(const char16_t* units, std::span<UnitFlags> flags);

/// All that this processor can run, the quickest last.
std::span<const Function> available();

/// The quickest.
Function quickest();

} // namespace UnitClassifier
