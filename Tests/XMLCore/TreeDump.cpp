#include "TreeDump.h"

#include "UTF16.h"

#include <cstdio>
#include <sstream>
#include <vector>

namespace {

void appendUTF8(std::string& bytes, char32_t scalar) {
    const auto append = [&](char32_t byte) { bytes.push_back(static_cast<char>(byte)); };
    const auto appendRest = [&](int shift) { append(0x80 | (scalar >> shift & 0x3F)); };
    if (scalar < 0x80) {
        append(scalar);
    } else if (scalar < 0x800) {
        append(0xC0 | scalar >> 6);
        appendRest(0);
    } else if (scalar < 0x10000) {
        append(0xE0 | scalar >> 12);
        appendRest(6);
        appendRest(0);
    } else {
        append(0xF0 | scalar >> 18);
        appendRest(12);
        appendRest(6);
        appendRest(0);
    }
}

/// Whether the scalar is a control, a line separator or a lone surrogate.
bool isUnreadable(char32_t scalar) {
    return scalar < U' ' || (0x7F <= scalar && scalar < 0xA0) || scalar == 0x2028 || scalar == 0x2029 ||
           (0xD800 <= scalar && scalar <= 0xDFFF);
}

std::string_view nameOf(TreeNode::Kind kind) {
    constexpr std::string_view names[] = {"document", "element",     "text",   "comment",
                                          "cdata",    "instruction", "doctype"};
    return names[static_cast<std::size_t>(kind)];
}

/// Writes ranges of a text as "3..<7", followed by their units.
class Dumper {
public:
    explicit Dumper(std::u16string_view text) : m_text(text) {}

    std::string dump(const ReferenceParser::Result& result) {
        std::vector<std::size_t> depths;
        for (const TreeNode& node : result.nodes) {
            const std::size_t depth = node.parent.isNone() ? 0 : depths[node.parent.raw] + 1;
            depths.push_back(depth);
            addNode(node, std::string(depth * 2, ' '));
            for (std::uint32_t i = 0; i < node.attributeCount; ++i) {
                m_lines << std::string(depth * 2 + 2, ' ');
                addAttribute(result.attributes[node.firstAttribute + i]);
            }
        }
        for (const Diagnostic& diagnostic : result.diagnostics) {
            addDiagnostic(diagnostic);
        }
        return m_lines.str();
    }

private:
    void addRange(SourceRange range) {
        m_lines << range.description() << ' ' << asLiteral(m_text.substr(range.lower, range.length()));
    }

    void addNode(const TreeNode& node, const std::string& indent) {
        m_lines << indent << nameOf(node.kind) << ' ' << node.range.description();
        if (!node.nameRange.isEmpty()) {
            m_lines << " name ";
            addRange(node.nameRange);
        }
        m_lines << " content ";
        if (node.isElement() || node.kind == TreeNode::Kind::document) {
            m_lines << node.contentRange.description();
        } else {
            addRange(node.contentRange);
        }
        addFlags(node.flags);
        m_lines << '\n';
    }

    void addFlags(TreeNode::Flags flags) {
        const auto add = [&](TreeNode::Flags flag, std::string_view name) {
            if (flags.contains(flag)) {
                m_lines << ' ' << name;
            }
        };
        add(TreeNode::selfClosing, "selfClosing");
        add(TreeNode::hasCloseTag, "hasCloseTag");
        add(TreeNode::unterminated, "unterminated");
        add(TreeNode::unclosed, "unclosed");
    }

    void addAttribute(const AttributeSpan& attribute) {
        m_lines << "@ " << attribute.range.description() << " name ";
        addRange(attribute.name);
        m_lines << " value ";
        addRange(attribute.value);
        m_lines << (attribute.quote == 0 ? " unquoted" : "") << '\n';
    }

    void addDiagnostic(const Diagnostic& diagnostic) {
        m_lines << (diagnostic.severity == Diagnostic::Severity::error ? "error " : "warning ");
        addRange(diagnostic.range);
        m_lines << ' ' << asLiteral(diagnostic.message) << '\n';
        if (diagnostic.fix) {
            m_lines << "  fix " << asLiteral(diagnostic.fix->title);
            for (const TextEdit& edit : diagnostic.fix->edits) {
                m_lines << ' ';
                addRange(edit.range);
                m_lines << " -> " << asLiteral(edit.replacement);
            }
            m_lines << '\n';
        }
    }

    std::u16string_view m_text;
    std::ostringstream m_lines;
};

} // namespace

std::string treeDump(const ReferenceParser::Result& result, std::u16string_view text) {
    return Dumper(text).dump(result);
}

std::string asLiteral(std::u16string_view text) {
    std::string bytes = "\"";
    const char16_t* const end = text.data() + text.size();
    for (const char16_t* at = text.data(); at != end;) {
        const char32_t scalar = UTF16::scalarAt(at, end);
        at += UTF16::length(scalar);
        if (isUnreadable(scalar)) {
            char escape[16];
            std::snprintf(escape, sizeof escape, "\\x%X;", static_cast<unsigned>(scalar));
            bytes += escape;
        } else {
            if (scalar == U'"' || scalar == U'\\') {
                bytes += '\\';
            }
            appendUTF8(bytes, scalar);
        }
    }
    return bytes + "\"";
}
