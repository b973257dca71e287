#include "TreeTypeAhead.h"

#include <QGuiApplication>
#include <QStyleHints>

#include <algorithm>

namespace {

bool nameStartsWith(const DocumentTree& tree, NodeID node, const QString& start) {
    const std::u16string_view name = tree.text.units(tree[node].nameRange);
    return QStringView(name.data(), static_cast<qsizetype>(name.size()))
        .startsWith(start, Qt::CaseInsensitive);
}

bool isOneLetterAgain(const QString& typed) {
    return std::ranges::all_of(typed, [&](QChar letter) { return letter == typed.front(); });
}

} // namespace

std::optional<std::size_t> TreeTypeAhead::row(const QString& typed, std::optional<std::size_t> current,
                                              const TreeOutline::Rows& rows, const DocumentTree& tree) {
    if (!isInProgress()) {
        m_typed.clear();
    }
    m_typed += typed;
    m_sinceLastKey.start();
    // A longer beginning may still be that of the current row.
    const bool isNextWanted = isOneLetterAgain(m_typed);
    const QString start = isNextWanted ? m_typed.first(1) : m_typed;
    const std::size_t first = !current ? 0 : isNextWanted ? *current + 1 : *current;
    const std::size_t count = std::min(rows.size(), mostRows);
    for (std::size_t step = 0; step < count; ++step) {
        const std::size_t row = (first + step) % rows.size();
        if (nameStartsWith(tree, rows[row].node, start)) {
            return row;
        }
    }
    return std::nullopt;
}

bool TreeTypeAhead::isInProgress() const {
    return m_sinceLastKey.isValid() &&
           !m_sinceLastKey.hasExpired(QGuiApplication::styleHints()->keyboardInputInterval());
}
