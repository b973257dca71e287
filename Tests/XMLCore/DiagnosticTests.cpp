#include "Diagnostic.h"

#include "TreeDump.h"
#include "TreeParser.h"

#include <gtest/gtest.h>
#include <string>
#include <tuple>
#include <unordered_set>

namespace {

using Severity = Diagnostic::Severity;
using Fix = Diagnostic::Fix;

/// Checks that `input` has one diagnostic with `message`; its operations check the rest of the diagnostic.
class Row {
public:
    Row(std::u16string input, std::u16string message) : m_input(std::move(input)) {
        const DocumentTree tree = TreeParser::parse(SourceText(m_input));
        int found = 0;
        for (const Diagnostic& diagnostic : tree.diagnostics) {
            if (diagnostic.message == message) {
                m_diagnostic = diagnostic;
                ++found;
            }
        }
        EXPECT_EQ(found, 1) << asLiteral(m_input) << " " << asLiteral(message);
    }

    Row& isError(SourceRange range) { return has(range, Severity::error); }
    Row& isWarning(SourceRange range) { return has(range, Severity::warning); }

    /// Checks that the fix replaces `range` by `replacement`, which results in `fixed`.
    void isFixed(const std::u16string& title, SourceRange range, const std::u16string& replacement,
                 const std::u16string& fixed) {
        const Fix expected{title, {{range, replacement}}};
        ASSERT_TRUE(m_diagnostic.fix.has_value()) << asLiteral(m_input);
        EXPECT_EQ(asLiteral(m_diagnostic.fix->title), asLiteral(title));
        EXPECT_TRUE(*m_diagnostic.fix == expected) << asLiteral(m_input);
        EXPECT_EQ(asLiteral(TextEdit::apply(m_diagnostic.fix->edits, m_input)), asLiteral(fixed));
    }
    void isFixedByInsertion(const std::u16string& title, Offset at, const std::u16string& string,
                            const std::u16string& fixed) {
        isFixed(title, SourceRange::empty(at), string, fixed);
    }
    void hasNoFix() { EXPECT_FALSE(m_diagnostic.fix.has_value()) << asLiteral(m_input); }

private:
    Row& has(SourceRange range, Severity severity) {
        EXPECT_EQ(m_diagnostic.range.description(), range.description()) << asLiteral(m_input);
        EXPECT_EQ(m_diagnostic.severity, severity) << asLiteral(m_input);
        return *this;
    }

    std::u16string m_input;
    Diagnostic m_diagnostic;
};

std::vector<std::string> messages(const std::u16string& input) {
    std::vector<std::string> messages;
    for (const Diagnostic& diagnostic : TreeParser::parse(SourceText(input)).diagnostics) {
        messages.push_back(asLiteral(diagnostic.message));
    }
    return messages;
}

void checkMessages(const std::u16string& input, const std::vector<std::u16string>& expected) {
    std::vector<std::string> literals;
    for (const std::u16string& message : expected) {
        literals.push_back(asLiteral(message));
    }
    EXPECT_EQ(messages(input), literals) << asLiteral(input);
}

} // namespace

TEST(Diagnostic, EscapesLoneMarkup) {
    Row(u"<a>1 < 2</a>", u"“<” sin escapar")
        .isError({5, 6})
        .isFixed(u"Escapar como &lt;", {5, 6}, u"&lt;", u"<a>1 &lt; 2</a>");
    Row(u"<a>b & c</a>", u"“&” sin escapar")
        .isError({5, 6})
        .isFixed(u"Escapar como &amp;", {5, 6}, u"&amp;", u"<a>b &amp; c</a>");
}

TEST(Diagnostic, WarnsOfTextOutsideTheRoot) {
    Row(u" hola <a/>", u"Texto fuera del elemento raíz").isWarning({0, 6}).hasNoFix();
    Row(u"<a/>\n&lt;x", u"Texto fuera del elemento raíz").isWarning({4, 10}).hasNoFix();
    checkMessages(u"x<a/>y", {u"Texto fuera del elemento raíz", u"Texto fuera del elemento raíz"});
    checkMessages(u" <a> x </a>\n", {});
}

