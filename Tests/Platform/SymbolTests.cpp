#include "Symbol.h"

#include "SymbolDrawing.h"

#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QPalette>

#include <gtest/gtest.h>

#include <cmath>

namespace {

const QPalette light(Qt::white);
const QPalette dark(QColor(0x20, 0x20, 0x20));

/// Gives the application a palette, and its own back at the end.
class WithPalette {
public:
    explicit WithPalette(const QPalette& palette) { QGuiApplication::setPalette(palette); }
    ~WithPalette() { QGuiApplication::setPalette(m_former); }
    Q_DISABLE_COPY_MOVE(WithPalette)

private:
    QPalette m_former = QGuiApplication::palette();
};

QImage emptyImage(int side) {
    QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    return image;
}

/// The symbol at `side` pixels, with as many empty ones around it.
QImage drawn(QStringView name, int side, const QColor& color, const QPointF& shift = {}) {
    QImage image = emptyImage(3 * side);
    QPainter painter(&image);
    Symbol::draw(painter, QRectF(side, side, side, side).translated(shift), name, color);
    return image;
}

/// The sum of alpha inside `area`, in pixels.
double ink(const QImage& image, const QRect& area) {
    double ink = 0;
    for (int y = area.top(); y <= area.bottom(); ++y) {
        for (int x = area.left(); x <= area.right(); ++x) {
            ink += image.pixelColor(x, y).alphaF();
        }
    }
    return ink;
}

QImage image(const QIcon& icon, QIcon::Mode mode = QIcon::Normal, QIcon::State state = QIcon::Off) {
    return icon.pixmap(QSize(16, 16), 1, mode, state).toImage();
}

/// The colour of the pixel with most ink.
QColor strongest(const QImage& image) {
    QColor found(Qt::transparent);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixelColor(x, y).alpha() > found.alpha()) {
                found = image.pixelColor(x, y);
            }
        }
    }
    return found;
}

} // namespace

TEST(Symbol, HasEveryOneThatTheProgramShows) {
    constexpr QStringView names[] = {
        u"checkmark.circle.fill",
        u"checkmark.seal.fill",
        u"chevron.compact.right",
        u"chevron.left.forwardslash.chevron.right",
        u"chevron.right",
        u"cursorarrow.click.2",
        u"doc",
        u"doc.badge.gearshape",
        u"doc.plaintext",
        u"dot.radiowaves.up.forward",
        u"exclamationmark.circle.fill",
        u"exclamationmark.triangle.fill",
        u"gearshape",
        u"increase.indent",
        u"link",
        u"list.bullet.indent",
        u"list.bullet.rectangle",
        u"magnifyingglass",
        u"minus.circle.fill",
        u"plus",
        u"plus.circle.fill",
        u"plus.square.on.square",
        u"plus.square.on.square.fill",
        u"questionmark.circle.fill",
        u"rectangle.dashed",
        u"rectangle.split.2x1",
        u"scribble.variable",
        u"sidebar.trailing",
        u"text.alignleft",
        u"text.bubble",
        u"trash",
        u"xmark.seal.fill",
    };
    for (const QStringView name : names) {
        EXPECT_TRUE(Symbol::has(name)) << qPrintable(name.toString());
    }
}

TEST(Symbol, KnowsWholeNamesOnly) {
    for (const QStringView name : {u"", u"do", u"docs", u"Doc", u"doc.", u"zzz"}) {
        EXPECT_FALSE(Symbol::has(name)) << qPrintable(name.toString());
    }
    EXPECT_DEATH(Symbol::icon(u"docs"), "a symbol has that name");
}

TEST(Symbol, DrawsInsideItsBox) {
    for (const SymbolDrawing& each : SymbolDrawing::all()) {
        for (const int side : {12, 16, 24, 32, 56}) {
            const QImage image = drawn(each.name, side, Qt::black);
            const QRect box(side, side, side, side);
            const double inside = ink(image, box);
            const auto label = QStringView(each.name).toString();
            EXPECT_GT(inside, side * side * 0.04) << qPrintable(label) << " at " << side;
            EXPECT_LT(inside, side * side * 0.75) << qPrintable(label) << " at " << side;
            EXPECT_NEAR(ink(image, image.rect()), inside, 1e-6) << qPrintable(label) << " at " << side;
        }
    }
}

TEST(Symbol, IsNotCutOffAtItsBox) {
    // Twice as large a box shows what the smaller one would have cut off.
    for (const SymbolDrawing& each : SymbolDrawing::all()) {
        QPainterPath all;
        for (const SymbolLayer& layer : each.layers) {
            if (layer.path != nullptr && layer.ink == SymbolLayer::Ink::line) {
                QPainterPathStroker stroker;
                stroker.setWidth(SymbolDrawing::lineWidth);
                all.addPath(stroker.createStroke(SymbolDrawing::path(layer.path)));
            } else if (layer.path != nullptr && layer.ink == SymbolLayer::Ink::fill) {
                all.addPath(SymbolDrawing::path(layer.path));
            }
        }
        EXPECT_TRUE(QRectF(0, 0, 15, 15).contains(all.boundingRect()))
            << qPrintable(QStringView(each.name).toString());
    }
}

