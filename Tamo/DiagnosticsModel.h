#pragma once

#include "DocumentTree.h"
#include "LineIndex.h"

#include <QAbstractListModel>
#include <QColor>

/// The diagnostics of a document as rows for a list view, each composed when it is shown. A hostile document
/// has millions, so the list starts with a thousand and grows as the view asks for more.
class DiagnosticsModel : public QAbstractListModel {
    Q_OBJECT

public:
    using QAbstractListModel::QAbstractListModel;

    /// The colour that stands for problems of a severity.
    static QColor color(Diagnostic::Severity severity);

    /// Shows the diagnostics of `tree`, whose text has `lines`. Both outlive the model or the next call.
    void setTree(const DocumentTree* tree, const LineIndex* lines);

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    bool canFetchMore(const QModelIndex& parent) const override;
    void fetchMore(const QModelIndex& parent) override;

private:
    int total() const;

    const DocumentTree* m_tree = nullptr;
    const LineIndex* m_lines = nullptr;
    int m_shown = 0;
};
