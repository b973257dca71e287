#include "Snippet.h"

Offset Snippet::cursor() const {
    return placeholders.empty() ? static_cast<Offset>(text.size()) : placeholders.front().lower;
}
