#pragma once

#include "BackgroundTask.h"
#include "FixPlanner.h"
#include "TextBuffer.h"

#include <QObject>

#include <cstddef>
#include <optional>

/// "Corregir todo": plans off the main thread what mends a document, then changes the text in one step of
/// undo. When the text changes meanwhile, it plans once more, for the new text.
///
/// Lives on the main thread.
class FixTask : public QObject {
    Q_OBJECT

public:
    /// `buffer` outlives the task.
    explicit FixTask(TextBuffer& buffer, QObject* parent = nullptr);

    void start();
    /// Leaves the text as it is.
    void cancel();
    bool isRunning() const { return m_task.isRunning(); }

signals:
    void isRunningChanged();
    /// The text has been mended as far as that is possible. It has `left` problems now, and no fix or repair
    /// is known for any of them unless `mayMendMore`.
    void finished(std::size_t left, bool mayMendMore);
    /// The memory was too short to mend the text, which stays as it is.
    void lackedMemory();

private:
    /// What many edits do together.
    struct Merged {
        SourceRange range;
        Rope units;
        TextSelection selection; ///< Where it is afterwards.
    };

    struct Outcome {
        std::optional<FixPlanner::Plan> plan;
        std::optional<Merged> merged; ///< In place of the edits of the plan, where these are many.
        std::int64_t generation = 0;  ///< Of the text that this was planned for.
    };

    static Outcome planned(const Rope& text, TextSelection selection, const std::stop_token& stop);
    void plan();
    void deliver(const Outcome& outcome);
    void giveUp();
    void apply(const Outcome& outcome);

    TextBuffer& m_buffer;
    BackgroundTask<Outcome> m_task;
};
