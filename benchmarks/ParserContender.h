#pragma once

#include "BenchmarkDocument.h"

#include <memory>
#include <optional>
#include <string_view>
#include <vector>

/// One parser, or one floor, that takes part in the comparison. Keeps its memory from parse to parse, so
/// that after the first everything runs on a warm heap.
class ParserContender {
public:
    virtual ~ParserContender() = default;

    virtual std::string_view name() const = 0;

    /// The seconds that one parse of the document took, preparation and destruction not counted; none when
    /// the parser gave up before its end.
    virtual std::optional<double> parse(const BenchmarkDocument& document) = 0;
};

/// All of them: ours, ours on the damaged document ("damaged"), pugixml, expat, libxml2, memchr, roofline.
std::vector<std::unique_ptr<ParserContender>> parserContenders();
