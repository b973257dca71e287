#include "Converter.h"

namespace {

// A callback that leaves the error as it is stops the conversion. ICU's own for this direction does not stop
// at characters that are invisible, such as U+200B: it would leave them out of the file.
void stopEncoding(const void*, UConverterFromUnicodeArgs*, const UChar*, int32_t, UChar32,
                  UConverterCallbackReason, UErrorCode*) {}

void stopDecoding(const void*, UConverterToUnicodeArgs*, const char*, int32_t, UConverterCallbackReason,
                  UErrorCode*) {}

} // namespace

Converter openConverter(std::string_view name) {
    UErrorCode error = U_ZERO_ERROR;
    Converter converter(ucnv_open(name.data(), &error));
    if (!converter) {
        return nullptr;
    }
    ucnv_setFromUCallBack(converter.get(), stopEncoding, nullptr, nullptr, nullptr, &error);
    ucnv_setToUCallBack(converter.get(), stopDecoding, nullptr, nullptr, nullptr, &error);
    ucnv_setFallback(converter.get(), false);
    return converter;
}
