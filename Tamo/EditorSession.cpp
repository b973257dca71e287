#include "EditorSession.h"

#include "KeptReferences.h"
#include "MemoryShortage.h"
#include "MutationFailureMessage.h"
#include "NodeCopy.h"
#include "PatientWait.h"
#include "ShownText.h"
#include "TypingAssistant.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QPointer>
#include <QScopeGuard>
#include <QScopedValueRollback>

#include <algorithm>
#include <limits>
#include <new>
#include <ranges>
#include <unordered_set>
#include <utility>

namespace {

using namespace std::chrono_literals;
using Placement = TreeMutation::Placement;

constexpr auto typingPause = 120ms;
constexpr auto pauseWithoutMemory = 2s; ///< Each try may take all the memory for a moment.
constexpr auto patience = 200ms;
constexpr Offset quickText = 256 * 1024;     ///< Of a text this long nothing takes time.
constexpr qsizetype longestActionName = 120; ///< Names in the title of a fix may be of any length.

/// How far around the selection a comment is looked for; more before it than after.
constexpr Offset commentReachBefore = 65'536;
constexpr Offset commentReachAfter = 4'096;

/// `name`, or with the first number from 2 on that makes it different from all of `taken`.
std::u16string distinctName(const std::u16string& name,
                            const std::unordered_set<std::u16string_view>& taken) {
    std::u16string distinct = name;
    for (std::size_t number = 2; taken.contains(distinct); ++number) {
        distinct = name + QString::number(number).toStdU16String();
    }
    return distinct;
}

/// Why the memory refuses a command.
QString shortageMessage(const QString& actionName) {
    return memoryShortage(QStringLiteral("“%1”").arg(actionName));
}

/// Whether a second tree as large as `tree` is too much beside it: where there is hardly any text between the
/// markup, as no document has that is written for a reader.
bool takesMuchMemory(const DocumentTree& tree) {
    constexpr std::size_t small = std::size_t{4} << 20;
    constexpr std::size_t mostPerUnit = 20;
    const std::size_t size = tree.nodes.size() * sizeof(TreeNode) +
                             tree.attributes.size() * sizeof(AttributeSpan) +
                             tree.diagnostics.size() * sizeof(DiagnosticRecord);
    return size > small && size > mostPerUnit * tree.text.count();
}

/// The paths that `mutation` holds.
std::vector<NodePath*> pathsOf(TreeMutation& mutation) {
    std::vector<NodePath*> paths;
    std::visit(
        [&paths](auto& specific) {
            if constexpr (requires { specific.path; }) {
                paths.push_back(&specific.path);
            }
            if constexpr (requires { specific.target; }) {
                paths.push_back(&specific.target);
            }
        },
        mutation.value);
    return paths;
}

bool changesText(std::span<const TextEdit> edits, const Rope& text) {
    return std::ranges::any_of(edits, [&text](const TextEdit& edit) {
        return edit.delta() != 0 || text.units(edit.range) != edit.replacement;
    });
}

/// By how much the text grows at most while `edits` are made one after the other, those that add perhaps first.
std::int64_t mostGrowth(std::span<const TextEdit> edits) {
    std::int64_t added = 0;
    for (const TextEdit& edit : edits) {
        added += std::max<std::int64_t>(edit.delta(), 0);
    }
    return added;
}

/// Takes over the units without copying them.
SourceText sourceText(std::u16string units) {
    const auto owner = std::make_shared<const std::u16string>(std::move(units));
    return {std::shared_ptr<const char16_t[]>(owner, owner->data()), owner->size()};
}

} // namespace

QString EditorSession::rawValue(Mode mode) {
    switch (mode) {
    case Mode::text:
        return QStringLiteral("text");
    case Mode::visual:
        return QStringLiteral("visual");
    case Mode::split:
        return QStringLiteral("split");
    }
    std::unreachable();
}

