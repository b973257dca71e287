#pragma once

#include <optional>
#include <string>
#include <string_view>

/// What another processor says of a document.
struct Verdict {
    bool isAccepted = false;
    int code = 0;     ///< Of its first error.
    long line = 0;    ///< Of its first error, counted from 1.
    std::string text; ///< Its first error.
};

/// The processors that ours is compared with. Both are told that the document is UTF-8, whatever it declares,
/// to heed namespaces, and to read nothing but the document.
namespace VerdictPeers {

Verdict expat(std::string_view utf8);
Verdict libxml2(std::string_view utf8);

} // namespace VerdictPeers
