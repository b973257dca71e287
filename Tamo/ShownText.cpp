#include "ShownText.h"

#include <algorithm>

QString ShownText::shortened(QStringView text, qsizetype most) {
    return text.size() <= most ? text.toString() : text.first(most - 1).toString() + u'…';
}

QString ShownText::start(SourceRange range, Offset most, const SourceText& in) {
    const SourceRange shown{range.lower, range.lower + std::min(range.length(), most)};
    const QString text = QString::fromStdU16String(in.string(shown));
    return shown == range ? text : text + u'…';
}
