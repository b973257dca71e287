#include "TreeStorage.h"

#include "LargeArray.h"
#include "Lexer.h"

#include <algorithm>

namespace {

struct Counts {
    std::size_t nodes = 0;
    std::size_t attributes = 0;
};

/// Adds what a part of a text would make if it began in content.
void count(std::u16string_view units, UnitIndex& index, Counts& counts) {
    Lexer lexer(units, index);
    bool isInText = false;
    while (const auto token = lexer.next()) {
        switch (token->kind) {
        case Token::Kind::openTagStart:
        case Token::Kind::comment:
        case Token::Kind::cdata:
        case Token::Kind::instruction:
        case Token::Kind::doctype:
            ++counts.nodes;
            break;
        case Token::Kind::text:
            counts.nodes += !isInText && lexer.textHasContent() ? 1 : 0;
            break;
        case Token::Kind::attributeName:
            ++counts.attributes;
            break;
        default:
            break;
        }
        isInText = token->kind == Token::Kind::text || token->kind == Token::Kind::entity;
    }
}

Counts estimate(const SourceText& text) {
    constexpr std::size_t samples = 32;
    constexpr std::size_t sampleLength = 8192;
    const std::u16string_view units = text.units();
    if (units.size() < samples * sampleLength) {
        return {};
    }
    UnitIndex index;
    Counts counts;
    for (std::size_t sample = 0; sample < samples; ++sample) {
        count(units.substr(units.size() / samples * sample, sampleLength), index, counts);
    }
    const auto inAll = [&](std::size_t found) { return found * (units.size() / sampleLength) / samples; };
    return {inAll(counts.nodes), inAll(counts.attributes)};
}

/// Where the guess is a little short, growing would move everything.
std::size_t withRoom(std::size_t guess) { return guess + guess / 8; }

/// What is touched although it stays unused is memory lost.
std::size_t withoutDoubt(std::size_t guess) { return guess - guess / 8; }

} // namespace

TreeStorage::TreeStorage(const SourceText& text) {
    const Counts counts = estimate(text);
    // The parser reserves as many in any case.
    constexpr std::size_t unitsPerNode = 24;
    m_tree.nodes.reserve(std::max(withRoom(counts.nodes), text.count() / unitsPerNode));
    m_tree.attributes.reserve(withRoom(counts.attributes));
    m_nodes = {m_tree.nodes.begin(), withoutDoubt(counts.nodes) * sizeof(TreeNode)};
    m_attributes = {m_tree.attributes.begin(), withoutDoubt(counts.attributes) * sizeof(AttributeSpan)};
    adviseHugePages(m_nodes.begin, m_nodes.size);
    adviseHugePages(m_attributes.begin, m_attributes.size);
}

void TreeStorage::touch() const {
    constexpr std::size_t steps = 64;
    for (std::size_t step = 0; step < steps; ++step) {
        for (const Stretch& stretch : {m_nodes, m_attributes}) {
            const std::size_t begin = stretch.size * step / steps;
            const std::size_t end = stretch.size * (step + 1) / steps;
            touchMemory(static_cast<char*>(stretch.begin) + begin, end - begin);
        }
    }
}
