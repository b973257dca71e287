#include "Rope.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>

namespace {

/// Reads an edit script; returns zeros after its end.
class Script {
public:
    Script(const std::uint8_t* bytes, std::size_t count) : m_bytes(bytes), m_end(bytes + count) {}

    bool isAtEnd() const { return m_bytes == m_end; }
    unsigned byte() { return isAtEnd() ? 0 : *m_bytes++; }
    unsigned pair() {
        const unsigned high = byte();
        return high << 8 | byte();
    }

private:
    const std::uint8_t* m_bytes;
    const std::uint8_t* m_end;
};

/// A text of one unit repeated, with another unit or a line feed at every seventh place. In most cases it is
/// short.
std::u16string units(Script& script) {
    const unsigned length = script.byte();
    std::u16string units(length < 250 ? length / 8 : (length - 249) * 900,
                         static_cast<char16_t>(script.pair()));
    for (std::size_t i = 0; i < units.size() && !script.isAtEnd(); i += 7) {
        units[i] = script.byte() % 2 == 0 ? u'\n' : static_cast<char16_t>(script.pair());
    }
    return units;
}

} // namespace

/// Applies the same edits to a rope and to a string, and compares them.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t count) {
    constexpr std::size_t longest = 200'000;
    Script script(bytes, count);
    std::u16string text = units(script);
    Rope rope(text);
    while (!script.isAtEnd()) {
        const std::size_t first = script.pair() * (text.size() + 1) / 0x10000;
        const std::size_t second = std::min(text.size(), first + script.pair() % 5000);
        const SourceRange range(static_cast<std::int64_t>(first), static_cast<std::int64_t>(second));
        const std::u16string with = text.size() > longest ? std::u16string() : units(script);
        text.replace(first, range.length(), with);
        const Rope before = rope;
        rope = rope.replaced(range, with);
        precondition(rope.size() == text.size(), "the sizes agree");
        precondition(before.size() - range.length() + with.size() == rope.size(), "the old version stays");
        const auto at = static_cast<Offset>(first);
        const auto line = static_cast<std::size_t>(std::count(text.begin(), text.begin() + at, u'\n'));
        precondition(rope.line(at) == line, "the lines agree");
        const Offset lineStart = rope.lineStart(line);
        precondition(lineStart <= at && (lineStart == 0 || text[lineStart - 1] == u'\n'),
                     "the line starts agree");
    }
    precondition(rope.units(rope.fullRange()) == text, "the units agree");
    precondition(rope == Rope(text), "equal texts are equal");
    return 0;
}
