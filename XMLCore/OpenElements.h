#pragma once

#include "NameTable.h"
#include "RecordArray.h"
#include "SourceRange.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

/// An element, or the document, that the parser has not closed yet.
struct OpenElement {
    std::uint32_t node = 0;
    std::uint32_t lastChild = 0; ///< The last child appended so far; meaningless without children.
    std::uint32_t childCount = 0;
    SourceRange name;
};

/// The open elements of a parse, the document at the bottom, the innermost on top.
class OpenElements {
public:
    /// `units` is the text that the elements' names lie in; borrowed.
    explicit OpenElements(std::u16string_view units) : m_units(units), m_names(units) {}

    OpenElement& top() { return m_elements.back(); }
    /// The number of open elements, the document included.
    std::size_t depth() const { return m_elements.size(); }

    void push(const OpenElement& element) { m_elements.append(element); }
    void pop() {
        if (m_indexed.size() == m_elements.size()) [[unlikely]] {
            forgetTop();
        }
        m_elements.removeLast();
    }

    /// The position of the nearest element with exactly this name, the document left out. The whole parse
    /// spends time linear in the text on this, however deep the elements are nested.
    std::optional<std::size_t> nearest(std::u16string_view named);

private:
    std::u16string_view name(std::size_t position) const {
        const SourceRange range = m_elements[position].name;
        return m_units.substr(range.lower, range.length());
    }

    void indexAll();
    void forgetTop();

    std::u16string_view m_units;
    RecordArray<OpenElement> m_elements;

    // What finds elements deep below the top: for every name, by its number, the nearest position in the
    // stack, and for every position the number of its name and the next position below it of the same name.
    // Covers the bottom `m_indexed.size()` elements, and grows only when a search reaches below the few that
    // it compares one by one.
    struct Indexed {
        std::uint32_t name;
        std::uint32_t nextOfSameName;
    };
    static constexpr std::uint32_t none = 0;
    NameTable m_names;
    std::vector<std::uint32_t> m_nearest;
    std::vector<Indexed> m_indexed;
};
