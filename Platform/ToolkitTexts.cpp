#include "ToolkitTexts.h"

#include <algorithm>
#include <string_view>

namespace {

struct Text {
    std::string_view context;
    std::string_view source;
    const char* text;
};

constexpr Text texts[] = {
    {"QShortcut", "Ctrl", "Ctrl"},
    {"QShortcut", "Shift", "Mayús"},
    {"QShortcut", "Return", "Intro"},
    {"QShortcut", "Esc", "Esc"},
    {"QShortcut", "Del", "Supr"},
    {"QShortcut", "Ins", "Insert"},
    {"QShortcut", "Tab", "Tab"},
    {"QShortcut", "Backspace", "Retroceso"},

    {"QFileDialog", "Look in:", "Buscar en:"},
    {"QFileDialog", "Back", "Atrás"},
    {"QFileDialog", "Go back", "Ir atrás"},
    {"QFileDialog", "Forward", "Adelante"},
    {"QFileDialog", "Go forward", "Ir adelante"},
    {"QFileDialog", "Parent Directory", "Carpeta superior"},
    {"QFileDialog", "Go to the parent directory", "Ir a la carpeta superior"},
    {"QFileDialog", "Create New Folder", "Crear una carpeta"},
    {"QFileDialog", "Create a New Folder", "Crear una carpeta"},
    {"QFileDialog", "List View", "Lista"},
    {"QFileDialog", "Change to list view mode", "Ver como lista"},
    {"QFileDialog", "Detail View", "Detalles"},
    {"QFileDialog", "Change to detail view mode", "Ver con detalles"},
    {"QFileDialog", "Sidebar", "Lugares"},
    {"QFileDialog", "List of places and bookmarks", "Lugares y marcadores"},
    {"QFileDialog", "Files", "Archivos"},
    {"QFileDialog", "Files of type:", "Tipo de archivo:"},
    {"QFileDialog", "Find Directory", "Buscar una carpeta"},
    {"QFileDialog", "Open", "Abrir"},
    {"QFileDialog", "Save As", "Guardar como"},
    {"QFileDialog", "Directory:", "Carpeta:"},
    {"QFileDialog", "File &name:", "&Nombre del archivo:"},
    {"QFileDialog", "&Open", "&Abrir"},
    {"QFileDialog", "&Choose", "&Elegir"},
    {"QFileDialog", "&Save", "&Guardar"},
    {"QFileDialog", "All Files (*)", "Todos los archivos (*)"},
    {"QFileDialog", "All files (*)", "Todos los archivos (*)"},
    {"QFileDialog", "Show ", "Mostrar "},
    {"QFileDialog", "&Rename", "Cambiar el &nombre"},
    {"QFileDialog", "&Delete", "&Eliminar"},
    {"QFileDialog", "Show &hidden files", "Mostrar los archivos &ocultos"},
    {"QFileDialog", "&New Folder", "Nueva &carpeta"},
    {"QFileDialog", "New Folder", "Nueva carpeta"},
    {"QFileDialog", "Directories", "Carpetas"},
    {"QFileDialog", "Delete", "Eliminar"},
    {"QFileDialog", "Remove", "Quitar"},
    {"QFileDialog", "%1\nDirectory not found.\nPlease verify the correct directory name was given.",
     "%1\nLa carpeta no existe. Comprueba su nombre."},
    {"QFileDialog", "%1\nFile not found.\nPlease verify the correct file name was given.",
     "%1\nEl archivo no existe. Comprueba su nombre."},
    {"QFileDialog", "%1 already exists.\nDo you want to replace it?",
     "“%1” ya existe.\n¿Quieres reemplazarlo?"},
    {"QFileDialog", "'%1' is write protected.\nDo you want to delete it anyway?",
     "“%1” está protegido contra escritura.\n¿Quieres eliminarlo de todos modos?"},
    {"QFileDialog", "Are you sure you want to delete '%1'?", "¿Seguro que quieres eliminar “%1”?"},
    {"QFileDialog", "Could not delete directory.", "No se pudo eliminar la carpeta."},
    {"QFileDialog", "Recent Places", "Lugares recientes"},
    {"QFileDialog", "My Computer", "Equipo"},
    {"QFileDialog", "Drive", "Unidad"},
    {"QFileDialog", "%1 File", "Archivo %1"},
    {"QFileDialog", "File Folder", "Carpeta"},
    {"QFileDialog", "Folder", "Carpeta"},
    {"QFileDialog", "Alias", "Alias"},
    {"QFileDialog", "Shortcut", "Acceso directo"},
    {"QFileDialog", "File", "Archivo"},
    {"QFileDialog", "Unknown", "Desconocido"},

    {"QAbstractFileIconProvider", "Drive", "Unidad"},
    {"QAbstractFileIconProvider", "%1 File", "Archivo %1"},
    {"QAbstractFileIconProvider", "File Folder", "Carpeta"},
    {"QAbstractFileIconProvider", "Folder", "Carpeta"},
    {"QAbstractFileIconProvider", "Alias", "Alias"},
    {"QAbstractFileIconProvider", "Shortcut", "Acceso directo"},
    {"QAbstractFileIconProvider", "File", "Archivo"},
    {"QAbstractFileIconProvider", "Unknown", "Desconocido"},

    {"QFileSystemModel", "Name", "Nombre"},
    {"QFileSystemModel", "Size", "Tamaño"},
    {"QFileSystemModel", "Kind", "Tipo"},
    {"QFileSystemModel", "Type", "Tipo"},
    {"QFileSystemModel", "Date Modified", "Modificado"},
    {"QFileSystemModel", "My Computer", "Equipo"},
    {"QFileSystemModel", "Computer", "Equipo"},
    {"QFileSystemModel", "%1 bytes", "%1 bytes"},
    {"QFileSystemModel", "%1 byte(s)", "%1 bytes"},
    {"QFileSystemModel", "Invalid filename", "El nombre no vale"},
    {"QFileSystemModel",
     "<b>The name \"%1\" cannot be used.</b><p>Try using another name, with fewer characters or no "
     "punctuation marks.",
     "<b>El nombre “%1” no se puede usar.</b><p>Prueba con otro más corto o sin signos de puntuación."},

    {"QPlatformTheme", "OK", "Aceptar"},
    {"QPlatformTheme", "Save", "Guardar"},
    {"QPlatformTheme", "Open", "Abrir"},
    {"QPlatformTheme", "&Yes", "&Sí"},
    {"QPlatformTheme", "&No", "&No"},
    {"QPlatformTheme", "Cancel", "Cancelar"},
    {"QPlatformTheme", "Close", "Cerrar"},
    {"QPlatformTheme", "Discard", "Descartar"},
};

} // namespace

QString ToolkitTexts::translate(const char* context, const char* sourceText, const char*, int) const {
    if (context == nullptr || sourceText == nullptr) {
        return {};
    }
    const auto* const found = std::ranges::find_if(
        texts, [&](const Text& each) { return each.context == context && each.source == sourceText; });
    return found == std::end(texts) ? QString() : QString::fromUtf8(found->text);
}
