#pragma once

#include "SourceText.h"
#include "Violation.h"

#include <optional>
#include <string>

/// What a violation says, and how to mend it, composed from the text that it was found in. Spanish, for the
/// user as they stand; names in them come from the document and are plain text.
namespace ViolationText {

std::u16string message(const Violation& violation, const SourceText& text);

/// The edits after which the violation is gone, where they are plain.
std::optional<Diagnostic::Fix> fix(const Violation& violation, const SourceText& text);

/// The name of a standard and the section that a constraint stands in, such as "XML 1.0, 2.8".
std::u16string source(Constraint constraint);

} // namespace ViolationText
