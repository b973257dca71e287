#include "WellKnownNamespaces.h"

#include <algorithm>
#include <iterator>

namespace {

struct Entry {
    std::u16string_view prefix;
    std::u16string_view name;
};

/// Sorted by prefix.
constexpr Entry entries[] = {
    {u"atom", u"http://www.w3.org/2005/Atom"},
    {u"cc", u"http://creativecommons.org/ns#"},
    {u"content", u"http://purl.org/rss/1.0/modules/content/"},
    {u"dc", u"http://purl.org/dc/elements/1.1/"},
    {u"dcterms", u"http://purl.org/dc/terms/"},
    {u"ds", u"http://www.w3.org/2000/09/xmldsig#"},
    {u"fo", u"http://www.w3.org/1999/XSL/Format"},
    {u"foaf", u"http://xmlns.com/foaf/0.1/"},
    {u"gml", u"http://www.opengis.net/gml"},
    {u"html", u"http://www.w3.org/1999/xhtml"},
    {u"inkscape", u"http://www.inkscape.org/namespaces/inkscape"},
    {u"its", u"http://www.w3.org/2005/11/its"},
    {u"itunes", u"http://www.itunes.com/dtds/podcast-1.0.dtd"},
    {u"m", u"http://www.w3.org/1998/Math/MathML"},
    {u"mathml", u"http://www.w3.org/1998/Math/MathML"},
    {u"media", u"http://search.yahoo.com/mrss/"},
    {u"owl", u"http://www.w3.org/2002/07/owl#"},
    {u"rdf", u"http://www.w3.org/1999/02/22-rdf-syntax-ns#"},
    {u"rdfs", u"http://www.w3.org/2000/01/rdf-schema#"},
    {u"sch", u"http://purl.oclc.org/dsdl/schematron"},
    {u"sodipodi", u"http://sodipodi.sourceforge.net/DTD/sodipodi-0.dtd"},
    {u"svg", u"http://www.w3.org/2000/svg"},
    {u"sy", u"http://purl.org/rss/1.0/modules/syndication/"},
    {u"tei", u"http://www.tei-c.org/ns/1.0"},
    {u"wsdl", u"http://schemas.xmlsoap.org/wsdl/"},
    {u"xhtml", u"http://www.w3.org/1999/xhtml"},
    {u"xi", u"http://www.w3.org/2001/XInclude"},
    {u"xlink", u"http://www.w3.org/1999/xlink"},
    {u"xs", u"http://www.w3.org/2001/XMLSchema"},
    {u"xsd", u"http://www.w3.org/2001/XMLSchema"},
    {u"xsi", u"http://www.w3.org/2001/XMLSchema-instance"},
    {u"xsl", u"http://www.w3.org/1999/XSL/Transform"},
};
static_assert(std::ranges::is_sorted(entries, {}, &Entry::prefix));

} // namespace

std::u16string_view WellKnownNamespaces::name(std::u16string_view prefix) {
    const Entry* const found = std::ranges::lower_bound(entries, prefix, {}, &Entry::prefix);
    return found != std::end(entries) && found->prefix == prefix ? found->name : std::u16string_view();
}
