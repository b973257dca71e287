#pragma once

#include "Breadcrumbs.h"
#include "DocumentTemplate.h"
#include "EditedSpan.h"
#include "FixTask.h"
#include "MutationPlanner.h"
#include "OutlineState.h"
#include "ParsedDocument.h"
#include "PrettyPrinter.h"
#include "ReparseScheduler.h"
#include "TextBuffer.h"
#include "TreeOutline.h"

#include <QObject>
#include <QString>
#include <QStringList>

#include <array>
#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

/// What a window knows of its document, and the one place through which every view changes it.
///
/// Views read the fields, redraw when a signal tells of a change, and call the operations. Assigning an equal
/// value tells nobody. What derives from the text is that of the last parse: `treeGeneration` tells of which
/// text, `editsSinceParse` how that relates to the text of now. A structural command never plans with an old
/// tree: it has the current text parsed on the spot first.
///
/// Lives on the main thread. Offsets count UTF-16 units.
class EditorSession : public QObject {
    Q_OBJECT

public:
    /// How the window is laid out.
    enum class Mode : std::uint8_t { text, visual, split };
    static constexpr std::array allModes = {Mode::text, Mode::visual, Mode::split};
    static QString rawValue(Mode mode);

    /// The window asks for the name of an element.
    struct NamePrompt {
        enum class Kind : std::uint8_t { addChild, addSibling, wrap };

        Kind kind;
        NodePath path; ///< Of the node that was selected when the prompt was opened.

        bool operator==(const NamePrompt&) const = default;
    };

    /// The text view is to scroll to a range of the text and to select it.
    struct RevealRequest {
        SourceRange range;
        std::int64_t serial; ///< One more than that of the request before.

        bool operator==(const RevealRequest&) const = default;
    };

    /// `buffer` outlives the session. `encodingName` is shown as it stands.
    EditorSession(TextBuffer& buffer, const QString& encodingName, QObject* parent = nullptr);
    ~EditorSession() override;

    /// Parses the text for the first time, and from now on whenever it changes. Only the first call counts.
    void start();

    // What the user chose

    Mode mode() const { return m_mode; }
    void setMode(Mode mode);

    /// What the outline is filtered by, as typed; white space around it does not count.
    const QString& filter() const { return m_filter; }
    void setFilter(const QString& filter);

    const std::optional<NamePrompt>& namePrompt() const { return m_namePrompt; }
    void setNamePrompt(const std::optional<NamePrompt>& prompt);

    /// Why the last structural command was refused, until the user has read it.
    const std::optional<QString>& errorMessage() const { return m_errorMessage; }
    void setErrorMessage(const std::optional<QString>& message);

    /// What the text view has selected. Whoever sets it then calls `followCaret`.
    SourceRange textSelection() const { return m_textSelection; }
    void setTextSelection(SourceRange selection) { m_textSelection = selection; }
    /// Call it when the user is about to type or erase in the text.
    void noteTyping() { m_isCaretNews = true; }

    // The text, and what derives from it

    TextBuffer& buffer() { return m_buffer; }
    const TextBuffer& buffer() const { return m_buffer; }
    const QString& encodingName() const { return m_encodingName; }
    void setEncodingName(const QString& encodingName);
    bool isEmptyDocument() const { return m_isEmptyDocument; }

    const DocumentTree& tree() const { return m_parsed->tree; }
    const LineIndex& lines() const { return m_parsed->lines; }
    IndentStyle indent() const { return m_parsed->indent; }
    const NodeErrors& errorNodes() const { return m_parsed->errorNodes; }
    const ProblemStarts& problemStarts() const { return m_parsed->problemStarts; }
    /// All of the above, for work on other threads.
    std::shared_ptr<const ParsedDocument> parsed() const { return m_parsed; }

    /// The generation of the text that `tree` was parsed from; -1 before the first parse.
    std::int64_t treeGeneration() const { return m_parsed->generation; }
    bool hasTree() const { return treeGeneration() >= 0; }
    /// Whether there is no tree because the memory is too short for it. After later edits it is tried again.
    bool lacksMemory() const { return m_lacksMemory; }
    bool isTreeCurrent() const { return treeGeneration() == m_buffer.generation(); }

    /// How ranges of `tree` relate to those of the text, which may have been edited since.
    const EditedSpan& editsSinceParse() const { return m_editsSinceParse; }

