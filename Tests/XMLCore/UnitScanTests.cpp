#include "UnitScan.h"

#include "Random.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

namespace {

using UnitScan::Position;

/// Units that start at offset `from` of a storage and end where it ends, so that a sanitizer detects every
/// read beyond them. The units before `from` are outside every search.
class Units {
public:
    Units(std::u16string_view units, std::size_t from, char16_t before = 0)
        : m_storage(std::make_unique<char16_t[]>(from + units.size())), m_from(static_cast<Position>(from)),
          m_end(m_from + static_cast<Position>(units.size())) {
        std::fill_n(m_storage.get(), from, before);
        std::ranges::copy(units, m_storage.get() + from);
    }

    const char16_t* units() const { return m_storage.get(); }
    const char16_t* begin() const { return m_storage.get() + m_from; }
    Position from() const { return m_from; }
    Position end() const { return m_end; }

private:
    std::unique_ptr<char16_t[]> m_storage;
    Position m_from;
    Position m_end;
};

constexpr std::size_t alignments = 8;
constexpr std::size_t longest = 27;

/// Checks that `scan` returns the same as `plain`, a function from a text to a position, for every position
/// of `needle` in every length of `filler` at every alignment.
template <class Scan, class Plain>
void checkEverywhere(char16_t filler, char16_t needle, Scan scan, Plain plain) {
    for (std::size_t length = 0; length <= longest; ++length) {
        for (std::size_t place = 0; place <= length; ++place) {
            std::u16string text(length, filler);
            if (place < length) {
                text[place] = needle;
            }
            const std::size_t expected = plain(text);
            for (std::size_t alignment = 0; alignment < alignments; ++alignment) {
                const Units units(text, alignment, needle);
                ASSERT_EQ(scan(units.units(), units.from(), units.end()) - units.from(), expected)
                    << ::testing::PrintToString(text) << " at " << alignment;
            }
        }
    }
}

Position findNameEnd(const char16_t* units, Position from, Position end) {
    return UnitScan::findNameEnd(units, from, end);
}

Position findNonWhitespace(const char16_t* units, Position from, Position end) {
    return UnitScan::findNonWhitespace(units, from, end);
}

std::size_t orEnd(std::size_t position, std::u16string_view text) { return std::min(position, text.size()); }

bool plainIsNameStart(int unit) {
    return ('a' <= unit && unit <= 'z') || ('A' <= unit && unit <= 'Z') || unit == ':' || unit == '_' ||
           unit >= 128;
}

bool plainIsName(int unit) {
    return plainIsNameStart(unit) || ('0' <= unit && unit <= '9') || unit == '-' || unit == '.';
}

bool plainIsWhitespace(int unit) { return unit == ' ' || unit == '\t' || unit == '\n' || unit == '\r'; }

template <std::size_t size>
std::size_t plainAfter(std::u16string_view text, const char16_t (&terminator)[size]) {
    const std::size_t at = text.find(terminator);
    return at == std::u16string_view::npos ? text.size() : at + size - 1;
}

template <std::size_t size>
void checkFindAfter(std::u16string_view text, const char16_t (&terminator)[size], std::size_t alignment) {
    const Units units(text, alignment);
    ASSERT_EQ(UnitScan::findAfter(units.units(), units.from(), units.end(), terminator) - units.from(),
              plainAfter(text, terminator))
        << ::testing::PrintToString(text) << " at " << alignment;
}

} // namespace

TEST(UnitScan, ClassifiesEveryUnit) {
    for (int unit = 0; unit <= 0xFFFF; ++unit) {
        const auto value = static_cast<char16_t>(unit);
        ASSERT_EQ(UnitScan::isNameStart(value), plainIsNameStart(unit)) << unit;
        ASSERT_EQ(UnitScan::isName(value), plainIsName(unit)) << unit;
        ASSERT_EQ(UnitScan::isWhitespace(value), plainIsWhitespace(unit)) << unit;
    }
}

