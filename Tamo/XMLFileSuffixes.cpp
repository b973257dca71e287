#include "XMLFileSuffixes.h"

const QStringList& XMLFileSuffixes::all() {
    static const QStringList suffixes =
        QStringLiteral("xml xsd xsl xslt rng sch xhtml xht svg rss atom rdf owl opml plist gpx kml gml tcx "
                       "opf ncx wsdl wadl xmi pom "
                       "csproj vcxproj props targets xaml resx config nuspec xlf xliff tmx tei dita ditamap "
                       "dbk docbook fodt fods "
                       "fodp mml smil xspf musicxml xul jnlp gir glade ui qrc xbrl")
            .split(u' ');
    return suffixes;
}
