#include "TextStorage.h"

#include <QScopedValueRollback>

#include <utility>

TextStorage::TextStorage(Rope text, QObject* parent) : QObject(parent), m_text(std::move(text)) {}

void TextStorage::replaceCharacters(SourceRange range, std::u16string_view units) {
    take(m_text.replaced(range, units), range, static_cast<Offset>(units.size()));
}

void TextStorage::replaceCharacters(SourceRange range, const Rope& units) {
    take(m_text.replaced(range, units), range, units.size());
}

Rope TextStorage::moveTo(Rope same) {
    precondition(same.size() == m_text.size(), "a text moves as it is");
    std::swap(m_text, same);
    Q_EMIT textMoved();
    return same;
}

void TextStorage::take(Rope text, SourceRange replaced, Offset length) {
    precondition(!m_isNotifying, "a notice of an edit is not answered with another edit");
    if (replaced.isEmpty() && length == 0) {
        return;
    }
    beginEditing();
    m_text = std::move(text);
    m_hasChanged = true;
    {
        const QScopedValueRollback notifying(m_isNotifying, true);
        Q_EMIT editProcessed(SourceRange::at(replaced.lower, length),
                             std::int64_t(length) - replaced.length());
    }
    endEditing();
}

void TextStorage::endEditing() {
    precondition(m_depth > 0, "an editing batch ends only once");
    --m_depth;
    if (m_depth == 0 && std::exchange(m_hasChanged, false)) {
        Q_EMIT editingEnded();
    }
}
