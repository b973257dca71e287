#pragma once

#include "DocumentTree.h"
#include "EditedSpan.h"
#include "IndentStyle.h"
#include "LineIndex.h"
#include "ReparseScheduler.h"
#include "TextBuffer.h"

#include <QObject>

/// What a window knows of its document: the text's buffer, the tree that was last parsed from it and what
/// derives from that. Views read it and redraw when it tells of a change.
class EditorSession : public QObject {
    Q_OBJECT

public:
    /// `buffer` outlives the session.
    explicit EditorSession(TextBuffer& buffer, QObject* parent = nullptr);
    ~EditorSession() override;

    /// Parses the text for the first time, and from now on whenever it changes. Only the first call counts.
    void start();

    TextBuffer& buffer() { return m_buffer; }
    const TextBuffer& buffer() const { return m_buffer; }

    const DocumentTree& tree() const { return m_parsed.tree; }
    const LineIndex& lines() const { return m_parsed.lines; }
    IndentStyle indent() const { return m_parsed.indent; }
    bool isEmptyDocument() const { return m_isEmptyDocument; }

    /// The generation of the text that `tree` was parsed from; -1 before the first parse.
    std::int64_t treeGeneration() const { return m_parsed.generation; }
    bool isTreeCurrent() const { return treeGeneration() == m_buffer.generation(); }

    /// How ranges of `tree` relate to those of the text, which may have been edited since.
    const EditedSpan& editsSinceParse() const { return m_editsSinceParse; }

signals:
    void treeChanged();
    void isEmptyDocumentChanged();

private:
    void textChanged();
    void noteEdit(SourceRange edited, std::int64_t changeInLength);
    void reparse(std::chrono::milliseconds delay);
    void deliver(ReparseScheduler::Result result);

    TextBuffer& m_buffer;
    ReparseScheduler::Result m_parsed;
    EditedSpan m_editsSinceParse;
    bool m_isEmptyDocument;
    bool m_isStarted = false;
    ReparseScheduler m_scheduler;
};
