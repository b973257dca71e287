#include "HTMLEntities.h"

#include <algorithm>
#include <iterator>

namespace {

struct Entity {
    std::u16string_view name;
    char32_t scalar;
};

/// Those of HTML 4 without the ones that XML has too, sorted by name.
constexpr Entity entities[] = {
    {u"AElig", 0xC6},     {u"Aacute", 0xC1},   {u"Acirc", 0xC2},    {u"Agrave", 0xC0},   {u"Alpha", 0x391},
    {u"Aring", 0xC5},     {u"Atilde", 0xC3},   {u"Auml", 0xC4},     {u"Beta", 0x392},    {u"Ccedil", 0xC7},
    {u"Chi", 0x3A7},      {u"Dagger", 0x2021}, {u"Delta", 0x394},   {u"ETH", 0xD0},      {u"Eacute", 0xC9},
    {u"Ecirc", 0xCA},     {u"Egrave", 0xC8},   {u"Epsilon", 0x395}, {u"Eta", 0x397},     {u"Euml", 0xCB},
    {u"Gamma", 0x393},    {u"Iacute", 0xCD},   {u"Icirc", 0xCE},    {u"Igrave", 0xCC},   {u"Iota", 0x399},
    {u"Iuml", 0xCF},      {u"Kappa", 0x39A},   {u"Lambda", 0x39B},  {u"Mu", 0x39C},      {u"Ntilde", 0xD1},
    {u"Nu", 0x39D},       {u"OElig", 0x152},   {u"Oacute", 0xD3},   {u"Ocirc", 0xD4},    {u"Ograve", 0xD2},
    {u"Omega", 0x3A9},    {u"Omicron", 0x39F}, {u"Oslash", 0xD8},   {u"Otilde", 0xD5},   {u"Ouml", 0xD6},
    {u"Phi", 0x3A6},      {u"Pi", 0x3A0},      {u"Prime", 0x2033},  {u"Psi", 0x3A8},     {u"Rho", 0x3A1},
    {u"Scaron", 0x160},   {u"Sigma", 0x3A3},   {u"THORN", 0xDE},    {u"Tau", 0x3A4},     {u"Theta", 0x398},
    {u"Uacute", 0xDA},    {u"Ucirc", 0xDB},    {u"Ugrave", 0xD9},   {u"Upsilon", 0x3A5}, {u"Uuml", 0xDC},
    {u"Xi", 0x39E},       {u"Yacute", 0xDD},   {u"Yuml", 0x178},    {u"Zeta", 0x396},    {u"aacute", 0xE1},
    {u"acirc", 0xE2},     {u"acute", 0xB4},    {u"aelig", 0xE6},    {u"agrave", 0xE0},   {u"alefsym", 0x2135},
    {u"alpha", 0x3B1},    {u"and", 0x2227},    {u"ang", 0x2220},    {u"aring", 0xE5},    {u"asymp", 0x2248},
    {u"atilde", 0xE3},    {u"auml", 0xE4},     {u"bdquo", 0x201E},  {u"beta", 0x3B2},    {u"brvbar", 0xA6},
    {u"bull", 0x2022},    {u"cap", 0x2229},    {u"ccedil", 0xE7},   {u"cedil", 0xB8},    {u"cent", 0xA2},
    {u"chi", 0x3C7},      {u"circ", 0x2C6},    {u"clubs", 0x2663},  {u"cong", 0x2245},   {u"copy", 0xA9},
    {u"crarr", 0x21B5},   {u"cup", 0x222A},    {u"curren", 0xA4},   {u"dArr", 0x21D3},   {u"dagger", 0x2020},
    {u"darr", 0x2193},    {u"deg", 0xB0},      {u"delta", 0x3B4},   {u"diams", 0x2666},  {u"divide", 0xF7},
    {u"eacute", 0xE9},    {u"ecirc", 0xEA},    {u"egrave", 0xE8},   {u"empty", 0x2205},  {u"emsp", 0x2003},
    {u"ensp", 0x2002},    {u"epsilon", 0x3B5}, {u"equiv", 0x2261},  {u"eta", 0x3B7},     {u"eth", 0xF0},
    {u"euml", 0xEB},      {u"euro", 0x20AC},   {u"exist", 0x2203},  {u"fnof", 0x192},    {u"forall", 0x2200},
    {u"frac12", 0xBD},    {u"frac14", 0xBC},   {u"frac34", 0xBE},   {u"frasl", 0x2044},  {u"gamma", 0x3B3},
    {u"ge", 0x2265},      {u"hArr", 0x21D4},   {u"harr", 0x2194},   {u"hearts", 0x2665}, {u"hellip", 0x2026},
    {u"iacute", 0xED},    {u"icirc", 0xEE},    {u"iexcl", 0xA1},    {u"igrave", 0xEC},   {u"image", 0x2111},
    {u"infin", 0x221E},   {u"int", 0x222B},    {u"iota", 0x3B9},    {u"iquest", 0xBF},   {u"isin", 0x2208},
    {u"iuml", 0xEF},      {u"kappa", 0x3BA},   {u"lArr", 0x21D0},   {u"lambda", 0x3BB},  {u"lang", 0x2329},
    {u"laquo", 0xAB},     {u"larr", 0x2190},   {u"lceil", 0x2308},  {u"ldquo", 0x201C},  {u"le", 0x2264},
    {u"lfloor", 0x230A},  {u"lowast", 0x2217}, {u"loz", 0x25CA},    {u"lrm", 0x200E},    {u"lsaquo", 0x2039},
    {u"lsquo", 0x2018},   {u"macr", 0xAF},     {u"mdash", 0x2014},  {u"micro", 0xB5},    {u"middot", 0xB7},
    {u"minus", 0x2212},   {u"mu", 0x3BC},      {u"nabla", 0x2207},  {u"nbsp", 0xA0},     {u"ndash", 0x2013},
    {u"ne", 0x2260},      {u"ni", 0x220B},     {u"not", 0xAC},      {u"notin", 0x2209},  {u"nsub", 0x2284},
    {u"ntilde", 0xF1},    {u"nu", 0x3BD},      {u"oacute", 0xF3},   {u"ocirc", 0xF4},    {u"oelig", 0x153},
    {u"ograve", 0xF2},    {u"oline", 0x203E},  {u"omega", 0x3C9},   {u"omicron", 0x3BF}, {u"oplus", 0x2295},
    {u"or", 0x2228},      {u"ordf", 0xAA},     {u"ordm", 0xBA},     {u"oslash", 0xF8},   {u"otilde", 0xF5},
    {u"otimes", 0x2297},  {u"ouml", 0xF6},     {u"para", 0xB6},     {u"part", 0x2202},   {u"permil", 0x2030},
    {u"perp", 0x22A5},    {u"phi", 0x3C6},     {u"pi", 0x3C0},      {u"piv", 0x3D6},     {u"plusmn", 0xB1},
    {u"pound", 0xA3},     {u"prime", 0x2032},  {u"prod", 0x220F},   {u"prop", 0x221D},   {u"psi", 0x3C8},
    {u"rArr", 0x21D2},    {u"radic", 0x221A},  {u"rang", 0x232A},   {u"raquo", 0xBB},    {u"rarr", 0x2192},
    {u"rceil", 0x2309},   {u"rdquo", 0x201D},  {u"real", 0x211C},   {u"reg", 0xAE},      {u"rfloor", 0x230B},
    {u"rho", 0x3C1},      {u"rlm", 0x200F},    {u"rsaquo", 0x203A}, {u"rsquo", 0x2019},  {u"sbquo", 0x201A},
    {u"scaron", 0x161},   {u"sdot", 0x22C5},   {u"sect", 0xA7},     {u"shy", 0xAD},      {u"sigma", 0x3C3},
    {u"sigmaf", 0x3C2},   {u"sim", 0x223C},    {u"spades", 0x2660}, {u"sub", 0x2282},    {u"sube", 0x2286},
    {u"sum", 0x2211},     {u"sup", 0x2283},    {u"sup1", 0xB9},     {u"sup2", 0xB2},     {u"sup3", 0xB3},
    {u"supe", 0x2287},    {u"szlig", 0xDF},    {u"tau", 0x3C4},     {u"there4", 0x2234}, {u"theta", 0x3B8},
    {u"thetasym", 0x3D1}, {u"thinsp", 0x2009}, {u"thorn", 0xFE},    {u"tilde", 0x2DC},   {u"times", 0xD7},
    {u"trade", 0x2122},   {u"uArr", 0x21D1},   {u"uacute", 0xFA},   {u"uarr", 0x2191},   {u"ucirc", 0xFB},
    {u"ugrave", 0xF9},    {u"uml", 0xA8},      {u"upsih", 0x3D2},   {u"upsilon", 0x3C5}, {u"uuml", 0xFC},
    {u"weierp", 0x2118},  {u"xi", 0x3BE},      {u"yacute", 0xFD},   {u"yen", 0xA5},      {u"yuml", 0xFF},
    {u"zeta", 0x3B6},     {u"zwj", 0x200D},    {u"zwnj", 0x200C},
};
static_assert(std::ranges::is_sorted(entities, {}, &Entity::name));

} // namespace

std::optional<char32_t> HTMLEntities::scalar(std::u16string_view name) {
    const Entity* const found = std::ranges::lower_bound(entities, name, {}, &Entity::name);
    return found != std::end(entities) && found->name == name ? std::optional(found->scalar) : std::nullopt;
}
