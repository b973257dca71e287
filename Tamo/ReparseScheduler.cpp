#include "ReparseScheduler.h"

#include "ApplicationIdentifier.h"
#include "LargeArray.h"
#include "Signposter.h"
#include "ThreadTeam.h"
#include "TreeParser.h"
#include "TreeStorage.h"
#include "UTF8Length.h"

#include <QCoreApplication>
#include <QPointer>
#include <QThread>
#include <QThreadPool>

#include <new>
#include <utility>

namespace {

constexpr Signposter signposter(applicationIdentifier, "Parse");
constexpr int linesThatTellTheIndent = 2000;
constexpr auto restBeforeFreeing = std::chrono::seconds(3);
constexpr Offset longText = 4'000'000; ///< The memory for the tree of a shorter one takes a few milliseconds.

/// Frees `value`, which may be large, on a worker thread.
template <class Value>
void drop(Value value) {
    const auto dropped = std::make_shared<Value>(std::move(value));
    QThreadPool::globalInstance()->start([dropped] { *dropped = Value(); });
}

} // namespace

/// One parse: made on the main thread, run on a worker, and read on the main thread again.
struct ReparseScheduler::Job {
    Snapshot snapshot;
    std::stop_token stop;
    std::shared_ptr<RopeFlattener> flattener;
    std::vector<Result> old;
    /// Told of the text in one array, on the worker.
    std::function<void(Rope same, std::int64_t generation)> onMove;
    Result result;

    void run() {
        try {
            make();
        } catch (const std::bad_alloc&) {
            // Others may have all of it.
            result = {};
            old.clear();
            snapshot = {};
            flattener->forget();
        }
    }

private:
    void make() {
        result.document = ParsedDocument::make();
        ParsedDocument& document = *result.document;
        document.generation = snapshot.generation;
        TreeOutline::Rows rows;
        for (Result& unneeded : old) {
            if (isFree(unneeded.document)) {
                document.tree = std::move(unneeded.document->tree);
            }
            rows = std::move(unneeded.outline.rows);
        }
        old.clear();
        // Gives the text's array back first, so that the new text can be written there.
        document.tree.text = {};
        document.tree.diagnostics = {{}, document.tree.diagnostics.releaseRecords()};
        const bool hasStorage = document.tree.nodes.size() > 1;
        const SourceText text = flattened();
        if (!hasStorage && text.count() >= longText) {
            // Most of the time would go into fresh memory.
            TreeStorage storage(text);
            document.tree = storage.take();
            runInParallel(2, [&](unsigned thread) {
                if (thread == 0) {
                    parse(text);
                } else {
                    storage.touch();
                    derive(text);
                }
            });
        } else {
            parse(text);
            derive(text);
        }
        if (!stop.stop_requested()) {
            const auto interval = signposter.interval("Outline");
            document.errorNodes = NodeErrors(document.tree);
            document.problemStarts = ProblemStarts(document.tree.diagnostics, text);
            result.outline =
                OutlineContents::make(std::move(snapshot.outline), document.tree, stop, std::move(rows));
        }
    }

    /// The text in one array. Where that is a copy, the text of the snapshot is not held any longer than that.
    SourceText flattened() {
        const Rope rope = std::exchange(snapshot.text, {});
        const SourceText text = flattener->flattened(rope);
        if (!stop.stop_requested() && text.count() >= longText && rope.contiguous().count() == 0) {
            onMove(rope.movedTo(text), snapshot.generation);
        }
        return text;
    }

    void parse(const SourceText& text) {
        if (!stop.stop_requested()) {
            const auto interval = signposter.interval("Parse");
            ParsedDocument& document = *result.document;
            document.doctype = DoctypeReading::of(text);
            document.tree = TreeParser::parse(text, stop, std::move(document.tree), document.doctype);
        }
    }

    /// What depends on the text alone.
    void derive(const SourceText& text) {
        if (!stop.stop_requested()) {
            const auto interval = signposter.interval("Derive");
            ParsedDocument& document = *result.document;
            document.lines = LineIndex(text);
            document.indent = IndentStyle::detect(text, linesThatTellTheIndent);
            document.byteCount = utf8LengthOfText(text.units());
        }
    }

    static bool isFree(const std::shared_ptr<ParsedDocument>& document) {
        if (document.use_count() != 1) {
            return false;
        }
        // The count alone does not order the last reader's reads before our writes; giving back a reference
        // does.
        std::shared_ptr<ParsedDocument>(document).reset();
        return true;
    }
};

