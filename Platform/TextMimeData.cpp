#include "TextMimeData.h"

#include "SourceText.h"

#include <cstring>

namespace {

const QString unitsType = QStringLiteral("application/x-tamo-utf16");

} // namespace

std::unique_ptr<QMimeData> TextMimeData::make(std::u16string_view units) {
    auto data = std::make_unique<QMimeData>();
    data->setText(QString::fromStdU16String(repaired(units)));
    data->setData(unitsType, QByteArray(reinterpret_cast<const char*>(units.data()),
                                        static_cast<qsizetype>(units.size() * sizeof(char16_t))));
    return data;
}

std::u16string TextMimeData::units(const QMimeData& data) {
    if (!data.hasFormat(unitsType)) {
        return data.text().toStdU16String();
    }
    const QByteArray bytes = data.data(unitsType);
    std::u16string units(static_cast<std::size_t>(bytes.size()) / sizeof(char16_t), u'\0');
    std::memcpy(units.data(), bytes.data(), units.size() * sizeof(char16_t));
    return units;
}
