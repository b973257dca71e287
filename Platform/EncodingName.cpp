#include "EncodingName.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <set>
#include <string_view>

#include <unicode/ucnv.h>

namespace {

struct Name {
    std::string_view converter;
    const char* spanish;
};

constexpr std::array names{
    Name{"UTF-8", "Unicode (UTF-8)"},
    Name{"UTF-16", "Unicode (UTF-16)"},
    Name{"UTF-16LE", "Unicode (UTF-16 little-endian)"},
    Name{"UTF-16BE", "Unicode (UTF-16 big-endian)"},
    Name{"UTF-32LE", "Unicode (UTF-32 little-endian)"},
    Name{"UTF-32BE", "Unicode (UTF-32 big-endian)"},
    Name{"UTF-7", "Unicode (UTF-7)"},
    Name{"IMAP-mailbox-name", "Unicode (UTF-7 de IMAP)"},
    Name{"CESU-8", "Unicode (CESU-8)"},
    Name{"SCSU", "Unicode (SCSU)"},
    Name{"BOCU-1", "Unicode (BOCU-1)"},

    Name{"US-ASCII", "Occidental (ASCII)"},
    Name{"ISO-8859-1", "Occidental (ISO Latin 1)"},
    Name{"ibm-923_P100-1998", "Occidental (ISO Latin 9)"},
    Name{"ibm-5348_P100-1997", "Occidental (Windows Latin 1)"},
    Name{"ibm-1252_P100-2000", "Occidental (Windows Latin 1, sin euro)"},
    Name{"macos-0_2-10.2", "Occidental (Mac OS Roman)"},
    Name{"ibm-437_P100-1995", "Occidental (DOS Latin US)"},
    Name{"ibm-850_P100-1995", "Occidental (DOS Latin 1)"},
    Name{"ibm-858_P100-1997", "Occidental (DOS Latin 1 con euro)"},
    Name{"ibm-1051_P100-1995", "Occidental (HP Roman 8)"},
    Name{"ibm-860_P100-1995", "Portugués (DOS)"},
    Name{"ibm-863_P100-1995", "Francés de Canadá (DOS)"},
    Name{"ibm-861_P100-1995", "Islandés (DOS)"},
    Name{"ibm-865_P100-1995", "Nórdico (DOS)"},
    Name{"iso-8859_10-1998", "Nórdico (ISO Latin 6)"},
    Name{"iso-8859_14-1998", "Celta (ISO Latin 8)"},
    Name{"ibm-913_P100-2000", "Europeo del sur (ISO Latin 3)"},

    Name{"ibm-912_P100-1995", "Centroeuropeo (ISO Latin 2)"},
    Name{"ibm-5346_P100-1998", "Centroeuropeo (Windows Latin 2)"},
    Name{"ibm-1250_P100-1995", "Centroeuropeo (Windows Latin 2, sin euro)"},
    Name{"ibm-852_P100-1995", "Centroeuropeo (DOS Latin 2)"},
    Name{"macos-29-10.2", "Centroeuropeo (Mac OS)"},
    Name{"ibm-914_P100-1995", "Báltico (ISO Latin 4)"},
    Name{"ibm-921_P100-1995", "Báltico (ISO Latin 7)"},
    Name{"ibm-9449_P100-2002", "Báltico (Windows)"},
    Name{"ibm-775_P100-1996", "Báltico (DOS)"},

    Name{"ibm-915_P100-1995", "Cirílico (ISO 8859-5)"},
    Name{"ibm-5347_P100-1998", "Cirílico (Windows)"},
    Name{"ibm-1251_P100-1995", "Cirílico (Windows, sin euro)"},
    Name{"ibm-878_P100-1996", "Cirílico (KOI8-R)"},
    Name{"ibm-1168_P100-2002", "Ucraniano (KOI8-U)"},
    Name{"ibm-1125_P100-1997", "Ucraniano (DOS)"},
    Name{"ibm-1131_P100-1997", "Bielorruso (DOS)"},
    Name{"ibm-855_P100-1995", "Cirílico (DOS)"},
    Name{"ibm-866_P100-1995", "Ruso (DOS)"},
    Name{"macos-7_3-10.2", "Cirílico (Mac OS)"},

    Name{"ibm-9005_X110-2007", "Griego (ISO 8859-7)"},
    Name{"ibm-813_P100-1995", "Griego (ISO 8859-7 de 1987)"},
    Name{"ibm-5349_P100-1998", "Griego (Windows)"},
    Name{"ibm-737_P100-1997", "Griego (DOS 737)"},
    Name{"ibm-851_P100-1995", "Griego (DOS 851)"},
    Name{"ibm-869_P100-1995", "Griego (DOS 869)"},
    Name{"macos-6_2-10.4", "Griego (Mac OS)"},
    Name{"ibm-920_P100-1995", "Turco (ISO Latin 5)"},
    Name{"ibm-5350_P100-1998", "Turco (Windows Latin 5)"},
    Name{"ibm-857_P100-1995", "Turco (DOS)"},
    Name{"macos-35-10.2", "Turco (Mac OS)"},
    Name{"ibm-5012_P100-1999", "Hebreo (ISO 8859-8)"},
    Name{"ibm-916_P100-1995", "Hebreo (ISO 8859-8 de 1988)"},
    Name{"ibm-9447_P100-2002", "Hebreo (Windows)"},
    Name{"ibm-862_P100-1995", "Hebreo (DOS)"},
    Name{"ibm-1089_P100-1995", "Árabe (ISO 8859-6)"},
    Name{"ibm-9448_X100-2005", "Árabe (Windows)"},
    Name{"ibm-720_P100-1997", "Árabe (DOS 720)"},
    Name{"ibm-864_X110-1999", "Árabe (DOS 864)"},
    Name{"ibm-868_P100-1995", "Urdu (DOS)"},
    Name{"ibm-5354_P100-1998", "Vietnamita (Windows)"},
    Name{"iso-8859_11-2001", "Tailandés (ISO 8859-11)"},
    Name{"ibm-874_P100-1995", "Tailandés (TIS-620)"},
    Name{"windows-874-2000", "Tailandés (Windows)"},

    Name{"ibm-943_P15A-2003", "Japonés (Shift JIS)"},
    Name{"euc-jp-2007", "Japonés (EUC)"},
    Name{"ISO_2022,locale=ja,version=0", "Japonés (ISO 2022-JP)"},
    Name{"ISO_2022,locale=ja,version=1", "Japonés (ISO 2022-JP-1)"},
    Name{"ISO_2022,locale=ja,version=2", "Japonés (ISO 2022-JP-2)"},
    Name{"windows-949-2000", "Coreano (Windows)"},
    Name{"ISO_2022,locale=ko,version=0", "Coreano (ISO 2022-KR)"},
    Name{"gb18030", "Chino simplificado (GB 18030)"},
    Name{"HZ", "Chino simplificado (HZ)"},
    Name{"ISO_2022,locale=zh,version=0", "Chino (ISO 2022-CN)"},
    Name{"ISO_2022,locale=zh,version=1", "Chino (ISO 2022-CN-EXT)"},
    Name{"windows-950-2000", "Chino tradicional (Big5)"},
    Name{"ibm-1375_P100-2008", "Chino tradicional (Big5 de Hong Kong)"},
    Name{"euc-tw-2014", "Chino tradicional (EUC)"},
};

/// Where in the table each group starts, by its first converter.
struct Group {
    std::string_view first;
    const char* title;
};

constexpr std::array groups{
    Group{"UTF-8", "Unicode"},
    Group{"US-ASCII", "Europa occidental y del norte"},
    Group{"ibm-912_P100-1995", "Europa central y países bálticos"},
    Group{"ibm-915_P100-1995", "Cirílico"},
    Group{"ibm-9005_X110-2007", "Griego, turco, hebreo, árabe y del sudeste de Asia"},
    Group{"ibm-943_P15A-2003", "Japonés, coreano y chino"},
};

constexpr std::array usual{"UTF-8",        "UTF-16LE",    "UTF-16BE", "ISO-8859-1",
                           "windows-1252", "ISO-8859-15", "US-ASCII"};

EncodingGroup groupNamed(const char* title) { return {QString::fromUtf8(title), {}}; }

/// Adds the encoding `name` to `group` unless it is in `taken`.
void add(const char* name, EncodingGroup& group, std::set<std::string_view>& taken) {
    const auto encoding = StringEncoding::named(name);
    if (encoding && !encoding->isPlainUTF16() && taken.insert(encoding->converterName()).second) {
        group.encodings.push_back(*encoding);
    }
}

/// Whether documents have a name for the encoding of the converter `name`.
bool hasStandardName(const char* name) {
    UErrorCode error = U_ZERO_ERROR;
    const char* const found = ucnv_getStandardName(name, "IANA", &error);
    return U_SUCCESS(error) && found != nullptr;
}

std::vector<EncodingGroup> makeGroups() {
    std::vector<EncodingGroup> all{groupNamed("Habituales")};
    std::set<std::string_view> taken;
    for (const char* const name : usual) {
        add(name, all.front(), taken);
    }
    taken.clear();
    for (const Name& name : names) {
        const auto* const group = std::ranges::find(groups, name.converter, &Group::first);
        if (group != groups.end()) {
            all.push_back(groupNamed(group->title));
        }
        add(name.converter.data(), all.back(), taken);
    }
    all.push_back(groupNamed("Otras"));
    for (std::int32_t index = 0; index < ucnv_countAvailable(); ++index) {
        const char* const name = ucnv_getAvailableName(index);
        if (hasStandardName(name)) {
            add(name, all.back(), taken);
        }
    }
    return all;
}

} // namespace

const std::vector<EncodingGroup>& encodingGroups() {
    static const std::vector<EncodingGroup> made = makeGroups();
    return made;
}

QString localizedName(const StringEncoding& encoding) {
    const auto* const known = std::ranges::find(names, encoding.converterName(), &Name::converter);
    if (known != names.end()) {
        return QString::fromUtf8(known->spanish);
    }
    const std::string_view name = encoding.declaredName();
    return QStringLiteral("Otra codificación (%1)")
        .arg(QLatin1String(name.data(), static_cast<int>(name.size())));
}
