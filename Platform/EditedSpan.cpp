#include "EditedSpan.h"

#include <algorithm>

void EditedSpan::add(SourceRange edited, Offset length) {
    if (m_isEmpty) {
        m_then = edited;
        m_isEmpty = false;
    } else {
        if (edited.upper > newUpper()) {
            m_then.upper = static_cast<Offset>(edited.upper - m_delta);
        }
        m_then.lower = std::min(m_then.lower, edited.lower);
    }
    m_delta += std::int64_t(length) - std::int64_t(edited.length());
}

std::optional<SourceRange> EditedSpan::now(SourceRange then) const {
    if (m_isEmpty || then.upper <= m_then.lower) {
        return then;
    }
    if (then.lower >= m_then.upper) {
        return SourceRange::unchecked(moved(then.lower), moved(then.upper));
    }
    if (then.lower <= m_then.lower && then.upper >= m_then.upper) {
        return SourceRange::unchecked(then.lower, moved(then.upper));
    }
    return std::nullopt;
}

SourceRange EditedSpan::then(SourceRange now) const {
    if (m_isEmpty) {
        return now;
    }
    const auto back = [this](Offset offset) { return static_cast<Offset>(offset - m_delta); };
    const Offset lower = now.lower <= m_then.lower ? now.lower
                         : now.lower >= newUpper() ? back(now.lower)
                                                   : m_then.lower;
    const Offset upper = now.upper <= m_then.lower ? now.upper
                         : now.upper >= newUpper() ? back(now.upper)
                                                   : m_then.upper;
    return SourceRange::unchecked(lower, upper);
}
