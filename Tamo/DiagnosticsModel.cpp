#include "DiagnosticsModel.h"

#include <QIcon>
#include <QPainter>
#include <QPixmap>

#include <algorithm>

namespace {

constexpr int batch = 1000;
constexpr int dotSize = 10;
constexpr qsizetype textLimit = 300; ///< Units of a text to show; laying out a longer one takes its time.

QIcon icon(Diagnostic::Severity severity) {
    QPixmap dot(dotSize, dotSize);
    dot.fill(Qt::transparent);
    QPainter painter(&dot);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(DiagnosticsModel::color(severity));
    painter.drawEllipse(QRectF(dot.rect()).adjusted(1, 1, -1, -1));
    return QIcon(dot);
}

/// `text`, its end left out where it is very long, since a name in it may be.
QString shortened(const std::u16string& text) {
    const auto all = QStringView(text);
    return all.size() <= textLimit ? all.toString() : all.first(textLimit).toString() + u'…';
}

} // namespace

QColor DiagnosticsModel::color(Diagnostic::Severity severity) {
    return severity == Diagnostic::Severity::error ? QColor(0xD1, 0x34, 0x38) : QColor(0xD0, 0x7A, 0x00);
}

void DiagnosticsModel::setTree(const DocumentTree* tree, const LineIndex* lines) {
    beginResetModel();
    m_tree = tree;
    m_lines = lines;
    m_shown = std::min(total(), batch);
    endResetModel();
}

int DiagnosticsModel::rowCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : m_shown; }

QVariant DiagnosticsModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= m_shown) {
        return {};
    }
    const auto row = static_cast<std::size_t>(index.row());
    const DiagnosticList& diagnostics = m_tree->diagnostics;
    switch (role) {
    case Qt::DisplayRole: {
        const auto line = m_lines->line(diagnostics.range(row).lower) + 1;
        // Composed by hand, since the message holds names of the document, which may hold "%1".
        return QStringLiteral("Línea ") + QString::number(line) + QStringLiteral(": ") +
               shortened(diagnostics[row].message);
    }
    case Qt::DecorationRole:
        return icon(diagnostics.severity(row));
    case Qt::ToolTipRole: {
        const auto fix = diagnostics[row].fix;
        // Plain text must not be taken for rich text.
        return fix ? QStringLiteral("<span>%1</span>")
                         .arg(QStringLiteral("Doble clic: ").append(shortened(fix->title)).toHtmlEscaped())
                   : QVariant();
    }
    default:
        return {};
    }
}

bool DiagnosticsModel::canFetchMore(const QModelIndex& parent) const {
    return !parent.isValid() && m_shown < total();
}

void DiagnosticsModel::fetchMore(const QModelIndex& parent) {
    if (canFetchMore(parent)) {
        const int more = std::min(batch, total() - m_shown);
        beginInsertRows({}, m_shown, m_shown + more - 1);
        m_shown += more;
        endInsertRows();
    }
}

int DiagnosticsModel::total() const {
    return m_tree != nullptr ? static_cast<int>(std::min<std::size_t>(m_tree->diagnostics.size(), INT_MAX))
                             : 0;
}
