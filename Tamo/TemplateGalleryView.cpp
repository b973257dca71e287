#include "TemplateGalleryView.h"

#include "DocumentTemplate.h"
#include "EditorSession.h"
#include "Symbol.h"
#include "SystemColor.h"
#include "SystemFont.h"

#include <QAbstractButton>
#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QScrollArea>
#include <QVBoxLayout>

#include <algorithm>

namespace {

constexpr int spacing = 20;
constexpr int padding = 32;
constexpr int gap = 14;           ///< Between cards.
constexpr int narrowestCard = 132;
constexpr int widestPage = 840;
constexpr int cardHeight = 112;
constexpr int symbolHeight = 34;
constexpr int symbolSize = 28;
constexpr double radius = 10;

/// One template: its symbol above its title.
class Card : public QAbstractButton {
public:
    Card(const QString& title, const QString& symbol) : m_symbol(symbol) {
        setText(title);
        setAccessibleName(title);
        setFixedHeight(cardHeight);
        setMinimumWidth(narrowestCard);
        setFocusPolicy(Qt::StrongFocus);
        setAttribute(Qt::WA_Hover);
        setCursor(Qt::PointingHandCursor);
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        const bool isHot = underMouse() || hasFocus() || isDown();
        const QColor edge = color(isHot ? SystemColor::accent : SystemColor::separator, palette());
        painter.setPen(QPen(edge, hasFocus() ? 2 : 1));
        painter.setBrush(color(isDown() ? SystemColor::quietSelection : SystemColor::textBackground, palette()));
        painter.drawRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), radius, radius);

        const QFontMetrics metrics(SystemFont::callout());
        const int top = (height() - symbolHeight - 10 - metrics.height()) / 2;
        QRectF box(0, 0, symbolSize, symbolSize);
        box.moveCenter(QPointF(width() / 2.0, top + symbolHeight / 2.0));
        Symbol::draw(painter, box, m_symbol, color(SystemColor::accent, palette()));
        painter.setFont(SystemFont::callout());
        painter.setPen(color(SystemColor::textColor, palette()));
        painter.drawText(QRect(8, top + symbolHeight + 10, width() - 16, metrics.height()), Qt::AlignHCenter,
                         metrics.elidedText(text(), Qt::ElideRight, width() - 16));
    }

private:
    const QString m_symbol;
};

QString string(std::u16string_view units) {
    return QString::fromUtf16(units.data(), static_cast<qsizetype>(units.size()));
}

} // namespace

TemplateGalleryView::TemplateGalleryView(EditorSession& session, QWidget* parent)
    : QWidget(parent), m_page(new QWidget), m_blank(new QPushButton(QStringLiteral("Empezar en blanco"))) {
    auto* title = new QLabel(QStringLiteral("Nuevo documento XML"));
    title->setFont(SystemFont::semibold(SystemFont::title()));
    auto* subtitle = new QLabel(QStringLiteral("Elige un punto de partida o empieza a escribir."));
    subtitle->setFont(SystemFont::body());
    subtitle->setForegroundRole(QPalette::PlaceholderText);

    m_grid = new QGridLayout;
    m_grid->setSpacing(gap);
    for (const DocumentTemplate& each : DocumentTemplate::catalogue()) {
        auto* card = new Card(string(each.title), string(each.symbol));
        connect(card, &QAbstractButton::clicked, this, [&session, &each] { session.apply(each); });
        m_cards.push_back(card);
    }
    connect(m_blank, &QPushButton::clicked, this, [this] { emit textRequested({}); });

    auto* heading = new QVBoxLayout;
    heading->setSpacing(6);
    heading->addWidget(title, 0, Qt::AlignHCenter);
    heading->addWidget(subtitle, 0, Qt::AlignHCenter);
    m_page->setMaximumWidth(widestPage);
    auto* column = new QVBoxLayout(m_page);
    column->setContentsMargins(padding, padding, padding, padding);
    column->setSpacing(spacing);
    column->addStretch(2);
    column->addLayout(heading);
    column->addLayout(m_grid);
    column->addWidget(m_blank, 0, Qt::AlignHCenter);
    column->addStretch(3);

    auto* centered = new QWidget;
    auto* row = new QHBoxLayout(centered);
    row->setContentsMargins(0, 0, 0, 0);
    row->addStretch(1);
    row->addWidget(m_page, 100);
    row->addStretch(1);
    auto* scroll = new QScrollArea;
    scroll->setWidget(centered);
    scroll->setWidgetResizable(true);
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setFocusPolicy(Qt::NoFocus);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(scroll);
    setFocusPolicy(Qt::StrongFocus);
    arrangeCards();
    // Only what is in the window has an order in it.
    for (std::size_t at = 1; at < m_cards.size(); ++at) {
        setTabOrder(m_cards[at - 1], m_cards[at]);
    }
    setTabOrder(m_cards.back(), m_blank);
}

void TemplateGalleryView::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    arrangeCards();
}

void TemplateGalleryView::arrangeCards() {
    const int room = std::min(width(), widestPage) - 2 * padding;
    const int columns =
        std::clamp((room + gap) / (narrowestCard + gap), 1, static_cast<int>(m_cards.size()));
    if (columns == m_columns) {
        return;
    }
    for (int at = 0; at < m_columns; ++at) {
        m_grid->setColumnStretch(at, 0);
    }
    m_columns = columns;
    for (int at = 0; QAbstractButton* const card : m_cards) {
        m_grid->addWidget(card, at / columns, at % columns);
        m_grid->setColumnStretch(at % columns, 1);
        ++at;
    }
}

void TemplateGalleryView::keyPressEvent(QKeyEvent* event) {
    const bool isCommand = (event->modifiers() & (Qt::ControlModifier | Qt::MetaModifier)) != 0;
    const QString units = event->text();
    if (isCommand || units.isEmpty() || !units.front().isPrint()) {
        QWidget::keyPressEvent(event);
    } else {
        emit textRequested(units);
    }
}

void TemplateGalleryView::paste() { emit pasteRequested(); }
