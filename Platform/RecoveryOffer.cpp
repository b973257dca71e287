#include "RecoveryOffer.h"

#include "DocumentController.h"
#include "GroupedNumber.h"
#include "MemoryShortage.h"
#include "RecoveryDialog.h"

#include <QCoreApplication>
#include <QMessageBox>

#include <algorithm>
#include <cstddef>
#include <new>

namespace {

/// Tells of something that happened, without waiting for an answer.
void tell(const QString& text, const QString& details, QWidget* parent) {
    auto* const box = new QMessageBox(QMessageBox::Warning, QCoreApplication::applicationName(), text,
                                      QMessageBox::Ok, parent);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setTextFormat(Qt::PlainText);
    box->setInformativeText(details);
    box->open();
}

} // namespace

RecoveryOffer::RecoveryOffer(std::shared_ptr<RecoveryStore> store, DocumentController& controller,
                             QObject* parent)
    : QObject(parent), m_store(std::move(store)), m_controller(controller) {}

RecoveryOffer::~RecoveryOffer() { delete m_dialog; }

void RecoveryOffer::start() {
    // Workers hold the store: nobody waits for them when the program ends.
    m_search.start([store = m_store](std::stop_token) { return store->recoverable(); },
                   [this](const Recoverables& found) { show(found); },
                   [this] { tellShortage(QStringLiteral("buscar textos sin guardar")); });
}

RecoveryDialog* RecoveryOffer::dialog() const { return m_dialog; }

bool RecoveryOffer::isUnderWay() const {
    return m_search.isRunning() || m_dialog != nullptr ||
           std::ranges::any_of(m_recoveries, [](const auto& task) { return task->isRunning(); });
}

QWidget* RecoveryOffer::window() const {
    const auto open = m_controller.windows();
    return open.empty() ? nullptr : open.back();
}

void RecoveryOffer::show(const Recoverables& found) {
    if (!found.documents.empty()) {
        m_dialog = new RecoveryDialog(found.documents);
        connect(m_dialog, &RecoveryDialog::recoverRequested, this, &RecoveryOffer::recover);
        connect(m_dialog, &RecoveryDialog::discardRequested, this, &RecoveryOffer::discard);
        m_dialog->show();
        m_dialog->raise();
        m_dialog->activateWindow();
    }
    if (!found.setAside.isEmpty()) {
        tell(QStringLiteral("Había textos sin guardar que el disco no devolvió enteros y no se pueden leer."),
             QStringLiteral("Se han apartado aquí:\n%1").arg(found.setAside.join(u'\n')), window());
    }
    if (!found.newer.isEmpty()) {
        tell(QStringLiteral("Hay textos sin guardar de una versión más nueva del programa."),
             QStringLiteral("Ábrelos con ella. Siguen aquí:\n%1").arg(found.newer.join(u'\n')), window());
    }
}

void RecoveryOffer::recover(const QStringList& ids) {
    auto& task = *m_recoveries.emplace_back(std::make_unique<BackgroundTask<Texts>>());
    task.start(
        [store = m_store, ids](std::stop_token) {
            Texts texts;
            for (const QString& id : ids) {
                texts.push_back(taken(*store, id));
            }
            return texts;
        },
        [this](const Texts& texts) { open(texts); },
        [this] { tellShortage(QStringLiteral("recuperar los textos sin guardar")); });
}

RecoveryOffer::Recovery RecoveryOffer::taken(RecoveryStore& from, const QString& id) {
    try {
        return {id, from.take(id)};
    } catch (const std::bad_alloc&) {
        return {.id = id, .text = std::nullopt, .lacksMemory = true};
    }
}

void RecoveryOffer::open(const Texts& texts) {
    const auto before = m_controller.windows();
    // The latest comes to the front.
    for (auto recovery = texts.rbegin(); recovery != texts.rend(); ++recovery) {
        if (recovery->text) {
            m_controller.openRecovered(*recovery->text, recovery->id);
        }
    }
    if (m_controller.windows().size() > before.size()) {
        for (DocumentWindow* const window : m_controller.windows()) {
            if (window->isPristine()) {
                window->close();
            }
        }
    }
    const auto lacking = static_cast<std::size_t>(std::ranges::count_if(texts, &Recovery::lacksMemory));
    const auto found = static_cast<std::size_t>(
        std::ranges::count_if(texts, [](const Recovery& each) { return each.text.has_value(); }));
    if (const std::size_t lost = texts.size() - lacking - found; lost > 0) {
        tellLost(lost);
    }
    if (lacking > 0) {
        tellShortage(lacking == 1 ? QStringLiteral("recuperar uno de los textos")
                                  : QStringLiteral("recuperar %1 de los textos").arg(groupedNumber(lacking)));
    }
}

void RecoveryOffer::tellLost(std::size_t count) {
    tell(count == 1 ? QStringLiteral("Uno de los textos ya no se puede leer.")
                    : QStringLiteral("%1 de los textos ya no se pueden leer.").arg(groupedNumber(count)),
         QStringLiteral("Lo que queda está en la carpeta “%1”.").arg(m_store->folder()), window());
}

void RecoveryOffer::tellShortage(const QString& forWhat) {
    tell(memoryShortage(forWhat),
         QStringLiteral("Siguen guardados, y se ofrecerán otra vez cuando se inicie el programa."), window());
}

void RecoveryOffer::discard(const QStringList& ids) const {
    QThreadPool::globalInstance()->start([store = m_store, ids] {
        for (const QString& id : ids) {
            store->discard(id);
        }
    });
}
