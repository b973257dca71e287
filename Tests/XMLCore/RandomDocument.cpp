#include "RandomDocument.h"

#include "RandomMarkup.h"

#include <string_view>
#include <vector>

namespace {

using Pieces = std::vector<std::u16string_view>;

/// Writes one document.
class Generator {
public:
    Generator(Random& random, bool isFaulty) : m_random(random), m_isFaulty(isFaulty) {
        m_lineBreak = oneOf({u"\n", u"\r\n"});
        m_indentUnit = oneOf({u"  ", u"    ", u"\t", u" "});
    }

    std::u16string document() {
        if (chance(3)) {
            m_text += u"<?xml version=\"1.0\"?>";
            m_text += spaceBetween(0);
        }
        leaves(3, {u"<!DOCTYPE a [ <!ENTITY e \"<v>\"> ]>", u"<!-- top\n  comment -->", u"<?go now?>"});
        if (m_isFaulty && chance(3)) {
            m_text += u"outside";
        }
        element(0);
        if (m_isFaulty && chance(3)) {
            element(0);
        }
        m_text += spaceBetween(0);
        leaves(3, {u"<!-- end -->", u"<?done?>"});
        return withLineBreaks();
    }

private:
    bool chance(std::size_t oneIn) { return m_random.below(oneIn) == 0; }

    std::u16string_view oneOf(const Pieces& pieces) { return pieces[m_random.below(pieces.size())]; }

    std::u16string_view name() { return oneOf({u"a", u"b", u"item", u"x:y", u"\u00E9-1", u"\U00010000"}); }

    std::u16string indentation(std::size_t depth) const {
        std::u16string text;
        for (std::size_t i = 0; i < depth; ++i) {
            text += m_indentUnit;
        }
        return text;
    }

    std::u16string spaceBetween(std::size_t depth) {
        switch (m_random.below(4)) {
        case 0:
            return {};
        case 1:
            return u" ";
        default:
            return std::u16string(u"\n").append(indentation(depth));
        }
    }

    void leaves(std::size_t oneIn, const Pieces& pieces) {
        for (const std::u16string_view piece : pieces) {
            if (chance(oneIn)) {
                m_text += piece;
                m_text += spaceBetween(0);
            }
        }
    }

    void attributes() {
        Pieces names = {u"id", u"class", u"x:k", u"\u00F1"};
        for (std::size_t count = m_random.below(4); count > 0; --count) {
            const std::size_t which = m_random.below(names.size());
            m_text += oneOf({u" ", u"  ", u"\n   "});
            m_text += names[which];
            if (!m_isFaulty || !chance(4)) {
                names.erase(names.begin() + static_cast<std::ptrdiff_t>(which));
            }
            if (m_isFaulty && chance(6)) {
                m_text += oneOf({u"", u"=", u"=1", u"=word"});
                continue;
            }
            const bool isDouble = chance(2);
            m_text += isDouble ? u"=\"" : u" = '";
            m_text +=
                oneOf({u"", u"1", u"a &lt; b", u"x > y", u"two\n words", isDouble ? u"it's" : u"say \"x\""});
            m_text += isDouble ? u"\"" : u"'";
        }
        m_text += oneOf({u"", u"", u" "});
    }

    void child(std::size_t depth) {
        switch (m_random.below(m_isFaulty ? 9 : 7)) {
        case 0:
        case 1:
        case 2:
            return element(depth);
        case 3:
            m_text +=
                oneOf({u"text", u"two  words", u"a &amp; b", u"over\n  two lines", u"\U0001F600 \u0301"});
            return;
        case 4:
            m_text += oneOf({u"<!-- note -->", u"<!---->", u"<!-- over\n two -->"});
            return;
        case 5:
            m_text += oneOf({u"<![CDATA[]]>", u"<![CDATA[ <raw> & ]]>", u"<![CDATA[over\n two]]>"});
            return;
        case 6:
            m_text += oneOf({u"<?go?>", u"<?go  to it?>"});
            return;
        default:
            m_text += oneOf({u"</stray>", u" & ", u" < ", u"&#;", u"]]>", u"</stray/>"});
            return;
        }
    }

    void element(std::size_t depth) {
        const std::u16string_view elementName = name();
        m_text.append(u"<").append(elementName);
        attributes();
        if (chance(4)) {
            m_text += u"/>";
            return;
        }
        m_text += u">";
        const std::size_t children = depth < 5 ? m_random.below(5) : 0;
        for (std::size_t i = 0; i < children; ++i) {
            m_text += spaceBetween(depth + 1);
            child(depth + 1);
        }
        m_text += spaceBetween(depth);
        m_text.append(u"</").append(elementName);
        m_text += m_isFaulty && chance(5) ? oneOf({u" word>", u" =>", u"/>"}) : oneOf({u">", u">", u" >"});
    }

    /// The text with the document's own line breaks.
    std::u16string withLineBreaks() const {
        std::u16string text;
        for (const char16_t unit : m_text) {
            unit == u'\n' ? text.append(m_lineBreak) : text.append(1, unit);
        }
        return text;
    }

    Random& m_random;
    bool m_isFaulty;
    std::u16string_view m_lineBreak;
    std::u16string_view m_indentUnit;
    std::u16string m_text;
};

} // namespace

std::u16string RandomDocument::wellFormed(Random& random) { return Generator(random, false).document(); }

std::u16string RandomDocument::faulty(Random& random) { return Generator(random, true).document(); }

std::u16string RandomDocument::broken(Random& random) {
    RandomMarkup markup(random);
    std::u16string text = random.below(4) == 0 ? markup.tagSoup() : faulty(random);
    for (std::size_t changes = random.below(4); changes > 0; --changes) {
        markup.damage(text);
    }
    return text;
}
