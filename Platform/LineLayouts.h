#pragma once

#include <QCache>
#include <QFont>
#include <QString>

#include <memory>
#include <string_view>

class QTextLayout;

/// The laid out stretches of text that a text view has drawn lately, found again by their units: a line that
/// did not change costs nothing, wherever it moved.
class LineLayouts {
public:
    LineLayouts();
    ~LineLayouts();

    /// Forgets all layouts of another font. A tab reaches to the next multiple of `tabWidth` pixels.
    void setFont(const QFont& font, double tabWidth);

    /// The layout of one line of `units`, in a single row, left to right, stand-ins drawn for what would not
    /// be seen. Good until the font changes.
    std::shared_ptr<const QTextLayout> layout(std::u16string_view units);

private:
    std::shared_ptr<const QTextLayout> layOut(const QString& text) const;

    QFont m_font;
    double m_tabWidth = 80;
    QCache<QString, std::shared_ptr<const QTextLayout>> m_layouts;
};
