#include "TextBuffer.h"

#include <QThread>

#include <algorithm>
#include <ranges>
#include <utility>

namespace {

constexpr std::size_t longestCopy = 1024; ///< Longer stretches are kept as shared chunks.

} // namespace

TextBuffer::TextBuffer(Rope initialText, std::shared_ptr<TextMirror> mirror, QObject* parent)
    : QObject(parent), m_storage(std::move(initialText)), m_mirror(std::move(mirror)) {
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

void TextBuffer::setUndoManager(UndoManager* undoManager) {
    m_undoManager = undoManager;
    m_typing.reset();
}

void TextBuffer::apply(std::span<const TextEdit> edits, const QString& actionName) {
    requireThread();
    if (edits.empty()) {
        return;
    }
    Replacements replacements;
    for (TextEdit& edit : TextEdit::applicationOrder(edits)) {
        precondition(replacements.empty() || edit.range.upper <= replacements.back().range.lower,
                     "edits do not overlap");
        precondition(edit.range.upper <= text().size(), "an edit lies inside the text");
        replacements.emplace_back(edit.range, std::move(edit.replacement));
    }
    if (m_undoManager != nullptr) {
        m_undoManager->beginUndoGroup();
        if (!actionName.isEmpty()) {
            m_undoManager->setActionName(actionName);
        }
    }
    replaceUndoably(replacements);
    if (m_undoManager != nullptr) {
        m_undoManager->endUndoGroup();
    }
    if (m_breakUndoCoalescing) {
        m_breakUndoCoalescing();
    }
}

void TextBuffer::type(SourceRange range, std::u16string_view units) {
    requireThread();
    precondition(range.upper <= text().size(), "an edit lies inside the text");
    if (range.isEmpty() && units.empty()) {
        return;
    }
    const bool isPlain = units.find(u'\n') == std::u16string_view::npos &&
                         text().line(range.lower) == text().line(range.upper);
    const SourceRange typed = SourceRange::at(range.lower, static_cast<std::int64_t>(units.size()));
    if (isPlain && canJoinTypingRun(range)) {
        growTypingRun(range, typed);
    } else if (m_undoManager != nullptr) {
        m_typing = std::make_shared<TypingRun>(typed, text().part(range));
        registerTypingRun();
    }
    if (!isPlain) {
        m_typing.reset();
    }
    m_storage.replaceCharacters(range, units);
}

bool TextBuffer::canJoinTypingRun(SourceRange range) const {
    return m_undoManager != nullptr && m_typing != nullptr &&
           m_typing->coalescingMark == m_undoManager->coalescingMark() &&
           range.lower <= m_typing->range.upper && m_typing->range.upper <= range.upper;
}

void TextBuffer::growTypingRun(SourceRange range, SourceRange typed) {
    // The run's units now stand in the place of what the run and this edit replaced together.
    SourceRange& run = m_typing->range;
    Rope& replaced = m_typing->replaced;
    replaced = replaced.replaced(SourceRange::empty(replaced.size()), text().part({run.upper, range.upper}));
    if (range.lower < run.lower) {
        replaced = replaced.replaced({}, text().part({range.lower, run.lower}));
    }
    run = {std::min(run.lower, range.lower), typed.upper};
}

void TextBuffer::registerTypingRun() {
    m_undoManager->beginUndoGroup();
    m_undoManager->setActionName(QStringLiteral("Escribir"));
    m_undoManager->registerUndo([self = QPointer(this), run = m_typing] {
        if (self != nullptr) {
            self->replaceUndoably({Replacement(run->range, run->replaced)});
        }
    });
    m_undoManager->endUndoGroup();
    m_typing->coalescingMark = m_undoManager->coalescingMark();
}

void TextBuffer::replaceUndoably(const Replacements& replacements) {
    Replacements opposite = inverse(replacements);
    m_storage.beginEditing();
    for (const Replacement& replacement : replacements) {
        std::visit([&](const auto& units) { m_storage.replaceCharacters(replacement.range, units); },
                   replacement.units);
    }
    m_storage.endEditing();
    if (m_undoManager != nullptr) {
        m_undoManager->registerUndo([self = QPointer(this), opposite = std::move(opposite)] {
            if (self != nullptr) {
                self->replaceUndoably(opposite);
            }
        });
    }
}

TextBuffer::Replacements TextBuffer::inverse(const Replacements& of) const {
    // The replacements come from the end of the text to its start, and so do their inverses: where several
    // meet at one offset, what stood last is put back first.
    Replacements inverses;
    inverses.reserve(of.size());
    std::int64_t shift = 0;
    for (const Replacement& replacement : of | std::views::reverse) {
        const SourceRange range = replacement.range;
        const auto length = std::visit(
            [](const auto& units) { return static_cast<std::int64_t>(units.size()); }, replacement.units);
        const SourceRange rangeAfter = SourceRange::at(range.lower + shift, length);
        if (range.length() <= longestCopy) {
            inverses.emplace_back(rangeAfter, text().units(range));
        } else {
            inverses.emplace_back(rangeAfter, text().part(range));
        }
        shift += length - range.length();
    }
    std::ranges::reverse(inverses);
    return inverses;
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
