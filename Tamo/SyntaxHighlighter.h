#pragma once

#include "DoctypeReading.h"
#include "DocumentTree.h"
#include "Rope.h"
#include "SystemColor.h"
#include "TextLayout.h"
#include "Token.h"

#include <optional>
#include <span>
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

/// How far before what shows lexing may start; as many units again it may read between the parts that show.
inline constexpr Offset longestLookBack = 0x40000;

/// A longer line is never read from its start without a tree: what shows of it counts as the line.
inline constexpr Offset longestLine = 32'768;

/// The runs of `visible`, stretches of `text` that ascend, each of whole lines or a part of one. A run ends
/// with its stretch. They are read on from where `tree` says that content begins or goes on, unless that is
/// too far back; then, and without a tree, as if the first of the lines began in content. Units between two
/// stretches are read along unless the tree makes that unnecessary or there are too many; after these the
/// rule begins anew. The tree is that of this very text. `doctype` is the reading of the text.
std::vector<Run> runs(const Rope& text, std::span<const SourceRange> visible, const DocumentTree* tree,
                      DoctypeReading doctype = {});

/// Lines of more units than this are coloured around what shows of them only.
inline constexpr Offset longestWholeLine = 2048;

/// Colours the text that `view` shows, which is that of `buffer`. The tree may be null, or that of the text.
/// `doctype` is the reading of the text, or the last known one where its end was not looked for again yet.
void highlight(TextView& view, const TextBuffer& buffer, const DocumentTree* tree,
               DoctypeReading doctype = {});

} // namespace SyntaxHighlighter
