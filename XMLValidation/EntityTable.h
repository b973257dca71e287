#pragma once

#include "ContentCheck.h"
#include "DocumentType.h"

#include <optional>
#include <vector>

/// The general entities that a document declares, and what is wrong with referring to them. Each replacement
/// text is read once, when it is first asked for, and never put into another, so that the work is linear in
/// the declarations, whatever they would grow to.
class EntityTable {
public:
    /// `type` is borrowed.
    explicit EntityTable(const DocumentType& type);

    /// Whether every processor knows the entity `name`.
    static bool isPredefined(std::u16string_view name);

    /// What is wrong with a reference to the entity `name` in that place.
    std::optional<Violation::Rule> problem(std::u16string_view name, ReferenceContext context);

private:
    using Problem = std::optional<Violation::Rule>;

    enum class State : std::uint8_t { unread, open, read };
    struct Entry {
        State state = State::unread;
        Problem inContent;
        Problem inAttribute;
    };
    struct Use {
        SourceRange name; ///< In the replacement text.
        ReferenceContext context;
    };
    /// An entity whose replacement text is being looked at, and how far.
    struct Frame {
        std::uint32_t entity;
        SourceText text;
        std::vector<Use> uses;
        std::size_t next = 0;
    };

    void read(std::uint32_t entity);
    Frame open(std::uint32_t entity);
    void close(const Frame& frame);
    Entry readText(const SourceText& text, std::vector<Use>& uses) const;
    Entry readMarkup(const SourceText& text, std::vector<Use>& uses) const;
    Problem problemOf(std::u16string_view name, ReferenceContext context) const;

    const DocumentType& m_type;
    std::vector<Entry> m_entries; ///< Beside the type's entities.
};
