#include "HiddenOpeners.h"

#include "UnitScanBackward.h"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>

namespace {

using UnitScanBackward::nowhere;
using UnitScanBackward::Position;

constexpr std::array<std::u16string_view, 3> openers{u"<!--", u"<![CDATA[", u"<?"};
constexpr char16_t maskingUnit = u'&'; ///< Opens no construct, is no white space and no part of a name.

/// Tells, for descending offsets, whether a construct of the tree contains the opener at an offset.
class HidingConstructs {
public:
    HidingConstructs(const HiddenOpeners::Knowledge& known, Offset end)
        : m_known(known), m_end(std::min(end, known.end)) {}

    bool hide(Offset at) {
        if (at < m_found.lower || at >= m_found.upper) {
            m_found = around(at);
        }
        return m_found.lower < at && at < m_found.upper;
    }

private:
    /// The range of the construct around `at`; empty if there is none that is closed within the known part.
    SourceRange around(Offset at) const {
        using Kind = TreeNode::Kind;
        if (at >= m_end) {
            return {};
        }
        const TreeNode& node = m_known.tree[m_known.tree.node(at)];
        const bool isConstruct = node.kind == Kind::comment || node.kind == Kind::cdata ||
                                 node.kind == Kind::instruction || node.kind == Kind::doctype;
        const bool isClosed = node.contentRange.upper < node.range.upper && node.range.upper <= m_end;
        return isConstruct && isClosed ? node.range : SourceRange();
    }

    const HiddenOpeners::Knowledge& m_known;
    Offset m_end;
    SourceRange m_found;
};

} // namespace

SourceText HiddenOpeners::masked(const SourceText& text, Offset before, const Knowledge& by) {
    const std::u16string_view units = text.units({0, before});
    HidingConstructs constructs(by, by.start + before);
    std::array<bool, openers.size()> isFound{};
    std::u16string masked;
    Position end = before;
    while (std::ranges::find(isFound, false) != isFound.end()) {
        const Position at = UnitScanBackward::findLastPair(units.data(), 0, end, u'<', u'!', u'?');
        if (at == nowhere) {
            break;
        }
        end = at + 1;
        const auto opener = std::ranges::find_if(
            openers, [&](std::u16string_view each) { return units.substr(at).starts_with(each); });
        if (opener == openers.end() || isFound[opener - openers.begin()]) {
            continue;
        }
        if (!constructs.hide(by.start + static_cast<Offset>(at))) {
            isFound[opener - openers.begin()] = true;
            continue;
        }
        if (masked.empty()) {
            masked = text.units();
        }
        masked[at] = maskingUnit;
    }
    return masked.empty() ? text : SourceText(masked);
}
