#include "OutlineState.h"

#include <utility>
#include <vector>

namespace {

using namespace std::chrono_literals;

constexpr auto searchDelay = 150ms;
constexpr std::size_t fewNodes = 50'000; ///< Their rows are made within a millisecond or two.
constexpr std::size_t fewSteps = 8;

/// `document`, unless it stands for the text before any parse: nothing is carried from there.
std::shared_ptr<const ParsedDocument> parsed(const std::shared_ptr<const ParsedDocument>& document) {
    return document->generation >= 0 ? document : nullptr;
}

} // namespace

OutlineState::OutlineState(std::shared_ptr<const ParsedDocument> document, QObject* parent)
    : QObject(parent), m_document(std::move(document)), m_outline(std::make_shared<TreeOutline>()) {
    m_searchDelay.setSingleShot(true);
    m_searchDelay.setTimerType(Qt::PreciseTimer);
    m_searchDelay.setInterval(searchDelay);
    connect(&m_searchDelay, &QTimer::timeout, this, &OutlineState::search);
}

OutlineContents::Request OutlineState::request() {
    m_changes.clear();
    m_isRequested = true;
    return {m_isFirstExpansionDue ? nullptr : m_outline,
            m_shownFilter,
            {},
            {},
            parsed(m_document),
            m_edits,
            m_absent};
}

OutlineContents OutlineState::take(std::shared_ptr<const ParsedDocument> document, OutlineContents contents) {
    m_task.cancel();
    m_isRequested = false;
    // While the worker was at it, the user may have gone on.
    std::vector<Change> changes = std::exchange(m_changes, {});
    std::vector<NodeID> changed;
    for (const Change& change : changes) {
        changed.push_back(resolve(change.path).value_or(NodeID::none()));
    }
    m_before = {parsed(std::exchange(m_document, std::move(document))), std::exchange(m_edits, {})};
    std::swap(m_rows, contents.rows);
    m_matchCount = contents.matchCount;
    m_absent = contents.request.absent;
    if (m_isFirstExpansionDue) {
        m_isFirstExpansionDue = tree().nodes.size() == 1;
    }
    // It may be changed where nothing else holds it.
    const std::shared_ptr<const TreeOutline> old = m_outline;
    m_outline = std::const_pointer_cast<TreeOutline>(std::exchange(contents.request.outline, old));
    for (std::size_t at = 0; at < changes.size(); ++at) {
        if (!changed[at].isNone()) {
            changes[at].path = carried(changes[at].path, changed[at]);
        }
        change(std::move(changes[at]));
    }
    const bool isOutlineCurrent = changes.empty();
    if (m_filter.isEmpty()) {
        if (isFiltered() || !isOutlineCurrent) {
            if (!makeRowsIfFew()) {
                makeRowsElsewhere(m_filter);
            }
        }
    } else if (m_filter != m_shownFilter && !m_searchDelay.isActive()) {
        m_searchDelay.start();
    }
    return contents;
}

TreeOutline::Rows OutlineState::giveUpTree(std::shared_ptr<const ParsedDocument> document) {
    m_task.cancel();
    m_isRequested = false;
    m_changes.clear();
    m_document = std::move(document);
    m_edits = {};
    m_before = {};
    m_matchCount = 0;
    return std::exchange(m_rows, {});
}

// The filter

void OutlineState::setFilter(const QString& filter) {
    m_filter = filter;
    m_task.cancel();
    m_searchDelay.stop();
    filter.isEmpty() ? makeRows() : m_searchDelay.start();
}

void OutlineState::search() { makeRowsElsewhere(m_filter); }

// The rows

void OutlineState::makeRows() {
    if (makeRowsIfFew()) {
        emit rowsChanged();
    } else {
        makeRowsElsewhere(m_filter);
    }
}

bool OutlineState::makeRowsIfFew() {
    m_task.cancel();
    if (tree().nodes.size() > fewNodes) {
        return false;
    }
    m_rows = m_outline->rows(tree(), std::move(m_rows));
    m_shownFilter.clear();
    m_matchCount = 0;
    return true;
}

void OutlineState::makeRowsElsewhere(const QString& filter) {
    m_task.start(
        [document = m_document, request = OutlineContents::Request{m_outline, filter, {}, {}}](
            const std::stop_token& stop) { return OutlineContents::make(request, document->tree, stop, {}); },
        [this](OutlineContents contents) { show(std::move(contents)); }, [this] { emit lackedMemory(); });
}

