#include "TextMirror.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>

namespace {

TEST(TextMirror, HoldsTheLatestText) {
    TextMirror mirror;
    EXPECT_EQ(mirror.text(), Rope());
    mirror.setText(Rope(u"one"));
    const Rope before = mirror.text();
    mirror.setText(Rope(u"two"));
    EXPECT_EQ(before, Rope(u"one"));
    EXPECT_EQ(mirror.text(), Rope(u"two"));
}

TEST(TextMirror, NeverShowsAnotherThreadHalfAText) {
    const Rope closed(u"<a/>");
    const Rope open = closed.replaced({2, 4}, u">").replaced({3, 3}, u"</a>");
    TextMirror mirror(closed);
    std::thread writer([&] {
        for (int i = 0; i < 2000; ++i) {
            mirror.setText(i % 2 == 0 ? open : closed);
        }
    });
    int whole = 0;
    for (int i = 0; i < 2000; ++i) {
        const Rope text = mirror.text();
        whole += text == open || text == closed ? 1 : 0;
    }
    writer.join();
    EXPECT_EQ(whole, 2000);
}

} // namespace
