#include "XMLFileDocument.h"

#include "ApplicationIdentifier.h"
#include "Signposter.h"
#include "TextBuffer.h"
#include "TextEncodingDetector.h"
#include "UTF8File.h"

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

/// What a text is written as that was read so.
FileForm formOf(const Detection& detection, SourceText text) {
    const EncodingChoice choice{detection.encoding, !detection.bom.empty()};
    return {.choice = choice, .readText = std::move(text), .readBytes = {}, .readChoice = choice};
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

XMLFileDocument::XMLFileDocument() : XMLFileDocument(FileForm(), {}) {}

XMLFileDocument::XMLFileDocument(FileForm form, Rope rope)
    : m_form(std::move(form)), m_mirror(std::make_shared<TextMirror>(std::move(rope))) {}

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
    std::unique_ptr<XMLFileDocument> document(
        new XMLFileDocument(formOf(detection, std::move(*text)), std::move(rope)));
    document->m_doubt = EncodingDoubt::of(start, detection, EncodingDoubt::Legality::legal);
    return document;
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
        new XMLFileDocument(formOf(detection, std::move(*text)), std::move(rope)));
    if (isLegal && !document->m_form.givesBack(contents.bytes())) {
        document->m_form.readBytes = contents;
    }
    document->m_doubt =
        EncodingDoubt::of(contents.bytes(), detection,
                          isLegal ? EncodingDoubt::Legality::legal : EncodingDoubt::Legality::illegal);
    return document;
}

std::expected<std::unique_ptr<XMLFileDocument>, DocumentError>
XMLFileDocument::read(const QString& path, const StringEncoding& encoding) {
    const auto contents = FileContents::read(path);
    if (!contents) {
        return failure(Action::read, contents.error());
    }
    return decode(*contents, encoding);
}

std::expected<std::unique_ptr<XMLFileDocument>, DocumentError>
XMLFileDocument::decode(const FileContents& contents, const StringEncoding& encoding) {
    const Signposter::Interval interval = signposter.interval("Decode");
    const Bytes mark = EncodingChoice{encoding, EncodingChoice::canHaveMark(encoding)}.bom();
    const bool hasMark = !mark.empty() && stringOf(contents.bytes()).starts_with(stringOf(mark));
    const Detection detection{encoding, hasMark ? mark : Bytes()};
    auto text = encoding.decode(contents.bytes().subspan(detection.bom.size()));
    if (!text) {
        return failure(Action::read, text.error());
    }
    Rope rope(*text);
    std::unique_ptr<XMLFileDocument> document(
        new XMLFileDocument(formOf(detection, std::move(*text)), std::move(rope)));
    document->m_form.isChosen = true;
    if (!document->m_form.givesBack(contents.bytes())) {
        document->m_form.readBytes = contents;
    }
    return document;
}

TextBuffer& XMLFileDocument::buffer() {
    if (!m_buffer) {
        m_buffer = std::make_unique<TextBuffer>(m_mirror->text(), m_mirror);
    }
    return *m_buffer;
}

void XMLFileDocument::setEncoding(const StringEncoding& encoding, Bytes bom) {
    m_form.choice = {encoding, !bom.empty() && EncodingChoice::canHaveMark(encoding)};
}
