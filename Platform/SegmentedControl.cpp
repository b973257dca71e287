#include "SegmentedControl.h"

#include "ControlPainting.h"
#include "MenuText.h"
#include "Precondition.h"
#include "Symbol.h"

#include <QHBoxLayout>
#include <QPainter>
#include <QStyleOptionToolButton>
#include <QStylePainter>
#include <QToolButton>

namespace {

constexpr int inset = 2;
constexpr int segmentPadding = 10;
constexpr int symbolSide = 16;
constexpr int symbolGap = 6;
constexpr int segmentHeight = 24;

/// A segment. The chosen one is a raised plate; the others lie in the box.
class Segment : public QAbstractButton {
public:
    Segment(const QString& title, QStringView symbol, QWidget* parent)
        : QAbstractButton(parent), m_title(title), m_symbol(symbol.toString()) {
        setText(menuText(title));
        setAccessibleName(title);
        setCheckable(true);
        // The group keeps one checked; this has each announced as a radio button.
        setAutoExclusive(true);
        setFocusPolicy(Qt::NoFocus);
        setAttribute(Qt::WA_Hover);
    }

    QSize sizeHint() const override {
        return QSize(2 * segmentPadding + symbolSide + symbolGap + fontMetrics().horizontalAdvance(m_title),
                     segmentHeight);
    }
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent*) override {
        QStylePainter painter(this);
        QStyleOption option;
        option.initFrom(this);
        option.state.setFlag(QStyle::State_Sunken, isDown());
        if (isChecked()) {
            ControlPainting::drawBox(painter, rect(), ControlPainting::cornerRadius - 1,
                                     color(SystemColor::control, palette()),
                                     color(SystemColor::separator, palette()));
        } else {
            ControlPainting::drawToolButton(painter, option);
        }
        const QColor ink =
            color(isChecked() ? SystemColor::textColor : SystemColor::secondaryLabel, palette());
        painter.setOpacity(isEnabled() ? 1 : 0.5);
        const QRect symbol(segmentPadding, (height() - symbolSide) / 2, symbolSide, symbolSide);
        Symbol::draw(painter, symbol, m_symbol, isChecked() ? color(SystemColor::accent, palette()) : ink);
        painter.setPen(ink);
        painter.drawText(rect().adjusted(segmentPadding + symbolSide + symbolGap, 0, 0, 0),
                         Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, m_title);
        if (hasFocus()) {
            style()->drawPrimitive(QStyle::PE_FrameFocusRect, &option, &painter, this);
        }
    }

private:
    QString m_title;
    QString m_symbol;
};

} // namespace

SegmentedControl::SegmentedControl(QWidget* parent) : QWidget(parent), m_layout(new QHBoxLayout(this)) {
    m_layout->setContentsMargins(inset, inset, inset, inset);
    m_layout->setSpacing(inset);
    setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Fixed);
    m_segments.setExclusive(true);
    connect(&m_segments, &QButtonGroup::idToggled, this, [this](int index, bool isOn) {
        // Tab stops at the chosen one; arrows lead to the others.
        m_segments.button(index)->setFocusPolicy(isOn ? Qt::TabFocus : Qt::NoFocus);
        if (isOn && !signalsBlocked()) {
            emit chosen(index);
        }
    });
}

void SegmentedControl::addSegment(const QString& title, QStringView symbol) {
    auto* const segment = new Segment(title, symbol, this);
    const int index = count();
    m_segments.addButton(segment, index);
    m_layout->addWidget(segment);
    if (index == 0) {
        setCurrent(0);
    }
}

void SegmentedControl::setCurrent(int index) {
    QAbstractButton* const segment = m_segments.button(index);
    precondition(segment != nullptr, "a segment has that index");
    const QSignalBlocker quietly(this);
    segment->setChecked(true);
}

void SegmentedControl::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    QColor ground = color(SystemColor::textColor, palette());
    ground.setAlpha(16);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(ground);
    painter.drawRoundedRect(rect(), ControlPainting::cornerRadius + 1, ControlPainting::cornerRadius + 1);
}
