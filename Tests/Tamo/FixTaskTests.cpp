#include "FixTask.h"

#include "Repeated.h"
#include "UndoManager.h"
#include "WaitFor.h"

#include <QSignalSpy>

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace {

/// A text with its history, the view's selection, and a task that mends it.
struct Desk {
    TextBuffer buffer;
    UndoManager undoManager;
    TextSelection selection;
    FixTask task;
    QSignalSpy finished;

    explicit Desk(std::u16string_view text)
        : buffer(Rope(text), std::make_shared<TextMirror>(Rope(text))), task(buffer),
          finished(&task, &FixTask::finished) {
        buffer.setUndoManager(&undoManager);
        buffer.history().setSelectionKeeper(
            {[this] { return selection; }, [this](TextSelection restored) { selection = restored; }});
    }

    bool run() {
        task.start();
        return waitFor([this] { return !task.isRunning(); });
    }
    std::u16string text() const { return buffer.text().units(buffer.text().fullRange()); }
};

TEST(FixTask, MendsInOneStepAndTellsWhatIsLeft) {
    Desk desk(u"<a x='1' x='2'>&<b>");
    EXPECT_FALSE(desk.task.isRunning());
    ASSERT_TRUE(desk.run());
    EXPECT_EQ(desk.text(), u"<a x='1' x='2'>&amp;<b></b></a>");
    EXPECT_EQ(desk.undoManager.undoActionName(), QStringLiteral("Corregir todo"));
    ASSERT_EQ(desk.finished.count(), 1);
    EXPECT_EQ(desk.finished[0][0].value<std::size_t>(), 1U);
    EXPECT_FALSE(desk.finished[0][1].toBool());
    desk.undoManager.undo();
    EXPECT_EQ(desk.text(), u"<a x='1' x='2'>&<b>");
    EXPECT_FALSE(desk.undoManager.canUndo());
}

TEST(FixTask, LeavesNoStepWhereNothingCanBeMended) {
    Desk desk(u"<a/><b/>");
    ASSERT_TRUE(desk.run());
    EXPECT_FALSE(desk.undoManager.canUndo());
    ASSERT_EQ(desk.finished.count(), 1);
    EXPECT_EQ(desk.finished[0][0].value<std::size_t>(), 1U);
}

TEST(FixTask, MendsTheTextThatItBecameMeanwhile) {
    Desk desk(u"<a>&");
    desk.task.start();
    desk.buffer.type({4, 4}, u"&");
    ASSERT_TRUE(waitFor([&] { return !desk.task.isRunning(); }));
    EXPECT_EQ(desk.text(), u"<a>&amp;&amp;</a>");
    EXPECT_EQ(desk.finished.count(), 1);
}

TEST(FixTask, LeavesTheTextAsItIsWhenCancelled) {
    Desk desk(u"<a>&");
    QSignalSpy runs(&desk.task, &FixTask::isRunningChanged);
    desk.task.start();
    EXPECT_TRUE(desk.task.isRunning());
    desk.task.cancel();
    EXPECT_FALSE(desk.task.isRunning());
    desk.task.cancel();
    EXPECT_EQ(runs.count(), 2);
    // What a later run delivers comes after anything that the cancelled one would have.
    ASSERT_TRUE(desk.run());
    EXPECT_EQ(desk.finished.count(), 1);
    EXPECT_EQ(desk.text(), u"<a>&amp;</a>");
}

TEST(FixTask, KeepsTheSelectionAmongManyEdits) {
    const std::u16string text = u"<r>" + repeated(u"& ", 2'000) + u"x" + repeated(u"& ", 2'000) + u"</r>";
    Desk desk(text);
    desk.selection = TextSelection::at(4'004);
    ASSERT_TRUE(desk.run());
    EXPECT_EQ(desk.text(), u"<r>" + repeated(u"&amp; ", 2'000) + u"x" + repeated(u"&amp; ", 2'000) + u"</r>");
    EXPECT_EQ(desk.selection, TextSelection::at(12'004));
    desk.undoManager.undo();
    EXPECT_EQ(desk.text(), text);
    EXPECT_EQ(desk.selection, TextSelection::at(4'004));
}

} // namespace