void OutlineState::show(OutlineContents contents) {
    if (contents.request.filter != m_filter) {
        return;
    }
    m_rows = std::move(contents.rows);
    m_shownFilter = contents.request.filter;
    m_matchCount = contents.matchCount;
    if (const bool isOutdated = !isFiltered() && contents.request.outline != m_outline; isOutdated) {
        contents = {};
        makeRowsElsewhere(m_filter);
    }
    emit rowsChanged();
}

// What is expanded

TreeOutline& OutlineState::changeableOutline() {
    if (m_outline.use_count() > 1) {
        m_outline = std::make_shared<TreeOutline>(*m_outline);
    }
    // The count alone does not order a worker's last reads before our writes; giving back a reference does.
    std::shared_ptr<TreeOutline>(m_outline).reset();
    return *m_outline;
}

void OutlineState::setExpanded(const NodePath& path, bool isExpanded) {
    if (const auto row = isFiltered() ? std::nullopt : m_rows.row(path, tree())) {
        setRowExpanded(*row, isExpanded);
    } else if (m_outline->expanded.contains(path) != isExpanded) {
        change({isExpanded ? Change::Kind::expand : Change::Kind::collapse, path});
    }
}

void OutlineState::change(Change change) {
    NodePathSet& expanded = changeableOutline().expanded;
    switch (change.kind) {
    case Change::Kind::expand:
        expanded.insert(change.path);
        break;
    case Change::Kind::collapse:
        expanded.erase(change.path);
        break;
    case Change::Kind::expandAncestors:
        expanded.insertAncestors(change.path);
        break;
    }
    note(std::move(change));
}

/// What is changed while a worker carries the expansion to the next tree is to be changed there too.
void OutlineState::note(Change change) {
    if (m_isRequested) {
        m_changes.push_back(std::move(change));
    }
}

void OutlineState::setRowExpanded(std::size_t row, bool isExpanded) {
    if (isFiltered()) {
        change({isExpanded ? Change::Kind::expand : Change::Kind::collapse, m_rows.path(row, tree())});
    } else if (m_rows[row].isExpanded != isExpanded) {
        note({isExpanded ? Change::Kind::expand : Change::Kind::collapse, m_rows.path(row, tree())});
        TreeOutline& outline = changeableOutline();
        isExpanded ? outline.expand(row, m_rows, tree()) : outline.collapse(row, m_rows, tree());
        emit rowsChanged();
    }
}

void OutlineState::showAncestors(const NodePath& path, NodeID node) {
    if (isFiltered()) {
        change({Change::Kind::expandAncestors, path});
        return;
    }
    // From the node up to the first one that is shown, or as far as it is worth the while.
    std::vector<NodeID> hidden;
    for (NodeID around = node;
         around != NodeID::document() && !m_rows.row(around) && hidden.size() <= fewSteps;
         around = tree()[around].parent) {
        hidden.push_back(around);
    }
    if (hidden.empty()) {
        return;
    }
    if (hidden.size() > fewSteps || m_task.isRunning()) {
        change({Change::Kind::expandAncestors, path});
        makeRows();
        return;
    }
    note({Change::Kind::expandAncestors, path});
    TreeOutline& outline = changeableOutline();
    for (auto step = hidden.rbegin(); step != hidden.rend(); ++step) {
        if (const auto row = m_rows.row(tree()[*step].parent)) {
            outline.expand(*row, m_rows, tree());
        }
    }
    emit rowsChanged();
}

// Paths

NodePath OutlineState::path(NodeID of) const {
    std::vector<NodeID> hidden;
    std::optional<std::size_t> row;
    for (NodeID node = of; node != NodeID::document(); node = tree()[node].parent) {
        row = m_rows.row(node);
        if (row) {
            break;
        }
        hidden.push_back(node);
    }
    NodePath path = row ? m_rows.path(*row, tree()) : NodePath();
    for (auto node = hidden.rbegin(); node != hidden.rend(); ++node) {
        path.indices.push_back(static_cast<std::uint32_t>(tree().indexInParent(*node)));
    }
    return path;
}

std::optional<NodeID> OutlineState::resolve(const NodePath& path) const {
    if (const auto row = m_rows.row(path, tree())) {
        return m_rows[*row].node;
    }
    return tree().resolve(path);
}

NodePath OutlineState::carried(const NodePath& path) const {
    const auto node = m_before.document != nullptr ? m_before.document->tree.resolve(path) : std::nullopt;
    return node ? carried(path, *node) : path;
}

NodePath OutlineState::carried(const NodePath& path, NodeID node) const {
    if (m_before.document == nullptr) {
        return path;
    }
    const auto found = NodeCarry(m_before.document->tree, tree(), m_before.edits).survivor(node);
    return found ? this->path(*found) : path;
}