TEST(UnitScan, FindsWantedUnits) {
    const auto find = [](const char16_t* units, Position from, Position end) {
        return UnitScan::findAny(units, from, end, u'<', u'&', char16_t{0xFF3C});
    };
    const auto plain = [](const std::u16string& text) {
        return orEnd(text.find_first_of(u"<&\uFF3C"), text);
    };
    // Units that share one byte with a wanted unit do not match.
    for (const char16_t needle : {u'<', u'&', u'\uFF3C', u'\u013C', u'\u3C00', u'=', u'\0'}) {
        checkEverywhere(u'a', needle, find, plain);
        checkEverywhere(u'\uFF26', needle, find, plain);
    }
}

TEST(UnitScan, FindsOneUnit) {
    const auto find = [](const char16_t* units, Position from, Position end) {
        return UnitScan::findAny(units, from, end, u'\n');
    };
    const auto plain = [](const std::u16string& text) { return orEnd(text.find(u'\n'), text); };
    checkEverywhere(u' ', u'\n', find, plain);
    checkEverywhere(u'\u0A0A', u'\n', find, plain);
    checkEverywhere(u'\n', u'a', find, plain);
}

TEST(UnitScan, FindsTheEndOfNames) {
    const auto plain = [](const std::u16string& text) {
        return static_cast<std::size_t>(std::ranges::find_if_not(text, plainIsName) - text.begin());
    };
    for (const char16_t needle : {u' ', u'>', u'/', u'=', u'\0', u'\u007F', u'\u0080', u'-', u'.', u'9'}) {
        checkEverywhere(u'a', needle, findNameEnd, plain);
        checkEverywhere(char16_t{0xD83D}, needle, findNameEnd, plain);
    }
}

TEST(UnitScan, FindsTheEndOfWhitespace) {
    const auto plain = [](const std::u16string& text) {
        return static_cast<std::size_t>(std::ranges::find_if_not(text, plainIsWhitespace) - text.begin());
    };
    for (const char16_t needle : {u'a', u'<', u'\0', u'\v', u'\u0120', u'\u2000', u'\u00A0', u'\t', u'\r'}) {
        checkEverywhere(u' ', needle, findNonWhitespace, plain);
        checkEverywhere(u'\n', needle, findNonWhitespace, plain);
    }
}

TEST(UnitScan, JudgesEveryUnitAlikeInEveryLane) {
    for (int unit = 0; unit <= 0xFFFF; ++unit) {
        for (std::size_t lane = 0; lane < UnitVector::lanes; ++lane) {
            std::u16string name(UnitVector::lanes, u'a');
            name[lane] = static_cast<char16_t>(unit);
            ASSERT_EQ(findNameEnd(name.data(), 0, UnitVector::lanes), plainIsName(unit) ? name.size() : lane)
                << unit;
            std::u16string space(UnitVector::lanes, u' ');
            space[lane] = static_cast<char16_t>(unit);
            ASSERT_EQ(findNonWhitespace(space.data(), 0, UnitVector::lanes),
                      plainIsWhitespace(unit) ? space.size() : lane)
                << unit;
        }
    }
}

TEST(UnitScan, FindsWholeTerminators) {
    for (std::size_t length = 0; length <= longest; ++length) {
        for (std::size_t place = 0; place <= length; ++place) {
            for (std::size_t alignment = 0; alignment < alignments; ++alignment) {
                // Terminators that do not fit are cut off at the end of the text.
                const auto textWith = [&](std::u16string_view terminator) {
                    return (std::u16string(place, u'x').append(terminator) + std::u16string(length, u'-'))
                        .substr(0, length);
                };
                checkFindAfter(textWith(u"-->"), u"-->", alignment);
                checkFindAfter(textWith(u"--->"), u"-->", alignment);
                checkFindAfter(textWith(u"?>"), u"?>", alignment);
                checkFindAfter(textWith(u"?\?>"), u"?>", alignment);
                checkFindAfter(textWith(u"]]>"), u"]]>", alignment);
            }
        }
    }
}

