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
    std::uint32_t lastChild = 0; ///< The last child appended so far; unspecified without children.
    std::uint32_t childCount = 0;
    SourceRange name;
};

/// The stack of open elements of a parse: the document at the bottom, the innermost element at the top.
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

    /// The position in the stack, counted from the bottom, of the innermost element with exactly this name;
    /// the document is ignored. None if there is no such element. All calls of a parse together take time
    /// linear in the text, however deep the elements are nested.
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

    // An index of the lower part of the stack. For each name, by its number: the highest indexed position
    // with this name. For each indexed position: the number of its name and the next lower position with the
    // same name. The index covers the lowest `m_indexed.size()` positions. It grows only if a search does not
    // succeed among the top positions, which are compared one by one.
    struct Indexed {
        std::uint32_t name;
        std::uint32_t nextOfSameName;
    };
    static constexpr std::uint32_t none = 0;
    NameTable m_names;
    std::vector<std::uint32_t> m_nearest;
    std::vector<Indexed> m_indexed;
};
