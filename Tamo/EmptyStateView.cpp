#include "EmptyStateView.h"

#include "Symbol.h"
#include "SystemColor.h"
#include "SystemFont.h"

#include <QFontMetrics>
#include <QPainter>
#include <QPushButton>

#include <algorithm>

namespace {

constexpr int symbolSize = 40;
constexpr int gap = 8;
constexpr int symbolGap = 16;
constexpr int margin = 24;
constexpr int widest = 320; ///< Of a line of text.
constexpr int flags = Qt::AlignHCenter | Qt::AlignTop | Qt::TextWordWrap;

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

EmptyStateView::EmptyStateView(QWidget* parent) : QWidget(parent), m_button(new QPushButton(this)) {
    setBackgroundRole(QPalette::Base);
    m_button->setAutoDefault(false);
    m_button->hide();
    connect(m_button, &QPushButton::clicked, this, &EmptyStateView::actionRequested);
}

void EmptyStateView::setContents(const QString& symbol, const QString& title, const QString& description) {
    m_symbol = symbol;
    m_title = title;
    m_description = description;
    setAccessibleName(title);
    setAccessibleDescription(description);
    placeButton();
    update();
}

void EmptyStateView::setAction(const QString& title) {
    if (m_button->text() != title) {
        m_button->setText(title);
        m_button->setVisible(!title.isEmpty());
        placeButton();
        update();
    }
}

EmptyStateView::Places EmptyStateView::places() const {
    const int lineWidth = std::clamp(width() - 2 * margin, 0, widest);
    const QRect column((width() - lineWidth) / 2, 0, lineWidth, height());
    // A title may quote one long word.
    const int titleFlags = flags | (isWiderThan(m_title, lineWidth) ? int(Qt::TextWrapAnywhere) : 0);
    const QRect title = QFontMetrics(titleFont()).boundingRect(column, titleFlags, m_title);
    const QRect body = QFontMetrics(SystemFont::body()).boundingRect(column, flags, m_description);
    const QSize button = m_button->isHidden() ? QSize() : m_button->sizeHint();
    const int below = m_button->isHidden() ? 0 : symbolGap + button.height();
    const int total = symbolSize + symbolGap + title.height() + gap + body.height() + below;
    const int top = std::max(margin, (height() - total) / 2);
    const int titleTop = top + symbolSize + symbolGap;
    const int bodyTop = titleTop + title.height() + gap;
    return {{(width() - symbolSize) / 2, top, symbolSize, symbolSize},
            column.translated(0, titleTop),
            column.translated(0, bodyTop),
            {QPoint((width() - button.width()) / 2, bodyTop + body.height() + symbolGap), button},
            titleFlags};
}

void EmptyStateView::placeButton() {
    if (!m_button->isHidden()) {
        m_button->setGeometry(places().button);
    }
}

void EmptyStateView::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    placeButton();
}

void EmptyStateView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), palette().brush(backgroundRole()));
    if (m_symbol.isEmpty()) {
        return;
    }
    const Places place = places();
    Symbol::draw(painter, place.symbol, m_symbol, color(SystemColor::tertiaryLabel, palette()));
    painter.setFont(titleFont());
    painter.setPen(color(SystemColor::textColor, palette()));
    painter.drawText(place.title, place.titleFlags, m_title);
    painter.setFont(SystemFont::body());
    painter.setPen(color(SystemColor::secondaryLabel, palette()));
    painter.drawText(place.description, flags, m_description);
}
