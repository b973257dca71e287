#pragma once

#include "Violation.h"
#include "XMLCharacters.h"

#include <string_view>
#include <vector>

/// The rules for constructs that stand in documents as well as in their document type declarations.
namespace MarkupCheck {

/// Hyphens side by side inside a comment, whose content is `content`: each run of them once.
void checkComment(std::u16string_view units, SourceRange content, std::vector<Violation>& violations);

/// The target of the instruction with this content, which `<?` stands before and which is not the XML
/// declaration in its place.
void checkInstruction(std::u16string_view units, SourceRange content, std::vector<Violation>& violations);

/// The first character of `name` that may not stand where it does.
void checkName(std::u16string_view units, SourceRange name, std::vector<Violation>& violations);

} // namespace MarkupCheck
