#pragma once

#include "SessionDesk.h"

#include <QTest>

#include <gtest/gtest.h>

/// A session that is open over a text, for tests of the views on it.
struct ParsedDesk : SessionDesk {
    UndoManager& undo = undoManager;

    explicit ParsedDesk(std::u16string_view text) : SessionDesk(text) { EXPECT_TRUE(open()); }

    /// Until the tree is that of the text of now.
    void waitForTree() { EXPECT_TRUE(settle()); }

    QString text() const { return QString::fromStdU16String(SessionDesk::text()); }
};
