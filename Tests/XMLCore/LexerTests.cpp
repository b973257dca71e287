#include "Lexer.h"

#include "TreeDump.h"

#include <gtest/gtest.h>
#include <ostream>
#include <string>

namespace {

using enum Token::Kind;
using namespace std::string_literals;
using Names = std::vector<std::u16string>;

/// A token and the units that it covers.
struct Piece {
    Token::Kind kind;
    std::u16string units;

    bool operator==(const Piece&) const = default;
};

std::ostream& operator<<(std::ostream& stream, const Piece& piece) {
    return stream << static_cast<int>(piece.kind) << " " << asLiteral(piece.units);
}

std::vector<Piece> pieces(const SourceText& text, const std::vector<Token>& tokens) {
    std::vector<Piece> pieces;
    for (const Token& token : tokens) {
        pieces.push_back({token.kind, std::u16string(text.units(token.range))});
    }
    return pieces;
}

/// Checks that the tokens are inside `range`, in order and not empty, with only white space between them.
void checkPlaces(const SourceText& text, SourceRange range, const std::vector<Token>& tokens) {
    Offset upper = range.lower;
    for (const Token& token : tokens) {
        ASSERT_LE(upper, token.range.lower);
        ASSERT_FALSE(token.range.isEmpty());
        ASSERT_TRUE(text.isWhitespace({upper, token.range.lower}));
        upper = token.range.upper;
    }
    ASSERT_LE(upper, range.upper);
    ASSERT_TRUE(text.isWhitespace({upper, range.upper}));
}

struct Row {
    std::u16string input;
    std::vector<Piece> expected;
};

void check(const std::vector<Row>& rows) {
    for (const Row& row : rows) {
        const SourceText text(row.input);
        const std::vector<Token> tokens = Lexer::tokens(text);
        EXPECT_EQ(pieces(text, tokens), row.expected) << asLiteral(row.input);
        checkPlaces(text, text.fullRange(), tokens);
    }
}

/// Checks that each text is a single token of `kind`.
void checkWhole(Token::Kind kind, const std::vector<std::u16string>& texts) {
    for (const std::u16string& text : texts) {
        check({{text, {{kind, text}}}});
    }
}

/// Checks the tokens after `<e ` of the tag that contains the inputs.
void checkInTag(const std::vector<Row>& rows) {
    for (const Row& row : rows) {
        std::vector<Piece> expected{{openTagStart, u"<"}, {tagName, u"e"}};
        expected.insert(expected.end(), row.expected.begin(), row.expected.end());
        check({{u"<e " + row.input, expected}});
    }
}

} // namespace

TEST(Lexer, CutsTextFromMarkup) {
    check({
        {u"", {}},
        {u"   ", {{text, u"   "}}},
        {u"a<", {{text, u"a"}, {invalid, u"<"}}},
        {u"< a>", {{invalid, u"<"}, {text, u" a>"}}},
        {u"a b\r\n>]]>\"'=/\0"s, {{text, u"a b\r\n>]]>\"'=/\0"s}}},
        {u"x<a>y", {{text, u"x"}, {openTagStart, u"<"}, {tagName, u"a"}, {tagEnd, u">"}, {text, u"y"}}},
        {u"<<1<-<.<\t<>",
         {{invalid, u"<"},
          {invalid, u"<"},
          {text, u"1"},
          {invalid, u"<"},
          {text, u"-"},
          {invalid, u"<"},
          {text, u"."},
          {invalid, u"<"},
          {text, u"\t"},
          {invalid, u"<"},
          {text, u">"}}},
    });
}

TEST(Lexer, CutsTags) {
    check({
        {u"<a b='x<c>",
         {{openTagStart, u"<"},
          {tagName, u"a"},
          {attributeName, u"b"},
          {equals, u"="},
          {attributeValue, u"'x"},
          {openTagStart, u"<"},
          {tagName, u"c"},
          {tagEnd, u">"}}},
        {u"<a/b>",
         {{openTagStart, u"<"}, {tagName, u"a"}, {invalid, u"/"}, {attributeName, u"b"}, {tagEnd, u">"}}},
        {u"</>", {{closeTagStart, u"</"}, {tagEnd, u">"}}},
        {u"</a>", {{closeTagStart, u"</"}, {tagName, u"a"}, {tagEnd, u">"}}},
        {u"</ a/>", {{closeTagStart, u"</"}, {attributeName, u"a"}, {selfCloseEnd, u"/>"}}},
        {u"<a/><b\t\n />",
         {{openTagStart, u"<"},
          {tagName, u"a"},
          {selfCloseEnd, u"/>"},
          {openTagStart, u"<"},
          {tagName, u"b"},
          {selfCloseEnd, u"/>"}}},
        {u"<a \r\n\t ", {{openTagStart, u"<"}, {tagName, u"a"}}},
        {u"</", {{closeTagStart, u"</"}}},
        {u"</ ", {{closeTagStart, u"</"}}},
        {u"</<a", {{closeTagStart, u"</"}, {openTagStart, u"<"}, {tagName, u"a"}}},
    });
}

