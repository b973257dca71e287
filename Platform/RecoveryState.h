#pragma once

#include "FileIdentity.h"
#include "Rope.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// How the unsaved text of a document is to be written as a file, and where it came from.
struct RecoveryFacts {
    std::string encoding;                ///< The canonical name of a converter.
    std::vector<std::uint8_t> bom;       ///< Empty for none.
    std::string origin;                  ///< The path in the bytes of the disk; empty when never saved.
    std::optional<FileIdentity> version; ///< The file at `origin` as it was read.

    bool operator==(const RecoveryFacts&) const = default;
};

/// A moment in the life of an unsaved text.
struct RecoveryMoment {
    std::uint64_t generation = 0; ///< How many changes there were since the document was opened.
    SourceRange selection;        ///< May reach beyond the text, when the view did not yet follow it.
    std::int64_t changed = 0;     ///< When the last change was: milliseconds since 1970 in UTC.

    bool operator==(const RecoveryMoment&) const = default;
};

/// One change of a text: `units` in the place of `range`.
struct RecoveryEdit {
    SourceRange range;
    Rope units;
};

/// Changes one after the other, each in the offsets that the one before left.
using RecoveryEdits = std::vector<RecoveryEdit>;

/// Which logs continue one another: of two with the same `id`, the one with the higher serial has all that
/// the other one has.
struct RecoveryLineage {
    std::uint64_t id = 0; ///< 0 in logs that tell nothing of it.
    std::uint64_t serial = 0;

    bool operator==(const RecoveryLineage&) const = default;
};

/// What became of a kept text on the disk.
enum class RecoveryDamage : std::uint8_t {
    none,
    cutOff,  ///< The program ended before the text was written for the first time: its end is missing.
    damaged, ///< The disk gave back something else than was written: parts may be missing or wrong.
};

/// An unsaved text as it was kept.
struct RecoveredText {
    RecoveryFacts facts;
    RecoveryMoment moment; ///< Its selection lies in the text.
    Rope text;
    RecoveryLineage lineage;
    RecoveryDamage damage = RecoveryDamage::none;
};
