#include "BookmarkList.h"

#include <gtest/gtest.h>

#include <string>

using namespace BookmarkList;

namespace {

const QDateTime noon(QDate(2024, 5, 1), QTime(12, 0), Qt::UTC);

Visit visit(const char* url = "file:///a.xml") {
    return {.url = QString::fromUtf8(url),
            .mimeType = QStringLiteral("application/xml"),
            .program = QStringLiteral("Tamo"),
            .command = QStringLiteral("tamo %u"),
            .time = noon};
}

constexpr char start[] = R"(<?xml version="1.0" encoding="UTF-8"?>
<xbel version="1.0"
      xmlns:bookmark="http://www.freedesktop.org/standards/desktop-bookmarks"
      xmlns:mime="http://www.freedesktop.org/standards/shared-mime-info"
>
)";

/// The bookmark of another program, as one of them spells it.
std::string foreign(const std::string& url, const std::string& time = "2024-01-01T00:00:00.123456Z",
                    const std::string& application = {}) {
    return "  <bookmark href=\"" + url + "\" added=\"2023-01-01T00:00:00Z\" modified=\"" + time +
           "\" visited='" + time +
           "'>\r\n    <title>Título &amp; más 😀</title>\n    <info><!-- mine -->\n      "
           "<metadata owner=\"http://freedesktop.org\">\n"
           "        <mime:mime-type type=\"image/svg+xml\"/>\n        <bookmark:applications>\n"
           "          <bookmark:application name=\"Other\" exec=\"&apos;other %u&apos;\" modified=\"" +
           time + "\" count=\"7\"/>\n" + application + "        </bookmark:applications>\n" +
           "      </metadata>\n    </info>\n  </bookmark>\n";
}

constexpr char ours[] = "<bookmark:application name=\"Tamo\" exec=\"'tamo %u'\" "
                        "modified=\"2024-05-01T12:00:00.000Z\" count=\"1\"/>";

std::string noted(const std::string& list, const Visit& of = visit()) {
    const auto result = noting(of, QByteArray::fromStdString(list));
    return result ? result->toStdString() : "refused";
}

} // namespace

TEST(BookmarkList, ReadsWhatProgramsWrite) {
    const auto read = BookmarkList::read(QByteArray::fromStdString(
        start + foreign("file:///one.svg") + "<bookmark href=\"file:///%C3%B1&amp;\"/></xbel>"));
    ASSERT_EQ(read.size(), 2U);
    EXPECT_EQ(read[0].url, QStringLiteral("file:///one.svg"));
    EXPECT_EQ(read[0].mimeType, QStringLiteral("image/svg+xml"));
    EXPECT_EQ(read[0].modified, QDateTime(QDate(2024, 1, 1), QTime(0, 0, 0, 123), Qt::UTC));
    EXPECT_EQ(read[1], (Bookmark{QStringLiteral("file:///%C3%B1&"), {}, {}}));
}

TEST(BookmarkList, ReadsABrokenListUpToTheBreak) {
    for (const char* const rest : {"", "<bookmark", "</other>", "&undefined;", "\x01", "\xFF"}) {
        const auto read =
            BookmarkList::read(QByteArray::fromStdString(start + foreign("file:///one.svg") + rest));
        ASSERT_EQ(read.size(), 1U) << rest;
        EXPECT_EQ(read[0].url, QStringLiteral("file:///one.svg"));
    }
    EXPECT_TRUE(BookmarkList::read("").empty());
    EXPECT_TRUE(BookmarkList::read("no list").empty());
}

TEST(BookmarkList, BeginsAList) {
    const auto bytes = noting(visit(), {});
    ASSERT_TRUE(bytes);
    const std::string expected =
        std::string(start) +
        "<bookmark href=\"file:///a.xml\" added=\"2024-05-01T12:00:00.000Z\" "
        "modified=\"2024-05-01T12:00:00.000Z\" visited=\"2024-05-01T12:00:00.000Z\"><info>"
        "<metadata owner=\"http://freedesktop.org\"><mime:mime-type type=\"application/xml\"/>"
        "<bookmark:applications>" +
        ours + "</bookmark:applications></metadata></info></bookmark>\n</xbel>\n";
    EXPECT_EQ(bytes->toStdString(), expected);
    EXPECT_EQ(BookmarkList::read(*bytes), (std::vector{Bookmark{visit().url, visit().mimeType, noon}}));
}

TEST(BookmarkList, LeavesTheBookmarksOfOthersAsTheyAre) {
    const std::string before = start + foreign("file:///one.svg") + foreign("file:///two.svg");
    const std::string after = noted(before + "</xbel>\n<!-- end -->\n");
    EXPECT_TRUE(after.starts_with(before)) << after;
    EXPECT_TRUE(after.ends_with("</bookmark>\n</xbel>\n<!-- end -->\n")) << after;
    EXPECT_EQ(BookmarkList::read(QByteArray::fromStdString(after)).size(), 3U);
}

