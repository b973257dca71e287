#include "SymbolDrawing.h"

#include "Precondition.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <numbers>

namespace {

using enum SymbolLayer::Ink;

constexpr char page[] =
    "M 8.5 1.5 L 5 1.5 Q 3.5 1.5 3.5 3 L 3.5 12 Q 3.5 13.5 5 13.5 L 10 13.5 Q 11.5 13.5 11.5 12 "
    "L 11.5 4.5 Z M 8.5 1.5 L 8.5 3.5 Q 8.5 4.5 9.5 4.5 L 11.5 4.5";
constexpr char disc[] = "O 7.5 7.5 6.5";
constexpr char seal[] = "W 7.5 7.5 6.1 7.2 10 1";
constexpr char tick[] = "M 4.75 7.75 L 6.75 9.75 L 10.5 5.5";
constexpr char cross[] = "M 5.25 5.25 L 9.75 9.75 M 9.75 5.25 L 5.25 9.75";
constexpr char plusSign[] = "M 7.5 4.25 L 7.5 10.75 M 4.25 7.5 L 10.75 7.5";
constexpr char backSquare[] = "M 2.9 9.5 Q 1.5 9.4 1.5 8 L 1.5 3 Q 1.5 1.5 3 1.5 L 8 1.5 Q 9.4 1.5 9.5 2.9";

constexpr SymbolDrawing drawings[] = {
    {u"checkmark", {{line, "M 2.5 8 L 6 11.5 L 12.5 3.5"}}},
    {u"checkmark.circle.fill", {{fill, disc}, {cutLine, tick}}},
    {u"checkmark.seal.fill", {{fill, seal}, {cutLine, tick}}},
    {u"chevron.compact.right", {{line, "M 6 2.5 L 9 7.5 L 6 12.5"}}},
    {u"chevron.down", {{line, "M 3 5.5 L 7.5 10 L 12 5.5"}}},
    {u"chevron.left", {{line, "M 9.5 3 L 5 7.5 L 9.5 12"}}},
    {u"chevron.left.forwardslash.chevron.right",
     {{line, "M 4 4 L 0.75 7.5 L 4 11 M 11 4 L 14.25 7.5 L 11 11 M 9 2.5 L 6 12.5"}}},
    {u"chevron.right", {{line, "M 5.5 3 L 10 7.5 L 5.5 12"}}},
    {u"chevron.up", {{line, "M 3 9.5 L 7.5 5 L 12 9.5"}}},
    {u"cursorarrow.click.2",
     {{line, "M 6.5 6.5 L 14 9.25 L 10.6 10.6 L 9.25 14 Z"},
      {line, "A 6.5 6.5 2.75 52 166"},
      {line, "A 6.5 6.5 5.25 52 166"}}},
    {u"doc", {{line, page}}},
    {u"doc.badge.gearshape",
     {{line, page}, {cutFill, "O 11 11 4.75"}, {fill, "W 11 11 2.5 3.6 8 3"}, {cutFill, "O 11 11 1.2"}}},
    {u"doc.plaintext",
     {{line, page}, {line, "M 5.75 7.5 L 9.25 7.5 M 5.75 9.5 L 9.25 9.5 M 5.75 11.5 L 8 11.5"}}},
    {u"dot.radiowaves.up.forward",
     {{fill, "O 3.25 11.75 1.75"}, {line, "A 2.5 12.5 5.5 2 86"}, {line, "A 2.5 12.5 10 2 86"}}},
    {u"exclamationmark.circle.fill",
     {{fill, disc}, {cutLine, "M 7.5 4 L 7.5 8"}, {cutFill, "O 7.5 10.75 1"}}},
    {u"exclamationmark.triangle.fill",
     {{fill, "M 6.2 2 Q 7.5 0.2 8.8 2 L 14 11.4 Q 14.8 13.5 12.8 13.5 L 2.2 13.5 Q 0.2 13.5 1 11.4 Z"},
      {cutLine, "M 7.5 5 L 7.5 8.5"},
      {cutFill, "O 7.5 11 1"}}},
    {u"gearshape", {{line, "W 7.5 7.5 5 6.5 8 3"}, {line, "O 7.5 7.5 2.25"}}},
    {u"increase.indent",
     {{line, "M 1.5 2.5 L 13.5 2.5 M 7.5 5.5 L 13.5 5.5 M 7.5 8.5 L 13.5 8.5 M 1.5 11.5 L 13.5 11.5"},
      {line, "M 1.75 5.25 L 4.25 7 L 1.75 8.75"}}},
    {u"lightbulb",
     {{line,
       "M 5.5 10.5 Q 5.5 9.5 4.7 8.7 Q 3.5 7.4 3.5 5.5 Q 3.5 1.5 7.5 1.5 Q 11.5 1.5 11.5 5.5 Q 11.5 7.4 10.3 "
       "8.7 Q 9.5 9.5 9.5 10.5 Z M 6 13.5 L 9 13.5"}}},
    {u"link",
     {{line,
       "M 10.33 8.35 L 12.17 6.51 C 13.18 5.49 13.18 3.85 12.17 2.83 C 11.15 1.82 9.51 1.82 8.49 2.83 L 6.65 "
       "4.67"},
      {line,
       "M 8.35 10.33 L 6.51 12.17 C 5.49 13.18 3.85 13.18 2.83 12.17 C 1.82 11.15 1.82 9.51 2.83 8.49 L 4.67 "
       "6.65"},
      {line, "M 5.4 9.6 L 9.6 5.4"}}},
    {u"list.bullet.indent",
     {{fill, "O 1.75 3.5 1.1 O 4.75 7.5 1.1 O 4.75 11.5 1.1"},
      {line, "M 4.5 3.5 L 13.5 3.5 M 7.5 7.5 L 13.5 7.5 M 7.5 11.5 L 13.5 11.5"}}},
    {u"list.bullet.rectangle",
     {{line, "R 1.5 2.5 12 10 2"},
      {fill, "O 4.5 5.5 0.9 O 4.5 7.5 0.9 O 4.5 9.5 0.9"},
      {line, "M 6.75 5.5 L 11 5.5 M 6.75 7.5 L 11 7.5 M 6.75 9.5 L 11 9.5"}}},
    {u"magnifyingglass", {{line, "O 6.25 6.25 4.5"}, {line, "M 9.5 9.5 L 13.5 13.5"}}},
    {u"minus.circle.fill", {{fill, disc}, {cutLine, "M 4.25 7.5 L 10.75 7.5"}}},
    {u"pencil",
     {{line, "M 2 13 L 2.7 9.7 L 10.2 2.2 Q 11 1.4 11.8 2.2 L 12.8 3.2 Q 13.6 4 12.8 4.8 L 5.3 12.3 Z M 8.75 "
             "3.75 L 11.25 6.25"}}},
    {u"plus", {{line, "M 7.5 2 L 7.5 13 M 2 7.5 L 13 7.5"}}},
    {u"plus.circle.fill", {{fill, disc}, {cutLine, plusSign}}},
    {u"plus.square.on.square",
     {{line, backSquare}, {line, "R 5.5 5.5 8 8 1.75"}, {line, "M 9.5 7.5 L 9.5 11.5 M 7.5 9.5 L 11.5 9.5"}}},
    {u"plus.square.on.square.fill",
     {{line, backSquare}, {fill, "R 5 5 9 9 2"}, {cutLine, "M 9.5 7 L 9.5 12 M 7 9.5 L 12 9.5"}}},
    {u"questionmark.circle.fill",
     {{fill, disc},
      {cutLine, "M 5.5 5.9 Q 5.5 3.9 7.5 3.9 Q 9.5 3.9 9.5 5.6 Q 9.5 6.7 8.4 7.2 Q 7.5 7.6 7.5 8.4"},
      {cutFill, "O 7.5 11 1"}}},
    {u"rectangle.dashed",
     {{line,
       "M 1.5 5.2 L 1.5 4.5 Q 1.5 2.5 3.5 2.5 L 4 2.5 M 11 2.5 L 11.5 2.5 Q 13.5 2.5 13.5 4.5 L 13.5 5.2 "
       "M 13.5 9.8 L 13.5 10.5 Q 13.5 12.5 11.5 12.5 L 11 12.5 M 4 12.5 L 3.5 12.5 Q 1.5 12.5 1.5 10.5 L 1.5 "
       "9.8 "
       "M 6.25 2.5 L 8.75 2.5 M 6.25 12.5 L 8.75 12.5 M 1.5 7 L 1.5 8 M 13.5 7 L 13.5 8"}}},
    {u"rectangle.split.2x1", {{line, "R 1.5 2.5 12 10 2"}, {line, "M 7.5 2.5 L 7.5 12.5"}}},
    {u"scribble.variable",
     {{line,
       "M 1.5 8.5 C 2 4 6 0.5 7.5 2.5 C 9 5 2.5 11 4.5 12.5 C 6.5 14 8.5 5.5 10.5 6 C 12.5 6.5 8.5 11.5 10 "
       "12.5 C 11.25 13.25 12.75 11.75 13.5 10.5"}}},
    {u"sidebar.trailing",
     {{line, "R 1.5 2.5 12 10 2"},
      {line, "M 8.5 2.5 L 8.5 12.5"},
      {line, "M 10.75 5.5 L 11.25 5.5 M 10.75 7.5 L 11.25 7.5 M 10.75 9.5 L 11.25 9.5"}}},
    {u"text.alignleft",
     {{line, "M 1.5 2.5 L 13.5 2.5 M 1.5 5.5 L 9.5 5.5 M 1.5 8.5 L 13.5 8.5 M 1.5 11.5 L 9.5 11.5"}}},
    {u"text.bubble",
     {{line, "M 3.5 1.5 L 11.5 1.5 Q 13.5 1.5 13.5 3.5 L 13.5 8.5 Q 13.5 10.5 11.5 10.5 L 7.5 10.5 L 4.5 "
             "13.5 L 4.5 "
             "10.5 L 3.5 10.5 Q 1.5 10.5 1.5 8.5 L 1.5 3.5 Q 1.5 1.5 3.5 1.5 Z"},
      {line, "M 4.5 4.5 L 10.5 4.5 M 4.5 7.5 L 8.5 7.5"}}},
    {u"trash",
     {{line,
       "M 1.75 3.5 L 13.25 3.5 M 5.5 3.5 L 5.5 2.5 Q 5.5 1.5 6.5 1.5 L 8.5 1.5 Q 9.5 1.5 9.5 2.5 L 9.5 3.5"},
      {line, "M 3.25 3.5 L 3.9 12.1 Q 4 13.5 5.4 13.5 L 9.6 13.5 Q 11 13.5 11.1 12.1 L 11.75 3.5"},
      {line, "M 6.5 6.5 L 6.5 10.5 M 8.5 6.5 L 8.5 10.5"}}},
    {u"xmark", {{line, "M 3 3 L 12 12 M 12 3 L 3 12"}}},
    {u"xmark.circle.fill", {{fill, disc}, {cutLine, cross}}},
    {u"xmark.seal.fill", {{fill, seal}, {cutLine, cross}}},
};

static_assert(std::ranges::is_sorted(drawings, {}, &SymbolDrawing::name));

/// A closed line about the centre that swings `count` times between two radii.
void addWheel(QPainterPath& path, const std::array<double, 6>& numbers) {
    const auto [x, y, inner, outer, count, slope] = numbers;
    const int steps = int(count) * 24;
    for (int step = 0; step < steps; ++step) {
        const double angle = 2 * std::numbers::pi * step / steps;
        const double swing = std::clamp(slope * std::cos(count * angle), -1.0, 1.0);
        const double radius = (inner + outer + (outer - inner) * swing) / 2;
        const QPointF point(x + radius * std::sin(angle), y - radius * std::cos(angle));
        step == 0 ? path.moveTo(point) : path.lineTo(point);
    }
    path.closeSubpath();
}

void addArc(QPainterPath& path, double x, double y, double radius, double from, double sweep) {
    const QRectF box(x - radius, y - radius, 2 * radius, 2 * radius);
    path.arcMoveTo(box, from);
    path.arcTo(box, from, sweep);
}

std::size_t numberCount(char command) {
    switch (command) {
    case 'Z':
        return 0;
    case 'M':
    case 'L':
        return 2;
    case 'O':
        return 3;
    case 'Q':
        return 4;
    case 'A':
    case 'R':
        return 5;
    case 'C':
    case 'W':
        return 6;
    default:
        preconditionFailed("a path has known commands only");
    }
}

void add(QPainterPath& path, char command, const std::array<double, 6>& n) {
    switch (command) {
    case 'M':
        path.moveTo(n[0], n[1]);
        break;
    case 'L':
        path.lineTo(n[0], n[1]);
        break;
    case 'Q':
        path.quadTo(n[0], n[1], n[2], n[3]);
        break;
    case 'C':
        path.cubicTo(n[0], n[1], n[2], n[3], n[4], n[5]);
        break;
    case 'Z':
        path.closeSubpath();
        break;
    case 'O':
        path.addEllipse(QPointF(n[0], n[1]), n[2], n[2]);
        break;
    case 'A':
        addArc(path, n[0], n[1], n[2], n[3], n[4]);
        break;
    case 'R':
        path.addRoundedRect(n[0], n[1], n[2], n[3], n[4], n[4]);
        break;
    case 'W':
        addWheel(path, n);
        break;
    }
}

} // namespace

std::span<const SymbolDrawing> SymbolDrawing::all() { return drawings; }

const SymbolDrawing* SymbolDrawing::find(std::u16string_view name) {
    const auto found = std::ranges::lower_bound(drawings, name, {}, &SymbolDrawing::name);
    return found != std::end(drawings) && found->name == name ? found : nullptr;
}

QPainterPath SymbolDrawing::path(std::string_view text) {
    QPainterPath path;
    const char* at = text.data();
    const char* const end = at + text.size();
    while (at != end) {
        const char command = *at++;
        std::array<double, 6> numbers{};
        for (std::size_t index = 0; index < numberCount(command); ++index) {
            precondition(at != end && *at == ' ', "a path has as many numbers as its commands take");
            const auto [next, error] = std::from_chars(at + 1, end, numbers[index]);
            precondition(error == std::errc(), "a path has numbers after its commands");
            at = next;
        }
        add(path, command, numbers);
        precondition(at == end || *at == ' ', "a path has spaces between its commands");
        at += at != end;
    }
    return path;
}
