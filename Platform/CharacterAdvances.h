#pragma once

#include <QFont>
#include <QFontMetricsF>

#include <string_view>
#include <unordered_map>

/// How wide characters are in a font and those that stand in for it, without the cost of shaping them.
/// Exact for printable ASCII in a font where all of it is equally wide, a good guess for the rest. Pixels.
class CharacterAdvances {
public:
    explicit CharacterAdvances(const QFont& font = QFont());

    /// The width of a digit.
    double column() const { return m_column; }
    double tab() const { return m_column * tabColumns; }

    /// Whether every character from U+0020 to U+007E is as wide as a digit.
    bool isFixed() const { return m_isFixed; }

    /// Of a character that starts with `scalar`, or of a spacing mark. Of a tab and of what a stand-in is
    /// shown for: a column.
    double advance(char32_t scalar);

    /// Where the character that `scalar` starts ends when it starts at `x`, from where tab stops count.
    double end(double x, char32_t scalar);

private:
    static constexpr int tabColumns = 4;

    double measure(char32_t scalar) const;

    QFontMetricsF m_metrics;
    double m_column;
    bool m_isFixed = true;
    float m_ascii[0x80] = {};
    std::unordered_map<char32_t, float> m_others;
};
