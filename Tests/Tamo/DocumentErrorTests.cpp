#include "DocumentError.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace {

using Action = DocumentError::Action;

std::string messageFor(const DocumentError& error) {
    return message(error, QStringLiteral("/casa/datos %2.xml")).toStdString();
}

UnencodableText unencodable(char32_t character) { return {character, 3, StringEncoding::latin1()}; }

} // namespace

TEST(DocumentError, NamesTheFileAndTheCause) {
    const struct {
        DocumentError error;
        const char* expected;
    } cases[]{
        {{Action::read, FileFailure::missing}, "No se pudo abrir “datos %2.xml”: el archivo no existe."},
        {{Action::read, FileFailure::folder}, "No se pudo abrir “datos %2.xml”: es una carpeta."},
        {{Action::read, FileFailure::noPermission},
         "No se pudo abrir “datos %2.xml”: no tienes permiso para leer el archivo."},
        {{Action::read, DecodeFailure{DecodeFailure::Kind::illegal, 7}},
         "No se pudo abrir “datos %2.xml”: su contenido no se puede leer como texto."},
        {{Action::read, DecodeFailure{DecodeFailure::Kind::tooLong, 0}},
         "No se pudo abrir “datos %2.xml”: el texto es demasiado largo."},
        {{Action::write, FileFailure::missing},
         "No se pudo guardar “datos %2.xml”: la carpeta no existe. El archivo en disco no ha cambiado."},
        {{Action::write, FileFailure::noSpace},
         "No se pudo guardar “datos %2.xml”: no queda espacio en el disco. El archivo en disco no ha "
         "cambiado."},
        {{Action::write, FileFailure::halfWritten},
         "No se pudo guardar “datos %2.xml”: falló la escritura en el disco, y el archivo ha quedado a "
         "medias. Lo "
         "que había está en la misma carpeta, en la copia que acaba en “.tamo-copia”."},
        {{Action::write, unencodable(U'€')},
         "No se pudo guardar “datos %2.xml”: el carácter “€” (U+20AC) de la línea 3 no existe en la "
         "codificación "
         "“Occidental (ISO Latin 1)”. El archivo en disco no ha cambiado."},
    };
    for (const auto& [error, expected] : cases) {
        EXPECT_EQ(messageFor(error), expected);
    }
}

TEST(DocumentError, ShowsACharacterOnlyWhenItIsVisible) {
    EXPECT_NE(messageFor({Action::write, unencodable(U'\U0001F600')}).find("“😀” (U+1F600)"),
              std::string::npos);
    for (const char32_t invisible :
         {U'\u200B', U'\u0301', U'\u00AD', U'\u2028', char32_t{0xD83D}, U'\uE000', U'\u202E'}) {
        const std::string text = messageFor({Action::write, unencodable(invisible)});
        EXPECT_NE(text.find("el carácter U+"), std::string::npos) << text;
    }
}

TEST(DocumentError, ShowsTheNameWithStandIns) {
    EXPECT_EQ(message({Action::read, FileFailure::folder}, QStringLiteral("/casa/a\u202Eb\xDCE9.xml")),
              QStringLiteral("No se pudo abrir “a\u2B1Ab\uFFFD.xml”: es una carpeta."));
}

TEST(DocumentError, TellsTheCausesApart) {
    for (const Action action : {Action::read, Action::write}) {
        std::set<std::string> messages;
        for (const FileFailure failure :
             {FileFailure::missing, FileFailure::folder, FileFailure::notRegular, FileFailure::noPermission,
              FileFailure::noSpace, FileFailure::tooLarge, FileFailure::noMemory, FileFailure::other}) {
            EXPECT_TRUE(messages.insert(messageFor({action, failure})).second);
        }
    }
}
