#include "TreeRowMatch.h"

#include "Repeated.h"
#include "TreeParser.h"

#include <gtest/gtest.h>

namespace {

std::string excerpt(const QString& text, const char16_t* filter) {
    return TreeRowMatch::excerpt(text, QString::fromUtf16(filter), 40).toStdString();
}

std::string attribute(std::u16string_view text, const char16_t* filter) {
    const DocumentTree tree = TreeParser::parse(SourceText(text));
    return TreeRowMatch::attribute(tree, *tree.rootElement(), QString::fromUtf16(filter)).toStdString();
}

} // namespace

TEST(TreeRowMatch, ShowsTheStartWhereTheMatchIsSeenThere) {
    EXPECT_EQ(excerpt(QStringLiteral("uno dos tres"), u"DOS"), "uno dos tres");
    EXPECT_EQ(excerpt(QStringLiteral("uno dos tres"), u"otro"), "uno dos tres");
    EXPECT_EQ(excerpt(QString(50, u'x'), u"otro"), std::string(39, 'x') + "…");
    EXPECT_EQ(excerpt({}, u"x"), "");
}

TEST(TreeRowMatch, ShowsWhatIsAroundAMatchFurtherBehind) {
    const QString text = QString(100, u'x') + QStringLiteral(" aquí está ") + QString(100, u'y');
    EXPECT_EQ(excerpt(text, u"AQUI"), "…xxxxxxxxxxx aquí está yyyyyyyyyyyyyyyy…");
    const QString pairs = QStringLiteral("😀").repeated(30) + QStringLiteral("xaquí");
    EXPECT_EQ(excerpt(pairs, u"aqui"), "…😀😀😀😀😀xaquí") << "no half of a character";
}

TEST(TreeRowMatch, NamesTheAttributeThatMatches) {
    EXPECT_EQ(attribute(u"<a id='7' autor='Ana María'/>", u"maria"), "autor=\"Ana María\"");
    EXPECT_EQ(attribute(u"<a id='7' autor='Ana'/>", u"AUT"), "autor=\"Ana\"");
    EXPECT_EQ(attribute(u"<autora id='7' autor='Ana'/>", u"AUT"), "") << "the name itself matches";
    EXPECT_EQ(attribute(u"<a id='7'/>", u"x"), "");
    EXPECT_EQ(attribute(u"<a id='7'/>", u""), "");
    EXPECT_EQ(attribute(u"<a b='%1 x'/>", u"x"), "b=\"%1 x\"");
    EXPECT_EQ(attribute(u"<a b='" + repeated(u"x", 90) + u"y'/>", u"y"), "b=\"…xxxxxxxxxxxxy\"");
}
