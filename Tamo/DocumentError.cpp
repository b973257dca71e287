#include "DocumentError.h"

#include "EncodingName.h"
#include "GroupedNumber.h"
#include "ShownName.h"

#include <unicode/uchar.h>

namespace {

using Action = DocumentError::Action;

/// Whether `character` shows as itself between quotes.
bool isPrintable(char32_t character) {
    const auto codePoint = static_cast<UChar32>(character);
    return u_isgraph(codePoint) && (U_MASK(u_charType(codePoint)) & (U_GC_M_MASK | U_GC_C_MASK)) == 0;
}

/// The character as itself, when it can be shown, and by its code: `“€” (U+20AC)`.
QString characterName(char32_t character) {
    const QString code =
        QStringLiteral("U+%1").arg(static_cast<uint>(character), 4, 16, QLatin1Char('0')).toUpper();
    return isPrintable(character) ? QStringLiteral("“%1” (%2)").arg(QString::fromUcs4(&character, 1), code)
                                  : code;
}

QString reason(FileFailure failure, Action action) {
    const bool isRead = action == Action::read;
    switch (failure) {
    case FileFailure::missing:
        return isRead ? QStringLiteral("el archivo no existe") : QStringLiteral("la carpeta no existe");
    case FileFailure::folder:
        return QStringLiteral("es una carpeta");
    case FileFailure::notRegular:
        return QStringLiteral("no es un archivo normal");
    case FileFailure::noPermission:
        return isRead ? QStringLiteral("no tienes permiso para leer el archivo")
                      : QStringLiteral("no tienes permiso para escribir el archivo");
    case FileFailure::noSpace:
        return QStringLiteral("no queda espacio en el disco");
    case FileFailure::tooLarge:
        return QStringLiteral("el archivo es demasiado grande");
    case FileFailure::noMemory:
        return QStringLiteral("no hay memoria suficiente");
    case FileFailure::halfWritten:
        return QStringLiteral(
            "falló la escritura en el disco, y el archivo ha quedado a medias. Lo que había está "
            "en la misma carpeta, en la copia que acaba en “.tamo-copia”");
    case FileFailure::stopped:
    case FileFailure::other:
        break;
    }
    return isRead ? QStringLiteral("falló la lectura del disco")
                  : QStringLiteral("falló la escritura en el disco");
}

QString reason(const DecodeFailure& failure, Action) {
    return failure.kind == DecodeFailure::Kind::tooLong
               ? QStringLiteral("el texto es demasiado largo")
               : QStringLiteral("su contenido no se puede leer como texto");
}

QString reason(const UnencodableText& text, Action) {
    return QStringLiteral("el carácter %1 de la línea %2 no existe en la codificación “%3”")
        .arg(characterName(text.character), groupedNumber(text.line), localizedName(text.encoding));
}

} // namespace

QString message(const DocumentError& error, const QString& path) {
    const QString why =
        std::visit([&](const auto& cause) { return reason(cause, error.action); }, error.cause);
    const auto* const cause = std::get_if<FileFailure>(&error.cause);
    const bool isHalfWritten = cause != nullptr && *cause == FileFailure::halfWritten;
    const QString sentence = error.action == Action::read ? QStringLiteral("No se pudo abrir “%1”: %2.")
                                                          : QStringLiteral("No se pudo guardar “%1”: %2.");
    const QString comfort = error.action == Action::read || isHalfWritten
                                ? QString()
                                : QStringLiteral(" El archivo en disco no ha cambiado.");
    // Both at once: a file's name may contain what looks like a place for the other.
    return sentence.arg(shownFileName(path), why) + comfort;
}

QString remedyTitle(const DocumentError& error) {
    const auto* const text = std::get_if<UnencodableText>(&error.cause);
    const bool isSurrogate = text != nullptr && text->character >= 0xD800 && text->character <= 0xDFFF;
    const bool helps = text != nullptr && !isSurrogate && text->encoding != StringEncoding::utf8();
    return helps ? QStringLiteral("Guardar en UTF-8") : QString();
}
