#include "FindBar.h"

#include "FieldUndo.h"
#include "GroupedNumber.h"

#include <QAction>
#include <QApplication>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QPushButton>
#include <QStyle>
#include <QToolButton>

#include <algorithm>
#include <utility>

namespace {

constexpr int gap = 8;
constexpr QSize smallestButton(32, 24);
constexpr int shortestField = 128;
constexpr int longestField = 480;
constexpr int patienceInterval = 200;
constexpr Offset longestProposal = 1000;

/// `text` as an expression that matches it.
QString escaped(const QString& text) {
    QString expression;
    for (const QChar character : text) {
        if (QStringLiteral("\\^$.|?*+()[]{}").contains(character)) {
            expression += u'\\';
        }
        expression += character;
    }
    return expression;
}

/// A text that ends in an ellipsis where it has too little room: a number cut in the middle reads as another.
class ElidedLabel final : public QLabel {
protected:
    void paintEvent(QPaintEvent*) override {
        const QString shown = fontMetrics().elidedText(text(), Qt::ElideRight, width());
        QPainter painter(this);
        style()->drawItemText(&painter, rect(), int(Qt::AlignLeft | Qt::AlignVCenter), palette(), isEnabled(),
                              shown, foregroundRole());
    }
};

bool isReturn(const QKeyEvent& event) {
    return event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
}

} // namespace

FindBar::FindBar(FindBarClient& client, QWidget* parent)
    : QWidget(parent), m_client(client), m_finder(client.storage()) {
    setAccessibleName(QStringLiteral("Barra de búsqueda"));
    auto* grid = new QGridLayout(this);
    grid->setContentsMargins(gap, gap, gap, gap);
    grid->setSpacing(gap);
    grid->setColumnStretch(0, 2);
    grid->setColumnStretch(1, 3);
    buildLookingRow(*grid);
    buildReplacingRow(*grid);
    buildCommands();
    setTabOrder(m_pattern, m_template);
    setTabOrder(m_template, m_letterCase);
    updateColors();
    m_patience.setSingleShot(true);
    m_patience.setInterval(patienceInterval);
    connect(&m_patience, &QTimer::timeout, this, &FindBar::showPatience);
    connect(&m_finder, &TextFinder::found, this, &FindBar::showFound);
    connect(&m_finder, &TextFinder::notFound, this, &FindBar::showNotFound);
    connect(&m_finder, &TextFinder::matchesChanged, this, &FindBar::showMatches);
    connect(&m_finder, &TextFinder::replacementFound, this, &FindBar::applyReplacement);
    // What was told of the text before does not hold any more.
    connect(&client.storage(), &TextStorage::editProcessed, this, [this] { m_hasReport = false; });
    hide();
}

// What the bar is made of

void FindBar::buildLookingRow(QGridLayout& grid) {
    m_pattern = addField(QStringLiteral("Buscar"));
    m_pattern->setToolTip(QStringLiteral("Texto que se busca"));
    connect(m_pattern, &QLineEdit::textChanged, this, &FindBar::changePattern);
    grid.addWidget(m_pattern, 0, 0);
    auto* row = new QHBoxLayout;
    row->setSpacing(gap);
    grid.addLayout(row, 0, 1);

    auto* options = new QHBoxLayout;
    options->setSpacing(0);
    row->addLayout(options);
    m_letterCase = addOption(QStringLiteral("Aa"), QStringLiteral("Distinguir mayúsculas"));
    m_wholeWords = addOption(QStringLiteral("[ab]"), QStringLiteral("Palabras completas"));
    m_expression = addOption(QStringLiteral(".*"), QStringLiteral("Expresión regular"));
    for (QToolButton* option : {m_letterCase, m_wholeWords, m_expression}) {
        options->addWidget(option);
    }

    auto* steps = new QHBoxLayout;
    steps->setSpacing(0);
    row->addLayout(steps);
    QToolButton* previous = addButton(QStringLiteral("Anterior"), QKeySequence(Qt::SHIFT | Qt::Key_F3));
    previous->setArrowType(Qt::UpArrow);
    connect(previous, &QToolButton::clicked, this, &FindBar::findPrevious);
    QToolButton* next = addButton(QStringLiteral("Siguiente"), QKeySequence(Qt::Key_F3));
    next->setArrowType(Qt::DownArrow);
    connect(next, &QToolButton::clicked, this, &FindBar::findNext);
    steps->addWidget(previous);
    steps->addWidget(next);

    m_message = new ElidedLabel;
    m_message->setTextFormat(Qt::PlainText);
    m_message->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    m_message->setMinimumWidth(m_message->fontMetrics().horizontalAdvance(QStringLiteral("99 de 99")));
    row->addWidget(m_message, 1);

    QToolButton* close = addButton(QStringLiteral("Cerrar"), QKeySequence(Qt::Key_Escape));
    close->setText(QStringLiteral("✕"));
    connect(close, &QToolButton::clicked, this, &FindBar::closeBar);
    row->addWidget(close);
}

