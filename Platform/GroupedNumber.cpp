#include "GroupedNumber.h"

namespace {

/// Four digits are read at a glance.
constexpr qsizetype mostTogether = 4;
constexpr qsizetype groupSize = 3;

} // namespace

QString groupedNumber(std::uint64_t number) {
    QString text = QString::number(number);
    if (text.size() <= mostTogether) {
        return text;
    }
    for (qsizetype place = text.size() - groupSize; place > 0; place -= groupSize) {
        text.insert(place, u'.');
    }
    return text;
}

QString counted(std::uint64_t number, const QString& one, const QString& many) {
    return QStringLiteral("%1 %2").arg(groupedNumber(number), number == 1 ? one : many);
}
