#pragma once

#include "StringEncoding.h"

#include <QTreeWidget>

#include <functional>
#include <optional>

/// A list of encodings in their groups, of which one is chosen.
class EncodingList : public QTreeWidget {
    Q_OBJECT

public:
    using Filter = std::function<bool(const StringEncoding& encoding)>;

    /// Lists those encodings that `isOffered` returns true for.
    explicit EncodingList(const Filter& isOffered, QWidget* parent = nullptr);

    /// Nothing where a title is current.
    std::optional<StringEncoding> chosen() const;
    void choose(const StringEncoding& encoding);

signals:
    void chosenChanged();
};
