#include "TreeIndentation.h"

#include <algorithm>

TreeIndentation TreeIndentation::fitting(std::uint32_t shallowest, std::uint32_t deepest, int room) {
    const auto levels = static_cast<std::uint32_t>(std::max(room, 0) / fullStep);
    if (deepest <= levels) {
        return {};
    }
    TreeIndentation indentation{.base = std::min(shallowest, deepest - levels)};
    if (const std::uint32_t shown = deepest - indentation.base; shown > levels) {
        indentation.step = std::max(room, 0) / double(shown);
    }
    return indentation;
}
