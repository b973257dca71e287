#include "KeptReferences.h"

#include "Escaping.h"
#include "UTF16.h"

#include <algorithm>
#include <cstdint>
#include <utility>
#include <variant>
#include <vector>

namespace {

using MutationPlanner::Plan;

/// A reference in the source, and where it stands in what is read.
struct Reference {
    SourceRange raw;
    SourceRange read;
};

SourceRange range(std::size_t lower, std::size_t upper) {
    return {static_cast<Offset>(lower), static_cast<Offset>(upper)};
}

/// Where the reference that starts with the `&` at `at` ends; `at` itself where none starts.
std::size_t referenceEnd(std::u16string_view raw, std::size_t at) {
    const std::size_t end = raw.find_first_of(u"&;<>\"' \t\r\n", at + 1);
    return end != std::u16string_view::npos && raw[end] == u';' && end > at + 1 ? end + 1 : at;
}

/// All references in `raw`, in order. One that has no known meaning is read as it is written.
std::vector<Reference> references(std::u16string_view raw) {
    std::vector<Reference> found;
    std::size_t shorter = 0; // What is read is shorter by this up to here.
    for (std::size_t at = raw.find(u'&'); at != std::u16string_view::npos; at = raw.find(u'&', at)) {
        const std::size_t end = referenceEnd(raw, at);
        if (end == at) {
            ++at;
            continue;
        }
        const std::size_t length = Escaping::unescape(std::u16string(raw.substr(at, end - at))).size();
        found.push_back({range(at, end), range(at - shorter, at - shorter + length)});
        shorter += end - at - length;
        at = end;
    }
    return found;
}

bool isInside(Offset at, SourceRange range) { return range.lower < at && at < range.upper; }

/// The reference that `at`, an offset of what is read, lies inside of; none between two and at their ends.
const Reference* referenceAround(Offset at, const std::vector<Reference>& references) {
    const auto found = std::ranges::find_if(
        references, [at](const Reference& each) { return isInside(at, each.read); });
    return found != references.end() ? &*found : nullptr;
}

/// What differs between `before` and `after`, as a stretch of `before`: whole code points, and whole those of
/// `references` in `before` that it begins or ends in.
SourceRange difference(std::u16string_view before, std::u16string_view after,
                       const std::vector<Reference>& references) {
    const std::size_t most = std::min(before.size(), after.size());
    const auto first = std::ranges::mismatch(before, after).in1;
    std::size_t lower = static_cast<std::size_t>(first - before.begin());
    if (lower > 0 && UTF16::isHighSurrogate(before[lower - 1])) {
        --lower;
    }
    if (const auto* const around = referenceAround(static_cast<Offset>(lower), references)) {
        lower = around->read.lower;
    }
    std::size_t same = 0;
    while (same < most - lower && before[before.size() - same - 1] == after[after.size() - same - 1]) {
        ++same;
    }
    if (same > 0 && UTF16::isLowSurrogate(before[before.size() - same])) {
        --same;
    }
    const auto upper = static_cast<Offset>(before.size() - same);
    const auto* const around = referenceAround(upper, references);
    return range(lower, around != nullptr ? around->read.upper : upper);
}

/// The stretch of the source that is read as `read`, which begins and ends inside no reference.
SourceRange rawRange(SourceRange read, const std::vector<Reference>& references) {
    const auto raw = [&](Offset at, auto isBefore) {
        const auto next = std::ranges::partition_point(references, isBefore);
        if (next == references.begin()) {
            return at;
        }
        const Reference& last = *std::prev(next);
        return last.raw.upper + (at - last.read.upper);
    };
    const Offset lower = raw(read.lower, [&](const Reference& each) { return each.read.upper <= read.lower; });
    const Offset upper = raw(read.upper, [&](const Reference& each) { return each.read.upper <= read.upper; });
    return {lower, upper};
}

/// Whether `raw` reads `wanted`, and neither end of `written` lies inside a reference.
bool isCertain(const std::u16string& raw, SourceRange written, std::u16string_view wanted) {
    const auto joins = [written](const Reference& each) {
        return isInside(written.lower, each.raw) || isInside(written.upper, each.raw);
    };
    return Escaping::unescape(raw) == wanted && std::ranges::none_of(references(raw), joins);
}

/// The one edit of `plan` narrowed to what changes in `content`, which it replaces as a whole.
void narrow(Plan& plan, SourceRange content, const SourceText& text, std::u16string_view wanted,
            const KeptReferences::Escape& escape) {
    // A tag that closes itself has no content to narrow.
    if (plan.edits.size() != 1 || plan.edits.front() != TextEdit{content, escape(wanted)}) {
        return;
    }
    if (auto edit = KeptReferences::edit(text.units(content), wanted, escape)) {
        edit->range = edit->range.shifted(content.lower);
        plan.edits.front() = std::move(*edit);
    }
}

void narrow(Plan& plan, const TreeMutation::SetText& set, const DocumentTree& tree) {
    const auto id = tree.resolve(set.path);
    const TreeNode& node = tree[id.value_or(NodeID::document())];
    const SourceRange content = node.isElement() ? node.contentRange : node.range;
    const bool isCharacterData = (node.isElement() || node.kind == TreeNode::Kind::text) &&
                                 !tree.text.units(content).contains(u'<');
    if (isCharacterData) {
        narrow(plan, content, tree.text, set.text,
               [](std::u16string_view read) { return Escaping::escapeText(std::u16string(read)); });
    }
}

void narrow(Plan& plan, const TreeMutation::SetAttribute& set, const DocumentTree& tree) {
    const auto id = tree.resolve(set.path);
    const auto attribute = id ? tree.attribute(set.name, *id) : std::nullopt;
    if (attribute && attribute->quote != 0) {
        narrow(plan, attribute->value, tree.text, set.value, [quote = attribute->quote](std::u16string_view read) {
            return Escaping::escapeAttribute(read, quote);
        });
    }
}

} // namespace

