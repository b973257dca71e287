#pragma once

#include "ErrorLines.h"
#include "LineIndex.h"

#include <QFont>
#include <QPointer>
#include <QWidget>

#include <cstddef>
#include <functional>
#include <memory>

class TextView;

/// The gutter at the left of a text view: the number of every line that shows, counted from 1, and a red dot
/// before the number of a line on which a diagnostic starts. The first number comes from the lines that it
/// was given last, if there are any, and the others count on from it. A press selects the line, a drag several,
/// and Shift extends what is selected. All in logical pixels.
class LineNumberRuler : public QWidget {
    Q_OBJECT

public:
    /// A ruler without lines. Whoever makes it hands it to `clientView`.
    explicit LineNumberRuler(TextView& clientView);

    /// Both shared with what parsed the text; followed by `updateThickness`. Null before the first parse: then
    /// the view's own lines count.
    void setLines(std::shared_ptr<const LineIndex> lines) { m_lines = std::move(lines); }
    void setErrorLines(ErrorLines errorLines) { m_errorLines = std::move(errorLines); }
    /// Only where there are some.
    const LineIndex& lines() const {
        static const LineIndex none;
        return m_lines != nullptr ? *m_lines : none;
    }
    const ErrorLines& errorLines() const { return m_errorLines; }

    /// What to tell, as plain text, while the mouse rests on a line of the text, counted from 0.
    void setToolTips(std::function<QString(std::size_t)> ofLine) { m_toolTips = std::move(ofLine); }

    /// As wide as the numbers of the lines need; the view gives it other room only for more than half a
    /// pixel.
    void updateThickness();
    double ruleThickness() const { return m_ruleThickness; }
    QSize sizeHint() const override;

    /// How wide a ruler is for so many lines: three digits at least.
    static double thickness(std::size_t lineCount);

    /// Where the number and the dot of a line are drawn, whose top is at `y`.
    struct Marks {
        QPointF label; ///< The top left corner.
        QRectF dot;

        bool operator==(const Marks&) const = default;
    };
    static Marks marks(double y, double lineHeight, QSizeF label, double ruleThickness);

    /// The number drawn for a line of the view, which counts lines from 0.
    std::size_t number(std::size_t ofLine) const;

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    std::size_t lineCount() const;
    /// The point of the text's viewport beside a point of the ruler.
    QPointF beside(QPointF at) const;
    double top(std::size_t ofLine) const;
    std::size_t line(QPointF at) const;

    QPointer<TextView> m_clientView;
    std::shared_ptr<const LineIndex> m_lines;
    ErrorLines m_errorLines;
    std::function<QString(std::size_t)> m_toolTips;
    double m_ruleThickness;
};
