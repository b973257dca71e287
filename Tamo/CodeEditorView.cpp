#include "CodeEditorView.h"

#include "FindBar.h"
#include "GoToLineBar.h"
#include "SystemColor.h"
#include "SystemFont.h"

#include <QAction>
#include <QEvent>
#include <QVBoxLayout>

CodeEditorView::CodeEditorView(EditorSession& session, QWidget* parent)
    : QWidget(parent), m_coordinator(session), m_textView(new TextView),
      m_ruler(new LineNumberRuler(*m_textView)), m_findClient(session.buffer().history(), *m_textView),
      m_findBar(new FindBar(m_findClient)), m_goToLineBar(new GoToLineBar(m_findClient)) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    layout->setSpacing(0);
    layout->addWidget(m_findBar);
    layout->addWidget(m_goToLineBar);
    layout->addWidget(m_textView, 1);
    m_findBar->hide();
    m_goToLineBar->hide();
    setFocusProxy(m_textView);

    m_textView->setAccessibleName(QStringLiteral("Texto"));
    m_textView->setFont(SystemFont::monospaced());
    m_textView->setRuler(m_ruler);

    auto* offerFixes = new QAction(QStringLiteral("Corregir"), m_textView);
    offerFixes->setShortcuts({Qt::ALT | Qt::Key_Return, Qt::ALT | Qt::Key_Enter});
    offerFixes->setShortcutContext(Qt::WidgetShortcut);
    connect(offerFixes, &QAction::triggered, &m_coordinator, &CodeEditorCoordinator::offerFixes);
    m_textView->addAction(offerFixes);

    applyAppearance();
    m_coordinator.connectViews(*m_textView, *m_ruler);
}

CodeEditorView::~CodeEditorView() {
    // The text view and the buffer part while both are there.
    m_coordinator.disconnectViews();
}

void CodeEditorView::select(SourceRange range) {
    m_textView->select(range);
    m_textView->scrollToVisible(range);
}

void CodeEditorView::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) {
        applyAppearance();
        m_coordinator.highlightVisibleLines();
    }
}

/// Colours are concrete once they are used, so that they are chosen anew in other surroundings.
void CodeEditorView::applyAppearance() {
    QPalette colors = palette();
    colors.setColor(QPalette::Base, color(SystemColor::textBackground, palette()));
    colors.setColor(QPalette::Text, color(SystemColor::textColor, palette()));
    colors.setColor(QPalette::AlternateBase, color(SystemColor::currentLine, palette()));
    m_textView->setPalette(colors);
}
