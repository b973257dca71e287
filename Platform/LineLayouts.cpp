#include "LineLayouts.h"

#include "DisplayText.h"

#include <QTextLayout>

namespace {

/// Some ten screens full.
constexpr int capacity = 600;

} // namespace

LineLayouts::LineLayouts() : m_layouts(capacity) {}

LineLayouts::~LineLayouts() = default;

void LineLayouts::setFont(const QFont& font, double tabWidth) {
    if (font != m_font || tabWidth != m_tabWidth) {
        m_font = font;
        m_tabWidth = tabWidth;
        m_layouts.clear();
    }
}

std::shared_ptr<const QTextLayout> LineLayouts::layout(std::u16string_view units) {
    QString text = displayText(units);
    if (!units.empty() && units.back() == u'\r') {
        text.back() = u' ';
    }
    if (const auto* known = m_layouts.object(text)) {
        return *known;
    }
    auto made = layOut(text);
    m_layouts.insert(text, new std::shared_ptr(made));
    return made;
}

std::shared_ptr<const QTextLayout> LineLayouts::layOut(const QString& text) const {
    QTextOption option;
    option.setTextDirection(Qt::LeftToRight);
    option.setWrapMode(QTextOption::NoWrap);
    option.setTabStopDistance(m_tabWidth);

    const auto layout = std::make_shared<QTextLayout>(text, m_font);
    layout->setCacheEnabled(true);
    layout->setTextOption(option);
    layout->beginLayout();
    layout->createLine();
    layout->endLayout();
    return layout;
}
