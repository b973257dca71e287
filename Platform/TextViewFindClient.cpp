#include "TextViewFindClient.h"

#include "TextHistory.h"
#include "TextView.h"

#include <utility>

TextStorage& TextViewFindClient::storage() { return m_history.storage(); }

SourceRange TextViewFindClient::selection() const { return m_view.selection(); }

void TextViewFindClient::select(SourceRange range) {
    m_view.select(range);
    m_view.scrollToVisible(range);
}

void TextViewFindClient::replace(SourceRange range, const Rope& with, const QString& actionName,
                                 Offset caret) {
    m_history.replace(range, with, actionName, TextSelection::at(caret));
}

void TextViewFindClient::setMatches(Matches matches) { m_view.setHighlights(std::move(matches)); }

void TextViewFindClient::focus() { m_view.setFocus(Qt::OtherFocusReason); }
