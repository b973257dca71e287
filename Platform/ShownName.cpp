#include "ShownName.h"

#include "DisplayText.h"

QString shownPath(const QString& path) {
    // A tab is drawn as a gap in texts; in a name it is as odd as other controls.
    QString shown = displayText(path.toStdU16String());
    return shown.replace(u'\t', u'\u2B1A');
}

QString shownFileName(const QString& path) { return shownPath(path.mid(path.lastIndexOf(u'/') + 1)); }
