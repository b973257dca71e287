#include "CommandNotices.h"

#include "DocumentWindow.h"
#include "EditorSession.h"
#include "GroupedNumber.h"
#include "MemoryShortage.h"
#include "NoticeBar.h"
#include "UndoManager.h"

#include <chrono>
#include <utility>

namespace {

using namespace std::chrono_literals;

constexpr auto patience = 200ms;

QString textSpaceNotice() {
    return QStringLiteral("Se han cambiado espacios que pueden ser parte del texto.");
}

/// "Quedan 3 problemas que Tamo no sabe corregir."; of problems that could still be mended it is only said
/// how many there are.
QString leftNotice(std::size_t left, bool mayMendMore) {
    const QString count = left == 1 ? QStringLiteral("Queda 1 problema")
                                    : QStringLiteral("Quedan %1 problemas").arg(groupedNumber(left));
    return count + (mayMendMore ? QStringLiteral(".") : QStringLiteral(" que Tamo no sabe corregir."));
}

} // namespace

CommandNotices::CommandNotices(EditorSession& session, UndoManager& undoManager, DocumentWindow& window,
                               QObject* parent)
    : QObject(parent), m_session(session), m_undoManager(undoManager), m_window(window) {
    m_patience.setSingleShot(true);
    m_patience.setInterval(patience);
    connect(&m_patience, &QTimer::timeout, this, &CommandNotices::showFixing);
    connect(&session.fixTask(), &FixTask::isRunningChanged, this, [this] {
        if (m_session.fixTask().isRunning()) {
            m_patience.start();
        } else {
            m_patience.stop();
            if (m_shown == Shown::fixing) {
                dismiss();
            }
        }
    });
    connect(&session.fixTask(), &FixTask::finished, this, &CommandNotices::showLeft);
    connect(&session.fixTask(), &FixTask::lackedMemory, this,
            [this] { showShortage(QStringLiteral("corregir el documento")); });
    connect(&session, &EditorSession::filterLackedMemory, this,
            [this] { showShortage(QStringLiteral("filtrar el árbol")); });
    connect(&session, &EditorSession::lacksMemoryChanged, this, &CommandNotices::followTree);
    connect(&session, &EditorSession::textSpaceChanged, this, &CommandNotices::showTextSpace);
    // Later, when the history knows of the change too.
    connect(&session.buffer().storage(), &TextStorage::editingEnded, this, &CommandNotices::followText,
            Qt::QueuedConnection);
}

NoticeBar& CommandNotices::bar() {
    if (m_bar == nullptr) {
        m_bar = m_window.addNoticeBar();
    }
    return *m_bar;
}

void CommandNotices::offerToClose() {
    bar().offer(QStringLiteral("Entendido"), [this] { m_shown = Shown::nothing; });
}

void CommandNotices::showFixing() {
    bar().tell(QStringLiteral("Corrigiendo…"), true);
    bar().offer(QStringLiteral("Cancelar"), [this] { m_session.fixTask().cancel(); });
    m_shown = Shown::fixing;
}

void CommandNotices::showLeft(std::size_t left, bool mayMendMore) {
    if (left == 0) {
        return;
    }
    bar().tell(leftNotice(left, mayMendMore));
    offerToClose();
    m_shown = Shown::problemsLeft;
    m_generation = m_session.buffer().generation();
}

void CommandNotices::showTextSpace(const QString& actionName) {
    if (std::exchange(m_hasToldOfTextSpace, true)) {
        return;
    }
    bar().tell(textSpaceNotice());
    bar().offer(QStringLiteral("Deshacer"), [this] {
        m_shown = Shown::nothing;
        m_undoManager.undo();
    });
    offerToClose();
    m_shown = Shown::textSpace;
    m_layoutName = actionName;
    m_generation = m_session.buffer().generation();
}

void CommandNotices::showShortage(const QString& forWhat) {
    bar().tell(memoryShortage(forWhat));
    offerToClose();
    m_shown = Shown::shortage;
}

void CommandNotices::followTree() {
    if (m_session.lacksMemory()) {
        bar().tell(memoryShortage(QStringLiteral("el árbol de este documento")) +
                   QStringLiteral(" El texto se puede editar y guardar."));
        offerToClose();
        m_shown = Shown::treeShortage;
    } else if (m_shown == Shown::treeShortage) {
        dismiss();
    }
}

/// A notice is about the text as a command left it.
void CommandNotices::followText() {
    const std::int64_t generation = m_session.buffer().generation();
    if (std::exchange(m_generation, generation) == generation) {
        return;
    }
    const bool isLayoutUndone = m_undoManager.canRedo() && m_undoManager.redoActionName() == m_layoutName;
    if (m_shown == Shown::problemsLeft || (m_shown == Shown::textSpace && isLayoutUndone)) {
        dismiss();
    } else if (m_shown == Shown::textSpace) {
        // Undoing would take back something else.
        bar().tell(textSpaceNotice());
        offerToClose();
    }
}

void CommandNotices::dismiss() {
    m_shown = Shown::nothing;
    bar().dismiss();
}
