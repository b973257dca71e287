#pragma once

class QKeyEvent;
class TextView;

/// What the keys do to a text view; good for one key.
class TextViewKeys {
public:
    explicit TextViewKeys(TextView& view) : m_view(view) {}

    /// Does what the key asks for. Answers whether it meant anything to a text.
    bool press(const QKeyEvent& event);

private:
    bool handleMove(const QKeyEvent& event);
    bool handleErasure(const QKeyEvent& event);
    bool handleStandardKey(const QKeyEvent& event);
    bool handleCommand(const QKeyEvent& event);

    TextView& m_view;
};
