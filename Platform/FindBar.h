#pragma once

#include "FindBarClient.h"
#include "TextFinder.h"

#include <QWidget>

#include <optional>

class QAction;
class QGridLayout;
class QLabel;
class QLineEdit;
class QToolButton;
class QPushButton;

/// Finds text as it is typed, and replaces it: a row for looking, and one more for replacing. Hidden at
/// first.
///
/// Looking starts where the selection was when the bar was opened, or the last step led to, and goes round at
/// the ends of the text. Escape closes the bar, the match found last being selected.
class FindBar : public QWidget {
    Q_OBJECT

public:
    /// `client` outlives the bar.
    explicit FindBar(FindBarClient& client, QWidget* parent = nullptr);

    /// "Buscar…" and the others with their keys, for a menu. They also work while the bar is visible.
    QList<QAction*> commands() const { return actions(); }

    /// Shows the bar with the selection, if it lies in one line, as what to look for.
    void find();
    void findAndReplace();

    /// Selects the next or previous match of what was looked for last, the bar being visible or not; opens it
    /// when that was nothing.
    void findNext();
    void findPrevious();

    /// Hides the bar and gives the text the keyboard.
    void closeBar();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void changeEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    enum class Rows : std::uint8_t { looking, lookingAndReplacing };

    void buildLookingRow(QGridLayout& grid);
    void buildReplacingRow(QGridLayout& grid);
    void buildCommands();
    QLineEdit* addField(const QString& name);
    QToolButton* addOption(const QString& symbol, const QString& name);
    QToolButton* addButton(const QString& name, const QKeySequence& key);
    void open(Rows rows);
    bool takeSelection();
    void changePattern();
    void takePattern();
    void look();
    SearchPattern writtenPattern() const;
    ReplacementTemplate writtenTemplate() const;
    bool canLook();

    void showFound(SourceRange match);
    void showNotFound();
    void showMatches();
    void showPatience();
    void report(const QString& text, bool isProblem);
    void showMessage(const QString& text, bool isProblem);
    QString countText() const;
    void updateReplacing();
    void updateColors();

    void replaceMatch();
    void replaceAllOrCancel();
    void applyReplacement(const TextReplacement& replacement);

    FindBarClient& m_client;
    TextFinder m_finder;
    QLineEdit* m_pattern = nullptr;
    QLineEdit* m_template = nullptr;
    QLabel* m_message = nullptr;
    QToolButton* m_letterCase = nullptr;
    QToolButton* m_wholeWords = nullptr;
    QToolButton* m_expression = nullptr;
    QWidget* m_replacing = nullptr; ///< The buttons of the second row.
    QPushButton* m_replace = nullptr;
    QPushButton* m_replaceAll = nullptr;
    QTimer m_patience; ///< Runs while what is under way may end in a moment, and is not shown.

    Offset m_anchor = 0;                ///< Where looking starts while somebody types.
    std::optional<SourceRange> m_found; ///< The match that was selected last.
    bool m_isStepping = false;          ///< The next match found was asked for by a key or a button.
    bool m_isReplacingAll = false;
    bool m_hasReport = false; ///< The message tells what happened, not how many matches there are.
    bool m_isProblem = false; ///< The message tells of one.
};
