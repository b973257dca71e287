#include "TreeNode.h"

SourceRange TreeNode::startTagRange() const {
    if (!isElement()) {
        return range;
    }
    return {range.lower, flags.contains(selfClosing) ? range.upper : contentRange.lower};
}

std::optional<SourceRange> TreeNode::closeNameRange() const {
    if (!isElement() || !flags.contains(hasCloseTag)) {
        return std::nullopt;
    }
    constexpr int openingLength = 2; // "</"
    return SourceRange::at(std::int64_t{contentRange.upper} + openingLength, nameRange.length());
}
