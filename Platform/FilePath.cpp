#include "FilePath.h"

#include <QDir>
#include <QStringDecoder>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <optional>

#include <sys/stat.h>
#include <unistd.h>

namespace {

/// Stands for byte 0, which no path has: what a URL makes of it is not found.
constexpr char16_t firstByte = 0xDC00;

constexpr bool isLoneByte(char16_t unit) { return unit >= firstByte + 0x80 && unit <= firstByte + 0xFF; }

/// Whether the unit at `at` is the second one of a pair.
bool endsPair(const QString& path, qsizetype at) {
    return at > 0 && path.at(at - 1).isHighSurrogate() && path.at(at).isLowSurrogate();
}

bool isLoneByteAt(const QString& path, qsizetype at) {
    return isLoneByte(path.at(at).unicode()) && !endsPair(path, at);
}

/// The string of `bytes`; nothing where they are not UTF-8.
std::optional<QString> decoded(QByteArrayView bytes) {
    // A byte-order mark is a character of the name.
    QStringDecoder decoder(QStringDecoder::Utf8,
                           QStringDecoder::Flag::Stateless | QStringDecoder::Flag::ConvertInitialBom);
    const QString string = decoder(bytes);
    return decoder.hasError() ? std::nullopt : std::optional(string);
}

/// The character whose sequence begins `bytes`; nothing where no legal one does.
std::optional<QString> firstCharacter(QByteArrayView bytes) {
    constexpr qsizetype longest = 4;
    for (qsizetype length = 1; length <= std::min(longest, bytes.size()); ++length) {
        if (auto character = decoded(bytes.first(length)); character && !character->isEmpty()) {
            return character;
        }
    }
    return std::nullopt;
}

bool hasMode(const QString& path, mode_t kind) {
    struct stat status {};
    return stat(FilePath::bytes(path).constData(), &status) == 0 && (status.st_mode & S_IFMT) == kind;
}

} // namespace

QString FilePath::of(const QByteArray& bytes) {
    if (auto whole = decoded(bytes)) {
        return whole->replace(QChar(u'\0'), QChar(firstByte));
    }
    QString path;
    for (QByteArrayView rest = bytes; !rest.isEmpty();) {
        const auto character = firstCharacter(rest);
        path +=
            character.value_or(QChar(static_cast<char16_t>(firstByte + static_cast<uchar>(rest.front()))));
        rest = rest.sliced(character ? character->toUtf8().size() : 1);
    }
    return path.replace(QChar(u'\0'), QChar(firstByte));
}

QByteArray FilePath::bytes(const QString& path) {
    QByteArray bytes;
    qsizetype from = 0;
    for (qsizetype at = 0; at < path.size(); ++at) {
        if (isLoneByteAt(path, at)) {
            bytes += QStringView(path).sliced(from, at - from).toUtf8();
            bytes += static_cast<char>(path.at(at).unicode() - firstByte);
            from = at + 1;
        }
    }
    return bytes + QStringView(path).sliced(from).toUtf8();
}

QString FilePath::of(const QUrl& url) {
    if (!url.isLocalFile()) {
        return {};
    }
    return of(QByteArray::fromPercentEncoding(url.path(QUrl::FullyEncoded).toLatin1()));
}

QUrl FilePath::url(const QString& path) {
    return QUrl::fromEncoded("file://" + bytes(path).toPercentEncoding("/"));
}

QString FilePath::absolute(const QString& path) {
    if (path.isEmpty() || path.startsWith(u'/')) {
        return QDir::cleanPath(path);
    }
    const std::unique_ptr<char, decltype(&std::free)> folder(getcwd(nullptr, 0), &std::free);
    return QDir::cleanPath((folder ? of(QByteArray(folder.get())) : QString()) + u'/' + path);
}

QString FilePath::canonical(const QString& path) {
    const std::unique_ptr<char, decltype(&std::free)> found(realpath(bytes(path).constData(), nullptr),
                                                            &std::free);
    return found ? of(QByteArray(found.get())) : absolute(path);
}

bool FilePath::isUnicode(const QString& path) {
    for (qsizetype at = 0; at < path.size(); ++at) {
        if (isLoneByteAt(path, at)) {
            return false;
        }
    }
    return true;
}

bool FilePath::isRegularFile(const QString& path) { return hasMode(path, S_IFREG); }

bool FilePath::isFolder(const QString& path) { return hasMode(path, S_IFDIR); }
