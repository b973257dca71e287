#include "AutomaticInsertions.h"

#include "EditorDesk.h"
#include "Random.h"
#include "Repeated.h"

#include <gtest/gtest.h>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace {

struct Row {
    std::u16string_view before;
    std::string_view keys;
    std::u16string_view after;
};

/// Types the keys; undoing as often as it takes brings the text back.
void check(const std::vector<Row>& rows) {
    for (const Row& row : rows) {
        EditorDesk desk(row.before);
        desk.type(row.keys);
        EXPECT_EQ(desk.state(), row.after) << ::testing::PrintToString(row.before) << " " << row.keys;
        while (desk.undoManager.canUndo()) {
            desk.view().undo();
        }
        EXPECT_EQ(desk.text(), MarkedText(row.before).text.units()) << row.keys;
    }
}

/// The same in an empty document; what is typed is what comes out, the caret at its end.
void checkTyped(const std::vector<std::string_view>& documents) {
    for (const std::string_view document : documents) {
        const std::u16string expected(document.begin(), document.end());
        check({{u"|", document, expected + u"|"}});
    }
}

/// Well-formed markup as a person types it: Return only between words and tags. Openers inside other
/// constructs and brackets in words do not meet in one document: without a tree both together mislead the
/// completion of end tags.
class TypedMarkup {
public:
    explicit TypedMarkup(Random& random) : m_random(random) {}

    std::string document() {
        m_hidesOpeners = oneIn(2);
        std::string text = oneIn(3) ? "<?xml version=\"1.0\"?>\n" : "";
        text += oneIn(4) ? "<!DOCTYPE a SYSTEM 'a.dtd'>\n" : "";
        text += misc();
        text += element(4);
        return text + misc();
    }

    /// The same without what stands before a root, and without brackets in words: where an end tag is erased
    /// and typed again they mislead its completion.
    std::string contentOnly() {
        m_hidesOpeners = true;
        return misc() + element(3) + misc();
    }

private:
    bool oneIn(std::size_t chances) { return m_random.below(chances) == 0; }

    template <std::size_t count>
    std::string oneOf(const std::string_view (&choices)[count]) {
        return std::string(choices[m_random.below(count)]);
    }

    std::string name() { return oneOf({"a", "b", "ab", "x", "libro", "x:y", "_n", "a-b.1"}); }
    std::string misc() { return oneIn(3) ? comment() : ""; }
    std::string blank() { return oneIn(4) ? " " : ""; }

    std::string comment() {
        return oneOf({"<!-- nota -->", "<!--<'-->", "<!-- <a b=\"c\"> </a> <br/> -->",
                      "<!-- it's \"x\" < y -->", "<!---->", "<!-- uno\ndos -->",
                      m_hidesOpeners ? "<!-- <? -->" : "<!-- x -->"});
    }
    std::string leaf() {
        return oneOf({"<![CDATA[<b c='d'>]]>", "<![CDATA[a]] > b </b>]]>", "<![CDATA[\"'<]]>",
                      "<?php a='b' ?>", "<?<'?>", "&amp;", "&#x41;",
                      m_hidesOpeners ? "<![CDATA[<!--]]>" : "<![CDATA[]]>"});
    }
    std::string words() {
        return oneOf({"hola", "it's \"x\"", m_hidesOpeners ? "a" : "a > b", "x = y", "1/2", "a=b", " ",
                      "uno dos", "b", "a"});
    }

    std::string attribute(std::size_t index) {
        const bool isSingle = oneIn(2);
        const std::string value = isSingle ? oneOf({"", "y", "say \"hi\"", "a>b", "a=b", " x ", "/", "p q"})
                                           : oneOf({"", "y", "it's", "a>b", "a=b", " x ", "/", "''"});
        const std::string quote = isSingle ? "'" : "\"";
        return name() + std::to_string(index) + blank() + "=" + blank() + quote + value + quote;
    }

