#pragma once

#include "Rope.h"

#include <QObject>

#include <string_view>

/// The text of one open document as it changes. Characters are all that it holds and all that can change:
/// colours and other looks belong to the layout.
///
/// Whoever keeps something derived from the text connects to the signals, which arrive in the order of
/// connection, with the text as it is just after the replacement that they tell of. They must not be
/// answered with another replacement. Everything happens on one thread.
class TextStorage : public QObject {
    Q_OBJECT

public:
    explicit TextStorage(Rope text, QObject* parent = nullptr);

    const Rope& text() const { return m_text; }

    /// Puts the units, or a rope's shared chunks, in the place of `range`. Stops the program on a range
    /// outside the text. Replacing nothing with nothing is no change, and nobody is told.
    void replaceCharacters(SourceRange range, std::u16string_view units);
    void replaceCharacters(SourceRange range, const Rope& units);

    /// Stores the text elsewhere: `same` has the same units. Nothing else about it changes. Returns the text as
    /// it was stored, whose memory may be freed on another thread.
    Rope moveTo(Rope same);

    /// Replacements between the two are one batch: each is told of as it happens, the end of the batch once,
    /// if there was any. Nest; a replacement outside is a batch of its own.
    void beginEditing() { ++m_depth; }
    void endEditing();

Q_SIGNALS:
    /// Characters were replaced: they now are those of `editedRange`, in a text that is longer by
    /// `changeInLength`. The range had `editedRange.length() - changeInLength` units before.
    void editProcessed(SourceRange editedRange, std::int64_t changeInLength);

    /// The text is the same but stored in other memory. A version kept from before keeps the old memory.
    void textMoved();

    /// The outermost batch is over, and the text whole again.
    void editingEnded();

private:
    void take(Rope text, SourceRange replaced, Offset length);

    Rope m_text;
    int m_depth = 0;
    bool m_hasChanged = false; ///< Since the outermost batch began.
    bool m_isNotifying = false;
};
