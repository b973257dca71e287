#pragma once

#include "UTF16.h"
#include "UnicodeProperties.h"

#include <cstddef>
#include <iterator>
#include <string_view>

/// The characters that a reader sees: the extended grapheme clusters of Unicode 15.0. A lone surrogate is a
/// character by itself. Offsets count UTF-16 units; those beyond the text stop the program.
namespace GraphemeBreaker {

/// Whether a character starts or ends at `at`. Both ends of the text are boundaries, the middle of a
/// surrogate pair is none. Looks back as far as a run of flags or of marks between joined emoji reaches,
/// two scalars otherwise.
bool isBoundary(std::u16string_view text, std::size_t at);

/// The nearest boundary after `from`, itself a boundary or not; the end of the text when `from` is there.
/// Who walks a whole text takes `Characters`.
std::size_t nextBoundary(std::u16string_view text, std::size_t from);

/// The nearest boundary before `from`, itself a boundary or not; 0 when `from` is 0.
std::size_t previousBoundary(std::u16string_view text, std::size_t from);

/// Finds the boundaries of a text that is fed to it scalar by scalar, wherever its units are kept. A
/// constant time a scalar. It may start at any boundary of the text.
class BoundaryFinder {
public:
    /// Whether a character starts with `scalar`, the next one of the text. The first always does.
    bool startsCharacter(char32_t scalar) {
        return startsCharacter(UnicodeProperties::graphemeBreak(scalar));
    }

private:
    using GraphemeBreak = UnicodeProperties::GraphemeBreak;

    /// How much of "pictograph, marks, joiner" stands before the next scalar.
    enum class Emoji : std::uint8_t { none, pictograph, joiner };

    bool startsCharacter(GraphemeBreak property);

    // As after a control, which nothing joins.
    GraphemeBreak m_before = GraphemeBreak::control;
    Emoji m_emoji = Emoji::none;
    bool m_isHalfFlag = false;
};

/// Where the character that starts at `from` ends. `from` is a boundary before `end`, the text's end.
const char16_t* characterEnd(const char16_t* from, const char16_t* end);

/// The characters of a text in order, each as a view of `text`, whose storage it borrows. A walk looks at
/// every unit a constant number of times.
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
