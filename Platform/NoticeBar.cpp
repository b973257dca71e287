#include "NoticeBar.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>

#include <algorithm>
#include <utility>

namespace {

constexpr int progressWidth = 160;
constexpr int narrowestText = 240; ///< Beside buttons, where it has more than one line.

} // namespace

NoticeBar::NoticeBar(QWidget* parent)
    : QWidget(parent), m_layout(new QBoxLayout(QBoxLayout::LeftToRight, this)), m_text(new QLabel), m_progress(new QProgressBar),
      m_buttons(new QHBoxLayout) {
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::ToolTipBase);
    setForegroundRole(QPalette::ToolTipText);
    m_text->setTextFormat(Qt::PlainText);
    m_text->setWordWrap(true);
    m_text->setForegroundRole(QPalette::ToolTipText);
    m_progress->setRange(0, 0);
    m_progress->setTextVisible(false);
    m_progress->setFixedWidth(progressWidth);
    m_layout->setContentsMargins(16, 8, 16, 8);
    m_layout->setSpacing(8);
    m_layout->addWidget(m_text, 1);
    m_layout->addWidget(m_progress);
    m_layout->addLayout(m_buttons);
    connect(qApp, &QApplication::focusChanged, this, &NoticeBar::followFocus);
    hide();
}

void NoticeBar::tell(const QString& text, bool isBusy) {
    dismiss();
    m_text->setText(text);
    m_progress->setVisible(isBusy);
    setAccessibleName(text);
    show();
}

void NoticeBar::offer(const QString& title, std::function<void()> action, Press press) {
    auto* button = new QPushButton(title);
    button->setFocusPolicy(Qt::TabFocus);
    connect(button, &QPushButton::clicked, this, [this, press, action = std::move(action)] {
        const auto chosen = action; // This function goes with its button.
        if (press == Press::dismisses) {
            dismiss();
        }
        chosen();
    });
    m_buttons->addWidget(button);
}

void NoticeBar::withdrawOffers() {
    const QWidget* const focused = window()->focusWidget();
    if (focused != nullptr && isAncestorOf(focused) && m_focusBefore != nullptr) {
        m_focusBefore->setFocus(Qt::OtherFocusReason);
    }
    while (QLayoutItem* const item = m_buttons->takeAt(0)) {
        item->widget()->hide();
        item->widget()->deleteLater();
        delete item;
    }
}

void NoticeBar::dismiss() {
    withdrawOffers();
    hide();
}

void NoticeBar::followFocus(QWidget* from, QWidget* to) {
    if (to != nullptr && isAncestorOf(to) && from != nullptr && !isAncestorOf(from)) {
        m_focusBefore = from;
    }
}

bool NoticeBar::event(QEvent* event) {
    const bool handled = QWidget::event(event);
    if (event->type() == QEvent::Resize || event->type() == QEvent::LayoutRequest) {
        arrange();
    }
    return handled;
}

void NoticeBar::arrange() {
    const QMargins margins = m_layout->contentsMargins();
    const int line = m_text->fontMetrics().horizontalAdvance(m_text->text());
    const int beside = m_buttons->sizeHint().width() + m_layout->spacing();
    const bool isSqueezed =
        width() - margins.left() - margins.right() - beside < std::min(line, narrowestText);
    m_buttons->setAlignment(isSqueezed ? Qt::AlignRight : Qt::Alignment());
    m_layout->setDirection(isSqueezed ? QBoxLayout::TopToBottom : QBoxLayout::LeftToRight);
}

bool NoticeBar::isBusy() const { return isVisible() && m_progress->isVisible(); }

QString NoticeBar::text() const { return isVisible() ? m_text->text() : QString(); }
