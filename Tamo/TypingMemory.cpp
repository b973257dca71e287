#include "TypingMemory.h"

#include <algorithm>

void TypingMemory::note(const Rope& text, Offset caret, const Typing& typing) {
    if (m_noted.empty() && typing.isEmpty()) {
        return;
    }
    State now = state(text, caret);
    std::erase_if(m_noted, [&](const Noted& noted) { return noted.state == now; });
    if (!typing.isEmpty()) {
        m_noted.push_back({std::move(now), typing});
    }
    if (m_noted.size() > mostStates) {
        m_noted.pop_front();
    }
}

std::optional<Typing> TypingMemory::find(const Rope& text, Offset caret) const {
    if (m_noted.empty()) {
        return std::nullopt;
    }
    const auto noted = std::ranges::find(m_noted, state(text, caret), &Noted::state);
    return noted != m_noted.end() ? std::optional(noted->typing) : std::nullopt;
}

TypingMemory::State TypingMemory::state(const Rope& text, Offset caret) {
    constexpr Offset reach = 256;
    const SourceRange around = {caret - std::min(caret, reach), caret + std::min(text.size() - caret, reach)};
    return {text.size(), caret, text.units(around)};
}
