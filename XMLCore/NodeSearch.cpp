#include "NodeSearch.h"

#include "UnitScan.h"

#include <algorithm>
#include <array>
#include <optional>

namespace {

constexpr char16_t firstAccented = 0xC0;
constexpr char16_t lastAccented = 0xFF;
constexpr std::u16string_view foldedAccented =
    u"aaaaaaaceeeeiiiidnooooo×ouuuuyþsaaaaaaaceeeeiiiiðnooooo÷ouuuuyþy";
static_assert(foldedAccented.size() == lastAccented - firstAccented + 1);

/// What the units up to `lastAccented` fold to; all others stay.
constexpr auto foldingTable = [] {
    std::array<char16_t, lastAccented + 1> table{};
    for (char16_t unit = 0; unit <= lastAccented; ++unit) {
        const bool isCapital = u'A' <= unit && unit <= u'Z';
        table[unit] = unit >= firstAccented ? foldedAccented[unit - firstAccented]
                      : isCapital           ? static_cast<char16_t>(unit + (u'a' - u'A'))
                                            : unit;
    }
    return table;
}();

constexpr char16_t fold(char16_t unit) { return unit <= lastAccented ? foldingTable[unit] : unit; }

/// A folded query, prepared so that a search takes time linear in the text.
class Query {
public:
    /// `query` is not empty.
    explicit Query(std::u16string_view query) : m_units(query), m_fallback(query.size()) {
        std::ranges::transform(m_units, m_units.begin(), fold);
        for (std::size_t i = 1, length = 0; i < m_units.size(); ++i) {
            length = matchedAfter(m_units[i], length);
            m_fallback[i] = length;
        }
    }

    std::size_t length() const { return m_units.size(); }
    bool occurs(std::u16string_view in) const { return firstEnd(in).has_value(); }

    /// The end of the first occurrence in `in`.
    std::optional<std::size_t> firstEnd(std::u16string_view in) const;

private:
    /// The number of matched units of the query after `unit`, which is folded, follows `matched` matched
    /// units.
    std::size_t matchedAfter(char16_t unit, std::size_t matched) const {
        while (matched > 0 && m_units[matched] != unit) {
            matched = m_fallback[matched - 1];
        }
        return m_units[matched] == unit ? matched + 1 : 0;
    }

    /// The offset of the first unit from `from` on that may fold to the first unit of the query; every
    /// accented letter may.
    std::ptrdiff_t findCandidate(std::u16string_view units, std::ptrdiff_t from) const;

    std::u16string m_units;
    /// Failure table: for each prefix of the query, at the index of its last unit, the length of its longest
    /// proper border.
    std::vector<std::size_t> m_fallback;
};

std::ptrdiff_t Query::findCandidate(std::u16string_view units, std::ptrdiff_t from) const {
    // Setting this bit folds the case of letters. It also makes a few other units equal; the exact comparison
    // rejects them later.
    constexpr char16_t caseBit = 0x20;
    const char16_t first = m_units.front() | caseBit;
    return UnitScan::find(
        units.data(), from, static_cast<std::ptrdiff_t>(units.size()),
        [first](UnitVector vector) {
            const auto all = [](char16_t unit) { return UnitVector::all(unit); };
            const UnitVector accented =
                (vector - all(firstAccented)).atMost(all(lastAccented - firstAccented));
            return (((vector | all(caseBit)) == all(first)) | accented).mask();
        },
        [first](char16_t unit) {
            return (unit | caseBit) == first || (firstAccented <= unit && unit <= lastAccented);
        });
}

std::optional<std::size_t> Query::firstEnd(std::u16string_view in) const {
    if (in.size() < m_units.size()) {
        return std::nullopt;
    }
    const auto end = static_cast<std::ptrdiff_t>(in.size());
    std::size_t matched = 0;
    for (std::ptrdiff_t at = 0; at < end; ++at) {
        if (matched == 0) {
            at = findCandidate(in, at);
            if (at == end) {
                return std::nullopt;
            }
        }
        matched = matchedAfter(fold(in[at]), matched);
        if (matched == m_units.size()) {
            return static_cast<std::size_t>(at) + 1;
        }
    }
    return std::nullopt;
}

bool matchesElement(const Query& query, const DocumentTree& tree, NodeID element,
                    const std::stop_token& stop) {
    const auto occurs = [&](SourceRange range) { return query.occurs(tree.text.units(range)); };
    return occurs(tree[element].nameRange) ||
           std::ranges::any_of(tree.attributesOf(element), [&](const AttributeSpan& attribute) {
               return !stop.stop_requested() && (occurs(attribute.name) || occurs(attribute.value));
           });
}

bool matchesContent(const Query& query, const DocumentTree& tree, NodeID node) {
    constexpr std::size_t longestSearched = 4096;
    return query.occurs(tree.text.units(tree[node].contentRange).substr(0, longestSearched));
}

bool matchesNode(const Query& query, const DocumentTree& tree, NodeID node, const std::stop_token& stop) {
    return tree[node].isElement() ? matchesElement(query, tree, node, stop) : matchesContent(query, tree, node);
}

} // namespace

std::vector<NodeID> NodeSearch::matches(std::u16string_view query, const DocumentTree& in,
                                        std::stop_token stop) {
    std::vector<NodeID> found;
    if (query.empty()) {
        return found;
    }
    const Query folded(query);
    for (NodeID node{1}; node.raw < in.nodes.size() && !stop.stop_requested(); ++node.raw) {
        if (matchesNode(folded, in, node, stop)) {
            found.push_back(node);
        }
    }
    return found;
}

bool NodeSearch::isMatch(NodeID node, std::u16string_view query, const DocumentTree& in) {
    return !query.empty() && node != NodeID::document() && matchesNode(Query(query), in, node, {});
}

std::vector<SourceRange> NodeSearch::occurrences(std::u16string_view query, std::u16string_view in,
                                                 std::size_t most) {
    std::vector<SourceRange> found;
    if (query.empty()) {
        return found;
    }
    const Query folded(query);
    std::size_t start = 0;
    while (found.size() < most) {
        const auto end = folded.firstEnd(in.substr(start));
        if (!end) {
            break;
        }
        start += *end;
        found.emplace_back(static_cast<Offset>(start - folded.length()), static_cast<Offset>(start));
    }
    return found;
}
