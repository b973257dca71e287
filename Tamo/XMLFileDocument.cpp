#include "XMLFileDocument.h"

#include "ApplicationIdentifier.h"
#include "Signposter.h"
#include "TextBuffer.h"
#include "TextEncodingDetector.h"
#include "UTF8File.h"

#include <algorithm>
#include <array>
#include <limits>
#include <optional>
#include <utility>
#include <vector>

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

constexpr std::size_t longestText = std::numeric_limits<Offset>::max();
constexpr DecodeFailure tooLong{DecodeFailure::Kind::tooLong, 0};

/// Whether the file, read as `detection` says, must have more units than a text can have. Of UTF-8 that may
/// need a look through the file, which keeps nothing of it.
bool isTooLong(const InputFile& file, const Detection& detection, const std::stop_token& stop) {
    if (detection.encoding == StringEncoding::utf8()) {
        return UTF8File::isTooLong(file, detection.bom.size(), stop);
    }
    constexpr std::size_t longestMark = 4;
    const auto most =
        file.expectedSize() > longestText ? detection.encoding.mostBytesPerUnit() : std::nullopt;
    return most && file.expectedSize() > longestText * *most + longestMark;
}

/// The same text; made in pieces, of which a request to stop leaves the rest out.
Rope ropeOf(const SourceText& text, const std::stop_token& stop) {
    constexpr std::size_t pieceLength = std::size_t{1} << 22;
    Rope rope;
    for (std::size_t at = 0; at < text.count() && !stop.stop_requested(); at += pieceLength) {
        const std::size_t length = std::min(pieceLength, text.count() - at);
        rope = rope.joined(Rope(SourceText({text.storage(), text.units().data() + at}, length)));
    }
    return rope;
}

/// What was read, unless it may be incomplete.
XMLFileDocument::Reading finished(std::unique_ptr<XMLFileDocument> document, const std::stop_token& stop) {
    if (stop.stop_requested()) {
        return failure(Action::read, FileFailure::stopped);
    }
    return document;
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

XMLFileDocument::Reading XMLFileDocument::read(const QString& path, const std::stop_token& stop) {
    auto file = InputFile::open(path);
    if (!file) {
        return failure(Action::read, file.error());
    }
    std::vector<std::uint8_t> start(announcementSize);
    const auto size = file->read(start);
    if (!size) {
        return failure(Action::read, size.error());
    }
    start.resize(*size);
    const Detection announced = TextEncodingDetector::announced(start).value_or(Detection());
    const bool mayBeUTF8 = announced.encoding == StringEncoding::utf8();
    if (isTooLong(*file, announced, stop)) {
        return failure(Action::read, tooLong);
    }
    if (auto document = mayBeUTF8 ? readUTF8(*file, start, stop) : nullptr) {
        return document;
    }
    // What is not UTF-8 is read as ISO Latin 1, whose text is as long as the file.
    if (mayBeUTF8 && file->expectedSize() > longestText && !stop.stop_requested()) {
        return failure(Action::read, tooLong);
    }
    const auto contents = FileContents::read(path, stop);
    if (!contents) {
        return failure(Action::read, contents.error());
    }
    return decode(*contents, stop);
}

/// The document in the file, which starts with `start`, when that turns out to be UTF-8; null otherwise.
std::unique_ptr<XMLFileDocument> XMLFileDocument::readUTF8(const InputFile& file, Bytes start,
                                                           const std::stop_token& stop) {
    const Detection detection = TextEncodingDetector::announced(start).value_or(Detection());
    const Signposter::Interval interval = signposter.interval("Decode");
    // A chunk is summed up while the processor still has it at hand.
    std::vector<Rope> pieces(UTF8File::pieceCount(file, detection.bom.size()));
    auto text = UTF8File::decode(
        file, detection.bom.size(),
        [&](std::size_t piece, const SourceText& part) { pieces[piece] = Rope(part); }, stop);
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

XMLFileDocument::Reading XMLFileDocument::decode(const FileContents& contents, const std::stop_token& stop) {
    const Signposter::Interval interval = signposter.interval("Decode");
    const Detection detection = TextEncodingDetector::detect(contents.bytes(), stop);
    const Bytes rest = contents.bytes().subspan(detection.bom.size());
    auto text = detection.encoding.decode(rest, stop);
    const bool isLegal = text.has_value();
    if (!isLegal) {
        text = StringEncoding::latin1().decode(rest, stop);
    }
    if (!text) {
        return failure(Action::read, text.error());
    }
    Rope rope = ropeOf(*text, stop);
    std::unique_ptr<XMLFileDocument> document(
        new XMLFileDocument(formOf(detection, std::move(*text)), std::move(rope)));
    if (isLegal && !document->m_form.givesBack(contents.bytes(), stop)) {
        document->m_form.readBytes = contents;
    }
    document->m_doubt =
        EncodingDoubt::of(contents.bytes(), detection,
                          isLegal ? EncodingDoubt::Legality::legal : EncodingDoubt::Legality::illegal);
    return finished(std::move(document), stop);
}

XMLFileDocument::Reading XMLFileDocument::read(const QString& path, const StringEncoding& encoding,
                                               const std::stop_token& stop) {
    const auto file = InputFile::open(path);
    if (file && isTooLong(*file, {encoding, {}}, stop)) {
        return failure(Action::read, tooLong);
    }
    const auto contents = FileContents::read(path, stop);
    if (!contents) {
        return failure(Action::read, contents.error());
    }
    return decode(*contents, encoding, stop);
}

XMLFileDocument::Reading XMLFileDocument::decode(const FileContents& contents, const StringEncoding& encoding,
                                                 const std::stop_token& stop) {
    const Signposter::Interval interval = signposter.interval("Decode");
    const Bytes mark = EncodingChoice{encoding, EncodingChoice::canHaveMark(encoding)}.bom();
    const bool hasMark = !mark.empty() && stringOf(contents.bytes()).starts_with(stringOf(mark));
    const Detection detection{encoding, hasMark ? mark : Bytes()};
    auto text = encoding.decode(contents.bytes().subspan(detection.bom.size()), stop);
    if (!text) {
        return failure(Action::read, text.error());
    }
    Rope rope = ropeOf(*text, stop);
    std::unique_ptr<XMLFileDocument> document(
        new XMLFileDocument(formOf(detection, std::move(*text)), std::move(rope)));
    document->m_form.isChosen = true;
    if (!document->m_form.givesBack(contents.bytes(), stop)) {
        document->m_form.readBytes = contents;
    }
    return finished(std::move(document), stop);
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
