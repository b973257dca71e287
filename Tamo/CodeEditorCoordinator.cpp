#include "CodeEditorCoordinator.h"

#include "DiagnosticFinder.h"
#include "FixPlanner.h"
#include "Lexer.h"
#include "MenuText.h"
#include "ShownText.h"
#include "SyntaxHighlighter.h"
#include "SystemColor.h"
#include "TagMatcher.h"
#include "TextAid.h"

#include <QMenu>

#include <algorithm>
#include <iterator>
#include <ranges>
#include <utility>

namespace {

using TypingAssistant::Input;

constexpr Offset completionLookBack = 65'536;
constexpr Offset completionLookAhead = 4'096; ///< To the end of a tag.
constexpr std::size_t fewEdits = 1000;        ///< Up to this number, receivers get each edit by itself.
constexpr std::size_t mostMessages = 10;      ///< In one tool tip.
constexpr std::size_t mostFixes = 20;         ///< Problems whose fixes one menu has.
constexpr qsizetype longestShown = 120;       ///< Units of a message or title.

QString string(std::u16string_view units) {
    return QString::fromUtf16(units.data(), static_cast<qsizetype>(units.size()));
}

QString messages(const std::vector<DiagnosticFinder::Found>& found, const DiagnosticList& diagnostics) {
    QStringList lines;
    for (const auto& diagnostic : found) {
        if (static_cast<std::size_t>(lines.size()) == mostMessages) {
            lines += QStringLiteral("…");
            break;
        }
        lines += ShownText::shortened(diagnostics[diagnostic.index].message, longestShown);
    }
    return lines.join(u'\n');
}

/// The names of the attributes in the start tag that `tag` begins with, but for the one around `except`.
QStringList attributeNames(std::u16string_view tag, Offset except) {
    QStringList names;
    UnitIndex index;
    Lexer lexer(tag, index);
    while (const auto token = lexer.next()) {
        const SourceRange range = token->range;
        const bool isNextTag =
            token->kind == Token::Kind::openTagStart || token->kind == Token::Kind::closeTagStart;
        if (range.lower > 0 && (isNextTag || lexer.mode != Lexer::Mode::tag)) {
            break;
        }
        const bool isExcepted = range.lower <= except && except <= range.upper;
        if (token->kind == Token::Kind::attributeName && !isExcepted) {
            names += string(tag.substr(range.lower, range.length()));
        }
    }
    return names;
}

/// The entities that every document has, as far as they begin with `partial`.
QStringList entities(const QString& partial) {
    const QStringList all{QStringLiteral("amp;"), QStringLiteral("lt;"), QStringLiteral("gt;"),
                          QStringLiteral("quot;"), QStringLiteral("apos;")};
    QStringList found;
    std::ranges::copy_if(all, std::back_inserter(found),
                         [&](const QString& entity) { return entity.startsWith(partial); });
    return found;
}

} // namespace

CodeEditorCoordinator::CodeEditorCoordinator(EditorSession& session, QObject* parent)
    : QObject(parent), m_session(session) {}

CodeEditorCoordinator::~CodeEditorCoordinator() { disconnectViews(); }

void CodeEditorCoordinator::disconnectViews() {
    if (m_textView != nullptr) {
        m_textView->disconnect(this);
        m_textView->setDelegate(nullptr);
        m_textView->setUnderlines({});
        m_textView->setHistory(nullptr);
    }
    if (m_ruler != nullptr) {
        m_ruler->setToolTips({});
    }
    m_textView = nullptr;
    m_ruler = nullptr;
}

void CodeEditorCoordinator::connectViews(TextView& textView, LineNumberRuler& ruler) {
    m_textView = &textView;
    m_ruler = &ruler;
    textView.setDelegate(this);
    textView.setHistory(&m_session.buffer().history());
    textView.setUnderlines([this](SourceRange visible) { return underlines(visible); });
    ruler.setToolTips([this](std::size_t line) { return lineToolTip(line); });
    connect(&m_session.buffer().storage(), &TextStorage::editProcessed, this,
            &CodeEditorCoordinator::followEdit);
    connect(&textView, &TextView::visibleTextChanged, this, &CodeEditorCoordinator::visibleTextChanged);
    connect(&m_session, &EditorSession::treeGenerationChanged, this, &CodeEditorCoordinator::update);
    connect(&m_session, &EditorSession::revealRequestChanged, this, &CodeEditorCoordinator::update);
    ruler.updateThickness();
    update();
}

