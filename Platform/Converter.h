#pragma once

#include <memory>
#include <string_view>

#include <unicode/ucnv.h>

struct ConverterCloser {
    void operator()(UConverter* converter) const { ucnv_close(converter); }
};

/// A converter of ICU between bytes and UTF-16. Holds the state of one conversion.
using Converter = std::unique_ptr<UConverter, ConverterCloser>;

/// The converter of the encoding `name`, which must end with a NUL; null for an unknown one. Strict both
/// ways: it stops at whatever it cannot convert, takes no look-alike for a character, and leaves none out.
Converter openConverter(std::string_view name);
