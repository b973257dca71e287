#include "ReparseScheduler.h"

#include "ApplicationIdentifier.h"
#include "Signposter.h"
#include "TreeParser.h"

#include <QCoreApplication>
#include <QPointer>
#include <QThread>
#include <QThreadPool>

#include <utility>

namespace {

constexpr Signposter signposter(applicationIdentifier, "Parse");
constexpr int linesThatTellTheIndent = 2000;

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
    Result result;

    void run() {
        for (Result& unneeded : old) {
            result.tree = std::move(unneeded.tree);
        }
        old.clear();
        // Gives the text's array back first, so that the new text can be written there.
        result.tree.text = {};
        result.generation = snapshot.generation;
        const SourceText text = flattener->flattened(std::exchange(snapshot.text, {}));
        if (!stop.stop_requested()) {
            const auto interval = signposter.interval("Parse");
            result.tree = TreeParser::parse(text, stop, std::move(result.tree));
        }
        if (!stop.stop_requested()) {
            result.lines = LineIndex(text);
            result.indent = IndentStyle::detect(text, linesThatTellTheIndent);
        }
    }
};

ReparseScheduler::ReparseScheduler(QObject* parent)
    : QObject(parent), m_flattener(std::make_shared<RopeFlattener>()) {
    m_timer.setSingleShot(true);
    m_timer.setTimerType(Qt::PreciseTimer);
    connect(&m_timer, &QTimer::timeout, this, [this] { m_isParsing ? void(m_isDue = true) : start(); });
}

ReparseScheduler::~ReparseScheduler() {
    m_task.request_stop();
    drop(std::move(m_old));
    drop(std::move(m_flattener));
}

void ReparseScheduler::schedule(std::chrono::milliseconds delay, SnapshotStep snapshot,
                                DeliveryStep deliver) {
    requireThread();
    m_task.request_stop();
    m_task = std::stop_source();
    m_isDue = false;
    m_snapshot = std::move(snapshot);
    m_deliver = std::move(deliver);
    m_timer.start(delay);
}

void ReparseScheduler::recycle(Result old) {
    requireThread();
    m_old.push_back(std::move(old));
}

void ReparseScheduler::start() {
    const auto job = std::make_shared<Job>();
    job->snapshot = std::exchange(m_snapshot, nullptr)();
    job->stop = m_task.get_token();
    job->flattener = m_flattener;
    job->old = std::exchange(m_old, {});
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
    m_old.push_back(std::move(job.result));
    if (std::exchange(m_isDue, false)) {
        start();
    }
}

void ReparseScheduler::requireThread() const {
    precondition(QThread::currentThread() == thread(), "parses are scheduled on the main thread");
}
