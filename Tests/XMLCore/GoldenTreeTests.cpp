#include "TreeDump.h"
#include "TreeParser.h"

#include "UTF16.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <set>
#include <sstream>

namespace {

const std::filesystem::path folder = std::filesystem::path(TAMO_SOURCE_DIR) / "Tests/XMLCore/golden";

std::string contents(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    EXPECT_TRUE(stream.good()) << file.filename();
    std::ostringstream bytes;
    bytes << stream.rdbuf();
    return bytes.str();
}

/// Decodes valid UTF-8.
std::u16string decode(std::string_view bytes) {
    std::u16string text;
    for (std::size_t at = 0; at < bytes.size();) {
        const auto first = static_cast<unsigned char>(bytes[at++]);
        const int following = first < 0x80 ? 0 : first < 0xE0 ? 1 : first < 0xF0 ? 2 : 3;
        char32_t scalar = following == 0 ? first : first & (0x3F >> following);
        for (int i = 0; i < following; ++i) {
            scalar = scalar << 6 | (static_cast<unsigned char>(bytes[at++]) & 0x3F);
        }
        UTF16::append(text, scalar);
    }
    return text;
}

std::string dumpOf(const std::u16string& units) {
    const DocumentTree tree = TreeParser::parse(SourceText(units));
    return treeDump({{tree.nodes.begin(), tree.nodes.end()},
                     {tree.attributes.begin(), tree.attributes.end()},
                     {tree.diagnostics.begin(), tree.diagnostics.end()}},
                    units);
}

} // namespace

/// If `TAMO_REWRITE_GOLDEN` is set in the environment, the expected trees are rewritten, to be reviewed as a
/// diff.
TEST(GoldenTrees, AreReproduced) {
    std::set<std::filesystem::path> documents;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        if (entry.path().extension() == ".xml") {
            documents.insert(entry.path());
        }
    }
    EXPECT_GE(documents.size(), 12U);
    for (const std::filesystem::path& document : documents) {
        const std::string dump = dumpOf(decode(contents(document)));
        const std::filesystem::path expected = std::filesystem::path(document).replace_extension(".tree.txt");
        if (std::getenv("TAMO_REWRITE_GOLDEN") != nullptr) {
            std::ofstream(expected, std::ios::binary) << dump;
        }
        EXPECT_EQ(dump, contents(expected)) << document.filename();
    }
}
