#pragma once

#include <QColor>

#include <cstdint>

class QPalette;

/// A colour by what it means. Each has a value for light and one for dark surroundings, and is asked for
/// while painting, so that it follows a change of palette by itself. Whatever text is drawn in stands out
/// from `textBackground` by a contrast of at least 4.5 to 1.
enum class SystemColor : std::uint8_t {
    textColor,
    secondaryLabel, ///< Text that stands back.
    tertiaryLabel,  ///< Text that stands further back: hints, line numbers, separators between words.
    systemBlue,
    systemRed,
    systemOrange,
    systemGreen,
    systemBrown,
    systemGray,
    systemTeal,
    systemPurple,
    accent,         ///< The program's own colour: what is on, focused or the default.
    textOnAccent,   ///< Text and symbols on a ground of `accent`.
    textBackground, ///< Behind texts, lists and fields.
    alternateRow,   ///< Behind every other row of a list.
    currentLine,    ///< Behind the line that the caret stands in.
    selection,      ///< Behind selected text and rows where the keyboard is.
    quietSelection, ///< Behind what is selected where the keyboard is not.
    barBackground,  ///< Behind tool bars, status bars, headers and inspectors.
    control,        ///< The face of a button that stands on a bar.
    separator,      ///< Hairlines between panes, around fields and between groups.
    foundText,      ///< Behind what a filter found, in `textColor`.
};

/// The value for surroundings with the window colour of `palette`.
QColor color(SystemColor, const QPalette& palette);

/// Whether the window colour of `palette` is a dark one.
bool isDark(const QPalette& palette);
