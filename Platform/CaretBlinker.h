#pragma once

#include <QBasicTimer>
#include <QObject>

/// Whether the caret of the view that has the keyboard is to be seen just now: on and off in the rhythm that
/// the desktop wants, steadily on where it wants none.
class CaretBlinker : public QObject {
    Q_OBJECT

public:
    explicit CaretBlinker(QObject* parent = nullptr);

    bool isOn() const { return m_isOn; }

    /// On, and blinking from now: the keyboard came, or the caret moved.
    void start();

    /// Off until the next start.
    void stop();

signals:
    void toggled();

protected:
    void timerEvent(QTimerEvent* event) override;

private:
    void show(bool isOn);

    QBasicTimer m_timer;
    bool m_isStarted = false;
    bool m_isOn = false;
};
