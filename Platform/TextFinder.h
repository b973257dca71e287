#pragma once

#include "EditedSpan.h"
#include "TextReplacement.h"
#include "TextSearch.h"
#include "TextStorage.h"

#include <QObject>
#include <QPointer>
#include <QTimer>

#include <cstdint>
#include <memory>
#include <optional>
#include <stop_token>
#include <variant>
#include <vector>

/// Finds the matches of a pattern in a text that changes, off the main thread. What the user asks for, the
/// next match, comes first; counting all of them goes on beside it and starts again after an edit.
///
/// Lives on the main thread. Its end cancels whatever is under way and waits for nothing.
class TextFinder : public QObject {
    Q_OBJECT

public:
    explicit TextFinder(TextStorage& storage, QObject* parent = nullptr);
    ~TextFinder() override;

    /// How many matches are kept, for their numbers and marks; the others are only counted.
    static constexpr std::size_t mostKept = 1'000'000;

    const SearchPattern& pattern() const { return m_pattern; }
    void setPattern(const SearchPattern& pattern);

    /// Whether all matches are counted, for as long as somebody shows them. Off at first.
    void setCounting(bool isCounting);

    /// In Spanish why the pattern, or the last search for it, failed; empty when it did not.
    const QString& error() const { return m_error; }

    /// Finds the first match that starts at `from` or later, otherwise the first of the text, and answers
    /// with `found` or `notFound`, maybe before this returns. A later request, another pattern or an edit
    /// takes the place of one that has no answer yet.
    void findNext(Offset from);
    /// The same for the last match that starts before `before`, otherwise the last of the text.
    void findPrevious(Offset before);

    /// Has `replacementFound` tell what takes the place of `match`, or of all matches. `caret` is an offset
    /// to follow through the replacement.
    void replace(SourceRange match, const ReplacementTemplate& with);
    void replaceAll(const ReplacementTemplate& with, Offset caret);
    void cancelReplacing();
    bool isReplacing() const;

    /// How many matches are known so far, and whether that is all of them.
    std::uint64_t count() const { return m_count; }
    bool isCountComplete() const { return m_isComplete; }

    /// The place of `match` among all matches, counted from 0; nothing when it is not known.
    std::optional<std::size_t> index(SourceRange match) const;

    /// The matches that touch `visible`, to be marked; none while counting is off. Those of an expression
    /// appear as they are counted; after an edit those from before it stay until then.
    std::vector<SourceRange> visibleMatches(SourceRange visible) const;

Q_SIGNALS:
    void found(SourceRange match);
    void notFound();
    /// The count, the error or the matches known changed.
    void matchesChanged();
    /// The text has not changed since; nothing is to be done when nothing is replaced.
    void replacementFound(const TextReplacement& replacement);

private:
    struct Next {
        Offset from;
    };
    struct Previous {
        Offset before;
    };
    struct ReplaceMatch {
        SourceRange match;
        ReplacementTemplate with;
    };
    struct ReplaceAll {
        ReplacementTemplate with;
        Offset caret;
    };
    using Request = std::variant<std::monostate, Next, Previous, ReplaceMatch, ReplaceAll>;
    struct Batch;
    struct Job;

    void ask(Request request);
    void start();
    void stop();
    void forgetMatches();
    void answer(const TextSearch::Found& found);
    void answer(const TextReplacement& replacement);
    void take(const Batch& batch);
    void finish(const Job& job);
    void noticeEdit(SourceRange edited, std::int64_t changeInLength);
    void keepOldMatches();
    void forgetOldMatches();
    bool isAnswering() const { return m_request.index() != 0 || m_running.index() != 0; }
    void fail(SearchEnd::Reason reason, const QString& action);
    bool answerFromKept(const Request& request);
    bool keepsAll() const { return m_isComplete && m_matches.size() == m_count; }
    void announce(std::optional<SourceRange> match);

    TextStorage& m_storage;
    SearchPattern m_pattern;
    std::shared_ptr<const TextSearch> m_search; ///< Null when the pattern cannot be searched.
    std::shared_ptr<SearchedText> m_text;       ///< Of now; null until needed. The worker's while a job runs.
    QString m_error;
    QTimer m_recount;

    Request m_request;
    Request m_running; ///< What the job under way is asked for, until it answers.
    std::stop_source m_stop;
    bool m_isRunning = false; ///< A job is under way, cancelled or not.

    bool m_isCounting = false;
    bool m_isComplete = false;
    std::vector<SourceRange> m_matches; ///< The first ones, ascending.
    std::uint64_t m_count = 0;
    std::int64_t m_next = 0;               ///< Where counting goes on.
    std::int64_t m_keptUpTo = 0;           ///< All matches that start before are in `m_matches`.
    std::vector<SourceRange> m_oldMatches; ///< Of the text before the edits of `m_edits`.
    EditedSpan m_edits;
};
