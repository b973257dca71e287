#include "DocumentController.h"
#include "EditorDocument.h"
#include "FilePath.h"
#include "NoticeBar.h"
#include "RecoveryStore.h"
#include "TextBuffer.h"
#include "TextStorage.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDirIterator>
#include <QElapsedTimer>
#include <QMessageBox>
#include <QTimer>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <memory>

#include <unistd.h>

namespace {

using namespace std::chrono_literals;

/// How long a text may take to be kept, or to be forgotten, before the program goes on without.
std::chrono::seconds patience(qint64 size) {
    constexpr qint64 bytesPerSecond = 5'000'000;
    return 3s + std::chrono::seconds(size / bytesPerSecond);
}

constexpr const char* addition = "<!-- mío -->"; ///< What is typed, before all that the file has.

void print(const char* what, const QString& text = {}) {
    std::printf("%s\t%s\n", what, qUtf8Printable(QString(text).replace(u'\n', u' ')));
    std::fflush(stdout);
}

/// Works the event loop until `condition` holds. False when it does not in time.
bool waitFor(const std::function<bool()>& condition, std::chrono::milliseconds limit = 120s) {
    QElapsedTimer time;
    time.start();
    while (!condition()) {
        if (time.hasExpired(limit.count())) {
            return false;
        }
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        usleep(1000);
    }
    return true;
}

/// Says what each message box says, and declines what it offers.
void answerBoxes() {
    auto* const timer = new QTimer(qApp);
    QObject::connect(timer, &QTimer::timeout, timer, [] {
        if (auto* const box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
            print("message", box->text());
            QAbstractButton* const way = box->escapeButton();
            (way != nullptr ? way : box->buttons().back())->click();
        }
    });
    timer->start(10ms);
}

/// How many bytes the logs of unsaved text have.
qint64 logSize(const QString& state) {
    qint64 size = 0;
    QDirIterator logs(state, {QStringLiteral("*.log")}, QDir::Files, QDirIterator::Subdirectories);
    while (logs.hasNext()) {
        logs.next();
        size += logs.fileInfo().size();
    }
    return size;
}

/// Whether the text is kept: its log has all of it and grows no more.
bool isKept(const QString& state, qint64 textSize) {
    const qint64 size = logSize(state);
    if (size <= textSize) {
        return false;
    }
    return !waitFor([&] { return logSize(state) != size; }, 300ms);
}

[[noreturn]] void end(int code) {
    std::fflush(stdout);
    // As a crash would: what is in memory only is lost.
    _exit(code);
}

/// Opens the file, types, and saves. What is shown meanwhile is said.
void save(const QString& path, const QString& state) {
    answerBoxes();
    const auto store = std::make_shared<RecoveryStore>(state, RecoveryPace{.flushDelay = 1ms});
    DocumentController controller(std::make_unique<EditorDocumentType>());
    controller.setRecoveryStore(store);
    DocumentWindow* window = nullptr;
    QObject::connect(&controller, &DocumentController::windowOpened, qApp,
                     [&window](DocumentWindow* opened) { window = opened; });
    QObject::connect(&controller, &DocumentController::openingFailed, qApp,
                     [](const QString&, const QString& message) {
                         print("message", message);
                         print("unopened");
                         end(EXIT_SUCCESS);
                     });
    controller.open({path});
    if (!waitFor([&] { return window != nullptr; })) {
        end(EXIT_FAILURE);
    }
    static_cast<EditorDocument*>(window->document())
        ->file()
        .buffer()
        .type({}, QString::fromUtf8(addition).toStdU16String());
    const qint64 size = window->document()->storage().text().size();
    print(waitFor([&] { return isKept(state, size); }, patience(size)) ? "kept" : "unkept");
    bool hasEnded = false;
    QObject::connect(window, &DocumentWindow::savingEnded, qApp, [&hasEnded] {
        hasEnded = true;
        print("ended");
    });
    window->save();
    print("saving");
    if (!waitFor([&] {
            return hasEnded && !window->isSaving() && QApplication::activeModalWidget() == nullptr;
        })) {
        end(EXIT_FAILURE);
    }
    // What the box of a failure says is said by its end.
    waitFor([&] { return !window->isWindowModified(); }, 100ms);
    const bool isSaved = !window->isWindowModified();
    if (isSaved) {
        waitFor([&] { return logSize(state) == 0; }, patience(size));
    }
    for (const NoticeBar* const bar : window->findChildren<NoticeBar*>()) {
        if (!bar->text().isEmpty()) {
            print("notice", bar->text());
        }
    }
    print(isSaved ? "saved" : "unsaved");
    end(EXIT_SUCCESS);
}

/// Says what an earlier run left in `state`: one line for each text, whether it is the one that was typed.
void recover(const QString& state) {
    RecoveryStore store(state);
    const Recoverables left = store.recoverable();
    for (const QString& aside : left.setAside) {
        print("aside", aside);
    }
    const std::u16string start = QString::fromUtf8(addition).toStdU16String();
    for (const RecoverableDocument& document : left.documents) {
        const auto text = store.take(document.id);
        const auto length = static_cast<std::int64_t>(start.size());
        const bool isIt = text && text->damage == RecoveryDamage::none && text->text.size() >= start.size() &&
                          text->text.units(SourceRange::at(0, length)) == start;
        print(isIt ? "text" : "other");
    }
    end(EXIT_SUCCESS);
}

} // namespace

/// A program for the tests of reliability to disturb. Says in lines, a word, a tab and a text, what it did
/// and what the user was told.
int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    const QByteArrayView mode = argc > 1 ? argv[1] : "";
    if (mode == "save" && argc == 4) {
        save(FilePath::of(QByteArray(argv[2])), FilePath::of(QByteArray(argv[3])));
    } else if (mode == "recover" && argc == 3) {
        recover(FilePath::of(QByteArray(argv[2])));
    }
    std::fprintf(stderr, "usage: Saver save FILE STATE | Saver recover STATE\n");
    return 2;
}
