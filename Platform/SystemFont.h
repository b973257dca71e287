#pragma once

#include <QFont>

/// The fonts of the program by what they are for. Families are those of the desktop, followed by installed
/// ones for what most fonts lack; sizes are logical pixels. Each is made once, on first use, which must not
/// come before the application object.
namespace SystemFont {

const QFont& body();    ///< Controls, lists and running text: 13 pixels.
const QFont& callout(); ///< Bars and cards: 12 pixels.
const QFont& caption(); ///< Counts, hints and headings of sections: 11 pixels.
const QFont& title();   ///< The heading of a page: 22 pixels.

/// Source text: 13 pixels, every character of a script equally wide.
const QFont& monospaced();

/// Numbers one above the other: 11 pixels, every digit equally wide.
const QFont& monospacedDigits();

/// `font` with digits that are equally wide, so that a number that changes does not move its neighbours.
QFont withMonospacedDigits(const QFont& font);

QFont semibold(QFont font);

} // namespace SystemFont
