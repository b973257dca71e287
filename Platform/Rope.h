#pragma once

#include "SourceText.h"
#include "TextSums.h"

#include <cstddef>
#include <iterator>
#include <memory>
#include <string>
#include <string_view>

struct RopeNode;

/// The text of an open document as a value: never modified, but `replaced` makes a new version that shares
/// all but a few thousand units with the old one. Copies cost a reference. Versions may be read and dropped
/// from any thread.
///
/// Every unit is kept exactly, lone surrogates, NUL and CR included. Offsets count UTF-16 units; only LF
/// ends a line. An offset, range or line outside the text stops the program.
class Rope {
public:
    class Chunks;

    /// The empty text: one line, no unit.
    Rope() = default;

    /// Shares the units of `text`, whose storage lives on as long as a version has a chunk of it.
    explicit Rope(const SourceText& text);

    /// Copies `units`.
    explicit Rope(std::u16string_view units) : Rope(SourceText(units)) {}

    Offset size() const { return sums().units; }
    bool isEmpty() const { return size() == 0; }
    SourceRange fullRange() const { return {0, size()}; }

    /// The text with the units of `range` replaced; takes time in the logarithm of the text's size and in
    /// the number of `units`. Stops the program when the text would get more than 4294967295 units.
    Rope replaced(SourceRange range, std::u16string_view units) const;

    /// The same with the units of another rope, whose chunks are shared: takes logarithmic time only.
    Rope replaced(SourceRange range, const Rope& units) const;

    /// This text and `next` after it; chunks are shared, and none that is half full is copied. Takes
    /// logarithmic time. Stops the program when the text would get more than 4294967295 units.
    Rope joined(const Rope& next) const;

    /// The units of `range` as a rope of their own, which shares the chunks; takes logarithmic time.
    Rope part(SourceRange range) const;

    char16_t unit(Offset at) const;
    std::u16string units(SourceRange range) const;

    /// Writes the units of `range` to `destination`, which has room for them.
    void copyTo(SourceRange range, char16_t* destination) const;

    /// The units of `range` as they are stored, in stretches of at most 2048. Keeps this version alive.
    Chunks chunks(SourceRange range) const;
    Chunks chunks() const;

    /// The same text in one array, when its units already stand in one: the text that the rope was made
    /// from, as long as it is unchanged. Without storage otherwise. Takes a look at each chunk at most.
    SourceText contiguous() const;

    /// The same text, stored in `units`, which are the same: nothing of the array of this rope is held any more.
    /// Shares no node, and sums up nothing again.
    Rope movedTo(const SourceText& units) const;

    /// One more than there are LFs.
    std::size_t lineCount() const { return std::size_t(sums().lineFeeds) + 1; }

    /// The line, counted from 0, in which `at` lies; `at` may be the end of the text.
    std::size_t line(Offset at) const;

    /// The offset just after the LF that ends the line before.
    Offset lineStart(std::size_t ofLine) const;

    /// The units of a line without its LF; a CR before that is part of it.
    SourceRange lineRange(std::size_t line) const;

    /// The number of units of the longest line, its LF not counted.
    Offset longestLine() const { return sums().longestLine; }

    /// How many units are not U+0020 to U+007E; LF, CR and tab are among them.
    Offset unitsOutsidePrintableASCII() const { return sums().outsidePrintableASCII; }
    Offset unitsOutsidePrintableASCII(SourceRange in) const;

    /// The same units, however they are stored. Chunks that both versions share are not compared.
    bool operator==(const Rope& other) const;

private:
    explicit Rope(std::shared_ptr<const RopeNode> root) : m_root(std::move(root)) {}

    TextSums sums() const;
    void requireInside(SourceRange range) const;
    void requireRoom(SourceRange inPlaceOf, std::size_t units) const;
    Offset countBefore(Offset at, Offset TextSums::* what) const;

    std::shared_ptr<const RopeNode> m_root; ///< Null for the empty text.
};

/// The chunks of a range, in order, for a range-based `for`.
class Rope::Chunks {
public:
    class Iterator {
    public:
        using value_type = std::u16string_view;
        using difference_type = std::ptrdiff_t;
        using iterator_concept = std::input_iterator_tag;

        Iterator() = default;
        Iterator(const RopeNode* root, SourceRange rest) : m_root(root), m_rest(rest) { descend(); }

        /// Borrowed from the version that the chunks were asked of.
        std::u16string_view operator*() const { return m_chunk; }
        Iterator& operator++();
        void operator++(int) { ++*this; }
        bool operator==(std::default_sentinel_t) const { return m_rest.isEmpty(); }

    private:
        void descend();
        void take(std::u16string_view units, Offset skipped);

        const RopeNode* m_root = nullptr;
        const RopeNode* m_bottom = nullptr; ///< The node whose parts are chunks, the current one among them.
        std::size_t m_index = 0;
        SourceRange m_rest; ///< From the current chunk on.
        std::u16string_view m_chunk;
    };

    Chunks(Rope rope, SourceRange range) : m_rope(std::move(rope)), m_range(range) {}

    Iterator begin() const { return {m_rope.m_root.get(), m_range}; }
    std::default_sentinel_t end() const { return {}; }

private:
    Rope m_rope;
    SourceRange m_range;
};

inline Rope::Chunks Rope::chunks() const { return chunks(fullRange()); }
