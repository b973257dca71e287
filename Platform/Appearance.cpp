#include "Appearance.h"

#include "SystemColor.h"

#include <QPalette>

namespace {

/// How much is left of a colour of text where it is disabled.
constexpr float disabledOpacity = 0.45F;

struct Entry {
    QPalette::ColorRole role;
    SystemColor color;
};

constexpr Entry entries[] = {
    {QPalette::Window, SystemColor::barBackground},
    {QPalette::WindowText, SystemColor::textColor},
    {QPalette::Base, SystemColor::textBackground},
    {QPalette::AlternateBase, SystemColor::alternateRow},
    {QPalette::Text, SystemColor::textColor},
    {QPalette::PlaceholderText, SystemColor::tertiaryLabel},
    {QPalette::Button, SystemColor::control},
    {QPalette::ButtonText, SystemColor::textColor},
    {QPalette::BrightText, SystemColor::systemRed},
    {QPalette::Highlight, SystemColor::selection},
    {QPalette::HighlightedText, SystemColor::textColor},
    {QPalette::Link, SystemColor::accent},
    {QPalette::LinkVisited, SystemColor::systemPurple},
    {QPalette::ToolTipBase, SystemColor::control},
    {QPalette::ToolTipText, SystemColor::textColor},
    {QPalette::Light, SystemColor::control},
    {QPalette::Midlight, SystemColor::barBackground},
    {QPalette::Mid, SystemColor::separator},
    {QPalette::Dark, SystemColor::separator},
    {QPalette::Shadow, SystemColor::separator},
};

} // namespace

QPalette palette(Appearance appearance) {
    const QPalette surroundings(appearance == Appearance::dark ? Qt::black : Qt::white);
    QPalette palette;
    for (const auto& [role, meaning] : entries) {
        palette.setColor(QPalette::All, role, color(meaning, surroundings));
    }
    palette.setColor(QPalette::Inactive, QPalette::Highlight,
                     color(SystemColor::quietSelection, surroundings));
    palette.setColor(QPalette::Disabled, QPalette::Highlight,
                     color(SystemColor::quietSelection, surroundings));
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText,
                            QPalette::HighlightedText, QPalette::Link}) {
        QColor faint = palette.color(role);
        faint.setAlphaF(disabledOpacity);
        palette.setColor(QPalette::Disabled, role, faint);
    }
    return palette;
}

std::optional<Appearance> appearance(QStringView named) {
    if (named == u"light") {
        return Appearance::light;
    }
    return named == u"dark" ? std::optional(Appearance::dark) : std::nullopt;
}
