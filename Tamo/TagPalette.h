#pragma once

#include <QColor>
#include <QStringView>

#include <cstdint>

class QPalette;

/// A colour for every element name, the same wherever, whenever and in whichever document it occurs.
namespace TagPalette {

/// The colour of elements called `name` in surroundings with the window colour of `palette`: brighter and
/// paler in the dark. Ask while painting, so that it follows a change of palette. Names that differ in case
/// differ in hue; two names may share one.
QColor tagColor(QStringView name, const QPalette& palette);

/// FNV-1a, 32 bits, of the UTF-8 bytes of `name`; a lone surrogate counts as U+FFFD. Of a longer name the
/// first 65,536 units count, so that painting one takes bounded time.
std::uint32_t hash(QStringView name);

} // namespace TagPalette
