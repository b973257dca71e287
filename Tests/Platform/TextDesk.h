#pragma once

#include "TextView.h"

#include <QString>
#include <QTest>

#include <gtest/gtest.h>

#include <QMimeData>

#include <functional>
#include <memory>
#include <string>
#include <string_view>

/// A view whose user does with carried text what a test says; at first drops it nowhere.
class CarryingView : public TextView {
public:
    std::function<Qt::DropAction(const QMimeData&)> carried = [](const QMimeData&) {
        return Qt::IgnoreAction;
    };

protected:
    Qt::DropAction carry(QMimeData* text) override {
        const std::unique_ptr<QMimeData> owned(text);
        return carried(*text);
    }
};

/// A text view on the screen that has the keyboard, over a text with its history.
struct TextDesk {
    TextStorage storage;
    UndoManager undo;
    TextHistory history;
    CarryingView view;

    explicit TextDesk(std::u16string_view units) : storage(Rope(units)), history(storage) {
        history.setUndoManager(&undo);
        view.resize(600, 300);
        view.setHistory(&history);
        view.show();
        view.setFocus();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&view));
    }

    std::u16string text() const { return storage.text().units(storage.text().fullRange()); }

    /// The text with the selection between brackets, or the caret as `|`.
    std::u16string shown() const {
        std::u16string units = text();
        if (view.selection().isEmpty()) {
            return units.insert(view.caret(), 1, u'|');
        }
        units.insert(view.selection().upper, 1, u']');
        return units.insert(view.selection().lower, 1, u'[');
    }

    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QTest::keyClick(&view, key, modifiers);
    }
    void type(const char* text) { QTest::keyClicks(&view, QString::fromUtf8(text)); }

    /// Where the caret would be at an offset, in the viewport.
    QPoint place(Offset at) const {
        const QRectF caret = view.caretRect(at);
        return QPointF(caret.left() + 1, caret.center().y()).toPoint();
    }
};
