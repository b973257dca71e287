#pragma once

#include "CharacterAdvances.h"
#include "Rope.h"

#include <cstdint>
#include <optional>
#include <vector>

/// Where the segments of one long line are: stretches of some 256 units, cut between characters as a reader
/// sees them, each shaped on its own. Their widths are known exactly where all is printable ASCII of a fixed
/// width and where a segment has been shaped, from the advances of their characters elsewhere, and as an
/// average where nobody has looked yet.
///
/// The line is a list of blocks. An unseen block and a plain one, of printable ASCII alone, have no more than
/// their sums, whatever their length; another keeps its segments. Looking at a place makes a block of
/// segments of the few thousand units around it. An edit costs the segments that it touches. A character
/// longer than 65,536 units may be cut, and so may a flag in a run of thousands of flags after an edit before
/// it.
///
/// Offsets count units of the line, coordinates are pixels from its start. In a segment tab stops count from
/// its own start.
class LineSegments {
public:
    struct Segment {
        SourceRange range;
        double left = 0;
        double width = 0;

        double right() const { return left + width; }
        bool operator==(const Segment&) const = default;
    };

    /// `advances` outlives this value.
    LineSegments(const Rope& line, CharacterAdvances& advances);

    const Rope& line() const { return m_line; }
    /// The same line, stored elsewhere.
    void moveTo(Rope same) { m_line = std::move(same); }
    double width() const;

    /// The segment that holds the unit at `at`; the last one for the end of the line.
    Segment segmentHolding(Offset at);

    /// The segment at `x`; the first or the last for what lies outside.
    Segment segmentAt(double x);

    /// What a segment just asked for takes once it is shaped.
    void setWidth(const Segment& segment, double width);

    /// The line after a replacement: `edited` now holds what was put in, and the line is longer by
    /// `changeInLength`.
    void edit(const Rope& line, SourceRange edited, std::int64_t changeInLength);

    /// Looks at some thousand units that nobody has looked at yet, if there are any. Answers whether more are
    /// left.
    bool buildMore();

    /// The cuts between segments, for tests: ascending, without the ends of the line.
    std::vector<Offset> cuts() const;
    std::size_t blockCount() const { return m_blocks.size(); }

private:
    enum class Kind : std::uint8_t { unseen, plain, segmented };

    struct Part {
        Offset units;
        float width;
    };
    struct Block {
        Kind kind = Kind::unseen;
        Offset units = 0;
        double width = 0;
        std::vector<Part> parts; ///< Of a segmented block alone.
    };
    /// A block and where it starts.
    struct Place {
        std::size_t block = 0;
        Offset start = 0;
        double left = 0;
    };

    Place placeHolding(Offset at) const;
    Place placeAt(double x) const;
    Segment segment(const Place& place, Offset holding) const;
    Segment segmentAtX(const Place& place, double x) const;
    void look(const Place& place, Offset at);
    Block scan(Offset from, Offset to, Offset end);
    std::optional<Block> scanned(Offset from, Offset length, Offset end, bool isWhole);
    Block withoutParts(Offset from, Offset to) const;
    std::vector<Block> blocks(Offset from, Offset to, Kind around);
    bool isPlain(SourceRange range) const;
    Offset characterStart(Offset at) const;
    double measureAverage();
    Offset cutBefore(Offset at) const;
    Offset cutBehind(Offset at, Offset change) const;
    std::size_t split(Offset at);
    void merge(std::size_t from, std::size_t to);
    bool mergeWithNext(std::size_t block);

    Rope m_line;
    CharacterAdvances* m_advances;
    double m_average = 1;        ///< The width of a unit that nobody has looked at.
    std::vector<Block> m_blocks; ///< At least one; empty ones only in an empty line.
};
