#include "IndentStyle.h"

#include "UnitScan.h"

#include <algorithm>
#include <array>
#include <cstdlib>

namespace {

constexpr std::ptrdiff_t widestStep = 8;

} // namespace

IndentStyle IndentStyle::detect(const SourceText& in, int maxLines) {
    const char16_t* line = in.units().data();
    const char16_t* const end = line + in.count();
    int tabLines = 0;
    int spaceLines = 0;
    std::ptrdiff_t previousWidth = 0;
    std::array<int, widestStep + 1> steps{};
    for (int visited = 0; visited < maxLines && line != end; ++visited) {
        const char16_t* const lineEnd = line + UnitScan::findAny(line, 0, end - line, u'\n');
        if (*line == u'\t') {
            ++tabLines;
        } else {
            const char16_t* const text =
                std::find_if(line, lineEnd, [](char16_t unit) { return unit != u' '; });
            const std::ptrdiff_t width = text - line;
            spaceLines += width > 0 ? 1 : 0;
            const bool isBlank = text == lineEnd || *text == u'\r';
            if (!isBlank) {
                const std::ptrdiff_t step = std::abs(width - previousWidth);
                if (0 < step && step <= widestStep) {
                    ++steps[step];
                }
                previousWidth = width;
            }
        }
        line = lineEnd == end ? end : lineEnd + 1;
    }
    if (tabLines > spaceLines) {
        return tabs();
    }
    const auto commonest = std::ranges::max_element(steps);
    return *commonest == 0 ? IndentStyle() : spaces(static_cast<int>(commonest - steps.begin()));
}

std::u16string IndentStyle::unit() const {
    return usesTabs() ? std::u16string(u"\t") : std::u16string(static_cast<std::size_t>(width()), u' ');
}
