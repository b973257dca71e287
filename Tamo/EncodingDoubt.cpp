#include "EncodingDoubt.h"

#include "EncodingName.h"

namespace {

using Kind = EncodingDoubt::Kind;

/// The encoding that the first two bytes show where they are a `<`.
std::optional<StringEncoding> unmarkedUTF16(Bytes start) {
    if (start.size() < 2) {
        return std::nullopt;
    }
    if (start[0] == '<' && start[1] == 0) {
        return StringEncoding::utf16LittleEndian();
    }
    return start[0] == 0 && start[1] == '<' ? std::optional(StringEncoding::utf16BigEndian()) : std::nullopt;
}

} // namespace

std::optional<EncodingDoubt> EncodingDoubt::of(Bytes start, const Detection& detection, Legality legality) {
    const auto name = detection.bom.empty() ? TextEncodingDetector::declaredName(start) : std::nullopt;
    const std::string declared(name.value_or(""));
    const StringEncoding& encoding = detection.encoding;
    if (const auto found = unmarkedUTF16(start); found && detection.bom.empty()) {
        return EncodingDoubt{Kind::unmarkedUTF16, {}, *found};
    }
    if (legality == Legality::illegal) {
        return EncodingDoubt{Kind::illegal, declared, encoding};
    }
    if (name && !StringEncoding::named(*name)) {
        return EncodingDoubt{Kind::unknownName, declared, encoding};
    }
    const bool isFallback = !name && detection.bom.empty() && encoding == StringEncoding::latin1();
    return isFallback ? std::optional(EncodingDoubt{Kind::undeclared, {}, encoding}) : std::nullopt;
}

std::optional<StringEncoding> EncodingDoubt::guess() const {
    switch (kind) {
    case Kind::illegal:
        return StringEncoding::latin1();
    case Kind::unmarkedUTF16:
        return encoding;
    case Kind::unknownName:
    case Kind::undeclared:
        break;
    }
    return std::nullopt;
}

QString EncodingDoubt::message(const QString& name) const {
    const QString written = localizedName(encoding);
    const QString latin1 = localizedName(StringEncoding::latin1());
    const QString said = QString::fromStdString(declared);
    switch (kind) {
    case Kind::illegal:
        return (
            said.isEmpty()
                ? QStringLiteral(
                      "“%1” empieza como %2, pero hay bytes que no lo son. Se ha leído como %3; "
                      "al guardarlo se escribirá en %2 y cambiarán los bytes de todas las letras que no "
                      "sean ASCII.")
                      .arg(name, written, latin1)
                : QStringLiteral(
                      "“%1” declara “%4”, pero hay bytes que no son %2. Se ha leído como %3; al guardarlo "
                      "se escribirá en %2 y cambiarán los bytes de todas las letras que no sean ASCII.")
                      .arg(name, written, latin1, said));
    case Kind::unknownName:
        return QStringLiteral("“%1” declara la codificación “%2”, que no se conoce. Se ha leído como %3, y "
                              "así se escribirá "
                              "al guardarlo.")
            .arg(name, said, written);
    case Kind::undeclared:
        return QStringLiteral("“%1” no declara su codificación y no es UTF-8. Se ha leído como %2, y así se "
                              "escribirá al "
                              "guardarlo.")
            .arg(name, written);
    case Kind::unmarkedUTF16:
        return QStringLiteral("“%1” parece %2 sin marca de orden de bytes, y así no se reconoce. Si lo "
                              "vuelves a abrir como "
                              "%2 se leerá bien.")
            .arg(name, written);
    }
    return {};
}
