#include "Postbox.h"

#include <QThreadPool>

void runOnFileThread(std::function<void()> step) {
    // Never destroyed: its end would wait for a disk that hangs.
    static QThreadPool* const threads = [] {
        constexpr int mostAtOnce = 32;
        auto* const made = new QThreadPool;
        made->setMaxThreadCount(mostAtOnce);
        return made;
    }();
    threads->start(std::move(step));
}
