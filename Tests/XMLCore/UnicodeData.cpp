#include "UnicodeData.h"

#include <algorithm>
#include <fstream>
#include <gtest/gtest.h>

std::vector<std::string> dataLines(const std::string& file) {
    std::ifstream stream("/usr/share/unicode/" + file);
    EXPECT_TRUE(stream.is_open()) << file << " is part of the package unicode-data";
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);) {
        line.erase(std::min(line.find('#'), line.size()));
        if (line.find_first_not_of(" \t") != std::string::npos) {
            lines.push_back(line);
        }
    }
    return lines;
}

std::vector<PropertyLine> propertyLines(const std::string& file) {
    std::vector<PropertyLine> properties;
    for (const std::string& line : dataLines(file)) {
        std::size_t digits = 0;
        const unsigned long first = std::stoul(line, &digits, 16);
        const bool isRange = line.compare(digits, 2, "..") == 0;
        const unsigned long last = isRange ? std::stoul(line.substr(digits + 2), nullptr, 16) : first;
        const std::size_t value = line.find_first_not_of(' ', line.find(';') + 1);
        const std::size_t valueEnd = line.find_last_not_of(' ') + 1;
        properties.push_back({static_cast<char32_t>(first), static_cast<char32_t>(last),
                              line.substr(value, valueEnd - value)});
    }
    return properties;
}