    std::string element(int depth) {
        const std::string tag = name();
        std::string text = "<" + tag;
        for (std::size_t index = 0; oneIn(2) && index < 4; ++index) {
            text += ' ' + attribute(index);
        }
        text += blank();
        if (oneIn(5)) {
            return text + "/>";
        }
        text += ">";
        for (std::size_t left = m_random.below(5); left > 0; --left) {
            text += oneIn(4) ? "\n" : "";
            switch (m_random.below(4)) {
            case 0:
                text += words();
                break;
            case 1:
                text += leaf();
                break;
            case 2:
                text += comment();
                break;
            default:
                text += depth > 0 ? element(depth - 1) : "<br/>";
            }
        }
        text += oneIn(4) ? "\n" : "";
        return text + "</" + tag + (oneIn(8) ? " >" : ">");
    }

    Random& m_random;
    bool m_hidesOpeners = false;
};

/// `text` without the indentation that Return adds by itself.
std::string withoutIndentation(std::string_view text) {
    std::string result;
    bool isLineStart = false;
    for (const char unit : text) {
        isLineStart = unit == '\n' || (isLineStart && unit == ' ');
        if (unit != ' ' || !isLineStart) {
            result += unit;
        }
    }
    return result;
}

enum class Pauses : bool { none, forParses };

/// Types a text into a desk with slips, all of which are corrected, and knows what a plain editor would hold.
/// No slip is a `/` after `<`: it completes an end tag, of which Backspace erases what is seen.
class ClumsyTypist {
public:
    ClumsyTypist(EditorDesk& desk, Random& random) : m_desk(desk), m_random(random) { note(); }

    void type(std::string_view text) {
        while (m_typed.size() < text.size()) {
            slip();
            press(text[m_typed.size()]);
            if (m_random.below(25) == 0) {
                undo();
            }
            while (!text.starts_with(m_typed)) {
                press('\b');
            }
        }
    }

    std::string keys() const { return m_keys; } ///< All that were pressed.

private:
    void note() { m_states[m_desk.state()] = m_typed; }

    void press(char key) {
        m_keys += key;
        m_desk.type({&key, 1});
        if (key == '\b') {
            m_typed.pop_back();
        } else {
            m_typed += key;
        }
        note();
    }

    void slip() {
        switch (m_random.below(24)) {
        case 0:
            typeWrongly();
            break;
        case 1:
            eraseAndTypeAgain();
            break;
        case 2:
            moveAndBack();
            break;
        default:
            break;
        }
    }

    void typeWrongly() {
        constexpr std::string_view wrong = "xblo <>/=\"'-";
        const std::size_t count = 1 + m_random.below(2);
        for (std::size_t i = 0; i < count; ++i) {
            const char key = wrong[m_random.below(wrong.size())];
            press(key == '/' && m_typed.ends_with('<') ? 'x' : key);
        }
        for (std::size_t i = 0; i < count; ++i) {
            press('\b');
        }
    }

    void eraseAndTypeAgain() {
        std::string erased;
        for (std::size_t left = 1 + m_random.below(5); left > 0; --left) {
            // What a line starts with is not all typed.
            const std::size_t lineStart = m_typed.rfind('\n') + 1;
            if (m_typed.find_first_not_of(' ', lineStart) >= m_typed.size() - 1 || isCompleted()) {
                break;
            }
            erased.insert(0, 1, m_typed.back());
            press('\b');
        }
        for (const char key : erased) {
            press(key);
        }
    }

    /// After `</` brought the rest, a Backspace erases what is seen.
    bool isCompleted() {
        const Offset caret = m_desk.view().caret();
        return m_typed.ends_with("</") && caret > 0 && m_desk.buffer.text().unit(caret - 1) == u'>';
    }

    void moveAndBack() {
        if (m_desk.view().caret() > 0) {
            m_keys += "{left}{right}";
            QTest::keyClick(&m_desk.view(), Qt::Key_Left);
            QTest::keyClick(&m_desk.view(), Qt::Key_Right);
        }
    }

    void undo() {
        if (!m_desk.undoManager.canUndo() || isCompleted()) {
            return;
        }
        m_keys += "{undo}";
        m_desk.view().undo();
        const auto known = m_states.find(m_desk.state());
        if (known == m_states.end()) {
            m_desk.view().redo();
            m_keys += "{redo}";
        } else {
            m_typed = known->second;
        }
    }

