#include "SystemFont.h"

#include <QFontDatabase>
#include <QFontMetricsF>
#include <QGuiApplication>
#include <QStringList>

#include <algorithm>

namespace {

constexpr int bodySize = 13;
constexpr int calloutSize = 12;
constexpr int captionSize = 11;
constexpr int titleSize = 22;
constexpr int sourceSize = 13;
constexpr int digitsSize = 11;

/// What to look through after the desktop's own font, which seldom has more than a few scripts. The fonts of
/// emoji have digits too, which must not win, so they come last.
const char* const sourceFallbacks[] = {
    "DejaVu Sans Mono",   "Noto Sans Mono",   "Noto Sans Mono CJK SC", "Noto Sans Arabic",
    "Noto Naskh Arabic",  "Noto Sans Hebrew", "Noto Sans Devanagari",  "Noto Sans Symbols",
    "Noto Sans Symbols2", "Noto Color Emoji",
};

const char* const interfaceFallbacks[] = {
    "Noto Sans",          "DejaVu Sans",      "Noto Sans CJK SC",     "Noto Sans Arabic",
    "Noto Naskh Arabic",  "Noto Sans Hebrew", "Noto Sans Devanagari", "Noto Sans Symbols",
    "Noto Sans Symbols2", "Noto Color Emoji",
};

template <std::size_t count>
QFont font(QFontDatabase::SystemFont like, const char* const (&fallbacks)[count], int size) {
    QFont font = QFontDatabase::systemFont(like);
    QStringList families = font.families();
    for (const char* const each : fallbacks) {
        const QString family = QString::fromLatin1(each);
        if (!families.contains(family) && QFontDatabase::hasFamily(family)) {
            families += family;
        }
    }
    font.setFamilies(families);
    font.setWeight(QFont::Normal);
    font.setItalic(false);
    font.setPixelSize(size);
    return font;
}

QFont sourceFont(int size) {
    QFont made = font(QFontDatabase::FixedFont, sourceFallbacks, size);
    made.setStyleHint(QFont::Monospace);
    return made;
}

QFont interfaceFont(int size) { return font(QFontDatabase::GeneralFont, interfaceFallbacks, size); }

bool hasEqualDigits(const QFont& font) {
    const QFontMetricsF metrics(font);
    const double width = metrics.horizontalAdvance(u'0');
    constexpr std::u16string_view others = u"123456789";
    return std::ranges::all_of(others,
                               [&](char16_t digit) { return metrics.horizontalAdvance(digit) == width; });
}

} // namespace

const QFont& SystemFont::body() {
    static const QFont font = interfaceFont(bodySize);
    return font;
}

const QFont& SystemFont::callout() {
    static const QFont font = interfaceFont(calloutSize);
    return font;
}

const QFont& SystemFont::caption() {
    static const QFont font = interfaceFont(captionSize);
    return font;
}

const QFont& SystemFont::title() {
    static const QFont font = interfaceFont(titleSize);
    return font;
}

const QFont& SystemFont::monospaced() {
    static const QFont font = sourceFont(sourceSize);
    return font;
}

const QFont& SystemFont::monospacedDigits() {
    static const QFont font = withMonospacedDigits(interfaceFont(digitsSize));
    return font;
}

QFont SystemFont::withMonospacedDigits(const QFont& font) {
    if (hasEqualDigits(font)) {
        return font;
    }
    QFont fixed = font;
    fixed.setFamilies(monospaced().families());
    return fixed;
}

QFont SystemFont::semibold(QFont font) {
    font.setWeight(QFont::DemiBold);
    return font;
}
