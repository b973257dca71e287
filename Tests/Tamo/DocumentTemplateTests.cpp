#include "DocumentTemplate.h"
#include "IndentStyle.h"
#include "TextEncodingDetector.h"
#include "TreeParser.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace {

const DocumentTemplate& find(std::u16string_view id) {
    for (const DocumentTemplate& candidate : DocumentTemplate::catalogue()) {
        if (candidate.id == id) {
            return candidate;
        }
    }
    preconditionFailed("the catalogue has that template");
}

DocumentTree parse(std::u16string_view text) { return TreeParser::parse(SourceText(text)); }

} // namespace

TEST(DocumentTemplate, OffersFiveInOrder) {
    struct Row {
        std::u16string_view id, title, symbol;
        std::ptrdiff_t lines;
    };
    const Row expected[] = {
        {u"basic", u"Básico", u"chevron.left.forwardslash.chevron.right", 4},
        {u"empty", u"Solo declaración", u"doc", 1},
        {u"svg", u"SVG", u"scribble.variable", 4},
        {u"plist", u"Property List", u"list.bullet.rectangle", 8},
        {u"rss", u"RSS", u"dot.radiowaves.up.forward", 12},
    };
    const auto catalogue = DocumentTemplate::catalogue();
    ASSERT_EQ(catalogue.size(), std::size(expected));
    for (std::size_t index = 0; index < catalogue.size(); ++index) {
        EXPECT_EQ(catalogue[index].id, expected[index].id);
        EXPECT_EQ(catalogue[index].title, expected[index].title);
        EXPECT_EQ(catalogue[index].symbol, expected[index].symbol);
        EXPECT_EQ(std::ranges::count(catalogue[index].text, u'\n'), expected[index].lines) << index;
    }
}

TEST(DocumentTemplate, HasTheExactTexts) {
    const std::u16string declaration = u"<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
    EXPECT_EQ(find(u"basic").text, declaration + u"<raiz>\n"
                                                 u"    <elemento atributo=\"valor\">Texto</elemento>\n"
                                                 u"</raiz>\n");
    EXPECT_EQ(find(u"empty").text, declaration);
    EXPECT_EQ(
        find(u"svg").text,
        u"<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"200\" height=\"200\" viewBox=\"0 0 200 200\">\n"
        u"    <rect x=\"20\" y=\"20\" width=\"160\" height=\"160\" rx=\"24\" fill=\"#4F8EF7\"/>\n"
        u"    <circle cx=\"100\" cy=\"100\" r=\"48\" fill=\"#FFFFFF\"/>\n"
        u"</svg>\n");
    EXPECT_EQ(find(u"plist").text, declaration + u"<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
                                                 u"\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
                                                 u"<plist version=\"1.0\">\n"
                                                 u"<dict>\n"
                                                 u"    <key>Nombre</key>\n"
                                                 u"    <string>Valor</string>\n"
                                                 u"</dict>\n"
                                                 u"</plist>\n");
    EXPECT_EQ(find(u"rss").text, declaration + u"<rss version=\"2.0\">\n"
                                               u"    <channel>\n"
                                               u"        <title>Mi canal</title>\n"
                                               u"        <link>https://example.com</link>\n"
                                               u"        <description>Descripción del canal</description>\n"
                                               u"        <item>\n"
                                               u"            <title>Primera entrada</title>\n"
                                               u"            <link>https://example.com/1</link>\n"
                                               u"        </item>\n"
                                               u"    </channel>\n"
                                               u"</rss>\n");
}

TEST(DocumentTemplate, EndsEveryLineInALineFeed) {
    for (const DocumentTemplate& each : DocumentTemplate::catalogue()) {
        EXPECT_TRUE(each.text.ends_with(u'\n'));
        EXPECT_EQ(each.text.find(u'\r'), std::u16string_view::npos);
        EXPECT_EQ(each.text.find(u'\t'), std::u16string_view::npos);
    }
}

TEST(DocumentTemplate, ParsesWithoutDiagnostics) {
    for (const DocumentTemplate& each : DocumentTemplate::catalogue()) {
        if (each.id != u"empty") {
            EXPECT_TRUE(parse(each.text).diagnostics.empty());
        }
    }
}

TEST(DocumentTemplate, MissesOnlyTheRootInTheBareDeclaration) {
    const DocumentTree tree = parse(find(u"empty").text);
    EXPECT_FALSE(tree.hasErrors());
    ASSERT_EQ(tree.diagnostics.size(), 1U);
    EXPECT_EQ(tree.diagnostics[0].message, u"El documento no tiene elemento raíz");
}

TEST(DocumentTemplate, IndentsByFourSpaces) {
    for (const DocumentTemplate& each : DocumentTemplate::catalogue()) {
        EXPECT_EQ(IndentStyle::detect(SourceText(each.text), 2000), IndentStyle::spaces(4));
    }
}

TEST(DocumentTemplate, IsDetectedAsUTF8WhenSaved) {
    for (const DocumentTemplate& each : DocumentTemplate::catalogue()) {
        const QByteArray saved = QStringView(each.text).toUtf8();
        const Detection detection = TextEncodingDetector::detect(
            {reinterpret_cast<const std::uint8_t*>(saved.data()), std::size_t(saved.size())});
        EXPECT_EQ(detection.encoding, StringEncoding::utf8());
        EXPECT_TRUE(detection.bom.empty());
    }
}
