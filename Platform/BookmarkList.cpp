#include "BookmarkList.h"

#include <QRegularExpression>
#include <QStringDecoder>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

#include <algorithm>
#include <functional>
#include <utility>

namespace BookmarkList {

namespace {

const QString bookmarkSpace = QStringLiteral("http://www.freedesktop.org/standards/desktop-bookmarks");
const QString mimeSpace = QStringLiteral("http://www.freedesktop.org/standards/shared-mime-info");
const QString owner = QStringLiteral("http://freedesktop.org");

/// Stretches of the text of a list, as offsets.
struct Span {
    qsizetype lower = -1;
    qsizetype upper = -1;
    bool isFound() const { return lower >= 0; }
};

/// Where in a list the pieces stand that a visit changes.
struct Places {
    Span startTag;                  ///< Of the bookmark.
    Span application;               ///< This program's element.
    int count = 0;                  ///< How often it was there before.
    qsizetype applicationsEnd = -1; ///< Before the end tags of these.
    qsizetype metadataEnd = -1;
    qsizetype infoEnd = -1;
    qsizetype bookmarkEnd = -1;
    qsizetype listEnd = -1;
    QString bookmarkPrefix; ///< What the list calls the two namespaces; empty when it does not.
    QString mimePrefix;
    bool isList = false;
};

/// Walks a list and finds the places for a visit.
class Survey {
public:
    Survey(const QString& text, const Visit& visit) : m_text(text), m_visit(visit), m_reader(text) {}

    /// Nothing when the list is broken.
    std::optional<Places> places() {
        while (!m_reader.atEnd()) {
            const auto token = m_reader.readNext();
            if (token == QXmlStreamReader::StartElement) {
                ++m_depth;
                open(tag());
            } else if (token == QXmlStreamReader::EndElement) {
                close(tag());
                --m_depth;
            }
        }
        const bool isGood = !m_reader.hasError() && m_places.isList && m_isConsistent;
        return isGood ? std::optional(m_places) : std::nullopt;
    }

private:
    /// The tag that was just read: no `<` stands inside one.
    Span tag() {
        const qsizetype end = m_reader.characterOffset();
        const Span found{end > 0 ? m_text.lastIndexOf(u'<', end - 1) : -1, end};
        m_isConsistent = m_isConsistent && found.isFound() && m_text.at(end - 1) == u'>';
        return found;
    }

    bool isPlain(QLatin1String name) const {
        return m_reader.namespaceUri().isEmpty() && m_reader.name() == name;
    }

    bool isOfBookmark(QLatin1String name) const {
        return m_reader.namespaceUri() == bookmarkSpace && m_reader.name() == name;
    }

    void open(Span tag) {
        const QXmlStreamAttributes attributes = m_reader.attributes();
        if (m_depth == listDepth && isPlain(QLatin1String("xbel"))) {
            m_places.isList = true;
            for (const auto& declaration : m_reader.namespaceDeclarations()) {
                notePrefix(declaration);
            }
        } else if (m_depth == bookmarkDepth && isPlain(QLatin1String("bookmark"))) {
            m_isOurs = !m_places.startTag.isFound() && attributes.value(QLatin1String("href")) == m_visit.url;
            if (m_isOurs) {
                m_places.startTag = tag;
            }
        } else if (m_isOurs && m_depth == metadataDepth && isPlain(QLatin1String("metadata"))) {
            m_isInMetadata = attributes.value(QLatin1String("owner")) == owner;
        } else if (m_isOurs && m_isInMetadata && m_depth == applicationDepth &&
                   isOfBookmark(QLatin1String("application")) && !m_places.application.isFound() &&
                   attributes.value(QLatin1String("name")) == m_visit.program) {
            m_places.application = tag;
            m_places.count = attributes.value(QLatin1String("count")).toInt();
            m_isInApplication = true;
        }
    }

    void close(Span tag) {
        // An element without an end tag has no place for more in it.
        const bool hasEndTag = m_isConsistent && m_text.at(tag.lower + 1) == u'/';
        const qsizetype end = hasEndTag ? tag.lower : -1;
        if (m_depth == listDepth) {
            m_places.listEnd = end;
        } else if (m_isOurs && m_depth == bookmarkDepth) {
            m_places.bookmarkEnd = end;
            m_isOurs = false;
        } else if (m_isOurs && m_depth == infoDepth && isPlain(QLatin1String("info"))) {
            m_places.infoEnd = end;
        } else if (m_isOurs && m_isInMetadata && m_depth == metadataDepth) {
            m_places.metadataEnd = end;
            m_isInMetadata = false;
        } else if (m_isOurs && m_isInMetadata && m_depth == applicationsDepth &&
                   isOfBookmark(QLatin1String("applications"))) {
            m_places.applicationsEnd = end;
        } else if (m_isInApplication && m_depth == applicationDepth) {
            m_places.application.upper = tag.upper;
            m_isInApplication = false;
        }
    }