TEST(Diagnostic, TerminatesConstructs) {
    Row(u"<!-- c", u"Falta cerrar con -->")
        .isError({0, 4})
        .isFixedByInsertion(u"Cerrar con -->", 6, u"-->", u"<!-- c-->");
    Row(u"<a><![CDATA[ c", u"Falta cerrar con ]]>")
        .isError({3, 12})
        .isFixedByInsertion(u"Cerrar con ]]>", 14, u"]]>", u"<a><![CDATA[ c]]>");
    Row(u"<?x y", u"Falta cerrar con ?>")
        .isError({0, 2})
        .isFixedByInsertion(u"Cerrar con ?>", 5, u"?>", u"<?x y?>");
    Row(u"<!DOCTYPE [x> ", u"Falta cerrar con >")
        .isError({0, 2})
        .isFixedByInsertion(u"Cerrar con >", 14, u">", u"<!DOCTYPE [x> >");
    // A construct that ends with its terminator counts as terminated, even inside brackets.
    checkMessages(u"<!DOCTYPE [x>", {u"El documento no tiene elemento raíz"});
    Row(u"<!", u"Falta cerrar con >").isError({0, 2}).isFixedByInsertion(u"Cerrar con >", 2, u">", u"<!>");
    // The terminator must not share its units with the opener.
    Row(u"<!-->", u"Falta cerrar con -->").isError({0, 4});
    Row(u"<!--->", u"Falta cerrar con -->").isError({0, 4});
    Row(u"<?>", u"Falta cerrar con ?>").isError({0, 2});
    checkMessages(u"<!----><a/><?\?><!>", {});
    checkMessages(u"<a><![CDATA[]]></a>", {});
}

TEST(Diagnostic, TellsMissingTagName) {
    // The lexer never returns tokens for which the parser reports this, so the records are made here.
    RecordArray<DiagnosticRecord> records;
    records.append({{2, 3}, 0, DiagnosticRecord::Rule::missingTagName});
    records.append({{2, 3}, 4, DiagnosticRecord::Rule::unterminatedStartTag});
    const DiagnosticList list(SourceText(u"a <= b"), std::move(records));
    EXPECT_TRUE(list[0] == (Diagnostic{{2, 3}, u"Falta el nombre de la etiqueta", Severity::error, {}}));
    const Fix fix{u"Añadir >", {TextEdit::insert(u">", 4)}};
    EXPECT_TRUE(list[1] == (Diagnostic{{2, 3}, u"La etiqueta <> no termina con >", Severity::error, fix}));
}

TEST(Diagnostic, PointsAtWhatTagsMustNotHold) {
    const std::u16string message = u"Carácter inesperado dentro de la etiqueta";
    Row(u"<a =/>", message).isError({3, 4}).hasNoFix();
    Row(u"<a 'b'/>", message).isError({3, 6}).hasNoFix();
    Row(u"<a /b='c'/>", message).isError({3, 4}).hasNoFix();
    Row(u"<a b='c' 7/>", message).isError({9, 10}).hasNoFix();
    Row(u"<a <", message).isError({3, 4}).hasNoFix();
}

TEST(Diagnostic, EndsStartTags) {
    const std::u16string title = u"Añadir >";
    Row(u"<a", u"La etiqueta <a> no termina con >")
        .isError({1, 2})
        .isFixedByInsertion(title, 2, u">", u"<a>");
    Row(u"<r><ñu b='c'  <d/></r>", u"La etiqueta <ñu> no termina con >")
        .isError({4, 6})
        .isFixedByInsertion(title, 12, u">", u"<r><ñu b='c'>  <d/></r>");
    Row(u"<r><a b= </r>", u"La etiqueta <a> no termina con >")
        .isError({4, 5})
        .isFixedByInsertion(title, 8, u">", u"<r><a b=> </r>");
    Row(u"<r><a b </r>", u"La etiqueta <a> no termina con >")
        .isError({4, 5})
        .isFixedByInsertion(title, 7, u">", u"<r><a b> </r>");
    Row(u"<r><a / </r>", u"La etiqueta <a> no termina con >")
        .isError({4, 5})
        .isFixedByInsertion(title, 7, u">", u"<r><a /> </r>");
}

TEST(Diagnostic, AllowsOneRoot) {
    const std::u16string message = u"Solo se permite un elemento raíz";
    Row(u"<a/><b/>", message).isError({5, 6}).hasNoFix();
    Row(u"<a></a><bb></bb>", message).isError({8, 10}).hasNoFix();
    checkMessages(u"<a/><b/><c/>", {message, message});
    // A start tag that was cut off does not count as a root.
    checkMessages(u"<a<b/>", {u"La etiqueta <a> no termina con >"});
}

