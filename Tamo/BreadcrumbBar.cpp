#include "BreadcrumbBar.h"

#include "EditorSession.h"
#include "MenuText.h"
#include "ShownText.h"
#include "Symbol.h"
#include "SystemColor.h"
#include "SystemFont.h"
#include "TagPalette.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QScrollArea>
#include <QScrollBar>
#include <QToolButton>
#include <QWheelEvent>

#include <algorithm>

namespace {

constexpr int barHeight = 32;
constexpr int separatorSize = 10;
constexpr int crumbPadding = 8;  ///< Between the edge of a crumb and its title.
constexpr int longestTitle = 40; ///< Characters.

/// A symbol in the tertiary style between two crumbs.
class Separator : public QWidget {
public:
    Separator() { setFixedWidth(separatorSize); }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        QRectF box(0, 0, separatorSize, separatorSize);
        box.moveCenter(QRectF(rect()).center());
        Symbol::draw(painter, box, u"chevron.compact.right", color(SystemColor::tertiaryLabel, palette()));
    }
};

QLabel* makeLabel(const QString& text, const QPalette& palette) {
    auto* label = new QLabel(text);
    label->setTextFormat(Qt::PlainText);
    label->setFont(SystemFont::callout());
    QPalette inked = palette;
    inked.setColor(QPalette::WindowText, color(SystemColor::tertiaryLabel, palette));
    label->setPalette(inked);
    return label;
}

} // namespace

BreadcrumbBar::BreadcrumbBar(EditorSession& session, QWidget* parent)
    : QWidget(parent), m_session(session), m_scroll(new QScrollArea) {
    setFixedHeight(barHeight);
    setAccessibleName(QStringLiteral("Ruta del nodo"));
    m_scroll->setFrameShape(QFrame::NoFrame);
    m_scroll->setWidgetResizable(true);
    m_scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_scroll->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_scroll->setFocusPolicy(Qt::NoFocus);
    m_scroll->viewport()->setAutoFillBackground(false);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_scroll);
    connect(&session, &EditorSession::selectionChanged, this, &BreadcrumbBar::showSelection);
    connect(&session, &EditorSession::treeChanged, this, &BreadcrumbBar::showSelection);
    showSelection();
}

std::vector<Crumb> BreadcrumbBar::crumbsOfSelection() const {
    std::vector<Crumb> crumbs;
    for (Breadcrumb& step : m_session.breadcrumbs()) {
        const QColor ink = step.kind == TreeNode::Kind::element ? TagPalette::tagColor(step.title, palette())
                                                                : color(SystemColor::secondaryLabel, palette());
        crumbs.push_back({std::move(step.path), std::move(step.title), ink, step.isAfterGap});
    }
    return crumbs;
}

void BreadcrumbBar::showSelection() {
    if (std::vector<Crumb> crumbs = crumbsOfSelection(); !m_isBuilt || crumbs != m_crumbs) {
        m_crumbs = std::move(crumbs);
        m_isBuilt = true;
        const QList<QToolButton*> before = buttons();
        const auto focused = std::ranges::find_if(before, &QWidget::hasFocus) - before.begin();
        const bool hadFocus = focused < before.size();
        rebuild();
        if (const QList<QToolButton*> now = buttons(); hadFocus && !now.isEmpty()) {
            now[std::min<qsizetype>(focused, now.size() - 1)]->setFocus(Qt::OtherFocusReason);
        }
    }
}

/// In the order of the crumbs.
QList<QToolButton*> BreadcrumbBar::buttons() const {
    return m_row == nullptr ? QList<QToolButton*>()
                            : m_row->findChildren<QToolButton*>(QString(), Qt::FindDirectChildrenOnly);
}

void BreadcrumbBar::choose(std::size_t crumb) {
    // The bar is rebuilt by what this does, and the button that was pressed with it.
    const auto choosePath = [this, path = m_crumbs[crumb].path] {
        path == m_session.selection() ? emit selectedNodeRequested() : m_session.select(path);
    };
    QMetaObject::invokeMethod(this, choosePath, Qt::QueuedConnection);
}

void BreadcrumbBar::rebuild() {
    m_row = new QWidget;
    m_row->setAutoFillBackground(false);
    m_layout = new QHBoxLayout(m_row);
    m_layout->setContentsMargins(12, 0, 12, 0);
    m_layout->setSpacing(2);
    if (m_crumbs.empty()) {
        QLabel* const nothing = makeLabel(QStringLiteral("Sin selección"), palette());
        nothing->setContentsMargins(crumbPadding, 0, 0, 0);
        m_layout->addWidget(nothing);
    }
    for (const Crumb& crumb : m_crumbs) {
        if (&crumb != &m_crumbs.front()) {
            m_layout->addWidget(new Separator);
        }
        if (crumb.isAfterGap) {
            m_layout->addWidget(makeLabel(QStringLiteral("…"), palette()));
            m_layout->addWidget(new Separator);
        }
        auto* button = new QToolButton;
        button->setAutoRaise(true);
        button->setFont(SystemFont::callout());
        button->setText(menuText(ShownText::shortened(crumb.title, longestTitle)));
        button->setAccessibleName(crumb.title);
        button->setFocusPolicy(Qt::TabFocus);
        QPalette inked = palette();
        inked.setColor(QPalette::ButtonText, crumb.color);
        button->setPalette(inked);
        connect(button, &QToolButton::clicked, this,
                [this, at = static_cast<std::size_t>(&crumb - m_crumbs.data())] { choose(at); });
        m_layout->addWidget(button);
    }
    m_layout->addStretch();
    m_row->installEventFilter(this);
    m_scroll->setWidget(m_row);
    orderCrumbs();
    showEnd();
}

/// Tab comes to the crumbs where it comes to the bar, although they are newer than what follows it.
void BreadcrumbBar::orderCrumbs() {
    // Only what takes the focus counts there.
    m_scroll->setFocusPolicy(Qt::TabFocus);
    QWidget* before = m_scroll;
    for (QToolButton* const crumb : m_row->findChildren<QToolButton*>()) {
        setTabOrder(before, crumb);
        before = crumb;
    }
    m_scroll->setFocusPolicy(Qt::NoFocus);
}

void BreadcrumbBar::showEnd() {
    QScrollBar& bar = *m_scroll->horizontalScrollBar();
    bar.setValue(bar.maximum());
}

bool BreadcrumbBar::eventFilter(QObject* watched, QEvent* event) {
    // The row gets its width after it was filled.
    if (watched == m_row && event->type() == QEvent::Resize) {
        QMetaObject::invokeMethod(this, &BreadcrumbBar::showEnd, Qt::QueuedConnection);
    }
    return QWidget::eventFilter(watched, event);
}

void BreadcrumbBar::wheelEvent(QWheelEvent* event) {
    const QPoint delta = event->angleDelta();
    QScrollBar& bar = *m_scroll->horizontalScrollBar();
    bar.setValue(bar.value() - (delta.x() != 0 ? delta.x() : delta.y()));
    event->accept();
}

void BreadcrumbBar::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) {
        m_isBuilt = false;
        showSelection();
    }
}
