#include "Symbol.h"

#include "Precondition.h"
#include "SymbolDrawing.h"

#include <QGuiApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPalette>
#include <QPixmapCache>

#include <cmath>

namespace {

constexpr float disabledOpacity = 0.4F;

const SymbolDrawing& drawing(QStringView name) {
    const SymbolDrawing* const found = SymbolDrawing::find({name.utf16(), std::size_t(name.size())});
    precondition(found != nullptr, "a symbol has that name");
    return *found;
}

void paint(QPainter& painter, const SymbolLayer& layer) {
    using enum SymbolLayer::Ink;
    const bool cuts = layer.ink == cutLine || layer.ink == cutFill;
    const bool fills = layer.ink == fill || layer.ink == cutFill;
    painter.setCompositionMode(cuts ? QPainter::CompositionMode_DestinationOut
                                    : QPainter::CompositionMode_SourceOver);
    const QPainterPath path = SymbolDrawing::path(layer.path);
    if (fills) {
        painter.fillPath(path, Qt::black);
    } else {
        const double width = cuts ? SymbolDrawing::cutWidth : SymbolDrawing::lineWidth;
        painter.strokePath(path, QPen(Qt::black, width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    }
}

QPixmap render(const SymbolDrawing& drawing, int side, const QColor& color) {
    QPixmap pixmap(side, side);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    const double unit = side / SymbolDrawing::side;
    // The grid is one unit smaller than the box. Half of that goes before it, as far as whole pixels allow.
    const double margin = std::floor(unit / 2);
    painter.translate(margin, margin);
    painter.scale(unit, unit);
    for (const SymbolLayer& layer : drawing.layers) {
        if (layer.path != nullptr) {
            paint(painter, layer);
        }
    }
    painter.resetTransform();
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(pixmap.rect(), color);
    return pixmap;
}

/// The symbol with `side` pixels of the device to a side.
QPixmap pixmap(QStringView name, int side, const QColor& color) {
    const QString key = QStringLiteral("symbol %1 %2 %3").arg(name).arg(side).arg(color.rgba(), 0, 16);
    QPixmap pixmap;
    if (!QPixmapCache::find(key, &pixmap)) {
        pixmap = render(drawing(name), side, color);
        QPixmapCache::insert(key, pixmap);
    }
    return pixmap;
}

class SymbolIconEngine : public QIconEngine {
public:
    SymbolIconEngine(QStringView name, SystemColor tint) : m_name(name.toString()), m_tint(tint) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State state) override {
        Symbol::draw(*painter, rect, m_name, tint(mode, state));
    }

    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        QPixmap pixmap(size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        paint(&painter, pixmap.rect(), mode, state);
        return pixmap;
    }

    QIconEngine* clone() const override { return new SymbolIconEngine(*this); }
    QString key() const override { return QStringLiteral("symbol"); }
    QString iconName() override { return m_name; }
    bool isNull() override { return false; }

private:
    QColor tint(QIcon::Mode mode, QIcon::State state) const {
        const bool isOn = state == QIcon::On && m_tint == SystemColor::textColor;
        QColor tint = color(isOn ? SystemColor::accent : m_tint, QGuiApplication::palette());
        if (mode == QIcon::Disabled) {
            tint.setAlphaF(disabledOpacity);
        }
        return tint;
    }

    QString m_name;
    SystemColor m_tint;
};

} // namespace

bool Symbol::has(QStringView name) {
    return SymbolDrawing::find({name.utf16(), std::size_t(name.size())}) != nullptr;
}

void Symbol::draw(QPainter& painter, const QRectF& box, QStringView name, const QColor& color) {
    // On the device's own pixels, since a pixmap that is scaled to its size or set between them is blurred.
    const QTransform toDevice = painter.deviceTransform();
    const QRectF onDevice = toDevice.mapRect(box);
    const int side = int(std::round(std::min(onDevice.width(), onDevice.height())));
    if (side <= 0) {
        return;
    }
    const QPointF corner = onDevice.center() - QPointF(side, side) / 2;
    const QTransform world = painter.worldTransform();
    painter.setWorldTransform(toDevice.inverted() * world);
    painter.drawPixmap(QPoint(int(std::round(corner.x())), int(std::round(corner.y()))),
                       pixmap(name, side, color));
    painter.setWorldTransform(world);
}

QIcon Symbol::icon(QStringView name, SystemColor tint) {
    precondition(has(name), "a symbol has that name");
    return QIcon(new SymbolIconEngine(name, tint));
}
