#pragma once

#include "Rope.h"

#include <mutex>
#include <utility>

/// The latest whole text of a document, for a save, which may run on any thread and never touches the
/// editor. A rope shares its chunks with the editor's text, so that nobody waits longer than for a reference
/// to be copied.
class TextMirror {
public:
    explicit TextMirror(Rope text = {}) : m_text(std::move(text)) {}

    Rope text() const {
        const std::lock_guard lock(m_mutex);
        return m_text;
    }

    void setText(Rope text) {
        const std::lock_guard lock(m_mutex);
        // The old version leaves in `text`, which is dropped by the caller, after the lock.
        std::swap(m_text, text);
    }

private:
    mutable std::mutex m_mutex;
    Rope m_text;
};
