#include "AttributeRuns.h"

#include <algorithm>

namespace {

constexpr std::size_t capacity = 65'536;

} // namespace

void AttributeRuns::reset(Offset length) {
    m_length = length;
    m_before.clear();
    m_behind.clear();
    m_kinds.clear();
}

void AttributeRuns::set(SourceRange range, const TemporaryAttributes& attributes) {
    if (range.isEmpty()) {
        return;
    }
    moveGap(range.lower);
    removeBehindGap(range.upper);
    if (attributes != TemporaryAttributes()) {
        pushBefore({range.lower, range.upper, kind(attributes)});
        forgetFarthest();
    }
}

void AttributeRuns::edit(SourceRange edited, std::int64_t changeInLength) {
    const auto oldUpper = static_cast<Offset>(edited.upper - changeInLength);
    moveGap(edited.lower);
    const bool startsInside = isOneAcross(edited.lower, edited.lower);
    removeBehindGap(oldUpper);
    const bool isInside = startsInside && isOneAcross(edited.lower, oldUpper);
    m_length = static_cast<Offset>(m_length + changeInLength);
    if (isInside) {
        m_before.back().upper = edited.upper;
    }
}

bool AttributeRuns::isOneAcross(Offset lower, Offset upper) const {
    return !m_before.empty() && !m_behind.empty() && m_before.back().upper == lower &&
           m_length - m_behind.back().lower == upper && m_before.back().kind == m_behind.back().kind;
}

std::vector<AttributeRuns::Run> AttributeRuns::runs(SourceRange in) const {
    std::vector<Run> found;
    if (in.isEmpty()) {
        return found;
    }
    const auto add = [&](const Stored& run) {
        const SourceRange range =
            SourceRange::unchecked(std::max(run.lower, in.lower), std::min(run.upper, in.upper));
        const TemporaryAttributes& attributes = m_kinds[run.kind];
        // A run that the gap cuts is still one.
        if (!found.empty() && found.back().range.upper == range.lower &&
            found.back().attributes == attributes) {
            found.back().range.upper = range.upper;
        } else {
            found.push_back({range, attributes});
        }
    };
    auto before = std::ranges::upper_bound(m_before, in.lower, {}, &Stored::upper);
    for (; before != m_before.end() && before->lower < in.upper; ++before) {
        add(*before);
    }
    // From the far end on, `upper` counted from the end ascends.
    const Offset lowerFromEnd = m_length - std::min(in.lower, m_length);
    auto behind = std::ranges::lower_bound(m_behind, lowerFromEnd, {}, &Stored::upper);
    for (; behind != m_behind.begin() && m_length - (behind - 1)->lower < in.upper; --behind) {
        add(fromOtherEnd(*(behind - 1)));
    }
    return found;
}

void AttributeRuns::moveGap(Offset to) {
    while (!m_before.empty() && m_before.back().upper > to) {
        Stored run = m_before.back();
        if (run.lower >= to) {
            m_before.pop_back();
        } else {
            m_before.back().upper = to;
            run.lower = to;
        }
        pushBehind(run);
    }
    while (!m_behind.empty() && m_length - m_behind.back().lower < to) {
        Stored run = fromOtherEnd(m_behind.back());
        if (run.upper <= to) {
            m_behind.pop_back();
        } else {
            m_behind.back().lower = m_length - to;
            run.upper = to;
        }
        pushBefore(run);
    }
}

void AttributeRuns::removeBehindGap(Offset upTo) {
    while (!m_behind.empty() && m_length - m_behind.back().upper <= upTo) {
        m_behind.pop_back();
    }
    if (!m_behind.empty()) {
        m_behind.back().lower = std::min(m_behind.back().lower, m_length - upTo);
    }
}

void AttributeRuns::pushBefore(Stored run) {
    if (!m_before.empty() && m_before.back().upper == run.lower && m_before.back().kind == run.kind) {
        m_before.back().upper = run.upper;
    } else {
        m_before.push_back(run);
    }
}

void AttributeRuns::pushBehind(Stored run) {
    const Stored counted = fromOtherEnd(run);
    if (!m_behind.empty() && m_behind.back().lower == counted.upper && m_behind.back().kind == run.kind) {
        m_behind.back().lower = counted.lower;
    } else {
        m_behind.push_back(counted);
    }
}

void AttributeRuns::forgetFarthest() {
    if (count() > capacity) {
        std::vector<Stored>& longer = m_before.size() > m_behind.size() ? m_before : m_behind;
        longer.erase(longer.begin(), longer.begin() + std::ptrdiff_t(longer.size() / 4));
    }
}

std::uint32_t AttributeRuns::kind(const TemporaryAttributes& attributes) {
    const auto known = std::ranges::find(m_kinds, attributes);
    if (known != m_kinds.end()) {
        return static_cast<std::uint32_t>(known - m_kinds.begin());
    }
    m_kinds.push_back(attributes);
    return static_cast<std::uint32_t>(m_kinds.size() - 1);
}
