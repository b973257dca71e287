#include "MutationPlanner.h"

#include "Escaping.h"
#include "Lexer.h"
#include "NodeInsertion.h"
#include "NodeLayout.h"
#include "UnitScan.h"

namespace {

using namespace MutationPlanner;
using Kind = TreeNode::Kind;
using Placement = TreeMutation::Placement;
using Result = std::expected<Plan, Failure>;

std::unexpected<Failure> failure(Failure cause) { return std::unexpected(std::move(cause)); }

std::unexpected<Failure> invalidName(std::u16string_view name) {
    return failure(InvalidName{repaired(name)});
}

std::u16string startTag(std::u16string_view name) { return std::u16string(u"<").append(name).append(u">"); }
std::u16string endTag(std::u16string_view name) { return std::u16string(u"</").append(name).append(u">"); }

/// `text` as the content of a comment: a space is inserted between two adjacent hyphens.
std::u16string commentText(std::u16string_view text) {
    std::u16string result;
    for (const char16_t unit : text) {
        if (unit == u'-' && result.ends_with(u'-')) {
            result.push_back(u' ');
        }
        result.push_back(unit);
    }
    return result;
}

/// `text` as the content of a CDATA section: before the `>` of each `]]>`, one section ends and another
/// starts.
std::u16string cdataText(std::u16string_view text) {
    std::u16string result;
    for (const char16_t unit : text) {
        if (unit == u'>' && result.ends_with(u"]]")) {
            result.append(u"]]><![CDATA[");
        }
        result.push_back(unit);
    }
    return result;
}

/// `name="value"`
std::u16string attributeSource(std::u16string_view name, std::u16string_view value) {
    return std::u16string(name).append(u"=\"").append(Escaping::escapeAttribute(value, u'"')).append(u"\"");
}

/// Has one operation for each case of `TreeMutation`.
class Planner {
public:
    Planner(const DocumentTree& tree, IndentStyle indent)
        : m_tree(tree), m_text(tree.text), m_indent(indent) {}

    Result operator()(const TreeMutation::Rename& rename) const {
        const auto id = elementTaking(rename.name, rename.path);
        if (!id) {
            return failure(id.error());
        }
        const TreeNode& node = m_tree[*id];
        Plan plan{{{node.nameRange, rename.name}}, node.range.lower};
        if (const auto closeName = node.closeNameRange()) {
            plan.edits.push_back({*closeName, rename.name});
        }
        return plan;
    }

    /// Replaces the value of the attribute inside its quotes; adds a new attribute after the others.
    Result operator()(const TreeMutation::SetAttribute& set) const {
        const auto id = elementTaking(set.name, set.path);
        if (!id) {
            return failure(id.error());
        }
        const auto attribute = m_tree.attribute(set.name, *id);
        const auto all = m_tree.attributesOf(*id);
        const Offset end = all.empty() ? m_tree[*id].nameRange.upper : all.back().range.upper;
        if (!attribute) {
            return planAt(*id, TextEdit::insert(u" " + attributeSource(set.name, set.value), end));
        }
        if (attribute->quote == 0) {
            return planAt(*id, {attribute->range, attributeSource(set.name, set.value)});
        }
        return planAt(*id, {attribute->value, Escaping::escapeAttribute(set.value, attribute->quote)});
    }

    Result operator()(const TreeMutation::RenameAttribute& rename) const {
        const auto id = elementTaking(rename.newName, rename.path);
        if (!id) {
            return failure(id.error());
        }
        const auto attribute = m_tree.attribute(rename.oldName, *id);
        if (!attribute) {
            return failure(NodeNotFound());
        }
        if (rename.newName != rename.oldName && m_tree.attribute(rename.newName, *id)) {
            return failure(DuplicateAttribute{repaired(rename.newName)});
        }
        return planAt(*id, {attribute->name, rename.newName});
    }

    /// Also removes the white space before the attribute, unless nothing else separates two names.
    Result operator()(const TreeMutation::RemoveAttribute& remove) const {
        const auto id = element(remove.path);
        if (!id) {
            return failure(id.error());
        }
        Offset previousEnd = m_tree[*id].nameRange.upper;
        for (const AttributeSpan& attribute : m_tree.attributesOf(*id)) {
            const Offset end = attribute.range.upper;
            if (m_text.equals(attribute.name, remove.name)) {
                const Offset start = wouldJoinNames(previousEnd, end) ? attribute.range.lower : previousEnd;
                return planAt(*id, TextEdit::deleteRange({start, end}));
            }
            previousEnd = end;
        }
        return failure(NodeNotFound());
    }

