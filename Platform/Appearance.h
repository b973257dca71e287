#pragma once

#include <QStringView>

#include <cstdint>
#include <optional>

class QPalette;

/// The two sets of colours that the program can be shown in.
enum class Appearance : std::uint8_t { light, dark };

/// The palette of the whole program, of `SystemColor` throughout.
QPalette palette(Appearance);

/// `light` or `dark`, as a person writes it in an option; nothing for anything else.
std::optional<Appearance> appearance(QStringView named);
