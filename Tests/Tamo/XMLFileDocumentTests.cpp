#include "XMLFileDocument.h"

#include "Signposter.h"
#include "TextBuffer.h"

#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <stop_token>
#include <string>
#include <thread>
#include <variant>

#include <unicode/ucnv.h>
#include <unistd.h>

using namespace std::string_literals;

namespace {

FileContents contents(std::string_view bytes) {
    auto storage = std::make_shared<std::uint8_t[]>(bytes.size());
    std::ranges::copy(bytesOf(bytes), storage.get());
    return {std::move(storage), bytes.size()};
}

std::unique_ptr<XMLFileDocument> decoded(std::string_view bytes) {
    auto document = XMLFileDocument::decode(contents(bytes));
    EXPECT_TRUE(document);
    return std::move(document.value());
}

std::string declaration(std::string_view encoding) {
    return "<?xml version=\"1.0\" encoding=\"" + std::string(encoding) + "\"?>\r\n";
}

class XMLFileDocumentTest : public testing::Test {
protected:
    QString path(const char* name) const { return m_folder.filePath(QString::fromUtf8(name)); }

    void create(const char* name, std::string_view bytes) const {
        QFile file(path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes.data(), static_cast<qint64>(bytes.size()));
    }

    std::string bytes(const char* name) const {
        QFile file(path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll().toStdString() : "missing";
    }

private:
    QTemporaryDir m_folder;
};

} // namespace

TEST_F(XMLFileDocumentTest, StartsEmptyInUTF8) {
    XMLFileDocument document;
    EXPECT_EQ(document.encoding(), StringEncoding::utf8());
    EXPECT_TRUE(document.bom().empty());
    EXPECT_EQ(document.initialText().count(), 0u);
    EXPECT_TRUE(document.snapshot().isEmpty());
    EXPECT_EQ(document.encode(document.snapshot()), "");
}

TEST_F(XMLFileDocumentTest, ReadsAndWritesXMLAndSVG) {
    const auto types = XMLFileDocument::contentTypes();
    ASSERT_EQ(types.size(), 2u);
    EXPECT_EQ(types[0].mimeTypes.front(), QStringLiteral("application/xml"));
    EXPECT_EQ(types[0].fileSuffixes.front(), QStringLiteral("xml"));
    EXPECT_EQ(types[1].mimeTypes.front(), QStringLiteral("image/svg+xml"));
    EXPECT_EQ(types[1].fileSuffixes.front(), QStringLiteral("svg"));
}

TEST_F(XMLFileDocumentTest, GivesBackTheBytesThatItRead) {
    const struct {
        std::string bytes;
        const char* converter;
        std::size_t bomSize;
        std::u16string end; ///< Of the text.
    } cases[]{
        {"", "UTF-8", 0, u""},
        {"<a>ñ\0\r</a>"s, "UTF-8", 0, u"ñ\0\r</a>"s},
        {"\xEF\xBB\xBF<a/>", "UTF-8", 3, u"<a/>"},
        {"\xEF\xBB\xBF\xEF\xBB\xBF<a/>", "UTF-8", 3, u"\xFEFF<a/>"},
        {"\xFF\xFE<\0a\0/\0>\0"s, "UTF-16LE", 2, u"<a/>"},
        {"\xFE\xFF\0<\0a\0/\0>"s, "UTF-16BE", 2, u"<a/>"},
        {"\xFF\xFE\0\0<\0\0\0"s, "UTF-16LE", 2, u"\0<\0"s},
        {"\xEF\xBB\xBF" + declaration("ISO-8859-1") + "ñ", "UTF-8", 3, u"ñ"},
        {declaration("UTF-16") + "<a>ñ</a>", "UTF-8", 0, u"<a>ñ</a>"},
        {declaration("ISO-8859-1") + "<a>\xF1\x80</a>", "ISO-8859-1", 0, u"<a>ñ\u0080</a>"},
        {declaration("unknown") + "<a>\xF1</a>", "ISO-8859-1", 0, u"<a>ñ</a>"},
        {declaration("windows-1252") + "<a>\x80</a>", "ibm-5348_P100-1997", 0, u"<a>€</a>"},
        {declaration("Shift_JIS") + "\x83\x41\x81\x60\x87\x40", "ibm-943_P15A-2003", 0, u"ア～①"},
        {declaration("EUC-KR") + "\xB0\xA1\x81\x41", "windows-949-2000", 0, u"가갂"},
        {declaration("GB2312") + "\xB0\xA1\x81\x40", "gb18030", 0, u"啊丂"},
        {declaration("ISO-2022-JP") + "\x1B$B%\"\x1B(B", "ISO_2022,locale=ja,version=0", 0, u"ア"},
        // Spelled in ways that no encoder chooses.
        {declaration("Shift_JIS") + "\x87\x90\xED\x40", "ibm-943_P15A-2003", 0, u"≒纊"},
        {declaration("ISO-2022-JP") + "\x1B(Ba", "ISO_2022,locale=ja,version=0", 0, u"a"},
        {declaration("UTF-7") + "+ACY-", "UTF-7", 0, u"&"},
    };
    for (const auto& [bytes, converter, bomSize, end] : cases) {
        const auto document = decoded(bytes);
        EXPECT_EQ(document->encoding().converterName(), converter);
        EXPECT_EQ(document->bom().size(), bomSize);
        EXPECT_TRUE(document->initialText().units().ends_with(end)) << testing::PrintToString(bytes);
        EXPECT_EQ(document->encode(document->snapshot()), bytes) << testing::PrintToString(bytes);
        // Nor does it matter that there was an edit that was taken back.
        const Rope edited = document->snapshot().replaced({0, 0}, u"x");
        EXPECT_EQ(document->encode(edited.replaced({0, 1}, u"")), bytes) << testing::PrintToString(bytes);
    }
}

TEST_F(XMLFileDocumentTest, GivesBackItsBytesInEveryEncoding) {
    std::string everything;
    for (unsigned byte = 0; byte < 256; ++byte) {
        everything += static_cast<char>(byte);
    }
    for (int i = 0; i < ucnv_countAvailable(); ++i) {
        const char* const name = ucnv_getAvailableName(i);
        for (const std::string& rest :
             {std::string("<a>text</a>"), everything, "a" + everything + everything}) {
            const std::string bytes = declaration(name) + rest;
            const auto document = decoded(bytes);
            if (document->encoding().decode(bytesOf(bytes))) {
                EXPECT_EQ(document->encode(document->snapshot()), bytes) << name;
            }
        }
    }
}

TEST_F(XMLFileDocumentTest, ReadsWhatIsIllegalAsLatin1AndKeepsTheEncoding) {
    const auto document = decoded("\xEF\xBB\xBF<a>\xF1</a>");
    EXPECT_EQ(document->encoding(), StringEncoding::utf8());
    EXPECT_EQ(document->bom().size(), 3u);
    EXPECT_EQ(document->initialText().units(), u"<a>ñ</a>");
    EXPECT_EQ(document->encode(document->snapshot()), "\xEF\xBB\xBF<a>ñ</a>");
    EXPECT_EQ(decoded("\xFF\xFE\x00\xD8"s)->initialText().units(), u"\0Ø"s);
    EXPECT_EQ(decoded("\xFF\xFE<")->initialText().units(), u"<");
}

TEST_F(XMLFileDocumentTest, ReadsFilesAsItDecodesTheirBytes) {
    const std::string filler(std::size_t{1} << 19, 'x');
    const std::string files[]{
        "<a>día €</a>",
        "\xEF\xBB\xBF<a>día</a>",
        declaration("UTF-8") + "<a>" + filler + "ñ</a>",
        declaration("UTF-8") + "<a>" + filler + "\xF1</a>",
        declaration("ISO-8859-1") + "<a>\xF1</a>",
        "<a>" + filler + "\xF1</a>",
        "\xFF\xFE<\0a\0/\0>\0"s,
        "",
    };
    for (const std::string& file : files) {
        create("a.xml", file);
        const auto document = XMLFileDocument::read(path("a.xml"));
        const auto expected = decoded(file);
        ASSERT_TRUE(document);
        EXPECT_EQ((*document)->encoding(), expected->encoding());
        EXPECT_EQ((*document)->initialText(), expected->initialText());
        EXPECT_EQ(stringOf((*document)->bom()), stringOf(expected->bom()));
        EXPECT_EQ((*document)->encode((*document)->snapshot()), expected->encode(expected->snapshot()));
    }
}

TEST_F(XMLFileDocumentTest, MarksTheDecoding) {
    Signposter::takeRecords();
    Signposter::setRecording(true);
    decoded("<a/>");
    Signposter::setRecording(false);
    const std::vector<Signposter::Record> records = Signposter::takeRecords();
    ASSERT_EQ(records.size(), 1u);
    EXPECT_STREQ(records[0].name, "Decode");
    EXPECT_STREQ(records[0].category, "Document");
}

TEST_F(XMLFileDocumentTest, WritesTheLatestTextOfTheBuffer) {
    create("datos.xml", "\xEF\xBB\xBF<a/>");
    const auto document = XMLFileDocument::read(path("datos.xml"));
    ASSERT_TRUE(document);
    TextBuffer& buffer = (*document)->buffer();
    EXPECT_EQ(&buffer, &(*document)->buffer());
    EXPECT_EQ(buffer.text(), Rope(u"<a/>"));
    const TextEdit edit{{2, 2}, u" b='€'"};
    buffer.apply({&edit, 1});
    EXPECT_EQ((*document)->snapshot(), buffer.text());
    EXPECT_EQ((*document)->initialText().units(), u"<a/>");
    std::thread([&] { EXPECT_TRUE((*document)->write((*document)->snapshot(), path("datos.xml"))); }).join();
    EXPECT_EQ(bytes("datos.xml"), "\xEF\xBB\xBF<a b='€'/>");
}

TEST_F(XMLFileDocumentTest, RefusesToWriteWhatTheEncodingLacks) {
    const std::string original = declaration("ISO-8859-1") + "<a>\n\xF1</a>";
    create("datos.xml", original);
    const auto document = XMLFileDocument::read(path("datos.xml"));
    ASSERT_TRUE(document);
    const Rope text = (*document)->snapshot();
    const Rope edited = text.replaced({text.size(), text.size()}, std::u16string(100'000, u'x') + u"\n€");
    const auto result = (*document)->write(edited, path("datos.xml"));
    ASSERT_FALSE(result);
    EXPECT_EQ(result.error(), (DocumentError{DocumentError::Action::write,
                                             UnencodableText{U'€', 4, StringEncoding::latin1()}}));
    EXPECT_EQ(bytes("datos.xml"), original);
    EXPECT_FALSE((*document)->encode(edited));
}

TEST_F(XMLFileDocumentTest, FailsWithTheCauseOfTheFile) {
    const auto readFailure = [&](const char* name) { return XMLFileDocument::read(path(name)).error(); };
    EXPECT_EQ(readFailure("missing.xml"), (DocumentError{DocumentError::Action::read, FileFailure::missing}));
    EXPECT_EQ(readFailure("."), (DocumentError{DocumentError::Action::read, FileFailure::folder}));
    XMLFileDocument document;
    EXPECT_EQ(document.write({}, path("missing/file.xml")).error(),
              (DocumentError{DocumentError::Action::write, FileFailure::missing}));
}

TEST_F(XMLFileDocumentTest, RefusesWhatMustBeTooLongBeforeItReads) {
    constexpr long long limit = 4'294'967'295;
    struct Row {
        const char* encoding;
        long long size;
    };
    const DecodeFailure tooLong{DecodeFailure::Kind::tooLong, 0};
    for (const Row& row : {Row{"UTF-8", 3 * limit + 4}, Row{"ISO-8859-1", limit + 5},
                           Row{"windows-1252", limit + 5}, Row{"GB18030", 4 * limit + 5}}) {
        create("a.xml", declaration(row.encoding));
        // Takes no room; to read it would take long, and more memory than there is.
        ASSERT_EQ(truncate(QFile::encodeName(path("a.xml")).constData(), row.size), 0);
        const auto document = XMLFileDocument::read(path("a.xml"));
        ASSERT_FALSE(document.has_value()) << row.encoding;
        EXPECT_EQ(std::get<DecodeFailure>(document.error().cause), tooLong) << row.encoding;
        const auto again = XMLFileDocument::read(path("a.xml"), StringEncoding::named(row.encoding).value());
        ASSERT_FALSE(again.has_value()) << row.encoding;
        EXPECT_EQ(std::get<DecodeFailure>(again.error().cause), tooLong) << row.encoding;
    }
}

TEST_F(XMLFileDocumentTest, StopsReadingWhenItIsAskedTo) {
    std::stop_source stop;
    stop.request_stop();
    for (const char* const encoding : {"UTF-8", "ISO-8859-1", "windows-1252", "UTF-16"}) {
        create("a.xml", declaration(encoding) + std::string(3'000'000, 'x'));
        EXPECT_FALSE(XMLFileDocument::read(path("a.xml"), stop.get_token()).has_value()) << encoding;
        EXPECT_FALSE(
            XMLFileDocument::read(path("a.xml"), StringEncoding::latin1(), stop.get_token()).has_value());
        EXPECT_FALSE(XMLFileDocument::decode(contents(bytes("a.xml")), stop.get_token()).has_value())
            << encoding;
        EXPECT_TRUE(XMLFileDocument::read(path("a.xml")).has_value()) << encoding;
    }
}
