#include "ToolkitTexts.h"

#include <algorithm>
#include <string_view>

namespace {

struct Text {
    std::string_view context;
    std::string_view source;
    const char16_t* text;
};

constexpr Text texts[] = {
    {"QShortcut", "Ctrl", u"Ctrl"},
    {"QShortcut", "Shift", u"Mayús"},
    {"QShortcut", "Return", u"Intro"},
    {"QShortcut", "Esc", u"Esc"},
    {"QShortcut", "Del", u"Supr"},
    {"QShortcut", "Ins", u"Insert"},
    {"QShortcut", "Tab", u"Tab"},
    {"QShortcut", "Backspace", u"Retroceso"},
    {"QFileDialog", "%1 already exists.\nDo you want to replace it?",
     u"El archivo %1 ya existe.\n¿Quieres reemplazarlo?"},
    {"QFileDialog", "%1\nFile not found.\nPlease verify the correct file name was given.",
     u"%1\nEl archivo no existe.\nComprueba que el nombre está bien escrito."},
    {"QFileDialog", "%1\nDirectory not found.\nPlease verify the correct directory name was given.",
     u"%1\nLa carpeta no existe.\nComprueba que el nombre está bien escrito."},
    {"QFileDialog", "File &name:", u"&Nombre del archivo:"},
    {"QFileDialog", "Files of type:", u"Archivos de tipo:"},
    {"QFileDialog", "Show &hidden files", u"Mostrar los archivos &ocultos"},
    {"QFileDialog", "Are you sure you want to delete '%1'?", u"¿Seguro que quieres borrar “%1”?"},
    {"QFileDialog", "'%1' is write protected.\nDo you want to delete it anyway?",
     u"“%1” está protegido contra escritura.\n¿Quieres borrarlo de todas formas?"},
    {"QFileSystemModel", "Invalid filename", u"Nombre de archivo no válido"},
};

} // namespace

QString ToolkitTexts::translate(const char* context, const char* sourceText, const char*, int) const {
    if (context == nullptr || sourceText == nullptr) {
        return {};
    }
    const auto* const found = std::ranges::find_if(
        texts, [&](const Text& each) { return each.context == context && each.source == sourceText; });
    return found == std::end(texts) ? QString() : QString::fromUtf16(found->text);
}