    Result operator()(const TreeMutation::SetText& set) const {
        const auto id = node(set.path);
        if (!id) {
            return failure(id.error());
        }
        const TreeNode& node = m_tree[*id];
        switch (node.kind) {
        case Kind::element:
            return planAt(*id, node.flags.contains(TreeNode::selfClosing)
                                   ? fillSelfClosing(*id, Escaping::escapeText(set.text), m_tree)
                                   : TextEdit{node.contentRange, Escaping::escapeText(set.text)});
        case Kind::text:
            return planAt(*id, {node.range, Escaping::escapeText(set.text)});
        case Kind::comment:
            return planAt(*id, {node.contentRange, commentText(set.text)});
        case Kind::cdata:
            return planAt(*id, {node.contentRange, cdataText(set.text)});
        case Kind::document:
        case Kind::instruction:
        case Kind::doctype:
            break;
        }
        return failure(InvalidTarget());
    }

    Result operator()(const TreeMutation::InsertElement& insert) const {
        if (!Lexer::isValidName(insert.name)) {
            return invalidName(insert.name);
        }
        const auto target = node(insert.target);
        if (!target) {
            return failure(target.error());
        }
        return insertion(startTag(insert.name) + endTag(insert.name), *target, insert.placement);
    }

    Result operator()(const TreeMutation::InsertComment& insert) const {
        const auto target = node(insert.target);
        if (!target) {
            return failure(target.error());
        }
        return insertion(u"<!-- " + commentText(insert.text) + u" -->", *target, insert.placement);
    }

    Result operator()(const TreeMutation::Delete& remove) const {
        const auto id = nodeBelowDocument(remove.path);
        if (!id) {
            return failure(id.error());
        }
        const TextEdit deletion = TextEdit::deleteRange(NodeLayout(m_tree, m_indent).deletionRange(*id));
        return Plan{{deletion}, selectionAfter(deletion, *id)};
    }

    Result operator()(const TreeMutation::Duplicate& duplicate) const {
        const auto id = nodeBelowDocument(duplicate.path);
        if (!id) {
            return failure(id.error());
        }
        return insertion(std::u16string(m_tree.source(*id)), *id, Placement::after);
    }

    Result operator()(const TreeMutation::Move& move) const {
        const auto id = nodeBelowDocument(move.path);
        if (!id) {
            return failure(id.error());
        }
        if (move.target == move.path || move.path.contains(move.target)) {
            return failure(InvalidTarget());
        }
        const auto target = node(move.target);
        if (!target) {
            return failure(target.error());
        }
        NodeLayout layout(m_tree, m_indent);
        const bool isInside =
            move.placement == Placement::firstChild || move.placement == Placement::lastChild;
        const std::u16string indentation =
            isInside ? layout.childIndentation(*target) : layout.lineIndentation(*target);
        const std::u16string source =
            reindented(m_tree.source(*id), layout.lineIndentation(*id), indentation);
        const auto insertion = NodeInsertion::plan(source, *target, move.placement, m_tree, layout);
        if (!insertion) {
            return failure(NotAnElement());
        }
        const TextEdit deletion = TextEdit::deleteRange(layout.deletionRange(*id));
        const SourceRange inserted = insertion->edit.range;
        if (deletion.range.lower < inserted.upper && inserted.lower < deletion.range.upper) {
            return failure(InvalidTarget());
        }
        return Plan{{insertion->edit, deletion}, map(inserted.lower, deletion) + insertion->prefixLength};
    }

    Result operator()(const TreeMutation::Wrap& wrap) const {
        if (!Lexer::isValidName(wrap.name)) {
            return invalidName(wrap.name);
        }
        const auto id = nodeBelowDocument(wrap.path);
        if (!id) {
            return failure(id.error());
        }
        NodeLayout layout(m_tree, m_indent);
        const std::u16string outer = layout.lineIndentation(*id);
        const std::u16string inner = outer + layout.indentUnit();
        std::u16string replacement = startTag(wrap.name);
        replacement.append(layout.lineBreak()).append(inner);
        replacement.append(reindented(m_tree.source(*id), outer, inner));
        replacement.append(layout.lineBreak()).append(outer).append(endTag(wrap.name));
        return planAt(*id, {m_tree[*id].range, std::move(replacement)});
    }

private:
    std::expected<NodeID, Failure> node(const NodePath& path) const {
        const std::optional<NodeID> id = m_tree.resolve(path);
        return id ? std::expected<NodeID, Failure>(*id) : failure(NodeNotFound());
    }

