#pragma once

#include "DocumentType.h"
#include "NameHash.h"
#include "Reference.h"

#include <unordered_map>

/// Reads one document type declaration by the grammar, in one pass: parameter entities on a stack of its own,
/// each read once, content models on another.
class DocumentTypeReader {
public:
    /// For the declaration of `text` that starts at `lower`; nothing from `limit` on belongs to it.
    DocumentTypeReader(const SourceText& text, Offset lower, Offset limit, DeclaredForm form);

    DocumentType read();

    /// Whether the declaration had its end before the limit.
    bool isComplete() const { return m_isComplete; }

private:
    using Rule = Violation::Rule;
    using Place = DocumentType::Place;

    /// One text that is being read: the document, or in it a parameter entity, or in that another.
    struct Frame {
        std::uint32_t text = 0;
        Offset at = 0;
        Offset end = 0;
        std::uint32_t entity = 0;
        std::uint32_t openSections = 0; ///< Conditional sections that are to be read.
        bool hasFailed = false;
    };
    enum class EntityState : std::uint8_t { unread, open, read };

    // What is at the place of reading.
    bool isAtEnd() const { return m_at == m_end; }
    char16_t unit() const { return isAtEnd() ? u'\0' : m_units[m_at]; }
    bool isAtParameterReference() const;
    std::u16string_view rest() const { return m_units.substr(m_at, m_end - m_at); }
    Place placeFrom(Offset lower) const { return {{lower, m_at}, m_frames.back().text}; }

    // Takes something; false, after reporting it, when something else stands there.
    bool skipSpaces();
    bool takeSpaces(Rule otherwise);
    bool takeUnit(char16_t wanted, Rule otherwise);
    bool takeName(Place& name, Rule otherwise);
    bool takeNameToken(Rule otherwise);
    bool takeLiteral(Place& inside, Rule otherwise);
    bool takeEnd(Rule otherwise);
    std::u16string_view takeKeyword();

    void readHead();
    bool readSubset();
    void readInSubset();
    void skipUnexpected();
    bool readDeclaration();
    bool readElement();
    bool readContentModel(DocumentType::Element& element);
    bool readMixed();
    bool readChildren();
    DocumentType::Occurrence takeOccurrence();
    bool readAttributes();
    bool readAttribute(const Place& element);
    bool readAttributeType(DocumentType::Attribute& attribute);
    bool readEnumeration(bool areNames);
    bool readDefault(DocumentType::Attribute& attribute);
    bool readEntity();
    bool readEntityDefinition(DocumentType::Entity& entity);
    enum class Literal : std::uint8_t { entityValue, attributeValue };
    void checkReferences(const Place& value, Literal literal);
    void checkPredefined(const DocumentType::Entity& entity);
    bool readNotation();
    enum class Literals : std::uint8_t { asOfEntity, asOfNotation };
    bool readExternalIdentifier(DocumentType::ExternalIdentifier& external, Literals literals);
    void checkPublicLiteral(const Place& literal);
    void readDelimited(DocumentType::Item::Kind kind, std::u16string_view opener,
                       std::u16string_view terminator);
    void readConditionalSection();
    void skipIgnoredSection();
    void readParameterReference();
    void enterParameterEntity(std::uint32_t entity, SourceRange reference);
    void leaveParameterEntity();
    void loadFrame();
    void storeFrame() { m_frames.back().at = m_at; }

    void add(DocumentType::Item::Kind kind, Offset lower, std::size_t first = 0, std::size_t end = 0);
    bool fail(Rule rule);
    void recover();
    void reportAll(const std::vector<Violation>& violations);
    void report(Rule rule, SourceRange range, Offset detail = 0);

    SourceText m_text;
    DocumentType m_type;
    std::vector<Frame> m_frames;
    std::u16string_view m_units; ///< Of the text that is read now.
    Offset m_at = 0;
    Offset m_end = 0;
    Offset m_declaration = 0; ///< Where the declaration that is read now starts.
    SourceRange m_reference;  ///< In the document, through which the text is read.
    std::unordered_map<std::u16string_view, std::uint32_t, NameHash> m_parameterEntities;
    std::vector<EntityState> m_states; ///< Beside `entities`.
    bool m_isComplete = false;
};

/// What an entity with the literal `value` stands for: its character references resolved, everything else as
/// it is written.
std::u16string replacementText(std::u16string_view value);