TEST(Lexer, NamesAreRunsOfNameUnits) {
    for (const std::u16string& name :
         Names{u"a", u"Z", u":", u"_", u"é", u"\x80", u"\xFFFF", u"\U0001F600", u"\xDC00", u"a-.0:_Zé",
               u"abcdefgh", u"abcdefghi", u"abcdefghijklmnop.", u"ñandúñandúñandúñandú\U0001F600"}) {
        for (const std::u16string& end :
             Names{u"", u"/", u" ", u"@", u"[", u"`", u"{", u"\x7F", u";", u",", u"<", u"\0"s}) {
            const SourceText tag(u"<" + name + end + u"b");
            const std::vector<Token> tokens = Lexer::tokens(tag);
            ASSERT_EQ(tokens[1].kind, tagName);
            EXPECT_EQ(tag.units(tokens[1].range), end.empty() ? name + u"b" : name) << asLiteral(name + end);
        }
    }
    checkInTag({
        {u"a-.0é", {{attributeName, u"a-.0é"}}},
        {u"1a", {{invalid, u"1"}, {attributeName, u"a"}}},
        {u"-", {{invalid, u"-"}}},
        {u".;&", {{invalid, u"."}, {invalid, u";"}, {invalid, u"&"}}},
        {u"\x7F[@", {{invalid, u"\x7F"}, {invalid, u"["}, {invalid, u"@"}}},
    });
}

TEST(Lexer, ValuesEndAtTheirQuoteOrAtMarkup) {
    checkInTag({
        {u"a='b'", {{attributeName, u"a"}, {equals, u"="}, {attributeValue, u"'b'"}}},
        {u"a = \"b\"", {{attributeName, u"a"}, {equals, u"="}, {attributeValue, u"\"b\""}}},
        {u"''\"\"", {{attributeValue, u"''"}, {attributeValue, u"\"\""}}},
        {u"'a\"b'", {{attributeValue, u"'a\"b'"}}},
        {u"\"a'b\"", {{attributeValue, u"\"a'b\""}}},
        {u"'>/=&\r\n\t'", {{attributeValue, u"'>/=&\r\n\t'"}}},
        {u"'", {{attributeValue, u"'"}}},
        {u"\"abcdefghijklm>", {{attributeValue, u"\"abcdefghijklm>"}}},
        {u"'<!-- -->", {{attributeValue, u"'"}, {comment, u"<!-- -->"}}},
        {u"'abcdefgh<'", {{attributeValue, u"'abcdefgh"}, {invalid, u"<"}, {text, u"'"}}},
    });
}

TEST(Lexer, MarkupInsideTagsEndsThem) {
    checkInTag({
        {u"<", {{invalid, u"<"}}},
        {u"< b", {{invalid, u"<"}, {text, u" b"}}},
        {u"=<b", {{equals, u"="}, {openTagStart, u"<"}, {tagName, u"b"}}},
        {u"</b", {{closeTagStart, u"</"}, {tagName, u"b"}}},
        {u"<?b?>c", {{instruction, u"<?b?>"}, {text, u"c"}}},
        {u"<![CDATA[ ]]>c", {{cdata, u"<![CDATA[ ]]>"}, {text, u"c"}}},
        {u"/ />", {{invalid, u"/"}, {selfCloseEnd, u"/>"}}},
        {u"/", {{invalid, u"/"}}},
    });
}

TEST(Lexer, CommentsEndAtTheirFirstTerminator) {
    checkWhole(comment, {u"<!-- x", u"<!--", u"<!---", u"<!-->", u"<!--->", u"<!---->", u"<!-- -- ->-->",
                         u"<!-- <a> & \0 -->"s, u"<!--abcdefghijklmnop-->", u"<!--abcdefgh--->"});
    check({{u"<!-- a -->b-->", {{comment, u"<!-- a -->"}, {text, u"b-->"}}}});
    check({{u"<!-->-->-->", {{comment, u"<!-->-->"}, {text, u"-->"}}}});
}

