#include "ShapedTexts.h"

namespace {

/// Units, some ten screens full. Every text counts a few units more than it has.
constexpr int capacity = 400'000;
constexpr int overhead = 64;

} // namespace

ShapedTexts::ShapedTexts() : m_texts(capacity) {}

void ShapedTexts::setFont(const QFont& font, double tabWidth) {
    if (font != m_font || tabWidth != m_tabWidth) {
        m_font = font;
        m_tabWidth = tabWidth;
        m_texts.clear();
    }
}

std::shared_ptr<const ShapedText> ShapedTexts::shaped(std::u16string_view units) {
    const auto length = static_cast<qsizetype>(units.size());
    // The key to look for need not be copied.
    const QString sought = QString::fromRawData(reinterpret_cast<const QChar*>(units.data()), length);
    if (const auto* known = m_texts.object(sought)) {
        return *known;
    }
    auto made = std::make_shared<const ShapedText>(units, m_font, m_tabWidth);
    m_texts.insert(QString(sought.constData(), length), new std::shared_ptr(made),
                   static_cast<int>(std::min<qsizetype>(length, capacity / 2)) + overhead);
    return made;
}
