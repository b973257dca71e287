#include "OutlineContents.h"

#include "NodeSearch.h"

#include <utility>

OutlineContents OutlineContents::make(Request request, const DocumentTree& of, std::stop_token stop,
                                      TreeOutline::Rows reusing) {
    OutlineContents contents;
    contents.request = std::move(request);
    std::shared_ptr<const TreeOutline>& outline = contents.request.outline;
    if (outline == nullptr) {
        outline = std::make_shared<const TreeOutline>(TreeOutline::defaultExpansion(of));
    }
    const QString& filter = contents.request.filter;
    if (filter.isEmpty()) {
        contents.rows = outline->rows(of, std::move(reusing));
    } else {
        const std::vector<NodeID> matches = NodeSearch::matches(filter.toStdU16String(), of, stop);
        if (stop.stop_requested()) {
            return contents;
        }
        contents.rows = TreeOutline::rows(of, matches, std::move(reusing));
    }
    if (const auto& selection = contents.request.selection) {
        contents.isSelectionThere = of.resolve(*selection).has_value();
    }
    if (const auto& offset = contents.request.selectOffset) {
        const NodeID node = of.innermostNode(*offset);
        contents.toSelect = Place{of.path(node), node};
    }
    return contents;
}
