#include "ApplicationAppearance.h"

#include "InterfaceStyle.h"
#include "SystemColor.h"
#include "SystemFont.h"

#include <QApplication>
#include <QEvent>
#include <QPalette>
#include <QStyleHints>
#include <QToolTip>

namespace {

Appearance appearanceOf(const QPalette& palette) {
    return isDark(palette) ? Appearance::dark : Appearance::light;
}

} // namespace

ApplicationAppearance::ApplicationAppearance(QObject* parent)
    : QObject(parent), m_desktop(DesktopAppearance::sessionBus()),
      m_override(appearance(qEnvironmentVariable("TAMO_APPEARANCE"))),
      m_paletteOfDesktop(appearanceOf(QGuiApplication::palette())),
      m_current(m_override.value_or(m_paletteOfDesktop)) {
    QApplication::setStyle(new InterfaceStyle);
    QApplication::setFont(SystemFont::body());
    QApplication::setFont(SystemFont::semibold(SystemFont::caption()), "QHeaderView");
    QToolTip::setFont(SystemFont::callout());
    // Some desktops hide them there.
    QGuiApplication::styleHints()->setShowShortcutsInContextMenus(true);
    QApplication::setPalette(palette(m_current));
    QToolTip::setPalette(palette(m_current));
    connect(&m_desktop, &DesktopAppearance::preferenceChanged, this, &ApplicationAppearance::update);
    qApp->installEventFilter(this);
}

void ApplicationAppearance::setOverride(std::optional<Appearance> appearance) {
    m_override = appearance;
    update();
}

void ApplicationAppearance::update() {
    const Appearance wanted = m_override.value_or(m_desktop.preference().value_or(m_paletteOfDesktop));
    if (wanted != m_current) {
        m_current = wanted;
        QApplication::setPalette(palette(wanted));
        QToolTip::setPalette(palette(wanted));
        emit changed();
    }
}

bool ApplicationAppearance::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::ThemeChange) {
        // Every window is told, before the next one is. Asking for the palette changes it for a moment.
        QMetaObject::invokeMethod(this, &ApplicationAppearance::noteDesktopPalette, Qt::QueuedConnection);
    }
    return QObject::eventFilter(watched, event);
}

void ApplicationAppearance::noteDesktopPalette() {
    QApplication::setPalette(QPalette());
    m_paletteOfDesktop = appearanceOf(QGuiApplication::palette());
    QApplication::setPalette(palette(m_current));
    update();
}
