#include "EmptyStateView.h"

#include "Symbol.h"
#include "SystemColor.h"
#include "SystemFont.h"

#include <QFontMetrics>
#include <QPainter>

#include <algorithm>

namespace {

constexpr int symbolSize = 40;
constexpr int gap = 8;
constexpr int symbolGap = 16;
constexpr int margin = 24;
constexpr int widest = 320; ///< Of a line of text.

QFont titleFont() {
    QFont font = SystemFont::semibold(SystemFont::body());
    font.setPixelSize(16);
    return font;
}

bool isWiderThan(const QString& title, int width) {
    const QStringList words = title.split(u' ');
    return std::ranges::any_of(words, [width](const QString& word) {
        return QFontMetrics(titleFont()).horizontalAdvance(word) > width;
    });
}

} // namespace

EmptyStateView::EmptyStateView(QWidget* parent) : QWidget(parent) { setBackgroundRole(QPalette::Base); }

void EmptyStateView::setContents(const QString& symbol, const QString& title, const QString& description) {
    m_symbol = symbol;
    m_title = title;
    m_description = description;
    setAccessibleName(title);
    setAccessibleDescription(description);
    update();
}

void EmptyStateView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), palette().brush(backgroundRole()));
    if (m_symbol.isEmpty()) {
        return;
    }
    const int lineWidth = std::clamp(width() - 2 * margin, 0, widest);
    const QRect column((width() - lineWidth) / 2, 0, lineWidth, height());
    constexpr int flags = Qt::AlignHCenter | Qt::AlignTop | Qt::TextWordWrap;
    // A title may quote one long word.
    const int titleFlags = flags | (isWiderThan(m_title, lineWidth) ? int(Qt::TextWrapAnywhere) : 0);
    const QFont& bodyFont = SystemFont::body();
    const QRect titleRect = QFontMetrics(titleFont()).boundingRect(column, titleFlags, m_title);
    const QRect bodyRect = QFontMetrics(bodyFont).boundingRect(column, flags, m_description);
    const int total = symbolSize + symbolGap + titleRect.height() + gap + bodyRect.height();
    int top = std::max(margin, (height() - total) / 2);

    Symbol::draw(painter, QRectF((width() - symbolSize) / 2.0, top, symbolSize, symbolSize), m_symbol,
                 color(SystemColor::tertiaryLabel, palette()));
    top += symbolSize + symbolGap;
    painter.setFont(titleFont());
    painter.setPen(color(SystemColor::textColor, palette()));
    painter.drawText(column.translated(0, top), titleFlags, m_title);
    top += titleRect.height() + gap;
    painter.setFont(bodyFont);
    painter.setPen(color(SystemColor::secondaryLabel, palette()));
    painter.drawText(column.translated(0, top), flags, m_description);
}
