#pragma once

#include "UTF16.h"
#include "UnicodeProperties.h"

#include <cstddef>
#include <iterator>
#include <string_view>

/// The characters as a reader sees them: the extended grapheme clusters of Unicode 15.0. A lone surrogate is
/// a character by itself. Offsets count UTF-16 units; the program aborts if one lies beyond the text.
namespace GraphemeBreaker {

/// Whether a character starts or ends at `at`. Both ends of the text are boundaries; the middle of a
/// surrogate pair is not. Reads the two scalars around `at` and, between flags or joined emoji, the run of
/// flags or of marks before `at`.
bool isBoundary(std::u16string_view text, std::size_t at);

/// The first boundary after `from`, which need not be a boundary; the end of the text if `from` is there. To
/// iterate over a whole text, use `Characters`.
std::size_t nextBoundary(std::u16string_view text, std::size_t from);

/// The last boundary before `from`, which need not be a boundary; 0 if `from` is 0.
std::size_t previousBoundary(std::u16string_view text, std::size_t from);

/// Finds the boundaries of a text that is passed to it scalar by scalar, so the units may be stored anywhere.
/// The first scalar must follow a boundary of the text. Takes constant time per scalar.
class BoundaryFinder {
public:
    /// Whether a character starts with `scalar`, the next one of the text. True for the first scalar.
    bool startsCharacter(char32_t scalar) {
        return startsCharacter(UnicodeProperties::graphemeBreak(scalar));
    }

private:
    using GraphemeBreak = UnicodeProperties::GraphemeBreak;

    /// How much of the sequence "pictograph, marks, joiner" ends before the next scalar.
    enum class Emoji : std::uint8_t { none, pictograph, joiner };

    bool startsCharacter(GraphemeBreak property);

    // The initial state is that after a control: no scalar is joined to a control.
    GraphemeBreak m_before = GraphemeBreak::control;
    Emoji m_emoji = Emoji::none;
    bool m_isHalfFlag = false;
};

/// The end of the character that starts at `from`, which is a boundary before `end`, the end of the text.
const char16_t* characterEnd(const char16_t* from, const char16_t* end);

/// The characters of a text in order, each as a view that borrows the storage of `text`. Iterating takes time
/// linear in the text.
class Characters {
public:
    class Iterator {
    public:
        using value_type = std::u16string_view;
        using difference_type = std::ptrdiff_t;
        using reference = std::u16string_view;
        using pointer = void;
        using iterator_category = std::input_iterator_tag;
        using iterator_concept = std::forward_iterator_tag;

        Iterator() = default;
        Iterator(const char16_t* at, const char16_t* textEnd) : m_at(at), m_textEnd(textEnd) { findNext(); }

        std::u16string_view operator*() const { return {m_at, m_next}; }
        Iterator& operator++() {
            m_at = m_next;
            findNext();
            return *this;
        }
        Iterator operator++(int) {
            const Iterator before = *this;
            ++*this;
            return before;
        }
        bool operator==(const Iterator& other) const { return m_at == other.m_at; }

    private:
        void findNext() { m_next = m_at == m_textEnd ? m_at : characterEnd(m_at, m_textEnd); }

        const char16_t* m_at = nullptr;
        const char16_t* m_next = nullptr;
        const char16_t* m_textEnd = nullptr;
    };

    explicit Characters(std::u16string_view text) : m_text(text) {}

    Iterator begin() const { return {m_text.data(), m_text.data() + m_text.size()}; }
    Iterator end() const { return {m_text.data() + m_text.size(), m_text.data() + m_text.size()}; }

private:
    std::u16string_view m_text;
};

} // namespace GraphemeBreaker
