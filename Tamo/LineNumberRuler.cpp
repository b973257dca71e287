#include "LineNumberRuler.h"

#include "SystemColor.h"
#include "SystemFont.h"
#include "TextView.h"
#include "TextViewMouse.h"

#include <QHelpEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QToolTip>

#include <algorithm>
#include <cmath>

namespace {

constexpr int fewestDigits = 3;
constexpr double digitWidth = 7.5;
constexpr double room = 22;       ///< Beside the digits.
constexpr double labelMargin = 8; ///< At the right of a number.
constexpr double dotDiameter = 6;
constexpr double dotLeft = 4;
constexpr double leastChange = 0.5; ///< Of the thickness.

int digits(std::size_t number) {
    int count = 1;
    while (number >= 10) {
        number /= 10;
        ++count;
    }
    return count;
}

/// `text` for a tool tip, which would otherwise take what looks like markup for markup.
QString plainToolTip(const QString& text) {
    return text.isEmpty()
               ? QString()
               : QStringLiteral("<p style='white-space:pre-wrap'>%1</p>").arg(text.toHtmlEscaped());
}

} // namespace

LineNumberRuler::LineNumberRuler(TextView& clientView)
    : m_clientView(&clientView), m_ruleThickness(thickness(1)) {
    setFont(SystemFont::monospacedDigits());
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Ignored);
}

double LineNumberRuler::thickness(std::size_t lineCount) {
    return std::max(digits(lineCount), fewestDigits) * digitWidth + room;
}

LineNumberRuler::Marks LineNumberRuler::marks(double y, double lineHeight, QSizeF label,
                                              double ruleThickness) {
    const double height = std::max(lineHeight, label.height());
    return {QPointF(ruleThickness - label.width() - labelMargin, y + (height - label.height()) * 0.5),
            QRectF(dotLeft, y + (height - dotDiameter) * 0.5, dotDiameter, dotDiameter)};
}

std::size_t LineNumberRuler::lineCount() const {
    if (m_lines != nullptr) {
        return m_lines->lineCount();
    }
    return m_clientView != nullptr ? m_clientView->text().lineCount() : 1;
}

void LineNumberRuler::updateThickness() {
    const double wanted = thickness(lineCount());
    if (std::abs(wanted - m_ruleThickness) > leastChange) {
        m_ruleThickness = wanted;
        if (m_clientView != nullptr) {
            m_clientView->retile();
        }
    }
    update();
}

QSize LineNumberRuler::sizeHint() const { return {static_cast<int>(std::ceil(m_ruleThickness)), 0}; }

std::size_t LineNumberRuler::number(std::size_t ofLine) const {
    if (m_lines == nullptr) {
        return ofLine + 1;
    }
    const std::size_t first = m_clientView->firstVisibleLine();
    return m_lines->line(m_clientView->text().lineStart(first)) + (ofLine - first) + 1;
}

void LineNumberRuler::paintEvent(QPaintEvent*) {
    if (m_clientView == nullptr) {
        return;
    }
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillRect(rect(), color(SystemColor::textBackground, palette()));
    const QFontMetricsF metrics(font());
    const double lineHeight = m_clientView->lineHeight();
    const QColor labelColor = color(SystemColor::tertiaryLabel, palette());
    const QColor dotColor = color(SystemColor::systemRed, palette());
    for (std::size_t line = m_clientView->firstVisibleLine(); line <= m_clientView->lastVisibleLine();
         ++line) {
        const std::size_t shown = number(line);
        const QString label = QString::number(shown);
        const QSizeF size(metrics.horizontalAdvance(label), metrics.height());
        const Marks place = marks(top(line), lineHeight, size, m_ruleThickness);
        painter.setPen(labelColor);
        painter.drawText(place.label + QPointF(0, metrics.ascent()), label);
        if (m_errorLines.contains(shown - 1)) {
            painter.setPen(Qt::NoPen);
            painter.setBrush(dotColor);
            painter.drawEllipse(place.dot);
        }
    }
}

bool LineNumberRuler::event(QEvent* event) {
    if (event->type() != QEvent::ToolTip || m_clientView == nullptr) {
        return QWidget::event(event);
    }
    const auto& help = static_cast<const QHelpEvent&>(*event);
    const QString tip = m_toolTips ? m_toolTips(line(help.pos())) : QString();
    QToolTip::showText(help.globalPos(), plainToolTip(tip), this);
    return true;
}

void LineNumberRuler::wheelEvent(QWheelEvent* event) {
    if (m_clientView != nullptr) {
        QCoreApplication::sendEvent(m_clientView->viewport(), event);
    }
}

double LineNumberRuler::top(std::size_t ofLine) const {
    const QPointF inView =
        m_clientView->viewport()->mapTo(m_clientView, m_clientView->lineRect(ofLine).topLeft());
    return mapFrom(m_clientView, inView).y();
}

QPointF LineNumberRuler::beside(QPointF at) const {
    return {0, m_clientView->viewport()->mapFrom(m_clientView, mapTo(m_clientView, at)).y()};
}

std::size_t LineNumberRuler::line(QPointF at) const {
    return m_clientView->text().line(m_clientView->offset(beside(at)));
}

void LineNumberRuler::mousePressEvent(QMouseEvent* event) {
    if (m_clientView == nullptr || event->button() != Qt::LeftButton) {
        event->ignore();
        return;
    }
    const bool extends = event->modifiers().testFlag(Qt::ShiftModifier);
    m_clientView->mouse().pressLine(beside(event->position()),
                                    extends ? TextViewMouse::Extent::extended : TextViewMouse::Extent::line);
    m_clientView->setFocus(Qt::MouseFocusReason);
}

void LineNumberRuler::mouseMoveEvent(QMouseEvent* event) {
    if (m_clientView != nullptr && event->buttons().testFlag(Qt::LeftButton)) {
        m_clientView->mouse().dragTo(beside(event->position()));
    }
}

void LineNumberRuler::mouseReleaseEvent(QMouseEvent* event) {
    if (m_clientView != nullptr && event->button() == Qt::LeftButton) {
        m_clientView->mouse().endDrag();
    }
}
