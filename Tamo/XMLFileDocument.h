#pragma once

#include "DocumentError.h"
#include "FileContents.h"
#include "Rope.h"
#include "StringEncoding.h"
#include "TextMirror.h"

#include <QString>
#include <QStringList>

#include <cstdint>
#include <expected>
#include <memory>
#include <span>
#include <stop_token>
#include <string>
#include <vector>

class TextBuffer;

/// A kind of file that documents are read from and written to.
struct ContentType {
    QString name;             ///< To show, as in a list of filters.
    QStringList mimeTypes;    ///< The preferred one first.
    QStringList fileSuffixes; ///< Without the dot; the preferred one first.
};

/// A document as a file has it: its text, and how the text is written in bytes. Keeps the encoding and the
/// byte-order mark of the file, so that it is written back as it was read.
///
/// Reading, `snapshot` and `write` may run on any thread, the last two while the buffer is edited; `buffer`
/// belongs to the main thread.
class XMLFileDocument {
public:
    /// XML and SVG, in this order, to read and to write.
    static std::span<const ContentType> contentTypes();

    /// A new document: no text, in UTF-8 without a mark.
    XMLFileDocument();
    ~XMLFileDocument();

    static std::expected<std::unique_ptr<XMLFileDocument>, DocumentError> read(const QString& path);

    /// The document that `contents` are, in the encoding that they show. Where they are illegal in it, they
    /// are read as ISO Latin 1, and still written in that encoding.
    static std::expected<std::unique_ptr<XMLFileDocument>, DocumentError>
    decode(const FileContents& contents);

    const StringEncoding& encoding() const { return m_encoding; }

    /// The byte-order mark in front of the text; empty when the file had none.
    Bytes bom() const { return m_bom; }

    const SourceText& initialText() const { return m_initialText; }

    /// The latest text, kept by the buffer.
    const std::shared_ptr<TextMirror>& mirror() const { return m_mirror; }

    /// The text being edited; made of the initial text when first asked for, then the same for life.
    TextBuffer& buffer();

    /// The latest text, for writing it. Costs a reference.
    Rope snapshot() const { return m_mirror->text(); }

    /// Puts the bytes of `snapshot` in the place of the file `path`, whole or not at all. A text that is
    /// still the initial one gives the bytes that were read wherever they are legal in the encoding.
    /// After a request to stop it fails, unless the file stands already.
    std::expected<void, DocumentError> write(const Rope& snapshot, const QString& path,
                                             const std::stop_token& stop = {}) const;

    /// From now on writes as `other` does, whose text the buffer was given.
    void adoptEncoding(XMLFileDocument&& other);

    /// Writes in another encoding from now on.
    void setEncoding(const StringEncoding& encoding, Bytes bom);

    /// The same bytes in memory.
    std::expected<std::string, DocumentError> encode(const Rope& snapshot) const;

private:
    XMLFileDocument(const StringEncoding& encoding, Bytes bom, SourceText initialText, Rope rope);

    static std::unique_ptr<XMLFileDocument> readUTF8(const QString& path);

    template <class Sink>
    std::expected<void, DocumentError> encodeInto(const Rope& snapshot, Sink sink,
                                                  const std::stop_token& stop = {}) const;
    bool givesBack(Bytes bytes) const;

    StringEncoding m_encoding;
    std::vector<std::uint8_t> m_bom;
    SourceText m_initialText;
    /// What was read, where encoding the text gives other bytes: some encodings spell one character in
    /// several ways. Empty otherwise.
    FileContents m_original;
    std::shared_ptr<TextMirror> m_mirror;
    std::unique_ptr<TextBuffer> m_buffer;
};