TEST(Diagnostic, FindsRepeatedAttributes) {
    const std::u16string message = u"Atributo duplicado “b”";
    Row(u"<a b='' c='' b=''/>", message).isError({13, 14}).hasNoFix();
    checkMessages(u"<a b='' b='' b=''/>", {message, message});
    checkMessages(u"<a b='' B='' bb='' x:b=''/>", {});
    checkMessages(u"<a b=''><a b=''/></a>", {});
}

TEST(Diagnostic, AddsMissingValues) {
    Row(u"<a x y='1'/>", u"El atributo “x” no tiene valor")
        .isError({3, 4})
        .isFixedByInsertion(u"Añadir valor", 4, u"=\"\"", u"<a x=\"\" y='1'/>");
    Row(u"<a xy/>", u"El atributo “xy” no tiene valor")
        .isError({3, 5})
        .isFixedByInsertion(u"Añadir valor", 5, u"=\"\"", u"<a xy=\"\"/>");
    checkMessages(u"<a x", {u"El documento no tiene elemento raíz", u"La etiqueta <a> no termina con >"});
    Row(u"<a x=1/>", u"Falta el valor entre comillas").isError({3, 4}).hasNoFix();
    Row(u"<a xy=", u"Falta el valor entre comillas").isError({3, 5}).hasNoFix();
}

TEST(Diagnostic, ClosesQuotes) {
    Row(u"<a b='c", u"Falta cerrar la comilla")
        .isError({5, 7})
        .isFixedByInsertion(u"Cerrar comilla", 7, u"'", u"<a b='c'");
    Row(u"<r><a b=\"c/><d/></r>", u"Falta cerrar la comilla")
        .isError({8, 12})
        .isFixedByInsertion(u"Cerrar comilla", 12, u"\"", u"<r><a b=\"c/>\"<d/></r>");
    Row(u"<a b='", u"Falta cerrar la comilla")
        .isError({5, 6})
        .isFixedByInsertion(u"Cerrar comilla", 6, u"'", u"<a b=''");
}

TEST(Diagnostic, EndsEndTags) {
    Row(u"<a></a", u"La etiqueta de cierre no termina con >")
        .isError({3, 5})
        .isFixedByInsertion(u"Añadir >", 6, u">", u"<a></a>");
    Row(u"<a><b></b x</a>", u"La etiqueta de cierre no termina con >")
        .isError({6, 8})
        .isFixedByInsertion(u"Añadir >", 11, u">", u"<a><b></b x></a>");
    Row(u"<a></ </a>", u"La etiqueta de cierre no termina con >")
        .isError({3, 5})
        .isFixedByInsertion(u"Añadir >", 5, u">", u"<a></> </a>");
}

TEST(Diagnostic, PointsAtWhatEndTagsMustNotHold) {
    const std::u16string message = u"Contenido inesperado en la etiqueta de cierre";
    Row(u"<a></a b>", message).isError({7, 8}).hasNoFix();
    Row(u"<a></a =>", message).isError({7, 8}).hasNoFix();
    Row(u"<a></a 'b'>", message).isError({7, 10}).hasNoFix();
    Row(u"<a></a/>", message).isError({6, 8}).hasNoFix();
    Row(u"<a></a 7>", message).isError({7, 8}).hasNoFix();
    checkMessages(u"<a></a b='c'>", {message, message, message});
}

TEST(Diagnostic, DeletesUnmatchedEndTags) {
    Row(u"<a></b></a>", u"</b> no tiene etiqueta de apertura")
        .isError({3, 7})
        .isFixed(u"Eliminar cierre", {3, 7}, u"", u"<a></a>");
    Row(u"<a></ñandú c ></a>", u"</ñandú> no tiene etiqueta de apertura")
        .isError({3, 14})
        .isFixed(u"Eliminar cierre", {3, 14}, u"", u"<a></a>");
    Row(u"<a></></a>", u"</> no tiene etiqueta de apertura")
        .isError({3, 6})
        .isFixed(u"Eliminar cierre", {3, 6}, u"", u"<a></a>");
    Row(u"<a></ a></a>", u"</> no tiene etiqueta de apertura").isError({3, 8});
    Row(u"<a></A></a>", u"</A> no tiene etiqueta de apertura").isError({3, 7});
    checkMessages(u"<a/></b>", {u"</b> no tiene etiqueta de apertura", u"Texto fuera del elemento raíz"});
}

