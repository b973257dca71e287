#pragma once

#include "DocumentTree.h"
#include "SourceText.h"
#include "Violation.h"
#include "XMLDeclarationCheck.h"

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

/// The document type declaration of a text as a value: what it refers to and what its internal subset
/// declares. Nothing that it refers to is ever fetched.
///
/// Parameter entities of the subset are read where they are referred to between declarations, each once,
/// however often that is. What they declare is declared as if it stood there; its names lie in the
/// replacement text of the entity, one of `texts`, and not in the document.
struct DocumentType {
    /// A stretch of one of `texts`.
    struct Place {
        SourceRange range;
        std::uint32_t text = 0; ///< 0 is the document.

        bool isEmpty() const { return range.isEmpty(); }
        bool operator==(const Place&) const = default;
    };

    /// What is written inside the quotes. Absent where `text` is `noText`.
    static constexpr std::uint32_t noText = 0xFFFFFFFF;

    struct ExternalIdentifier {
        Place publicLiteral{.text = noText};
        Place systemLiteral{.text = noText};

        bool isPresent() const { return publicLiteral.text != noText || systemLiteral.text != noText; }
        bool operator==(const ExternalIdentifier&) const = default;
    };

    enum class Content : std::uint8_t { empty, any, mixed, children };
    enum class Occurrence : std::uint8_t { once, optional, any, some };

    /// One particle of a content model. The members of a group stand right after it in `particles`, each with
    /// its own members; `end` is where the next particle beside it stands.
    struct Particle {
        enum class Kind : std::uint8_t { name, choice, sequence };

        Kind kind = Kind::name;
        Occurrence occurrence = Occurrence::once;
        Place name; ///< Empty of a group.
        std::uint32_t end = 0;

        bool operator==(const Particle&) const = default;
    };

    struct Element {
        Place name;
        Place model; ///< As it is written, from `EMPTY`, `ANY` or the parenthesis on.
        Content content = Content::empty;
        /// Of mixed content its names, of children one group and all that it holds.
        std::uint32_t firstParticle = 0;
        std::uint32_t particlesEnd = 0;

        bool operator==(const Element&) const = default;
    };

    enum class AttributeType : std::uint8_t {
        cdata,
        id,
        idref,
        idrefs,
        entity,
        entities,
        nmtoken,
        nmtokens,
        notation,
        enumeration
    };
    enum class Default : std::uint8_t { implied, required, fixed, value };

    struct Attribute {
        Place element;
        Place name;
        Place type;  ///< As it is written.
        Place value; ///< The default, inside its quotes; empty where there is none.
        AttributeType kind = AttributeType::cdata;
        Default defaults = Default::implied;

        bool hasDefault() const { return defaults == Default::value || defaults == Default::fixed; }
        bool operator==(const Attribute&) const = default;
    };

    struct Entity {
        Place name;
        Place value; ///< Of an internal entity, inside its quotes.
        ExternalIdentifier external;
        Place notation{.text = noText}; ///< Of an unparsed entity.
        bool isParameter = false;

        bool isInternal() const { return !external.isPresent(); }
        bool isUnparsed() const { return notation.text != noText; }
        bool operator==(const Entity&) const = default;
    };

    struct Notation {
        Place name;
        ExternalIdentifier external;

        bool operator==(const Notation&) const = default;
    };

    /// One thing in the subset, in order.
    struct Item {
        enum class Kind : std::uint8_t {
            element,    ///< `elements[first]`
            attributes, ///< `attributes[first ..< end]`
            entity,     ///< `entities[first]`
            notation,   ///< `notations[first]`
            comment,
            instruction,
            parameterReference,
        };

        Kind kind;
        Place place; ///< From `<` to `>`, or the reference.
        std::uint32_t first = 0;
        std::uint32_t end = 0;

        bool operator==(const Item&) const = default;
    };

    SourceRange range; ///< From `<!DOCTYPE` to just after its `>`; empty when the document has none.
    SourceRange name;  ///< Of the root element.
    ExternalIdentifier external;
    std::optional<SourceRange> subset; ///< Inside the brackets.

    std::vector<SourceText> texts; ///< The document, then replacement texts of parameter entities.
    std::vector<Item> items;
    std::vector<Element> elements;
    std::vector<Particle> particles;
    std::vector<Attribute> attributes;
    std::vector<Entity> entities; ///< Every declaration; of two of one name the first binds.
    std::vector<Notation> notations;

    /// Whether the subset refers to a parameter entity, known or not.
    bool hasParameterReferences = false;
    /// Whether there is an external subset or parameter entity, none of which is read.
    bool hasUnread = false;
    XMLVersion version = XMLVersion::v1_0;
    bool isStandalone = false;

    /// What is wrong with the declaration itself, ordered by place. In entities: the reference to them.
    std::vector<Violation> violations;

    /// The declaration of the document, the first `<!DOCTYPE` before its root element. Where the text past
    /// the end of the tree's node still belongs to it by the grammar (an apostrophe in a comment may hide
    /// that from the parser), `range` says so. Linear in the declaration; nothing recurses.
    static DocumentType read(const DocumentTree& tree, DeclaredForm form);
    static DocumentType read(const DocumentTree& tree);

    bool isPresent() const { return !range.isEmpty(); }

    std::u16string_view units(const Place& place) const {
        return place.text == noText ? std::u16string_view() : texts[place.text].units(place.range);
    }

    /// Whether an entity that no declaration here declares is an error, rather than perhaps declared in what
    /// was not read.
    bool mustDeclareEntities() const {
        return isStandalone || (!external.isPresent() && !hasParameterReferences);
    }

    /// The position of the declaration that binds the general entity `name`, unless there is none.
    std::optional<std::uint32_t> generalEntity(std::u16string_view name) const;

private:
    friend class DocumentTypeReader;

    void sortNames();

    std::vector<std::uint32_t> m_byName; ///< The declarations that bind general entities, by name.
};
