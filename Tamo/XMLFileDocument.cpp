#include "XMLFileDocument.h"

#include "ApplicationIdentifier.h"
#include "AtomicFile.h"
#include "Signposter.h"
#include "TextBuffer.h"
#include "TextEncoder.h"
#include "TextEncodingDetector.h"
#include "UTF8File.h"

#include <algorithm>
#include <array>
#include <utility>

namespace {

using Action = DocumentError::Action;

constexpr Signposter signposter(applicationIdentifier, "Document");
constexpr std::size_t announcementSize = 4096; ///< More than a file says its encoding in.

template <class Cause>
std::unexpected<DocumentError> failure(Action action, const Cause& cause) {
    return std::unexpected(DocumentError{action, cause});
}

UnencodableText unencodable(const UnencodableCharacter& found, const Rope& text,
                            const StringEncoding& encoding) {
    return {found.character, text.line(static_cast<Offset>(found.offset)) + 1, encoding};
}

} // namespace

std::span<const ContentType> XMLFileDocument::contentTypes() {
    static const std::array types{
        ContentType{QStringLiteral("XML"),
                    {QStringLiteral("application/xml"), QStringLiteral("text/xml")},
                    {QStringLiteral("xml")}},
        ContentType{QStringLiteral("SVG"), {QStringLiteral("image/svg+xml")}, {QStringLiteral("svg")}},
    };
    return types;
}

XMLFileDocument::XMLFileDocument() : XMLFileDocument(StringEncoding::utf8(), {}, {}, {}) {}

/// `rope` has the units of `initialText`.
XMLFileDocument::XMLFileDocument(const StringEncoding& encoding, Bytes bom, SourceText initialText, Rope rope)
    : m_encoding(encoding), m_bom(bom.begin(), bom.end()), m_initialText(std::move(initialText)),
      m_mirror(std::make_shared<TextMirror>(std::move(rope))) {}

XMLFileDocument::~XMLFileDocument() = default;

std::expected<std::unique_ptr<XMLFileDocument>, DocumentError> XMLFileDocument::read(const QString& path) {
    if (auto document = readUTF8(path)) {
        return document;
    }
    const auto contents = FileContents::read(path);
    if (!contents) {
        return failure(Action::read, contents.error());
    }
    return decode(*contents);
}

/// The document in the file when that turns out to be UTF-8; null otherwise.
std::unique_ptr<XMLFileDocument> XMLFileDocument::readUTF8(const QString& path) {
    auto file = InputFile::open(path);
    if (!file) {
        return nullptr;
    }
    std::vector<std::uint8_t> start(announcementSize);
    start.resize(file->read(start).value_or(0));
    const Detection detection = TextEncodingDetector::announced(start).value_or(Detection());
    if (detection.encoding != StringEncoding::utf8()) {
        return nullptr;
    }
    const Signposter::Interval interval = signposter.interval("Decode");
    // A chunk is summed up while the processor still has it at hand.
    std::vector<Rope> pieces(UTF8File::pieceCount(*file, detection.bom.size()));
    auto text = UTF8File::decode(*file, detection.bom.size(), [&](std::size_t piece, const SourceText& part) {
        pieces[piece] = Rope(part);
    });
    if (!text) {
        return nullptr;
    }
    Rope rope;
    for (const Rope& piece : pieces) {
        rope = rope.joined(piece);
    }
    return std::unique_ptr<XMLFileDocument>(
        new XMLFileDocument(detection.encoding, detection.bom, std::move(*text), std::move(rope)));
}

std::expected<std::unique_ptr<XMLFileDocument>, DocumentError>
XMLFileDocument::decode(const FileContents& contents) {
    const Signposter::Interval interval = signposter.interval("Decode");
    const Detection detection = TextEncodingDetector::detect(contents.bytes());
    const Bytes rest = contents.bytes().subspan(detection.bom.size());
    auto text = detection.encoding.decode(rest);
    const bool isLegal = text.has_value();
    if (!isLegal) {
        text = StringEncoding::latin1().decode(rest);
    }
    if (!text) {
        return failure(Action::read, text.error());
    }
    Rope rope(*text);
    std::unique_ptr<XMLFileDocument> document(
        new XMLFileDocument(detection.encoding, detection.bom, std::move(*text), std::move(rope)));
    if (isLegal && !document->givesBack(contents.bytes())) {
        document->m_original = contents;
    }
    return document;
}

/// Whether encoding the initial text gives `bytes` again. The encodings with paths of their own have one way
/// to write a text.
bool XMLFileDocument::givesBack(Bytes bytes) const {
    if (m_encoding.family() != StringEncoding::Family::converter) {
        return true;
    }
    bool isSame = true;
    const auto result = encodeInto(m_mirror->text(), [&](Bytes encoded) {
        isSame = isSame && stringOf(bytes).starts_with(stringOf(encoded));
        bytes = isSame ? bytes.subspan(encoded.size()) : bytes;
    });
    return result && isSame && bytes.empty();
}

TextBuffer& XMLFileDocument::buffer() {
    if (!m_buffer) {
        m_buffer = std::make_unique<TextBuffer>(m_mirror->text(), m_mirror);
    }
    return *m_buffer;
}

template <class Sink>
std::expected<void, DocumentError> XMLFileDocument::encodeInto(const Rope& snapshot, Sink sink,
                                                               const std::stop_token& stop) const {
    if (!m_original.bytes().empty() && snapshot == Rope(m_initialText)) {
        sink(m_original.bytes());
        return {};
    }
    sink(m_bom);
    TextEncoder encoder(m_encoding, sink);
    for (const std::u16string_view chunk : snapshot.chunks()) {
        if (stop.stop_requested()) {
            return failure(Action::write, FileFailure::other);
        }
        if (const auto result = encoder.append(chunk); !result) {
            return failure(Action::write, unencodable(result.error(), snapshot, m_encoding));
        }
    }
    if (const auto result = encoder.finish(); !result) {
        return failure(Action::write, unencodable(result.error(), snapshot, m_encoding));
    }
    return {};
}

std::expected<void, DocumentError> XMLFileDocument::write(const Rope& snapshot, const QString& path,
                                                          const std::stop_token& stop) const {
    auto file = AtomicFile::open(path);
    if (!file) {
        return failure(Action::write, file.error());
    }
    if (auto result = encodeInto(snapshot, [&file](Bytes bytes) { file->write(bytes); }, stop);
        !result) {
        return result;
    }
    if (const auto result = file->commit(); !result) {
        return failure(Action::write, result.error());
    }
    return {};
}

void XMLFileDocument::adoptEncoding(XMLFileDocument&& other) {
    m_encoding = other.m_encoding;
    m_bom = std::move(other.m_bom);
    m_initialText = std::move(other.m_initialText);
    m_original = std::move(other.m_original);
}

void XMLFileDocument::setEncoding(const StringEncoding& encoding, Bytes bom) {
    m_encoding = encoding;
    m_bom.assign(bom.begin(), bom.end());
    m_original = {};
}

std::expected<std::string, DocumentError> XMLFileDocument::encode(const Rope& snapshot) const {
    std::string all;
    const auto result = encodeInto(snapshot, [&all](Bytes bytes) { all += stringOf(bytes); });
    return result ? std::expected<std::string, DocumentError>(std::move(all))
                  : std::unexpected(result.error());
}
