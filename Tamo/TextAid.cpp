#include "TextAid.h"

#include "UnitScan.h"

#include <QCursor>
#include <QGuiApplication>

#include <utility>

TextAid::WaitCursor::~WaitCursor() {
    if (m_isShown) {
        QGuiApplication::restoreOverrideCursor();
    }
}

void TextAid::WaitCursor::show() {
    if (!std::exchange(m_isShown, true)) {
        QGuiApplication::setOverrideCursor(Qt::WaitCursor);
    }
}

bool TextAid::mayAct(char16_t typed, Offset caret, const Rope& text) {
    const char16_t before = caret > 0 ? text.unit(caret - 1) : u'\0';
    switch (typed) {
    case u'>':
        return before != u'/';
    case u'/':
        return before == u'<';
    case u'=':
        return UnitScan::isName(before);
    case u'"':
    case u'\'':
        return caret < text.size() && text.unit(caret) == typed;
    default:
        return false;
    }
}

SourceText TextAid::readable(const EditorSession& session, const SourceText& text, Offset start,
                             Offset before) {
    // The tree is that of an earlier text, up to where that was edited since.
    const DocumentTree& tree = session.tree();
    const Offset known = session.editsSinceParse().start().value_or(tree.text.count());
    return HiddenOpeners::masked(text, before, {tree, start, known});
}