EditorSession::EditorSession(TextBuffer& buffer, const QString& encodingName, QObject* parent)
    : QObject(parent), m_buffer(buffer), m_encodingName(encodingName),
      m_isEmptyDocument(buffer.text().isEmpty()), m_isUntouched(m_isEmptyDocument),
      m_showsGallery(m_isEmptyDocument), m_parsed(ParsedDocument::make()), m_fixTask(buffer),
      m_outline(m_parsed) {
    connect(&buffer.storage(), &TextStorage::editProcessed, this, &EditorSession::noteEdit);
    m_scheduler.setOnMove(
        [this](const Rope& same, std::int64_t generation) { takeMovedText(same, generation); });
    connect(&m_outline, &OutlineState::rowsChanged, this, &EditorSession::rowsChanged);
    connect(&m_outline, &OutlineState::lackedMemory, this, &EditorSession::filterLackedMemory);
    connect(&m_fixTask, &FixTask::finished, this, [this] {
        if (!isTreeCurrent()) {
            reparse(0ms);
        }
    });
}

EditorSession::~EditorSession() { m_buffer.setOnChange({}); }

void EditorSession::start() {
    if (!m_isStarted) {
        m_isStarted = true;
        m_buffer.setOnChange([this] { textChanged(); });
        reparse(0ms);
    }
}

// What the user chose

void EditorSession::setMode(Mode mode) {
    if (std::exchange(m_mode, mode) != mode) {
        emit modeChanged();
    }
}

void EditorSession::setFilter(const QString& filter) {
    if (m_filter != filter) {
        m_filter = filter;
        if (const auto node = selectedNode(); node && filter.trimmed().isEmpty()) {
            // A node that was chosen among those found keeps its row.
            m_outline.showAncestors(*m_selection, *node);
        }
        m_outline.setFilter(filter.trimmed());
        emit filterChanged();
    }
}

void EditorSession::setNamePrompt(const std::optional<NamePrompt>& prompt) {
    if (m_namePrompt != prompt) {
        m_namePrompt = prompt;
        emit namePromptChanged();
    }
}

void EditorSession::setEncodingName(const QString& encodingName) {
    if (m_encodingName != encodingName) {
        m_encodingName = encodingName;
        emit encodingNameChanged();
    }
}

void EditorSession::setErrorMessage(const std::optional<QString>& message) {
    if (m_errorMessage != message) {
        m_errorMessage = message;
        emit errorMessageChanged();
    }
}

void EditorSession::setSelection(const std::optional<NodePath>& selection) {
    if (m_selection != selection) {
        m_selection = selection;
        ++m_selectionSerial;
        emit selectionChanged();
    }
}

/// Reveals what was just selected elsewhere: the caret, which goes there, is not to select anything itself.
void EditorSession::revealSelection(SourceRange range) {
    const QScopedValueRollback ours(m_isCaretOurs, true);
    requestReveal(range);
}

void EditorSession::requestReveal(SourceRange range) {
    m_revealRequest = RevealRequest{range, m_revealRequest ? m_revealRequest->serial + 1 : 1};
    emit revealRequestChanged();
}

void EditorSession::setBusy(bool isBusy) {
    if (std::exchange(m_isBusy, isBusy) != isBusy) {
        emit isBusyChanged();
    }
}

// From the text to the tree

void EditorSession::textChanged() {
    m_isUntouched = false;
    if (const bool isEmpty = m_buffer.text().isEmpty(); isEmpty != m_isEmptyDocument) {
        m_isEmptyDocument = isEmpty;
        emit isEmptyDocumentChanged();
    }
    updateGallery();
    reparse(m_lacksMemory ? pauseWithoutMemory : typingPause);
}

void EditorSession::noteEdit(SourceRange edited, std::int64_t changeInLength) {
    const std::int64_t lengthBefore = std::int64_t(edited.length()) - changeInLength;
    const SourceRange replaced = SourceRange::at(edited.lower, lengthBefore);
    m_editsSinceParse.add(replaced, edited.length());
    m_outline.noteEdit(replaced, edited.length());
    if (m_pendingSelectOffset && replaced.contains(*m_pendingSelectOffset)) {
        m_pendingSelectOffset.reset();
    } else if (m_pendingSelectOffset && replaced.upper <= *m_pendingSelectOffset) {
        m_pendingSelectOffset = static_cast<Offset>(*m_pendingSelectOffset + changeInLength);
    }
}