void FindBar::buildReplacingRow(QGridLayout& grid) {
    m_template = addField(QStringLiteral("Reemplazar por"));
    grid.addWidget(m_template, 1, 0);
    m_replacing = new QWidget;
    grid.addWidget(m_replacing, 1, 1);
    auto* row = new QHBoxLayout(m_replacing);
    row->setContentsMargins({});
    row->setSpacing(gap);
    m_replace = new QPushButton(QStringLiteral("Reemplazar"));
    m_replace->setToolTip(
        QStringLiteral("Reemplazar el resultado seleccionado y pasar al siguiente (Intro)"));
    connect(m_replace, &QPushButton::clicked, this, &FindBar::replaceMatch);
    m_replaceAll = new QPushButton;
    connect(m_replaceAll, &QPushButton::clicked, this, &FindBar::replaceAllOrCancel);
    for (QPushButton* button : {m_replace, m_replaceAll}) {
        button->setAutoDefault(false);
        button->setFocusPolicy(Qt::TabFocus);
        row->addWidget(button);
    }
    row->addStretch(1);
    updateReplacing();
}

void FindBar::buildCommands() {
    const auto add = [this](const QString& title, const QList<QKeySequence>& keys,
                            void (FindBar::*command)()) {
        auto* action = new QAction(title, this);
        action->setShortcuts(keys);
        connect(action, &QAction::triggered, this, command);
        addAction(action);
    };
    add(QStringLiteral("&Buscar…"), {QKeySequence(Qt::CTRL | Qt::Key_F)}, &FindBar::find);
    add(QStringLiteral("Buscar y &reemplazar…"),
        {QKeySequence(Qt::CTRL | Qt::Key_R), QKeySequence(Qt::CTRL | Qt::Key_H)}, &FindBar::findAndReplace);
    add(QStringLiteral("Buscar s&iguiente"), {QKeySequence(Qt::Key_F3), QKeySequence(Qt::CTRL | Qt::Key_G)},
        &FindBar::findNext);
    add(QStringLiteral("Buscar a&nterior"),
        {QKeySequence(Qt::SHIFT | Qt::Key_F3), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_G)},
        &FindBar::findPrevious);
}

QLineEdit* FindBar::addField(const QString& name) {
    auto* field = new QLineEdit;
    field->setPlaceholderText(name);
    field->setAccessibleName(name);
    field->setMinimumWidth(shortestField);
    field->setMaximumWidth(longestField);
    field->installEventFilter(this);
    FieldUndo::shareWithDocument(*field);
    return field;
}

QToolButton* FindBar::addOption(const QString& symbol, const QString& name) {
    QToolButton* option = addButton(name, {});
    option->setText(symbol);
    option->setCheckable(true);
    connect(option, &QToolButton::toggled, this, &FindBar::changePattern);
    return option;
}

QToolButton* FindBar::addButton(const QString& name, const QKeySequence& key) {
    auto* button = new QToolButton;
    button->setAutoRaise(true);
    button->setMinimumSize(smallestButton);
    button->setFocusPolicy(Qt::TabFocus);
    button->setAccessibleName(name);
    button->setToolTip(
        key.isEmpty() ? name : QStringLiteral("%1 (%2)").arg(name, key.toString(QKeySequence::NativeText)));
    return button;
}

// Opening and closing

void FindBar::find() { open(Rows::looking); }

void FindBar::findAndReplace() { open(Rows::lookingAndReplacing); }

void FindBar::open(Rows rows) {
    m_template->setVisible(rows == Rows::lookingAndReplacing);
    m_replacing->setVisible(rows == Rows::lookingAndReplacing);
    show();
    // Opened again from the bar itself, what is written stays.
    const bool isInUse = isAncestorOf(QApplication::focusWidget());
    const bool isChosen = !isInUse && takeSelection();
    m_pattern->setFocus(Qt::ShortcutFocusReason);
    m_pattern->selectAll();
    m_finder.setCounting(true);
    takePattern();
    if (isChosen) {
        look();
    }
}

