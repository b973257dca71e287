#include "BenchmarkDocument.h"

#include "TreeParser.h"

#include <unicode/ucnv.h>
#include <unicode/ustring.h>

#include <algorithm>
#include <cstddef>
#include <fstream>
#include <iterator>
#include <random>
#include <utility>

namespace {

using namespace std::string_view_literals;

struct Encoding {
    std::string name;
    std::size_t markLength = 0;
};

std::string declaredEncoding(std::string_view bytes) {
    const std::string_view declaration = bytes.substr(0, bytes.find('>')).substr(0, 200);
    const std::size_t label = declaration.find("encoding");
    if (!declaration.starts_with("<?xml") || label == std::string_view::npos) {
        return "UTF-8";
    }
    const std::size_t opening = declaration.find_first_of("'\"", label);
    if (opening == std::string_view::npos) {
        return "UTF-8";
    }
    const std::size_t closing = declaration.find(declaration[opening], opening + 1);
    return std::string(declaration.substr(opening + 1, closing - opening - 1));
}

Encoding encoding(std::string_view bytes) {
    if (bytes.starts_with("\xEF\xBB\xBF"sv)) {
        return {"UTF-8", 3};
    }
    if (bytes.starts_with("\xFF\xFE"sv)) {
        return {"UTF-16LE", 2};
    }
    if (bytes.starts_with("\xFE\xFF"sv)) {
        return {"UTF-16BE", 2};
    }
    if (bytes.starts_with("<\0"sv)) {
        return {"UTF-16LE", 0};
    }
    if (bytes.starts_with("\0<"sv)) {
        return {"UTF-16BE", 0};
    }
    return {declaredEncoding(bytes), 0};
}

std::optional<std::u16string> decoded(std::string_view bytes) {
    const Encoding from = encoding(bytes);
    bytes.remove_prefix(from.markLength);
    UErrorCode error = U_ZERO_ERROR;
    UConverter* const converter = ucnv_open(from.name.c_str(), &error);
    ucnv_setToUCallBack(converter, UCNV_TO_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &error);
    std::u16string text(bytes.size() + 1, u'\0');
    const std::int32_t length = ucnv_toUChars(converter, text.data(), static_cast<std::int32_t>(text.size()),
                                              bytes.data(), static_cast<std::int32_t>(bytes.size()), &error);
    ucnv_close(converter);
    if (U_FAILURE(error)) {
        return std::nullopt;
    }
    text.resize(length);
    return text;
}

std::optional<std::string> encoded(std::u16string_view text) {
    std::string utf8(text.size() * 3 + 1, '\0');
    UErrorCode error = U_ZERO_ERROR;
    std::int32_t length = 0;
    u_strToUTF8(utf8.data(), static_cast<std::int32_t>(utf8.size()), &length, text.data(),
                static_cast<std::int32_t>(text.size()), &error);
    if (U_FAILURE(error)) {
        return std::nullopt;
    }
    utf8.resize(length);
    utf8.shrink_to_fit();
    return utf8;
}

/// Damages tags, one per call.
class Damage {
public:
    explicit Damage(std::uint32_t seed) : m_random(seed) {}

    bool isDue(std::uint32_t oneIn) { return m_random() % oneIn == 0; }

    std::u16string applied(std::u16string_view tag) {
        std::u16string result(tag);
        if (tag.starts_with(u"</")) {
            return m_random() % 2 == 0 ? std::u16string() : result.insert(2, u"x");
        }
        switch (m_random() % 4) {
        case 0:
            result.pop_back();
            break;
        case 1:
            if (const std::size_t quote = result.find(u'"'); quote != std::u16string::npos) {
                result.erase(quote, 1);
            }
            break;
        case 2:
            result += u" < ";
            break;
        default:
            result += u" & ";
            break;
        }
        return result;
    }

private:
    std::mt19937 m_random;
};

} // namespace

std::optional<BenchmarkDocument> loadDocument(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    const std::optional<std::u16string> text = file && !bytes.empty() ? decoded(bytes) : std::nullopt;
    std::optional<std::string> utf8 = text ? encoded(*text) : std::nullopt;
    if (!utf8) {
        return std::nullopt;
    }
    constexpr std::uint32_t oneTagIn = 200;
    constexpr std::uint32_t seed = 1;
    const DocumentTree tree = TreeParser::parse(SourceText(*text));
    return BenchmarkDocument{
        .name = path.filename().string(),
        .utf8 = std::move(*utf8),
        .text = tree.text,
        .damagedText = SourceText(damaged(*text, oneTagIn, seed)),
        .nodeCount = tree.nodes.size(),
        .attributeCount = tree.attributes.size(),
        .elementCount = static_cast<std::size_t>(std::ranges::count_if(tree.nodes, &TreeNode::isElement)),
        .allocatedBytes =
            tree.nodes.capacity() * sizeof(TreeNode) + tree.attributes.capacity() * sizeof(AttributeSpan),
    };
}

std::u16string damaged(std::u16string_view intact, std::uint32_t oneIn, std::uint32_t seed) {
    Damage damage(seed);
    std::u16string result;
    result.reserve(intact.size() + intact.size() / 64);
    std::size_t copied = 0;
    std::size_t next = 0;
    for (std::size_t at = intact.find(u'<'); at != std::u16string_view::npos; at = intact.find(u'<', next)) {
        next = at + 1;
        const bool isTag = next < intact.size() && intact[next] != u'!' && intact[next] != u'?';
        const std::size_t last = isTag ? intact.find(u'>', at) : std::u16string_view::npos;
        if (last != std::u16string_view::npos && damage.isDue(oneIn)) {
            next = last + 1;
            result += intact.substr(copied, at - copied);
            result += damage.applied(intact.substr(at, next - at));
            copied = next;
        }
    }
    return result += intact.substr(copied);
}
