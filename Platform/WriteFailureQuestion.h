#pragma once

struct WriteFailure;
class QWidget;

/// Tells over `window` why a document was not written, and offers what would help, if anything does. Returns
/// whether the user wants that.
bool wantsRemedy(const WriteFailure& failure, QWidget* window);