    std::expected<NodeID, Failure> element(const NodePath& path) const {
        const auto id = node(path);
        return id && !m_tree[*id].isElement() ? failure(NotAnElement()) : id;
    }

    /// The element at `path`; fails if `newName` is not a valid name.
    std::expected<NodeID, Failure> elementTaking(const std::u16string& newName, const NodePath& path) const {
        if (!Lexer::isValidName(newName)) {
            return invalidName(newName);
        }
        return element(path);
    }

    std::expected<NodeID, Failure> nodeBelowDocument(const NodePath& path) const {
        const auto id = node(path);
        return id && *id == NodeID::document() ? failure(InvalidTarget()) : id;
    }

    /// Whether the units before `end` and from `start` on would form one name without the units between them.
    /// This occurs only in malformed markup: for example, if an unquoted value directly follows the
    /// attribute.
    bool wouldJoinNames(Offset end, Offset start) const {
        const std::u16string_view text = m_text.units();
        return start < text.size() && UnitScan::isName(text[end - 1]) && UnitScan::isName(text[start]);
    }

    /// A plan with one edit that does not move the start of `id`, and that selects `id`.
    Plan planAt(NodeID id, TextEdit edit) const { return {{std::move(edit)}, m_tree[id].range.lower}; }

    /// Inserts the source of a node into or beside `target`, and selects the new node.
    Result insertion(const std::u16string& source, NodeID target, Placement placement) const {
        NodeLayout layout(m_tree, m_indent);
        const auto insertion = NodeInsertion::plan(source, target, placement, m_tree, layout);
        if (!insertion) {
            return failure(NotAnElement());
        }
        return Plan{{insertion->edit}, insertion->nodeStart()};
    }

    /// Where the next sibling of the deleted node starts; without one, the previous sibling; without one, the
    /// parent. None for the document.
    std::optional<Offset> selectionAfter(const TextEdit& deletion, NodeID deleted) const {
        const NodeID next = m_tree[deleted].nextSibling;
        const std::optional<NodeID> previous = m_tree.previousSibling(deleted);
        const NodeID parent = m_tree[deleted].parent;
        if (!next.isNone()) {
            const Offset start = m_tree[next].range.lower;
            return deletion.range.contains(start) ? textStart(previous, parent) : map(start, deletion);
        }
        const NodeID selected = previous.value_or(parent);
        return selected == NodeID::document() ? std::nullopt
                                              : std::optional(map(m_tree[selected].range.lower, deletion));
    }

    /// Where a text starts after a deletion that includes its start: it then also includes all units left
    /// between `previous` and itself, and `previous` if that is a text.
    Offset textStart(std::optional<NodeID> previous, NodeID parent) const {
        if (!previous) {
            return m_tree[parent].contentRange.lower;
        }
        const TreeNode& node = m_tree[*previous];
        return node.kind == Kind::text ? node.range.lower : node.range.upper;
    }

    static Offset map(Offset offset, const TextEdit& edit) {
        return static_cast<Offset>(TextEdit::map(offset, std::span(&edit, 1)));
    }

    const DocumentTree& m_tree;
    const SourceText& m_text;
    IndentStyle m_indent;
};

} // namespace

std::expected<Plan, Failure> MutationPlanner::plan(const TreeMutation& mutation, const DocumentTree& in,
                                                   IndentStyle indent) {
    return std::visit(Planner(in, indent), mutation.value);
}

std::size_t std::hash<Plan>::operator()(const Plan& plan) const noexcept {
    return hashOf(plan.selectOffset, hashOfList(plan.edits));
}

std::size_t std::hash<Failure>::operator()(const Failure& failure) const noexcept {
    const auto name = [](const auto& cause) {
        if constexpr (requires { cause.name; }) {
            return cause.name;
        } else {
            return std::u16string();
        }
    };
    return hashOf(failure.index(), std::visit(name, failure));
}
