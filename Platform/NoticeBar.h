#pragma once

#include <QPointer>
#include <QWidget>

#include <cstdint>
#include <functional>

class QBoxLayout;
class QHBoxLayout;
class QLabel;
class QProgressBar;

/// A bar above a document that tells of something, without being in the way, and offers what to do about it.
/// A click on a button leaves the focus where it is; the focus that came with the Tab key goes back when the
/// button goes.
/// The buttons go below the text where it would be squeezed beside them.
class NoticeBar : public QWidget {
    Q_OBJECT

public:
    explicit NoticeBar(QWidget* parent = nullptr);

    /// Shows the bar with `text`, which is plain, and no buttons; with a sign that work is under way if
    /// `isBusy`.
    void tell(const QString& text, bool isBusy = false);

    /// What a press of a button does to the bar.
    enum class Press : std::uint8_t { dismisses, leaves };

    /// Adds a button. The bar goes before the action is carried out, or stays until the action or something
    /// else dismisses it.
    void offer(const QString& title, std::function<void()> action, Press press = Press::dismisses);

    /// Takes the buttons away; the text stays.
    void withdrawOffers();

    void dismiss();
    bool isBusy() const;
    QString text() const;

protected:
    bool event(QEvent* event) override;

private:
    void followFocus(QWidget* from, QWidget* to);
    void arrange();

    QBoxLayout* m_layout;
    QLabel* m_text;
    QProgressBar* m_progress;
    QHBoxLayout* m_buttons;
    QPointer<QWidget> m_focusBefore; ///< What had the focus before a button took it.
};
