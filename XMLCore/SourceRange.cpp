#include "SourceRange.h"

std::string SourceRange::description() const { return std::to_string(lower) + "..<" + std::to_string(upper); }
