#pragma once

#include <QMimeData>

#include <memory>
#include <string>
#include <string_view>

/// Text on its way through the clipboard. Beside plain text for other programs it carries the units as they
/// are, since plain text loses NUL and lone surrogates.
namespace TextMimeData {

std::unique_ptr<QMimeData> make(std::u16string_view units);

/// The text that `data` carries; empty when it carries none.
std::u16string units(const QMimeData& data);

} // namespace TextMimeData
