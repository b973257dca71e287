#pragma once

#include "ShapedText.h"

#include <QCache>
#include <QString>

#include <memory>

/// The stretches of text that were shaped lately, found again by their units: a line that did not change
/// costs nothing, wherever it moved and however it is coloured.
class ShapedTexts {
public:
    ShapedTexts();

    /// Forgets all that was shaped in another font.
    void setFont(const QFont& font, double tabWidth);

    std::shared_ptr<const ShapedText> shaped(std::u16string_view units);

private:
    QFont m_font;
    double m_tabWidth = 80;
    QCache<QString, std::shared_ptr<const ShapedText>> m_texts;
};
