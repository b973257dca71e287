#pragma once

#include <QStringList>

/// The extensions of files that are XML, without the dot, the usual first: what a file dialog lists under
/// "XML". Any file can be opened; this only says which are looked for.
namespace XMLFileSuffixes {

const QStringList& all();

} // namespace XMLFileSuffixes