// Showing what the session has

void CodeEditorCoordinator::update() {
    if (m_textView == nullptr || m_ruler == nullptr) {
        return;
    }
    if (m_session.treeGeneration() != m_lastHighlightedGeneration) {
        showParse();
    }
    const auto& request = m_session.revealRequest();
    if (request && request->serial != m_lastRevealSerial) {
        reveal(*request);
    }
}

void CodeEditorCoordinator::showParse() {
    // The ruler shares what it shows: a session delivers the next parse whenever
    // it likes.
    const std::shared_ptr<const ParsedDocument> parsed = m_session.parsed();
    const std::shared_ptr<const LineIndex> lines(parsed, &parsed->lines);
    m_ruler->setLines(m_session.hasTree() ? lines : nullptr);
    m_ruler->setErrorLines({{parsed, &parsed->problemStarts}, lines});
    m_ruler->updateThickness();
    highlightVisibleLines();
    m_textView->viewport()->update();
    m_lastHighlightedGeneration = m_session.treeGeneration();
}

void CodeEditorCoordinator::reveal(const EditorSession::RevealRequest& request) {
    m_lastRevealSerial = request.serial;
    showSelection(request.range);
    if (m_textView->isVisible() && (!m_mayTakeFocus || m_mayTakeFocus())) {
        m_textView->setFocus();
    }
}

void CodeEditorCoordinator::showSelection(SourceRange selection) {
    const Offset end = m_textView->text().size();
    const auto clamped =
        SourceRange::unchecked(std::min(selection.lower, end), std::min(selection.upper, end));
    m_textView->select(clamped);
    m_textView->scrollToVisible(clamped);
}

void CodeEditorCoordinator::highlightVisibleLines() {
    if (m_textView != nullptr) {
        const DocumentTree* tree = m_session.isTreeCurrent() ? &m_session.tree() : nullptr;
        // Until the next parse the declaration moves along with the edits in it and before it.
        const SourceRange declaration = m_session.parsed()->doctype.declaration;
        const auto now = m_session.editsSinceParse().now(declaration);
        SyntaxHighlighter::highlight(*m_textView, m_session.buffer(), tree,
                                     DoctypeReading{now.value_or(SourceRange())});
    }
}

void CodeEditorCoordinator::textDidChange() {
    if (m_textView == nullptr || m_ruler == nullptr) {
        return;
    }
    if (!std::exchange(m_isTyping, false)) {
        // Undone, maybe.
        m_typing = m_typingMemory.find(m_textView->text(), m_textView->caret()).value_or(m_typing);
    }
    highlightVisibleLines();
    m_highlightedStretches = m_textView->visibleStretches(SyntaxHighlighter::longestWholeLine);
    m_ruler->update();
}

void CodeEditorCoordinator::visibleTextChanged() {
    // After an edit this comes too, mostly for the text that is coloured already.
    const auto highlighted = std::exchange(m_highlightedStretches, {});
    if (highlighted.empty() ||
        highlighted != m_textView->visibleStretches(SyntaxHighlighter::longestWholeLine)) {
        highlightVisibleLines();
    }
}

void CodeEditorCoordinator::selectionDidChange() {
    if (m_textView != nullptr) {
        followSelection(m_textView->selection());
        m_session.setTextSelection(m_textView->selection());
        m_session.followCaret();
    }
}

// Keys

bool CodeEditorCoordinator::doCommand(TextCommand command) {
    if (m_textView == nullptr) {
        return false;
    }
    noteTyping();
    switch (command) {
    case TextCommand::insertTab:
        settle();
        return handle(TypingAssistant::Tab());
    case TextCommand::insertBacktab:
        return handle(TypingAssistant::Backtab());
    case TextCommand::insertNewline:
        settle();
        return handle(TypingAssistant::Newline());
    case TextCommand::cancelOperation: {
        const bool wasActive = m_placeholders.isActive();
        m_placeholders.cancel();
        return wasActive;
    }
    }
    return false;
}