/// Text and tree share one array, instead of having one each.
void EditorSession::takeMovedText(const Rope& same, std::int64_t generation) {
    if (generation == m_buffer.generation()) {
        ReparseScheduler::free(m_buffer.moveTo(same));
    }
}

ReparseScheduler::Snapshot EditorSession::snapshot() {
    if (takesMuchMemory(m_parsed->tree)) {
        giveUpTree();
    }
    OutlineContents::Request outline = m_outline.request();
    outline.selection = m_selection;
    outline.selectOffset = m_pendingSelectOffset;
    return {m_buffer.text(), m_buffer.generation(), std::move(outline)};
}

void EditorSession::reparse(std::chrono::milliseconds delay) {
    m_scheduler.schedule(
        delay, [this] { return snapshot(); },
        [this](ReparseScheduler::Result result) {
            if (result.document != nullptr) {
                deliver(std::move(result));
            } else if (hasTree()) {
                // In the place of the old tree there may be room for the new one.
                giveUpTree();
                reparse(0ms);
            } else {
                setLacksMemory(true);
            }
        });
}

bool EditorSession::bringTreeUpToDate(const std::vector<NodePath*>& paths) {
    if (isTreeCurrent()) {
        return true;
    }
    const auto carrying = connect(this, &EditorSession::treeChanged, this, [this, &paths] {
        for (NodePath* const path : paths) {
            *path = carried(*path);
        }
    });
    const auto disconnecting = qScopeGuard([&carrying] { disconnect(carrying); });
    const auto parseNow = [this] {
        return m_scheduler.parseNow(snapshot(), [this](const Work& parse) { runWork(parse); });
    };
    ReparseScheduler::Result result = parseNow();
    if (result.document == nullptr && hasTree()) {
        giveUpTree();
        result = parseNow();
    }
    if (result.document == nullptr) {
        setLacksMemory(true);
        setErrorMessage(memoryShortage(QStringLiteral("analizar el documento")));
        return false;
    }
    deliver(std::move(result));
    return true;
}

/// Has no tree until the next parse, which may use the memory of this one.
void EditorSession::giveUpTree() {
    ReparseScheduler::Result old;
    old.document = std::exchange(m_parsed, ParsedDocument::make());
    m_editsSinceParse = {};
    old.outline.rows = m_outline.giveUpTree(m_parsed);
    m_vocabulary.reset();
    emit treeChanged();
    m_scheduler.recycle(std::move(old));
    emit treeGenerationChanged();
    emit errorNodesChanged();
    emit rowsChanged();
}

void EditorSession::setLacksMemory(bool lacksMemory) {
    if (std::exchange(m_lacksMemory, lacksMemory) != lacksMemory) {
        emit lacksMemoryChanged();
    }
}

