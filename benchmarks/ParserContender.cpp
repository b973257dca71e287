#include "ParserContender.h"

#include "TreeParser.h"
#include "UnitScan.h"

#include <expat.h>
#include <libxml/parser.h>
#include <pugixml.hpp>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <string>

namespace {

/// Makes the compiler assume that all memory is read here.
void keepResults() { asm volatile("" : : : "memory"); }

template <class Work>
double secondsOf(Work work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    keepResults();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

/// Reads `text` once, so that the caches contain as much of it as fits.
template <class Text>
void readOnce(const Text& text) {
    volatile std::size_t sink = 0;
    std::size_t sum = 0;
    for (const auto unit : text) {
        sum += unit;
    }
    sink = sum;
    static_cast<void>(sink);
}

class Ours : public ParserContender {
public:
    std::string_view name() const override { return "ours"; }
    std::optional<double> parse(const BenchmarkDocument& document) override { return parse(document.text); }

protected:
    double parse(const SourceText& text) {
        readOnce(text.units());
        return secondsOf([&] { m_tree = TreeParser::parse(text, {}, std::move(m_tree)); });
    }

private:
    DocumentTree m_tree = DocumentTree::empty();
};

class OursDamaged : public Ours {
public:
    std::string_view name() const override { return "damaged"; }

    std::optional<double> parse(const BenchmarkDocument& document) override {
        // The time for a text of the length of the intact one, at the same speed.
        const SourceText& text = document.damagedText;
        return Ours::parse(text) * document.text.count() / std::max<Offset>(text.count(), 1);
    }
};

class Pugixml : public ParserContender {
public:
    std::string_view name() const override { return "pugixml"; }

    std::optional<double> parse(const BenchmarkDocument& document) override {
        m_buffer = document.utf8;
        m_document.reset();
        pugi::xml_parse_result result;
        const double seconds = secondsOf([&] {
            result = m_document.load_buffer_inplace(m_buffer.data(), m_buffer.size(), pugi::parse_default,
                                                    pugi::encoding_utf8);
        });
        return result ? std::optional(seconds) : std::nullopt;
    }

private:
    std::string m_buffer;
    pugi::xml_document m_document;
};

/// Pugixml, with a parse that does not change the caller's text, like ours.
class PugixmlCopy : public ParserContender {
public:
    std::string_view name() const override { return "pugixml-copy"; }

    std::optional<double> parse(const BenchmarkDocument& document) override {
        m_document.reset();
        readOnce(document.utf8);
        pugi::xml_parse_result result;
        const double seconds = secondsOf([&] {
            result = m_document.load_buffer(document.utf8.data(), document.utf8.size(), pugi::parse_default,
                                            pugi::encoding_utf8);
        });
        return result ? std::optional(seconds) : std::nullopt;
    }

private:
    pugi::xml_document m_document;
};

class Expat : public ParserContender {
public:
    std::string_view name() const override { return "expat"; }

    std::optional<double> parse(const BenchmarkDocument& document) override {
        XML_ParserReset(m_parser.get(), "UTF-8");
        XML_SetUserData(m_parser.get(), this);
        XML_SetElementHandler(m_parser.get(), start, end);
        XML_SetCharacterDataHandler(m_parser.get(), characters);
        m_counted = 0;
        readOnce(document.utf8);
        XML_Status status = XML_STATUS_ERROR;
        const double seconds = secondsOf([&] {
            status = XML_Parse(m_parser.get(), document.utf8.data(), static_cast<int>(document.utf8.size()),
                               XML_TRUE);
        });
        return status == XML_STATUS_OK ? std::optional(seconds) : std::nullopt;
    }

private:
    static void start(void* self, const XML_Char*, const XML_Char** attributes) {
        std::size_t count = 1;
        for (; *attributes != nullptr; attributes += 2) {
            ++count;
        }
        static_cast<Expat*>(self)->m_counted += count;
    }
    static void end(void* self, const XML_Char*) { ++static_cast<Expat*>(self)->m_counted; }
    static void characters(void* self, const XML_Char*, int length) {
        static_cast<Expat*>(self)->m_counted += length;
    }

    struct Free {
        void operator()(XML_Parser parser) const { XML_ParserFree(parser); }
    };
    std::unique_ptr<XML_ParserStruct, Free> m_parser{XML_ParserCreate("UTF-8")};
    std::size_t m_counted = 0;
};

class Libxml2 : public ParserContender {
public:
    std::string_view name() const override { return "libxml2"; }

    std::optional<double> parse(const BenchmarkDocument& document) override {
        constexpr int options = XML_PARSE_RECOVER | XML_PARSE_NOERROR | XML_PARSE_NOWARNING | XML_PARSE_HUGE |
                                XML_PARSE_NONET | XML_PARSE_IGNORE_ENC;
        m_document.reset();
        readOnce(document.utf8);
        const double seconds = secondsOf([&] {
            m_document.reset(xmlCtxtReadMemory(m_context.get(), document.utf8.data(),
                                               static_cast<int>(document.utf8.size()), "document.xml",
                                               nullptr, options));
        });
        return m_document ? std::optional(seconds) : std::nullopt;
    }

private:
    struct FreeContext {
        void operator()(xmlParserCtxtPtr context) const { xmlFreeParserCtxt(context); }
    };
    struct FreeDocument {
        void operator()(xmlDocPtr document) const { xmlFreeDoc(document); }
    };
    std::unique_ptr<xmlParserCtxt, FreeContext> m_context{xmlNewParserCtxt()};
    std::unique_ptr<xmlDoc, FreeDocument> m_document;
};

/// The baseline for every parser of UTF-8: a search from each `<` to the next.
class Memchr : public ParserContender {
public:
    std::string_view name() const override { return "memchr"; }

    std::optional<double> parse(const BenchmarkDocument& document) override {
        readOnce(document.utf8);
        return secondsOf([&] {
            const char* at = document.utf8.data();
            const char* const end = at + document.utf8.size();
            std::size_t count = 0;
            while ((at = static_cast<const char*>(std::memchr(at, '<', end - at))) != nullptr) {
                ++count;
                ++at;
            }
            m_count = count;
        });
    }

private:
    std::size_t m_count = 0;
};

/// The baseline for our own parser: a search from each `<` to the next in the UTF-16 text, which writes as
/// many records as the tree has.
class Roofline : public ParserContender {
public:
    std::string_view name() const override { return "roofline"; }

    std::optional<double> parse(const BenchmarkDocument& document) override {
        m_nodes.resize(document.nodeCount);
        m_attributes.resize(document.attributeCount);
        readOnce(document.text.units());
        return secondsOf([&] { write(document.text.units()); });
    }

private:
    void write(std::u16string_view units) {
        const auto end = static_cast<std::ptrdiff_t>(units.size());
        const std::size_t lastNode = m_nodes.size() - 1;
        std::size_t count = 0;
        for (std::ptrdiff_t at = 0; (at = UnitScan::findAny(units.data(), at, end, u'<')) != end; ++at) {
            m_nodes[std::min(count, lastNode)] = node(at);
            ++count;
        }
        for (; count < m_nodes.size(); ++count) {
            m_nodes[count] = node(count);
        }
        for (std::size_t i = 0; i < m_attributes.size(); ++i) {
            const auto range = SourceRange::unchecked(static_cast<Offset>(i), static_cast<Offset>(i + 1));
            m_attributes[i] = {range, range, range, u'"'};
        }
    }

    static TreeNode node(std::size_t at) {
        const auto range = SourceRange::unchecked(static_cast<Offset>(at), static_cast<Offset>(at + 1));
        TreeNode node;
        node.range = range;
        node.nameRange = range;
        node.contentRange = range;
        return node;
    }

    std::vector<TreeNode> m_nodes;
    std::vector<AttributeSpan> m_attributes;
};

/// Counts the elements of a pugixml document.
struct ElementCounter : pugi::xml_tree_walker {
    std::size_t count = 0;

    bool for_each(pugi::xml_node& node) override {
        count += node.type() == pugi::node_element ? 1 : 0;
        return true;
    }
};

} // namespace

std::vector<std::unique_ptr<ParserContender>> parserContenders() {
    std::vector<std::unique_ptr<ParserContender>> contenders;
    contenders.push_back(std::make_unique<Ours>());
    contenders.push_back(std::make_unique<Pugixml>());
    contenders.push_back(std::make_unique<PugixmlCopy>());
    contenders.push_back(std::make_unique<Expat>());
    contenders.push_back(std::make_unique<Libxml2>());
    contenders.push_back(std::make_unique<Memchr>());
    contenders.push_back(std::make_unique<Roofline>());
    contenders.push_back(std::make_unique<OursDamaged>());
    return contenders;
}

std::size_t elementCountOfPugixml(const BenchmarkDocument& document) {
    pugi::xml_document tree;
    tree.load_buffer(document.utf8.data(), document.utf8.size(), pugi::parse_default, pugi::encoding_utf8);
    ElementCounter counter;
    tree.traverse(counter);
    return counter.count;
}
