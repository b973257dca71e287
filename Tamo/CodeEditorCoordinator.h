#pragma once

#include "EditorSession.h"
#include "LineNumberRuler.h"
#include "PlaceholderTracker.h"
#include "TextView.h"
#include "TextViewDelegate.h"
#include "TypingAssistant.h"
#include "TypingMemory.h"

#include <QObject>
#include <QPointer>

#include <cstdint>
#include <functional>
#include <optional>
#include <utility>
#include <vector>

/// Stands between the source pane's text view and the session: gives keys to the typing assistant, keeps the
/// names of a pair of tags the same, completes names, offers the fixes of problems, tells the session where
/// the caret is, and has colours and line numbers follow the text and its parses.
///
/// Lives on the main thread. Without its view every operation does nothing.
class CodeEditorCoordinator : public QObject, public TextViewDelegate {
    Q_OBJECT

public:
    /// `session` outlives the coordinator.
    explicit CodeEditorCoordinator(EditorSession& session, QObject* parent = nullptr);
    ~CodeEditorCoordinator() override;

    /// Binds the views, neither owned, and shows in them what there is. Called once.
    void connectViews(TextView& textView, LineNumberRuler& ruler);

    /// Leaves the views without a text.
    void disconnectViews();

    EditorSession& session() { return m_session; }
    const PlaceholderTracker& placeholders() const { return m_placeholders; }
    std::optional<std::int64_t> lastRevealSerial() const { return m_lastRevealSerial; }
    std::optional<std::int64_t> lastHighlightedGeneration() const { return m_lastHighlightedGeneration; }

    /// Whether the text may take the focus for a reveal, asked each time; it may when this is not set.
    void setFocusGuard(std::function<bool()> mayTakeFocus) { m_mayTakeFocus = std::move(mayTakeFocus); }

    /// Shows the last parse and carries out the last reveal request, each once.
    void update();

    /// Colours what shows anew: also after the colours themselves have changed.
    void highlightVisibleLines();

    /// Offers the fixes of the problems at the caret, or else of those on its line.
    void offerFixes();

    // What the text view asks and tells

    bool shouldChangeText(SourceRange range, std::u16string_view replacement) override;
    bool doCommand(TextCommand command) override;
    QStringList completions(SourceRange partialWord) override;
    void textDidChange() override;
    void selectionDidChange() override;
    void contextMenuWillOpen(QMenu& menu, Offset at) override;
    QString toolTip(Offset at) override;

private:
    void showParse();
    void reveal(const EditorSession::RevealRequest& request);
    void visibleTextChanged();
    void followEdit(SourceRange edited, std::int64_t changeInLength);
    void followSelection(SourceRange selection);

    bool handle(const TypingAssistant::Input& input);
    void perform(const TypingAssistant::Edit& edit);
    TypingAssistant::Edit asTyped(const TypingAssistant::Input& input,
                                  const TypingAssistant::Edit& edit) const;
    void remember(const TypingAssistant::Input& input, const TypingAssistant::Edit& edit);
    bool typeOver(SourceRange range, std::u16string_view replacement);
    bool perform(std::optional<AutomaticInsertions::Reply> reply);
    void settle();
    bool rename(SourceRange range, std::u16string_view replacement);
    void noteTyping();
    bool isBackspace(SourceRange range, std::u16string_view replacement) const;
    void showSelection(SourceRange selection);

    std::vector<QAction*> fixActions(Offset at, QObject* parent);
    void apply(const Diagnostic& diagnostic, std::size_t choice);
    QString lineToolTip(std::size_t line) const;
    std::vector<TextView::Underline> underlines(SourceRange visible) const;

    EditorSession& m_session;
    QPointer<TextView> m_textView;
    QPointer<LineNumberRuler> m_ruler;
    PlaceholderTracker m_placeholders;
    Typing m_typing;
    TypingMemory m_typingMemory;
    bool m_isTyping = false;          ///< The next edit is what the user types.
    std::optional<Offset> m_erasesTo; ///< The edit that the view is about to make, a Backspace.
    std::optional<Offset> m_erasedTo; ///< The last edit, a Backspace outside of names.
    std::function<bool()> m_mayTakeFocus;
    std::vector<SourceRange>
        m_highlightedStretches; ///< By an edit that the view has not told the end of yet.
    std::optional<std::int64_t> m_lastRevealSerial;
    std::optional<std::int64_t> m_lastHighlightedGeneration;
};
