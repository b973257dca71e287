#pragma once

#include "BenchmarkDocument.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

/// One parser, or one baseline, in the comparison. It keeps its memory from parse to parse, so that all
/// parses after the first run with a warm heap.
class ParserContender {
public:
    virtual ~ParserContender() = default;

    virtual std::string_view name() const = 0;

    /// The duration of one parse of the document, in seconds, without preparation and destruction; none if
    /// the parser gave up before the end. Just before, the text is read once, as if it had just been decoded.
    virtual std::optional<double> parse(const BenchmarkDocument& document) = 0;
};

/// All contenders: ours, pugixml on a buffer of its own and with a copy of the caller's ("pugixml-copy"),
/// expat, libxml2, memchr, roofline, and ours on the damaged document ("damaged").
std::vector<std::unique_ptr<ParserContender>> parserContenders();

/// The number of elements that pugixml finds in the document. If our parser finds another number, comparing
/// the times is meaningless.
std::size_t elementCountOfPugixml(const BenchmarkDocument& document);
