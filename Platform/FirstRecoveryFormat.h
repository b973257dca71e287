#pragma once

#include "Bytes.h"
#include "RecoveryReader.h"
#include "RecoveryState.h"

#include <expected>

/// Reading logs of the first format, which earlier versions of the program wrote. Numbers are little-endian.
///
///     log    = "TamoRec1" salt:u64 record*
///     record = length:u32 kind:u32 checksum:u64 payload[length]
///
/// The checksum of a record covers length, kind and payload and starts from the checksum of the record
/// before, the first one's from the salt.
///
///     facts   (1) = as in `RecoveryRecord`
///     replace (2) = lower:u32 upper:u32 form:u8 units
///     commit  (3) = generation:u64 lower:u32 upper:u32 changed:i64 units of the text:u32
///
/// A damaged length looks like a cut there, so a record that is cut off counts as damage.
namespace FirstRecoveryFormat {

/// The text at the last commit of `log`.
std::expected<RecoveredText, RecoveryReader::Failure> read(Bytes log);

} // namespace FirstRecoveryFormat
