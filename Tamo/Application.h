#pragma once

#include <QApplication>
#include <QMessageBox>
#include <QPointer>

/// The application object. An event for which the memory is too short ends with a message, not with the
/// program. Each operation on a document leaves it unchanged if it throws `std::bad_alloc`.
class Application : public QApplication {
    Q_OBJECT

public:
    Application(int& argc, char** argv);

    bool notify(QObject* receiver, QEvent* event) override;

private:
    void tellShortage();

    QPointer<QMessageBox> m_message; ///< One at a time.
};
