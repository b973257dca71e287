#pragma once

#include <QPainterPath>

#include <span>
#include <string_view>

/// One stroke or area of a symbol.
struct SymbolLayer {
    enum class Ink : std::uint8_t {
        line,    ///< Draws along the path, with the one weight of all lines.
        fill,    ///< Fills the path.
        cutLine, ///< Takes what is along the path out of the layers below, with the weight that reads well.
        cutFill, ///< Takes the path out of the layers below.
    };

    Ink ink = Ink::line;
    const char* path = nullptr; ///< Null for a layer that there is not.
};

/// A symbol as the steps that draw it. The box is 16 units wide and high. Drawings stand on a grid of 15 of
/// them, so that a line has a middle one to run along, and their lines run along the middles of units: on a
/// screen with a pixel a unit they are sharp.
struct SymbolDrawing {
    static constexpr double side = 16;
    static constexpr double lineWidth = 1.25;
    static constexpr double cutWidth = 1.5;

    std::u16string_view name;
    SymbolLayer layers[4];

    /// All symbols, by ascending name.
    static std::span<const SymbolDrawing> all();

    /// The drawing with that name, or null.
    static const SymbolDrawing* find(std::u16string_view name);

    /// What `text` describes: commands, each a letter and numbers, separated by single spaces. Coordinates
    /// are absolute.
    ///   M x y, L x y, Q x y x y, C x y x y x y, Z: move, line, curves, close
    ///   O x y r: a circle
    ///   A x y r from sweep: an arc about x y, in degrees anticlockwise from the right
    ///   R x y width height r: a rectangle with corners of radius r
    ///   W x y inner outer count slope: a wheel with so many teeth; a slope of 1 makes waves of them
    static QPainterPath path(std::string_view text);
};
