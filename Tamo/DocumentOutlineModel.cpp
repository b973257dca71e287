#include "DocumentOutlineModel.h"

#include <QFont>
#include <QFontMetrics>
#include <QGuiApplication>
#include <QPalette>
#include <QSize>

#include <algorithm>

namespace {

constexpr std::size_t textPreviewLimit = 100;
constexpr int rowPadding = 6;
constexpr std::size_t cdataPreviewLimit = 80;
constexpr std::size_t nameLimit = 200; ///< Units of a name; laying out a longer one takes its time.

QString preview(const DocumentTree& tree, NodeID node, std::size_t limit) {
    return QString::fromStdU16String(tree.preview(node, limit).value_or(std::u16string()));
}

/// The name of an element or instruction, its end left out where it is very long.
QString name(const DocumentTree& tree, NodeID node) {
    const SourceRange whole = tree[node].nameRange;
    if (whole.length() <= nameLimit) {
        return QString::fromStdU16String(tree.text.string(whole));
    }
    const SourceRange start = SourceRange::at(whole.lower, nameLimit);
    return QString::fromStdU16String(tree.text.string(start)) + u'…';
}

QString label(const DocumentTree& tree, NodeID node) {
    using Kind = TreeNode::Kind;
    switch (tree[node].kind) {
    case Kind::document:
        return {};
    case Kind::element: {
        const QString content = preview(tree, node, textPreviewLimit);
        return content.isEmpty() ? name(tree, node) : name(tree, node) + QStringLiteral("  ") + content;
    }
    case Kind::text:
    case Kind::comment:
    case Kind::doctype:
        return preview(tree, node, textPreviewLimit);
    case Kind::cdata:
        return QStringLiteral("CDATA ") + preview(tree, node, cdataPreviewLimit);
    case Kind::instruction:
        return QStringLiteral("?") + name(tree, node);
    }
    return {};
}

QFont font(TreeNode::Kind kind) {
    QFont font;
    font.setItalic(kind == TreeNode::Kind::comment);
    return font;
}

QColor color(TreeNode::Kind kind) {
    const bool isPrimary = kind == TreeNode::Kind::element || kind == TreeNode::Kind::text;
    return QGuiApplication::palette().color(isPrimary ? QPalette::Text : QPalette::PlaceholderText);
}

} // namespace

void DocumentOutlineModel::setTree(const DocumentTree* tree) {
    beginResetModel();
    m_tree = tree;
    m_children.clear();
    endResetModel();
}

NodeID DocumentOutlineModel::node(const QModelIndex& of) const {
    return of.isValid() ? NodeID{static_cast<std::uint32_t>(of.internalId())} : NodeID::document();
}

QModelIndex DocumentOutlineModel::index(NodeID of) const {
    if (m_tree == nullptr || of == NodeID::document()) {
        return {};
    }
    // Children stand in the order of their numbers.
    const auto& siblings = children((*m_tree)[of].parent);
    const auto found = std::ranges::lower_bound(siblings, of);
    return createIndex(static_cast<int>(found - siblings.begin()), 0, quintptr(of.raw));
}

QModelIndex DocumentOutlineModel::index(int row, int column, const QModelIndex& parent) const {
    if (column != 0 || row < 0 || row >= rowCount(parent)) {
        return {};
    }
    return createIndex(row, column, quintptr(children(node(parent))[static_cast<std::size_t>(row)].raw));
}

QModelIndex DocumentOutlineModel::parent(const QModelIndex& child) const {
    return child.isValid() && m_tree != nullptr ? index((*m_tree)[node(child)].parent) : QModelIndex();
}

int DocumentOutlineModel::rowCount(const QModelIndex& parent) const {
    return m_tree != nullptr ? static_cast<int>((*m_tree)[node(parent)].childCount) : 0;
}

int DocumentOutlineModel::columnCount(const QModelIndex&) const { return 1; }

bool DocumentOutlineModel::hasChildren(const QModelIndex& parent) const { return rowCount(parent) != 0; }

QVariant DocumentOutlineModel::data(const QModelIndex& index, int role) const {
    if (m_tree == nullptr || !index.isValid()) {
        return {};
    }
    const TreeNode::Kind kind = (*m_tree)[node(index)].kind;
    switch (role) {
    case Qt::DisplayRole:
        return label(*m_tree, node(index));
    case Qt::SizeHintRole:
        return QSize(0, QFontMetrics(QGuiApplication::font()).height() + rowPadding);
    case Qt::FontRole:
        return font(kind);
    case Qt::ForegroundRole:
        return color(kind);
    default:
        return {};
    }
}

const std::vector<NodeID>& DocumentOutlineModel::children(NodeID of) const {
    auto& listed = m_children[of];
    if (listed.empty() && (*m_tree)[of].hasChildren()) {
        listed.reserve((*m_tree)[of].childCount);
        std::ranges::copy(m_tree->children(of), std::back_inserter(listed));
    }
    return listed;
}
