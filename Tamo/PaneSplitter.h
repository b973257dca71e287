#pragma once

#include <QSplitter>

#include <cstdint>

/// Two panes side by side, which start where the user last moved the divider of the same panes, in whatever
/// window, since the program was started.
class PaneSplitter : public QSplitter {
    Q_OBJECT

public:
    /// What the divider keeps while the window changes its width.
    enum class Kept : std::uint8_t {
        share,         ///< The part of the room that each pane has; equal halves to begin with.
        trailingWidth, ///< The width of the second pane, in pixels.
    };

    explicit PaneSplitter(Kept kept, QWidget* parent = nullptr);

protected:
    void showEvent(QShowEvent* event) override;

private:
    void place();
    void remember();

    const Kept m_kept;
    bool m_isPlaced = false;
};