TEST(BookmarkList, JoinsTheOtherProgramsOfAFile) {
    const std::string before = std::string(start) + foreign("file:///one.svg");
    const std::string after = foreign("file:///two.svg") + "</xbel>\n";
    const std::string file = foreign("file:///a.xml");
    std::string expected = file;
    const std::string time = "2024-05-01T12:00:00.000Z";
    const std::string old = "2024-01-01T00:00:00.123456Z";
    expected.replace(expected.find("modified=\"" + old), 10 + old.size() + 1, "modified=\"" + time + "\"");
    expected.replace(expected.find("visited='" + old), 9 + old.size() + 1, "visited=\"" + time + "\"");
    expected.insert(expected.find("</bookmark:applications>"), ours);
    EXPECT_EQ(noted(before + file + after), before + expected + after);
}

TEST(BookmarkList, CountsItsVisits) {
    std::string list = noted("");
    for (const char* const count : {"\"2\"", "\"3\""}) {
        list = noted(list);
        EXPECT_NE(list.find("count=" + std::string(count)), std::string::npos) << list;
        EXPECT_EQ(list.find("<bookmark:application "), list.rfind("<bookmark:application ")) << list;
    }
    const std::string spelt = "<bookmark:application count='41' name='Tamo'>\n </bookmark:application>";
    const std::string counted =
        noted(start + foreign("file:///a.xml", "2024-01-01T00:00:00Z", spelt) + "</xbel>");
    EXPECT_NE(counted.find("count=\"42\"/>"), std::string::npos) << counted;
    EXPECT_EQ(counted.find("41"), std::string::npos) << counted;
}

TEST(BookmarkList, CompletesBookmarksThatSayLess) {
    const std::string rows[] = {
        "<bookmark href='file:///a.xml'></bookmark>",
        "<bookmark href='file:///a.xml'><info></info></bookmark>",
        "<bookmark href='file:///a.xml'><info><metadata "
        "owner='http://other.org'><x/></metadata></info></bookmark>",
        "<bookmark href='file:///a.xml'><info><metadata "
        "owner='http://freedesktop.org'></metadata></info></bookmark>",
    };
    for (const std::string& row : rows) {
        const std::string after = noted(start + row + "</xbel>");
        EXPECT_NE(after.find(ours), std::string::npos) << after;
        EXPECT_EQ(BookmarkList::read(QByteArray::fromStdString(after)).size(), 1U) << after;
    }
}

TEST(BookmarkList, UsesThePrefixesOfTheList) {
    const std::string list = "<xbel xmlns:b='http://www.freedesktop.org/standards/desktop-bookmarks'></xbel>";
    const std::string after = noted(list);
    EXPECT_NE(after.find("<b:applications><b:application name=\"Tamo\""), std::string::npos) << after;
    EXPECT_NE(after.find("<mime:mime-type xmlns:mime="), std::string::npos) << after;
    EXPECT_EQ(BookmarkList::read(QByteArray::fromStdString(after)).front().mimeType,
              QStringLiteral("application/xml"));
}

TEST(BookmarkList, SpellsNamesSafely) {
    const auto bytes = noting(visit("file:///a&b%22<c>'\".xml"), {});
    ASSERT_TRUE(bytes);
    EXPECT_EQ(BookmarkList::read(*bytes).front().url, QStringLiteral("file:///a&b%22<c>'\".xml"));
}

TEST(BookmarkList, RefusesListsThatAreBrokenOrMakeNoSense) {
    const std::string rows[] = {
        start,
        std::string(start) + "<bookmark href='file:///a.xml'>",
        std::string(start) + "</xbel><more/>",
        "<html></html>",
        "<xbel/>",
        std::string(start) + "<bookmark href='file:///a.xml'/></xbel>",
        std::string(start) + "\xFF</xbel>",
        "<?xml version='1.0' encoding='UTF-16'?><xbel",
        "no list",
    };
    for (const std::string& row : rows) {
        EXPECT_EQ(noted(row), "refused") << row;
    }
}

TEST(BookmarkList, FindsItsPlaceInLongLists) {
    std::string list = start;
    for (int i = 0; i < 3000; ++i) {
        list += foreign("file:///ñ" + std::to_string(i) + ".svg");
    }
    const std::string end = foreign("file:///a.xml") + "</xbel>";
    const std::string after = noted(list + end);
    EXPECT_TRUE(after.starts_with(list));
    EXPECT_EQ(BookmarkList::read(QByteArray::fromStdString(after)).size(), 3001U);
    EXPECT_NE(after.find(ours), std::string::npos);
}
