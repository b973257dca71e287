#include "Precondition.h"

#include <cstdio>
#include <cstdlib>

void preconditionFailed(const char* message) {
    std::fprintf(stderr, "Fatal error: %s\n", message);
    std::abort();
}
