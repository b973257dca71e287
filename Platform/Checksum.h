#pragma once

#include "Bytes.h"

#include <cstdint>

/// A number that tells `bytes` from others by accident, not from forged ones: what differs in no more than
/// eight bytes on end never has the same. `seed` is the number of what stands before, so that a whole
/// made of pieces has one too; the same on every machine and in every version.
std::uint64_t checksum(Bytes bytes, std::uint64_t seed);
