#include "KeptCopy.h"

#include "OpenFile.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>

#include <fcntl.h>

namespace {

class KeptCopyTest : public testing::Test {
protected:
    static std::string contents(const std::filesystem::path& path) {
        std::ifstream file(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    std::filesystem::path path(const std::string& name) const {
        return std::filesystem::path(folder.path().toStdString()) / name;
    }

    QTemporaryDir folder;
};

} // namespace

TEST_F(KeptCopyTest, PutsBackWhatAFileHeld) {
    std::ofstream(path("a.xml")) << std::string(3'000'000, 'x');
    const OpenFile file(path("a.xml"), O_RDWR);
    const auto copy = KeptCopy::of(path("a.xml"), file.number());
    ASSERT_TRUE(copy);
    EXPECT_EQ(copy->path(), path("a.xml.tamo-copia"));
    EXPECT_TRUE(contents(copy->path()) == contents(path("a.xml")));
    ASSERT_TRUE(writeAll(file.number(), bytesOf(std::string(4'000'000, 'y')), 0));
    EXPECT_TRUE(copy->putBack(file.number()));
    EXPECT_TRUE(contents(path("a.xml")) == std::string(3'000'000, 'x'));
    copy->remove();
    EXPECT_FALSE(std::filesystem::exists(copy->path()));
}

TEST_F(KeptCopyTest, HasANameOfItsOwn) {
    struct Row {
        std::string name;
        std::string first;
        std::string second;
    };
    const std::string long250(250, 'x');
    std::string accents;
    for (int i = 0; i < 125; ++i) {
        accents += "é";
    }
    for (const Row& row :
         {Row{"a.xml", "a.xml.tamo-copia", "a.xml-1.tamo-copia"},
          Row{long250, std::string(244, 'x') + ".tamo-copia", std::string(242, 'x') + "-1.tamo-copia"},
          Row{"y" + accents, "y" + accents.substr(0, 242) + ".tamo-copia",
              "y" + accents.substr(0, 240) + "-1.tamo-copia"}}) {
        std::ofstream(path(row.name)) << "text";
        const OpenFile file(path(row.name), O_RDONLY);
        const auto first = KeptCopy::of(path(row.name), file.number());
        const auto second = KeptCopy::of(path(row.name), file.number());
        ASSERT_TRUE(first && second) << row.name;
        EXPECT_EQ(first->path(), path(row.first));
        EXPECT_EQ(second->path(), path(row.second));
    }
}

TEST_F(KeptCopyTest, IsGoneWhenItCouldNotBeMade) {
    const OpenFile unreadable(path("a.xml"), O_WRONLY | O_CREAT, 0600);
    const auto copy = KeptCopy::of(path("a.xml"), unreadable.number());
    ASSERT_FALSE(copy.has_value());
    EXPECT_FALSE(std::filesystem::exists(path("a.xml.tamo-copia")));
}
