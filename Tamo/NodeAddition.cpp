#include "NodeAddition.h"

#include "MutationFailureMessage.h"

using Placement = TreeMutation::Placement;
using Kind = TreeNode::Kind;

namespace {

std::unexpected<NodeAddition::Failure> failure(NodeAddition::Failure cause) {
    return std::unexpected(std::move(cause));
}

struct Wording {
    QString operator()(const MutationPlanner::Failure& failure) const { return ::message(failure); }
    QString operator()(const NodeAddition::TextOutsideRoot&) const {
        return QStringLiteral("Fuera del elemento raíz no puede haber texto.");
    }
    QString operator()(const NodeAddition::DoubleHyphen&) const {
        return QStringLiteral("Un comentario no puede contener dos guiones seguidos (“--”).");
    }
};

} // namespace

QString NodeAddition::message(const Failure& failure) { return std::visit(Wording(), failure); }

bool NodeAddition::holdsText(NodeID element, const DocumentTree& in) {
    return in.hasOnlyTextContent(element) && !in.text.isWhitespace(in[element].contentRange);
}

NodeInsertion NodeAddition::behindText(NodeID element, const std::u16string& source, const DocumentTree& in) {
    const TreeNode& node = in[element];
    if (node.flags.contains(TreeNode::selfClosing)) {
        constexpr Offset tagEndLength = 1; // The `>` that the start tag gets.
        return {fillSelfClosing(element, source, in), tagEndLength};
    }
    const SourceRange content = node.contentRange;
    return {in.text.isWhitespace(content) ? TextEdit{content, source}
                                          : TextEdit::insert(source, content.upper)};
}

NodeAddition::Result NodeAddition::planned(const std::optional<NodeInsertion>& insertion) {
    if (!insertion) {
        return failure(MutationPlanner::Failure(MutationPlanner::NotAnElement()));
    }
    return MutationPlanner::Plan{{insertion->edit}, insertion->nodeStart()};
}

NodeAddition::Result NodeAddition::text(const std::u16string& source, const NodePath& path,
                                        const DocumentTree& in, IndentStyle indent) {
    const auto node = in.resolve(path);
    if (!node) {
        return failure(MutationPlanner::Failure(MutationPlanner::NodeNotFound()));
    }
    if (*node == NodeID::document() || (!in[*node].isElement() && in[*node].parent == NodeID::document())) {
        return failure(TextOutsideRoot());
    }
    NodeLayout layout(in, indent);
    if (!in[*node].isElement()) {
        return planned(NodeInsertion::plan(source, *node, Placement::after, in, layout));
    }
    return planned(in.hasOnlyTextContent(*node)
                       ? behindText(*node, source, in)
                       : NodeInsertion::plan(source, *node, Placement::lastChild, in, layout));
}

NodeAddition::Result NodeAddition::comment(std::u16string_view text, const NodePath& path,
                                           const DocumentTree& in, IndentStyle indent) {
    if (text.find(u"--") != text.npos) {
        return failure(DoubleHyphen());
    }
    const auto node = in.resolve(path);
    if (!node) {
        return failure(MutationPlanner::Failure(MutationPlanner::NodeNotFound()));
    }
    const std::u16string source = std::u16string(u"<!-- ").append(text).append(u" -->");
    if (in[*node].isElement() && holdsText(*node, in)) {
        return planned(behindText(*node, source, in));
    }
    const bool isInside = in[*node].isElement() || *node == NodeID::document();
    NodeLayout layout(in, indent);
    return planned(
        NodeInsertion::plan(source, *node, isInside ? Placement::lastChild : Placement::after, in, layout));
}
