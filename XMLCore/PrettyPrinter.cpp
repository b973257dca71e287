#include "PrettyPrinter.h"

#include "ReflowTrace.h"
#include "UnicodeProperties.h"
#include "UnitScan.h"

#include <algorithm>
#include <utility>

namespace {

/// `text` without White_Space at its ends. Each character of White_Space is a single unit.
std::u16string_view trimmed(std::u16string_view text) {
    const auto isWhitespace = [](char16_t unit) {
        return unit <= u' ' ? UnitScan::isWhitespace(unit) || unit == u'\v' || unit == u'\f'
                            : unit >= 0x80 && UnicodeProperties::isWhitespace(static_cast<char32_t>(unit));
    };
    while (!text.empty() && isWhitespace(text.front())) {
        text.remove_prefix(1);
    }
    while (!text.empty() && isWhitespace(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

/// Visits the nodes below the document in order and passes the lines of the result to `printer`: `startLine`
/// with the depth, then the pieces of the line in text order: `markup`, which is copied, `text`, which is
/// trimmed, and `missingEndTag` for an element without an end tag. `in` is the node whose content contains
/// the text before the piece.
template <class Printer>
class Walk {
public:
    Walk(const DocumentTree& tree, Printer& printer) : m_tree(tree), m_printer(printer) {}

    void run() {
        NodeID id = m_tree[NodeID::document()].firstChild;
        while (!id.isNone()) {
            const TreeNode& node = m_tree[id];
            m_printer.startLine(m_depth);
            if (isBlock(id)) {
                m_printer.markup(node.startTagRange(), node.parent);
                ++m_depth;
                id = node.firstChild;
            } else {
                printLine(id);
                id = next(id);
            }
        }
    }

private:
    /// Whether the node's children get lines of their own.
    bool isBlock(NodeID id) const { return m_tree[id].isElement() && !m_tree.hasOnlyTextContent(id); }

    void printLine(NodeID id) {
        const TreeNode& node = m_tree[id];
        if (node.kind == TreeNode::Kind::text) {
            m_printer.text(node.range, node.parent);
        } else if (!node.isElement() || node.flags.contains(TreeNode::selfClosing)) {
            m_printer.markup(node.range, node.parent);
        } else {
            m_printer.markup(node.startTagRange(), node.parent);
            m_printer.text(node.contentRange, id);
            printEndTag(id);
        }
    }

    void printEndTag(NodeID id) {
        const TreeNode& node = m_tree[id];
        if (node.flags.contains(TreeNode::hasCloseTag)) {
            m_printer.markup({node.contentRange.upper, node.range.upper}, id);
        } else {
            m_printer.missingEndTag(id);
        }
    }

    /// The node that follows `id` and its descendants. Prints the end tags in between.
    NodeID next(NodeID id) {
        while (m_tree[id].nextSibling.isNone()) {
            id = m_tree[id].parent;
            if (id == NodeID::document()) {
                return NodeID::none();
            }
            --m_depth;
            m_printer.startLine(m_depth);
            printEndTag(id);
        }
        return m_tree[id].nextSibling;
    }

    const DocumentTree& m_tree;
    Printer& m_printer;
    std::size_t m_depth = 0;
};

/// Counts the lines of the result and an upper bound of their units.
class Measure {
public:
    explicit Measure(const DocumentTree& tree) : m_tree(tree) {}

    void startLine(std::size_t depth) {
        if (depth == m_linesAtDepth.size()) {
            m_linesAtDepth.push_back(0);
        }
        ++m_linesAtDepth[depth];
        ++m_lines;
    }
    void markup(SourceRange range, NodeID) { m_markup += range.length(); }
    void text(SourceRange range, NodeID) { m_text += range.length(); }
    void missingEndTag(NodeID of) { m_markup += endTagFrame + m_tree[of].nameRange.length(); }

    /// The length of the result without indentation, with `perBreak` units for each line break.
    std::size_t length(std::size_t perBreak) const { return m_markup + m_text + m_lines * perBreak; }

    struct Indentation {
        std::size_t deepest; ///< Lines below this depth have the same indentation.
        std::size_t length;  ///< The units of all indentation together.
    };
    /// The indentation with `perLevel` units per level, up to the depth that the limit allows. The limit
    /// depends only on what formatting keeps, so that formatting again changes nothing.
    Indentation indentation(std::size_t perLevel) const {
        constexpr std::size_t alwaysAllowed = std::size_t{1} << 26;
        constexpr std::size_t allowedPerMarkup = 4;
        const std::size_t allowed = std::max(alwaysAllowed, allowedPerMarkup * m_markup);
        Indentation result{0, 0};
        std::size_t linesDeeper = m_lines;
        for (const std::size_t lines : m_linesAtDepth) {
            linesDeeper -= lines;
            if (linesDeeper * perLevel > allowed - result.length) {
                break;
            }
            result.length += linesDeeper * perLevel;
            ++result.deepest;
        }
        return result;
    }

private:
    static constexpr std::size_t endTagFrame = 3; ///< `</` and `>`.

    const DocumentTree& m_tree;
    std::vector<std::size_t> m_linesAtDepth;
    std::size_t m_lines = 0;
    std::size_t m_markup = 0;
    std::size_t m_text = 0;
};

/// Writes the formatted document. `trace`, which may be null, follows where the old text goes.
class Writer {
public:
    Writer(const DocumentTree& tree, std::u16string_view lineBreak, std::u16string_view indentUnit,
           const Measure& measure, ReflowTrace* trace)
        : m_tree(tree), m_trace(trace), m_breakLength(lineBreak.size()), m_unitLength(indentUnit.size()),
          m_startOfLine(lineBreak) {
        const Measure::Indentation indentation = measure.indentation(m_unitLength);
        m_deepest = indentation.deepest;
        m_output.reserve(measure.length(m_breakLength) + indentation.length);
        m_indentUnit = indentUnit;
    }

    void startLine(std::size_t depth) {
        depth = std::min(depth, m_deepest);
        while (m_startOfLine.size() < m_breakLength + depth * m_unitLength) {
            m_startOfLine.append(m_indentUnit);
        }
        const std::size_t skipped = m_output.empty() ? m_breakLength : 0;
        m_output.append(m_startOfLine, skipped, m_breakLength - skipped + depth * m_unitLength);
    }
    void markup(SourceRange range, NodeID in) {
        if (m_trace != nullptr) {
            m_trace->keep(range, in, m_output);
        }
        m_output.append(source(range));
    }
    void text(SourceRange range, NodeID in) {
        const std::u16string_view kept = trimmed(source(range));
        const auto lower = static_cast<Offset>(kept.data() - m_tree.text.units().data());
        markup(SourceRange::at(lower, static_cast<std::int64_t>(kept.size())), in);
    }
    void missingEndTag(NodeID of) {
        const TreeNode& node = m_tree[of];
        if (m_trace != nullptr) {
            m_trace->keep(SourceRange::empty(node.contentRange.upper), of, m_output);
        }
        m_output.append(u"</").append(source(node.nameRange)).append(u">");
        if (m_trace != nullptr) {
            m_trace->skipAdded(m_output);
        }
    }

    std::u16string take() { return std::move(m_output); }

private:
    std::u16string_view source(SourceRange range) const {
        return m_tree.text.units().substr(range.lower, range.length());
    }

    const DocumentTree& m_tree;
    ReflowTrace* m_trace;
    std::size_t m_breakLength;
    std::size_t m_unitLength;
    std::size_t m_deepest;
    std::u16string_view m_indentUnit;
    std::u16string m_startOfLine; ///< A line break and the deepest indentation so far.
    std::u16string m_output;
};

std::u16string print(const DocumentTree& tree, std::u16string_view lineBreak, std::u16string_view indentUnit,
                     ReflowTrace* trace = nullptr) {
    Measure measure(tree);
    Walk(tree, measure).run();
    Writer writer(tree, lineBreak, indentUnit, measure, trace);
    Walk(tree, writer).run();
    return writer.take();
}

std::u16string formatted(const DocumentTree& tree, IndentStyle indent, ReflowTrace* trace = nullptr) {
    const std::u16string_view lineBreak = tree.text.lineEnding();
    return print(tree, lineBreak, indent.unit(), trace).append(lineBreak);
}

PrettyPrinter::Reflow reflow(const DocumentTree& tree, std::u16string text, ReflowTrace& trace) {
    trace.finish(text);
    return {{tree.text.fullRange(), std::move(text)}, trace.places(), trace.changesTextSpace()};
}

} // namespace

TextEdit PrettyPrinter::format(const DocumentTree& tree, IndentStyle indent) {
    return {tree.text.fullRange(), formatted(tree, indent)};
}

TextEdit PrettyPrinter::minify(const DocumentTree& tree) {
    return {tree.text.fullRange(), print(tree, {}, {})};
}

PrettyPrinter::Reflow PrettyPrinter::format(const DocumentTree& tree, IndentStyle indent,
                                            std::span<const Offset> places) {
    ReflowTrace trace(tree, places);
    return reflow(tree, formatted(tree, indent, &trace), trace);
}

PrettyPrinter::Reflow PrettyPrinter::minify(const DocumentTree& tree, std::span<const Offset> places) {
    ReflowTrace trace(tree, places);
    return reflow(tree, print(tree, {}, {}, &trace), trace);
}
