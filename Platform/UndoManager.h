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

    /// Whether the document is as it was when `setClean` was called last, at first when this was made.
    bool isClean() const { return m_stack.isClean(); }
    void setClean();
    /// No step leads to what `setClean` was called for: it turned out not to be saved.
    void resetClean();

Q_SIGNALS:
    /// `canUndo`, `canRedo` or an action name may have changed.
    void historyChanged();
    void cleanChanged(bool isClean);

private:
    class Step;

    void run(void (QUndoStack::*backOrForth)());

    QUndoStack m_stack;
    std::vector<Action> m_group; ///< Registered since the outermost group began.
    QString m_groupName;
    int m_depth = 0;
    std::vector<Action>* m_opposites = nullptr; ///< Where a running step's opposites go.
    std::uint64_t m_coalescingMark = 0;
};