TEST(Lexer, SectionsEndAtTheirFirstTerminator) {
    checkWhole(cdata, {u"<![CDATA[", u"<![CDATA[]", u"<![CDATA[]]", u"<![CDATA[]]>", u"<![CDATA[]]]]>",
                       u"<![CDATA[a]>b]]c>", u"<![CDATA[<a>&&</a>]]>"});
    check({{u"<![CDATA[a]]>]]>", {{cdata, u"<![CDATA[a]]>"}, {text, u"]]>"}}}});
    // Without the exact opener, the construct is another declaration.
    checkWhole(doctype, {u"<![cdata[a]]>", u"<![CDATA", u"<![CDATA a]>", u"<!- a -->"});
}

TEST(Lexer, InstructionsEndAtTheirFirstTerminator) {
    checkWhole(instruction, {u"<?x", u"<?", u"<?>", u"<??", u"<?\?>", u"<?xml version='1.0'?>", u"<? > ?>"});
    check({{u"<?a?>?>", {{instruction, u"<?a?>"}, {text, u"?>"}}}});
}

TEST(Lexer, DeclarationsSkipQuotesAndBrackets) {
    checkWhole(doctype, {u"<!DOCTYPE x [<!ENTITY y '>'>]>", u"<!", u"<!>", u"<!x \">\" '>'>", u"<!x [[>]>]>",
                         u"<!x ]>", u"<!x ]][>", u"<!x '\">", u"<!x \"'>", u"<!x [", u"<!x '[' >",
                         u"<!x <!-- -->", u"<!-x>", u"<!abcdefghijklmnop>"});
    check({{u"<!x>y>", {{doctype, u"<!x>"}, {text, u"y>"}}}});
    // The depth of brackets falls below zero, and an opening bracket raises it again.
    check({{u"<!x ][>y", {{doctype, u"<!x ][>"}, {text, u"y"}}}});
    check({{u"<!x ][[>]>y", {{doctype, u"<!x ][[>]>"}, {text, u"y"}}}});
}

TEST(Lexer, ReferencesAreLooselyChecked) {
    checkWhole(entity, {u"&a;", u"&lt;", u"&:;", u"&_-.9;", u"&é;", u"&#;", u"&#x;", u"&#1x2;", u"&#abc;",
                        u"&#XxF9;", u"&abcdefghijklmnopqrstuvwxyz;"});
    check({
        {u"&amp", {{invalid, u"&"}, {text, u"amp"}}},
        {u"&;", {{invalid, u"&"}, {text, u";"}}},
        {u"&", {{invalid, u"&"}}},
        {u"&&a;", {{invalid, u"&"}, {entity, u"&a;"}}},
        {u"&#g;", {{invalid, u"&"}, {text, u"#g;"}}},
        {u"&#", {{invalid, u"&"}, {text, u"#"}}},
        {u"&1;", {{invalid, u"&"}, {text, u"1;"}}},
        {u"&a b;", {{invalid, u"&"}, {text, u"a b;"}}},
        {u"&a<b", {{invalid, u"&"}, {text, u"a"}, {openTagStart, u"<"}, {tagName, u"b"}}},
        {u"&#x1&#2;", {{invalid, u"&"}, {text, u"#x1"}, {entity, u"&#2;"}}},
        {u"x&a;y", {{text, u"x"}, {entity, u"&a;"}, {text, u"y"}}},
    });
}

TEST(Lexer, SearchesStopAtTheEndOfTheRange) {
    const SourceText whole(u"<!--a--><?b?><![CDATA[c]]><!d>&e;<f g='h'/></i>");
    struct RangeRow {
        SourceRange range;
        std::vector<Piece> expected;
    };
    for (const RangeRow& row : std::vector<RangeRow>{
             {{0, 0}, {}},
             {{0, 7}, {{comment, u"<!--a--"}}},
             {{0, 4}, {{comment, u"<!--"}}},
             {{0, 3}, {{doctype, u"<!-"}}},
             {{0, 1}, {{invalid, u"<"}}},
             {{1, 9}, {{text, u"!--a-->"}, {invalid, u"<"}}},
             {{8, 12}, {{instruction, u"<?b?"}}},
             {{13, 25}, {{cdata, u"<![CDATA[c]]"}}},
             {{13, 21}, {{doctype, u"<![CDATA"}}},
             {{26, 29}, {{doctype, u"<!d"}}},
             {{30, 32}, {{invalid, u"&"}, {text, u"e"}}},
             {{33, 39},
              {{openTagStart, u"<"},
               {tagName, u"f"},
               {attributeName, u"g"},
               {equals, u"="},
               {attributeValue, u"'"}}},
             {{35, 43}, {{text, u" g='h'/>"}}},
             {{33, 42},
              {{openTagStart, u"<"},
               {tagName, u"f"},
               {attributeName, u"g"},
               {equals, u"="},
               {attributeValue, u"'h'"},
               {invalid, u"/"}}},
             {{43, 44}, {{invalid, u"<"}}},
             {{43, 46}, {{closeTagStart, u"</"}, {tagName, u"i"}}},
         }) {
        const std::vector<Token> tokens = Lexer::tokens(whole, row.range);
        EXPECT_EQ(pieces(whole, tokens), row.expected) << row.range.description();
        checkPlaces(whole, row.range, tokens);
    }
}