    void notePrefix(const QXmlStreamNamespaceDeclaration& declaration) {
        if (declaration.namespaceUri() == bookmarkSpace) {
            m_places.bookmarkPrefix = declaration.prefix().toString();
        } else if (declaration.namespaceUri() == mimeSpace) {
            m_places.mimePrefix = declaration.prefix().toString();
        }
    }

    static constexpr int listDepth = 1;
    static constexpr int bookmarkDepth = 2;
    static constexpr int infoDepth = 3;
    static constexpr int metadataDepth = 4;
    static constexpr int applicationsDepth = 5;
    static constexpr int applicationDepth = 6;

    const QString& m_text;
    const Visit& m_visit;
    QXmlStreamReader m_reader;
    Places m_places;
    int m_depth = 0;
    bool m_isOurs = false;
    bool m_isInMetadata = false;
    bool m_isInApplication = false;
    bool m_isConsistent = true;
};

/// Writes the elements that a visit adds, with the prefixes of the list.
class Elements {
public:
    Elements(const Visit& visit, const Places& places) : m_visit(visit), m_places(places) {}

    QString application() const {
        return written([this](QXmlStreamWriter& writer) { writeApplication(writer); });
    }
    QString applications() const {
        return written([this](QXmlStreamWriter& writer) { writeApplications(writer); });
    }
    QString metadata() const {
        return written([this](QXmlStreamWriter& writer) { writeMetadata(writer); });
    }
    QString info() const {
        return written([this](QXmlStreamWriter& writer) { writeInfo(writer); });
    }
    QString bookmark() const {
        return written([this](QXmlStreamWriter& writer) { writeBookmark(writer); });
    }

private:
    static QString written(const std::function<void(QXmlStreamWriter&)>& write) {
        QString text;
        QXmlStreamWriter writer(&text);
        write(writer);
        return text;
    }

    QString time() const { return m_visit.time.toUTC().toString(Qt::ISODateWithMs); }

    /// Starts an element of a namespace that the list may have no prefix for.
    static void start(QXmlStreamWriter& writer, const QString& prefix, const QString& usual,
                      const QString& space, const QString& name) {
        const bool isDeclared = !prefix.isEmpty();
        writer.writeStartElement((isDeclared ? prefix : usual) + u':' + name);
        if (!isDeclared) {
            writer.writeAttribute(QStringLiteral("xmlns:") + usual, space);
        }
    }

    void startOfBookmark(QXmlStreamWriter& writer, const QString& name) const {
        start(writer, m_places.bookmarkPrefix, QStringLiteral("bookmark"), bookmarkSpace, name);
    }

    void writeApplication(QXmlStreamWriter& writer) const {
        startOfBookmark(writer, QStringLiteral("application"));
        writer.writeAttribute(QStringLiteral("name"), m_visit.program);
        writer.writeAttribute(QStringLiteral("exec"),
                              QLatin1Char('\'') + m_visit.command + QLatin1Char('\''));
        writer.writeAttribute(QStringLiteral("modified"), time());
        writer.writeAttribute(QStringLiteral("count"), QString::number(m_places.count + 1));
        writer.writeEndElement();
    }

    void writeApplications(QXmlStreamWriter& writer) const {
        startOfBookmark(writer, QStringLiteral("applications"));
        writeApplication(writer);
        writer.writeEndElement();
    }

    void writeMetadata(QXmlStreamWriter& writer) const {
        writer.writeStartElement(QStringLiteral("metadata"));
        writer.writeAttribute(QStringLiteral("owner"), owner);
        start(writer, m_places.mimePrefix, QStringLiteral("mime"), mimeSpace, QStringLiteral("mime-type"));
        writer.writeAttribute(QStringLiteral("type"), m_visit.mimeType);
        writer.writeEndElement();
        writeApplications(writer);
        writer.writeEndElement();
    }

    void writeInfo(QXmlStreamWriter& writer) const {
        writer.writeStartElement(QStringLiteral("info"));
        writeMetadata(writer);
        writer.writeEndElement();
    }

    void writeBookmark(QXmlStreamWriter& writer) const {
        writer.writeStartElement(QStringLiteral("bookmark"));
        writer.writeAttribute(QStringLiteral("href"), m_visit.url);
        for (const char* const name : {"added", "modified", "visited"}) {
            writer.writeAttribute(QLatin1String(name), time());
        }
        writeInfo(writer);
        writer.writeEndElement();
    }

