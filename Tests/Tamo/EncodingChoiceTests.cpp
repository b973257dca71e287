#include "EncodingChoice.h"

#include <gtest/gtest.h>

#include <array>
#include <span>
#include <string>

namespace {

EncodingChoice choice(const char* name) { return EncodingChoice::usual(*StringEncoding::named(name)); }

std::u16string declaring(const EncodingChoice& choice, std::u16string_view text) {
    const auto edit = choice.declaration(text, u"\n");
    return edit ? TextEdit::apply(std::span(&*edit, 1), text) : std::u16string(text);
}

std::string narrow(std::u16string_view text) { return {text.begin(), text.end()}; }

} // namespace

TEST(EncodingChoice, PutsAMarkWhereFilesNeedOne) {
    EXPECT_TRUE(choice("UTF-16LE").hasMark);
    EXPECT_TRUE(choice("UTF-16BE").hasMark);
    EXPECT_FALSE(choice("UTF-8").hasMark);
    EXPECT_EQ(stringOf(choice("UTF-16BE").bom()), "\xFE\xFF");
    EXPECT_TRUE(EncodingChoice::canHaveMark(StringEncoding::utf8()));
    EXPECT_FALSE(EncodingChoice::canHaveMark(StringEncoding::latin1()));
}

TEST(EncodingChoice, KnowsWhatADeclaredNameMeans) {
    EXPECT_EQ(EncodingChoice::declared(u"utf-8"), choice("UTF-8"));
    EXPECT_EQ(EncodingChoice::declared(u"UTF-16"), choice("UTF-16LE"));
    EXPECT_EQ(EncodingChoice::declared(u"ISO-8859-1"), choice("ISO-8859-1"));
    EXPECT_EQ(EncodingChoice::declared(u"foo-1"), std::nullopt);
    EXPECT_EQ(EncodingChoice::declared(u"ñandú"), std::nullopt);
    EXPECT_EQ(EncodingChoice::declared(u""), std::nullopt);
}

TEST(EncodingChoice, LetsTheDeclarationFollow) {
    struct Row {
        const char* encoding;
        std::u16string_view text;
        std::u16string_view declaring;
    };
    for (const Row& row : {
             Row{"ISO-8859-1", u"<?xml version=\"1.0\" encoding=\"UTF-8\"?>",
                 u"<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>"},
             Row{"windows-1252", u"<a/>", u"<?xml version=\"1.0\" encoding=\"windows-1252\"?>\n<a/>"},
             Row{"Shift_JIS", u"<?xml version='1.0'?><a/>",
                 u"<?xml version='1.0' encoding='Shift_JIS'?><a/>"},
             Row{"UTF-16LE", u"<?xml version='1.0' encoding='utf-8'?>",
                 u"<?xml version='1.0' encoding='UTF-16'?>"},
             // What is right or goes without saying stays.
             Row{"UTF-8", u"<?xml version='1.0' encoding='utf8'?>", u"<?xml version='1.0' encoding='utf8'?>"},
             Row{"UTF-8", u"<?xml version='1.0'?><a/>", u"<?xml version='1.0'?><a/>"},
             Row{"UTF-16BE", u"<a/>", u"<a/>"},
             Row{"UTF-16BE", u"<?xml version='1.0' encoding='UTF-16'?>",
                 u"<?xml version='1.0' encoding='UTF-16'?>"},
             // The detector would take this for a declaration.
             Row{"UTF-8", u"<?xml version='1.0'?><a encoding='latin1'/>",
                 u"<?xml version='1.0' encoding='UTF-8'?><a encoding='latin1'/>"},
         }) {
        EXPECT_EQ(narrow(declaring(choice(row.encoding), row.text)), narrow(row.declaring));
        EXPECT_EQ(EncodingConflict::of(row.declaring, choice(row.encoding)), std::nullopt)
            << narrow(row.declaring);
    }
}

TEST(EncodingConflict, SeesWhatWouldBeReadOtherwise) {
    struct Row {
        EncodingChoice choice;
        std::u16string_view text;
        bool conflicts;
    };
    const EncodingChoice unmarked{StringEncoding::utf16LittleEndian(), false};
    const EncodingChoice marked{StringEncoding::utf8(), true};
    for (const Row& row : {
             Row{choice("UTF-8"), u"<?xml version='1.0' encoding='ISO-8859-1'?>", true},
             Row{choice("UTF-8"), u"<?xml version='1.0' encoding='foo-1'?>", true},
             Row{choice("UTF-8"), u"<?xml version='1.0' encoding='UTF-16'?>", true},
             Row{marked, u"<?xml version='1.0' encoding='ISO-8859-1'?>", true},
             Row{choice("windows-1252"), u"<a/>", true},
             Row{unmarked, u"<?xml version='1.0' encoding='UTF-16'?>", true},
             Row{choice("UTF-8"), u"", false},
             Row{choice("UTF-8"), u"<a/>", false},
             Row{marked, u"<?xml version='1.0' encoding='UTF-8'?>", false},
             Row{choice("ISO-8859-1"), u"<a/>", false},
             Row{choice("ISO-8859-1"), u"<?xml version='1.0' encoding='iso-8859-1'?>", false},
             Row{choice("Shift_JIS"), u"<?xml version='1.0' encoding='Shift_JIS'?>", false},
             Row{choice("UTF-16LE"), u"<?xml version='1.0' encoding='UTF-16'?>", false},
         }) {
        EXPECT_EQ(EncodingConflict::of(row.text, row.choice).has_value(), row.conflicts) << narrow(row.text);
    }
}

TEST(EncodingConflict, KnowsBothWaysOut) {
    const auto latin1 = EncodingConflict::of(u"<?xml encoding='ISO-8859-1'?>", choice("UTF-8"));
    ASSERT_TRUE(latin1);
    EXPECT_EQ(latin1->declared, u"ISO-8859-1");
    EXPECT_EQ(latin1->asDeclared(), choice("ISO-8859-1"));
    EXPECT_EQ(latin1->asWritten(), choice("UTF-8"));
    const auto unknown = EncodingConflict::of(u"<?xml encoding='foo-1'?>", choice("UTF-8"));
    ASSERT_TRUE(unknown);
    EXPECT_EQ(unknown->asDeclared(), std::nullopt);
    const auto unmarked = EncodingConflict::of(u"<a/>", {StringEncoding::utf16BigEndian(), false});
    ASSERT_TRUE(unmarked);
    EXPECT_EQ(unmarked->asWritten(), choice("UTF-16BE"));
}

TEST(EncodingChoice, KnowsWhichEncodingsDeclareThemselves) {
    for (const char* const name : {"UTF-8", "UTF-16LE", "ISO-8859-1", "windows-1252", "Shift_JIS", "GB18030",
                                   "Big5", "EUC-KR", "KOI8-R", "EUC-JP"}) {
        EXPECT_TRUE(choice(name).canBeDeclared()) << name;
    }
    // Its letters have other bytes than those of ASCII.
    EXPECT_FALSE(choice("ibm-37").canBeDeclared());
}
