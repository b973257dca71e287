#include "EditorSession.h"

namespace {

using namespace std::chrono_literals;

constexpr auto typingPause = 120ms;

} // namespace

EditorSession::EditorSession(TextBuffer& buffer, QObject* parent)
    : QObject(parent), m_buffer(buffer), m_parsed{DocumentTree::empty(), {}, {}, -1},
      m_isEmptyDocument(buffer.text().isEmpty()) {
    connect(&buffer.storage(), &TextStorage::editProcessed, this, &EditorSession::noteEdit);
}

EditorSession::~EditorSession() { m_buffer.setOnChange({}); }

void EditorSession::start() {
    if (!m_isStarted) {
        m_isStarted = true;
        m_buffer.setOnChange([this] { textChanged(); });
        reparse(0ms);
    }
}

void EditorSession::textChanged() {
    if (const bool isEmpty = m_buffer.text().isEmpty(); isEmpty != m_isEmptyDocument) {
        m_isEmptyDocument = isEmpty;
        emit isEmptyDocumentChanged();
    }
    reparse(typingPause);
}

void EditorSession::noteEdit(SourceRange edited, std::int64_t changeInLength) {
    const std::int64_t lengthBefore = std::int64_t(edited.length()) - changeInLength;
    m_editsSinceParse.add(SourceRange::at(edited.lower, lengthBefore), edited.length());
}

void EditorSession::reparse(std::chrono::milliseconds delay) {
    m_scheduler.schedule(
        delay, [this] { return ReparseScheduler::Snapshot{m_buffer.text(), m_buffer.generation()}; },
        [this](ReparseScheduler::Result result) { deliver(std::move(result)); });
}

void EditorSession::deliver(ReparseScheduler::Result result) {
    // A result that an edit overtook is never delivered, so none of the edits is newer than this tree.
    std::swap(m_parsed, result);
    m_editsSinceParse = {};
    emit treeChanged();
    m_scheduler.recycle(std::move(result));
}
