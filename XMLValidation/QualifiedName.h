#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

/// A name split at its first colon. Both are borrowed from the name.
struct QualifiedName {
    std::u16string_view prefix; ///< Empty without a colon.
    std::u16string_view local;

    static QualifiedName of(std::u16string_view name) {
        const std::size_t colon = name.find(u':');
        return colon == std::u16string_view::npos
                   ? QualifiedName{{}, name}
                   : QualifiedName{name.substr(0, colon), name.substr(colon + 1)};
    }

    bool operator==(const QualifiedName&) const = default;
};

/// The namespaces that are bound without a declaration.
namespace ReservedNamespace {
inline constexpr std::u16string_view xml = u"http://www.w3.org/XML/1998/namespace";
inline constexpr std::u16string_view xmlns = u"http://www.w3.org/2000/xmlns/";
} // namespace ReservedNamespace

/// The prefix that the attribute `name` declares, empty for the default namespace. None when the attribute
/// declares none.
inline std::optional<std::u16string_view> declaredPrefix(std::u16string_view name) {
    const QualifiedName split = QualifiedName::of(name);
    if (name == u"xmlns") {
        return u"";
    }
    return split.prefix == u"xmlns" ? std::optional(split.local) : std::nullopt;
}
