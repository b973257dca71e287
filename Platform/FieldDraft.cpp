#include "FieldDraft.h"

#include <QGuiApplication>
#include <QInputMethod>
#include <QWidget>

void FieldDraft::commit(QWidget* focus) {
    QGuiApplication::inputMethod()->commit();
    QWidget* field = focus;
    while (field != nullptr && field->metaObject()->indexOfSlot("commitDraft()") < 0) {
        field = field->isWindow() ? nullptr : field->parentWidget();
    }
    if (field != nullptr) {
        QMetaObject::invokeMethod(field, "commitDraft");
    }
}
