#include "AttributeTableModel.h"

#include "Escaping.h"

#include <algorithm>

namespace {

constexpr Offset longestShown = 512; ///< Units of a name or value in a cell that is not edited.
constexpr Offset longestEdited = 65'536;
constexpr Offset longestHashed = 256;

SourceRange startOf(SourceRange range, Offset length) {
    return {range.lower, range.lower + std::min(range.length(), length)};
}

QString shown(const DocumentTree& tree, SourceRange range) {
    const SourceRange start = startOf(range, longestShown);
    const QString text = QString::fromStdU16String(Escaping::unescape(tree.text.string(start)));
    return start == range ? text : text + u'…';
}

std::vector<std::size_t> nameHashes(const DocumentTree& tree, NodeID node) {
    std::vector<std::size_t> hashes;
    for (const AttributeSpan& attribute : tree.attributesOf(node)) {
        const SourceRange start = startOf(attribute.name, longestHashed);
        hashes.push_back(std::hash<std::u16string_view>()(tree.text.units(start)) + attribute.name.length());
    }
    return hashes;
}

} // namespace

std::span<const AttributeSpan> AttributeTableModel::attributes() const {
    return m_tree == nullptr ? std::span<const AttributeSpan>() : m_tree->attributesOf(m_node);
}

void AttributeTableModel::setNode(const DocumentTree* tree, NodeID node) {
    std::vector<std::size_t> hashes = tree == nullptr ? std::vector<std::size_t>() : nameHashes(*tree, node);
    const int before = count();
    const auto now = static_cast<int>(hashes.size());
    // The first row with another name is where one was put in or taken out.
    const auto difference = std::ranges::mismatch(m_nameHashes, hashes).in1;
    const auto first = static_cast<int>(difference - m_nameHashes.begin());
    const auto take = [&] {
        m_tree = tree;
        m_node = node;
        m_nameHashes = std::move(hashes);
    };
    if (now > before) {
        beginInsertRows({}, first, first + now - before - 1);
        take();
        endInsertRows();
    } else if (now < before) {
        beginRemoveRows({}, first, first + before - now - 1);
        take();
        endRemoveRows();
    } else {
        take();
    }
    if (now != 0) {
        emit dataChanged(index(0, name), index(now - 1, removal));
    }
}

std::u16string AttributeTableModel::attributeName(int row) const {
    return m_tree->text.string(attributes()[static_cast<std::size_t>(row)].name);
}

QString AttributeTableModel::editedText(const QModelIndex& cell) const {
    const AttributeSpan& attribute = attributes()[static_cast<std::size_t>(cell.row())];
    const SourceRange range = cell.column() == name ? attribute.name : attribute.value;
    const std::u16string start = m_tree->text.string(startOf(range, longestEdited + 1));
    const bool isRead = cell.column() == value && range.length() <= longestEdited;
    return QString::fromStdU16String(isRead ? Escaping::unescape(start) : start);
}

int AttributeTableModel::rowCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : count(); }

int AttributeTableModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : removal + 1;
}

QVariant AttributeTableModel::data(const QModelIndex& index, int role) const {
    const AttributeSpan& attribute = attributes()[static_cast<std::size_t>(index.row())];
    const bool isText = role == Qt::DisplayRole || role == Qt::ToolTipRole || role == Qt::AccessibleTextRole;
    switch (index.column()) {
    case name:
        return isText && role != Qt::ToolTipRole ? shown(*m_tree, attribute.name) : QVariant();
    case value:
        return isText && role != Qt::ToolTipRole ? shown(*m_tree, attribute.value) : QVariant();
    default:
        return isText && role != Qt::DisplayRole ? QStringLiteral("Quitar atributo") : QVariant();
    }
}

QVariant AttributeTableModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole) {
        return {};
    }
    return section == name ? QStringLiteral("Nombre") : section == value ? QStringLiteral("Valor") : QString();
}

Qt::ItemFlags AttributeTableModel::flags(const QModelIndex& index) const {
    const Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    return index.column() == removal ? flags : flags | Qt::ItemIsEditable;
}