    const TreeOutline& outline() const { return m_outline.outline(); }
    const TreeOutline::Rows& rows() const { return m_outline.rows(); }
    /// Whether `rows` are the matches of a filter.
    bool areRowsFiltered() const { return !shownFilter().isEmpty(); }
    /// The filter that `rows` are made for, which follows `filter` a moment later.
    const QString& shownFilter() const { return m_outline.shownFilter(); }
    /// How many nodes match it; 0 without a filter.
    std::size_t matchCount() const { return m_outline.matchCount(); }
    /// Whether a node is selected that the filter leaves without a row.
    bool isSelectionFilteredOut() const;

    const std::optional<NodePath>& selection() const { return m_selection; }
    /// Grows when another node is selected or none; a node whose path changes with the text stays the same.
    std::int64_t selectionSerial() const { return m_selectionSerial; }
    /// Where the node at `path` of the tree before is in this one; for those who keep paths, while
    /// `treeChanged` tells of it.
    NodePath carried(const NodePath& path) const { return m_outline.carried(path); }
    /// The node of `tree` that is selected. Counts no siblings where the outline shows it.
    std::optional<NodeID> selectedNode() const;
    const std::optional<RevealRequest>& revealRequest() const { return m_revealRequest; }

    /// From the document to the selected node; empty when none is selected.
    std::vector<Breadcrumb> breadcrumbs() const;

    /// Whether the gallery of templates stands in place of the panes: the document was opened empty, nothing
    /// happened to it but templates that were undone, and `startBlank` was not called.
    bool showsGallery() const { return m_showsGallery; }

    /// Whether a command over the whole document takes its time. The main thread waits for it, so whoever
    /// shows this shows it at once.
    bool isBusy() const { return m_isBusy; }

    // Where the user is

    /// Selects the node at `path` and, when text and tree stand side by side, reveals it in the text.
    void select(const NodePath& path);

    /// Selects the innermost node around the start of `textSelection`, and expands what hides it. Does
    /// nothing in `visual` mode; waits for the next parse while the tree is older than the text.
    void followCaret();

    /// Expands what hides the innermost node around `at`, an offset of the text. Returns the node's path;
    /// nothing without a node there.
    std::optional<NodePath> showNode(Offset at);

    /// Shows or hides the children of a node in the outline. A filter shows them whatever is expanded.
    void expand(const NodePath& path);
    void collapse(const NodePath& path);
    void expandRow(std::size_t row);
    void collapseRow(std::size_t row);

    /// Has the text view select `range` of the tree's text; in `visual` mode also selects the innermost node
    /// at its start. Nothing happens when the range was edited since the parse.
    void reveal(SourceRange range);

    /// Reveals the first problem behind the caret, else the first of all.
    void nextProblem() { goToProblem(Direction::forward); }
    /// Reveals the last problem before the caret, else the last of all.
    void previousProblem() { goToProblem(Direction::backward); }

    /// Puts the path of the selected node, as shown, on the clipboard.
    void copyPath() const;

    /// The names that begin with `partialWord` and have more: of the tree's elements or, when `inTag`, of its
    /// attributes. In order of first appearance.
    QStringList nameCompletions(const QString& partialWord, bool inTag);

    // Changes, each one step of undo under its name. One that cannot be made sets `errorMessage` and leaves
    // everything as it was. Those of the selected node do nothing without one.

    /// Parses the text of now on the spot when the tree is older, and carries `paths` along. What is planned
    /// elsewhere asks for it first. Answers whether there is a tree; without one, for lack of memory,
    /// `errorMessage` says so.
    bool bringTreeUpToDate(const std::vector<NodePath*>& paths = {});
    /// Runs `work` on `units` units of text: on another thread, while this one waits, when they are many.
    void runWork(const std::function<void()>& work, std::size_t units);

    void apply(const TreeMutation& mutation, const QString& actionName);
    /// `plan` was made for the text of now.
    void apply(const MutationPlanner::Plan& plan, const QString& actionName);
    void apply(const DocumentTemplate& documentTemplate);
    void startBlank();

    void format();
    void minify();

    void moveUp();
    void moveDown();
    void duplicate();
    void deleteSelection();

    void move(const NodePath& path, const NodePath& target, TreeMutation::Placement placement);
    /// Puts a copy of the node at `path` there.
    void copy(const NodePath& path, const NodePath& target, TreeMutation::Placement placement);

    /// Asks for the name of a child, sibling or wrapper of the selected node.
    void requestNamePrompt(NamePrompt::Kind kind);
    /// Answers the prompt, which is then gone.
    void completeNamePrompt(const QString& name);

