#include "XMLFileSuffixes.h"

#include "EditorDocument.h"

#include <gtest/gtest.h>

#include <algorithm>

TEST(XMLFileSuffixes, AreLookedForWhenOpeningAndSaving) {
    const EditorDocumentType type;
    for (const QString& filter : {type.openFilters().front(), type.saveFilters().front()}) {
        for (const auto* const suffix : {"xml", "svg", "xsd", "xsl", "xslt", "rng", "rss", "atom", "plist",
                                         "gpx", "kml", "xhtml", "opf", "wsdl", "pom"}) {
            const QString pattern = QStringLiteral("*.%1").arg(QLatin1String(suffix));
            EXPECT_TRUE(filter.contains(pattern + u' ') || filter.contains(pattern + u')'))
                << suffix << " in " << qUtf8Printable(filter);
        }
        EXPECT_TRUE(filter.contains(QStringLiteral("(*.xml "))) << "the first is that of a new file";
    }
    EXPECT_EQ(type.openFilters().back(), QStringLiteral("Todos los archivos (*)"));
    EXPECT_EQ(type.saveFilters().back(), QStringLiteral("Todos los archivos (*)"));
}

TEST(XMLFileSuffixes, AreDifferent) {
    QStringList suffixes = XMLFileSuffixes::all();
    suffixes.sort();
    EXPECT_EQ(std::ranges::adjacent_find(suffixes), suffixes.end());
}
