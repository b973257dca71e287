#include "ParsedDocument.h"

#include <QCoreApplication>
#include <QThread>
#include <QThreadPool>

namespace {

void freeElsewhere(ParsedDocument* document) {
    const QCoreApplication* const application = QCoreApplication::instance();
    if (application != nullptr && QThread::currentThread() == application->thread()) {
        QThreadPool::globalInstance()->start([document] { delete document; });
    } else {
        delete document;
    }
}

} // namespace

std::shared_ptr<ParsedDocument> ParsedDocument::make() {
    std::shared_ptr<ParsedDocument> document(new ParsedDocument, &freeElsewhere);
    document->tree = DocumentTree::empty();
    return document;
}
