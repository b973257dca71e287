#include "DeclarationEnd.h"

#include "UnitScan.h"

#include <string_view>

namespace {

/// The offset just after the comment or instruction whose `<` is at `at`, or `end` if it has no end. For any
/// other construct, the offset after the `<`.
std::ptrdiff_t afterConstruct(const char16_t* units, std::ptrdiff_t at, std::ptrdiff_t end) {
    constexpr std::u16string_view commentOpener = u"<!--";
    constexpr std::u16string_view instructionOpener = u"<?";
    const std::u16string_view rest(units + at, end - at);
    if (rest.starts_with(commentOpener)) {
        return UnitScan::findAfter(units, at + std::ssize(commentOpener), end, u"-->");
    }
    if (rest.starts_with(instructionOpener)) {
        return UnitScan::findAfter(units, at + std::ssize(instructionOpener), end, u"?>");
    }
    return at + 1;
}

} // namespace

std::optional<std::ptrdiff_t> DeclarationEnd::find(const char16_t* units, std::ptrdiff_t from,
                                                   std::ptrdiff_t end, Skipping skipping) {
    std::ptrdiff_t depth = 0;
    std::ptrdiff_t position = from;
    while ((position = UnitScan::findAny(units, position, end, u'>', u'"', u'\'', u'[', u']', u'<')) < end) {
        switch (units[position]) {
        case u'>':
            if (depth <= 0) {
                return position + 1;
            }
            ++position;
            break;
        case u'[':
            ++depth;
            ++position;
            break;
        case u']':
            --depth;
            ++position;
            break;
        case u'<':
            position = skipping == Skipping::commentsAndInstructions && depth > 0
                           ? afterConstruct(units, position, end)
                           : position + 1;
            break;
        default:
            position = UnitScan::findAny(units, position + 1, end, units[position]) + 1;
            break;
        }
    }
    return std::nullopt;
}
