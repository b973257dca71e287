#pragma once

#include "DocumentTree.h"
#include "Rope.h"
#include "SystemColor.h"
#include "TextLayout.h"
#include "Token.h"

#include <optional>
#include <vector>

class QPalette;
class TextBuffer;
class TextView;

/// Colours the source that shows, each time anew from its tokens. Colours are looks of the view and no part
/// of the text, so that nothing here can be undone or makes a document an edited one.
namespace SyntaxHighlighter {

/// How a kind of token looks.
struct Style {
    SystemColor color;
    TemporaryAttributes::Underline underline = TemporaryAttributes::Underline::none;

    bool operator==(const Style&) const = default;
};

/// The looks of tokens of a kind; none for text, which keeps the colour of the view.
std::optional<Style> style(Token::Kind of);

/// What `style` means with `palette`; a default value for none.
TemporaryAttributes attributes(Token::Kind of, const QPalette& palette);

/// A part of the text to be coloured.
struct Run {
    SourceRange range;
    Token::Kind kind;

    bool operator==(const Run&) const = default;
};

/// How far before the first visible line lexing may start.
inline constexpr Offset longestLookBack = 0x40000;

/// The runs of `visible`, whole lines of `text` or a stretch of a very long one, in ascending order. They are
/// read on from where `tree` says that content begins or goes on, unless that is too far back; without a tree
/// as if `visible` began in content. The tree is that of this very text.
std::vector<Run> runs(const Rope& text, SourceRange visible, const DocumentTree* tree);

/// Colours the text that `view` shows, which is that of `buffer`. The tree may be null, or that of the text.
void highlight(TextView& view, const TextBuffer& buffer, const DocumentTree* tree);

} // namespace SyntaxHighlighter
