// Every well-formedness constraint and every production of XML 1.0 (fifth edition) that a text can break
// after it was parsed, and every constraint of Namespaces in XML 1.0 (third edition): the smallest text that
// violates it, with the place marked, and the smallest like it that does not.

#include "CheckedText.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

namespace {

/// What says that a row is violated.
enum class By : std::uint8_t { violation, warning, parser };

struct Row {
    std::string_view section;
    std::string_view name;
    std::u16string_view violating;
    std::u16string_view conforming;
    By by = By::violation;
};

const Row xmlRows[] = {
    {"2.1", "document [1]", u"<!-- a -->⟦⟧", u"<a/>"},
    {"2.1", "document [1]", u"⟦⟧", u"<a/>"},
    {"2.1", "document [1]", u"<a/>\n ⟦texto⟧ \n", u"<a/>\n \n"},
    {"2.1", "document [1]", u"⟦&#32;⟧<a/>", u" <a/>"},
    {"2.1", "document [1]", u"<a/><⟦b⟧/>", u"<a/><!--b-->", By::parser},
    {"2.2", "Char [2]", u"<a>⟦\x1⟧</a>", u"<a>\t\r\n</a>"},
    {"2.2", "Char [2]", u"<a b='⟦\xFFFE⟧'/>", u"<a b='\xFFFD'/>"},
    {"2.2", "Char [2]", u"<a><!--⟦\xD800⟧--></a>", u"<a><!--\xD800\xDC00--></a>"},
    {"2.2", "Char [2]", u"<a>⟦\xDC00⟧\xD83D\xDE00</a>", u"<a>\xD83D\xDE00</a>"},
    {"2.3", "Name [5]", u"<a⟦×⟧/>", u"<añ/>"},
    {"2.3", "Name [5]", u"<⟦·⟧a/>", u"<a·/>"},
    {"2.3", "Name [5]", u"<a ⟦b⟧;='c'/>", u"<a b='c'/>", By::parser},
    {"2.3", "Name [5]", u"<a b⟦\x037E⟧='c'/>", u"<a b\x037F='c'/>"},
    {"2.3", "Name [5]", u"<a>&b⟦\x2014⟧;</a>", u"<!DOCTYPE a [<!ENTITY b\x200D ''>]><a>&b\x200D;</a>"},
    {"2.3", "Name [5]", u"<?⟦1⟧?><a/>", u"<?a1?><a/>"},
    {"2.3", "EntityValue [9]", u"<!DOCTYPE a [<!ENTITY b '⟦%⟧'>]><a/>",
     u"<!DOCTYPE a [<!ENTITY b '&#37;'>]><a/>"},
    {"2.3", "PubidLiteral [12]", u"<!DOCTYPE a PUBLIC 'a⟦\t⟧b' 'c'><a/>",
     u"<!DOCTYPE a PUBLIC 'a b' 'c'><a/>"},
    {"2.3", "PubidLiteral [12]", u"<!DOCTYPE a PUBLIC '⟦é⟧' 'c'><a/>", u"<!DOCTYPE a PUBLIC \"e'\" 'c'><a/>"},
    {"2.4", "CharData [14]", u"<a>⟦]]>⟧</a>", u"<a>]]&gt;</a>"},
    {"2.4", "CharData [14]", u"<a>]⟦]]>⟧</a>", u"<a b=']]>'>]] ></a>"},
    {"2.5", "Comment [15]", u"<a/><!-- ⟦--⟧ -->", u"<a/><!-- - - -->"},
    {"2.5", "Comment [15]", u"<a/><!-- ⟦-⟧-->", u"<a/><!--- -->"},
    {"2.5", "Comment [15]", u"<!DOCTYPE a [<!--⟦---⟧ -->]><a/>", u"<!DOCTYPE a [<!-- - -->]><a/>"},
    {"2.6", "PI [16]", u"<a>⟦<?⟧ b?></a>", u"<a><?b ?></a>"},
    {"2.6", "PI [16]", u"<a><?b⟦+⟧?></a>", u"<a><?b +?></a>"},
    {"2.6", "PITarget [17]", u"<a><?⟦XmL⟧ b?></a>", u"<a><?xml-b?></a>"},
    {"2.6", "PITarget [17]", u" <?⟦xml⟧ version='1.0'?><a/>", u"<?xml version='1.0'?><a/>"},
    {"2.6", "PITarget [17]", u"<!DOCTYPE a [<?⟦xml⟧ b?>]><a/>", u"<!DOCTYPE a [<?xm b?>]><a/>"},
    {"2.7", "CDSect [18]", u"<a/>⟦<![CDATA[⟧]]>", u"<a><![CDATA[]]></a>"},
    {"2.8", "XMLDecl [23]", u"⟦<?xml⟧?><a/>", u"<?xml version='1.0'?><a/>"},
    {"2.8", "XMLDecl [23]", u"⟦<?xml⟧ encoding='a'?><a/>", u"<?xml version = \"1.0\" encoding='a' ?><a/>"},
    {"2.8", "XMLDecl [23]", u"<?xml version='1.0'⟦encoding⟧='a'?><a/>",
     u"<?xml version='1.0'\nencoding='a'?><a/>"},
    {"2.8", "XMLDecl [23]", u"<?xml version='1.0' ⟦a⟧='b'?><a/>", u"<?xml version='1.0' ?><a/>"},
    {"2.8", "XMLDecl [23]", u"<?xml version='1.0' ⟦version⟧='1.0'?><a/>", u"<?xml version='1.0'?><a/>"},
    {"2.8", "XMLDecl [23]", u"<?xml version='1.0' standalone='no' ⟦encoding⟧='a'?><a/>",
     u"<?xml version='1.0' encoding='a' standalone='no'?><a/>"},
    {"2.8", "XMLDecl [23]", u"<?xml version='1.0' encoding⟦?⟧><a/>", u"<?xml version='1.0'?><a/>"},
    {"2.8", "XMLDecl [23]", u"<?xml version='1.0' encoding=⟦a⟧?><a/>",
     u"<?xml version='1.0' encoding='a'?><a/>"},
    {"2.8", "VersionNum [26]", u"<?xml version='⟦2.0⟧'?><a/>", u"<?xml version='1.20'?><a/>"},
    {"2.8", "doctypedecl [28]", u"<a/>⟦<!DOCTYPE⟧ a>", u"<!DOCTYPE a><a/>"},
    {"2.8", "doctypedecl [28]", u"<!DOCTYPE a>⟦<!DOCTYPE⟧ a><a/>", u"<!DOCTYPE a><a/>"},
    {"2.8", "doctypedecl [28]", u"⟦<!doctype⟧ a><a/>", u"<!DOCTYPE a><a/>"},
    {"2.8", "doctypedecl [28]", u"<!DOCTYPE⟦[⟧]><a/>", u"<!DOCTYPE a[]><a/>"},
    {"2.8", "doctypedecl [28]", u"<!DOCTYPE a []⟦b⟧><a/>", u"<!DOCTYPE a [] ><a/>"},
    {"2.8", "intSubset [28b]", u"<a>⟦<!ELEMENT⟧ b ANY></a>", u"<!DOCTYPE a [<!ELEMENT b ANY>]><a/>"},
    {"2.8", "intSubset [28b]", u"<!DOCTYPE a [⟦b⟧]><a/>", u"<!DOCTYPE a [ ]><a/>"},
    {"2.8", "intSubset [28b]", u"<!DOCTYPE a [⟦<!element⟧ b ANY>]><a/>",
     u"<!DOCTYPE a [<!ELEMENT b ANY>]><a/>"},
    {"2.8", "intSubset [28b]", u"<!DOCTYPE a [⟦<⟧b>]><a/>", u"<!DOCTYPE a [<?b?>]><a/>"},
    {"2.8", "PEs in Internal Subset", u"<!DOCTYPE a [<!ENTITY % b ''><!ELEMENT a ⟦%b;⟧>]><a/>",
     u"<!DOCTYPE a [<!ENTITY % b ''>%b;<!ELEMENT a ANY>]><a/>"},
    {"2.8", "PEs in Internal Subset", u"<!DOCTYPE a [<!ENTITY % b ''><!ENTITY c '⟦%b;⟧'>]><a/>",
     u"<!DOCTYPE a [<!ENTITY % b ''><!ENTITY c '&#37;b;'>]><a/>"},
    {"2.8", "PE Between Declarations", u"<!DOCTYPE a [<!ENTITY % b '<!ELEMENT'>⟦%b;⟧]><a/>",
     u"<!DOCTYPE a [<!ENTITY % b '<!ELEMENT a ANY>'>%b;]><a/>"},
    {"2.8", "PE Between Declarations",
     u"<!DOCTYPE a [<!ENTITY % b '<!ATTLIST a b CDATA \"&#38;\">'>⟦%b;⟧]><a/>",
     u"<!DOCTYPE a [<!ENTITY % b '<!ATTLIST a b CDATA \"&#38;amp;\">'>%b;]><a/>"},
    {"2.8", "PE Between Declarations",
     u"<!DOCTYPE a [<!ENTITY % b '<![INCLUDE[<!ELEMENT a ANY>]>'>⟦%b;⟧]><a/>",
     u"<!DOCTYPE a [<!ENTITY % b '<![INCLUDE[<![IGNORE[ <![]]> ]]><!ELEMENT a ANY>]]>'>%b;]><a/>"},
    {"2.9", "SDDecl [32]", u"<?xml version='1.0' standalone='⟦YES⟧'?><a/>",
     u"<?xml version='1.0' standalone='yes'?><a/>"},
    {"3", "Element Type Match", u"<a>⟦</b>⟧</a>", u"<a></a>", By::parser},
    {"3.1", "STag [40]", u"<a b='1'⟦c⟧='2'/>", u"<a b='1' c='2'/>"},
    {"3.1", "Unique Att Spec", u"<a b='1' ⟦b⟧='2'/>", u"<a b='1' B='2'/>", By::parser},
    {"3.1", "No External Entity References", u"<!DOCTYPE a [<!ENTITY b SYSTEM 'c'>]><a d='⟦&b;⟧'/>",
     u"<!DOCTYPE a [<!ENTITY b SYSTEM 'c'>]><a>&b;</a>"},
    {"3.1", "No External Entity References",
     u"<!DOCTYPE a [<!ENTITY b SYSTEM 'c'><!ENTITY e '&b;'>]><a d='⟦&e;⟧'/>",
     u"<!DOCTYPE a [<!ENTITY b SYSTEM 'c'><!ENTITY e '&b;'>]><a>&e;</a>"},
    {"3.1", "No < in Attribute Values", u"<⟦a⟧ b='<'/>", u"<a b='&lt;'/>", By::parser},
    {"3.1", "No < in Attribute Values", u"<!DOCTYPE a [<!ENTITY b '<c/>'>]><a d='⟦&b;⟧'/>",
     u"<!DOCTYPE a [<!ENTITY b '&#38;#60;c/>'>]><a d='&b;'/>"},
    {"3.1", "No < in Attribute Values", u"<!DOCTYPE a [<!ENTITY b '&#60;'><!ENTITY c '&b;'>]><a d='⟦&c;⟧'/>",
     u"<!DOCTYPE a [<!ENTITY b '&#62;'><!ENTITY c '&b;'>]><a d='&c;'/>"},
    {"3.1", "No < in Attribute Values", u"<!DOCTYPE a [<!ATTLIST a b CDATA '⟦<⟧'>]><a/>",
     u"<!DOCTYPE a [<!ATTLIST a b CDATA '&lt;'>]><a/>"},
    {"3.2", "elementdecl [45]", u"<!DOCTYPE a [<!ELEMENT a ⟦a⟧ny>]><a/>",
     u"<!DOCTYPE a [<!ELEMENT a ANY >]><a/>"},
    {"3.2", "elementdecl [45]", u"<!DOCTYPE a [<!ELEMENT a⟦(⟧b)>]><a/>",
     u"<!DOCTYPE a [<!ELEMENT a (b)>]><a/>"},
    {"3.2.1", "children [47]", u"<!DOCTYPE a [<!ELEMENT a (b,c⟦|⟧d)>]><a/>",
     u"<!DOCTYPE a [<!ELEMENT a ((b?,c+)|( d | e )*)?>]><a/>"},
    {"3.2.1", "children [47]", u"<!DOCTYPE a [<!ELEMENT a (⟦)⟧>]><a/>",
     u"<!DOCTYPE a [<!ELEMENT a (b)>]><a/>"},
    {"3.2.1", "children [47]", u"<!DOCTYPE a [<!ELEMENT a (b⟦>⟧]><a/>",
     u"<!DOCTYPE a [<!ELEMENT a (b)>]><a/>"},
    {"3.2.1", "children [47]", u"<!DOCTYPE a [<!ELEMENT a (b,⟦#⟧PCDATA)>]><a/>",
     u"<!DOCTYPE a [<!ELEMENT a (b)>]><a/>"},
    {"3.2.2", "Mixed [51]", u"<!DOCTYPE a [<!ELEMENT a (#PCDATA|b)⟦>⟧]><a/>",
     u"<!DOCTYPE a [<!ELEMENT a ( #PCDATA | b )*>]><a/>"},
    {"3.2.2", "Mixed [51]", u"<!DOCTYPE a [<!ELEMENT a (#PCDATA⟦,⟧b)*>]><a/>",
     u"<!DOCTYPE a [<!ELEMENT a (#PCDATA)*>]><a/>"},
    {"3.3", "AttlistDecl [52]", u"<!DOCTYPE a [<!ATTLIST a b ⟦c⟧data #IMPLIED>]><a/>",
     u"<!DOCTYPE a [<!ATTLIST a><!ATTLIST a b CDATA #IMPLIED c IDREFS #REQUIRED>]><a/>"},
    {"3.3", "AttlistDecl [52]", u"<!DOCTYPE a [<!ATTLIST a b (⟦)⟧ #IMPLIED>]><a/>",
     u"<!DOCTYPE a [<!ATTLIST a b (1|-c) #IMPLIED>]><a/>"},
    {"3.3", "AttlistDecl [52]", u"<!DOCTYPE a [<!ATTLIST a b NOTATION (⟦1⟧) #IMPLIED>]><a/>",
     u"<!DOCTYPE a [<!ATTLIST a b NOTATION (c|d) #IMPLIED>]><a/>"},
    {"3.3", "AttlistDecl [52]", u"<!DOCTYPE a [<!ATTLIST a b CDATA 'c'⟦d⟧ CDATA 'e'>]><a/>",
     u"<!DOCTYPE a [<!ATTLIST a b CDATA 'c' d CDATA 'e'>]><a/>"},
    {"3.3.2", "DefaultDecl [60]", u"<!DOCTYPE a [<!ATTLIST a b CDATA ⟦#⟧OPTIONAL>]><a/>",
     u"<!DOCTYPE a [<!ATTLIST a b CDATA #FIXED 'c'>]><a/>"},
    {"3.3.2", "DefaultDecl [60]", u"<!DOCTYPE a [<!ATTLIST a b CDATA #FIXED⟦'⟧c'>]><a/>",
     u"<!DOCTYPE a [<!ATTLIST a b CDATA #FIXED 'c'>]><a/>"},
    {"3.4", "conditionalSect [61]", u"<!DOCTYPE a [⟦<![⟧INCLUDE[]]>]><a/>",
     u"<!DOCTYPE a [<!ENTITY % b '<![ INCLUDE [ ]]>'>%b;]><a/>"},
    {"4.1", "CharRef [66]", u"<a>⟦&#X20;⟧</a>", u"<a>&#x20;</a>"},
    {"4.1", "CharRef [66]", u"<a b='⟦&#1a;⟧'/>", u"<a b='&#10;'/>"},
    {"4.1", "CharRef [66]", u"<a>⟦&#;⟧</a>", u"<a>&#9;</a>"},
    {"4.1", "Legal Character", u"<a>⟦&#0;⟧</a>", u"<a>&#9;</a>"},
    {"4.1", "Legal Character", u"<a b='⟦&#xD800;⟧'/>", u"<a b='&#xD7FF;'/>"},
    {"4.1", "Legal Character", u"<a>⟦&#x110000;⟧</a>", u"<a>&#x10FFFF;</a>"},
    {"4.1", "Legal Character", u"<a>⟦&#99999999999999999999;⟧</a>", u"<a>&#00000000000000000009;</a>"},
    {"4.1", "Legal Character", u"<!DOCTYPE a [<!ENTITY b '⟦&#1;⟧'>]><a/>",
     u"<!DOCTYPE a [<!ENTITY b '&#x41;'>]><a/>"},
    {"4.1", "EntityRef [68]", u"<a b='c ⟦&⟧ d'/>", u"<a b='c &amp; d'/>"},
    {"4.1", "EntityRef [68]", u"<a b='?c=1⟦&⟧d=2'/>", u"<a b='?c=1&amp;d=2'/>"},
    {"4.1", "EntityRef [68]", u"<a>⟦&⟧ b</a>", u"<a>&amp; b</a>", By::parser},
    {"4.1", "EntityRef [68]", u"<!DOCTYPE a [<!ENTITY b '⟦&⟧'>]><a/>",
     u"<!DOCTYPE a [<!ENTITY b '&c;'>]><a/>"},
    {"4.1", "EntityRef [68]", u"<!DOCTYPE a [<!ATTLIST a b CDATA '⟦&⟧'>]><a/>",
     u"<!DOCTYPE a [<!ATTLIST a b CDATA '&amp;'>]><a/>"},
    {"4.1", "PEReference [69]", u"<!DOCTYPE a [⟦%⟧ b;]><a/>", u"<!DOCTYPE a [<!ENTITY % b ''>%b;]><a/>"},
    {"4.1", "Entity Declared", u"<a>⟦&b;⟧</a>", u"<!DOCTYPE a [<!ENTITY b 'c'>]><a>&b;</a>"},
    {"4.1", "Entity Declared", u"<a b='⟦&nbsp;⟧'/>", u"<a b='&#160;'/>"},
    {"4.1", "Entity Declared", u"<!DOCTYPE a [<!ENTITY c ''>]><a>⟦&b;⟧</a>",
     u"<!DOCTYPE a SYSTEM 'c'><a>&b;</a>"},
    {"4.1", "Entity Declared", u"<?xml version='1.0' standalone='yes'?><!DOCTYPE a SYSTEM 'c'><a>⟦&b;⟧</a>",
     u"<?xml version='1.0' standalone='no'?><!DOCTYPE a SYSTEM 'c'><a>&b;</a>"},
    {"4.1", "Entity Declared",
     u"<?xml version='1.0' standalone='yes'?><!DOCTYPE a [<!ENTITY % p \"<!ENTITY b ''>\">%p;]><a>⟦&b;⟧</a>",
     u"<!DOCTYPE a [<!ENTITY % p \"<!ENTITY b ''>\">%p;]><a>&b;</a>"},
    {"4.1", "Entity Declared", u"<!DOCTYPE a [<!ATTLIST a b CDATA '⟦&c;⟧'><!ENTITY c ''>]><a/>",
     u"<!DOCTYPE a [<!ENTITY c ''><!ATTLIST a b CDATA '&c;'>]><a/>"},
    {"4.1", "Entity Declared", u"<!DOCTYPE a [<!ENTITY % p SYSTEM 'p'>⟦%q;⟧]><a/>",
     u"<!DOCTYPE a [<!ENTITY % p SYSTEM 'p'>%p;]><a/>", By::warning},
    {"4.1", "Parsed Entity", u"<!DOCTYPE a [<!ENTITY b SYSTEM 'c' NDATA d>]><a>⟦&b;⟧</a>",
     u"<!DOCTYPE a [<!ENTITY b SYSTEM 'c'>]><a>&b;</a>"},
    {"4.1", "No Recursion", u"<!DOCTYPE a [<!ENTITY b '&b;'>]><a>⟦&b;⟧</a>",
     u"<!DOCTYPE a [<!ENTITY b '<!--&b;-->'>]><a>&b;</a>"},
    {"4.1", "No Recursion", u"<!DOCTYPE a [<!ENTITY b '<c d=\"&e;\"/>'><!ENTITY e '&#38;b;'>]><a>⟦&b;⟧</a>",
     u"<!DOCTYPE a [<!ENTITY b '<c d=\"&e;\"/>'><!ENTITY e '&#38;amp;'>]><a>&b;</a>"},
    {"4.1", "No Recursion", u"<!DOCTYPE a [<!ENTITY % b '&#37;b;'>⟦%b;⟧]><a/>",
     u"<!DOCTYPE a [<!ENTITY % b '&#37;c;'><!ENTITY % c ''>%b;]><a/>"},
    {"4.2", "EntityDecl [70]", u"<!DOCTYPE a [<!ENTITY ⟦'⟧c'>]><a/>", u"<!DOCTYPE a [<!ENTITY b 'c' >]><a/>"},
    {"4.2", "EntityDecl [70]", u"<!DOCTYPE a [<!ENTITY b⟦'⟧c'>]><a/>",
     u"<!DOCTYPE a [<!ENTITY b 'c' >]><a/>"},
    {"4.2", "EntityDecl [70]", u"<!DOCTYPE a [<!ENTITY b 'c' ⟦d⟧>]><a/>",
     u"<!DOCTYPE a [<!ENTITY b 'c' >]><a/>"},
    {"4.2", "EntityDecl [70]", u"<!DOCTYPE a [<!ENTITY % b SYSTEM 'c' ⟦N⟧DATA d>]><a/>",
     u"<!DOCTYPE a [<!ENTITY b SYSTEM 'c' NDATA d>]><a/>"},
    {"4.2", "EntityDecl [70]", u"<!DOCTYPE a [<!ENTITY b SYSTEM 'c'⟦N⟧DATA d>]><a/>",
     u"<!DOCTYPE a [<!ENTITY b SYSTEM 'c' NDATA d>]><a/>"},
    {"4.2.2", "ExternalID [75]", u"<!DOCTYPE a PUBLIC 'b'⟦>⟧<a/>", u"<!DOCTYPE a PUBLIC 'b' 'c'><a/>"},
    {"4.2.2", "ExternalID [75]", u"<!DOCTYPE a PUBLIC 'b'⟦'⟧c'><a/>", u"<!DOCTYPE a PUBLIC 'b' 'c'><a/>"},
    {"4.2.2", "ExternalID [75]", u"<!DOCTYPE a ⟦b⟧><a/>", u"<!DOCTYPE a SYSTEM 'b'><a/>"},
    {"4.2.2", "ExternalID [75]", u"<!DOCTYPE a [<!ENTITY b SYSTEM ⟦c⟧>]><a/>",
     u"<!DOCTYPE a [<!ENTITY b SYSTEM 'c'>]><a/>"},
    {"4.3.2", "Well-Formed Parsed Entities", u"<!DOCTYPE a [<!ENTITY b '<c>'>]><a>⟦&b;⟧</a>",
     u"<!DOCTYPE a [<!ENTITY b '<c>'>]><a/>"},
    {"4.3.2", "Well-Formed Parsed Entities",
     u"<!DOCTYPE a [<!ENTITY b '&#60;'><!ENTITY c '&b;'>]><a>⟦&c;⟧</a>",
     u"<!DOCTYPE a [<!ENTITY b '&#38;#60;'><!ENTITY c '&b;'>]><a>&c;</a>"},
    {"4.3.2", "Well-Formed Parsed Entities", u"<!DOCTYPE a [<!ENTITY b '&#38;'>]><a>⟦&b;⟧</a>",
     u"<!DOCTYPE a [<!ENTITY b '&#38;#38;'>]><a>&b;</a>"},
    {"4.3.2", "Well-Formed Parsed Entities", u"<!DOCTYPE a [<!ENTITY b ']]>'>]><a>⟦&b;⟧</a>",
     u"<!DOCTYPE a [<!ENTITY b ']]>'>]><a c='&b;'/>"},
    {"4.3.2", "Well-Formed Parsed Entities",
     u"<!DOCTYPE a [<!ENTITY b '<?xml version=\"1.0\"?>'>]><a>⟦&b;⟧</a>",
     u"<!DOCTYPE a [<!ENTITY b '<?c?>d<e/><f>g</f>'>]><a>&b;</a>"},
    {"4.3.2", "Well-Formed Parsed Entities", u"<!DOCTYPE a [<!ENTITY b '&c;'>]><a>⟦&b;⟧</a>",
     u"<!DOCTYPE a [<!ENTITY b '&c;'><!ENTITY c ''>]><a>&b;</a>"},
    {"4.3.3", "EncodingDecl [80]", u"<?xml version='1.0' encoding='⟦8859⟧'?><a/>",
     u"<?xml version='1.0' encoding='x-a_b.1'?><a/>"},
    {"4.6", "Predefined Entities", u"<!DOCTYPE a [<!ENTITY ⟦lt⟧ '&#60;'>]><a/>",
     u"<!DOCTYPE a [<!ENTITY lt '&#38;#x3C;'><!ENTITY gt '>'><!ENTITY apos \"&#39;\">]><a/>", By::warning},
    {"4.7", "NotationDecl [82]", u"<!DOCTYPE a [<!NOTATION b⟦>⟧]><a/>",
     u"<!DOCTYPE a [<!NOTATION b PUBLIC 'c'><!NOTATION d PUBLIC 'c' 'e'><!NOTATION f SYSTEM 'g'>]><a/>"},
};

const Row namespaceRows[] = {
    {"3", "Reserved Prefixes and Namespace Names", u"<a ⟦xmlns:xml⟧='b'/>",
     u"<a xmlns:xml='http://www.w3.org/XML/1998/namespace' xml:b=''/>"},
    {"3", "Reserved Prefixes and Namespace Names", u"<a xmlns:b='⟦http://www.w3.org/XML/1998/namespace⟧'/>",
     u"<a xmlns:b='http://www.w3.org/XML/1998'/>"},
    {"3", "Reserved Prefixes and Namespace Names", u"<a xmlns='⟦http://www.w3.org/XML/1998/namespace⟧'/>",
     u"<a xmlns='http://www.w3.org/XML/1998'/>"},
    {"3", "Reserved Prefixes and Namespace Names", u"<a ⟦xmlns:xmlns⟧='http://www.w3.org/2000/xmlns/'/>",
     u"<a xmlns:xmln='http://www.w3.org/2000/xmln/'/>"},
    {"3", "Reserved Prefixes and Namespace Names", u"<a xmlns:b='⟦http://www.w3.org/2000&#47;xmlns/⟧'/>",
     u"<a xmlns:b='http://www.w3.org/2000&#47;xmln'/>"},
    {"3", "Reserved Prefixes and Namespace Names", u"<⟦xmlns⟧:a/>", u"<xmln:a xmlns:xmln='b'/>"},
    {"4", "QName [7]", u"<a⟦:⟧/>", u"<a:b xmlns:a='c'/>"},
    {"4", "QName [7]", u"<⟦:⟧a/>", u"<a/>"},
    {"4", "QName [7]", u"<a b:c⟦:⟧d='' xmlns:b='e'/>", u"<a b:c='' xmlns:b='e'/>"},
    {"4", "QName [7]", u"<a b:⟦1⟧='' xmlns:b='e'/>", u"<a b:c1='' xmlns:b='e'/>"},
    {"4", "QName [7]", u"<!DOCTYPE a [<!ELEMENT b⟦:⟧ ANY>]><a/>", u"<!DOCTYPE a [<!ELEMENT b:c ANY>]><a/>"},
    {"4", "QName [7]", u"<!DOCTYPE a [<!ATTLIST b ⟦:⟧c CDATA ''>]><a/>",
     u"<!DOCTYPE a [<!ATTLIST b b:c CDATA ''>]><a/>"},
    {"5", "Prefix Declared", u"<⟦a⟧:b/>", u"<a:b xmlns:a='c'/>"},
    {"5", "Prefix Declared", u"<a><b xmlns:c='d'/><b ⟦c⟧:e=''/></a>", u"<a xmlns:c='d'><b/><b c:e=''/></a>"},
    {"5", "Prefix Declared", u"<!DOCTYPE a [<!ATTLIST b xmlns:c CDATA 'd'>]><a ⟦c⟧:e=''/>",
     u"<!DOCTYPE a [<!ATTLIST a xmlns:c CDATA 'd'>]><a c:e=''/>"},
    {"5", "Prefix Declared", u"<!DOCTYPE a [<!ATTLIST a ⟦c⟧:d CDATA 'd'>]><a/>",
     u"<!DOCTYPE a [<!ATTLIST a c:d CDATA 'd'>]><a xmlns:c='e'/>"},
    {"5", "Prefix Declared", u"<!DOCTYPE a SYSTEM 'b'><⟦a⟧:b/>", u"<!DOCTYPE a SYSTEM 'b'><a:b xmlns:a='c'/>",
     By::warning},
    {"5", "No Prefix Undeclaring", u"<a ⟦xmlns:b=''⟧/>", u"<a xmlns=''/>"},
    {"6.3", "Attributes Unique", u"<a xmlns:b='d' xmlns:c='d' b:e='' ⟦c:e⟧=''/>",
     u"<a xmlns:b='d' xmlns:c='D' b:e='' c:e='' e=''/>"},
    {"6.3", "Attributes Unique", u"<a xmlns:b='d&#32;' xmlns:c='d\n' b:e='' ⟦c:e⟧=''/>",
     u"<a xmlns:b='d' xmlns:c='d ' b:e='' c:e=''/>"},
    {"7", "Conformance of Documents", u"<?a⟦:⟧b?><a/>", u"<?a b:?><a/>"},
    {"7", "Conformance of Documents", u"<!DOCTYPE a [<!ENTITY b⟦:⟧c ''>]><a/>",
     u"<!DOCTYPE a [<!ENTITY b 'c:'>]><a/>"},
    {"7", "Conformance of Documents", u"<!DOCTYPE a SYSTEM 'b'><a>&c⟦:⟧d;</a>",
     u"<!DOCTYPE a SYSTEM 'b'><a>&cd;</a>"},
    {"7", "Conformance of Documents", u"<!DOCTYPE a SYSTEM 'b' [%c⟦:⟧d;]><a/>",
     u"<!DOCTYPE a SYSTEM 'b' [%cd;]><a/>"},
    {"7", "Conformance of Documents", u"<!DOCTYPE a [<!NOTATION b⟦:⟧c SYSTEM ''>]><a/>",
     u"<!DOCTYPE a [<!NOTATION b SYSTEM 'c:'>]><a/>"},
    {"7", "Conformance of Documents", u"<!DOCTYPE a [<?b⟦:⟧c?>]><a/>", u"<!DOCTYPE a [<?b c:?>]><a/>"},
};

void checkViolating(const Row& row) {
    const MarkedRange marked(row.violating);
    const CheckedText checked(marked.text);
    ASSERT_FALSE(checked.ranges().empty());
    EXPECT_EQ(checked.ranges().front(), marked.range) << checked.description();
    if (row.by == By::parser) {
        EXPECT_TRUE(checked.tree.hasErrors()) << checked.description();
        return;
    }
    EXPECT_EQ(checked.ranges().size(), 1) << checked.description();
    EXPECT_EQ(checked.findings.violations.size(), 1) << checked.description();
    for (const Violation& violation : checked.findings.violations) {
        const ConstraintSource source = sourceOf(violation.constraint());
        EXPECT_EQ(source.section, row.section);
        EXPECT_EQ(source.name, row.name);
        EXPECT_EQ(violation.severity() == Diagnostic::Severity::warning, row.by == By::warning);
    }
}

void check(const Row& row) {
    SCOPED_TRACE(std::string(row.section) + " " + std::string(row.name));
    {
        SCOPED_TRACE("violating: " + testing::PrintToString(row.violating));
        checkViolating(row);
    }
    SCOPED_TRACE("conforming: " + testing::PrintToString(row.conforming));
    const CheckedText conforming(row.conforming);
    EXPECT_EQ(conforming.description(), "");
}

TEST(Constraints, OfXMLAreHeldWhereTheyAreViolated) {
    for (const Row& row : xmlRows) {
        check(row);
    }
}

TEST(Constraints, OfNamespacesAreHeldWhereTheyAreViolated) {
    for (const Row& row : namespaceRows) {
        check(row);
    }
}

TEST(Constraints, AllHaveARow) {
    std::set<std::string_view> names;
    for (const Row& row : xmlRows) {
        names.insert(row.name);
    }
    for (const Row& row : namespaceRows) {
        names.insert(row.name);
    }
    for (int constraint = 0; constraint <= static_cast<int>(Constraint::conformance); ++constraint) {
        const ConstraintSource source = sourceOf(static_cast<Constraint>(constraint));
        EXPECT_TRUE(names.contains(source.name)) << source.name;
    }
}

} // namespace
