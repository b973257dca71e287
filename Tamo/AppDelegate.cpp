#include "AppDelegate.h"

#include <QApplication>
#include <QEvent>
#include <QPointer>
#include <QTimer>
#include <QWidget>

#include <algorithm>

namespace {

bool isPanel(const QWidget& window) {
    switch (window.windowType()) {
    case Qt::Dialog:
    case Qt::Sheet:
    case Qt::Drawer:
    case Qt::Popup:
    case Qt::Tool:
    case Qt::ToolTip:
    case Qt::SplashScreen:
        return true;
    default:
        return false;
    }
}

bool isAnyWindowOpen(const QWidget* except) {
    return std::ranges::any_of(QApplication::topLevelWidgets(), [except](const QWidget* window) {
        return window != except && window->isVisible() && !isPanel(*window);
    });
}

} // namespace

AppDelegate::AppDelegate(std::function<bool()> hasOpenDocuments, QObject* parent)
    : QObject(parent), terminate([] { QApplication::quit(); }),
      m_hasOpenDocuments(std::move(hasOpenDocuments)) {}

void AppDelegate::applicationDidFinishLaunching() {
    QApplication::setQuitOnLastWindowClosed(false);
    qApp->installEventFilter(this);
}

bool AppDelegate::eventFilter(QObject* watched, QEvent* event) {
    // A window that was only asked to close may refuse; one that is hidden from within has closed.
    if (event->type() == QEvent::Hide && watched->isWidgetType() && !event->spontaneous()) {
        if (auto* const window = static_cast<QWidget*>(watched); window->isWindow()) {
            windowWillClose(window);
        }
    }
    return QObject::eventFilter(watched, event);
}

void AppDelegate::windowWillClose(QWidget* window) {
    QTimer::singleShot(grace, Qt::PreciseTimer, this, [this, closing = QPointer(window)] {
        // One that shows again has not closed.
        const bool isBack = closing != nullptr && closing->isVisible() && !isPanel(*closing);
        if (!isBack && !isAnyWindowOpen(closing) && !m_hasOpenDocuments()) {
            terminate();
        }
    });
}
