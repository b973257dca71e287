#include "RecoveryOffer.h"

#include "DocumentController.h"
#include "GroupedNumber.h"
#include "RecoveryDialog.h"

#include <QCoreApplication>
#include <QMessageBox>

#include <algorithm>

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
                   [this](const Recoverables& found) { show(found); });
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
                texts.emplace_back(id, store->take(id));
            }
            return texts;
        },
        [this](const Texts& texts) { open(texts); });
}

void RecoveryOffer::open(const Texts& texts) {
    const auto before = m_controller.windows();
    std::uint64_t lost = 0;
    // The latest comes to the front.
    for (auto text = texts.rbegin(); text != texts.rend(); ++text) {
        if (text->second) {
            m_controller.openRecovered(*text->second, text->first);
        } else {
            ++lost;
        }
    }
    if (m_controller.windows().size() > before.size()) {
        for (DocumentWindow* const window : m_controller.windows()) {
            if (window->isPristine()) {
                window->close();
            }
        }
    }
    if (lost > 0) {
        tell(lost == 1 ? QStringLiteral("Uno de los textos ya no se puede leer.")
                       : QStringLiteral("%1 de los textos ya no se pueden leer.").arg(groupedNumber(lost)),
             QStringLiteral("Lo que queda está en la carpeta “%1”.").arg(m_store->folder()), window());
    }
}

void RecoveryOffer::discard(const QStringList& ids) const {
    QThreadPool::globalInstance()->start([store = m_store, ids] {
        for (const QString& id : ids) {
            store->discard(id);
        }
    });
}