void EditorSession::deliver(ReparseScheduler::Result result) {
    setLacksMemory(false);
    // A result that an edit overtook is never delivered, so none of the edits is newer than this tree.
    m_editsSinceParse = {};
    std::swap(m_parsed, result.document);
    const bool isGenerationNew = m_parsed->generation != result.document->generation;
    const bool areErrorsNew = m_parsed->errorNodes != result.document->errorNodes;
    const std::optional<OutlineContents::Place> toSelect =
        m_pendingSelectOffset && m_pendingSelectOffset == result.outline.request.selectOffset
            ? std::move(result.outline.toSelect)
            : std::nullopt;
    m_pendingSelectOffset.reset();
    const bool isSelectionFound = result.outline.request.selection == m_selection;
    std::optional<NodePath> selection = std::move(result.outline.selection);
    result.outline = m_outline.take(m_parsed, std::exchange(result.outline, {}));
    if (!isSelectionFound) {
        // Another node was selected while the worker looked for the one before.
        selection = m_selection ? std::optional(carried(*m_selection)) : std::nullopt;
        selection = selection && m_outline.resolve(*selection) ? selection : std::nullopt;
    }

    // All slots find all of it new.
    m_selectionSerial += selection.has_value() != m_selection.has_value() ? 1 : 0;
    if (toSelect) {
        m_selectionSerial += selection != toSelect->path ? 1 : 0;
        m_isCaretNews = false;
        selection = toSelect->path;
    }
    const bool isSelectionNew = selection != m_selection;
    m_selection = std::move(selection);
    emit treeChanged();
    m_outline.forgetBefore();
    m_scheduler.recycle(std::move(result));
    if (isGenerationNew) {
        emit treeGenerationChanged();
    }
    if (areErrorsNew) {
        emit errorNodesChanged();
    }
    emit rowsChanged();
    if (isSelectionNew) {
        emit selectionChanged();
    }
    if (toSelect) {
        const SourceRange range = m_parsed->tree[toSelect->node].range;
        m_outline.showAncestors(toSelect->path, toSelect->node);
        revealSelection(range);
    } else if (m_isCaretNews) {
        selectCaretNode();
    }
}

void EditorSession::runWork(const Work& work, std::size_t units) {
    if (units <= quickText) {
        work();
        return;
    }
    const auto calm = qScopeGuard([this] { setBusy(false); });
    runPatiently(work, patience, [this] { setBusy(true); });
}

// Where the user is

std::optional<NodeID> EditorSession::selectedNode() const {
    return m_selection ? m_outline.resolve(*m_selection) : std::nullopt;
}

std::vector<Breadcrumb> EditorSession::breadcrumbs() const {
    const auto node = selectedNode();
    return node ? Breadcrumbs::steps(*node, *m_selection, tree()) : std::vector<Breadcrumb>();
}

bool EditorSession::isSelectionFilteredOut() const {
    return areRowsFiltered() && m_selection && !rows().row(*m_selection, tree());
}

void EditorSession::select(const NodePath& path) {
    m_pendingSelectOffset.reset();
    m_isCaretNews = false;
    if (m_selection == path) {
        return;
    }
    setSelection(path);
    if (m_mode != Mode::split) {
        return;
    }
    if (const auto node = m_outline.resolve(path)) {
        if (const auto now = m_editsSinceParse.now(tree()[*node].range)) {
            revealSelection(*now);
        }
    }
}

void EditorSession::followCaret() {
    if (m_mode == Mode::visual || m_isCaretOurs) {
        return;
    }
    if (isTreeCurrent()) {
        selectCaretNode();
    } else {
        m_isCaretNews = true;
    }
}

void EditorSession::selectCaretNode() {
    m_isCaretNews = false;
    const Offset caret = m_textSelection.lower;
    // The end of the text lies in no node.
    if (caret >= tree().text.count()) {
        return;
    }
    const NodeID node = tree().innermostNode(caret);
    const NodePath path = m_outline.path(node);
    if (m_selection != path) {
        setSelection(path);
        m_outline.showAncestors(path, node);
    }
}

std::optional<NodePath> EditorSession::showNode(Offset at) {
    const Offset then = m_editsSinceParse.then(SourceRange::empty(at)).lower;
    const NodeID innermost = tree().innermostNode(then);
    // Between the topmost nodes, the one before is near enough.
    const NodeID node = innermost != NodeID::document() ? innermost : tree().node(then);
    if (node == NodeID::document()) {
        return std::nullopt;
    }
    const NodePath path = m_outline.path(node);
    m_outline.showAncestors(path, node);
    return path;
}

void EditorSession::expand(const NodePath& path) { m_outline.setExpanded(path, true); }
void EditorSession::collapse(const NodePath& path) { m_outline.setExpanded(path, false); }
void EditorSession::expandRow(std::size_t row) { m_outline.setRowExpanded(row, true); }
void EditorSession::collapseRow(std::size_t row) { m_outline.setRowExpanded(row, false); }