    void rename(const NodePath& path, const QString& name);
    void setText(const NodePath& path, const QString& text);
    void renameAttribute(const NodePath& path, const QString& oldName, const QString& newName);
    void setAttribute(const NodePath& path, const QString& name, const QString& value);
    void removeAttribute(const NodePath& path, const QString& name);
    /// Adds an empty attribute `atributo`, or `atributo2` and so on when there is one, and answers its name.
    QString addAttribute(const NodePath& path);

    /// Makes the lines of `textSelection` a comment or uncomments them. Answers what to select in the text
    /// afterwards, none when nothing changed.
    std::optional<SourceRange> toggleComment();

    /// Applies the fix of `tree().diagnostics[index]` that stands at `choice` in the list of `FixPlanner`, if
    /// there is one and the problem is still there.
    void applyFix(std::size_t index, std::size_t choice = 0);
    /// Mends all that can be mended, in a while.
    void applyAllFixes() { m_fixTask.start(); }
    FixTask& fixTask() { return m_fixTask; }

signals:
    void modeChanged();
    void filterChanged();
    void namePromptChanged();
    void errorMessageChanged();
    void encodingNameChanged();
    void treeChanged(); ///< With it `lines` and `indent`.
    void treeGenerationChanged();
    void errorNodesChanged();
    void rowsChanged();
    void selectionChanged();
    void revealRequestChanged();
    void isEmptyDocumentChanged();
    void showsGalleryChanged();
    void isBusyChanged();
    void lacksMemoryChanged();
    /// The memory was too short to filter the tree.
    void filterLackedMemory();
    /// A layout under the name `actionName` changed white space that may be part of the text.
    void textSpaceChanged(const QString& actionName);

private:
    using Work = std::function<void()>;
    enum class Direction : std::uint8_t { forward, backward };

    void textChanged();
    void noteEdit(SourceRange edited, std::int64_t changeInLength);
    void reparse(std::chrono::milliseconds delay);
    ReparseScheduler::Snapshot snapshot();
    void deliver(ReparseScheduler::Result result);
    void giveUpTree();
    void takeMovedText(const Rope& same, std::int64_t generation);
    void setLacksMemory(bool lacksMemory);
    void goToProblem(Direction direction);

    void setSelection(const std::optional<NodePath>& selection);
    void selectCaretNode();
    void requestReveal(SourceRange range);
    void revealSelection(SourceRange range);

    bool hasRoomFor(std::int64_t units);
    void applyEdits(std::span<const TextEdit> edits, const QString& actionName);
    using Layout = std::function<PrettyPrinter::Reflow(std::span<const Offset> places)>;
    void layOut(const Layout& layout, const QString& actionName);
    void moveSelection(int distance, TreeMutation::Placement placement);
    void runWork(const Work& work) { runWork(work, m_buffer.text().size()); }
    void setBusy(bool isBusy);
    void setUntouched(bool isUntouched, bool isUntouchedAfterUndo);
    void updateGallery();

    TextBuffer& m_buffer;
    QString m_encodingName;
    bool m_isStarted = false;

    Mode m_mode = Mode::visual;
    QString m_filter;
    std::optional<NamePrompt> m_namePrompt;
    std::optional<QString> m_errorMessage;
    SourceRange m_textSelection;
    std::optional<NodePath> m_selection;
    std::int64_t m_selectionSerial = 0;
    bool m_isCaretNews = false; ///< The caret moved or something was typed since a node was selected.
    bool m_isCaretOurs = false; ///< What the caret does now is not what the user does.
    std::optional<RevealRequest> m_revealRequest;
    bool m_isEmptyDocument;
    bool m_isUntouched; ///< Opened empty, and nothing happened to it but templates that were undone.
    bool m_isBlankWanted = false;
    bool m_showsGallery;
    bool m_isBusy = false;
    bool m_lacksMemory = false;

    std::shared_ptr<ParsedDocument> m_parsed;
    EditedSpan m_editsSinceParse;
    std::optional<Offset> m_pendingSelectOffset; ///< In the text of now; for the next tree.
    ReparseScheduler m_scheduler;
    FixTask m_fixTask;

    OutlineState m_outline;

    struct VocabularyCache {
        std::int64_t treeGeneration;
        DocumentTree::Vocabulary names;
    };
    std::optional<VocabularyCache> m_vocabulary;
};
