#include "FixPlanner.h"

#include "EditComposition.h"
#include "EndTagRepair.h"
#include "QuoteRepair.h"
#include "TreeParser.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>
#include <unordered_map>
#include <utility>

namespace {

using Rule = DiagnosticRecord::Rule;

enum class Stage : std::uint8_t { quotes, markup, endTags, everything };

constexpr std::array stages = {Stage::quotes, Stage::markup, Stage::endTags};

bool isEndTagRule(Rule rule) { return rule == Rule::unmatchedEndTag || rule == Rule::unclosedElement; }

bool belongs(Rule rule, Stage stage) {
    return stage == Stage::everything || isEndTagRule(rule) == (stage == Stage::endTags);
}

/// Whether the edits conflict: one of them replaces units, and the other changes these units or inserts next
/// to them.
bool clash(const TextEdit& first, const TextEdit& second) {
    const bool areInsertions = first.range.isEmpty() && second.range.isEmpty();
    return !areInsertions && first.range.lower <= second.range.upper &&
           second.range.lower <= first.range.upper;
}

/// The edits that rename end tags, by the index of the diagnostic. The elements that they close are claimed
/// in `endTags`.
std::unordered_map<std::size_t, TextEdit> renamings(const DocumentTree& tree, EndTagRepair& endTags) {
    std::unordered_map<std::size_t, TextEdit> edits;
    for (std::size_t index = 0; index < tree.diagnostics.size(); ++index) {
        if (auto renaming = endTags.renaming(index)) {
            endTags.claim(renaming->unclosed);
            edits.emplace(index, std::move(renaming->edit));
        }
    }
    return edits;
}

/// The edits of the fixes of a stage. An end tag is renamed where that is possible, instead of its fix. Of
/// two fixes that conflict, such as one that removes a piece of markup and one that adds to it, only the
/// first is used.
std::vector<TextEdit> catalogueEdits(const DocumentTree& tree, Stage stage) {
    const DiagnosticList& problems = tree.diagnostics;
    EndTagRepair endTags(tree);
    std::unordered_map<std::size_t, TextEdit> renamed;
    if (stage != Stage::markup) {
        renamed = renamings(tree, endTags);
    }
    // A fix replaces the range of its diagnostic or inserts something, never inside the range of another fix.
    // So only fixes of diagnostics that start at the same offset can conflict, as those of an unmatched end
    // tag without `>` (`</b` in `<a></b`).
    std::vector<TextEdit> edits;
    std::size_t firstHere = 0;
    for (std::size_t index = 0; index < problems.size(); ++index) {
        const Offset start = problems.range(index).lower;
        const Rule rule = problems.rule(index);
        if (index == 0 || problems.range(index - 1).lower != start) {
            firstHere = edits.size();
        }
        if (!belongs(rule, stage) || (rule == Rule::unclosedElement && endTags.isClaimed(start))) {
            continue;
        }
        if (const auto renaming = renamed.find(index); renaming != renamed.end()) {
            edits.push_back(std::move(renaming->second));
            continue;
        }
        const auto fix = problems[index].fix;
        const std::span here(edits.begin() + static_cast<std::ptrdiff_t>(firstHere), edits.end());
        if (fix && std::ranges::none_of(
                       here, [&](const TextEdit& edit) { return clash(edit, fix->edits.front()); })) {
            edits.push_back(fix->edits.front());
        }
    }
    return edits;
}

std::vector<TextEdit> editsOf(Stage stage, const DocumentTree& tree) {
    return stage == Stage::quotes ? QuoteRepair::edits(tree) : catalogueEdits(tree, stage);
}

/// Parses `text` as the application does.
DocumentTree parsed(const SourceText& text, const std::stop_token& stop) {
    return TreeParser::parse(text, stop, {}, DoctypeReading::of(text));
}

/// An intermediate result: the changes made so far, and the tree of the text after them.
struct Draft {
    EditComposition changes;
    DocumentTree tree;

    std::size_t errors() const { return tree.diagnostics.errorCount(); }
};

bool fits(std::span<const TextEdit> edits, const SourceText& text) {
    std::int64_t length = text.count();
    for (const TextEdit& edit : edits) {
        length += edit.delta();
    }
    return length <= std::numeric_limits<Offset>::max();
}

/// `draft` after one more stage. None if the stage changes nothing, if the text would become too long, or if
/// `stop` is requested.
std::optional<Draft> next(const Draft& draft, Stage stage, const std::stop_token& stop) {
    const std::vector<TextEdit> edits = editsOf(stage, draft.tree);
    if (edits.empty() || !fits(edits, draft.tree.text) || stop.stop_requested()) {
        return std::nullopt;
    }
    Draft changed{draft.changes, {}};
    changed.changes.add(edits);
    changed.tree = parsed(SourceText(TextEdit::apply(edits, draft.tree.text.units())), stop);
    return changed;
}

} // namespace

std::vector<Diagnostic::Fix> FixPlanner::repairs(const DocumentTree& tree, std::size_t index) {
    std::vector<Diagnostic::Fix> repairs;
    if (auto quotes = QuoteRepair::repair(tree, index)) {
        repairs.push_back({std::move(quotes->title), std::move(quotes->edits)});
    }
    if (auto renaming = EndTagRepair(tree).renaming(index)) {
        repairs.push_back(
            {u"Cambiar por </" + tree.name(renaming->element) + u">", {std::move(renaming->edit)}});
    }
    return repairs;
}

std::vector<Diagnostic::Fix> FixPlanner::fixes(const DocumentTree& tree, std::size_t index) {
    std::vector<Diagnostic::Fix> fixes = repairs(tree, index);
    if (auto fix = tree.diagnostics[index].fix) {
        fixes.insert(fixes.begin(), *std::move(fix));
    }
    return fixes;
}

std::optional<FixPlanner::Plan> FixPlanner::plan(const SourceText& text, const std::stop_token& stop) {
    Draft best{EditComposition(text.count()), parsed(text, stop)};
    // A stage may uncover problems that a later stage repairs, so a draft with more errors is kept until the
    // last stage.
    std::optional<Draft> current;
    for (const Stage stage : stages) {
        auto changed = next(current ? *current : best, stage, stop);
        if (!changed) {
            continue;
        }
        if (changed->errors() <= best.errors()) {
            best = *std::move(changed);
            current.reset();
        } else {
            current = std::move(changed);
        }
    }
    current.reset();
    if (auto changed = next(best, Stage::everything, stop); changed && changed->errors() <= best.errors()) {
        best = *std::move(changed);
    }
    if (stop.stop_requested()) {
        return std::nullopt;
    }
    Plan plan{best.changes.edits(), best.tree.diagnostics.size()};
    for (std::size_t index = 0; index < plan.left && !plan.mayMendMore; ++index) {
        plan.mayMendMore = !fixes(best.tree, index).empty();
    }
    return plan;
}

TextEdit FixPlanner::merged(std::span<const TextEdit> edits, const SourceText& text) {
    SourceRange range = edits.front().range;
    for (const TextEdit& edit : edits) {
        range = {std::min(range.lower, edit.range.lower), std::max(range.upper, edit.range.upper)};
    }
    std::vector<TextEdit> shifted(edits.begin(), edits.end());
    for (TextEdit& edit : shifted) {
        edit.range = edit.range.shifted(-std::int64_t(range.lower));
    }
    return {range, TextEdit::apply(shifted, text.units(range))};
}
