#pragma once

#include "FindBarClient.h"

class TextHistory;
class TextView;

/// Has the find bar work on a text view, and edit the history that it shows.
class TextViewFindClient : public FindBarClient {
public:
    /// Both outlive this.
    TextViewFindClient(TextHistory& history, TextView& view) : m_history(history), m_view(view) {}

    TextStorage& storage() override;
    SourceRange selection() const override;
    void select(SourceRange range) override;
    void replace(SourceRange range, const Rope& with, const QString& actionName, Offset caret) override;
    void setMatches(Matches matches) override;
    void focus() override;

private:
    TextHistory& m_history;
    TextView& m_view;
};
