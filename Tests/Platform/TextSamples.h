#pragma once

#include "../XMLCore/Random.h"

#include <string>

/// Texts of every kind that a layout has to cope with.
namespace TextSamples {

inline constexpr char32_t everything[] = {
    U'a',   U'b',      U'<',          U'"',          U' ',      U'\t',     U'\0',     U'\r',     U'\u001B',
    U'ñ',   U'e',      U'\u0301',     U'\u0323',     U'中',     U'文',     U'あ',     U'한',     U'ᄀ',
    U'ᅡ',  U'א',      U'ב',          U'ا',          U'ل',      U'م',      U'\u0651', U'1',      U'2',
    U'क',   U'\u094D', U'ष',          U'\u093F',     U'😀',      U'👩',      U'\u200D', U'💻',      U'🏽',
    U'🇪',   U'🇸',      U'\uFE0F',     U'\u200B',     U'\u202E', U'\u2028', U'\uFEFF', U'\uFFFC', U'\u00AD',
    0xD83D, 0xDE00,    U'\U000E0101', U'\U000E0001', U'\u3164', U'€',      U'.',
};
/// The same without what is written from right to left.
inline constexpr char32_t leftToRight[] = {
    U'a',      U'b',      U'<',      U'"',      U' ',          U'\t',         U'\0',     U'\r',
    U'\u001B', U'ñ',      U'e',      U'\u0301', U'\u0323',     U'中',         U'文',     U'あ',
    U'한',     U'1',      U'2',      U'😀',      U'👩',          U'\u200D',     U'💻',      U'🏽',
    U'🇪',      U'🇸',      U'\uFE0F', U'\u200B', U'\u202E',     U'\u2028',     U'\uFEFF', U'€',
    U'\uFFFC', U'\u00AD', 0xD83D,    0xDE00,    U'\U000E0101', U'\U000E0001', U'\u3164', U'.',
};
inline constexpr char32_t bothWays[] = {U'a', U'b', U' ', U'.', U'1', U'2', U'<',
                                        U'א', U'ב', U'ג', U'ا', U'ل', U'م'};
inline constexpr char32_t plain[] = {U'a', U'b', U'<', U'>', U'=', U'"', U' ', U'1'};
inline constexpr char32_t wide[] = {U'中', U'文', U'あ', U'한', U'a'};

/// Longer and longer stretches of one alphabet or another.
inline std::u16string mixed(Random& random, std::size_t length) {
    std::u16string text;
    while (text.size() < length) {
        switch (random.below(3)) {
        case 0:
            text += random.text(plain, 600);
            break;
        case 1:
            text += random.text(wide, 300);
            break;
        default:
            text += random.text(everything, 300);
            break;
        }
    }
    return text;
}

} // namespace TextSamples