void EditorSession::reveal(SourceRange range) {
    const auto now = m_editsSinceParse.now(range);
    if (!now) {
        return;
    }
    if (m_mode == Mode::visual) {
        const NodeID node = tree().innermostNode(range.lower);
        const NodePath path = m_outline.path(node);
        m_pendingSelectOffset.reset();
        m_isCaretNews = false;
        setSelection(path);
        m_outline.showAncestors(path, node);
    }
    requestReveal(*now);
}

void EditorSession::goToProblem(Direction direction) {
    const DiagnosticList& problems = tree().diagnostics;
    // In a tree without a text beside it the caret stays where the text was last seen.
    const bool isTextHidden = m_mode == Mode::visual && m_revealRequest.has_value();
    const Offset caret = isTextHidden ? m_revealRequest->range.lower : m_textSelection.lower;
    const Offset caretThen = m_editsSinceParse.then(SourceRange::empty(caret)).lower;
    const bool isForward = direction == Direction::forward;
    const std::size_t count = problems.size();
    const std::size_t first =
        isForward ? problems.firstIndex(caretThen + 1) : problems.firstIndex(caretThen) + count - 1;
    for (std::size_t tried = 0; tried < count; ++tried) {
        const SourceRange range = problems.range((isForward ? first + tried : first + count - tried) % count);
        if (m_editsSinceParse.now(range)) {
            reveal(range);
            return;
        }
    }
}

void EditorSession::copyPath() const {
    if (const auto node = selectedNode()) {
        QGuiApplication::clipboard()->setText(QString::fromStdU16String(tree().xpath(*node)));
    }
}

QStringList EditorSession::nameCompletions(const QString& partialWord, bool inTag) {
    if (!m_vocabulary || m_vocabulary->treeGeneration != treeGeneration()) {
        DocumentTree::Vocabulary names;
        try {
            runWork([&] { names = tree().vocabulary(); });
        } catch (const std::bad_alloc&) {
            return {};
        }
        m_vocabulary = {treeGeneration(), std::move(names)};
    }
    const std::u16string word = partialWord.toStdU16String();
    QStringList completions;
    for (const std::u16string& name : inTag ? m_vocabulary->names.attributes : m_vocabulary->names.elements) {
        if (name.starts_with(word) && name != word) {
            completions += QString::fromStdU16String(name);
        }
    }
    return completions;
}

// Changes

bool EditorSession::hasRoomFor(std::int64_t units) {
    const bool hasRoom = units <= std::int64_t(std::numeric_limits<Offset>::max()) - m_buffer.text().size();
    if (!hasRoom) {
        setErrorMessage(QStringLiteral("El documento sería demasiado grande."));
    }
    return hasRoom;
}

void EditorSession::applyEdits(std::span<const TextEdit> edits, const QString& actionName) {
    if (!changesText(edits, m_buffer.text()) || !hasRoomFor(mostGrowth(edits))) {
        return;
    }
    try {
        const QScopedValueRollback ours(m_isCaretOurs, true);
        m_buffer.apply(edits, actionName);
        reparse(0ms);
    } catch (const std::bad_alloc&) {
        setErrorMessage(shortageMessage(actionName));
    }
}

/// The selection keeps its place in what is laid out anew.
void EditorSession::layOut(const Layout& layout, const QString& actionName) try {
    if (!bringTreeUpToDate()) {
        return;
    }
    const TextSelection selection = m_buffer.selection();
    TextSelection after;
    SourceRange range;
    std::int64_t delta = 0;
    bool changesTextSpace = false;
    std::optional<Rope> units;
    runWork([&] {
        PrettyPrinter::Reflow made = layout(std::array{selection.anchor, selection.caret});
        range = made.edit.range;
        delta = made.edit.delta();
        if (delta == 0 && tree().text.units(range) == made.edit.replacement) {
            return;
        }
        if (made.edit.replacement.size() <= std::numeric_limits<Offset>::max()) {
            units = Rope(sourceText(std::move(made.edit.replacement)));
            after = {made.places[0], made.places[1]};
            changesTextSpace = made.changesTextSpace;
        }
    });
    if (hasRoomFor(delta) && units) {
        const QScopedValueRollback ours(m_isCaretOurs, true);
        m_buffer.replace(range, *units, actionName, after);
        reparse(0ms);
        if (changesTextSpace) {
            emit textSpaceChanged(actionName);
        }
    }
} catch (const std::bad_alloc&) {
    setErrorMessage(shortageMessage(actionName));
}

