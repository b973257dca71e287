#pragma once

#include <QPointer>

#include <vector>

class DocumentWindow;

/// The questions about unsaved changes before several windows close together.
namespace ChangesQuestion {

/// Asks about each of `windows` that has changes, and waits until those to be saved are saved. Returns whether
/// all may close: false as soon as the user cancels a question or a document is not saved. No window is closed
/// and no change is given up here, so that a cancelled question costs nothing. A document that changes after
/// its question is asked about again.
bool mayClose(const std::vector<QPointer<DocumentWindow>>& windows);

} // namespace ChangesQuestion
