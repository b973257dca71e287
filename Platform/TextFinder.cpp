#include "TextFinder.h"

#include "MemoryShortage.h"

#include <QCoreApplication>
#include <QThreadPool>

#include <algorithm>
#include <chrono>
#include <new>
#include <span>
#include <utility>

namespace {

using namespace std::chrono_literals;

/// From the last edit to the next count.
constexpr auto recountDelay = 150ms;
/// Counting reports after so many units or matches.
constexpr std::int64_t batchUnits = 4 * 1024 * 1024;
constexpr std::size_t batchMatches = 64 * 1024;
/// No more than that is searched at once on the main thread.
constexpr Offset mostVisible = 64 * 1024;

/// Gives up a reference to what may be large on a worker thread.
template <class Value>
void drop(std::shared_ptr<Value> value) {
    if (value != nullptr) {
        QThreadPool::globalInstance()->start([value = std::move(value)]() mutable { value.reset(); });
    }
}

auto firstAtOrAfter(const std::vector<SourceRange>& matches, std::int64_t offset) {
    return std::ranges::lower_bound(matches, offset, {},
                                    [](SourceRange match) { return std::int64_t(match.lower); });
}

/// Those of `matches` that touch `range`.
std::span<const SourceRange> touching(const std::vector<SourceRange>& matches, SourceRange range) {
    auto first = firstAtOrAfter(matches, range.lower);
    // The one before may reach into the range.
    first -= first != matches.begin() && first[-1].upper > range.lower;
    return {first, std::max(first, firstAtOrAfter(matches, range.upper))};
}

template <class... Cases>
struct Overloaded : Cases... {
    using Cases::operator()...;
};

} // namespace

/// Matches found by counting, from left to right.
struct TextFinder::Batch {
    std::vector<SourceRange> matches; ///< Those to keep.
    std::uint64_t count = 0;
    std::int64_t next = 0;
    std::int64_t keptUpTo = 0;
    bool isLast = false;
    SearchEnd::Reason reason = SearchEnd::Reason::done;
};

/// One answer, and then counting: made on the main thread, run on a worker, its results read on the main
/// thread again.
struct TextFinder::Job : std::enable_shared_from_this<Job> {
    QPointer<TextFinder> finder;
    std::shared_ptr<const TextSearch> search;
    std::shared_ptr<SearchedText> text;
    std::stop_token stop;
    Request request;
    bool counts = false;
    std::int64_t next = 0;
    std::size_t room = 0; ///< How many more matches are kept.
    std::int64_t keptUpTo = 0;

    void run() {
        try {
            answer();
            while (counts && !stop.stop_requested()) {
                Batch batch = count();
                counts = !batch.isLast;
                post([batch = std::move(batch)](TextFinder& to) { to.take(batch); });
            }
        } catch (const std::bad_alloc&) {
            tellShortage();
        }
        // Here, not on the main thread, if this is the last reference.
        text.reset();
        QMetaObject::invokeMethod(
            QCoreApplication::instance(),
            [job = shared_from_this()] {
                if (job->finder != nullptr) {
                    job->finder->finish(*job);
                }
            },
            Qt::QueuedConnection);
    }

private:
    void answer() {
        std::visit(Overloaded{
                       [](std::monostate) {},
                       [&](const Next& wanted) { deliver(search->next(*text, wanted.from, stop)); },
                       [&](const Previous& wanted) { deliver(search->previous(*text, wanted.before, stop)); },
                       [&](const ReplaceMatch& wanted) {
                           deliver(TextReplacement::ofMatch(wanted.match, *search, *text, wanted.with, stop));
                       },
                       [&](const ReplaceAll& wanted) {
                           deliver(TextReplacement::make(*search, *text, text->rope().fullRange(),
                                                         wanted.with, wanted.caret, stop));
                       },
                   },
                   request);
        request = {};
    }

    /// Answers what has no answer yet, and ends the counting.
    void tellShortage() {
        constexpr auto reason = SearchEnd::Reason::noMemory;
        if (std::holds_alternative<ReplaceMatch>(request) || std::holds_alternative<ReplaceAll>(request)) {
            deliver(TextReplacement{.reason = reason});
        } else if (request.index() != 0) {
            deliver(TextSearch::Found{.groups = {}, .reason = reason});
        }
        if (counts) {
            post([batch = Batch{.next = next, .keptUpTo = keptUpTo, .isLast = true, .reason = reason}](
                     TextFinder& to) { to.take(batch); });
        }
    }

