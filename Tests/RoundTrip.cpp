#include "EncodingName.h"
#include "FileContents.h"
#include "XMLFileDocument.h"

#include <QDirIterator>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <map>
#include <string>

namespace {

/// What became of the files of one encoding.
struct Counts {
    int same = 0;    ///< Written back with the bytes that they had.
    int illegal = 0; ///< Not legal in their encoding: read as ISO Latin 1.
    int differing = 0;
};

enum class Outcome { same, illegal, differing };

Outcome roundTrip(const XMLFileDocument& document, Bytes bytes, const QString& copy) {
    if (!document.encoding().decode(bytes.subspan(document.bom().size()))) {
        return Outcome::illegal;
    }
    const bool isWritten = document.write(document.snapshot(), copy).has_value();
    const auto written = FileContents::read(copy);
    const bool isSame = isWritten && written && std::ranges::equal(written->bytes(), bytes);
    return isSame ? Outcome::same : Outcome::differing;
}

void count(Outcome outcome, Counts& counts) {
    switch (outcome) {
    case Outcome::same:
        ++counts.same;
        break;
    case Outcome::illegal:
        ++counts.illegal;
        break;
    case Outcome::differing:
        ++counts.differing;
        break;
    }
}

} // namespace

/// Opens every file below a folder and writes it, untouched, to another place. Fails unless each gets the
/// bytes that it had, where these are legal in its encoding.
int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: RoundTrip FOLDER\n");
        return 2;
    }
    const QTemporaryDir folder;
    std::map<std::string, Counts> countsByEncoding;
    int failures = 0;
    QDirIterator files(QString::fromLocal8Bit(argv[1]), QDir::Files | QDir::Hidden,
                       QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QString path = files.next();
        const auto contents = FileContents::read(path);
        const auto document = XMLFileDocument::read(path);
        if (!contents || !document) {
            std::printf("not read: %s\n", qPrintable(path));
            ++failures;
            continue;
        }
        const Outcome outcome =
            roundTrip(**document, contents->bytes(), folder.filePath(QStringLiteral("copy")));
        const std::string name = localizedName((*document)->encoding()).toStdString();
        count(outcome, countsByEncoding[name + ((*document)->bom().empty() ? "" : " (BOM)")]);
        if (outcome != Outcome::same) {
            std::printf("%s: %s\n", outcome == Outcome::illegal ? "illegal" : "differing", qPrintable(path));
        }
        failures += outcome == Outcome::differing ? 1 : 0;
    }
    for (const auto& [name, counts] : countsByEncoding) {
        std::printf("%6d same %4d illegal %4d differing  %s\n", counts.same, counts.illegal, counts.differing,
                    name.c_str());
    }
    return failures > 0 || countsByEncoding.empty() ? 1 : 0;
}
