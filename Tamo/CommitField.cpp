#include "CommitField.h"

#include <QAbstractTextDocumentLayout>
#include <QFontMetrics>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTextBlock>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>

namespace {

constexpr int longestEditable = 65'536;
constexpr qsizetype longestShown = 1'000; ///< Of what cannot be edited.
constexpr int fewestLines = 3;
constexpr int mostLines = 12;

QString withLineFeeds(QString text) {
    text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    return text.replace(u'\r', u'\n');
}

/// Whether the key is Return or Enter, alone or with Shift.
bool isReturn(const QKeyEvent& key) {
    const bool isCommand = bool(key.modifiers() & ~(Qt::KeypadModifier | Qt::ShiftModifier));
    return !isCommand && (key.key() == Qt::Key_Return || key.key() == Qt::Key_Enter);
}

} // namespace

CommitField::CommitField(const QString& title, Axis axis, QWidget* parent) : QWidget(parent) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    if (axis == Axis::horizontal) {
        m_line = new QLineEdit;
        m_line->setPlaceholderText(title);
        m_line->setMaxLength(longestEditable);
    } else {
        m_text = new QPlainTextEdit;
        m_text->setPlaceholderText(title);
        m_text->setTabChangesFocus(true);
        m_text->setUndoRedoEnabled(true);
        m_text->setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
        connect(m_text, &QPlainTextEdit::textChanged, this, &CommitField::fitHeight);
    }
    layout->addWidget(editor());
    if (m_text != nullptr) {
        m_note = new QLabel;
        m_note->setWordWrap(true);
        m_note->setTextFormat(Qt::PlainText);
        m_note->hide();
        layout->addWidget(m_note);
    }
    editor()->setAccessibleName(title);
    editor()->installEventFilter(this);
    setFocusProxy(editor());
    showValue();
}

QWidget* CommitField::editor() const {
    return m_line != nullptr ? static_cast<QWidget*>(m_line) : static_cast<QWidget*>(m_text);
}

bool CommitField::isFocused() const { return editor()->hasFocus(); }

QString CommitField::draft() const {
    if (m_line != nullptr) {
        return m_line->text();
    }
    // The plain text would have spaces that break in the place of those that do not.
    return m_text->document()->toRawText().replace(QChar::ParagraphSeparator, u'\n');
}

void CommitField::setDraft(const QString& draft) {
    if (m_line != nullptr) {
        m_line->setText(draft);
    } else {
        m_text->setPlainText(draft);
    }
}

void CommitField::setValue(const QString& value) {
    if (value == m_value) {
        return;
    }
    m_value = value;
    m_committed.reset();
    if (const QString now = draft();
        !isFocused() || now == m_shown || now == value || now == withLineFeeds(value)) {
        showValue();
    }
}

void CommitField::setFont(const QFont& font) {
    editor()->setFont(font);
    if (m_text != nullptr) {
        fitHeight();
    }
}

void CommitField::selectAll() {
    if (m_line != nullptr) {
        m_line->selectAll();
    } else {
        m_text->selectAll();
    }
}

int CommitField::caret() const {
    return m_line != nullptr ? m_line->cursorPosition() : m_text->textCursor().position();
}

/// Puts the caret there, or at the end of a shorter draft.
void CommitField::setCaret(int caret) {
    if (m_line != nullptr) {
        m_line->setCursorPosition(caret);
    } else {
        QTextCursor cursor = m_text->textCursor();
        cursor.setPosition(std::min(caret, m_text->document()->characterCount() - 1));
        m_text->setTextCursor(cursor);
    }
}

/// A draft that is the value already stays as it is, with its caret and its steps of undo.
void CommitField::showValue() {
    m_isTooLong = m_value.size() > longestEditable;
    const QString shown = m_isTooLong ? m_value.left(longestShown) + u'…' : m_value;
    if (const QString now = draft(); now != shown && now != withLineFeeds(shown)) {
        const int before = caret();
        setDraft(shown);
        setCaret(isFocused() ? before : 0);
    }
    m_shown = draft();
    const QString note =
        m_isTooLong ? QStringLiteral("Es demasiado largo para editarlo aquí; se edita en el texto.") : QString();
    editor()->setToolTip(note);
    if (m_line != nullptr) {
        m_line->setReadOnly(m_isTooLong);
    } else {
        m_text->setReadOnly(m_isTooLong);
        m_note->setText(note);
        m_note->setVisible(m_isTooLong);
        fitHeight();
    }
}

