#pragma once

#include "StringEncoding.h"

#include <QString>

/// The Spanish name of `encoding` to show: its scripts and, in parentheses, its usual name, as in
/// "Japonés (Shift JIS)". Never empty; one outside the table is shown by the name that documents declare.
QString localizedName(const StringEncoding& encoding);
