#pragma once

#include <QString>

/// `title` for a menu or a button, where a single ampersand would mark a letter.
inline QString menuText(QString title) { return title.replace(u'&', QStringLiteral("&&")); }
