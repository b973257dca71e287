#pragma once

#include <cstdint>
#include <functional>
#include <stop_token>

/// How a file is replaced by what is written to it.
struct FileReplacement {
    /// What becomes of a file that has other names, hard links, too.
    enum class Links : std::uint8_t {
        separated, ///< The others keep what they had: the new file has one name.
        written,   ///< All names get what is written: the file itself is written, not replaced.
    };

    std::stop_token stop = {}; ///< Obeyed until the file is touched.

    /// Called right before the file is touched, with all that is written safe on the disk: whether it may be.
    std::function<bool()> mayReplace = [] { return true; };

    Links links = Links::separated;
};
