#pragma once

#include "StringEncoding.h"

#include <QString>

#include <vector>

/// The Spanish name of `encoding` to show: its scripts and, in parentheses, its usual name, as in
/// "Japonés (Shift JIS)". Never empty; one outside the table is shown by the name that documents declare.
QString localizedName(const StringEncoding& encoding);

/// A group of encodings under a title, in the order in which they are to be listed.
struct EncodingGroup {
    QString title;
    std::vector<StringEncoding> encodings;
};

/// All encodings that documents can name, each in its group; before them a group of the usual ones, which are
/// in their own group too. Made once, on first use.
const std::vector<EncodingGroup>& encodingGroups();
