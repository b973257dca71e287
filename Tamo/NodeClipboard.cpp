#include "NodeClipboard.h"

#include "EditorSession.h"
#include "NodePaste.h"
#include "TextMimeData.h"

#include <QClipboard>
#include <QGuiApplication>

namespace {

const QString nodeType = QStringLiteral("application/x-tamo-node");

/// Text that is the source of a node: what looks like escaped text in it is meant as written.
class NodeMimeData : public TextMimeData {
public:
    using TextMimeData::TextMimeData;

    QStringList formats() const override { return TextMimeData::formats() << nodeType; }

protected:
    QVariant retrieveData(const QString& type, QMetaType wanted) const override {
        // Only that it is there says something; empty, it might get lost on its way between programs.
        return type == nodeType ? QVariant(QByteArray("1")) : TextMimeData::retrieveData(type, wanted);
    }
};

} // namespace

bool NodeClipboard::canPaste() {
    const QMimeData* const copied = QGuiApplication::clipboard()->mimeData();
    return copied != nullptr && TextMimeData::hasUnits(*copied);
}

void NodeClipboard::copy(EditorSession& session) {
    if (!session.bringTreeUpToDate()) {
        return;
    }
    if (const auto node = session.selectedNode()) {
        const SourceRange range = session.tree()[*node].range;
        QGuiApplication::clipboard()->setMimeData(new NodeMimeData(session.buffer().text().part(range)));
    }
}

void NodeClipboard::cut(EditorSession& session) {
    if (!session.bringTreeUpToDate()) {
        return;
    }
    if (const auto node = session.selectedNode()) {
        // What cannot be taken away leaves the clipboard alone, too.
        if (*node != NodeID::document()) {
            copy(session);
        }
        session.apply(TreeMutation::Delete{*session.selection()}, QStringLiteral("Cortar"));
    }
}

void NodeClipboard::paste(EditorSession& session) {
    const QMimeData* const copied = QGuiApplication::clipboard()->mimeData();
    if (copied == nullptr || !TextMimeData::hasUnits(*copied)) {
        return;
    }
    using NodePaste::Origin;
    const Origin origin = copied->hasFormat(nodeType) ? Origin::node : Origin::anywhere;
    const std::u16string units = TextMimeData::units(*copied);
    if (!session.bringTreeUpToDate()) {
        return;
    }
    NodeAddition::Result plan;
    session.runWork(
        [&] { plan = NodePaste::plan(units, origin, session.selection(), session.tree(), session.indent()); },
        units.size());
    if (plan) {
        session.apply(*plan, QStringLiteral("Pegar"));
    } else {
        session.setErrorMessage(NodeAddition::message(plan.error()));
    }
}
