#include "Application.h"

#include "MemoryShortage.h"
#include "ThreadTeam.h"

#include <new>

Application::Application(int& argc, char** argv) : QApplication(argc, argv) { startSharedPool(); }

bool Application::notify(QObject* receiver, QEvent* event) {
    try {
        return QApplication::notify(receiver, event);
    } catch (const std::bad_alloc&) {
        tellShortage();
        return true;
    }
}

void Application::tellShortage() {
    if (m_message != nullptr) {
        return;
    }
    m_message = new QMessageBox(QMessageBox::Warning, applicationName(),
                                memoryShortage(QStringLiteral("hacer esto")), QMessageBox::Ok,
                                activeWindow());
    m_message->setAttribute(Qt::WA_DeleteOnClose);
    m_message->setTextFormat(Qt::PlainText);
    m_message->setInformativeText(
        QStringLiteral("El documento sigue como estaba. Guárdalo y cierra otras ventanas o programas."));
    m_message->open();
}