void EditorSession::apply(const TreeMutation& asked, const QString& actionName) try {
    TreeMutation mutation = asked;
    if (!bringTreeUpToDate(pathsOf(mutation))) {
        return;
    }
    if (const auto plan = KeptReferences::plan(mutation, tree(), indent())) {
        apply(*plan, actionName);
    } else {
        setErrorMessage(message(plan.error()));
    }
} catch (const std::bad_alloc&) {
    setErrorMessage(shortageMessage(actionName));
}

/// The step of undo selects what was selected before, and redoing it what the plan selects.
void EditorSession::apply(const MutationPlanner::Plan& plan, const QString& actionName) {
    // Runs on both sides of the change of the text, of which only the later one counts: undoing runs backwards.
    struct Selecting {
        QPointer<EditorSession> session;
        std::optional<Offset> offset; ///< Of the node to select when the text has changed.
        std::optional<Offset> opposite;
        bool isLater;

        void operator()() const {
            if (session == nullptr) {
                return;
            }
            if (isLater && offset && session->m_mode != Mode::text) {
                session->m_pendingSelectOffset = offset;
                session->reparse(0ms);
            }
            session->m_buffer.undoManager()->registerUndo(Selecting{session, opposite, offset, !isLater});
        }
    };
    if (!changesText(plan.edits, m_buffer.text()) || !hasRoomFor(mostGrowth(plan.edits))) {
        return;
    }
    const NodeID node = isTreeCurrent() ? selectedNode().value_or(NodeID::document()) : NodeID::document();
    const bool hasNode = node != NodeID::document();
    const std::optional<Offset> before = hasNode ? std::optional(tree()[node].range.lower) : std::nullopt;
    const std::int64_t generation = m_buffer.generation();
    UndoManager* const undoManager = m_buffer.undoManager();
    if (undoManager == nullptr) {
        applyEdits(plan.edits, actionName);
    } else {
        undoManager->beginUndoGroup();
        undoManager->setActionName(actionName);
        undoManager->registerUndo(Selecting{this, before, plan.selectOffset, true});
        applyEdits(plan.edits, actionName);
        undoManager->registerUndo(Selecting{this, before, plan.selectOffset, false});
        undoManager->endUndoGroup();
    }
    if (m_buffer.generation() != generation) {
        m_pendingSelectOffset = plan.selectOffset;
    }
}

void EditorSession::apply(const DocumentTemplate& documentTemplate) {
    const QString actionName = QStringLiteral("Plantilla");
    const TextEdit edit{m_buffer.text().fullRange(), std::u16string(documentTemplate.text)};
    if (!changesText({&edit, 1}, m_buffer.text())) {
        return;
    }
    UndoManager* const undoManager = m_buffer.undoManager();
    if (undoManager == nullptr) {
        applyEdits({&edit, 1}, actionName);
        return;
    }
    undoManager->beginUndoGroup();
    undoManager->setActionName(actionName);
    setUntouched(false, m_isUntouched);
    applyEdits({&edit, 1}, actionName);
    undoManager->endUndoGroup();
}

void EditorSession::startBlank() {
    m_isBlankWanted = true;
    updateGallery();
}