    Batch count() {
        Batch batch;
        const std::int64_t size = text->rope().size();
        const SourceRange starts(next, std::min(size, next + batchUnits));
        const SearchEnd end = search->visitMatches(*text, starts, stop, [&](MatchGroups groups) {
            ++batch.count;
            if (room > 0) {
                batch.matches.push_back(groups.front());
                --room;
            }
            return batch.matches.size() < batchMatches;
        });
        next = end.next;
        keptUpTo = room > 0 ? next : keptUpTo;
        batch.next = next;
        batch.keptUpTo = keptUpTo;
        batch.reason = end.reason;
        const bool isAtEnd = end.reason == SearchEnd::Reason::done && starts.upper == size;
        batch.isLast = isAtEnd || next > size || end.reason == SearchEnd::Reason::tooCostly;
        return batch;
    }

    template <class Answer>
    void deliver(Answer result) {
        post([result = std::move(result)](TextFinder& to) { to.answer(result); });
    }

    /// Has `step` run on the main thread, unless the job is cancelled or the finder gone by then. The
    /// answer goes through the application, which outlives every worker.
    template <class Step>
    void post(Step step) {
        QMetaObject::invokeMethod(
            QCoreApplication::instance(),
            [job = shared_from_this(), step = std::move(step)] {
                if (job->finder != nullptr && !job->stop.stop_requested()) {
                    step(*job->finder);
                }
            },
            Qt::QueuedConnection);
    }
};

TextFinder::TextFinder(TextStorage& storage, QObject* parent) : QObject(parent), m_storage(storage) {
    m_recount.setSingleShot(true);
    m_recount.setInterval(recountDelay);
    connect(&m_recount, &QTimer::timeout, this, &TextFinder::start);
    connect(&storage, &TextStorage::editProcessed, this, &TextFinder::noticeEdit);
    connect(&storage, &TextStorage::textMoved, this, [this] {
        if (!m_isRunning) {
            drop(std::move(m_text));
        }
    });
}

TextFinder::~TextFinder() {
    stop();
    drop(std::move(m_text));
}

void TextFinder::setPattern(const SearchPattern& pattern) {
    if (pattern == m_pattern) {
        return;
    }
    m_pattern = pattern;
    auto search = TextSearch::make(pattern);
    m_error = search ? QString() : search.error();
    m_search = search && !pattern.text.empty() ? std::make_shared<TextSearch>(*std::move(search)) : nullptr;
    stop();
    forgetMatches();
    forgetOldMatches();
    Q_EMIT matchesChanged();
    start();
}

void TextFinder::setCounting(bool isCounting) {
    if (isCounting == m_isCounting) {
        return;
    }
    m_isCounting = isCounting;
    if (!isCounting) {
        stop();
        forgetMatches();
        forgetOldMatches();
        drop(std::move(m_text));
        Q_EMIT matchesChanged();
        return;
    }
    start();
}

void TextFinder::findNext(Offset from) { ask(Next(from)); }

void TextFinder::findPrevious(Offset before) { ask(Previous(before)); }

void TextFinder::replace(SourceRange match, const ReplacementTemplate& with) {
    ask(ReplaceMatch(match, with));
}

void TextFinder::replaceAll(const ReplacementTemplate& with, Offset caret) { ask(ReplaceAll(with, caret)); }

void TextFinder::cancelReplacing() {
    if (isReplacing()) {
        stop();
        start();
    }
}

bool TextFinder::isReplacing() const {
    return std::holds_alternative<ReplaceAll>(m_request) || std::holds_alternative<ReplaceAll>(m_running);
}

std::optional<std::size_t> TextFinder::index(SourceRange match) const {
    const auto place = firstAtOrAfter(m_matches, match.lower);
    return place != m_matches.end() && *place == match
               ? std::optional(static_cast<std::size_t>(place - m_matches.begin()))
               : std::nullopt;
}

std::vector<SourceRange> TextFinder::visibleMatches(SourceRange visible) const {
    std::vector<SourceRange> matches;
    if (!m_isCounting || m_search == nullptr) {
        return matches;
    }
    const bool isExpression = m_pattern.syntax == SearchPattern::Syntax::regularExpression;
    if (m_keptUpTo > visible.upper || (isExpression && m_oldMatches.empty())) {
        for (const SourceRange match : touching(m_matches, visible)) {
            matches.push_back(match);
        }
        return matches;
    }
    if (isExpression) {
        for (const SourceRange match : touching(m_oldMatches, m_edits.then(visible))) {
            if (const auto now = m_edits.now(match)) {
                matches.push_back(*now);
            }
        }
        return matches;
    }
    const auto length = static_cast<Offset>(m_pattern.text.size());
    const Rope& text = m_storage.text();
    const Offset upper = std::min({visible.upper, text.size(), visible.lower + mostVisible});
    const Offset lower = std::min(visible.lower, upper);
    SearchedText searched(text);
    m_search->visitMatches(searched, {lower - std::min(lower, length - 1), upper}, {},
                           [&](MatchGroups groups) {
                               matches.push_back(groups.front());
                               return true;
                           });
    return matches;
}

// Requests and the worker

