#pragma once

#include <QTranslator>

/// The toolkit's own texts in the words of the program, where its translation lacks them or has others: keys as
/// they are written on the keyboard ("Ctrl+Mayús"), the dialogs for files, "archivo", and tú. Installed after that
/// translation.
class ToolkitTexts : public QTranslator {
    Q_OBJECT

public:
    using QTranslator::QTranslator;

    bool isEmpty() const override { return false; }
    /// Null for every text that the toolkit's translation is to give.
    QString translate(const char* context, const char* sourceText, const char* disambiguation = nullptr,
                      int n = -1) const override;
};
