#pragma once

#include <QString>
#include <QWidget>

/// What a pane shows when it has no content: a symbol, a title and a sentence, in the middle. All texts are
/// plain.
class EmptyStateView : public QWidget {
    Q_OBJECT

public:
    explicit EmptyStateView(QWidget* parent = nullptr);

    /// `symbol` is the name of one.
    void setContents(const QString& symbol, const QString& title, const QString& description);

    const QString& symbol() const { return m_symbol; }
    const QString& title() const { return m_title; }
    const QString& description() const { return m_description; }

    QSize minimumSizeHint() const override { return {0, 0}; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString m_symbol;
    QString m_title;
    QString m_description;
};