/// Joins the open step of undo, before the change of the text: undoing runs backwards, and every change of
/// the text makes the document a touched one.
void EditorSession::setUntouched(bool isUntouched, bool isUntouchedAfterUndo) {
    m_isUntouched = isUntouched;
    m_buffer.undoManager()->registerUndo([self = QPointer(this), isUntouched, isUntouchedAfterUndo] {
        if (self != nullptr) {
            self->setUntouched(isUntouchedAfterUndo, isUntouched);
        }
    });
    updateGallery();
}

void EditorSession::updateGallery() {
    const bool showsGallery = m_isUntouched && m_isEmptyDocument && !m_isBlankWanted;
    if (std::exchange(m_showsGallery, showsGallery) != showsGallery) {
        emit showsGalleryChanged();
    }
}

void EditorSession::format() {
    if (m_buffer.text().isEmpty()) {
        return; // A line break alone would be no layout of nothing.
    }
    layOut([this](std::span<const Offset> places) { return PrettyPrinter::format(tree(), indent(), places); },
           QStringLiteral("Formatear"));
}

void EditorSession::minify() {
    layOut([this](std::span<const Offset> places) { return PrettyPrinter::minify(tree(), places); },
           QStringLiteral("Minificar"));
}

void EditorSession::moveUp() { moveSelection(-1, Placement::before); }
void EditorSession::moveDown() { moveSelection(1, Placement::after); }

void EditorSession::moveSelection(int distance, Placement placement) {
    if (!bringTreeUpToDate() || !m_selection || m_selection->indices.empty()) {
        return;
    }
    NodePath parent = *m_selection;
    parent.indices.pop_back();
    const auto parentNode = m_outline.resolve(parent);
    const std::int64_t index = std::int64_t(m_selection->indices.back()) + distance;
    if (!parentNode || index < 0 || index >= tree()[*parentNode].childCount) {
        return;
    }
    NodePath target = std::move(parent);
    target.indices.push_back(static_cast<std::uint32_t>(index));
    move(*m_selection, target, placement);
}

void EditorSession::duplicate() {
    if (bringTreeUpToDate() && m_selection) {
        apply(TreeMutation::Duplicate{*m_selection}, QStringLiteral("Duplicar"));
    }
}

void EditorSession::deleteSelection() {
    if (bringTreeUpToDate() && m_selection) {
        apply(TreeMutation::Delete{*m_selection}, QStringLiteral("Eliminar"));
    }
}

void EditorSession::move(const NodePath& path, const NodePath& target, Placement placement) {
    apply(TreeMutation::Move{path, target, placement}, QStringLiteral("Mover"));
}

void EditorSession::copy(const NodePath& path, const NodePath& target, Placement placement) {
    NodePath copied = path;
    NodePath beside = target;
    if (!bringTreeUpToDate({&copied, &beside})) {
        return;
    }
    if (const auto plan = NodeCopy::plan(copied, beside, placement, tree(), indent())) {
        apply(*plan, QStringLiteral("Duplicar"));
    } else {
        setErrorMessage(message(plan.error()));
    }
}

void EditorSession::requestNamePrompt(NamePrompt::Kind kind) {
    if (bringTreeUpToDate() && m_selection) {
        setNamePrompt(NamePrompt{kind, *m_selection});
    }
}

void EditorSession::completeNamePrompt(const QString& name) {
    if (!m_namePrompt) {
        return;
    }
    const NamePrompt prompt = *m_namePrompt;
    const std::u16string units = name.toStdU16String();
    setNamePrompt(std::nullopt);
    switch (prompt.kind) {
    case NamePrompt::Kind::addChild:
        apply(TreeMutation::InsertElement{units, prompt.path, Placement::lastChild},
              QStringLiteral("Añadir hijo"));
        break;
    case NamePrompt::Kind::addSibling:
        apply(TreeMutation::InsertElement{units, prompt.path, Placement::after},
              QStringLiteral("Añadir hermano"));
        break;
    case NamePrompt::Kind::wrap:
        apply(TreeMutation::Wrap{prompt.path, units}, QStringLiteral("Envolver"));
        break;
    }
}