std::optional<TextEdit> KeptReferences::edit(std::u16string_view raw, std::u16string_view wanted,
                                             const Escape& escape) {
    const std::vector<Reference> all = references(raw);
    const std::u16string read = Escaping::unescape(std::u16string(raw));
    const std::size_t lost = all.empty() ? 0 : all.back().raw.upper - all.back().read.upper;
    if (read.size() != raw.size() - lost) {
        return std::nullopt; // A sign beside a reference takes part of it into a character of its own.
    }
    const SourceRange changed = difference(read, wanted, all);
    const std::size_t added = wanted.size() + changed.length() - read.size();
    const SourceRange replaced = rawRange(changed, all);
    TextEdit edit{replaced, escape(wanted.substr(changed.lower, added))};
    std::u16string result(raw);
    result.replace(replaced.lower, replaced.length(), edit.replacement);
    const SourceRange written = SourceRange::at(replaced.lower, std::int64_t(edit.replacement.size()));
    // `]]>` must not come about from what stood apart.
    const bool isWhole = isCertain(result, written, wanted) && !result.contains(u"]]>");
    return isWhole ? std::optional(std::move(edit)) : std::nullopt;
}

std::expected<Plan, MutationPlanner::Failure> KeptReferences::plan(const TreeMutation& mutation,
                                                                   const DocumentTree& in, IndentStyle indent) {
    auto plan = MutationPlanner::plan(mutation, in, indent);
    if (const auto* const text = std::get_if<TreeMutation::SetText>(&mutation.value); plan && text != nullptr) {
        narrow(*plan, *text, in);
    } else if (const auto* const value = std::get_if<TreeMutation::SetAttribute>(&mutation.value);
               plan && value != nullptr) {
        narrow(*plan, *value, in);
    }
    return plan;
}
