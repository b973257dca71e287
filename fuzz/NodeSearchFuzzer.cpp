#include "NodeSearch.h"
#include "Precondition.h"
#include "TreeParser.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>

namespace {

/// The folding of Latin-1 with its exceptions, written independently of the search.
char16_t folded(char16_t unit) {
    static const std::u16string_view letters = u"aaaaaaaceeeeiiiidnooooo*ouuuuyts";
    if (u'A' <= unit && unit <= u'Z') {
        return unit + 0x20;
    }
    switch (unit) {
    case 0xD7:
    case 0xF7:
    case 0xF0:
        return unit;
    case 0xDE:
    case 0xFE:
        return 0xFE;
    case 0xFF:
        return u'y';
    default:
        return 0xC0 <= unit && unit <= 0xFF ? letters[unit & 0x1F] : unit;
    }
}

std::u16string folded(std::u16string_view text) {
    std::u16string result(text);
    std::ranges::transform(result, result.begin(), [](char16_t unit) { return folded(unit); });
    return result;
}

bool isExpected(std::u16string_view query, const DocumentTree& tree, NodeID id) {
    const auto occurs = [&](SourceRange range, std::size_t longest) {
        return folded(tree.text.units(range).substr(0, longest)).find(query) != std::u16string::npos;
    };
    const TreeNode& node = tree[id];
    if (!node.isElement()) {
        return occurs(node.contentRange, 4096);
    }
    const std::size_t all = tree.text.count();
    return occurs(node.nameRange, all) ||
           std::ranges::any_of(tree.attributesOf(id), [&](const AttributeSpan& attribute) {
               return occurs(attribute.name, all) || occurs(attribute.value, all);
           });
}

} // namespace

/// The search finds the same as a plain one. The input, taken as Latin-1, starts with the length of the query
/// and the query; the rest is the document.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 2) {
        return 0;
    }
    const std::size_t length = std::min<std::size_t>(data[0] % 8U, size - 1);
    const std::u16string query(data + 1, data + 1 + length);
    const DocumentTree tree = TreeParser::parse(SourceText(std::u16string(data + 1 + length, data + size)));
    std::vector<NodeID> expected;
    for (NodeID id{1}; id.raw < tree.nodes.size() && !query.empty(); ++id.raw) {
        if (isExpected(folded(query), tree, id)) {
            expected.push_back(id);
        }
    }
    precondition(NodeSearch::matches(query, tree) == expected, "the search finds what a plain one finds");
    return 0;
}