/// Makes the selection what is looked for, and answers whether it lends itself to that.
bool FindBar::takeSelection() {
    const SourceRange selection = m_client.selection();
    const Rope& text = m_client.storage().text();
    m_anchor = selection.lower;
    m_found.reset();
    if (selection.isEmpty() || selection.length() > longestProposal ||
        text.line(selection.lower) != text.line(selection.upper)) {
        return false;
    }
    const QString selected = QString::fromStdU16String(text.units(selection));
    const QSignalBlocker blocker(m_pattern);
    m_pattern->setText(m_expression->isChecked() ? escaped(selected) : selected);
    return true;
}

void FindBar::closeBar() {
    m_finder.setCounting(false);
    m_isReplacingAll = false;
    m_patience.stop();
    updateReplacing();
    m_client.setMatches(nullptr);
    hide();
    m_client.focus();
}

// Looking

SearchPattern FindBar::writtenPattern() const {
    using enum SearchPattern::Case;
    using enum SearchPattern::Extent;
    using enum SearchPattern::Syntax;
    return {.text = m_pattern->text().toStdU16String(),
            .letterCase = m_letterCase->isChecked() ? distinguished : ignored,
            .extent = m_wholeWords->isChecked() ? wholeWords : anywhere,
            .syntax = m_expression->isChecked() ? regularExpression : plain};
}

void FindBar::changePattern() {
    takePattern();
    look();
}

void FindBar::takePattern() {
    m_isReplacingAll = false;
    m_hasReport = false;
    m_finder.setPattern(writtenPattern());
    m_patience.start();
    updateReplacing();
    showMatches();
}

void FindBar::look() {
    m_isStepping = false;
    if (canLook()) {
        m_finder.findNext(m_anchor);
    } else {
        showNotFound();
    }
}

/// Whether there is a pattern that can be looked for.
bool FindBar::canLook() { return !m_finder.pattern().text.empty() && m_finder.error().isEmpty(); }

void FindBar::findNext() {
    if (m_isReplacingAll) {
        return;
    }
    if (!canLook()) {
        find();
        return;
    }
    m_isStepping = true;
    const SourceRange selection = m_client.selection();
    // From an empty match the next one is another.
    const bool isEmptyMatch = selection.isEmpty() && m_found == selection;
    m_finder.findNext(selection.upper + (isEmptyMatch && selection.upper < m_client.storage().text().size()));
}

void FindBar::findPrevious() {
    if (m_isReplacingAll) {
        return;
    }
    if (!canLook()) {
        find();
        return;
    }
    m_isStepping = true;
    m_finder.findPrevious(m_client.selection().lower);
}

void FindBar::showFound(SourceRange match) {
    m_found = match;
    if (std::exchange(m_isStepping, false)) {
        m_anchor = match.lower;
    }
    m_hasReport = false;
    m_client.select(match);
    showMatches();
}

void FindBar::showNotFound() {
    if (m_found && m_client.selection() == *m_found) {
        m_client.select(SourceRange::empty(std::min(m_anchor, m_client.storage().text().size())));
    }
    m_found.reset();
    showMatches();
}

void FindBar::showMatches() {
    if (!isVisible()) {
        return;
    }
    m_client.setMatches([this](SourceRange visible) { return m_finder.visibleMatches(visible); });
    if (m_isReplacingAll && !m_finder.isReplacing()) {
        m_isReplacingAll = false;
        updateReplacing();
        report(QStringLiteral("El texto ha cambiado y no se ha reemplazado nada"), true);
    } else if (!m_finder.error().isEmpty()) {
        showMessage(m_finder.error(), true);
    } else if (m_finder.pattern().text.empty()) {
        showMessage({}, false);
    } else if (!m_isReplacingAll && !m_hasReport && (m_finder.isCountComplete() || m_finder.count() > 0)) {
        showMessage(countText(), m_finder.count() == 0);
    }
}

QString FindBar::countText() const {
    const std::uint64_t count = m_finder.count();
    if (count == 0) {
        return QStringLiteral("Sin resultados");
    }
    const bool isAtMatch = m_found && m_client.selection() == *m_found;
    const auto index = isAtMatch ? m_finder.index(*m_found) : std::nullopt;
    if (!m_finder.isCountComplete()) {
        return (index ? QStringLiteral("%1 de más de %2").arg(groupedNumber(*index + 1), groupedNumber(count))
                      : QStringLiteral("Más de %1").arg(groupedNumber(count)));
    }
    return index ? QStringLiteral("%1 de %2").arg(groupedNumber(*index + 1), groupedNumber(count))
                 : counted(count, QStringLiteral("resultado"), QStringLiteral("resultados"));
}

