#pragma once

#include <QButtonGroup>
#include <QWidget>

class QHBoxLayout;

/// One choice of a few, side by side in one box. The arrow keys move the choice, and each segment is a radio
/// button to assistive tools.
class SegmentedControl : public QWidget {
    Q_OBJECT

public:
    explicit SegmentedControl(QWidget* parent = nullptr);

    /// Adds a choice at the end; the first one is chosen. `title` is plain text.
    void addSegment(const QString& title, QStringView symbol);

    int count() const { return int(m_segments.buttons().size()); }

    /// -1 while there are none.
    int current() const { return m_segments.checkedId(); }

    /// Chooses without telling.
    void setCurrent(int index);

signals:
    /// The user chose another segment.
    void chosen(int index);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QButtonGroup m_segments;
    QHBoxLayout* m_layout;
};
