#pragma once

#include "RecordArray.h"
#include "SourceText.h"
#include "TextEdit.h"

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <optional>
#include <string>
#include <vector>

/// One problem in a text, with a fix if one is obvious. Messages and titles are Spanish and are shown to the
/// user unchanged. The names in them come from the document, so they must be shown as plain text.
struct Diagnostic {
    enum class Severity : std::uint8_t { error, warning };

    struct Fix {
        std::u16string title;
        std::vector<TextEdit> edits; ///< Applied together, as one change.

        bool operator==(const Fix&) const = default;
    };

    SourceRange range; ///< The part of the text that is marked as wrong.
    std::u16string message;
    Severity severity = Severity::error;
    std::optional<Fix> fix;

    bool operator==(const Diagnostic&) const = default;
};

template <>
struct std::hash<Diagnostic::Fix> {
    std::size_t operator()(const Diagnostic::Fix& fix) const noexcept {
        return hashOf(fix.title, hashOfList(fix.edits));
    }
};

template <>
struct std::hash<Diagnostic> {
    std::size_t operator()(const Diagnostic& diagnostic) const noexcept {
        return hashOf(diagnostic.range, diagnostic.message, static_cast<int>(diagnostic.severity),
                      diagnostic.fix);
    }
};

/// A diagnostic as the parser stores it: what is needed to compose the `Diagnostic` from the text later, when
/// it is shown. A hostile document has millions of them.
struct DiagnosticRecord {
    enum class Rule : std::uint8_t {
        unescapedLessThan,
        unescapedAmpersand,
        textOutsideRoot,
        unterminatedComment,
        unterminatedCDATA,
        unterminatedInstruction,
        unterminatedDeclaration,
        missingTagName,
        unexpectedInTag,
        unterminatedStartTag,
        secondRoot,
        duplicateAttribute,
        attributeWithoutValue,
        unquotedValue,
        unclosedQuote,
        unterminatedEndTag,
        unexpectedInEndTag,
        unmatchedEndTag,
        unclosedElement,
        noRoot,
    };

    SourceRange range;
    Offset fixOffset = 0; ///< Where the fix inserts; unused if it replaces `range` or there is no fix.
    Rule rule = Rule::noRoot;

    Diagnostic::Severity severity() const;
};
static_assert(sizeof(DiagnosticRecord) == 16);

/// The diagnostics of a text, in ascending order of `range.lower`. Behaves like an array of `Diagnostic`;
/// each element is composed when it is accessed.
class DiagnosticList {
public:
    class Iterator;

    DiagnosticList() = default;

    /// The diagnostics of `text` that `records` describe, which are in ascending order of `range.lower`.
    DiagnosticList(SourceText text, RecordArray<DiagnosticRecord> records);

    std::size_t size() const { return m_records.size(); }
    bool empty() const { return m_records.empty(); }

    /// Aborts if there is no diagnostic at `index`.
    Diagnostic operator[](std::size_t index) const;
    Iterator begin() const;
    Iterator end() const;

    /// The range, the severity and the rule of a diagnostic, without composing its texts. `index` is not
    /// checked.
    SourceRange range(std::size_t index) const { return m_records[index].range; }
    Diagnostic::Severity severity(std::size_t index) const { return m_records[index].severity(); }
    DiagnosticRecord::Rule rule(std::size_t index) const { return m_records[index].rule; }

    /// The index of the first diagnostic whose range starts at or after `from`; `size()` if there is none.
    std::size_t firstIndex(Offset from) const;

    /// The number of diagnostics of severity `error`.
    std::size_t errorCount() const { return m_errorCount; }

    /// Moves the storage of the records out, so that another parse can reuse it. The list may only be
    /// destroyed or assigned to afterwards.
    RecordArray<DiagnosticRecord> releaseRecords() { return std::move(m_records); }

private:
    SourceText m_text;
    RecordArray<DiagnosticRecord> m_records;
    std::size_t m_errorCount = 0;
};

class DiagnosticList::Iterator {
public:
    using value_type = Diagnostic;
    using difference_type = std::ptrdiff_t;
    using iterator_category = std::input_iterator_tag;

    Iterator() = default;
    Iterator(const DiagnosticList& list, std::size_t index) : m_list(&list), m_index(index) {}

    Diagnostic operator*() const { return (*m_list)[m_index]; }
    Iterator& operator++() {
        ++m_index;
        return *this;
    }
    Iterator operator++(int) {
        const Iterator before = *this;
        ++*this;
        return before;
    }
    bool operator==(const Iterator&) const = default;

private:
    const DiagnosticList* m_list = nullptr;
    std::size_t m_index = 0;
};

inline DiagnosticList::Iterator DiagnosticList::begin() const { return {*this, 0}; }
inline DiagnosticList::Iterator DiagnosticList::end() const { return {*this, size()}; }
