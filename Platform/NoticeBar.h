#pragma once

#include <QPointer>
#include <QWidget>

#include <functional>

class QHBoxLayout;
class QLabel;
class QProgressBar;

/// A bar above a document that tells of something, without being in the way, and offers what to do about it.
/// A click on a button leaves the focus where it is; the focus that came with the Tab key goes back when the
/// button goes.
class NoticeBar : public QWidget {
    Q_OBJECT

public:
    explicit NoticeBar(QWidget* parent = nullptr);

    /// Shows the bar with `text`, which is plain, and no buttons; with a sign that work is under way if
    /// `isBusy`.
    void tell(const QString& text, bool isBusy = false);

    /// Adds a button. The bar goes before the action is carried out.
    void offer(const QString& title, std::function<void()> action);

    /// Takes the buttons away; the text stays.
    void withdrawOffers();

    void dismiss();
    bool isBusy() const;
    QString text() const;

private:
    void followFocus(QWidget* from, QWidget* to);

    QHBoxLayout* m_layout;
    QLabel* m_text;
    QProgressBar* m_progress;
    QHBoxLayout* m_buttons;
    QPointer<QWidget> m_focusBefore; ///< What had the focus before a button took it.
};
