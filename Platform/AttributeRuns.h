#pragma once

#include "SourceRange.h"
#include "TemporaryAttributes.h"

#include <cstdint>
#include <vector>

/// The temporary attributes of a text: sorted runs without overlap, which move with the text around them.
///
/// The runs stand in two stacks on either side of the place of the last change; those behind it count from
/// the end of the text, so that an edit moves none of them. A change costs the runs that it replaces and
/// those between it and the last one. Of more than 65,536 runs those farthest from the last change are
/// forgotten.
class AttributeRuns {
public:
    struct Run {
        SourceRange range;
        TemporaryAttributes attributes;

        bool operator==(const Run&) const = default;
    };

    /// Forgets all runs; the text now has `length` units.
    void reset(Offset length);

    /// Gives the units of `range` these attributes and no others; default ones take away what is there.
    void set(SourceRange range, const TemporaryAttributes& attributes);

    /// The units of `edited` are new, and the text is longer by `changeInLength`. What is put strictly inside
    /// a run becomes part of it.
    void edit(SourceRange edited, std::int64_t changeInLength);

    /// The runs that have units of `range`, cut to it, in order.
    std::vector<Run> runs(SourceRange in) const;

    std::size_t count() const { return m_before.size() + m_behind.size(); }

private:
    /// Bounds count from the start of the text before the gap, from its end behind it.
    struct Stored {
        Offset lower;
        Offset upper;
        std::uint32_t kind;
    };

    Stored fromOtherEnd(Stored run) const { return {m_length - run.lower, m_length - run.upper, run.kind}; }
    bool isOneAcross(Offset lower, Offset upper) const;
    void moveGap(Offset to);
    void removeBehindGap(Offset upTo);
    void pushBefore(Stored run);
    void pushBehind(Stored run);
    void forgetFarthest();
    std::uint32_t kind(const TemporaryAttributes& attributes);

    Offset m_length = 0;
    std::vector<Stored> m_before; ///< Ascending.
    std::vector<Stored> m_behind; ///< The nearest to the gap last.
    std::vector<TemporaryAttributes> m_kinds;
};
