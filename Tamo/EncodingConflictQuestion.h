#pragma once

#include "EncodingChoice.h"

#include <QString>

#include <cstdint>

class QWidget;

/// Asks which holds where a file would be written in another encoding than it declares.
namespace EncodingConflictQuestion {

enum class Answer : std::uint8_t {
    keepEncoding,    ///< The declaration is to follow.
    keepDeclaration, ///< The file is to be written as declared.
    keepBoth,        ///< The file is to be written as it is, whatever it declares.
    cancel,
};

/// Asks over `window` about the file called `name`. `keepDeclaration` is only offered where the declared
/// encoding is known.
Answer ask(const EncodingConflict& conflict, const QString& name, QWidget* window);

} // namespace EncodingConflictQuestion
