#include "PaneCycle.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QTest>

#include <gtest/gtest.h>

namespace {

/// Three panes of two fields each and an empty one.
struct Desk {
    QWidget window;
    QWidget* panes[4];
    QLineEdit* fields[3][2];
    PaneCycle cycle;

    Desk() {
        auto* row = new QHBoxLayout(&window);
        std::vector<PaneCycle::Pane> all;
        for (int at = 0; at < 4; ++at) {
            panes[at] = new QWidget;
            row->addWidget(panes[at]);
            auto* column = new QHBoxLayout(panes[at]);
            for (int field = 0; at < 3 && field < 2; ++field) {
                fields[at][field] = new QLineEdit;
                column->addWidget(fields[at][field]);
            }
            all.push_back({panes[at], at == 1 ? fields[1][1] : nullptr});
        }
        cycle.setPanes(all);
        window.show();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
        fields[0][0]->setFocus();
    }

    /// The number of the pane and of the field, as two digits.
    int place() const {
        for (int at = 0; at < 6; ++at) {
            if (fields[at / 2][at % 2]->hasFocus()) {
                return at / 2 * 10 + at % 2;
            }
        }
        return -1;
    }
    int forward() const {
        cycle.move(PaneCycle::Direction::forward);
        return place();
    }
    int backward() const {
        cycle.move(PaneCycle::Direction::backward);
        return place();
    }
};

} // namespace

TEST(PaneCycle, GoesAroundAndComesBackToWhereItWas) {
    Desk desk;
    EXPECT_EQ(desk.forward(), 11) << "the landing of the second pane";
    EXPECT_EQ(desk.forward(), 20) << "the first field of the third";
    desk.fields[2][1]->setFocus();
    EXPECT_EQ(desk.forward(), 0) << "nothing takes keys in the fourth";
    EXPECT_EQ(desk.backward(), 21) << "what had the focus there before";
    EXPECT_EQ(desk.backward(), 11);
}

TEST(PaneCycle, LeavesOutWhatIsHidden) {
    Desk desk;
    desk.panes[1]->hide();
    EXPECT_EQ(desk.forward(), 20);
    EXPECT_EQ(desk.backward(), 0);
    desk.panes[2]->setEnabled(false);
    EXPECT_EQ(desk.forward(), 0);
}

TEST(PaneCycle, StartsAtAnEndWhenNoPaneHasTheFocus) {
    Desk desk;
    desk.fields[0][0]->clearFocus();
    EXPECT_EQ(desk.place(), -1);
    EXPECT_EQ(desk.forward(), 0);
    desk.fields[0][0]->clearFocus();
    EXPECT_EQ(desk.backward(), 20);
}
