#pragma once

#include "EditorSession.h"

#include <QObject>

#include <optional>

class CodeEditorView;
class TreeEditorView;

/// Keeps the user's place when the mode changes: what one pane showed comes into view in the other. The place
/// is the caret or the selected row while that shows, otherwise what stands at the top of the pane.
class PlaceKeeper : public QObject {
    Q_OBJECT

public:
    /// All of them outlive the keeper.
    PlaceKeeper(EditorSession& session, CodeEditorView& source, TreeEditorView& tree,
                QObject* parent = nullptr);

    /// Call it before the panes are shown or hidden for `mode`: has the place shown in the pane that comes
    /// up, as soon as that is laid out.
    void prepare(EditorSession::Mode mode);

private:
    /// A node as its row shows it, by its range in the tree.
    struct NodePlace {
        SourceRange range;
        bool isSelected;
    };

    std::optional<NodePlace> placeInTree() const;
    Offset placeInText() const;
    void showInText(NodePlace place);
    void showInTree(Offset place);
    void putCaretInto(SourceRange range);

    EditorSession& m_session;
    CodeEditorView& m_source;
    TreeEditorView& m_tree;
    std::optional<EditorSession::RevealRequest> m_revealedInSight; ///< The last one, when the source was hidden.
};
