#include "FixTask.h"

#include "RopeFlattener.h"

#include <utility>

namespace {

constexpr std::size_t fewEdits = 1000; ///< So many are made one by one, and everything follows each.

/// Where `selection` is after `edits`.
TextSelection carried(TextSelection selection, const std::vector<TextEdit>& edits) {
    const auto after = [&](Offset at) {
        std::int64_t shift = 0;
        for (const TextEdit& edit : edits) {
            if (edit.range.upper > at || (edit.range.isEmpty() && edit.range.lower == at)) {
                break;
            }
            shift += edit.delta();
        }
        return static_cast<Offset>(at + shift);
    };
    return {after(selection.anchor), after(selection.caret)};
}

} // namespace

FixTask::FixTask(TextBuffer& buffer, QObject* parent) : QObject(parent), m_buffer(buffer) {}

void FixTask::start() {
    if (!isRunning()) {
        plan();
        emit isRunningChanged();
    }
}

void FixTask::cancel() {
    if (isRunning()) {
        m_task.cancel();
        emit isRunningChanged();
    }
}

void FixTask::plan() {
    m_task.start(
        [text = m_buffer.text(), selection = m_buffer.selection(),
         generation = m_buffer.generation()](const std::stop_token& stop) {
            Outcome outcome = planned(text, selection, stop);
            outcome.generation = generation;
            return outcome;
        },
        [this](const Outcome& outcome) { deliver(outcome); }, [this] { giveUp(); });
}

void FixTask::giveUp() {
    emit isRunningChanged();
    emit lackedMemory();
}

FixTask::Outcome FixTask::planned(const Rope& text, TextSelection selection, const std::stop_token& stop) {
    Outcome outcome;
    const SourceText units = RopeFlattener().flattened(text);
    outcome.plan = FixPlanner::plan(units, stop);
    if (outcome.plan && outcome.plan->edits.size() > fewEdits) {
        const std::vector<TextEdit> edits = std::exchange(outcome.plan->edits, {});
        const TextEdit merged = FixPlanner::merged(edits, units);
        outcome.merged = {merged.range, Rope(merged.replacement), carried(selection, edits)};
    }
    return outcome;
}

void FixTask::deliver(const Outcome& outcome) {
    if (outcome.generation != m_buffer.generation()) {
        plan();
        return;
    }
    apply(outcome);
    emit isRunningChanged();
    emit finished(outcome.plan->left, outcome.plan->mayMendMore);
}

void FixTask::apply(const Outcome& outcome) {
    const QString actionName = QStringLiteral("Corregir todo");
    if (const auto& merged = outcome.merged) {
        m_buffer.replace(merged->range, merged->units, actionName, merged->selection);
    } else {
        m_buffer.apply(outcome.plan->edits, actionName);
    }
}
