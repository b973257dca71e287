#include "TreeRowView.h"

#include "DisplayText.h"
#include "GroupedNumber.h"
#include "NodeSearch.h"
#include "ShownText.h"
#include "StringUnits.h"
#include "Symbol.h"
#include "SystemColor.h"
#include "SystemFont.h"
#include "TagPalette.h"
#include "TreeRowMatch.h"

#include <QFontMetrics>
#include <QPainter>
#include <QTextLayout>

#include <algorithm>
#include <cmath>
#include <vector>

namespace {

using Kind = TreeNode::Kind;

constexpr int inset = 8; ///< Between the edges of the list and the ground of its rows.
constexpr int padding = 8;
constexpr int gap = 4;
constexpr int wideGap = 8;
constexpr int disclosureWidth = 12;
constexpr int iconWidth = 16;
constexpr int errorWidth = 16;
constexpr double cornerRadius = 6;

constexpr std::size_t textPreviewLimit = 100;
constexpr std::size_t cdataPreviewLimit = 80;
constexpr std::size_t searchedPreview = 1024; ///< Characters that a match is shown in, wherever it stands.
constexpr Offset nameLimit = 200; ///< Units of a name; laying out a longer one takes its time.
constexpr std::size_t mostMarks = 50;

/// A part of a label in one font and colour.
struct Part {
    QString text;
    QFont font;
    QColor color;
    bool isOfDocument = true; ///< A filter may have found something in it.
};

QString preview(const TreeRowView& view, std::size_t limit) {
    const bool isFiltered = !view.filter.isEmpty();
    const std::size_t looked = isFiltered ? searchedPreview : limit;
    const QString start =
        QString::fromStdU16String(view.tree.preview(view.row.node, looked).value_or(std::u16string()));
    return isFiltered ? TreeRowMatch::excerpt(start, view.filter, static_cast<qsizetype>(limit)) : start;
}

/// The name of an element or instruction, its end left out where it is very long.
QString name(const TreeRowView& view) {
    return ShownText::start(view.tree[view.row.node].nameRange, nameLimit, view.tree.text);
}

/// The content of an instruction behind its target.
QString instructionContent(const TreeRowView& view) {
    QString content = preview(view, textPreviewLimit);
    const std::u16string_view target = view.tree.text.units(view.tree[view.row.node].nameRange);
    if (content.startsWith(QStringView(target.data(), static_cast<qsizetype>(target.size())))) {
        content.remove(0, static_cast<qsizetype>(target.size()));
    }
    return content.trimmed();
}

QColor tagColor(const TreeRowView& view, const QPalette& palette) {
    const std::u16string_view units = view.tree.text.units(view.tree[view.row.node].nameRange);
    return TagPalette::tagColor(QStringView(units.data(), static_cast<qsizetype>(units.size())), palette);
}

QFont italic(QFont font) {
    font.setItalic(true);
    return font;
}

std::vector<Part> parts(const TreeRowView& view, const QPalette& palette) {
    const QColor primary = color(SystemColor::textColor, palette);
    const QColor secondary = color(SystemColor::secondaryLabel, palette);
    switch (view.tree[view.row.node].kind) {
    case Kind::document:
        return {};
    case Kind::element:
        return {
            {name(view), SystemFont::semibold(SystemFont::body()), tagColor(view, palette)},
            {TreeRowMatch::attribute(view.tree, view.row.node, view.filter), SystemFont::body(), secondary}};
    case Kind::text:
        return {{preview(view, textPreviewLimit), SystemFont::body(), primary}};
    case Kind::comment:
        return {{preview(view, textPreviewLimit), italic(SystemFont::body()), secondary}};
    case Kind::cdata:
        return {{QStringLiteral("CDATA"), SystemFont::semibold(SystemFont::caption()),
                 color(SystemColor::systemTeal, palette), false},
                {preview(view, cdataPreviewLimit), SystemFont::body(), secondary}};
    case Kind::instruction:
        return {{name(view), SystemFont::semibold(SystemFont::body()), secondary},
                {instructionContent(view), SystemFont::body(), secondary}};
    case Kind::doctype:
        return {{preview(view, textPreviewLimit), SystemFont::body(), secondary}};
    }
    return {};
}

/// What is drawn for `text`: with something to see for its control characters, and nothing that turns the
/// order of what stands around.
QString visible(const QString& text) { return displayText(unitsOf(text)); }

/// One line of text in the middle of `rect`, cut at its right edge. Answers how wide it is.
int paintText(QPainter& painter, const QRect& rect, const Part& part,
              Qt::Alignment alignment = Qt::AlignLeft) {
    const QString shown =
        QFontMetrics(part.font).elidedText(visible(part.text), Qt::ElideRight, rect.width());
    painter.setFont(part.font);
    painter.setPen(part.color);
    // The base direction is that of the program, whatever the text begins with.
    painter.drawText(rect, int(alignment | Qt::AlignVCenter) | Qt::TextSingleLine | Qt::TextForceLeftToRight,
                     shown);
    return QFontMetrics(part.font).horizontalAdvance(shown);
}

/// The same, with what `filter` finds in it marked.
int paintMarked(QPainter& painter, const QRect& rect, const Part& part, const QString& filter,
                const QPalette& palette) {
    const QString shown =
        QFontMetrics(part.font).elidedText(visible(part.text), Qt::ElideRight, rect.width());
    const auto found = NodeSearch::occurrences(unitsOf(filter), unitsOf(shown), mostMarks);
    if (!part.isOfDocument || found.empty()) {
        return paintText(painter, rect, part);
    }
    QTextCharFormat mark;
    mark.setBackground(color(SystemColor::foundText, palette));
    mark.setForeground(color(SystemColor::textColor, palette));
    QList<QTextLayout::FormatRange> marks;
    for (const SourceRange range : found) {
        marks.push_back({static_cast<int>(range.lower), static_cast<int>(range.length()), mark});
    }
    QTextLayout layout(shown, part.font);
    QTextOption option;
    option.setWrapMode(QTextOption::NoWrap);
    option.setTextDirection(Qt::LeftToRight);
    layout.setTextOption(option);
    layout.setFormats(marks);
    layout.beginLayout();
    QTextLine line = layout.createLine();
    line.setLineWidth(rect.width());
    layout.endLayout();
    painter.setPen(part.color);
    layout.draw(&painter, QPointF(rect.left(), rect.top() + (rect.height() - line.height()) / 2));
    return QFontMetrics(part.font).horizontalAdvance(shown);
}

Part count(const TreeRowView& view, const QPalette& palette) {
    return {groupedNumber(view.tree[view.row.node].childCount),
            SystemFont::withMonospacedDigits(SystemFont::caption()),
            color(SystemColor::secondaryLabel, palette)};
}

int countWidth(const TreeRowView& view) {
    // Up to the next pixel: a number in less room than it needs is cut.
    const QFontMetricsF metrics(SystemFont::withMonospacedDigits(SystemFont::caption()));
    return static_cast<int>(
        std::ceil(metrics.horizontalAdvance(groupedNumber(view.tree[view.row.node].childCount))));
}

QRect ground(const QRect& row) { return row.adjusted(inset, 0, -inset, 0); }

/// The square of `size` in the middle of a row, its left edge at `x`.
QRect frame(const QRect& row, int x, int size) {
    return {x, row.top() + (row.height() - size) / 2, size, size};
}

void paintGround(QPainter& painter, const TreeRowView::Appearance& appearance, const QPalette& palette) {
    if (appearance.isAlternate) {
        painter.fillRect(appearance.rect, color(SystemColor::alternateRow, palette));
    }
    if (appearance.isSelected) {
        // Only what is selected has a shape of its own.
        const SystemColor fill = appearance.hasFocus ? SystemColor::selection : SystemColor::quietSelection;
        painter.setPen(Qt::NoPen);
        painter.setBrush(color(fill, palette));
        painter.drawRoundedRect(ground(appearance.rect), cornerRadius, cornerRadius);
    }
}

/// An outline around the row that keys go to.
void paintFocus(QPainter& painter, const QRect& row, const QPalette& palette) {
    constexpr double width = 1.5;
    const QRectF outline = QRectF(ground(row)).adjusted(width / 2, width / 2, -width / 2, -width / 2);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(color(SystemColor::accent, palette), width));
    painter.drawRoundedRect(outline, cornerRadius - width / 2, cornerRadius - width / 2);
}

} // namespace