    EditorDesk& m_desk;
    Random& m_random;
    std::string m_typed;                            ///< In a plain editor.
    std::map<std::u16string, std::string> m_states; ///< The same for each state of the desk.
    std::string m_keys;
};

void typeRandomDocuments(int documents, Pauses pauses) {
    Random random;
    EditorDesk desk(u"|");
    for (int round = 0; round < documents; ++round) {
        const std::string document = TypedMarkup(random).document();
        desk.view().selectAll();
        desk.view().eraseSelection();
        for (const char key : document) {
            desk.type({&key, 1});
            if (pauses == Pauses::forParses && random.below(8) == 0) {
                desk.waitForParse();
            }
        }
        const std::string typed = QString::fromStdU16String(desk.text()).toStdString();
        ASSERT_EQ(withoutIndentation(typed), withoutIndentation(document)) << document;
        ASSERT_EQ(desk.view().caret(), desk.buffer.text().size()) << document;
    }
}

} // namespace

TEST(AutomaticInsertions, AreTypedOver) {
    checkTyped({
        "<x href=\"y\">hola</x>",
        "<x>hola</x>",
        "<x></x>",
        "<x a='1' b=\"2\"/>",
        "<x a=''></x>",
        "<x a=\"\" b=''></x>",
        "<x a=\"it's\" b='\"'>a</x>",
        "<x a = 'b'>c</x>",
        "<x a= 'b' c= \"d\">e</x>",
        "<x a=\" b\" c=\" \">e</x>",
        "<a><b>c</b><b><a/></b>d</a>",
        "<a><a><a></a></a></a>",
        "<a>b</a >",
        "<a><!-- </a> --></a>",
        "<a><![CDATA[</a>]]></a>",
        "<a><![CDATA[<!--]]></a>",
        "<a><![CDATA[<!--]]><b c=\"d\">e</b></a>",
        "<a><?x </a> ?></a>",
        "<a>x > y = \"z\" / 'w'</a>",
        "<a/><!-- b -->",
    });
}

TEST(AutomaticInsertions, MoveTheCaretOnWithoutAChange) {
    EditorDesk desk(u"|");
    desk.type("<x a=");
    EXPECT_EQ(desk.state(), u"<x a=\"|\"");
    const auto generation = desk.buffer.generation();
    desk.type("\"");
    EXPECT_EQ(desk.state(), u"<x a=\"|\"");
    EXPECT_EQ(desk.buffer.generation(), generation);
    desk.type("y\">hola</");
    EXPECT_EQ(desk.state(), u"<x a=\"y\">hola</|x>");
    desk.type("x");
    EXPECT_EQ(desk.state(), u"<x a=\"y\">hola</x|>");
    desk.type(">");
    EXPECT_EQ(desk.state(), u"<x a=\"y\">hola</x>|");
}

TEST(AutomaticInsertions, LeaveNoOddStepsOfUndo) {
    EditorDesk desk(u"<r>|</r>");
    desk.type("<x>hola</x>");
    EXPECT_EQ(desk.state(), u"<r><x>hola</x>|</r>");
    const QString typing = QStringLiteral("Escribir");
    for (const std::u16string_view before : {u"<r><x></x></r>", u"<r><x</r>", u"<r></r>"}) {
        EXPECT_EQ(desk.undoManager.undoActionName(), typing);
        desk.view().undo();
        EXPECT_EQ(desk.text(), before);
    }
    EXPECT_FALSE(desk.undoManager.canUndo());
    while (desk.undoManager.canRedo()) {
        desk.view().redo();
    }
    EXPECT_EQ(desk.text(), u"<r><x>hola</x></r>");
}

TEST(AutomaticInsertions, GoOntoTheLineThatReturnGaveThem) {
    check({
        {u"|", "<x>\n</x>", u"<x>\n</x>|"},
        {u"|", "<x>\nhola</x>", u"<x>\n    hola</x>|"},
        {u"|", "<x>\n<y/>\n</x>", u"<x>\n    <y/>\n</x>|"},
        {u"|", "<x>\n<y>\n<z/>\n</y>\n</x>", u"<x>\n    <y>\n        <z/>\n    </y>\n</x>|"},
        {u"|", "<x>\n<y>a</y>\n<y>b</y></x>", u"<x>\n    <y>a</y>\n    <y>b</y></x>|"},
        {u"<r>\r\n\t|\r\n</r>", "<x>\n</x>", u"<r>\r\n\t<x>\r\n\t</x>|\r\n</r>"},
    });
}

