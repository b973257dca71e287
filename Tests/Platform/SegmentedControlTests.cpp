#include "SegmentedControl.h"

#include <QAbstractButton>
#include <QAccessible>
#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

namespace {

class SegmentedControlTest : public testing::Test {
protected:
    SegmentedControlTest() {
        m_control.addSegment(QStringLiteral("Uno"), u"doc");
        m_control.addSegment(QStringLiteral("Dos & tres"), u"plus");
        m_control.addSegment(QStringLiteral("Cuatro"), u"link");
        m_control.show();
    }

    QAbstractButton* segment(int index) { return m_control.findChildren<QAbstractButton*>().at(index); }

    SegmentedControl m_control;
    QSignalSpy m_choices{&m_control, &SegmentedControl::chosen};
};

} // namespace

TEST(SegmentedControl, HasNoChoiceWhileItIsEmpty) {
    const SegmentedControl empty;
    EXPECT_EQ(empty.count(), 0);
    EXPECT_EQ(empty.current(), -1);
}

TEST_F(SegmentedControlTest, StartsWithTheFirst) {
    EXPECT_EQ(m_control.count(), 3);
    EXPECT_EQ(m_control.current(), 0);
    EXPECT_EQ(m_choices.count(), 0);
}

TEST_F(SegmentedControlTest, IsChosenByMouse) {
    QTest::mouseClick(segment(2), Qt::LeftButton);
    EXPECT_EQ(m_control.current(), 2);
    ASSERT_EQ(m_choices.count(), 1);
    EXPECT_EQ(m_choices[0][0].toInt(), 2);
    QTest::mouseClick(segment(2), Qt::LeftButton);
    EXPECT_EQ(m_control.current(), 2);
    EXPECT_EQ(m_choices.count(), 1);
    EXPECT_FALSE(segment(0)->isChecked());
}

TEST_F(SegmentedControlTest, IsChosenByArrowKeys) {
    m_control.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&m_control));
    segment(0)->setFocus();
    QTest::keyClick(segment(0), Qt::Key_Right);
    EXPECT_EQ(m_control.current(), 1);
    QTest::keyClick(segment(1), Qt::Key_Left);
    EXPECT_EQ(m_control.current(), 0);
    EXPECT_EQ(m_choices.count(), 2);
}

TEST_F(SegmentedControlTest, IsSetWithoutTelling) {
    m_control.setCurrent(1);
    EXPECT_EQ(m_control.current(), 1);
    EXPECT_EQ(m_choices.count(), 0);
    EXPECT_DEATH(m_control.setCurrent(3), "a segment has that index");
}

TEST_F(SegmentedControlTest, ShowsTitlesAsTheyAre) {
    EXPECT_EQ(segment(1)->accessibleName(), QStringLiteral("Dos & tres"));
    EXPECT_TRUE(segment(1)->shortcut().isEmpty());
    EXPECT_GT(segment(1)->width(), segment(0)->width());
}

TEST_F(SegmentedControlTest, HasRadioButtonsForAssistiveTools) {
    for (int index = 0; index < m_control.count(); ++index) {
        QAccessibleInterface* const read = QAccessible::queryAccessibleInterface(segment(index));
        ASSERT_NE(read, nullptr);
        EXPECT_EQ(read->role(), QAccessible::RadioButton);
        EXPECT_EQ(bool(read->state().checked), index == m_control.current());
    }
}
