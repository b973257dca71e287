#include "SymbolLabel.h"

#include <QPainter>

#include <algorithm>

namespace {

constexpr int symbolSize = 16;
constexpr int padding = 8; ///< At the outer sides.
constexpr int gap = 6;     ///< Between the symbol and the text.

} // namespace

SymbolLabel::SymbolLabel(QWidget* parent) : QLabel(parent) {
    setTextFormat(Qt::PlainText);
    setContentsMargins(padding + symbolSize + gap, 0, padding, 0);
}

void SymbolLabel::setIcon(const QIcon& icon) {
    m_icon = icon;
    update();
}

QSize SymbolLabel::sizeHint() const {
    const int textWidth = text().isEmpty() ? 0 : gap + fontMetrics().horizontalAdvance(text());
    return {2 * padding + symbolSize + textWidth, std::max(symbolSize, fontMetrics().height())};
}

void SymbolLabel::paintEvent(QPaintEvent* event) {
    QLabel::paintEvent(event);
    QPainter painter(this);
    m_icon.paint(&painter, padding, (height() - symbolSize) / 2, symbolSize, symbolSize);
}
