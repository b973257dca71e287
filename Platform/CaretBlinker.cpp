#include "CaretBlinker.h"

#include <QGuiApplication>
#include <QStyleHints>
#include <QTimerEvent>

CaretBlinker::CaretBlinker(QObject* parent) : QObject(parent) {
    connect(QGuiApplication::styleHints(), &QStyleHints::cursorFlashTimeChanged, this, [this] {
        if (m_isStarted) {
            start();
        }
    });
}

void CaretBlinker::start() {
    m_isStarted = true;
    const int period = QGuiApplication::styleHints()->cursorFlashTime();
    if (period > 1) {
        m_timer.start(period / 2, this);
    } else {
        m_timer.stop();
    }
    show(true);
}

void CaretBlinker::stop() {
    m_isStarted = false;
    m_timer.stop();
    show(false);
}

void CaretBlinker::timerEvent(QTimerEvent* event) {
    if (event->timerId() == m_timer.timerId()) {
        show(!m_isOn);
    }
}

void CaretBlinker::show(bool isOn) {
    if (isOn != m_isOn) {
        m_isOn = isOn;
        emit toggled();
    }
}
