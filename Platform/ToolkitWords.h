#pragma once

#include <QTranslator>

/// Spanish for what the toolkit's own dialogs say, in the words of this program: it goes before the toolkit's
/// translation, which lacks some strings and has others in another voice.
class ToolkitWords : public QTranslator {
    Q_OBJECT

public:
    using QTranslator::QTranslator;

    bool isEmpty() const override { return false; }

    /// Null where the toolkit's translation stands, as for every other text.
    QString translate(const char* context, const char* sourceText, const char* disambiguation,
                      int n) const override;
};
