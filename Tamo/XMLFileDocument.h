#pragma once

#include "EncodingDoubt.h"
#include "FileForm.h"
#include "TextMirror.h"

#include <QString>
#include <QStringList>

#include <expected>
#include <memory>
#include <optional>
#include <span>
#include <stop_token>
#include <string>
#include <utility>

class InputFile;
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

    using Reading = std::expected<std::unique_ptr<XMLFileDocument>, DocumentError>;

    /// Reads the file at `path` as `decode` does. Of a file that grows, what it has when it is opened. A file
    /// that must be too long for a text is refused before it is read. Soon after a request to stop, here and
    /// below, the reading ends with a failure that is not for the user.
    static Reading read(const QString& path, const std::stop_token& stop = {});

    /// The document that `contents` are, in the encoding that they show. Where they are illegal in it, they
    /// are read as ISO Latin 1, and still written in that encoding.
    static Reading decode(const FileContents& contents, const std::stop_token& stop = {});

    /// The same in `encoding`, whatever the file shows. Fails where the contents are illegal in it. A mark of
    /// the encoding is none of the text.
    static Reading read(const QString& path, const StringEncoding& encoding,
                        const std::stop_token& stop = {});
    static Reading decode(const FileContents& contents, const StringEncoding& encoding,
                          const std::stop_token& stop = {});

    const StringEncoding& encoding() const { return m_form.choice.encoding; }

    /// The byte-order mark in front of the text; empty when the file had none.
    Bytes bom() const { return m_form.choice.bom(); }

    /// The text as it was read; empty from `forgetInitialText` on, where nothing else needs it.
    const SourceText& initialText() const { return m_form.readText; }
    void forgetInitialText() { m_form.forgetReadText(); }

    /// What is doubtful about how the file was read; nothing where all is well.
    const std::optional<EncodingDoubt>& doubt() const { return m_doubt; }

    /// How the text is written. Belongs to the main thread: a write elsewhere takes a copy along.
    const FileForm& form() const { return m_form; }
    void setForm(FileForm form) { m_form = std::move(form); }

    /// The latest text, kept by the buffer.
    const std::shared_ptr<TextMirror>& mirror() const { return m_mirror; }

    /// The text being edited; made of the initial text when first asked for, then the same for life.
    TextBuffer& buffer();

    /// The latest text, for writing it. Costs a reference.
    Rope snapshot() const { return m_mirror->text(); }

    /// Puts the bytes of `snapshot` in the place of the file `path`, as `FileForm::write` does.
    std::expected<void, DocumentError> write(const Rope& snapshot, const QString& path,
                                             const FileReplacement& how = {}) const {
        return m_form.write(snapshot, path, how);
    }

    /// Writes in another encoding from now on.
    void setEncoding(const StringEncoding& encoding, Bytes bom);

    /// The same bytes in memory.
    std::expected<std::string, DocumentError> encode(const Rope& snapshot) const {
        return m_form.encode(snapshot);
    }

private:
    /// `rope` has the units of the text that was read.
    XMLFileDocument(FileForm form, Rope rope);

    static std::unique_ptr<XMLFileDocument> readUTF8(const InputFile& file, Bytes start,
                                                     const std::stop_token& stop);

    FileForm m_form;
    std::optional<EncodingDoubt> m_doubt;
    std::shared_ptr<TextMirror> m_mirror;
    std::unique_ptr<TextBuffer> m_buffer;
};
