#pragma once

#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

/// One element of an abbreviation. Its strings are borrowed from the abbreviation.
struct AbbreviatedElement {
    struct Attribute {
        std::u16string_view name;
        std::u16string_view value; ///< Not escaped; empty if no value is given.

        bool operator==(const Attribute&) const = default;
    };

    std::u16string_view name;
    std::vector<Attribute> attributes; ///< In the order written.
    std::size_t count = 1;             ///< Repetitions, 1 to 500.
    bool selfClosing = false;
    /// All later elements are inside this one. Its children are those up to and including the next one that
    /// has children itself.
    bool hasChildren = false;

    bool operator==(const AbbreviatedElement&) const = default;
};

/// Parses an abbreviation that ends at the end of a text and may start at any offset of it. An attempt that
/// reaches an offset in the same state as an earlier, failed attempt fails at once, so that all attempts
/// together take time linear in the text.
class AbbreviationReader {
public:
    using Elements = std::vector<AbbreviatedElement>;

    /// Borrows `text`; so do the elements that the reader returns.
    explicit AbbreviationReader(std::u16string_view text);

    /// The elements in the order written; none unless the units from offset `from` to the end of the text
    /// form an abbreviation. Call it with increasing `from`, and no more after it has succeeded.
    std::optional<Elements> elements(std::size_t from);

private:
    using Element = AbbreviatedElement;

    std::optional<Element> element();
    std::optional<std::u16string_view> name();
    bool readAttributes(std::vector<Element::Attribute>& attributes);
    std::optional<std::u16string_view> value();
    std::optional<std::size_t> count();

    bool isAtEnd() const { return m_at == m_text.size(); }
    bool isAt(char16_t unit) const { return !isAtEnd() && m_text[m_at] == unit; }
    bool take(char16_t unit);
    std::u16string_view takeUntil(std::size_t end);

    /// What earlier attempts have tried to read at one offset: an element, or the rest of a list of
    /// attributes.
    struct Visited {
        bool element = false;
        bool attributes = false;
    };

    std::u16string_view m_text;
    std::size_t m_at = 0;
    std::vector<Visited> m_visited;
    /// Cache: an unquoted value that starts in `m_bareValueStart ..< m_bareValueEnd` ends at
    /// `m_bareValueEnd`.
    std::size_t m_bareValueStart = 0;
    std::size_t m_bareValueEnd = 0;
};
