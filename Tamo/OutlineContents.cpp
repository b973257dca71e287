#include "OutlineContents.h"

#include "NodeSearch.h"

#include <utility>

namespace {

using Request = OutlineContents::Request;

/// Finds what `request` has paths of in the tree `to`; returns the selection there.
std::optional<NodePath> carry(Request& request, const DocumentTree& to) {
    const auto before = std::exchange(request.before, nullptr);
    if (before == nullptr) {
        const auto& selection = request.selection;
        return selection && to.resolve(*selection) ? selection : std::nullopt;
    }
    NodeCarry nodes(before->tree, to, std::exchange(request.edits, {}));
    if (request.outline != nullptr) {
        const ExpansionCarry::Absent none;
        auto [expanded, absent] = ExpansionCarry::carried(
            request.outline->expanded, request.absent != nullptr ? *request.absent : none, nodes);
        request.outline = std::make_shared<TreeOutline>(std::move(expanded));
        request.absent = std::make_shared<const ExpansionCarry::Absent>(std::move(absent));
    }
    return request.selection ? nodes.carried(*request.selection) : std::nullopt;
}

} // namespace

OutlineContents OutlineContents::make(Request request, const DocumentTree& of, std::stop_token stop,
                                      TreeOutline::Rows reusing) {
    OutlineContents contents;
    contents.request = std::move(request);
    contents.selection = carry(contents.request, of);
    std::shared_ptr<const TreeOutline>& outline = contents.request.outline;
    if (outline == nullptr) {
        outline = std::make_shared<TreeOutline>(TreeOutline::defaultExpansion(of));
    }
    const QString& filter = contents.request.filter;
    if (filter.isEmpty()) {
        contents.rows = outline->rows(of, std::move(reusing));
    } else {
        const std::vector<NodeID> matches = NodeSearch::matches(filter.toStdU16String(), of, stop);
        if (stop.stop_requested()) {
            return contents;
        }
        contents.matchCount = matches.size();
        contents.rows = TreeOutline::rows(of, matches, std::move(reusing));
    }
    if (const auto& offset = contents.request.selectOffset) {
        const NodeID node = of.innermostNode(*offset);
        contents.toSelect = Place{of.path(node), node};
    }
    return contents;
}
