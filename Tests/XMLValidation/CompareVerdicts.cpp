// Compares what we say of documents, well-formed or not, with what two other processors say.
//
// usage: CompareVerdicts [--damage N] [--seed S] [--largest BYTES] [--list] FILE|FOLDER…

#include "StandardsCheck.h"
#include "TreeParser.h"
#include "UTF16.h"
#include "VerdictPeers.h"
#include "ViolationText.h"
#include "XMLDeclaration.h"

#include <iconv.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <map>
#include <random>
#include <set>
#include <string>
#include <vector>

namespace {

std::string utf8(std::u16string_view units) {
    std::string bytes;
    bytes.reserve(units.size());
    const char16_t* const end = units.data() + units.size();
    for (const char16_t* at = units.data(); at != end;) {
        const char32_t scalar = UTF16::scalarAt(at, end);
        at += UTF16::length(scalar);
        const auto add = [&](char32_t bits) { bytes.push_back(static_cast<char>(bits)); };
        if (scalar < 0x80) {
            add(scalar);
        } else if (scalar < 0x800) {
            add(0xC0 | scalar >> 6);
            add(0x80 | (scalar & 0x3F));
        } else if (scalar < 0x10000) {
            add(0xE0 | scalar >> 12);
            add(0x80 | (scalar >> 6 & 0x3F));
            add(0x80 | (scalar & 0x3F));
        } else {
            add(0xF0 | scalar >> 18);
            add(0x80 | (scalar >> 12 & 0x3F));
            add(0x80 | (scalar >> 6 & 0x3F));
            add(0x80 | (scalar & 0x3F));
        }
    }
    return bytes;
}

std::optional<std::u16string> decodedAs(const char* encoding, std::string bytes) {
    const iconv_t converter = iconv_open("UTF-16LE", encoding);
    if (converter == reinterpret_cast<iconv_t>(-1)) {
        return std::nullopt;
    }
    std::u16string text(bytes.size() + 1, u'\0');
    char* from = bytes.data();
    std::size_t left = bytes.size();
    char* to = reinterpret_cast<char*>(text.data());
    std::size_t room = text.size() * sizeof(char16_t);
    const bool isWhole =
        iconv(converter, &from, &left, &to, &room) != static_cast<std::size_t>(-1) && left == 0;
    iconv_close(converter);
    text.resize(text.size() - room / sizeof(char16_t));
    return isWhole ? std::optional(std::move(text)) : std::nullopt;
}

/// The text of a file without its byte order mark. None where it cannot be decoded, which is not ours to
/// judge.
std::optional<std::u16string> textOf(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(file), {}};
    if (bytes.starts_with("\xFF\xFE")) {
        return decodedAs("UTF-16LE", bytes.substr(2));
    }
    if (bytes.starts_with("\xFE\xFF")) {
        return decodedAs("UTF-16BE", bytes.substr(2));
    }
    const std::string plain = bytes.starts_with("\xEF\xBB\xBF") ? bytes.substr(3) : bytes;
    const std::u16string start(plain.begin(),
                               plain.begin() + std::min<std::ptrdiff_t>(std::ssize(plain), 512));
    const std::u16string_view declared = XMLDeclaration::declaredEncoding(start);
    const std::string name(declared.begin(), declared.end());
    return decodedAs(name.empty() || plain.size() != bytes.size() ? "UTF-8" : name.c_str(), plain);
}

/// What we say.
struct OurVerdict {
    bool isAccepted = true;
    std::set<long> lines; ///< Of errors and violations.
    std::string text;     ///< The first.
    std::set<Violation::Rule> rules;
    DocumentType type;
};

