#pragma once

#include <QIcon>
#include <QLabel>

/// A symbol and, beside it, a text: what is to be read and not to be pressed.
class SymbolLabel : public QLabel {
    Q_OBJECT

public:
    explicit SymbolLabel(QWidget* parent = nullptr);

    void setIcon(const QIcon& icon);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QIcon m_icon;
};
