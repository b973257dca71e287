#include "DisplayText.h"

#include <QChar>

namespace {

/// The control pictures start with the one for NUL.
constexpr char16_t controlPictures = u'\u2400';
constexpr char16_t pictureOfDelete = u'\u2421';
constexpr char16_t replacement = u'\uFFFD';
constexpr char16_t dottedBox = u'\u2B1A';

char16_t standIn(char16_t unit) {
    if (unit < u' ') {
        return static_cast<char16_t>(controlPictures + unit);
    }
    return unit == 0x7F ? pictureOfDelete : dottedBox;
}

} // namespace

bool needsStandIn(char16_t unit) {
    if (unit < 0x80) [[likely]] {
        return (unit < u' ' && unit != u'\t') || unit == 0x7F;
    }
    return unit < 0xA0 || unit == 0x061C || (unit >= 0x200E && unit <= 0x200F) ||
           (unit >= 0x2028 && unit <= 0x202E) || (unit >= 0x2060 && unit <= 0x206F) || unit == 0xFEFF ||
           (unit >= 0xFFF9 && unit <= 0xFFFC);
}

QString displayText(std::u16string_view units) {
    QString shown = QString::fromUtf16(units.data(), static_cast<qsizetype>(units.size()));
    QChar* const out = shown.data();
    for (std::size_t at = 0; at < units.size(); ++at) {
        const char16_t unit = units[at];
        if (QChar::isHighSurrogate(unit) && at + 1 < units.size() && QChar::isLowSurrogate(units[at + 1])) {
            ++at;
        } else if (QChar::isSurrogate(unit)) {
            out[at] = replacement;
        } else if (needsStandIn(unit)) {
            const bool endsLine = unit == u'\r' && at + 1 == units.size();
            out[at] = endsLine ? u' ' : standIn(unit);
        }
    }
    return shown;
}
