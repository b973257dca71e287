#include "CompletionPopup.h"

#include <QKeyEvent>
#include <QScreen>
#include <QScrollBar>

#include <algorithm>

namespace {

constexpr qsizetype mostWords = 1000;
constexpr int mostRows = 10;
constexpr int narrowest = 120;
constexpr int widest = 480;

} // namespace

CompletionPopup::CompletionPopup(QWidget* parent) : QListView(parent) {
    setWindowFlags(Qt::ToolTip | Qt::FramelessWindowHint);
    setAttribute(Qt::WA_ShowWithoutActivating);
    setFocusPolicy(Qt::NoFocus);
    setFrameShape(QFrame::StyledPanel);
    setUniformItemSizes(true);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setTextElideMode(Qt::ElideMiddle);
    setModel(&m_words);
    connect(this, &QListView::clicked, this, &CompletionPopup::choose);
}

void CompletionPopup::offer(const QStringList& words, const QRect& caret) {
    if (words.isEmpty()) {
        hide();
        return;
    }
    m_words.setStringList(words.first(std::min(words.size(), mostWords)));
    setCurrentIndex(m_words.index(0));
    scrollToTop();
    const QSize size = wantedSize();
    const QRect room = parentWidget()->screen()->availableGeometry();
    const bool fitsBelow = caret.bottom() + 1 + size.height() <= room.bottom() + 1;
    const QPoint corner(
        std::clamp(caret.left(), room.left(), std::max(room.left(), room.right() - size.width())),
        fitsBelow ? caret.bottom() + 1 : caret.top() - size.height());
    setGeometry(QRect(corner, size));
    show();
}

QSize CompletionPopup::wantedSize() const {
    const int rows = std::min(m_words.rowCount(), mostRows);
    const int scrollBar = m_words.rowCount() > rows ? verticalScrollBar()->sizeHint().width() : 0;
    const int width = std::clamp(sizeHintForColumn(0) + scrollBar, narrowest, widest);
    return {width + 2 * frameWidth(), rows * sizeHintForRow(0) + 2 * frameWidth()};
}

bool CompletionPopup::handleKey(const QKeyEvent& event) {
    if (!isVisible() || event.modifiers() & ~Qt::KeypadModifier) {
        return false;
    }
    switch (event.key()) {
    case Qt::Key_Down:
        walk(1);
        return true;
    case Qt::Key_Up:
        walk(-1);
        return true;
    case Qt::Key_PageDown:
        walk(mostRows);
        return true;
    case Qt::Key_PageUp:
        walk(-mostRows);
        return true;
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Tab:
        choose(currentIndex());
        return true;
    case Qt::Key_Escape:
        hide();
        return true;
    default:
        return false;
    }
}

void CompletionPopup::walk(int rows) {
    const int row = std::clamp(currentIndex().row() + rows, 0, m_words.rowCount() - 1);
    setCurrentIndex(m_words.index(row));
}

void CompletionPopup::choose(const QModelIndex& index) {
    const QString word = index.data(Qt::DisplayRole).toString();
    hide();
    emit chosen(word);
}