TEST(AutomaticInsertions, PutInWhatTurnsOutOtherwise) {
    check({
        {u"|", "<x>hola</y", u"<x>hola</y|</x>"},
        {u"|", "<x>hola</y></x>", u"<x>hola</y></x>|"},
        {u"|", "<ab>hola</ac", u"<ab>hola</ac|</ab>"},
        {u"|", "<ab>\n</ac", u"<ab>\n</ac|\n</ab>"},
        {u"|", "<x></>", u"<x></>|</x>"},
        {u"<a><b>x<|", "/a", u"<a><b>x</b>a|"},
        {u"<a><ab>x<|", "/a b", u"<a><ab>x</ab>a b|"},
        {u"<a><b>x<|", "/b y", u"<a><b>x</b>b y|"},
        {u"<a><b>x<|", "/b\n", u"<a><b>x</b>b\n|"},
    });
}

TEST(AutomaticInsertions, AreErasedAsTheyWereTyped) {
    check({
        {u"|", "<x>hola</x\b>", u"<x>hola</>|</x>"},
        {u"|", "<x>hola</x\bx>", u"<x>hola</x>|"},
        {u"|", "<x>hola</\b", u"<x>hola<|</x>"},
        {u"|", "<x>hola</\bb", u"<x>hola<b|</x>"},
        {u"|", "<x>hola</\b/x>", u"<x>hola</x>|"},
        {u"|", "<x>hola</x \b>", u"<x>hola</x>|"},
        {u"<a><b>x<|", "/b\bb>", u"<a><b>x</b>|"},
        {u"<a><b>x<|", "/b\bc", u"<a><b>x</b>c|"},
    });
}

TEST(AutomaticInsertions, TakeInTheRestOfACompletedEndTag) {
    check({
        {u"<a><b>text<|", "/b>", u"<a><b>text</b>|"},
        {u"<a><b>text<|", "/b></a>", u"<a><b>text</b></a>|"},
        {u"<a><b>text<|", "/b >", u"<a><b>text</b >|"},
        {u"<a><b>text<|", "/x", u"<a><b>text</b>x|"},
        {u"<a><b>text<|", "/", u"<a><b>text</b>|"},
    });
}

TEST(AutomaticInsertions, AreForgottenOnceTheCaretHasLeft) {
    EditorDesk desk(u"<r>\n|\n</r>");
    desk.type("<x>hola");
    QTest::keyClick(&desk.view(), Qt::Key_Home);
    QTest::keyClick(&desk.view(), Qt::Key_End);
    desk.view().select(SourceRange::empty(11));
    desk.type("</x>");
    EXPECT_EQ(desk.state(), u"<r>\n<x>hola</x>|</x>\n</r>");

    EditorDesk quotes(u"<x a|/>");
    quotes.type("=");
    QTest::keyClick(&quotes.view(), Qt::Key_Home);
    QTest::keyClick(&quotes.view(), Qt::Key_End);
    quotes.view().select(SourceRange::empty(6));
    quotes.type("\"");
    EXPECT_EQ(quotes.state(), u"<x a=\"\"|/>");
}

TEST(AutomaticInsertions, AreForgottenOnceTheyChange) {
    EditorDesk desk(u"|");
    desk.type("<x>hola");
    const std::vector<TextEdit> edits{TextEdit::insert(u"y", 10)};
    desk.buffer.apply(edits);
    EXPECT_EQ(desk.state(), u"<x>hola|</xy>");
    desk.type("</");
    EXPECT_EQ(desk.state(), u"<x>hola</x>|</xy>");
}

