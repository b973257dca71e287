#pragma once

#include "EditorSession.h"
#include "HiddenOpeners.h"
#include "PatientWait.h"

#include <chrono>

/// Asks the aids to typing about the text of a session. A key waits for their answer; a long wait shows.
namespace TextAid {

/// Whether the typing assistant may act on a character typed at `caret`, as far as the units next to it tell:
/// most quotes and slashes are just text, and cost nothing in a text of any size.
bool mayAct(char16_t typed, Offset caret, const Rope& text);

/// The wait cursor, once it is shown, as long as this lives.
class WaitCursor {
public:
    WaitCursor() = default;
    WaitCursor(const WaitCursor&) = delete;
    WaitCursor& operator=(const WaitCursor&) = delete;
    ~WaitCursor();

    void show();

private:
    bool m_isShown = false;
};

inline constexpr std::chrono::milliseconds patience{200};
inline constexpr Offset quickLength = 1'000'000;  ///< No aid takes long over so much text.
inline constexpr Offset slowLength = 300'000'000; ///< Just to put so much text into one array takes long.

/// What `aid` answers for the text of `buffer`.
template <class Aid>
auto answer(const TextBuffer& buffer, Aid aid) {
    WaitCursor cursor;
    if (buffer.text().size() > slowLength) {
        cursor.show();
    }
    const SourceText text = buffer.sourceText();
    if (text.count() <= quickLength) {
        return aid(text);
    }
    decltype(aid(text)) answer;
    runPatiently([&] { answer = aid(text); }, patience, [&] { cursor.show(); });
    return answer;
}

/// `text`, the units from `start` on of what `session` edits, as those read it rightly who look back from
/// `before` in it: without the openers that the session's tree knows to be none.
SourceText readable(const EditorSession& session, const SourceText& text, Offset start, Offset before);

/// What `aid`, which looks back from `before`, answers for the text of `session`.
template <class Aid>
auto answer(const EditorSession& session, Offset before, Aid aid) {
    return answer(session.buffer(),
                  [&](const SourceText& text) { return aid(readable(session, text, 0, before)); });
}

} // namespace TextAid
