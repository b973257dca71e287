#pragma once

#include <QWidget>

#include <vector>

class EditorSession;
class QAbstractButton;
class QGridLayout;
class QPushButton;

/// What a new, empty document offers to begin with: a card for each template, and a blank page. What is typed
/// while it shows is passed on for the text.
class TemplateGalleryView : public QWidget {
    Q_OBJECT

public:
    /// `session` outlives the gallery.
    explicit TemplateGalleryView(EditorSession& session, QWidget* parent = nullptr);

    const std::vector<QAbstractButton*>& cards() const { return m_cards; }
    QPushButton* blankButton() const { return m_blank; }

public slots:
    /// What the menu's "Pegar" does while the gallery or something in it has the focus.
    void paste();

signals:
    /// The document is to begin with what the clipboard holds.
    void pasteRequested();
    /// The user typed something, or wants a blank page to type on when `units` is empty.
    void textRequested(const QString& units);

protected:
    void resizeEvent(QResizeEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void arrangeCards();

    std::vector<QAbstractButton*> m_cards;
    QWidget* m_page = nullptr;
    QGridLayout* m_grid = nullptr;
    QPushButton* m_blank = nullptr;
    int m_columns = 0;
};
