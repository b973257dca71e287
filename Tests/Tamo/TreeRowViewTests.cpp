#include "TreeRowView.h"

#include "GroupedNumber.h"
#include "Repeated.h"
#include "Symbol.h"
#include "SystemColor.h"
#include "TagPalette.h"
#include "TreeParser.h"

#include <QImage>
#include <QPaintEngine>
#include <QPainter>

#include <gtest/gtest.h>

#include <string>

namespace {

using Kind = TreeNode::Kind;
using Row = TreeOutline::Row;

DocumentTree parse(std::u16string_view text) { return TreeParser::parse(SourceText(text)); }

Row rowOf(NodeID node, const DocumentTree& tree, bool isExpanded = false) {
    return {node, 0, 0, tree[node].hasChildren(), isExpanded};
}

/// The label of the first node of `text`.
std::string label(std::u16string_view text) {
    const DocumentTree tree = parse(text);
    const Row row = rowOf({1}, tree);
    return TreeRowView{row, tree}.text().toStdString();
}

QPalette palette(const QColor& window) {
    QPalette palette;
    palette.setColor(QPalette::Window, window);
    return palette;
}

constexpr TreeRowView::Appearance plain{.rect = QRect(0, 0, 300, TreeRowView::height)};

QImage painted(const TreeRowView& view, const TreeRowView::Appearance& appearance, const QPalette& palette) {
    QImage image(appearance.rect.size(), QImage::Format_ARGB32_Premultiplied);
    image.fill(color(SystemColor::textBackground, palette));
    QPainter painter(&image);
    view.paint(painter, appearance, palette);
    return image;
}

bool hasColor(const QImage& image, const QRect& part, const QColor& wanted) {
    for (int y = part.top(); y <= part.bottom(); ++y) {
        for (int x = part.left(); x <= part.right(); ++x) {
            if (image.pixelColor(x, y).rgb() == wanted.rgb()) {
                return true;
            }
        }
    }
    return false;
}

/// What is painted as text, one string behind the other.
class PaintedText : public QPaintDevice, public QPaintEngine {
public:
    PaintedText() : QPaintEngine(AllFeatures) {}

    using QPaintEngine::drawPolygon;

    const QString& text() const { return m_text; }

    QPaintEngine* paintEngine() const override { return const_cast<PaintedText*>(this); }
    bool begin(QPaintDevice*) override { return true; }
    bool end() override { return true; }
    void updateState(const QPaintEngineState&) override {}
    void drawPixmap(const QRectF&, const QPixmap&, const QRectF&) override {}
    void drawPath(const QPainterPath&) override {}
    void drawPolygon(const QPointF*, int, PolygonDrawMode) override {}
    void drawTextItem(const QPointF&, const QTextItem& item) override { m_text += item.text(); }
    Type type() const override { return User; }

protected:
    int metric(PaintDeviceMetric metric) const override {
        switch (metric) {
        case PdmWidth:
        case PdmHeight:
            return 300;
        case PdmDpiX:
        case PdmDpiY:
        case PdmPhysicalDpiX:
        case PdmPhysicalDpiY:
            return 96;
        case PdmDevicePixelRatio:
            return 1;
        default:
            return QPaintDevice::metric(metric);
        }
    }

private:
    QString m_text;
};

bool isBlank(const QImage& image, const QRect& part) {
    const QImage copy = image.copy(part);
    QImage blank = copy;
    blank.fill(copy.pixelColor(0, 0));
    return copy == blank;
}

} // namespace

TEST(TreeRowView, HasASymbolForEveryKind) {
    const std::pair<Kind, const char*> icons[] = {
        {Kind::document, "doc"},
        {Kind::element, "chevron.left.forwardslash.chevron.right"},
        {Kind::text, "text.alignleft"},
        {Kind::comment, "text.bubble"},
        {Kind::cdata, "doc.plaintext"},
        {Kind::instruction, "gearshape"},
        {Kind::doctype, "doc.badge.gearshape"},
    };
    for (const auto& [kind, name] : icons) {
        EXPECT_EQ(TreeRowView::icon(kind).toStdString(), name);
        EXPECT_TRUE(Symbol::has(TreeRowView::icon(kind))) << name;
    }
}

TEST(TreeRowView, NamesTheDisclosureButtonForWhatItDoes) {
    EXPECT_EQ(TreeRowView::disclosureTitle(true), u"Contraer");
    EXPECT_EQ(TreeRowView::disclosureTitle(false), u"Expandir");
}

