#include "ParsedDocument.h"

#include <QThread>
#include <QThreadPool>

#include <gtest/gtest.h>

#include <thread>

namespace {

/// The thread on which the text of a document was freed once `letGo` ran.
QThread* freedOn(void (*letGo)(std::shared_ptr<ParsedDocument>)) {
    QThread* freer = nullptr;
    std::shared_ptr<ParsedDocument> document = ParsedDocument::make();
    std::shared_ptr<const char16_t[]> units(new char16_t[1]{u'x'}, [&freer](const char16_t* text) {
        freer = QThread::currentThread();
        delete[] text;
    });
    document->tree.text = SourceText(std::move(units), 1);
    letGo(std::move(document));
    QThreadPool::globalInstance()->waitForDone();
    return freer;
}

TEST(ParsedDocument, StartsAsTheDocumentBeforeAnyParse) {
    const auto document = ParsedDocument::make();
    EXPECT_EQ(document->tree.nodes.size(), 1U);
    EXPECT_EQ(document->lines.lineCount(), 1U);
    EXPECT_EQ(document->indent, IndentStyle::spaces(4));
    EXPECT_TRUE(document->errorNodes.isEmpty());
    EXPECT_EQ(document->generation, -1);
}

TEST(ParsedDocument, IsNotFreedOnTheMainThread) {
    QThread* const freer = freedOn([](std::shared_ptr<ParsedDocument> document) { document.reset(); });
    EXPECT_NE(freer, nullptr);
    EXPECT_NE(freer, QThread::currentThread());
}

TEST(ParsedDocument, IsFreedByAWorkerThatHasItLast) {
    QThread* const freer = freedOn([](std::shared_ptr<ParsedDocument> document) {
        std::thread([last = std::move(document)]() mutable { last.reset(); }).join();
    });
    EXPECT_NE(freer, nullptr);
    EXPECT_NE(freer, QThread::currentThread());
}

} // namespace
