#include "TreeRowEditor.h"

#include <QKeyEvent>

TreeRowEditor::TreeRowEditor(const QString& text, const QFont& font, QWidget* parent)
    : QLineEdit(text, parent), m_original(text) {
    setFont(font);
    setMaxLength(std::numeric_limits<int>::max());
    selectAll();
}

bool TreeRowEditor::event(QEvent* event) {
    // Keys that mean something to the field must not run a command of the window.
    if (event->type() == QEvent::ShortcutOverride) {
        const auto key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Escape || key == Qt::Key_Return || key == Qt::Key_Enter) {
            event->accept();
            return true;
        }
    }
    return QLineEdit::event(event);
}

void TreeRowEditor::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
    case Qt::Key_Escape:
        finish(false);
        break;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        finish(true);
        break;
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_PageUp:
    case Qt::Key_PageDown:
        event->accept();
        break;
    default:
        QLineEdit::keyPressEvent(event);
    }
}

void TreeRowEditor::focusOutEvent(QFocusEvent* event) {
    QLineEdit::focusOutEvent(event);
    if (event->reason() != Qt::PopupFocusReason && event->reason() != Qt::ActiveWindowFocusReason) {
        finish(true);
    }
}

void TreeRowEditor::finish(bool isAccepted) {
    if (!m_isFinished) {
        m_isFinished = true;
        emit finished(isAccepted && text() != m_original);
    }
}
