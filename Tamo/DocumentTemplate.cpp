#include "DocumentTemplate.h"

namespace {

constexpr DocumentTemplate basic = {
    u"basic",
    u"Básico",
    u"chevron.left.forwardslash.chevron.right",
    uR"(<?xml version="1.0" encoding="UTF-8"?>
<raiz>
    <elemento atributo="valor">Texto</elemento>
</raiz>
)",
};

constexpr DocumentTemplate declarationOnly = {
    u"empty",
    u"Solo declaración",
    u"doc",
    uR"(<?xml version="1.0" encoding="UTF-8"?>
)",
};

constexpr DocumentTemplate svg = {
    u"svg",
    u"SVG",
    u"scribble.variable",
    uR"(<svg xmlns="http://www.w3.org/2000/svg" width="200" height="200" viewBox="0 0 200 200">
    <rect x="20" y="20" width="160" height="160" rx="24" fill="#4F8EF7"/>
    <circle cx="100" cy="100" r="48" fill="#FFFFFF"/>
</svg>
)",
};

constexpr DocumentTemplate propertyList = {
    u"plist",
    u"Property List",
    u"list.bullet.rectangle",
    uR"(<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE plist PUBLIC "-//Apple//DTD PLIST 1.0//EN" "http://www.apple.com/DTDs/PropertyList-1.0.dtd">
<plist version="1.0">
<dict>
    <key>Nombre</key>
    <string>Valor</string>
</dict>
</plist>
)",
};

constexpr DocumentTemplate rss = {
    u"rss",
    u"RSS",
    u"dot.radiowaves.up.forward",
    uR"(<?xml version="1.0" encoding="UTF-8"?>
<rss version="2.0">
    <channel>
        <title>Mi canal</title>
        <link>https://example.com</link>
        <description>Descripción del canal</description>
        <item>
            <title>Primera entrada</title>
            <link>https://example.com/1</link>
        </item>
    </channel>
</rss>
)",
};

constexpr DocumentTemplate all[] = {basic, declarationOnly, svg, propertyList, rss};

} // namespace

std::span<const DocumentTemplate> DocumentTemplate::catalogue() { return all; }
