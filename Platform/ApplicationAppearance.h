#pragma once

#include "Appearance.h"
#include "DesktopAppearance.h"

#include <QObject>

/// Gives the application its style, fonts and palette, and keeps the palette as the desktop prefers it. There
/// is one, made after the application object and before the first window.
class ApplicationAppearance : public QObject {
    Q_OBJECT

public:
    /// Starts as `TAMO_APPEARANCE` in the environment says (`light` or `dark`), else by the desktop.
    explicit ApplicationAppearance(QObject* parent = nullptr);

    Appearance current() const { return m_current; }

    /// Shows the program in `appearance` whatever the desktop prefers; nothing follows the desktop again.
    void setOverride(std::optional<Appearance> appearance);

signals:
    /// The palette of the application is the new one already.
    void changed();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void update();
    void noteDesktopPalette();

    DesktopAppearance m_desktop;
    std::optional<Appearance> m_override;
    Appearance m_paletteOfDesktop;
    Appearance m_current;
};
