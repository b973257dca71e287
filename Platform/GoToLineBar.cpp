#include "GoToLineBar.h"

#include "GroupedNumber.h"
#include "TextNavigation.h"

#include <QAction>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QRegularExpression>
#include <QToolButton>

#include <algorithm>
#include <limits>

namespace {

constexpr int gap = 8;
constexpr QSize smallestButton(32, 24);
constexpr int fieldWidth = 160;

/// The number, counted from 1, as one counted from 0; the greatest when it has too many digits.
std::uint64_t index(const QString& digits) {
    bool isSmall = false;
    const std::uint64_t number = digits.toULongLong(&isSmall);
    return isSmall ? std::max<std::uint64_t>(number, 1) - 1 : std::numeric_limits<std::uint64_t>::max();
}

} // namespace

GoToLineBar::GoToLineBar(FindBarClient& client, QWidget* parent) : QWidget(parent), m_client(client) {
    setAccessibleName(QStringLiteral("Ir a la línea"));
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(gap, gap, gap, gap);
    row->setSpacing(gap);
    auto* title = new QLabel(QStringLiteral("Ir a la línea"));
    m_place = new QLineEdit;
    title->setBuddy(m_place);
    m_place->setAccessibleName(QStringLiteral("Ir a la línea"));
    m_place->setToolTip(QStringLiteral("Una línea, o una línea y una columna: 12:5"));
    m_place->setFixedWidth(fieldWidth);
    connect(m_place, &QLineEdit::returnPressed, this, &GoToLineBar::go);
    m_message = new QLabel;
    m_message->setTextFormat(Qt::PlainText);
    m_message->setForegroundRole(QPalette::PlaceholderText);
    m_message->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    auto* close = new QToolButton;
    close->setAutoRaise(true);
    close->setMinimumSize(smallestButton);
    close->setText(QStringLiteral("✕"));
    close->setAccessibleName(QStringLiteral("Cerrar"));
    close->setToolTip(
        QStringLiteral("Cerrar (%1)").arg(QKeySequence(Qt::Key_Escape).toString(QKeySequence::NativeText)));
    close->setFocusPolicy(Qt::TabFocus);
    connect(close, &QToolButton::clicked, this, &GoToLineBar::closeBar);
    auto* command = new QAction(QStringLiteral("Ir a la &línea…"), this);
    command->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_L));
    connect(command, &QAction::triggered, this, &GoToLineBar::ask);
    addAction(command);
    row->addWidget(title);
    row->addWidget(m_place);
    row->addWidget(m_message, 1);
    row->addWidget(close);
    hide();
}

void GoToLineBar::ask() {
    const Rope& text = m_client.storage().text();
    m_place->setText(QString::number(text.line(m_client.selection().upper) + 1));
    m_message->setText(QStringLiteral("De 1 a %1").arg(groupedNumber(text.lineCount())));
    show();
    m_place->setFocus(Qt::ShortcutFocusReason);
    m_place->selectAll();
}

void GoToLineBar::closeBar() {
    hide();
    m_client.focus();
}

std::optional<Offset> GoToLineBar::place(const QString& written, const Rope& in) {
    static const QRegularExpression form(QStringLiteral("^\\s*([0-9]+)\\s*(?::\\s*([0-9]+)\\s*)?$"));
    const QRegularExpressionMatch match = form.match(written);
    if (!match.hasMatch()) {
        return std::nullopt;
    }
    const std::uint64_t line = std::min<std::uint64_t>(index(match.captured(1)), in.lineCount() - 1);
    const Offset start = in.lineStart(line);
    if (match.capturedStart(2) < 0) {
        return start;
    }
    const std::uint64_t length = TextNavigation::lineEnd(line, in) - start;
    const std::uint64_t column = std::min(index(match.captured(2)), length);
    return TextNavigation::characterStart(static_cast<Offset>(start + column), in);
}

void GoToLineBar::go() {
    const auto place = GoToLineBar::place(m_place->text(), m_client.storage().text());
    if (!place) {
        m_message->setText(QStringLiteral("Escribe una línea, o una línea y una columna: 12:5"));
        m_place->selectAll();
        return;
    }
    m_client.select(SourceRange::empty(*place));
    closeBar();
}

void GoToLineBar::keyPressEvent(QKeyEvent* event) {
    if (event->matches(QKeySequence::Cancel)) {
        closeBar();
    } else {
        QWidget::keyPressEvent(event);
    }
}

void GoToLineBar::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), palette().window());
    painter.fillRect(0, height() - 1, width(), 1, palette().mid());
}