TEST(TreeRowView, ExplainsTheErrorMark) { EXPECT_EQ(TreeRowView::errorHelp(), u"Este nodo tiene errores"); }

TEST(TreeRowView, LabelsEveryKind) {
    EXPECT_EQ(label(u"<libro id='1'>texto</libro>"), "libro");
    EXPECT_EQ(label(u"  dos \n palabras &amp; más "), "dos palabras & más");
    EXPECT_EQ(label(u"<!-- una\n  nota -->"), "una nota");
    EXPECT_EQ(label(u"<![CDATA[ a < b ]]>"), "CDATA a < b");
    EXPECT_EQ(label(u"<![CDATA[]]>"), "CDATA");
    EXPECT_EQ(label(u"<?php  echo 1; ?>"), "php echo 1;");
    EXPECT_EQ(label(u"<?vacía?>"), "vacía");
    EXPECT_EQ(label(u"<!DOCTYPE nota SYSTEM 'n.dtd'>"), "DOCTYPE nota SYSTEM 'n.dtd'");
}

TEST(TreeRowView, CutsLongLabels) {
    const auto lengthOf = [](const std::u16string& text) {
        const DocumentTree tree = parse(text);
        const Row row = rowOf({1}, tree);
        return TreeRowView{row, tree}.text().size();
    };
    const std::u16string many = repeated(u"x", 100'000);
    EXPECT_EQ(lengthOf(many), 101);
    EXPECT_EQ(lengthOf(u"<!--" + many + u"-->"), 101);
    EXPECT_EQ(lengthOf(u"<![CDATA[" + many + u"]]>"), 6 + 81);
    EXPECT_EQ(lengthOf(u"<" + many + u"/>"), 201);
}

TEST(TreeRowView, CountsChildrenOnlyWhileTheyAreHidden) {
    const DocumentTree tree = parse(u"<a><b/></a>");
    const Row collapsed = rowOf({1}, tree);
    const Row expanded = rowOf({1}, tree, true);
    const Row leaf = rowOf({2}, tree);
    EXPECT_TRUE((TreeRowView{collapsed, tree}.showsCount()));
    EXPECT_FALSE((TreeRowView{expanded, tree}.showsCount()));
    EXPECT_FALSE((TreeRowView{leaf, tree}.showsCount()));
}

TEST(TreeRowView, ShowsTheWholeNumberOfChildren) {
    DocumentTree tree = parse(u"<a><b/></a>");
    const Row row = rowOf({1}, tree);
    for (std::uint32_t count = 1; count < 30'000; count += 97) {
        tree.nodes[1].childCount = count;
        PaintedText painted;
        {
            QPainter painter(static_cast<QPaintDevice*>(&painted));
            TreeRowView{row, tree}.paint(painter, plain, palette(Qt::white));
        }
        EXPECT_TRUE(painted.text().contains(groupedNumber(count))) << painted.text().toStdString();
    }
}

TEST(TreeRowView, LinesUpIconsWhateverHasChildren) {
    TreeRowView::Appearance indented = plain;
    indented.indentation = 32;
    EXPECT_EQ(TreeRowView::disclosureRect(plain).width(), 12);
    EXPECT_EQ(TreeRowView::iconRect(plain).width(), 16);
    EXPECT_GT(TreeRowView::iconRect(plain).left(), TreeRowView::disclosureRect(plain).right());
    EXPECT_EQ(TreeRowView::iconRect(indented).left(), TreeRowView::iconRect(plain).left() + 32);
}

TEST(TreeRowView, LeavesRoomForTheErrorMark) {
    const DocumentTree tree = parse(u"<a/>");
    const Row row = rowOf({1}, tree);
    const QRect label = TreeRowView{row, tree, true}.labelRect(plain);
    EXPECT_LT(label.right(), TreeRowView::errorRect(plain).left());
    EXPECT_GT((TreeRowView{row, tree}.labelRect(plain).right()), label.right());
}

TEST(TreeRowView, NeverHasALabelOfNegativeWidth) {
    const DocumentTree tree = parse(u"<a><b/></a>");
    const Row row = rowOf({1}, tree);
    TreeRowView::Appearance narrow = plain;
    narrow.rect.setWidth(10);
    EXPECT_EQ((TreeRowView{row, tree, true}.labelRect(narrow).width()), 0);
}

TEST(TreeRowView, PaintsStandInsForWhatTurnsTheOrderOfLettersOrIsNotSeen) {
    const auto picture = [](std::u16string_view text) {
        const DocumentTree tree = parse(text);
        const Row row = rowOf({1}, tree);
        return painted(TreeRowView{row, tree}, plain, palette(Qt::white));
    };
    EXPECT_EQ(picture(u"ab\u202Ecd"), picture(u"ab⬚cd"));
    EXPECT_EQ(picture(u"ab\u200Bcd"), picture(u"ab⬚cd"));
    EXPECT_EQ(picture(u"ab\u0001cd"), picture(u"ab⬚cd"));
    EXPECT_NE(picture(u"ab⬚cd"), picture(u"abcd"));
}

TEST(TreeRowView, PaintsElementsInTheColourOfTheirName) {
    const DocumentTree tree = parse(u"<libro/>");
    const Row row = rowOf({1}, tree);
    const TreeRowView view{row, tree};
    for (const QColor& window : {QColor(Qt::white), QColor(Qt::black)}) {
        const QPalette surroundings = palette(window);
        const QImage image = painted(view, plain, surroundings);
        const QColor tint = TagPalette::tagColor(u"libro", surroundings);
        EXPECT_TRUE(hasColor(image, TreeRowView::iconRect(plain), tint));
        EXPECT_TRUE(hasColor(image, view.labelRect(plain), tint));
    }
}

TEST(TreeRowView, PaintsTheErrorMarkOnlyForErrors) {
    const DocumentTree tree = parse(u"<a/>");
    const Row row = rowOf({1}, tree);
    const QPalette light = palette(Qt::white);
    const QRect mark = TreeRowView::errorRect(plain);
    EXPECT_TRUE(
        hasColor(painted({row, tree, true}, plain, light), mark, color(SystemColor::systemRed, light)));
    EXPECT_TRUE(isBlank(painted({row, tree, false}, plain, light), mark));
}

TEST(TreeRowView, PaintsADisclosureButtonOnlyForChildren) {
    const DocumentTree tree = parse(u"<a><b/></a>");
    const Row parent = rowOf({1}, tree);
    const Row expanded = rowOf({1}, tree, true);
    const Row leaf = rowOf({2}, tree);
    const QRect button = TreeRowView::disclosureRect(plain);
    const QPalette light = palette(Qt::white);
    const QImage collapsedButton = painted({parent, tree}, plain, light).copy(button);
    EXPECT_FALSE(isBlank(collapsedButton, collapsedButton.rect()));
    EXPECT_NE(painted({expanded, tree}, plain, light).copy(button), collapsedButton);
    EXPECT_TRUE(isBlank(painted({leaf, tree}, plain, light), button));
}

TEST(TreeRowView, ShowsWhereTheSelectionAndTheKeyboardAre) {
    const DocumentTree tree = parse(u"<a/>");
    const Row row = rowOf({1}, tree);
    const QPalette light = palette(Qt::white);
    TreeRowView::Appearance selected = plain;
    selected.isSelected = true;
    TreeRowView::Appearance focused = selected;
    focused.hasFocus = true;
    const auto ground = [&](const TreeRowView::Appearance& appearance) {
        return painted({row, tree}, appearance, light).pixelColor(250, TreeRowView::height / 2).rgb();
    };
    EXPECT_EQ(ground(plain), color(SystemColor::textBackground, light).rgb());
    EXPECT_EQ(ground(selected), color(SystemColor::quietSelection, light).rgb());
    EXPECT_EQ(ground(focused), color(SystemColor::selection, light).rgb());
}

TEST(TreeRowView, MarksWhatAFilterFound) {
    const DocumentTree tree = parse(u"<libro n='uno'/>");
    const Row row = rowOf({1}, tree);
    for (const QPalette& surroundings : {palette(Qt::white), palette(QColor(32, 32, 32))}) {
        const QColor ink = color(SystemColor::foundText, surroundings);
        const auto isMarked = [&](const char16_t* filter, bool isSelected) {
            TreeRowView::Appearance look = plain;
            look.isSelected = look.hasFocus = isSelected;
            const TreeRowView view{row, tree, false, QString::fromUtf16(filter)};
            return hasColor(painted(view, look, surroundings), view.labelRect(look), ink);
        };
        EXPECT_TRUE(isMarked(u"IBR", false));
        EXPECT_TRUE(isMarked(u"ibr", true));
        EXPECT_TRUE(isMarked(u"uno", false));
        EXPECT_FALSE(isMarked(u"otro", false));
        EXPECT_FALSE(isMarked(u"", false));
    }
}
