#include "FileForm.h"

#include "AtomicFile.h"
#include "TextEncoder.h"

namespace {

template <class Cause>
std::unexpected<DocumentError> failure(const Cause& cause) {
    return std::unexpected(DocumentError{DocumentError::Action::write, cause});
}

UnencodableText unencodableText(const UnencodableCharacter& found, const Rope& text,
                                const StringEncoding& encoding) {
    return {found.character, text.line(static_cast<Offset>(found.offset)) + 1, encoding};
}

} // namespace

std::expected<void, DocumentError> FileForm::encodeInto(const Rope& snapshot, const Sink& sink,
                                                        const std::stop_token& stop) const {
    if (!readBytes.bytes().empty() && choice == readChoice && snapshot == Rope(readText)) {
        sink(readBytes.bytes());
        return {};
    }
    sink(choice.bom());
    TextEncoder encoder(choice.encoding, sink);
    for (const std::u16string_view chunk : snapshot.chunks()) {
        if (stop.stop_requested()) {
            return failure(FileFailure::stopped);
        }
        if (const auto result = encoder.append(chunk); !result) {
            return failure(unencodableText(result.error(), snapshot, choice.encoding));
        }
    }
    if (const auto result = encoder.finish(); !result) {
        return failure(unencodableText(result.error(), snapshot, choice.encoding));
    }
    return {};
}

std::expected<void, DocumentError> FileForm::write(const Rope& snapshot, const QString& path,
                                                   const FileReplacement& how) const {
    auto file = AtomicFile::open(path, how.stop);
    if (!file) {
        return failure(file.error());
    }
    if (auto result = encodeInto(
            snapshot, [&file](Bytes bytes) { file->write(bytes); }, how.stop);
        !result) {
        return result;
    }
    if (const auto result = file->commit(how); !result) {
        return failure(result.error());
    }
    return {};
}

std::expected<std::string, DocumentError> FileForm::encode(const Rope& snapshot) const {
    std::string all;
    const auto result = encodeInto(snapshot, [&all](Bytes bytes) { all += stringOf(bytes); });
    return result ? std::expected<std::string, DocumentError>(std::move(all))
                  : std::unexpected(result.error());
}

bool FileForm::givesBack(Bytes bytes, const std::stop_token& stop) const {
    // The encodings with paths of their own have one way to write a text.
    if (choice.encoding.family() != StringEncoding::Family::converter) {
        return true;
    }
    bool isSame = true;
    const auto result = encodeInto(
        Rope(readText),
        [&](Bytes encoded) {
            isSame = isSame && stringOf(bytes).starts_with(stringOf(encoded));
            bytes = isSame ? bytes.subspan(encoded.size()) : bytes;
        },
        stop);
    return result && isSame && bytes.empty();
}

std::optional<UnencodableText> FileForm::unencodable(const Rope& text, const StringEncoding& encoding,
                                                     const std::stop_token& stop) {
    FileForm form;
    form.choice.encoding = encoding;
    const auto result = form.encodeInto(
        text, [](Bytes) {}, stop);
    const auto* const found = result ? nullptr : std::get_if<UnencodableText>(&result.error().cause);
    return found == nullptr ? std::nullopt : std::optional(*found);
}
