#pragma once

#include "SourceText.h"

#include <QString>
#include <QStringView>

/// Text from a document as it is shown where there is no room for all of it, or no time: a name may be as long
/// as the document. Lengths count UTF-16 units.
namespace ShownText {

/// `text`, or its start and an ellipsis, together `most` units long.
QString shortened(QStringView text, qsizetype most);

/// The first `most` units of `range`, lone surrogates replaced, and an ellipsis behind them when there are more.
QString start(SourceRange ofRange, Offset most, const SourceText& in);

} // namespace ShownText