TEST(AutomaticInsertions, StayWhileTheTextBeforeThemChanges) {
    EditorDesk desk(u"|");
    desk.type("<x>hola");
    const std::vector<TextEdit> edits{TextEdit::insert(u"<!-- nueva -->", 0), TextEdit::insert(u"<b/>", 5)};
    desk.buffer.apply(edits);
    desk.type("</x>");
    EXPECT_EQ(desk.state(), u"<!-- nueva --><x>ho<b/>la</x>|");
}

TEST(AutomaticInsertions, CloseTheInnermostElementFirst) {
    EditorDesk desk(u"|");
    desk.type("<x>");
    desk.view().insertText(u"<y>pasted"); // Open, and without an end tag of its own.
    desk.type("</y></x>");
    EXPECT_EQ(desk.state(), u"<x><y>pasted</y></x>|");
}

TEST(AutomaticInsertions, TellBalancedText) {
    for (const std::u16string_view text : {u"", u"a", u"<b/>", u"<b></b>", u"<b><c/></b>d", u"<!-- <b> -->",
                                           u"</b>", u"<![CDATA[<!--]]>", u"a > b", u"<"}) {
        EXPECT_TRUE(AutomaticInsertions::isBalanced(text)) << ::testing::PrintToString(std::u16string(text));
    }
    for (const std::u16string_view text : {u"<b>", u"<b", u"<b ", u"<b c='", u"<b><b></b>", u"<!-- ",
                                           u"<![CDATA[", u"<?x ", u"<!x", u"</b", u"</"}) {
        EXPECT_FALSE(AutomaticInsertions::isBalanced(text)) << ::testing::PrintToString(std::u16string(text));
    }
}

TEST(AutomaticInsertions, TakeSlipsThatAreCorrected) {
    check({
        // In an end tag.
        {u"<r>\n  |\n</r>", "<libro>x</lirb\b\bbro>", u"<r>\n  <libro>x</libro>|\n</r>"},
        {u"|", "<libro>x</ \blibro>", u"<libro>x</libro>|"},
        {u"|", "<libro>x</li>\bbro>", u"<libro>x</libro>|"},
        {u"|", "<libro>x</libro x\b>", u"<libro>x</libro >|"},
        {u"|", "<libro>\nx</x\blibro>", u"<libro>\n    x</libro>|"},
        {u"<a><b>x<|", "/bx\b>", u"<a><b>x</b>|"},
        {u"<a><b>x<|", "/x\bb>", u"<a><b>x</b>|"},
        {u"<a><b>x<|", "/\b/b>", u"<a><b>x</b>|"},
        // The end of a start tag.
        {u"|", "<libro>\b id=\"1\">x</libro>", u"<libro id=\"1\">x</libro>|"},
        {u"|", "<libro>\b\b\b\b\b\b\b", u"|"},
        {u"|", "<libro>\b\bs>x</libs>", u"<librs>x</libs>|</librs>"},
        // A value.
        {u"|", "<a b=x\b\"y\"/>", u"<a b=\"y\"/>|"},
        {u"|", "<a b= \b\"y\"/>", u"<a b=\"y\"/>|"},
        {u"|", "<libro id=\b\b\b\b", u"<libro|"},
        {u"|", "<libro id=\"\b\b\b\b", u"<libro |"},
        {u"|", "<a b=\"y\"\b\bz\"/>", u"<a b=\"z\"/>|"},
    });
}

TEST(AutomaticInsertions, LeaveTheTagsOfWhatIsErased) {
    check({
        {u"|", "<libro>x</libro>\b\b\b\b\b\b\b\by</libro>", u"<libro>xy</libro>|"},
        {u"<r>\n  <p>x</p>\n</r>|", "\b\b\b\b", u"<r>\n  <p>x</p>\n|"},
        {u"<r>x|", "</\b\b\b\b", u"<r>x|"},
    });
}

TEST(AutomaticInsertions, TakeWhatLooksLikeMarkupInAValue) {
    checkTyped({
        "<xsl:if test=\"a < 1\">x</xsl:if>",
        "<a b=\"<c d='e'>f</c>\" g='<'>h</a>",
    });
}