OurVerdict ours(const SourceText& text) {
    const DocumentTree tree = TreeParser::parse(text, {}, {}, DoctypeReading::of(text));
    OurVerdict verdict;
    Offset counted = 0;
    long line = 1;
    Offset first = 0xFFFFFFFF;
    const auto add = [&](SourceRange range, const std::u16string& message) {
        if (range.lower < counted) {
            counted = 0;
            line = 1;
        }
        line += std::count(text.units().begin() + counted, text.units().begin() + range.lower, u'\n');
        counted = range.lower;
        verdict.lines.insert(line);
        if (range.lower < first) {
            first = range.lower;
            verdict.text = std::to_string(line) + ": " + utf8(message);
        }
        verdict.isAccepted = false;
    };
    constexpr std::size_t enough = 1000;
    for (std::size_t i = 0; i < std::min(enough, tree.diagnostics.size()); ++i) {
        if (tree.diagnostics.severity(i) == Diagnostic::Severity::error) {
            add(tree.diagnostics.range(i), tree.diagnostics[i].message);
        }
    }
    StandardsCheck::Findings findings = StandardsCheck::check(tree);
    for (std::size_t i = 0; i < std::min(enough, findings.violations.size()); ++i) {
        const Violation& violation = findings.violations[i];
        verdict.rules.insert(violation.rule);
        if (violation.severity() == Diagnostic::Severity::error) {
            add(violation.range, ViolationText::message(violation, text));
        }
    }
    verdict.type = std::move(findings.type);
    return verdict;
}

#include "VerdictExceptions.inc"

class Comparison {
public:
    explicit Comparison(bool list) : m_list(list) {}

    void compare(const std::string& name, const std::u16string& units) {
        const SourceText text(units);
        const std::string bytes = utf8(units);
        const OurVerdict our = ours(text);
        const Verdict expat = VerdictPeers::expat(bytes);
        const Verdict libxml2 = VerdictPeers::libxml2(bytes);
        ++m_counts[{our.isAccepted, expat.isAccepted, libxml2.isAccepted}];
        if (!our.isAccepted && !expat.isAccepted && !libxml2.isAccepted) {
            const bool isPlaced = our.lines.contains(expat.line) || our.lines.contains(libxml2.line);
            ++m_placed[isPlaced];
            if (!isPlaced && m_list) {
                std::cout << "ELSEWHERE " << name << "\n  ours:    " << our.text
                          << "\n  expat:   " << describe(expat) << "  libxml2: " << describe(libxml2);
            }
        }
        if (our.isAccepted == expat.isAccepted && our.isAccepted == libxml2.isAccepted) {
            return;
        }
        const char* const reason = exceptionFor(our.type, our, expat, libxml2);
        if (reason != nullptr) {
            ++m_exceptions[reason];
            if (!m_list) {
                return;
            }
        } else {
            ++m_unexplained;
        }
        std::cout << (reason == nullptr ? "DIFFERENT " : "exception ") << name << '\n'
                  << "  ours:    " << (our.isAccepted ? "well-formed" : our.text) << '\n'
                  << "  expat:   " << describe(expat) << "  libxml2: " << describe(libxml2);
    }

    /// Whether all was as expected.
    bool report() const {
        std::cout << "ours     expat    libxml2  documents\n";
        const auto word = [](bool isAccepted) { return isAccepted ? "accepts  " : "refuses  "; };
        for (const auto& [verdicts, count] : m_counts) {
            std::cout << word(verdicts[0]) << word(verdicts[1]) << word(verdicts[2]) << count << '\n';
        }
        for (const auto& [reason, count] : m_exceptions) {
            std::cout << count << " exceptions: " << reason << '\n';
        }
        for (const auto& [isPlaced, count] : m_placed) {
            std::cout << count << " refused by all, "
                      << (isPlaced ? "on a line of a peer's first error\n" : "elsewhere\n");
        }
        std::cout << m_unexplained << " unexplained\n";
        return m_unexplained == 0;
    }

private:
    static std::string describe(const Verdict& verdict) {
        if (verdict.isAccepted) {
            return "well-formed\n";
        }
        std::string text =
            std::to_string(verdict.line) + ": (" + std::to_string(verdict.code) + ") " + verdict.text;
        return text.ends_with('\n') ? text : text + '\n';
    }

    bool m_list;
    std::map<std::array<bool, 3>, std::size_t> m_counts;
    std::map<bool, std::size_t> m_placed;
    std::map<std::string, std::size_t> m_exceptions;
    std::size_t m_unexplained = 0;
};

