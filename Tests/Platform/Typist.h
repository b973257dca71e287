#pragma once

#include "TextStorage.h"

#include <algorithm>
#include <cstdint>
#include <random>
#include <string>
#include <string_view>

/// Somebody who types, pastes, deletes and replaces at random. The same seed over the same text always does
/// the same, in this process or another one.
class Typist {
public:
    explicit Typist(std::uint64_t seed) : m_engine(seed) {}

    /// A text to start from.
    static std::u16string startText() {
        std::u16string text;
        for (int line = 0; line < 10'000; ++line) {
            text += u"<línea>Texto de una línea.</línea>\n";
        }
        return text;
    }

    /// Makes the next change, which is a batch of one to three replacements.
    void change(TextStorage& storage) {
        storage.beginEditing();
        for (std::uint64_t left = below(8) == 0 ? 3 : 1; left > 0; --left) {
            replace(storage);
        }
        storage.endEditing();
    }

private:
    void replace(TextStorage& storage) {
        const std::uint64_t size = storage.text().size();
        // Mostly where the last one was.
        const std::uint64_t at = below(10) == 0 ? below(size + 1) : std::min<std::uint64_t>(m_caret, size);
        const std::uint64_t deleted = below(4) == 0 ? std::min(below(30), size - at) : 0;
        const std::u16string units = text(deleted > 0 ? below(2) : 1);
        storage.replaceCharacters(SourceRange::at(std::int64_t(at), std::int64_t(deleted)), units);
        m_caret = at + units.size();
    }

    std::u16string text(std::uint64_t length) {
        static constexpr std::u16string_view alphabet = u"abc<>/ \n\rñ\u2028\xD83D\xDE00\xFFFF";
        length = length > 0 && below(20) == 0 ? below(2000) : length;
        std::u16string units;
        for (; length > 0; --length) {
            units += alphabet[below(alphabet.size())];
        }
        return units;
    }

    std::uint64_t below(std::uint64_t limit) { return m_engine() % limit; }

    std::mt19937_64 m_engine;
    std::uint64_t m_caret = 0;
};