ReparseScheduler::ReparseScheduler(QObject* parent)
    : QObject(parent), m_flattener(std::make_shared<RopeFlattener>()) {
    m_timer.setSingleShot(true);
    m_timer.setTimerType(Qt::PreciseTimer);
    connect(&m_timer, &QTimer::timeout, this, [this] { m_isParsing ? void(m_isDue = true) : start(); });
    m_rest.setSingleShot(true);
    m_rest.setInterval(restBeforeFreeing);
    connect(&m_rest, &QTimer::timeout, this, &ReparseScheduler::freeUnused);
}

ReparseScheduler::~ReparseScheduler() {
    m_task.request_stop();
    drop(std::move(m_old));
    drop(std::move(m_flattener));
}

void ReparseScheduler::schedule(std::chrono::milliseconds delay, SnapshotStep snapshot,
                                DeliveryStep deliver) {
    requireThread();
    cancel();
    m_snapshot = std::move(snapshot);
    m_deliver = std::move(deliver);
    m_timer.start(delay);
}

ReparseScheduler::Result
ReparseScheduler::parseNow(Snapshot snapshot, const std::function<void(const std::function<void()>&)>& run) {
    requireThread();
    cancel();
    m_timer.stop();
    Job now = job(std::move(snapshot));
    run([&now] { now.run(); });
    return std::move(now.result);
}

void ReparseScheduler::recycle(Result old) {
    requireThread();
    m_old.push_back(std::move(old));
    m_rest.start();
}

void ReparseScheduler::free(Rope text) { drop(std::move(text)); }

/// What only spares the system's work while one parse follows the other.
void ReparseScheduler::freeUnused() {
    if (m_isParsing) {
        return;
    }
    // The old trees first: their texts stand in the arrays.
    QThreadPool::globalInstance()->start([old = std::make_shared<std::vector<Result>>(std::exchange(m_old, {})),
                                          application = QCoreApplication::instance(), self = QPointer(this)] {
        old->clear();
        QMetaObject::invokeMethod(
            application,
            [self] {
                if (self != nullptr && !self->m_isParsing) {
                    drop(self->m_flattener->takeFree());
                }
            },
            Qt::QueuedConnection);
        giveMemoryBack();
    });
}

void ReparseScheduler::cancel() {
    m_task.request_stop();
    m_task = std::stop_source();
    m_isDue = false;
}

ReparseScheduler::Job ReparseScheduler::job(Snapshot snapshot) {
    // A parse under way, even a cancelled one, writes where the flattener lets it.
    return {std::move(snapshot),
            m_task.get_token(),
            m_isParsing ? std::make_shared<RopeFlattener>() : m_flattener,
            std::exchange(m_old, {}),
            [application = QCoreApplication::instance(), self = QPointer(this)](
                Rope same, std::int64_t generation) {
                QMetaObject::invokeMethod(
                    application,
                    [self, same = std::move(same), generation] {
                        if (self != nullptr && self->m_onMove) {
                            self->m_onMove(same, generation);
                        }
                    },
                    Qt::QueuedConnection);
            },
            {}};
}

void ReparseScheduler::start() {
    const auto job = std::make_shared<Job>(this->job(std::exchange(m_snapshot, nullptr)()));
    m_isParsing = true;
    // The answer goes through the application, which outlives every worker; the scheduler may be gone then.
    QObject* const application = QCoreApplication::instance();
    QThreadPool::globalInstance()->start([job, application, self = QPointer(this)] {
        job->run();
        QMetaObject::invokeMethod(
            application,
            [job, self] {
                if (self != nullptr) {
                    self->finish(*job);
                } else {
                    drop(std::move(job->result));
                }
            },
            Qt::QueuedConnection);
    });
}

void ReparseScheduler::finish(Job& job) {
    m_isParsing = false;
    if (!job.stop.stop_requested()) {
        // May lead to another request or to the end of this scheduler.
        std::exchange(m_deliver, nullptr)(std::move(job.result));
        return;
    }
    recycle(std::move(job.result));
    if (std::exchange(m_isDue, false)) {
        start();
    }
}

void ReparseScheduler::requireThread() const {
    precondition(QThread::currentThread() == thread(), "parses are scheduled on the main thread");
}
