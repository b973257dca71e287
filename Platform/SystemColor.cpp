#include "SystemColor.h"

#include <QPalette>

namespace {

struct Values {
    QRgb light;
    QRgb dark;
};

Values values(SystemColor color) {
    switch (color) {
    case SystemColor::textColor:
        return {0xFF1D1E22, 0xFFE4E6EB};
    case SystemColor::secondaryLabel:
        return {0xFF585C64, 0xFFA9ADB6};
    case SystemColor::tertiaryLabel:
        return {0xFF666A72, 0xFF8F949E};
    case SystemColor::systemBlue:
        return {0xFF0A5FCC, 0xFF6FB1FF};
    case SystemColor::systemRed:
        return {0xFFC0212B, 0xFFFF8078};
    case SystemColor::systemOrange:
        return {0xFF9C4F00, 0xFFFFB061};
    case SystemColor::systemGreen:
        return {0xFF1B7634, 0xFF6CD28A};
    case SystemColor::systemBrown:
        return {0xFF7E5426, 0xFFD3AC83};
    case SystemColor::systemGray:
        return {0xFF63676F, 0xFF9DA2AC};
    case SystemColor::systemTeal:
        return {0xFF0B6E79, 0xFF5FCDD6};
    case SystemColor::systemPurple:
        return {0xFF8436AD, 0xFFD0A0F8};
    case SystemColor::accent:
        return {0xFF2265D8, 0xFF5B9BFF};
    case SystemColor::textOnAccent:
        return {0xFFFFFFFF, 0xFF0D1526};
    case SystemColor::textBackground:
        return {0xFFFFFFFF, 0xFF1B1C20};
    case SystemColor::alternateRow:
        return {0xFFF8F9FA, 0xFF1F2024};
    case SystemColor::currentLine:
        return {0xFFF3F6FB, 0xFF23252B};
    case SystemColor::selection:
        return {0xFFCFE1FB, 0xFF263F68};
    case SystemColor::quietSelection:
        return {0xFFDCE2EC, 0xFF363C48};
    case SystemColor::barBackground:
        return {0xFFF2F3F5, 0xFF26282D};
    case SystemColor::control:
        return {0xFFFFFFFF, 0xFF383B42};
    case SystemColor::separator:
        return {0xFFD9DBE0, 0xFF464A52};
    case SystemColor::foundText:
        return {0xFFFFE066, 0xFF6B5600};
    }
    Q_UNREACHABLE();
}

/// Lightness of a window from which on its surroundings count as light.
constexpr int lightFrom = 128;

} // namespace

QColor color(SystemColor color, const QPalette& palette) {
    const Values both = values(color);
    return QColor(isDark(palette) ? both.dark : both.light);
}

bool isDark(const QPalette& palette) { return palette.color(QPalette::Window).lightness() < lightFrom; }