void TextFinder::ask(Request request) {
    if (m_search == nullptr) {
        Q_EMIT notFound();
        return;
    }
    if (isAnswering()) {
        stop();
    }
    if (!answerFromKept(request)) {
        stop();
        m_request = std::move(request);
    }
    start();
}

/// Cancels the job under way; what it counted until now stays.
void TextFinder::stop() {
    m_stop.request_stop();
    m_request = {};
    m_running = {};
}

void TextFinder::start() {
    const bool hasRequest = m_request.index() != 0;
    const bool counts = m_isCounting && !m_isComplete && !m_recount.isActive();
    if (m_isRunning || m_search == nullptr || !(hasRequest || counts)) {
        return;
    }
    if (m_text == nullptr) {
        m_text = std::make_shared<SearchedText>(m_storage.text());
    }
    m_stop = std::stop_source();
    const auto job = std::make_shared<Job>();
    job->finder = this;
    job->search = m_search;
    job->text = m_text;
    job->stop = m_stop.get_token();
    job->request = std::exchange(m_request, {});
    job->counts = counts;
    job->next = m_next;
    job->room = mostKept - m_matches.size();
    job->keptUpTo = m_keptUpTo;
    m_running = job->request;
    m_isRunning = true;
    QThreadPool::globalInstance()->start([job] { job->run(); });
}

void TextFinder::finish(const Job& job) {
    m_isRunning = false;
    if (!job.stop.stop_requested()) {
        m_running = {};
    }
    start();
    if (!m_isRunning && !m_isCounting) {
        drop(std::move(m_text));
    }
}

void TextFinder::answer(const TextSearch::Found& found) {
    m_running = {};
    fail(found.reason, QStringLiteral("buscar"));
    announce(found.match());
}

void TextFinder::answer(const TextReplacement& replacement) {
    m_running = {};
    Q_EMIT replacementFound(replacement);
    fail(replacement.reason, QStringLiteral("reemplazar"));
}

void TextFinder::announce(std::optional<SourceRange> match) {
    if (match) {
        Q_EMIT found(*match);
    } else {
        Q_EMIT notFound();
    }
}

void TextFinder::take(const Batch& batch) {
    m_matches.insert(m_matches.end(), batch.matches.begin(), batch.matches.end());
    m_count += batch.count;
    m_next = batch.next;
    m_keptUpTo = batch.keptUpTo;
    m_isComplete = batch.isLast;
    if (m_isComplete) {
        forgetOldMatches();
    }
    fail(batch.reason, QStringLiteral("buscar"));
    Q_EMIT matchesChanged();
}

void TextFinder::fail(SearchEnd::Reason reason, const QString& action) {
    if (reason == SearchEnd::Reason::tooCostly) {
        m_error = QStringLiteral("La expresión necesita demasiados pasos");
        Q_EMIT matchesChanged();
    } else if (reason == SearchEnd::Reason::noMemory) {
        m_error = memoryShortage(action);
        Q_EMIT matchesChanged();
    }
}

bool TextFinder::answerFromKept(const Request& request) {
    if (const auto* const next = std::get_if<Next>(&request)) {
        const auto match = firstAtOrAfter(m_matches, next->from);
        if (match != m_matches.end()) {
            announce(*match);
            return true;
        }
        if (keepsAll()) {
            announce(m_matches.empty() ? std::nullopt : std::optional(m_matches.front()));
            return true;
        }
    } else if (const auto* const previous = std::get_if<Previous>(&request)) {
        const auto match = firstAtOrAfter(m_matches, previous->before);
        if (match != m_matches.begin() && m_keptUpTo >= previous->before) {
            announce(match[-1]);
            return true;
        }
        if (keepsAll()) {
            announce(m_matches.empty() ? std::nullopt : std::optional(m_matches.back()));
            return true;
        }
    }
    return false;
}

// The text changes

void TextFinder::noticeEdit(SourceRange edited, std::int64_t changeInLength) {
    const bool changes = isAnswering() || m_count > 0 || m_isComplete;
    stop();
    drop(std::move(m_text));
    keepOldMatches();
    m_edits.add({edited.lower, edited.upper - changeInLength}, edited.length());
    forgetMatches();
    if (m_search != nullptr && m_isCounting) {
        m_recount.start();
    }
    if (changes) {
        Q_EMIT matchesChanged();
    }
}

/// Has what was counted last take the place of the old matches, unless those are of more of the text.
void TextFinder::keepOldMatches() {
    if (m_isComplete || m_oldMatches.empty()) {
        m_oldMatches = std::exchange(m_matches, {});
        m_edits = {};
    }
}

void TextFinder::forgetOldMatches() {
    m_oldMatches.clear();
    m_edits = {};
}

void TextFinder::forgetMatches() {
    if (m_search != nullptr) {
        m_error.clear();
    }
    m_matches.clear();
    m_count = 0;
    m_next = 0;
    m_keptUpTo = 0;
    m_isComplete = false;
}
