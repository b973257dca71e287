#pragma once

#include "EditorSession.h"
#include "UndoManager.h"
#include "WaitFor.h"

#include <QSignalSpy>

#include <memory>
#include <string>
#include <string_view>

/// A session with all that a window gives it, but no view.
struct SessionDesk {
    std::shared_ptr<TextMirror> mirror;
    TextBuffer buffer;
    UndoManager undoManager;
    EditorSession session;
    QSignalSpy parses;

    explicit SessionDesk(std::u16string_view text)
        : mirror(std::make_shared<TextMirror>(Rope(text))), buffer(Rope(text), mirror),
          session(buffer, QStringLiteral("Unicode (UTF-8)")), parses(&session, &EditorSession::treeChanged) {
        buffer.setUndoManager(&undoManager);
    }

    /// Starts the session and waits for its first tree.
    bool open() {
        session.start();
        return parses.wait(60'000);
    }

    /// Waits until nothing changes the text any more and the tree is that of the current one.
    bool settle() {
        return waitFor([this] { return !session.fixTask().isRunning() && session.isTreeCurrent(); });
    }

    /// Waits until "Corregir todo" is done.
    bool finishFixing() {
        return waitFor([this] { return !session.fixTask().isRunning(); });
    }

    std::u16string text() const { return buffer.text().units(buffer.text().fullRange()); }

    /// The path of the node that starts at the first place where `source` stands.
    NodePath path(std::u16string_view source) const {
        const auto at = session.tree().text.units().find(source);
        return session.tree().path(session.tree().node(static_cast<Offset>(at)));
    }

    /// Selects that node.
    void select(std::u16string_view source) { session.select(path(source)); }

    /// The source of the selected node; "-" when there is none, "?" when there is no such node.
    std::u16string selected() const {
        if (!session.selection()) {
            return u"-";
        }
        const auto node = session.tree().resolve(*session.selection());
        return node ? std::u16string(session.tree().source(*node)) : u"?";
    }

    /// The rows of the outline, indented, elements by their names and all others by their sources; "+" before
    /// a row that could be expanded.
    std::u16string rows() const {
        std::u16string rows;
        for (const TreeOutline::Row& row : session.rows()) {
            const DocumentTree& tree = session.tree();
            rows.append(row.depth, u' ').append(row.hasChildren && !row.isExpanded ? u"+" : u"");
            rows.append(tree[row.node].isElement() ? tree.name(row.node) : tree.source(row.node))
                .append(u"\n");
        }
        return rows;
    }
};