    const Visit& m_visit;
    const Places& m_places;
};

/// A start tag with the value of an attribute replaced, or as it is where it has none.
QString settingAttribute(const QString& name, const QString& value, QString in) {
    const QRegularExpression attribute(QStringLiteral("(\\s%1\\s*=\\s*)(\"[^\"]*\"|'[^']*')").arg(name));
    const QRegularExpressionMatch found = attribute.match(in);
    if (found.hasMatch()) {
        in.replace(found.capturedStart(2), found.capturedLength(2), u'"' + value + u'"');
    }
    return in;
}

/// The text with the visit in its places; nothing when there is no place for it.
std::optional<QString> edited(QString text, const Places& places, const Visit& visit) {
    const Elements elements(visit, places);
    const auto inserting = [&text](const QString& element, qsizetype at) {
        text.insert(at, element);
        return true;
    };
    if (!places.startTag.isFound()) {
        const bool isDone = places.listEnd >= 0 && inserting(elements.bookmark() + u'\n', places.listEnd);
        return isDone ? std::optional(std::move(text)) : std::nullopt;
    }
    // From the end on, so that the places before stay where they are.
    bool isDone = true;
    if (places.application.isFound()) {
        const Span old = places.application;
        text.replace(old.lower, old.upper - old.lower, elements.application());
    } else if (places.applicationsEnd >= 0) {
        isDone = inserting(elements.application(), places.applicationsEnd);
    } else if (places.metadataEnd >= 0) {
        isDone = inserting(elements.applications(), places.metadataEnd);
    } else if (places.infoEnd >= 0) {
        isDone = inserting(elements.metadata(), places.infoEnd);
    } else {
        isDone = places.bookmarkEnd >= 0 && inserting(elements.info(), places.bookmarkEnd);
    }
    const Span tag = places.startTag;
    QString start = text.mid(tag.lower, tag.upper - tag.lower);
    for (const char* const name : {"modified", "visited"}) {
        start = settingAttribute(QLatin1String(name), visit.time.toUTC().toString(Qt::ISODateWithMs), start);
    }
    text.replace(tag.lower, tag.upper - tag.lower, start);
    return isDone ? std::optional(std::move(text)) : std::nullopt;
}

QByteArray emptyList() {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
           "<xbel version=\"1.0\"\n"
           "      xmlns:bookmark=\"http://www.freedesktop.org/standards/desktop-bookmarks\"\n"
           "      xmlns:mime=\"http://www.freedesktop.org/standards/shared-mime-info\"\n"
           ">\n</xbel>\n";
}

/// Whether `after` says of all files but one what `before` says, and of that one that it was visited.
bool keepsOthers(const std::vector<Bookmark>& before, std::vector<Bookmark> after, const Visit& visit) {
    const bool wasThere = std::ranges::count(before, visit.url, &Bookmark::url) > 0;
    if (after.size() != before.size() + (wasThere ? 0 : 1)) {
        return false;
    }
    for (std::size_t i = 0; i < after.size(); ++i) {
        const bool isSame = i < before.size() && after[i] == before[i];
        if (!isSame && after[i].url != visit.url) {
            return false;
        }
    }
    return true;
}

} // namespace

std::vector<Bookmark> read(const QByteArray& list) {
    std::vector<Bookmark> bookmarks;
    // Bytes that are no UTF-8 break the list no earlier than where they stand.
    QXmlStreamReader reader(QString::fromUtf8(list));
    int depth = 0;
    while (!reader.atEnd()) {
        const auto token = reader.readNext();
        if (token == QXmlStreamReader::EndElement) {
            --depth;
        }
        if (token != QXmlStreamReader::StartElement) {
            continue;
        }
        ++depth;
        const QXmlStreamAttributes attributes = reader.attributes();
        if (depth == 2 && reader.name() == QLatin1String("bookmark")) {
            bookmarks.push_back(
                {.url = attributes.value(QLatin1String("href")).toString(),
                 .mimeType = {},
                 .modified = QDateTime::fromString(attributes.value(QLatin1String("modified")).toString(),
                                                   Qt::ISODateWithMs)});
        } else if (depth > 2 && !bookmarks.empty() && reader.name() == QLatin1String("mime-type") &&
                   reader.namespaceUri() == mimeSpace) {
            bookmarks.back().mimeType = attributes.value(QLatin1String("type")).toString();
        }
    }
    return bookmarks;
}

std::optional<QByteArray> noting(const Visit& visit, const QByteArray& in) {
    const QByteArray list = in.trimmed().isEmpty() ? emptyList() : in;
    // Other encodings are legal, but no desktop writes them.
    QStringDecoder decoder(QStringDecoder::Utf8);
    const QString text = decoder(list);
    if (decoder.hasError()) {
        return std::nullopt;
    }
    const auto places = Survey(text, visit).places();
    const auto result = places ? edited(text, *places, visit) : std::nullopt;
    if (!result) {
        return std::nullopt;
    }
    const QByteArray bytes = result->toUtf8();
    const bool isGood = Survey(*result, visit).places() && keepsOthers(read(list), read(bytes), visit);
    return isGood ? std::optional(bytes) : std::nullopt;
}

} // namespace BookmarkList
