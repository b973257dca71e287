#pragma once

#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

/// What an abbreviation says of one element. Borrows its strings from the abbreviation.
struct AbbreviatedElement {
    struct Attribute {
        std::u16string_view name;
        std::u16string_view value; ///< Not escaped; empty when none was given.

        bool operator==(const Attribute&) const = default;
    };

    std::u16string_view name;
    std::vector<Attribute> attributes; ///< In the order written.
    std::size_t count = 1;             ///< Repetitions, 1 to 500.
    bool selfClosing = false;
    /// All elements after this one are inside it: its children up to the next that has children.
    bool hasChildren = false;

    bool operator==(const AbbreviatedElement&) const = default;
};

/// Reads an abbreviation, from its start or from later on. An attempt that comes to where an earlier one has
/// been would go on and fail in the same way, and ends there, so that all attempts together take time linear
/// in the text.
class AbbreviationReader {
public:
    using Elements = std::vector<AbbreviatedElement>;

    /// A reader of `text`, which is borrowed, also by the elements.
    explicit AbbreviationReader(std::u16string_view text);

    /// The elements in the order written, none unless everything from `from` to the end is an abbreviation.
    /// To be asked for increasing `from`, and no more once it has succeeded.
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

    /// Where an attempt was at the start of an element, or between attributes.
    struct Visited {
        bool element = false;
        bool attributes = false;
    };

    std::u16string_view m_text;
    std::size_t m_at = 0;
    std::vector<Visited> m_visited;
    std::size_t m_bareValueStart = 0; ///< A value without quotes that starts from here on
    std::size_t m_bareValueEnd = 0;   ///< and before here ends here.
};
