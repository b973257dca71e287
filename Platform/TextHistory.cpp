#include "TextHistory.h"

#include <QChar>
#include <QScopeGuard>
#include <QThread>

#include <algorithm>
#include <new>
#include <ranges>
#include <utility>

namespace {

constexpr std::size_t longestCopy = 1024; ///< Longer stretches are kept as ropes.

/// Longer stretches share the chunks of the text, and hold on to the array that these are in: maybe all of a
/// file.
constexpr Offset longestOwnCopy = 256 * 1024;

Rope kept(const Rope& text, SourceRange range) {
    return range.length() <= longestOwnCopy ? Rope(text.units(range)) : text.part(range);
}

bool isSpace(char16_t unit) { return QChar::isSpace(unit); }

} // namespace

TextHistory::TextHistory(TextStorage& storage, QObject* parent) : QObject(parent), m_storage(storage) {}

void TextHistory::setUndoManager(UndoManager* undoManager) {
    m_undoManager = undoManager;
    breakUndoCoalescing();
}

void TextHistory::apply(std::span<const TextEdit> edits, const QString& actionName) {
    requireThread();
    if (!edits.empty()) {
        applyAsOneStep(replacements(edits), actionName, std::nullopt);
    }
}

TextHistory::Replacements TextHistory::replacements(std::span<const TextEdit> edits) const {
    Replacements replacements;
    for (TextEdit& edit : TextEdit::applicationOrder(edits)) {
        precondition(replacements.empty() || edit.range.upper <= replacements.back().range.lower,
                     "edits do not overlap");
        precondition(edit.range.upper <= text().size(), "an edit lies inside the text");
        replacements.emplace_back(edit.range, std::move(edit.replacement));
    }
    return replacements;
}

void TextHistory::replace(SourceRange range, const Rope& units, const QString& actionName,
                          std::optional<TextSelection> after) {
    requireThread();
    precondition(range.upper <= text().size(), "an edit lies inside the text");
    applyAsOneStep({Replacement(range, units)}, actionName, after);
}

void TextHistory::applyAsOneStep(const Replacements& replacements, const QString& actionName,
                                 std::optional<TextSelection> wanted) {
    if (m_undoManager == nullptr) {
        replace(replacements, wanted);
        return;
    }
    m_undoManager->beginUndoGroup();
    if (!actionName.isEmpty()) {
        m_undoManager->setActionName(actionName);
    }
    breakUndoCoalescing();
    const auto end = qScopeGuard([this] { m_undoManager->endUndoGroup(); });
    const TextSelection before = selection();
    Replacements opposite = inverse(replacements);
    replace(replacements, wanted);
    const TextSelection after = selectionAfter(opposite);
    registerOpposite(std::move(opposite), {before, after});
}

void TextHistory::type(SourceRange range, std::u16string_view units) {
    requireThread();
    precondition(range.upper <= text().size(), "an edit lies inside the text");
    if (range.isEmpty() && units.empty()) {
        return;
    }
    // What takes much memory comes first: nothing has changed yet.
    const std::optional<Rope> many = units.size() > longestCopy ? std::optional<Rope>(units) : std::nullopt;
    const bool isPlain = units.find(u'\n') == std::u16string_view::npos &&
                         text().line(range.lower) == text().line(range.upper);
    const SourceRange typed = SourceRange::at(range.lower, static_cast<std::int64_t>(units.size()));
    if (isPlain && canJoinTypingRun(range, units)) {
        growTypingRun(range, typed);
    } else if (m_undoManager != nullptr) {
        m_typing = std::make_shared<TypingRun>(typed, kept(text(), range), selection(), units.empty());
        registerTypingRun();
    }
    m_together.reset();
    if (!isPlain) {
        m_typing.reset();
    }
    m_sinceTyping.start();
    if (many) {
        m_storage.replaceCharacters(range, *many);
    } else {
        m_storage.replaceCharacters(range, units);
    }
}

void TextHistory::typeTogether(std::span<const TextEdit> edits, Offset caret, const QString& actionName) {
    requireThread();
    if (edits.empty()) {
        return;
    }
    const Replacements made = replacements(edits);
    const bool isErasing =
        std::ranges::all_of(edits, [](const TextEdit& edit) { return edit.replacement.empty(); });
    m_typing.reset();
    if (m_undoManager != nullptr && !canJoinTogetherRun(isErasing, actionName)) {
        m_together = std::make_shared<TogetherRun>();
        m_together->selections.before = selection();
        m_together->actionName = actionName;
        m_together->isErasing = isErasing;
        registerTogetherRun();
    }
    if (m_together != nullptr) {
        m_together->opposites.push_back(inverse(made));
        m_together->selections.after = TextSelection::at(caret);
    }
    m_sinceTyping.start();
    replace(made, TextSelection::at(caret));
}

bool TextHistory::canJoinTogetherRun(bool isErasing, const QString& actionName) const {
    return m_together != nullptr && m_sinceTyping.elapsed() < m_longestPause.count() &&
           m_together->isErasing == isErasing && m_together->actionName == actionName &&
           m_together->coalescingMark == m_undoManager->coalescingMark() &&
           m_together->selections.after == selection();
}