bool CodeEditorCoordinator::shouldChangeText(SourceRange range, std::u16string_view replacement) {
    m_session.noteTyping();
    if (m_textView == nullptr || m_textView->hasMarkedText()) {
        return true;
    }
    noteTyping();
    if (typeOver(range, replacement)) {
        return false;
    }
    // A character that is put in elsewhere is none that is typed.
    const bool isTyped = range.isEmpty() && replacement.size() == 1 && range == m_textView->selection();
    if (isTyped && TextAid::mayAct(replacement.front(), range.lower, m_textView->text()) &&
        handle(TypingAssistant::Character{std::u16string(replacement)})) {
        return false;
    }
    // A Backspace that comes from behind a tag is not about its name.
    const bool isErasing = isBackspace(range, replacement);
    const bool comesFromBehind = isErasing && m_erasedTo == range.upper;
    if (!comesFromBehind && rename(range, replacement)) {
        return false;
    }
    m_erasesTo = isErasing ? std::optional(range.lower) : std::nullopt;
    m_isTyping = true;
    return true;
}

bool CodeEditorCoordinator::handle(const Input& input) {
    while (true) {
        const SourceRange selection = m_textView->selection();
        const auto action = TextAid::answer(m_session, selection.lower, [&](const SourceText& text) {
            return TypingAssistant::handle(input, text, selection, m_session.indent(),
                                           m_placeholders.isActive());
        });
        if (!action) {
            return false;
        }
        if (const auto* proposed = std::get_if<TypingAssistant::Edit>(&*action)) {
            const TypingAssistant::Edit edit = asTyped(input, *proposed);
            perform(edit);
            remember(input, edit);
            return true;
        }
        const bool isNext = std::holds_alternative<TypingAssistant::NextPlaceholder>(*action);
        const auto stop = isNext ? m_placeholders.next() : m_placeholders.previous();
        if (stop) {
            showSelection(*stop);
        }
        if (stop || !isNext) {
            return true;
        }
        // Behind the last stop nothing is tracked any more, and the key means what
        // it always does.
    }
}

void CodeEditorCoordinator::perform(const TypingAssistant::Edit& edit) {
    m_isTyping = !edit.edits.empty();
    const QString actionName = QStringLiteral("Escribir");
    TextBuffer& buffer = m_session.buffer();
    if (edit.edits.size() <= fewEdits) {
        buffer.apply(edit.edits, actionName);
    } else {
        // The lines of a whole document, say, as one replacement.
        const auto [range, units] = TextAid::answer(buffer, [&](const SourceText& text) {
            const TextEdit merged = FixPlanner::merged(edit.edits, text);
            return std::pair(merged.range, Rope(merged.replacement));
        });
        buffer.replace(range, units, actionName);
    }
    if (!edit.placeholders.empty()) {
        m_placeholders.start(edit.placeholders);
    }
    showSelection(edit.selection);
}

TypingAssistant::Edit CodeEditorCoordinator::asTyped(const Input& input,
                                                     const TypingAssistant::Edit& edit) const {
    TypingAssistant::Edit typed = edit;
    if (input == Input(TypingAssistant::Character{u">"}) && edit.edits.size() == 1) {
        typed.edits = {m_typing.insertions.endOfStartTag(edit.edits.front(), m_textView->text())};
    }
    return typed;
}

void CodeEditorCoordinator::remember(const Input& input, const TypingAssistant::Edit& edit) {
    if (edit.edits.size() != 1) {
        return;
    }
    if (const auto* typed = std::get_if<TypingAssistant::Character>(&input)) {
        m_typing.insertions.add(typed->string.front(), edit.edits.front(), edit.selection.lower);
    } else if (std::holds_alternative<TypingAssistant::Newline>(input)) {
        m_typing.insertions.addLineBreak(edit.edits.front(), edit.selection.lower);
    }
}

void CodeEditorCoordinator::noteTyping() {
    m_isTyping = false;
    m_typingMemory.note(m_textView->text(), m_textView->caret(), m_typing);
}

bool CodeEditorCoordinator::isBackspace(SourceRange range, std::u16string_view replacement) const {
    return replacement.empty() && m_textView->selection() == SourceRange::empty(range.upper);
}

bool CodeEditorCoordinator::typeOver(SourceRange range, std::u16string_view replacement) {
    const Rope& text = m_textView->text();
    const AutomaticInsertions& insertions = m_typing.insertions;
    if (isBackspace(range, replacement)) {
        const bool isDone = perform(insertions.erase(range, text));
        m_erasedTo = isDone ? std::optional(m_textView->caret()) : m_erasedTo;
        return isDone;
    }
    if (!range.isEmpty() || replacement.size() != 1 || range != m_textView->selection()) {
        return perform(insertions.replace(range, replacement, text));
    }
    const auto isBalanced = [this](SourceRange space) {
        return TextAid::answer(m_session.buffer(), [space](const SourceText& whole) {
            return AutomaticInsertions::isBalanced(whole.units(space));
        });
    };
    return perform(insertions.type(replacement.front(), range.lower, text, isBalanced));
}

