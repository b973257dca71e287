#include "TextBuffer.h"

#include <QThread>

#include <utility>

TextBuffer::TextBuffer(Rope initialText, std::shared_ptr<TextMirror> mirror, QObject* parent)
    : QObject(parent), m_storage(std::move(initialText)), m_history(m_storage), m_mirror(std::move(mirror)) {
    // The first to connect, so that everybody else finds the new generation.
    connect(&m_storage, &TextStorage::editProcessed, this, &TextBuffer::countEdit);
    connect(&m_storage, &TextStorage::editingEnded, this, &TextBuffer::finishBatch);
}

SourceText TextBuffer::sourceText() const {
    requireThread();
    if (m_sourceTextGeneration != m_generation) {
        m_sourceText = {};
        m_sourceText = m_flattener.flattened(text());
        m_sourceTextGeneration = m_generation;
    }
    return m_sourceText;
}

void TextBuffer::apply(std::span<const TextEdit> edits, const QString& actionName) {
    m_history.apply(edits, actionName);
}

void TextBuffer::requireThread() const {
    precondition(QThread::currentThread() == thread(), "the text is touched on its own thread only");
}

void TextBuffer::countEdit() {
    requireThread();
    ++m_generation;
}

void TextBuffer::finishBatch() {
    m_mirror->setText(text());
    while (m_announcedGeneration < m_generation) {
        ++m_announcedGeneration;
        if (m_onChange) {
            m_onChange();
        }
    }
}
