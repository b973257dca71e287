#pragma once

#include <QRect>
#include <QString>
#include <QWidget>

class QPushButton;

/// What a pane shows when it has no content: a symbol, a title and a sentence, in the middle, and a button
/// when something can be done about it. All texts are plain.
class EmptyStateView : public QWidget {
    Q_OBJECT

public:
    explicit EmptyStateView(QWidget* parent = nullptr);

    /// `symbol` is the name of one.
    void setContents(const QString& symbol, const QString& title, const QString& description);

    /// The button below, which has that title; none when it is empty.
    void setAction(const QString& title);

    const QString& symbol() const { return m_symbol; }
    const QString& title() const { return m_title; }
    const QString& description() const { return m_description; }

    QSize minimumSizeHint() const override { return {0, 0}; }

signals:
    void actionRequested();

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    struct Places {
        QRect symbol;
        QRect title;
        QRect description;
        QRect button;
        int titleFlags;
    };
    Places places() const;
    void placeButton();

    QPushButton* m_button;
    QString m_symbol;
    QString m_title;
    QString m_description;
};
