#include "XMLDeclaration.h"

#include <gtest/gtest.h>

#include <array>
#include <span>
#include <string>

namespace {

std::u16string declaring(std::u16string_view name, std::u16string_view text) {
    const TextEdit edit = XMLDeclaration::declaring(name, text, u"\n");
    return TextEdit::apply(std::span(&edit, 1), text);
}

} // namespace

TEST(XMLDeclaration, FindsTheDeclaredEncoding) {
    struct Row {
        std::u16string_view text;
        std::u16string_view encoding;
    };
    for (const Row& row : {
             Row{u"<?xml version=\"1.0\" encoding=\"UTF-8\"?><a/>", u"UTF-8"},
             Row{u"<?xml version='1.0' encoding = 'utf-8' standalone='yes'?>", u"utf-8"},
             Row{u"<?xml encoding=\"x y\"?>", u"x y"},
             Row{u"<?xml encoding=\"\"?>", u""},
             Row{u"<?xml version=\"1.0\"?><a encoding=\"UTF-8\"/>", u""},
             Row{u"<?xml version=\"1.0\" encoding=\"UTF-8\"><a/>", u"UTF-8"},
             Row{u"<?xml version=\"1.0\" encoding=\"UTF-8\"<a b=\"encoding='x'\"/>", u"UTF-8"},
             Row{u"<?xml version=\"1.0\" encoding=\"UTF-8", u""},
             Row{u"<?xml-stylesheet encoding=\"UTF-8\"?>", u""},
             Row{u" <?xml encoding=\"UTF-8\"?>", u""},
             Row{u"<?xml", u""},
             Row{u"", u""},
         }) {
        EXPECT_EQ(XMLDeclaration::declaredEncoding(row.text), row.encoding)
            << std::string(row.text.begin(), row.text.end());
    }
}

TEST(XMLDeclaration, LooksNoFurtherThanItSays) {
    std::u16string text = u"<?xml ";
    text.append(XMLDeclaration::longest, u' ').append(u"encoding=\"UTF-8\"?>");
    EXPECT_EQ(XMLDeclaration::declaredEncoding(text), u"");
}

TEST(XMLDeclaration, ChangesAddsOrStartsADeclaration) {
    struct Row {
        std::u16string_view text;
        std::u16string_view declaring;
    };
    for (const Row& row : {
             Row{u"<?xml version='1.0' encoding='utf-8' standalone='no'?>\r\n<a/>",
                 u"<?xml version='1.0' encoding='X' standalone='no'?>\r\n<a/>"},
             Row{u"<?xml version='1.0' standalone='no'?><a/>",
                 u"<?xml version='1.0' encoding='X' standalone='no'?><a/>"},
             Row{u"<?xml?><a/>", u"<?xml encoding=\"X\"?><a/>"},
             Row{u"<?xml encoding=\"\"?>", u"<?xml encoding=\"X\"?>"},
             Row{u"<a/>", u"<?xml version=\"1.0\" encoding=\"X\"?>\n<a/>"},
             Row{u"", u"<?xml version=\"1.0\" encoding=\"X\"?>\n"},
         }) {
        EXPECT_EQ(declaring(u"X", row.text), row.declaring) << std::string(row.text.begin(), row.text.end());
        EXPECT_EQ(XMLDeclaration::declaredEncoding(declaring(u"X", row.text)), u"X");
    }
}