bool CodeEditorCoordinator::perform(std::optional<AutomaticInsertions::Reply> reply) {
    if (!reply) {
        return false;
    }
    if (reply->edit) {
        m_isTyping = true;
        m_session.buffer().type(reply->edit->range, reply->edit->replacement);
    }
    showSelection(SourceRange::empty(reply->caret));
    m_typing.insertions.done(std::move(*reply));
    return true;
}

void CodeEditorCoordinator::settle() {
    perform(m_typing.insertions.settle(m_textView->caret(), m_textView->text()));
}

bool CodeEditorCoordinator::rename(SourceRange range, std::u16string_view replacement) {
    TextBuffer& buffer = m_session.buffer();
    auto rename = m_typing.renamed.and_then([&](const PairedTagRename::Names& names) {
        return PairedTagRename::renameOn(names, range, replacement);
    });
    if (!rename && PairedTagRename::mayApply(buffer.text(), range, replacement)) {
        rename = TextAid::answer(m_session, range.lower, [&](const SourceText& text) {
            return PairedTagRename::rename(text, range, replacement);
        });
    }
    if (!rename) {
        return false;
    }
    m_isTyping = true;
    buffer.history().typeTogether(rename->edits, rename->caret, QStringLiteral("Renombrar etiqueta"));
    m_typing.renamed = rename->names;
    return true;
}

void CodeEditorCoordinator::followEdit(SourceRange edited, std::int64_t changeInLength) {
    m_typing.insertions.followEdit(edited, changeInLength);
    m_typing.renamed.reset();
    const bool isErasure = edited.isEmpty() && m_erasesTo == edited.lower;
    m_erasedTo = isErasure ? m_erasesTo : std::nullopt;
    m_erasesTo.reset();
    if (m_placeholders.isActive()) {
        const std::int64_t replaced = edited.length() - changeInLength;
        m_placeholders.adjust(
            {SourceRange::at(edited.lower, replaced), m_session.buffer().text().units(edited)});
    }
}

void CodeEditorCoordinator::followSelection(SourceRange selection) {
    m_typing.insertions.followSelection(selection);
    const auto& renamed = m_typing.renamed;
    if (renamed && (selection.lower < renamed->edited.lower || selection.upper > renamed->edited.upper)) {
        m_typing.renamed.reset();
    }
    if (m_erasedTo && selection != SourceRange::empty(*m_erasedTo)) {
        m_erasedTo.reset();
    }
}

QStringList CodeEditorCoordinator::completions(SourceRange partialWord) {
    if (m_textView == nullptr) {
        return {};
    }
    using TagMatcher::Context;
    const Rope& text = m_session.buffer().text();
    const Offset start = std::min(partialWord.lower, text.size());
    const Offset from = start - std::min(start, completionLookBack);
    const SourceText units(text.units({from, start}));
    const SourceText before = TextAid::readable(m_session, units, from, units.count());
    const Context context = TagMatcher::context(before.count(), before);
    const QString partial = string(text.units(partialWord));
    const char16_t last = start > 0 ? text.unit(start - 1) : u'\0';
    const bool mayHoldEntity = context == Context::content || context == Context::attributeValue;
    if (mayHoldEntity && last == u'&') {
        return entities(partial);
    }
    if (context != Context::content && context != Context::tag) {
        return {};
    }
    const bool isInTag = context == Context::tag && last != u'<' && last != u'/';
    QStringList names = m_session.nameCompletions(partial, isInTag);
    // What can be right comes first.
    if (isInTag) {
        const auto bracket = static_cast<Offset>(before.units().rfind(u'<'));
        const Offset end = start + std::min(text.size() - start, completionLookAhead);
        const QStringList present =
            attributeNames(text.units({from + bracket, end}), before.count() - bracket);
        std::ranges::stable_partition(names, [&](const QString& name) { return !present.contains(name); });
    } else if (before.units().ends_with(u"</")) {
        const auto open = TagMatcher::unclosedElement(before.count() - 2, before);
        std::ranges::stable_partition(
            names, [&](const QString& name) { return name == string(open.value_or(u"")); });
    }
    return names;
}

