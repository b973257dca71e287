#pragma once

#include "FindBarClient.h"

#include <QWidget>

#include <optional>

class QAction;
class QLabel;
class QLineEdit;

/// Asks for a line, "12", or a line and a column, "12:5", and puts the caret there. Hidden at first.
class GoToLineBar : public QWidget {
    Q_OBJECT

public:
    /// `client` outlives the bar.
    explicit GoToLineBar(FindBarClient& client, QWidget* parent = nullptr);

    /// "Ir a la línea…" with its key, for a menu.
    QList<QAction*> commands() const { return actions(); }

    /// Shows the bar, with the caret's line.
    void ask();

    /// Hides the bar and gives the text the keyboard.
    void closeBar();

    /// The place that `written` means, both numbers counted from 1 and columns in UTF-16 units. A line that
    /// the text does not have counts as its first or last one, a column as the start or the end of its line;
    /// the caret never stands inside a character. Nothing when it is not a line or a line and a column.
    static std::optional<Offset> place(const QString& written, const Rope& in);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void go();

    FindBarClient& m_client;
    QLineEdit* m_place = nullptr;
    QLabel* m_message = nullptr;
};
