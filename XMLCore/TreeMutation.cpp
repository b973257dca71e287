#include "TreeMutation.h"

std::size_t std::hash<TreeMutation>::operator()(const TreeMutation& mutation) const noexcept {
    const NodePath& path = std::visit(
        [](const auto& specific) -> const NodePath& {
            if constexpr (requires { specific.path; }) {
                return specific.path;
            } else {
                return specific.target;
            }
        },
        mutation.value);
    return hashOf(mutation.value.index(), path);
}