void TextHistory::registerTogetherRun() {
    m_undoManager->beginUndoGroup();
    m_undoManager->setActionName(m_together->actionName);
    m_undoManager->registerUndo([self = QPointer(this), run = m_together] {
        if (self == nullptr) {
            return;
        }
        self->m_storage.beginEditing();
        for (const Replacements& opposite : run->opposites | std::views::reverse) {
            self->replaceBack(opposite, run->selections);
        }
        self->m_storage.endEditing();
    });
    m_undoManager->endUndoGroup();
    m_together->coalescingMark = m_undoManager->coalescingMark();
}

void TextHistory::selectionMoved(TextSelection selection) {
    if (m_typing != nullptr && selection != TextSelection::at(m_typing->range.upper)) {
        m_typing.reset();
    }
    if (m_together != nullptr && selection != m_together->selections.after) {
        m_together.reset();
    }
}

bool TextHistory::canJoinTypingRun(SourceRange range, std::u16string_view units) const {
    if (m_undoManager == nullptr || m_typing == nullptr ||
        m_sinceTyping.elapsed() >= m_longestPause.count() || m_typing->isErasing != units.empty() ||
        m_typing->coalescingMark != m_undoManager->coalescingMark() || range.lower > m_typing->range.upper ||
        m_typing->range.upper > range.upper) {
        return false;
    }
    const bool beginsWord = !units.empty() && !isSpace(units.front()) && range.lower > 0 &&
                            !m_typing->range.isEmpty() && isSpace(text().unit(range.lower - 1));
    return !beginsWord;
}

void TextHistory::growTypingRun(SourceRange range, SourceRange typed) {
    // The run's units now stand in the place of what the run and this edit replaced together.
    SourceRange& run = m_typing->range;
    Rope& replaced = m_typing->replaced;
    replaced = replaced.replaced(SourceRange::empty(replaced.size()), text().part({run.upper, range.upper}));
    if (range.lower < run.lower) {
        replaced = replaced.replaced({}, text().part({range.lower, run.lower}));
    }
    run = {std::min(run.lower, range.lower), typed.upper};
}

void TextHistory::registerTypingRun() {
    m_undoManager->beginUndoGroup();
    m_undoManager->setActionName(m_typing->isErasing ? QStringLiteral("Eliminar")
                                                     : QStringLiteral("Escribir"));
    m_undoManager->registerUndo([self = QPointer(this), run = m_typing] {
        if (self != nullptr) {
            self->replaceBack({Replacement(run->range, run->replaced)},
                              {run->before, TextSelection::at(run->range.upper)});
        }
    });
    m_undoManager->endUndoGroup();
    m_typing->coalescingMark = m_undoManager->coalescingMark();
}

void TextHistory::replace(const Replacements& replacements, std::optional<TextSelection> after) {
    m_storage.beginEditing();
    const auto end = qScopeGuard([this] { m_storage.endEditing(); });
    replaceAll(replacements);
    if (after && m_selectionKeeper.restore) {
        m_selectionKeeper.restore(*after);
    }
}

/// All or nothing.
void TextHistory::replaceAll(const Replacements& replacements) {
    const Rope before = text();
    try {
        for (const Replacement& replacement : replacements) {
            std::visit([&](const auto& units) { m_storage.replaceCharacters(replacement.range, units); },
                       replacement.units);
        }
    } catch (const std::bad_alloc&) {
        if (text() != before) {
            m_storage.replaceCharacters(text().fullRange(), before);
        }
        throw;
    }
}

void TextHistory::registerOpposite(Replacements opposite, Selections selections) {
    m_undoManager->registerUndo([self = QPointer(this), opposite = std::move(opposite), selections] {
        if (self != nullptr) {
            self->replaceBack(opposite, selections);
        }
    });
}

void TextHistory::replaceBack(const Replacements& replacements, Selections selections) {
    Replacements opposite = inverse(replacements);
    replace(replacements, selections.before);
    registerOpposite(std::move(opposite), {selections.after, selections.before});
}

TextSelection TextHistory::selectionAfter(const Replacements& opposite) const {
    // Whoever made the edits may have selected what they are about; a caret somewhere else would not show
    // what is redone.
    const TextSelection now = selection();
    const bool isThere = std::ranges::any_of(opposite, [&](const Replacement& each) {
        return each.range.lower <= now.caret && now.caret <= each.range.upper;
    });
    return isThere ? now : TextSelection::at(opposite.front().range.upper);
}

TextHistory::Replacements TextHistory::inverse(const Replacements& of) const {
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
            inverses.emplace_back(rangeAfter, kept(text(), range));
        }
        shift += length - range.length();
    }
    std::ranges::reverse(inverses);
    return inverses;
}

TextSelection TextHistory::selection() const {
    return m_selectionKeeper.current ? m_selectionKeeper.current() : TextSelection();
}

void TextHistory::requireThread() const {
    precondition(QThread::currentThread() == thread(), "the text is touched on its own thread only");
}