TEST(UnitScan, FindsTheFirstOfManyTerminators) {
    constexpr char32_t alphabet[] = {U'-', U'-', U'>', U'?', U']', U']', U'x'};
    Random random;
    for (int round = 0; round < 20'000; ++round) {
        const std::u16string text = random.text(alphabet, 40);
        const std::size_t alignment = random.below(alignments);
        checkFindAfter(text, u"-->", alignment);
        checkFindAfter(text, u"]]>", alignment);
        checkFindAfter(text, u"?>", alignment);
        checkFindAfter(text, u"--", alignment);
    }
}

TEST(UnitScan, ComparesSoManyUnits) {
    for (std::size_t readable = 0; readable <= longest; ++readable) {
        for (std::size_t count = 0; count <= readable; ++count) {
            for (std::size_t place = 0; place <= readable; ++place) {
                std::u16string text(readable, u'a');
                const Units first(text, place % alignments);
                if (place < readable) {
                    text[place] = u'\u0161';
                }
                const Units second(text, count % alignments);
                ASSERT_EQ(UnitScan::areEqual(first.begin(), second.begin(),
                                             static_cast<std::ptrdiff_t>(count),
                                             static_cast<std::ptrdiff_t>(readable)),
                          place >= count)
                    << readable << ' ' << count << ' ' << place;
            }
        }
    }
}

TEST(UnitVector, ComparesUnitsWithoutSigns) {
    constexpr char16_t extremes[] = {0, 1, 0x7F, 0x80, 0x7FFF, 0x8000, 0xFFFE, 0xFFFF};
    static_assert(std::size(extremes) == UnitVector::lanes);
    const UnitVector units = UnitVector::load(extremes);
    for (const char16_t other : extremes) {
        UnitMask equal = (units == UnitVector::all(other)).mask();
        UnitMask atMost = units.atMost(UnitVector::all(other)).mask();
        UnitMask without = (units.without(UnitVector::all(other)) == UnitVector::all(0)).mask();
        UnitMask wrapped = ((units - UnitVector::all(1)) == UnitVector::all(other)).mask();
        for (int lane = 0; lane < UnitVector::lanes; ++lane) {
            const auto isFirst = [lane](UnitMask& mask) {
                const bool answer = mask.any() && mask.first() == lane;
                if (answer) {
                    mask.clearFirst();
                }
                return answer;
            };
            EXPECT_EQ(isFirst(equal), extremes[lane] == other);
            EXPECT_EQ(isFirst(atMost), extremes[lane] <= other);
            EXPECT_EQ(isFirst(without), (extremes[lane] & ~other) == 0);
            EXPECT_EQ(isFirst(wrapped), static_cast<char16_t>(extremes[lane] - 1) == other);
        }
    }
}

TEST(UnitVector, HandsOutTheLanesOfItsMasks) {
    for (int flags = 0; flags < 1 << UnitVector::lanes; ++flags) {
        char16_t units[UnitVector::lanes];
        for (int lane = 0; lane < UnitVector::lanes; ++lane) {
            units[lane] = (flags >> lane & 1) != 0 ? u'x' : u'a';
        }
        const UnitMask mask = (UnitVector::load(units) == UnitVector::all(u'x')).mask();
        const auto flagsOf = [](UnitMask rest) {
            int found = 0;
            for (; rest.any(); rest.clearFirst()) {
                found |= 1 << rest.first();
            }
            return found;
        };
        ASSERT_EQ(flagsOf(mask), flags);
        ASSERT_EQ(flagsOf(~mask), ~flags & 0xFF);
        for (int count = 0; count < UnitVector::lanes; ++count) {
            ASSERT_EQ(flagsOf(mask.firstLanes(count)), flags & ((1 << count) - 1));
        }
    }
}