TEST(Diagnostic, ClosesElements) {
    Row(u"<a>", u"Falta cerrar <a>")
        .isError({1, 2})
        .isFixedByInsertion(u"Cerrar <a>", 3, u"</a>", u"<a></a>");
    Row(u"<a><b></a>", u"Falta cerrar <b>")
        .isError({4, 5})
        .isFixedByInsertion(u"Cerrar <b>", 6, u"</b>", u"<a><b></b></a>");
    Row(u"<a>x<bc>y\n", u"Falta cerrar <bc>")
        .isError({5, 7})
        .isFixedByInsertion(u"Cerrar <bc>", 10, u"</bc>", u"<a>x<bc>y\n</bc>");
    checkMessages(u"<a>", {u"Falta cerrar <a>"});
    checkMessages(u"<a><b><c></a>", {u"Falta cerrar <b>", u"Falta cerrar <c>"});
}

TEST(Diagnostic, WarnsOfMissingRoot) {
    Row(u"<!-- -->", u"El documento no tiene elemento raíz").isWarning({0, 0}).hasNoFix();
    checkMessages(u"", {});
    checkMessages(u" \r\n\t", {});
    checkMessages(u"\xA0", {u"Texto fuera del elemento raíz", u"El documento no tiene elemento raíz"});
}

TEST(Diagnostic, RepairsNamesInMessagesButNotInEdits) {
    const std::u16string name = u"a\xD800";
    Row(u"<" + name + u">", u"Falta cerrar <a\xFFFD>")
        .isError({1, 3})
        .isFixedByInsertion(u"Cerrar <a\xFFFD>", 4, u"</" + name + u">", u"<" + name + u"></" + name + u">");
    Row(u"<a></b\xDC00></a>", u"</b\xFFFD> no tiene etiqueta de apertura");
    Row(u"<" + name, u"La etiqueta <a\xFFFD> no termina con >");
    Row(u"<a \xDC00/>", u"El atributo “\xFFFD” no tiene valor");
    Row(u"<a \xDC00='' \xDC00=''/>", u"Atributo duplicado “\xFFFD”");
    // Names that are only displayed in the same way are different names.
    checkMessages(u"<a \xDC00='' \xDC01=''/>", {});
}

TEST(Diagnostic, StandInOrderOfTheText) {
    checkMessages(u"hola", {u"Texto fuera del elemento raíz", u"El documento no tiene elemento raíz"});
    checkMessages(u"<a b b><c>",
                  {u"Falta cerrar <a>", u"El atributo “b” no tiene valor", u"Atributo duplicado “b”",
                   u"El atributo “b” no tiene valor", u"Falta cerrar <c>"});
    const DocumentTree tree = TreeParser::parse(SourceText(u"<a>&<b>&</a>&"));
    const DiagnosticList& list = tree.diagnostics;
    ASSERT_EQ(list.size(), 5U);
    const Offset lowers[] = {3, 5, 7, 12, 12};
    for (std::size_t i = 0; i < list.size(); ++i) {
        EXPECT_EQ(list.range(i).lower, lowers[i]);
        EXPECT_EQ(list.range(i), list[i].range);
        EXPECT_EQ(list.severity(i), list[i].severity);
    }
    EXPECT_EQ(list.errorCount(), 4U);
    EXPECT_EQ(list.firstIndex(0), 0U);
    EXPECT_EQ(list.firstIndex(5), 1U);
    EXPECT_EQ(list.firstIndex(6), 2U);
    EXPECT_EQ(list.firstIndex(12), 3U);
    EXPECT_EQ(list.firstIndex(13), 5U);
}

TEST(Diagnostic, ListsCountAndCompare) {
    const DiagnosticList none;
    EXPECT_TRUE(none.empty());
    EXPECT_EQ(none.begin(), none.end());
    EXPECT_EQ(none.errorCount(), 0U);
    EXPECT_EQ(none.firstIndex(0), 0U);
    const Diagnostic error{{1, 2}, u"a", Severity::error, {}};
    Diagnostic other = error;
    EXPECT_EQ(std::hash<Diagnostic>()(error), std::hash<Diagnostic>()(other));
    other.fix = Fix{u"b", {}};
    EXPECT_FALSE(error == other);
    EXPECT_NE(std::hash<Diagnostic>()(error), std::hash<Diagnostic>()(other));
    const std::unordered_set<Fix> fixes = {
        {u"a", {}}, {u"b", {}}, {u"a", {TextEdit::insert(u">", 1)}}, {u"a", {}}};
    EXPECT_EQ(fixes.size(), 3U);
    EXPECT_DEATH(std::ignore = none[0], "there is a diagnostic of that index");
}
