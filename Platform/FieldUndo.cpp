#include "FieldUndo.h"

#include <QKeyEvent>
#include <QLineEdit>

#include <cstring>

namespace {

constexpr auto property = "sharesUndoWithDocument";

/// Keeps a field from claiming keys that it has no use for.
class KeyFilter : public QObject {
public:
    explicit KeyFilter(QLineEdit& field) : QObject(&field), m_field(field) {}

    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() != QEvent::ShortcutOverride) {
            return QObject::eventFilter(watched, event);
        }
        const auto& key = static_cast<const QKeyEvent&>(*event);
        const bool isForDocument =
            (key.matches(QKeySequence::Undo) && FieldUndo::isForDocument(&m_field, "undo")) ||
            (key.matches(QKeySequence::Redo) && FieldUndo::isForDocument(&m_field, "redo"));
        if (isForDocument) {
            event->ignore();
        }
        return isForDocument;
    }

private:
    QLineEdit& m_field;
};

} // namespace

void FieldUndo::shareWithDocument(QLineEdit& field) {
    field.setProperty(property, true);
    field.installEventFilter(new KeyFilter(field));
}

bool FieldUndo::isForDocument(const QWidget* focus, const char* slot) {
    const auto* field = qobject_cast<const QLineEdit*>(focus);
    if (field == nullptr || !field->property(property).toBool()) {
        return false;
    }
    return (std::strcmp(slot, "undo") == 0 && !field->isUndoAvailable()) ||
           (std::strcmp(slot, "redo") == 0 && !field->isRedoAvailable());
}
