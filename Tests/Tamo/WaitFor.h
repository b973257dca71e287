#pragma once

#include <QTest>

/// Runs the event loop until `isDone`; answers whether it ever was. The limit only keeps a failing test from
/// hanging.
template <class IsDone>
bool waitFor(IsDone isDone) {
    return QTest::qWaitFor(isDone, 60'000);
}
