#include "PlaceholderTracker.h"
#include "Precondition.h"
#include "TypingAssistant.h"

#include <algorithm>
#include <cstdint>
#include <string>

namespace {

using namespace TypingAssistant;

void checkAction(const std::optional<Action>& action, const SourceText& text) {
    const Edit* const edit = action ? std::get_if<Edit>(&*action) : nullptr;
    if (edit == nullptr) {
        return;
    }
    // Aborts if edits overlap or reach beyond the text.
    const std::u16string after = TextEdit::apply(edit->edits, text.units());
    precondition(edit->selection.upper <= after.size(), "the selection lies inside the text");
    PlaceholderTracker tracker;
    tracker.start(edit->placeholders);
    while (const auto stop = tracker.next()) {
        precondition(stop->upper <= after.size(), "a stop lies inside the text");
    }
}

} // namespace

/// The edits of every key can be applied at every selection. The first four bytes are the selection, the
/// fifth is the state of the editor, and the rest is the text in Latin-1.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::size_t header = 5;
    if (size < header) {
        return 0;
    }
    const SourceText text(std::u16string(data + header, data + size));
    const auto offset = [&](const std::uint8_t* bytes) {
        return (bytes[0] * 256 + bytes[1]) % (text.count() + 1);
    };
    const auto [lower, upper] = std::minmax({offset(data), offset(data + 2)});
    const SourceRange selection(lower, upper);
    const IndentStyle indent = (data[4] & 1) != 0 ? IndentStyle::tabs() : IndentStyle::spaces(data[4] >> 5);
    const bool inSnippet = (data[4] & 2) != 0;
    for (const SourceRange range : {selection, SourceRange::empty(upper)}) {
        for (const Input& input :
             {Input(Character{u">"}), Input(Character{u"/"}), Input(Character{u"="}), Input(Character{u"\""}),
              Input(Character{u"'"}), Input(Tab()), Input(Backtab()), Input(Newline())}) {
            checkAction(handle(input, text, range, indent, inSnippet), text);
        }
        checkAction(toggleComment(text, range), text);
    }
    return 0;
}