void EditorSession::rename(const NodePath& path, const QString& name) {
    apply(TreeMutation::Rename{path, name.toStdU16String()}, QStringLiteral("Renombrar"));
}

void EditorSession::setText(const NodePath& path, const QString& text) {
    apply(TreeMutation::SetText{path, text.toStdU16String()}, QStringLiteral("Editar texto"));
}

void EditorSession::renameAttribute(const NodePath& path, const QString& oldName, const QString& newName) {
    apply(TreeMutation::RenameAttribute{path, oldName.toStdU16String(), newName.toStdU16String()},
          QStringLiteral("Renombrar atributo"));
}

void EditorSession::setAttribute(const NodePath& path, const QString& name, const QString& value) {
    apply(TreeMutation::SetAttribute{path, name.toStdU16String(), value.toStdU16String()},
          QStringLiteral("Cambiar atributo"));
}

void EditorSession::removeAttribute(const NodePath& path, const QString& name) {
    apply(TreeMutation::RemoveAttribute{path, name.toStdU16String()}, QStringLiteral("Quitar atributo"));
}

QString EditorSession::addAttribute(const NodePath& asked) {
    NodePath path = asked;
    if (!bringTreeUpToDate({&path})) {
        return {};
    }
    std::unordered_set<std::u16string_view> taken;
    if (const auto node = m_outline.resolve(path)) {
        for (const AttributeSpan& attribute : tree().attributesOf(*node)) {
            taken.insert(tree().text.units(attribute.name));
        }
    }
    const std::u16string name = distinctName(u"atributo", taken);
    apply(TreeMutation::SetAttribute{path, name, {}}, QStringLiteral("Añadir atributo"));
    return QString::fromStdU16String(name);
}

std::optional<SourceRange> EditorSession::toggleComment() {
    const Rope& text = m_buffer.text();
    const SourceRange selection(std::min(m_textSelection.lower, text.size()),
                                std::min(m_textSelection.upper, text.size()));
    const Offset start = selection.lower - std::min(selection.lower, commentReachBefore);
    const Offset end = selection.upper + std::min(text.size() - selection.upper, commentReachAfter);
    const SourceText slice(text.units({start, end}));
    const auto action = TypingAssistant::toggleComment(slice, selection.shifted(-std::int64_t(start)));
    const auto* const edit = action ? std::get_if<TypingAssistant::Edit>(&*action) : nullptr;
    if (edit == nullptr) {
        return std::nullopt;
    }
    std::vector<TextEdit> edits = edit->edits;
    for (TextEdit& shifted : edits) {
        shifted.range = shifted.range.shifted(start);
    }
    const std::int64_t generation = m_buffer.generation();
    applyEdits(edits, QStringLiteral("Comentar"));
    return m_buffer.generation() != generation ? std::optional(edit->selection.shifted(start)) : std::nullopt;
}

void EditorSession::applyFix(std::size_t index, std::size_t choice) {
    if (index >= tree().diagnostics.size()) {
        return;
    }
    const Diagnostic wanted = tree().diagnostics[index];
    const std::vector<Diagnostic::Fix> offered = FixPlanner::fixes(tree(), index);
    const auto now = m_editsSinceParse.now(wanted.range);
    if (choice >= offered.size() || !now) {
        return;
    }
    if (!bringTreeUpToDate()) {
        return;
    }
    const DiagnosticList& problems = tree().diagnostics;
    for (std::size_t at = problems.firstIndex(now->lower);
         at < problems.size() && problems.range(at).lower == now->lower; ++at) {
        const Diagnostic problem = problems[at];
        if (problem.range != *now || problem.message != wanted.message) {
            continue;
        }
        const auto fixes = FixPlanner::fixes(tree(), at);
        const auto fix = std::ranges::find(fixes, offered[choice].title, &Diagnostic::Fix::title);
        if (fix != fixes.end()) {
            applyEdits(fix->edits, ShownText::shortened(fix->title, longestActionName));
            return;
        }
    }
}
