#include "TextMimeData.h"

#include "LineEndings.h"
#include "SourceText.h"
#include "TextNavigation.h"

#include <cstring>

namespace {

const QString unitsType = QStringLiteral("application/x-tamo-utf16");
const QString plainType = QStringLiteral("text/plain");

} // namespace

bool TextMimeData::hasUnits(const QMimeData& data) { return data.hasFormat(unitsType) || data.hasText(); }

std::u16string TextMimeData::units(const QMimeData& data) {
    if (const auto* own = qobject_cast<const TextMimeData*>(&data)) {
        return own->m_text.units(own->m_text.fullRange());
    }
    if (!data.hasFormat(unitsType)) {
        return data.text().toStdU16String();
    }
    const QByteArray bytes = data.data(unitsType);
    std::u16string units(static_cast<std::size_t>(bytes.size()) / sizeof(char16_t), u'\0');
    std::memcpy(units.data(), bytes.data(), units.size() * sizeof(char16_t));
    return units;
}

std::u16string TextMimeData::units(const QMimeData& data, const Rope& into) {
    std::u16string units = TextMimeData::units(data);
    if (units.find(u'\n') == std::u16string::npos) {
        return units;
    }
    const Rope text(units);
    const auto converted =
        LineEndings::converted(text, TextNavigation::lineEnding(into.lineCount() > 1 ? into : text));
    return converted ? converted->units(converted->fullRange()) : units;
}

QStringList TextMimeData::formats() const { return {unitsType, plainType}; }

bool TextMimeData::hasFormat(const QString& type) const { return formats().contains(type); }

QVariant TextMimeData::retrieveData(const QString& type, QMetaType wanted) const {
    const std::u16string units = m_text.units(m_text.fullRange());
    if (type == plainType) {
        const QString plain = QString::fromStdU16String(repaired(units));
        return wanted.id() == QMetaType::QByteArray ? QVariant(plain.toUtf8()) : QVariant(plain);
    }
    if (type == unitsType) {
        return QByteArray(reinterpret_cast<const char*>(units.data()),
                          static_cast<qsizetype>(units.size() * sizeof(char16_t)));
    }
    return {};
}
