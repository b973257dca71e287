#pragma once

class EditorSession;

/// Nodes on their way through the clipboard: their source as text, marked as that of a node.
namespace NodeClipboard {

/// Whether there is text to paste.
bool canPaste();

/// Puts the source of the selected node on the clipboard. Without one nothing happens.
void copy(EditorSession& session);

/// The same, and takes the node away, as one step of undo.
void cut(EditorSession& session);

/// Puts what the clipboard holds at the selected node, or into the document without one, as `NodePaste` has
/// it, in one step of undo.
void paste(EditorSession& session);

} // namespace NodeClipboard
