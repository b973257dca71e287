#pragma once

#include "DoctypeReading.h"
#include "DocumentTree.h"
#include "IndentStyle.h"
#include "LineIndex.h"
#include "NodeErrors.h"
#include "ProblemStarts.h"

#include <cstdint>
#include <memory>

/// What one parse tells of a text. Shared and never changed once it is delivered, so that any thread may read
/// it; whoever lets go of it last, it is not freed on the main thread.
struct ParsedDocument {
    DocumentTree tree;
    LineIndex lines;
    IndentStyle indent;
    NodeErrors errorNodes;
    ProblemStarts problemStarts;
    std::uint64_t byteCount = 0;  ///< Of the text in UTF-8.
    std::int64_t generation = -1; ///< Of the text in its buffer; -1 for the text before any parse.
    DoctypeReading doctype;       ///< With which `tree` was parsed.

    /// A document to fill in, for the owner of the only reference.
    static std::shared_ptr<ParsedDocument> make();
};