TEST(Symbol, DiffersFromEveryOther) {
    for (const SymbolDrawing& one : SymbolDrawing::all()) {
        for (const SymbolDrawing& other : SymbolDrawing::all()) {
            EXPECT_EQ(&one == &other, drawn(one.name, 16, Qt::black) == drawn(other.name, 16, Qt::black))
                << qPrintable(QStringView(one.name).toString() + u' ' + QStringView(other.name).toString());
        }
    }
}

TEST(Symbol, TakesTheColorItIsGiven) {
    for (const SymbolDrawing& each : SymbolDrawing::all()) {
        const QImage red = drawn(each.name, 32, Qt::red);
        EXPECT_EQ(strongest(red), QColor(Qt::red)) << qPrintable(QStringView(each.name).toString());
        EXPECT_EQ(strongest(drawn(each.name, 32, Qt::blue)), QColor(Qt::blue));
    }
}

TEST(Symbol, StandsOnWholePixels) {
    const QImage sharp = drawn(u"plus", 16, Qt::black);
    EXPECT_EQ(drawn(u"plus", 16, Qt::black, QPointF(0.3, -0.4)), sharp);
    // The lines of the drawing fill a row and a column of pixels, and their neighbours hardly.
    EXPECT_EQ(sharp.pixelColor(16 + 7, 16 + 4).alpha(), 255);
    EXPECT_LT(sharp.pixelColor(16 + 6, 16 + 4).alpha(), 64);
    EXPECT_EQ(sharp.pixelColor(16 + 4, 16 + 7).alpha(), 255);
    EXPECT_LT(sharp.pixelColor(16 + 4, 16 + 6).alpha(), 64);
}

TEST(Symbol, UsesThePixelsOfDenseScreens) {
    for (const double ratio : {1.5, 2.0}) {
        const int side = int(16 * ratio);
        QImage dense = emptyImage(3 * side);
        dense.setDevicePixelRatio(ratio);
        QPainter painter(&dense);
        Symbol::draw(painter, QRectF(16, 16, 16, 16), u"gearshape", Qt::black);
        painter.end();
        dense.setDevicePixelRatio(1);
        EXPECT_EQ(dense, drawn(u"gearshape", side, Qt::black)) << ratio;
    }
}

TEST(Symbol, LeavesThePainterAsItWas) {
    QImage image = emptyImage(32);
    QPainter painter(&image);
    painter.translate(3, 4);
    painter.scale(2, 2);
    const QTransform before = painter.worldTransform();
    Symbol::draw(painter, QRectF(0, 0, 8, 8), u"doc", Qt::black);
    EXPECT_EQ(painter.worldTransform(), before);
    EXPECT_GT(ink(image, QRect(3, 4, 16, 16)), 0);
    EXPECT_NEAR(ink(image, QRect(3, 4, 16, 16)), ink(image, image.rect()), 1e-6);
}

TEST(Symbol, DrawsNothingInAnEmptyBox) {
    QImage image = emptyImage(8);
    QPainter painter(&image);
    Symbol::draw(painter, QRectF(4, 4, 0, 4), u"doc", Qt::black);
    EXPECT_EQ(ink(image, image.rect()), 0);
}

TEST(Symbol, MakesIconsThatFollowThePalette) {
    const QIcon icon = Symbol::icon(u"rectangle.split.2x1");
    {
        const WithPalette palette(light);
        EXPECT_EQ(strongest(image(icon)), color(SystemColor::textColor, light));
    }
    const WithPalette palette(dark);
    EXPECT_EQ(strongest(image(icon)), color(SystemColor::textColor, dark));
}

TEST(Symbol, MakesIconsOfATint) {
    const WithPalette palette(light);
    EXPECT_EQ(strongest(image(Symbol::icon(u"checkmark.seal.fill", SystemColor::systemGreen))),
              color(SystemColor::systemGreen, light));
}

TEST(Symbol, DimsIconsThatAreDisabledAndColorsThoseThatAreOn) {
    const WithPalette palette(light);
    const QIcon icon = Symbol::icon(u"rectangle.split.2x1");
    EXPECT_NEAR(strongest(image(icon, QIcon::Disabled)).alphaF(), 0.4, 0.01);
    EXPECT_EQ(strongest(image(icon, QIcon::Normal, QIcon::On)), color(SystemColor::accent, light));
    const QIcon red = Symbol::icon(u"xmark.seal.fill", SystemColor::systemRed);
    EXPECT_EQ(strongest(image(red, QIcon::Normal, QIcon::On)), color(SystemColor::systemRed, light));
}

TEST(SymbolDrawing, ReadsPaths) {
    EXPECT_EQ(SymbolDrawing::path("M 1 2.5 L 3 4").boundingRect(), QRectF(1, 2.5, 2, 1.5));
    EXPECT_EQ(SymbolDrawing::path("R 1 2 3 4 0").boundingRect(), QRectF(1, 2, 3, 4));
    EXPECT_EQ(SymbolDrawing::path("O 5 5 2").boundingRect(), QRectF(3, 3, 4, 4));
    EXPECT_EQ(SymbolDrawing::path("M 0 0 L 1 0 L 1 1 Z").elementCount(), 4);
    EXPECT_TRUE(SymbolDrawing::path("").isEmpty());
}

TEST(SymbolDrawing, StopsAtPathsThatItCannotRead) {
    for (const char* const text : {"M 1", "X 1 2", "M 1 2L 3 4", "M 1 y", "M 1 2 3 4"}) {
        EXPECT_DEATH(SymbolDrawing::path(text), "a path has") << text;
    }
}
