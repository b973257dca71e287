#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QString>

#include <optional>
#include <vector>

/// The list of recently used files that the programs of a desktop share, in the XML Bookmark Exchange
/// Language. Values only; `RecentFiles` knows the file.
namespace BookmarkList {

struct Bookmark {
    QString url;
    QString mimeType;   ///< Empty when nobody said.
    QDateTime modified; ///< When a program last had to do with it; invalid when nobody said.

    bool operator==(const Bookmark&) const = default;
};

/// What `list` holds, in its order. Of a broken list what stands before the break.
std::vector<Bookmark> read(const QByteArray& list);

/// A program that opened or saved a file.
struct Visit {
    QString url;
    QString mimeType;
    QString program;
    QString command; ///< Opens the file that stands for `%u` in it.
    QDateTime time;
};

/// `list` with the visit noted. All else, what other programs say of the same file and how it is spelt
/// included, stays as it is. An empty list is begun. Nothing for a list that is broken or that makes no
/// sense: it is left to those who may know better.
std::optional<QByteArray> noting(const Visit& visit, const QByteArray& in);

} // namespace BookmarkList
