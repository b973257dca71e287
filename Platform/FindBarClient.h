#pragma once

#include "TextStorage.h"

#include <QString>

#include <functional>
#include <vector>

/// What the find bar and its like work on: a text on the screen.
class FindBarClient {
public:
    /// The matches that touch a part of the text.
    using Matches = std::function<std::vector<SourceRange>(SourceRange visible)>;

    virtual ~FindBarClient() = default;

    /// The text; outlives the bar.
    virtual TextStorage& storage() = 0;
    virtual SourceRange selection() const = 0;

    /// Selects `range` and scrolls it into view.
    virtual void select(SourceRange range) = 0;

    /// Puts `with` in the place of `range` as one step of undo, and the caret, in view, at `caret` of the new
    /// text. The range may be most of the text: `with` shares the chunks that stay.
    virtual void replace(SourceRange range, const Rope& with, const QString& actionName, Offset caret) = 0;

    /// Has the matches that are visible marked, those of `matches` whenever something is painted; none when
    /// it is null. Called again whenever they changed.
    virtual void setMatches(Matches matches) = 0;

    /// Gives the text the keyboard.
    virtual void focus() = 0;
};
