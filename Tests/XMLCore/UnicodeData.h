#pragma once

#include <string>
#include <vector>

/// One line of a property file of the Unicode Character Database.
struct PropertyLine {
    char32_t first = 0;
    char32_t last = 0;
    std::string value;
};

/// The lines of `file`, a path inside the installed database, without their comments. Fails the test if the
/// file cannot be read.
std::vector<PropertyLine> propertyLines(const std::string& file);

/// The lines of `file` that contain more than a comment, without their comments.
std::vector<std::string> dataLines(const std::string& file);