TEST(AutomaticInsertions, EndTheNameThatWasTyped) {
    check({
        {u"<p>|hola mundo</p>", "<b>", u"<p><b>|</b>hola mundo</p>"},
        {u"<p>|hola mundo</p>", "<b>x</b>", u"<p><b>x</b>|hola mundo</p>"},
        {u"<p>|hola mundo</p>", "<i id=\"1\">x</i>", u"<p><i id=\"1\">x</i>|hola mundo</p>"},
        {u"<p>|hola mundo</p>", "<>", u"<p><>|hola mundo</p>"},
    });
}

TEST(AutomaticInsertions, StayWhenTheCaretGoesOnePlaceAndBack) {
    for (const std::string_view typed : {"<libro>x<", "<libro>x</", "<libro>x</l", "<libro>x</libro",
                                         "<libro>", "<libro a=", "<libro a=\"", "<libro a=\"b"}) {
        const std::string document = typed.contains('=') ? "<libro a=\"b\">x</libro>" : "<libro>x</libro>";
        EditorDesk desk(u"|");
        desk.type(typed);
        QTest::keyClick(&desk.view(), Qt::Key_Left);
        QTest::keyClick(&desk.view(), Qt::Key_Right);
        desk.type(std::string_view(document).substr(typed.size()));
        EXPECT_EQ(QString::fromStdU16String(desk.text()).toStdString(), document) << typed;
    }
}

TEST(AutomaticInsertions, LeaveLettersTypedIntoAPassedEndTagWhereTheyAre) {
    EditorDesk desk(u"|");
    desk.type("<libro>x</li");
    QTest::keyClick(&desk.view(), Qt::Key_Left);
    desk.type("z");
    EXPECT_EQ(desk.state(), u"<libro>x</lz|i</libro>");
}

TEST(AutomaticInsertions, ComeBackWithTheText) {
    EditorDesk desk(u"|");
    desk.type("<libro>x</libro>");
    desk.view().undo();
    EXPECT_EQ(desk.state(), u"<libro>|</libro>");
    desk.type("x</libro>");
    EXPECT_EQ(desk.state(), u"<libro>x</libro>|");
    desk.view().undo();
    desk.view().undo();
    EXPECT_EQ(desk.state(), u"<libro|");
    desk.type(">x</libro>");
    EXPECT_EQ(desk.state(), u"<libro>x</libro>|");
}

TEST(AutomaticInsertions, ComeBackToTheirPlaceWithTheStartTag) {
    EditorDesk desk(u"|");
    desk.type("<libro>x");
    QTest::keyClick(&desk.view(), Qt::Key_Left);
    desk.type("\b");
    EXPECT_EQ(desk.state(), u"<libro|x");
    desk.type(" id=\"1\">");
    EXPECT_EQ(desk.state(), u"<libro id=\"1\">|x</libro>");
    QTest::keyClick(&desk.view(), Qt::Key_Right);
    desk.type("y</libro>");
    EXPECT_EQ(desk.state(), u"<libro id=\"1\">xy</libro>|");
}

TEST(AutomaticInsertions, MakeOfMarkupTypedWithSlipsWhatWasTyped) {
    Random random;
    const std::u16string_view places[] = {u"|", u"<r>|</r>", u"<p>|hola mundo</p>", u"<p>x |b='1' c</p>",
                                          u"<r>\n|\n</r>"};
    for (int round = 0; round < 150; ++round) {
        const std::u16string_view place = places[random.below(std::size(places))];
        EditorDesk desk(place);
        const std::string document = TypedMarkup(random).contentOnly();
        ClumsyTypist typist(desk, random);
        typist.type(document);
        std::string expected = QString::fromStdU16String(std::u16string(place)).toStdString();
        expected.replace(expected.find('|'), 1, document);
        const std::string typed = QString::fromStdU16String(desk.text()).toStdString();
        ASSERT_EQ(withoutIndentation(typed), withoutIndentation(expected)) << typist.keys();
    }
}

TEST(AutomaticInsertions, MakeOfTypedMarkupWhatWasTyped) { typeRandomDocuments(150, Pauses::none); }

TEST(AutomaticInsertions, MakeOfTypedMarkupWhatWasTypedWithPauses) {
    typeRandomDocuments(25, Pauses::forParses);
}