/// Damages a text at one place, as slips of typing and of programs do.
void damage(std::u16string& text, std::mt19937_64& random) {
    constexpr std::u16string_view pieces[] = {u"<",
                                              u">",
                                              u"&",
                                              u"\"",
                                              u"'",
                                              u"--",
                                              u"]]>",
                                              u"&#0;",
                                              u"&x;",
                                              u"&nbsp;",
                                              u":",
                                              u" ",
                                              u"\x01",
                                              u"=",
                                              u"/",
                                              u"<?xml ?>",
                                              u"</a>",
                                              u"<a>",
                                              u"<!DOCTYPE a>",
                                              u";",
                                              u"#",
                                              u"!",
                                              u"?",
                                              u"%",
                                              u"<!-- a -->",
                                              u"<![CDATA[",
                                              u"é",
                                              u"\xD7",
                                              u"\xFFFE",
                                              u"x:",
                                              u"xmlns:p=\"\" ",
                                              u"&#xD800;",
                                              u"<?a?>",
                                              u"<?1?>",
                                              u"\n",
                                              u"-",
                                              u"&#38;",
                                              u"[",
                                              u"]",
                                              u"a b",
                                              u"xml",
                                              u" a=\"\"",
                                              u"\xD800",
                                              u"(",
                                              u")",
                                              u"|",
                                              u"<!",
                                              u"0"};
    const auto below = [&](std::size_t limit) {
        return std::uniform_int_distribution<std::size_t>(0, limit - 1)(random);
    };
    // Half of the places are beside markup.
    std::size_t at = below(text.size());
    if (below(2) == 0) {
        at = std::min(text.find_first_of(u"<>&\"'=/?!-[]", at), text.size() - 1) + below(2);
    }
    switch (below(5)) {
    case 0:
        text.erase(at, 1);
        break;
    case 1:
        text.erase(at, 1 + below(6));
        break;
    case 2: {
        const std::size_t length = std::min(text.size() - at, 1 + below(12));
        text.insert(at, std::u16string(text, at, length));
        break;
    }
    default:
        text.insert(at, pieces[below(std::size(pieces))]);
        break;
    }
}

std::vector<std::filesystem::path> filesIn(const std::vector<std::string>& places) {
    std::vector<std::filesystem::path> files;
    for (const std::string& place : places) {
        if (!std::filesystem::is_directory(place)) {
            files.emplace_back(place);
            continue;
        }
        for (const auto& entry : std::filesystem::recursive_directory_iterator(place)) {
            if (entry.is_regular_file()) {
                files.push_back(entry.path());
            }
        }
    }
    std::ranges::sort(files);
    return files;
}

/// Whether a text claims to be XML at all.
bool looksLikeXML(std::u16string_view text) {
    const std::size_t first = text.find_first_not_of(u" \t\r\n");
    return first != std::u16string_view::npos && text[first] == u'<';
}

} // namespace

int main(int argc, char** argv) {
    std::size_t damages = 0;
    std::uint64_t seed = 1;
    std::uintmax_t largest = 1'000'000'000;
    std::uintmax_t largestDamaged = 200'000;
    bool list = false;
    std::optional<std::size_t> only;
    std::vector<std::string> places;
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        const auto number = [&] { return i + 1 < argc ? std::strtoull(argv[++i], nullptr, 10) : 0; };
        if (argument == "--damage") {
            damages = number();
        } else if (argument == "--seed") {
            seed = number();
        } else if (argument == "--largest") {
            largest = number();
        } else if (argument == "--largest-damaged") {
            largestDamaged = number();
        } else if (argument == "--show") {
            only = number();
        } else if (argument == "--list") {
            list = true;
        } else {
            places.push_back(argument);
        }
    }
    Comparison comparison(list);
    std::size_t files = 0;
    std::size_t undecoded = 0;
    for (const std::filesystem::path& path : filesIn(places)) {
        if (std::filesystem::file_size(path) > largest) {
            continue;
        }
        const auto text = textOf(path);
        if (!text) {
            ++undecoded;
            continue;
        }
        if (!looksLikeXML(*text)) {
            continue;
        }
        ++files;
        comparison.compare(path.string(), *text);
        if (text->size() > largestDamaged) {
            continue;
        }
        std::mt19937_64 random(seed + files);
        for (std::size_t round = 0; round < damages; ++round) {
            std::u16string damaged = *text;
            damage(damaged, random);
            if (!only || *only == round) {
                comparison.compare(path.string() + " damage " + std::to_string(round), damaged);
            }
            if (only == round) {
                std::cout << utf8(damaged) << '\n';
            }
        }
    }
    std::cout << files << " files, " << undecoded << " that could not be decoded\n";
    return comparison.report() && files > 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