QString TreeRowView::icon(Kind kind) {
    switch (kind) {
    case Kind::document:
        return QStringLiteral("doc");
    case Kind::element:
        return QStringLiteral("chevron.left.forwardslash.chevron.right");
    case Kind::text:
        return QStringLiteral("text.alignleft");
    case Kind::comment:
        return QStringLiteral("text.bubble");
    case Kind::cdata:
        return QStringLiteral("doc.plaintext");
    case Kind::instruction:
        return QStringLiteral("gearshape");
    case Kind::doctype:
        return QStringLiteral("doc.badge.gearshape");
    }
    return {};
}

QString TreeRowView::disclosureTitle(bool isExpanded) {
    return isExpanded ? QStringLiteral("Contraer") : QStringLiteral("Expandir");
}

QString TreeRowView::errorHelp() { return QStringLiteral("Este nodo tiene errores"); }

QString TreeRowView::text() const {
    QString text;
    for (const Part& part : parts(*this, QPalette())) {
        if (!text.isEmpty() && !part.text.isEmpty()) {
            text += u' ';
        }
        text += part.text;
    }
    return text;
}

void TreeRowView::paint(QPainter& painter, const Appearance& appearance, const QPalette& palette) const {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    paintGround(painter, appearance, palette);
    const QColor secondary = color(SystemColor::secondaryLabel, palette);
    const bool isElement = tree[row.node].isElement();
    if (row.hasChildren) {
        Symbol::draw(painter, disclosureRect(appearance),
                     row.isExpanded ? QStringLiteral("chevron.down") : QStringLiteral("chevron.right"),
                     appearance.isDisclosureHovered ? color(SystemColor::textColor, palette) : secondary);
    }
    Symbol::draw(painter, iconRect(appearance), icon(tree[row.node].kind),
                 isElement ? tagColor(*this, palette) : secondary);
    QRect label = labelRect(appearance);
    if (showsCount()) {
        const QRect number(label.right() + 1 + wideGap, label.top(), countWidth(*this), label.height());
        paintText(painter, number, count(*this, palette), Qt::AlignRight);
    }
    for (const Part& part : parts(*this, palette)) {
        label.setLeft(label.left() + paintMarked(painter, label, part, filter, palette) + wideGap);
    }
    if (hasError) {
        Symbol::draw(painter, errorRect(appearance), QStringLiteral("exclamationmark.triangle.fill"),
                     color(SystemColor::systemRed, palette));
    }
    if (appearance.isSelected && appearance.hasFocus) {
        paintFocus(painter, appearance.rect, palette);
    }
    painter.restore();
}

QRect TreeRowView::disclosureRect(const Appearance& appearance) {
    return frame(appearance.rect, appearance.rect.left() + inset + padding + appearance.indentation,
                 disclosureWidth);
}

QRect TreeRowView::iconRect(const Appearance& appearance) {
    return frame(appearance.rect, disclosureRect(appearance).right() + 1 + gap, iconWidth);
}

QRect TreeRowView::labelRect(const Appearance& appearance) const {
    const int left = iconRect(appearance).right() + 1 + wideGap;
    int right = appearance.rect.right() + 1 - inset - padding;
    if (hasError) {
        right -= errorWidth + wideGap;
    }
    if (showsCount()) {
        right -= countWidth(*this) + wideGap;
    }
    return {left, appearance.rect.top(), std::max(0, right - left), appearance.rect.height()};
}

QRect TreeRowView::errorRect(const Appearance& appearance) {
    return frame(appearance.rect, appearance.rect.right() + 1 - inset - padding - errorWidth, errorWidth);
}
