#include "TagPalette.h"

#include "SystemColor.h"

#include <QStringEncoder>

#include <algorithm>

namespace {

constexpr std::uint32_t start = 2'166'136'261;
constexpr std::uint32_t prime = 16'777'619;
constexpr qsizetype mostUnits = 65'536;
constexpr std::uint32_t degrees = 360;

} // namespace

std::uint32_t TagPalette::hash(QStringView name) {
    // Unlike QStringView::toUtf8, an encoder writes U+FFFD for a lone surrogate.
    QStringEncoder encode(QStringEncoder::Utf8, QStringEncoder::Flag::Stateless);
    const QByteArray bytes = encode(name.first(std::min(name.size(), mostUnits)));
    std::uint32_t hash = start;
    for (const char byte : bytes) {
        hash = (hash ^ std::uint8_t(byte)) * prime;
    }
    return hash;
}

QColor TagPalette::tagColor(QStringView name, const QPalette& palette) {
    const float hue = float(hash(name) % degrees) / float(degrees);
    return isDark(palette) ? QColor::fromHsvF(hue, 0.55F, 0.95F) : QColor::fromHsvF(hue, 0.75F, 0.62F);
}
