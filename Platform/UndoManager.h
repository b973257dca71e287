#pragma once

#include <QObject>
#include <QString>
#include <QUndoStack>

#include <cstdint>
#include <functional>
#include <vector>

/// The undo history of one document: steps that the user takes back and forth, each a group of actions.
///
/// Whoever changes something registers the action that changes it back. That action, when it runs, registers
/// its own opposite in the same way, and so an undone step can be redone.
class UndoManager : public QObject {
    Q_OBJECT

public:
    using Action = std::function<void()>;

    explicit UndoManager(QObject* parent = nullptr);

    /// What is registered between the two becomes one step; an empty group none. Groups nest: the outermost
    /// one is the step.
    void beginUndoGroup() { ++m_depth; }
    void endUndoGroup();

    /// Has `action` run, after those registered later, when the current group is undone, or redone if this
    /// is called from an action. Outside a group it is a step of its own.
    void registerUndo(Action action);

    /// Names the current group, the last name given winning; ignored outside a group.
    void setActionName(const QString& name);

    bool canUndo() const { return m_stack.canUndo(); }
    bool canRedo() const { return m_stack.canRedo(); }
    QString undoActionName() const { return m_stack.undoText(); }
    QString redoActionName() const { return m_stack.redoText(); }

    /// "Deshacer Escribir", or "Deshacer" when the step has no name or there is none.
    QString undoMenuTitle() const;
    QString redoMenuTitle() const;

    /// Nothing when there is no step. Stops the program inside a group.
    void undo();
    void redo();

    /// A number that changes with every step, undo, redo, `setClean` and `breakUndoCoalescing`. While it
    /// stays the same, whoever registered the last step may still let it grow.
    std::uint64_t coalescingMark() const { return m_coalescingMark; }
    void breakUndoCoalescing() { ++m_coalescingMark; }

    /// Names the state of now. Undo and redo come back to a state; every new step makes a new one.
    std::uint64_t state() const { return m_states[static_cast<std::size_t>(m_stack.index())]; }

    /// Whether the document is in its clean state: at first the one in which this was made.
    bool isClean() const { return state() == m_cleanState; }

    /// The document is saved as it is now.
    void setClean() { setClean(state()); }
    /// The document was saved as it was in `state`, whether steps lead back there or not.
    void setClean(std::uint64_t state);
    /// No state is the saved one any more.
    void resetClean();

Q_SIGNALS:
    /// `canUndo`, `canRedo` or an action name may have changed.
    void historyChanged();
    void cleanChanged(bool isClean);

private:
    class Step;

    void run(void (QUndoStack::*backOrForth)());
    void tellClean();

    QUndoStack m_stack;
    std::vector<std::uint64_t> m_states = {1}; ///< Before the first step, and after each.
    std::uint64_t m_lastState = 1;
    std::uint64_t m_cleanState = 1; ///< 0 when there is none.
    bool m_wasClean = true;
    std::vector<Action> m_group; ///< Registered since the outermost group began.
    QString m_groupName;
    int m_depth = 0;
    std::vector<Action>* m_opposites = nullptr; ///< Where a running step's opposites go.
    std::uint64_t m_coalescingMark = 0;
};
