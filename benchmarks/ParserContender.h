#pragma once

#include "BenchmarkDocument.h"

#include <cstddef>
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
    /// the parser gave up before its end. The text was read just before, as by whoever decoded it.
    virtual std::optional<double> parse(const BenchmarkDocument& document) = 0;
};

/// All of them: ours, pugixml on a buffer of its own and with a copy of the caller's ("pugixml-copy"), expat,
/// libxml2, memchr, roofline, and ours on the damaged document ("damaged").
std::vector<std::unique_ptr<ParserContender>> parserContenders();

/// How many elements pugixml finds in the document. Where ours finds others, a comparison of the times means
/// nothing.
std::size_t elementCountOfPugixml(const BenchmarkDocument& document);
