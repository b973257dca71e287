#pragma once

#include <QString>

#include <cstdint>

/// `number` as Spanish readers expect it: "1234", "12.345", "1.234.567". The library's own Spanish numbers
/// leave the leading digits of long ones together.
QString groupedNumber(std::uint64_t number);

/// So many of something, the number grouped: "1 error", "12.345 errores", "0 errores".
QString counted(std::uint64_t number, const QString& one, const QString& many);