void CommitField::commitDraft() {
    if (draft() != m_shown && draft() != m_committed) {
        commit();
    }
}

void CommitField::discardDraft() {
    m_committed.reset();
    const int before = caret();
    setDraft({}); // Forgets the steps of undo.
    showValue();
    setCaret(isFocused() ? before : 0);
}

void CommitField::commit() {
    if (m_isTooLong || !m_commit) {
        return;
    }
    const QString now = draft();
    if (m_commit(now == m_shown ? m_value : now)) {
        m_committed = now;
    } else {
        discardDraft();
    }
}

bool CommitField::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::KeyPress) {
        return handleKey(*static_cast<QKeyEvent*>(event));
    }
    if (event->type() == QEvent::ShortcutOverride) {
        const auto& key = *static_cast<QKeyEvent*>(event);
        if (key.key() == Qt::Key_Escape || (isReturn(key) && m_text != nullptr)) {
            event->accept();
            return true;
        }
    }
    if (event->type() == QEvent::Resize && m_text != nullptr) {
        // The lines wrap anew once the editor has seen its new width.
        QMetaObject::invokeMethod(this, &CommitField::fitHeight, Qt::QueuedConnection);
    }
    if (event->type() == QEvent::FocusOut) {
        leave(static_cast<QFocusEvent*>(event)->reason());
    }
    return QWidget::eventFilter(watched, event);
}

void CommitField::leave(Qt::FocusReason reason) {
    if (reason == Qt::PopupFocusReason) {
        return;
    }
    commitDraft();
    if (!m_committed && draft() != m_shown) {
        showValue();
    }
    if (m_line != nullptr && reason != Qt::ActiveWindowFocusReason) {
        m_line->setCursorPosition(0); // The start of a long value is to be seen.
    }
    emit focusLost();
}

bool CommitField::handleKey(const QKeyEvent& key) {
    const bool isShifted = key.modifiers().testFlag(Qt::ShiftModifier);
    if (isReturn(key) && isShifted && m_text != nullptr) {
        breakLine();
        return true;
    }
    if (isReturn(key) && !isShifted) {
        commit();
        emit submitted();
        return true;
    }
    if (key.key() == Qt::Key_Escape) {
        discardDraft();
        emit cancelled();
        return true;
    }
    return false;
}

void CommitField::breakLine() {
    if (!m_text->isReadOnly()) {
        // As a paragraph of its own: the editor itself would write a separator of lines, which is a
        // character.
        m_text->insertPlainText(QStringLiteral("\n"));
        m_text->ensureCursorVisible();
    }
}

/// The height of the text's first lines, wrapped ones included, as many as the field grows to. Some lines are
/// higher than the font says, such as those with emoji.
double CommitField::shownHeight() const {
    const QAbstractTextDocumentLayout& layout = *m_text->document()->documentLayout();
    double height = 0;
    int lines = 0;
    for (QTextBlock block = m_text->document()->begin(); block.isValid() && lines < mostLines;
         block = block.next()) {
        const double blockHeight = layout.blockBoundingRect(block).height(); // Lays the block out.
        const int blockLines = std::max(1, block.layout()->lineCount());
        const int shown = std::min(blockLines, mostLines - lines);
        height += shown == blockLines ? blockHeight : block.layout()->lineAt(shown).y();
        lines += shown;
    }
    return height;
}

void CommitField::fitHeight() {
    if (m_text == nullptr) {
        return;
    }
    const double least = fewestLines * m_text->fontMetrics().lineSpacing();
    const double inner = std::max(least, shownHeight()) + 2 * m_text->document()->documentMargin();
    const QMargins frame = m_text->contentsMargins();
    m_text->setFixedHeight(static_cast<int>(std::ceil(inner)) + frame.top() + frame.bottom());
}
