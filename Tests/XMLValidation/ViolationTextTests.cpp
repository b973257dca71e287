#include "ViolationText.h"

#include "CheckedText.h"

#include <gtest/gtest.h>

#include <set>

namespace {

struct Row {
    std::u16string_view text;
    std::u16string_view message; ///< Of the first violation.
    std::u16string_view fixed;   ///< The text after its fix; empty where there is none.
};

const Row rows[] = {
    {u"<!-- -->", u"El documento no tiene elemento raíz", u""},
    {u"a<b/>", u"Texto fuera del elemento raíz", u""},
    {u"<a/><![CDATA[]]>", u"Sección CDATA fuera del elemento raíz", u""},
    {u"<a>b\x1 c</a>", u"El carácter U+0001 no está permitido en XML", u"<a>b c</a>"},
    {u"<a>\xD800</a>", u"Aquí hay medio carácter (U+D800), que no está permitido", u"<a></a>"},
    {u"<×/>", u"Un nombre no puede empezar por “×” (U+00D7)", u""},
    {u"<a×/>", u"“×” (U+00D7) no puede formar parte de un nombre", u""},
    {u"<?1?><a/>", u"Un nombre no puede empezar por “1”", u""},
    {u"<a b='1'c='2'/>", u"Falta un espacio antes de “c”", u"<a b='1' c='2'/>"},
    {u"<a b='c&d'/>", u"“&” sin escapar", u"<a b='c&amp;d'/>"},
    {u"<a>&#X41;</a>", u"“&#X41;” no es una referencia a un carácter", u"<a>&#x41;</a>"},
    {u"<a>&#4F;</a>", u"“&#4F;” no es una referencia a un carácter", u"<a>&#x4F;</a>"},
    {u"<a>&#;</a>", u"“&#;” no es una referencia a un carácter", u"<a>&amp;#;</a>"},
    {u"<a>&#0;</a>", u"“&#0;” designa un carácter que XML no permite", u"<a></a>"},
    {u"<a>1&nbsp;€</a>", u"La entidad “nbsp” no está declarada", u"<a>1&#160;€</a>"},
    {u"<a>&b;</a>", u"La entidad “b” no está declarada", u"<a>&amp;b;</a>"},
    {u"<!DOCTYPE a [<!ATTLIST a b CDATA '&c;'><!ENTITY c ''>]><a/>",
     u"La entidad “c” se declara más abajo, y aquí ya hace falta", u""},
    {u"<!DOCTYPE a [<!ENTITY b SYSTEM 'c' NDATA d>]><a>&b;</a>",
     u"La entidad “b” no es texto XML: no se puede insertar aquí", u""},
    {u"<!DOCTYPE a [<!ENTITY b '&b;'>]><a>&b;</a>", u"La entidad “b” se contiene a sí misma", u""},
    {u"<!DOCTYPE a [<!ENTITY b '<c>'>]><a>&b;</a>", u"El texto de la entidad “b” no está bien formado", u""},
    {u"<!DOCTYPE a [<!ENTITY b SYSTEM 'c'>]><a d='&b;'/>",
     u"Un atributo no puede contener la entidad externa “b”", u""},
    {u"<!DOCTYPE a [<!ENTITY b '<c/>'>]><a d='&b;'/>", u"Un atributo no puede contener “b”, que lleva “<”",
     u""},
    {u"<!DOCTYPE a [<!ATTLIST a b CDATA '<'>]><a/>", u"“<” sin escapar en el valor de un atributo",
     u"<!DOCTYPE a [<!ATTLIST a b CDATA '&lt;'>]><a/>"},
    {u"<a>b]]>c</a>", u"“]]>” no puede ir en el texto", u"<a>b]]&gt;c</a>"},
    {u"<a/><!-- b--c -->", u"Un comentario no puede contener “--” ni terminar en “-”", u"<a/><!-- b- -c -->"},
    {u"<a/><!------->", u"Un comentario no puede contener “--” ni terminar en “-”", u"<a/><!--- - - -->"},
    {u"<a/><!--b--->", u"Un comentario no puede contener “--” ni terminar en “-”", u"<a/><!--b- -->"},
    {u"<? b?><a/>", u"Falta el nombre de la instrucción de proceso", u""},
    {u"<a><?XML?></a>", u"El nombre “XML” está reservado", u""},
    {u"\n<?xml version='1.0'?><a/>", u"La declaración XML solo puede ir al comienzo del documento",
     u"<?xml version='1.0'?><a/>"},
    {u"<a/><?xml version='1.0'?>", u"La declaración XML solo puede ir al comienzo del documento", u""},
    {u"<?a+?><a/>", u"Falta un espacio tras el nombre de la instrucción", u"<?a +?><a/>"},
    {u"<?xml version='1.0' encoding?><a/>", u"“?” no puede ir aquí en la declaración XML", u""},
    {u"<?xml version='1.0' a='b'?><a/>", u"“a” sobra en la declaración XML", u""},
    {u"<?xml version='1.0'encoding='b'?><a/>", u"Falta un espacio antes de “encoding”",
     u"<?xml version='1.0' encoding='b'?><a/>"},
    {u"<?xml encoding='b' version='1.0'?><a/>",
     u"El orden de la declaración XML es version, encoding y standalone",
     u"<?xml version='1.0' encoding='b'?><a/>"},
    {u"<?xml encoding='b'?><a/>", u"Falta la versión en la declaración XML",
     u"<?xml version=\"1.0\" encoding='b'?><a/>"},
    {u"<?xml version='1'?><a/>", u"“1” no es una versión de XML", u"<?xml version='1.0'?><a/>"},
    {u"<?xml version='1.0' encoding='1'?><a/>", u"“1” no es el nombre de una codificación", u""},
    {u"<?xml version='1.0' standalone='Yes'?><a/>", u"El valor de standalone es yes o no",
     u"<?xml version='1.0' standalone='yes'?><a/>"},
    {u"<a/><!DOCTYPE a>", u"La declaración DOCTYPE debe ir antes del elemento raíz", u""},
    {u"<!DOCTYPE a><!DOCTYPE a><a/>", u"Solo se permite una declaración DOCTYPE", u""},
    {u"<!doctype a><a/>", u"DOCTYPE se escribe en mayúsculas", u"<!DOCTYPE a><a/>"},
    {u"<a><!ENTITY b ''></a>", u"“<!ENTITY” no es una declaración que pueda ir aquí", u""},
    {u"<!DOCTYPE a b><a/>", u"“b” no puede ir aquí: se espera SYSTEM o PUBLIC y sus comillas", u""},
    {u"<!DOCTYPE a [] b><a/>", u"“b” sobra en la declaración DOCTYPE, o falta algo antes", u""},
    {u"<!DOCTYPE a [b]><a/>", u"“b” no puede ir entre las declaraciones de DOCTYPE", u""},
    {u"<!DOCTYPE a [<!-- ]><a/>", u"Falta cerrar “<!--” dentro de DOCTYPE", u""},
    {u"<!DOCTYPE a [<!ELEMENT b c>]><a/>", u"“c” no puede ir aquí en la declaración de un elemento", u""},
    {u"<!DOCTYPE a [<!ELEMENT b (c,d|e)>]><a/>", u"“|” no puede ir aquí en el modelo de contenido", u""},
    {u"<!DOCTYPE a [<!ELEMENT b (#PCDATA|c)>]><a/>",
     u"“>” no puede ir aquí en un contenido mixto: es (#PCDATA | nombre)*", u""},
    {u"<!DOCTYPE a [<!ATTLIST b c d>]><a/>", u"“d” no puede ir aquí en una lista de atributos", u""},
    {u"<!DOCTYPE a [<!ATTLIST b c CDATA d>]><a/>",
     u"“d” no puede ir aquí: se espera #REQUIRED, #IMPLIED o un valor entre comillas", u""},
    {u"<!DOCTYPE a [<!ENTITY b 'c' d>]><a/>", u"“d” no puede ir aquí en la declaración de una entidad", u""},
    {u"<!DOCTYPE a [<!NOTATION b SYSTEM 'c' d>]><a/>",
     u"“d” no puede ir aquí en la declaración de una notación", u""},
    {u"<!DOCTYPE a PUBLIC 'ñ' ''><a/>", u"“ñ” no puede formar parte de un identificador público", u""},
    {u"<!DOCTYPE a [<!ENTITY b '5 %'>]><a/>", u"“%” sin escapar en el valor de una entidad",
     u"<!DOCTYPE a [<!ENTITY b '5 &#37;'>]><a/>"},
    {u"<!DOCTYPE a [<!ENTITY b '%c;'>]><a/>", u"“%c;” no puede ir dentro de una declaración", u""},
    {u"<!DOCTYPE a [% ]><a/>", u"Tras “%” falta el nombre de una entidad y “;”", u""},
    {u"<!DOCTYPE a [%b;]><a/>", u"La entidad de parámetros “b” no está declarada", u""},
    {u"<!DOCTYPE a [<!ENTITY % b '&#37;b;'>%b;]><a/>", u"La entidad de parámetros “b” se contiene a sí misma",
     u""},
    {u"<!DOCTYPE a [<!ENTITY % b 'c'>%b;]><a/>", u"El texto de “%b;” no son declaraciones bien formadas",
     u""},
    {u"<!DOCTYPE a [<![INCLUDE[]]>]><a/>", u"Las secciones condicionales solo pueden ir en un DTD externo",
     u""},
    {u"<!DOCTYPE a [<!ENTITY amp '&#38;'>]><a/>", u"La entidad “amp” ya tiene otro significado en XML", u""},
    {u"<a:/>", u"Este “:” sobra: separa un prefijo de un nombre", u""},
    {u"<a:1 xmlns:a='b'/>", u"Tras el prefijo, un nombre no puede empezar por “1”", u""},
    {u"<?a:b?><a/>", u"Este nombre no puede llevar “:”", u""},
    {u"<a><svg:g/></a>", u"El prefijo “svg” no está declarado",
     u"<a xmlns:svg=\"http://www.w3.org/2000/svg\"><svg:g/></a>"},
    {u"<a b:c='d'/>", u"El prefijo “b” no está declarado", u""},
    {u"<!DOCTYPE a SYSTEM 'b'><a xlink:c=''/>",
     u"El prefijo “xlink” no está declarado aquí; puede que lo declare el DTD externo",
     u"<!DOCTYPE a SYSTEM 'b'><a xmlns:xlink=\"http://www.w3.org/1999/xlink\" xlink:c=''/>"},
    {u"<a xmlns:xml='b'/>", u"El prefijo “xml” no puede designar otro espacio de nombres", u""},
    {u"<a xmlns='http://www.w3.org/XML/1998/namespace'/>",
     u"Este espacio de nombres solo puede llevar el prefijo “xml”", u""},
    {u"<a xmlns:xmlns='b'/>", u"El prefijo “xmlns” no se puede declarar", u""},
    {u"<a xmlns='http://www.w3.org/2000/xmlns/'/>", u"Este espacio de nombres no se puede declarar", u""},
    {u"<xmlns:a/>", u"Un elemento no puede llevar el prefijo “xmlns”", u""},
    {u"<a xmlns:b=''/>", u"La declaración de un prefijo no puede quedar vacía", u"<a />"},
    {u"<a xmlns:b='d' xmlns:c='d' b:e='' c:e=''/>", u"Atributo duplicado: “c:e” es el mismo que “b:e”", u""},
};

TEST(ViolationText, SaysWhatIsWrongAndHowToMendIt) {
    for (const Row& row : rows) {
        SCOPED_TRACE(testing::PrintToString(row.text));
        const CheckedText checked(row.text);
        ASSERT_FALSE(checked.findings.violations.empty());
        const Violation& violation = checked.findings.violations.front();
        EXPECT_EQ(ViolationText::message(violation, checked.tree.text), row.message);
        const auto fix = ViolationText::fix(violation, checked.tree.text);
        ASSERT_EQ(fix.has_value(), !row.fixed.empty());
        if (fix) {
            EXPECT_FALSE(fix->title.empty());
            EXPECT_EQ(TextEdit::apply(fix->edits, row.text), row.fixed);
        }
    }
}

TEST(ViolationText, FixesLeaveNothingOfTheViolation) {
    for (const Row& row : rows) {
        if (!row.fixed.empty()) {
            EXPECT_EQ(CheckedText(row.fixed).description(), "") << testing::PrintToString(row.text);
        }
    }
}

TEST(ViolationText, KnowsEveryRule) {
    std::set<Violation::Rule> known;
    for (const Row& row : rows) {
        for (const Violation& violation : CheckedText(row.text).findings.violations) {
            known.insert(violation.rule);
        }
    }
    EXPECT_EQ(known.size(), static_cast<std::size_t>(Violation::lastRule) + 1);
}

TEST(ViolationText, NamesTheSection) {
    EXPECT_EQ(ViolationText::source(Constraint::entityDeclared), u"XML 1.0, 4.1");
    EXPECT_EQ(ViolationText::source(Constraint::prefixDeclared), u"Espacios de nombres en XML 1.0, 5");
}

} // namespace
