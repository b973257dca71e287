#include "UndoManager.h"

#include "Precondition.h"

#include <QScopedValueRollback>

#include <new>
#include <utility>

/// One entry of the stack; it holds either the actions that undo it or those that redo it.
class UndoManager::Step : public QUndoCommand {
public:
    Step(UndoManager& manager, std::vector<Action> actions, const QString& name)
        : QUndoCommand(name), m_manager(manager), m_actions(std::move(actions)) {}

    void undo() override { run(); }

    /// The stack redoes what is pushed; that has been done already.
    void redo() override {
        if (!std::exchange(m_isNew, false)) {
            run();
        }
    }

private:
    void run() {
        std::vector<Action> actions = std::exchange(m_actions, {});
        const QScopedValueRollback opposites(m_manager.m_opposites, &m_actions);
        try {
            for (auto action = actions.rbegin(); action != actions.rend(); ++action) {
                (*action)();
            }
        } catch (const std::bad_alloc&) {
            // What failed changed nothing, so that the step can be tried again.
            m_actions = std::move(actions);
            throw;
        }
    }

    UndoManager& m_manager;
    std::vector<Action> m_actions;
    bool m_isNew = true;
};

namespace {

QString menuTitle(const QString& verb, const QString& actionName) {
    return actionName.isEmpty() ? verb : verb + u' ' + actionName;
}

} // namespace

UndoManager::UndoManager(QObject* parent) : QObject(parent) {
    connect(&m_stack, &QUndoStack::indexChanged, this, &UndoManager::historyChanged);
    connect(&m_stack, &QUndoStack::indexChanged, this, &UndoManager::tellClean);
}

void UndoManager::endUndoGroup() {
    precondition(m_depth > 0, "an undo group ends only once");
    --m_depth;
    if (m_depth > 0) {
        return;
    }
    const QString name = std::exchange(m_groupName, {});
    std::vector<Action> actions = std::exchange(m_group, {});
    if (!actions.empty()) {
        breakUndoCoalescing();
        // The step takes the place of those that could be redone.
        m_states.resize(static_cast<std::size_t>(m_stack.index()) + 1);
        m_states.push_back(++m_lastState);
        m_stack.push(new Step(*this, std::move(actions), name));
    }
}

void UndoManager::registerUndo(Action action) {
    if (m_opposites != nullptr) {
        m_opposites->push_back(std::move(action));
        return;
    }
    beginUndoGroup();
    m_group.push_back(std::move(action));
    endUndoGroup();
}

void UndoManager::setActionName(const QString& name) {
    if (m_depth > 0 && m_opposites == nullptr) {
        m_groupName = name;
    }
}

QString UndoManager::undoMenuTitle() const { return menuTitle(QStringLiteral("Deshacer"), undoActionName()); }

QString UndoManager::redoMenuTitle() const { return menuTitle(QStringLiteral("Rehacer"), redoActionName()); }

void UndoManager::undo() { run(&QUndoStack::undo); }

void UndoManager::redo() { run(&QUndoStack::redo); }

void UndoManager::run(void (QUndoStack::*backOrForth)()) {
    precondition(m_depth == 0 && m_opposites == nullptr, "nothing is undone or redone inside a group");
    breakUndoCoalescing();
    (m_stack.*backOrForth)();
}

void UndoManager::setClean(std::uint64_t state) {
    breakUndoCoalescing();
    m_cleanState = state;
    tellClean();
}

void UndoManager::resetClean() { setClean(0); }

void UndoManager::tellClean() {
    if (const bool is = isClean(); is != std::exchange(m_wasClean, is)) {
        emit cleanChanged(is);
    }
}
