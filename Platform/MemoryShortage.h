#pragma once

#include <QString>

/// What to tell the user where the memory was too short for something: `memoryShortage("buscar")` is "No hay
/// memoria suficiente para buscar."
inline QString memoryShortage(const QString& forWhat) {
    return QStringLiteral("No hay memoria suficiente para ") + forWhat + u'.';
}