// Problems

std::vector<TextView::Underline> CodeEditorCoordinator::underlines(SourceRange visible) const {
    const DiagnosticList& diagnostics = m_session.tree().diagnostics;
    std::vector<TextView::Underline> underlines;
    for (const auto& found : DiagnosticFinder(diagnostics, m_session.editsSinceParse()).touching(visible)) {
        const bool isError = diagnostics.severity(found.index) == Diagnostic::Severity::error;
        const SystemColor ink = isError ? SystemColor::systemRed : SystemColor::systemOrange;
        underlines.push_back({found.range, color(ink, m_textView->palette())});
    }
    return underlines;
}

QString CodeEditorCoordinator::toolTip(Offset at) {
    const DiagnosticList& diagnostics = m_session.tree().diagnostics;
    return messages(DiagnosticFinder(diagnostics, m_session.editsSinceParse()).touching({at, at}),
                    diagnostics);
}

QString CodeEditorCoordinator::lineToolTip(std::size_t line) const {
    const DiagnosticList& diagnostics = m_session.tree().diagnostics;
    const SourceRange range = m_session.buffer().text().lineRange(line);
    const DiagnosticFinder finder(diagnostics, m_session.editsSinceParse());
    return messages(finder.startingIn(range, m_session.problemStarts()), diagnostics);
}

/// One for each of the first fixes, owned by `parent`. Of those that do the same, as for the elements of one
/// name that are open at the end of the text, the first is enough.
std::vector<QAction*> CodeEditorCoordinator::fixActions(Offset at, QObject* parent) {
    const DiagnosticList& diagnostics = m_session.tree().diagnostics;
    const DiagnosticFinder finder(diagnostics, m_session.editsSinceParse());
    const Rope& text = m_session.buffer().text();
    auto found = finder.touching({at, at});
    if (found.empty()) {
        found = finder.startingIn(text.lineRange(text.line(at)), m_session.problemStarts());
    }
    std::vector<QAction*> actions;
    std::vector<Diagnostic::Fix> fixes;
    for (const auto& problem : found | std::views::take(mostFixes)) {
        const Diagnostic diagnostic = diagnostics[problem.index];
        const std::vector<Diagnostic::Fix> offered = FixPlanner::fixes(m_session.tree(), problem.index);
        for (std::size_t choice = 0; choice < offered.size(); ++choice) {
            if (std::ranges::find(fixes, offered[choice]) != fixes.end()) {
                continue;
            }
            fixes.push_back(offered[choice]);
            auto* action =
                new QAction(menuText(ShownText::shortened(offered[choice].title, longestShown)), parent);
            connect(action, &QAction::triggered, this,
                    [this, diagnostic, choice] { apply(diagnostic, choice); });
            actions.push_back(action);
        }
    }
    return actions;
}

void CodeEditorCoordinator::apply(const Diagnostic& diagnostic, std::size_t choice) {
    // The menu was open for a while: what it offered is looked up in the tree of
    // now.
    const DiagnosticList& diagnostics = m_session.tree().diagnostics;
    const Offset start = diagnostic.range.lower;
    for (std::size_t index = diagnostics.firstIndex(start);
         index < diagnostics.size() && diagnostics.range(index).lower == start; ++index) {
        if (diagnostics[index] == diagnostic) {
            m_session.applyFix(index, choice);
            return;
        }
    }
}

void CodeEditorCoordinator::offerFixes() {
    if (m_textView == nullptr) {
        return;
    }
    auto* menu = new QMenu(m_textView);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    const std::vector<QAction*> actions = fixActions(m_textView->caret(), menu);
    if (actions.empty()) {
        delete menu;
        return;
    }
    menu->addActions(QList<QAction*>(actions.begin(), actions.end()));
    menu->setActiveAction(actions.front());
    const QPoint below = m_textView->caretRect().bottomLeft().toPoint();
    menu->popup(m_textView->viewport()->mapToGlobal(below));
}

void CodeEditorCoordinator::contextMenuWillOpen(QMenu& menu, Offset at) {
    if (m_textView == nullptr) {
        return;
    }
    QAction* const first = menu.actions().value(0);
    const std::vector<QAction*> actions = fixActions(at, &menu);
    menu.insertActions(first, QList<QAction*>(actions.begin(), actions.end()));
    if (!actions.empty() && first != nullptr) {
        menu.insertSeparator(first);
    }
}
