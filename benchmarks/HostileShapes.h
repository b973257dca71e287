#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

/// A kind of document for which a careless parser takes quadratic time or more.
struct HostileShape {
    std::string_view name;
    /// A document of the shape, of about `units` UTF-16 units.
    std::u16string (*make)(std::size_t units);
};

std::span<const HostileShape> hostileShapes();
