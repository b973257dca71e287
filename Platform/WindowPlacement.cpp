#include "WindowPlacement.h"

namespace {

constexpr int step = 28;
constexpr QSize usualFrame(2, 36); ///< Of a window that is not shown yet, about: its title and its edges.

int next(int last, int length, int from, int available) {
    const int at = last + step;
    return at >= from && at + length <= from + available ? at : from;
}

} // namespace

QSize WindowPlacement::fitting(QSize wanted, const QRect& available) {
    return wanted.boundedTo(available.size() - usualFrame);
}

QPoint WindowPlacement::cascaded(QPoint last, QSize size, const QRect& available) {
    return {next(last.x(), size.width(), available.x(), available.width()),
            next(last.y(), size.height(), available.y(), available.height())};
}
