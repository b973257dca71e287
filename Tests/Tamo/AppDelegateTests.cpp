#include "AppDelegate.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QTest>

#include <gtest/gtest.h>

namespace {

using namespace std::chrono_literals;

struct Desk {
    bool hasDocument = false;
    int terminations = 0;
    AppDelegate delegate{[this] { return hasDocument; }};

    explicit Desk(std::chrono::milliseconds grace = 20ms) {
        delegate.grace = grace;
        delegate.terminate = [this] { ++terminations; };
        delegate.applicationDidFinishLaunching();
    }

    bool waitForTermination() const {
        return QTest::qWaitFor([this] { return terminations == 1; });
    }

    /// Waits until a grace that begins now would be over twice.
    void waitForGrace() const { QTest::qWait(static_cast<int>(2 * delegate.grace.count()) + 50); }
};

struct Window : QWidget {
    bool refuses = false;

    explicit Window(Qt::WindowFlags flags = Qt::Window) : QWidget(nullptr, flags) {
        show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(this));
    }
    void closeEvent(QCloseEvent* event) override { event->setAccepted(!refuses); }
};

} // namespace

TEST(AppDelegate, WaitsForFourTenthsOfASecond) {
    EXPECT_EQ(AppDelegate([] { return false; }).grace, 400ms);
}

TEST(AppDelegate, QuitsAfterTheLastWindowHasClosed) {
    Desk desk;
    Window window;
    window.close();
    EXPECT_EQ(desk.terminations, 0) << "not at once";
    EXPECT_TRUE(desk.waitForTermination());
    desk.waitForGrace();
    EXPECT_EQ(desk.terminations, 1);
}

TEST(AppDelegate, QuitsAfterTheRealGrace) {
    Desk desk(AppDelegate([] { return false; }).grace);
    Window window;
    QElapsedTimer timer;
    timer.start();
    window.close();
    EXPECT_TRUE(desk.waitForTermination());
    EXPECT_GE(timer.elapsed(), 400);
}

TEST(AppDelegate, GoesOnWhileAnotherWindowIsOpen) {
    Desk desk;
    Window first;
    Window second;
    first.close();
    desk.waitForGrace();
    EXPECT_EQ(desk.terminations, 0);
    second.close();
    EXPECT_TRUE(desk.waitForTermination());
}

TEST(AppDelegate, GoesOnWhileADocumentIsOpen) {
    Desk desk;
    desk.hasDocument = true;
    Window window;
    window.close();
    desk.waitForGrace();
    EXPECT_EQ(desk.terminations, 0);
}

TEST(AppDelegate, GoesOnWhenAWindowAppearsDuringTheGrace) {
    Desk desk(100ms);
    Window first;
    first.close();
    Window second;
    desk.waitForGrace();
    EXPECT_EQ(desk.terminations, 0);
    second.close();
    EXPECT_TRUE(desk.waitForTermination());
}

TEST(AppDelegate, DoesNotCountPanels) {
    for (const Qt::WindowFlags panel : {Qt::Dialog, Qt::Tool, Qt::Popup, Qt::SplashScreen, Qt::ToolTip}) {
        Desk desk;
        Window window;
        Window stays(panel);
        window.close();
        EXPECT_TRUE(desk.waitForTermination());
    }
}

TEST(AppDelegate, GoesOnWhenTheWindowRefusesToClose) {
    Desk desk;
    Window window;
    window.refuses = true;
    window.close();
    desk.waitForGrace();
    EXPECT_EQ(desk.terminations, 0);
    window.refuses = false;
}

TEST(AppDelegate, TakesAWindowThatIsDeletedAsClosed) {
    Desk desk;
    auto window = std::make_unique<Window>();
    window->close();
    window.reset();
    EXPECT_TRUE(desk.waitForTermination());
}