/// Whatever is under way takes longer than a moment.
void FindBar::showPatience() {
    updateReplacing();
    const bool isLooking = canLook() && !m_finder.isCountComplete() && m_finder.count() == 0;
    if (isLooking && !m_isReplacingAll && !m_hasReport) {
        showMessage(QStringLiteral("Buscando…"), false);
    }
}

/// Shows a message that stays until something else is looked for.
void FindBar::report(const QString& text, bool isProblem) {
    m_hasReport = true;
    showMessage(text, isProblem);
}

void FindBar::showMessage(const QString& text, bool isProblem) {
    m_message->setText(text);
    m_message->setToolTip(text);
    m_isProblem = isProblem;
    updateColors();
}

// Replacing

ReplacementTemplate FindBar::writtenTemplate() const {
    return {m_template->text().toStdU16String(), m_finder.pattern().syntax};
}

void FindBar::replaceMatch() {
    if (!canLook()) {
        return;
    }
    const SourceRange selection = m_client.selection();
    if (m_found == selection) {
        m_finder.replace(selection, writtenTemplate());
    } else {
        m_finder.findNext(selection.lower);
    }
}

void FindBar::replaceAllOrCancel() {
    if (m_isReplacingAll) {
        m_isReplacingAll = false;
        m_finder.cancelReplacing();
        report(QStringLiteral("Reemplazo cancelado"), false);
    } else if (canLook()) {
        m_isReplacingAll = true;
        m_hasReport = false;
        m_patience.start();
        m_finder.replaceAll(writtenTemplate(), m_client.selection().lower);
    }
    updateReplacing();
}

void FindBar::applyReplacement(const TextReplacement& replacement) {
    const bool isAll = std::exchange(m_isReplacingAll, false);
    updateReplacing();
    if (replacement.isTooLong) {
        report(QStringLiteral("El texto sería demasiado largo"), true);
        return;
    }
    if (replacement.reason != SearchEnd::Reason::done) {
        return;
    }
    if (replacement.count != 0) {
        m_client.replace(replacement.range, replacement.text,
                         isAll ? QStringLiteral("Reemplazar todo") : QStringLiteral("Reemplazar"),
                         replacement.caret);
        m_anchor = replacement.caret;
    }
    if (isAll) {
        m_found.reset();
        report(replacement.count == 0
                   ? QStringLiteral("Sin resultados")
                   : counted(replacement.count, QStringLiteral("reemplazo"), QStringLiteral("reemplazos")),
               replacement.count == 0);
    } else {
        m_finder.findNext(m_client.selection().upper);
    }
}

void FindBar::updateReplacing() {
    const bool isShown = m_isReplacingAll && !m_patience.isActive();
    m_replaceAll->setText(isShown ? QStringLiteral("Cancelar") : QStringLiteral("Reemplazar todo"));
    m_replaceAll->setToolTip(isShown ? QStringLiteral("Dejar el texto como está")
                                     : QStringLiteral("Reemplazar todos los resultados del texto"));
    m_replace->setEnabled(!m_isReplacingAll);
    m_template->setToolTip(
        m_expression->isChecked()
            ? QStringLiteral("\\0 es el resultado, \\1 a \\9 sus grupos, \\n un salto de línea")
            : QStringLiteral("Texto que sustituye a cada resultado"));
    if (isShown) {
        showMessage(QStringLiteral("Reemplazando…"), false);
    }
}

// Keys and looks

bool FindBar::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::KeyPress || !isReturn(*static_cast<QKeyEvent*>(event))) {
        return QWidget::eventFilter(watched, event);
    }
    const bool isBackwards = static_cast<QKeyEvent*>(event)->modifiers().testFlag(Qt::ShiftModifier);
    if (watched == m_template) {
        replaceMatch();
    } else if (isBackwards) {
        findPrevious();
    } else {
        findNext();
    }
    return true;
}

void FindBar::keyPressEvent(QKeyEvent* event) {
    if (event->matches(QKeySequence::Cancel)) {
        closeBar();
    } else {
        QWidget::keyPressEvent(event);
    }
}

void FindBar::changeEvent(QEvent* event) {
    if (event->type() == QEvent::PaletteChange && m_message != nullptr) {
        updateColors();
    }
    QWidget::changeEvent(event);
}

void FindBar::updateColors() {
    const bool isDark = palette().color(QPalette::Window).lightness() < 128;
    QPalette colors = palette();
    if (m_isProblem) {
        colors.setColor(QPalette::WindowText, isDark ? QColor(0xFF, 0x8A, 0x80) : QColor(0xB3, 0x26, 0x1E));
    }
    m_message->setPalette(colors);
}

void FindBar::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), palette().window());
    painter.fillRect(0, height() - 1, width(), 1, palette().mid());
}
