#include "TextBuffer.h"

#include <QThread>
#include <QThreadPool>

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
        const SourceText flat = m_flattener.flattened(text());
        if (text().contiguous().count() != text().size()) {
            QThreadPool::globalInstance()->start(
                [old = std::make_shared<Rope>(move(text().movedTo(flat)))] { *old = {}; });
        }
        m_sourceText = flat;
        m_sourceTextGeneration = m_generation;
    }
    return m_sourceText;
}

void TextBuffer::apply(std::span<const TextEdit> edits, const QString& actionName) {
    m_history.apply(edits, actionName);
}

Rope TextBuffer::move(const Rope& same) const {
    requireThread();
    m_sourceText = {};
    m_sourceTextGeneration = -1;
    m_mirror->setText(same);
    return m_storage.moveTo(same);
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
