#pragma once

#include "TreeOutline.h"

#include <QElapsedTimer>
#include <QString>

#include <cstddef>
#include <optional>

/// Jumps to a row by the letters typed: keys in quick succession make up the beginning of a name. One letter
/// typed again goes to the next such name.
class TreeTypeAhead {
public:
    /// How many rows one key looks at, so that it never takes long.
    static constexpr std::size_t mostRows = 100'000;

    /// The row to go to after `typed`, from `current` on and again from the top; none when no name of the
    /// rows looked at begins so. Letters count whatever their case.
    std::optional<std::size_t> row(const QString& typed, std::optional<std::size_t> current,
                                   const TreeOutline::Rows& rows, const DocumentTree& tree);

    /// Whether what is typed now still belongs to a name.
    bool isInProgress() const;

private:
    QString m_typed;
    QElapsedTimer m_sinceLastKey;
};