TEST(Lexer, StartsInTheModeGiven) {
    const std::u16string_view units = u"a b";
    UnitIndex index;
    const auto first = [&](Lexer::Mode mode) { return *Lexer(units, index, 0, 3, mode).next(); };
    EXPECT_EQ(first(Lexer::Mode::content), (Token{text, {0, 3}}));
    EXPECT_EQ(first(Lexer::Mode::tagName), (Token{tagName, {0, 1}}));
    EXPECT_EQ(first(Lexer::Mode::tag), (Token{attributeName, {0, 1}}));
    EXPECT_EQ(Lexer(units, index, 1, 3, Lexer::Mode::tagName).next(), (Token{attributeName, {2, 3}}));
    EXPECT_EQ(Lexer(units, index, 3, 3, Lexer::Mode::tagName).next(), std::nullopt);
}

TEST(Lexer, IgnoresWhatAnotherLeftInTheIndex) {
    UnitIndex index;
    const std::u16string longText(1000, u'a');
    Lexer before(longText, index);
    ASSERT_EQ(before.next(), (Token{text, {0, 1000}}));

    Lexer lexer(u"<b c='d'/>", index);
    std::vector<Token> tokens;
    while (const auto token = lexer.next()) {
        tokens.push_back(*token);
    }
    EXPECT_EQ(tokens, Lexer::tokens(SourceText(u"<b c='d'/>")));
}

TEST(Lexer, StaysAtTheEnd) {
    for (const char16_t* const units : {u"", u"a", u"<a", u"<a ", u"<!--", u"</a>"}) {
        UnitIndex index;
        Lexer lexer(units, index);
        while (lexer.next()) {
        }
        EXPECT_EQ(lexer.next(), std::nullopt);
        EXPECT_EQ(lexer.position, lexer.end);
    }
}

TEST(Lexer, ShortcutsTakeTheirTokensOrNothing) {
    UnitIndex index;
    Lexer equalsSign(u"= ", index, 0, 2, Lexer::Mode::tag);
    EXPECT_TRUE(equalsSign.takeEquals());
    EXPECT_EQ(equalsSign.position, 1);
    EXPECT_FALSE(equalsSign.takeEquals());
    EXPECT_EQ(equalsSign.position, 1);

    const std::u16string_view units = u"ab</ab>ab </ab</abc>";
    struct EndTag {
        std::ptrdiff_t at;
        SourceRange expected;
        bool isTaken;
    };
    for (const EndTag& row : {EndTag{4, {0, 2}, true}, EndTag{4, {0, 1}, false}, EndTag{4, {0, 0}, false},
                              EndTag{12, {0, 2}, false}, EndTag{16, {0, 2}, false}}) {
        Lexer lexer(units, index, row.at, static_cast<std::ptrdiff_t>(units.size()), Lexer::Mode::tagName);
        EXPECT_EQ(lexer.takeEndTagRest(row.expected), row.isTaken) << row.at;
        EXPECT_EQ(lexer.position, row.isTaken ? 7 : row.at);
        EXPECT_EQ(lexer.mode, row.isTaken ? Lexer::Mode::content : Lexer::Mode::tagName);
    }
    Lexer beforeEnd(units, index, 4, 6, Lexer::Mode::tagName);
    EXPECT_FALSE(beforeEnd.takeEndTagRest({0, 2}));
}

TEST(Lexer, TellsValidNames) {
    for (const std::u16string& name : Names{u"a", u"Z9", u":", u"_", u"a-.:_9", u"ñ", u"\x80", u"\xD83D",
                                            u"\U0001F600", u"xml", u"abcdefghijklmnopqrstuvwxyz"}) {
        EXPECT_TRUE(Lexer::isValidName(name)) << asLiteral(name);
    }
    for (const std::u16string& name :
         Names{u"", u"9", u"-a", u".a", u" a", u"a ", u"a\n", u"a/", u"a b", u"a;", u"@", u"a[", u"a`", u"a{",
               u"\x7F", u"a\x7F", u"a\0"s, u"abcdefghijklmnop>"}) {
        EXPECT_FALSE(Lexer::isValidName(name)) << asLiteral(name);
    }
}
