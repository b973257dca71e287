#include "NodeWalk.h"

#include "TextWatch.h"
#include "UnitScan.h"

#include <algorithm>

namespace {

/// What the names of a tag hold that a check must look at.
struct NameFindings {
    static constexpr unsigned colon = 1;
    static constexpr unsigned beyondASCII = 2;
    static constexpr unsigned declaration = 4; ///< An attribute `xmlns`, or one with that prefix.
};

class Walk {
public:
    Walk(const DocumentTree& tree, ContentCheck* content, NamespaceCheck* namespaces)
        : m_tree(tree), m_units(tree.text.units().data()), m_count(tree.text.count()), m_content(content),
          m_namespaces(namespaces) {}

    void visit(std::uint32_t index) {
        const TreeNode& node = m_tree.nodes[index];
        if (node.kind == TreeNode::Kind::element) {
            visitElement(node);
        } else if (m_content != nullptr && (node.kind != TreeNode::Kind::text || node.parent.raw == 0)) {
            m_content->visitNode({index});
        }
        if (m_namespaces != nullptr && node.kind == TreeNode::Kind::instruction) {
            m_namespaces->visitTarget(node);
        }
    }

private:
    static UnitMask isColon(UnitVector vector) { return (vector == UnitVector::all(u':')).mask(); }
    static UnitMask isBeyondASCII(UnitVector vector) {
        return ~((vector & UnitVector::all(0xFF80)) == UnitVector::all(0)).mask();
    }

    TAMO_ALWAYS_INLINE unsigned findings(SourceRange name) const {
        constexpr Offset lanes = UnitVector::lanes;
        if (name.length() < lanes && name.lower + std::size_t{lanes} <= m_count) [[likely]] {
            const UnitVector vector = UnitVector::load(m_units + name.lower);
            return findings(isColon(vector).firstLanes(name.length()),
                            isBeyondASCII(vector).firstLanes(name.length()));
        }
        return name.length() < lanes ? findingsOfLast(name) : findingsOfLong(name);
    }

    static unsigned findings(UnitMask colon, UnitMask beyondASCII) {
        return (colon.any() ? NameFindings::colon : 0U) |
               (beyondASCII.any() ? NameFindings::beyondASCII : 0U);
    }

    /// Of a name that is as long as a vector, or longer.
    TAMO_NEVER_INLINE unsigned findingsOfLong(SourceRange name) const {
        constexpr Offset lanes = UnitVector::lanes;
        const auto findingsAt = [this](Offset at) {
            const UnitVector vector = UnitVector::load(m_units + at);
            return findings(isColon(vector), isBeyondASCII(vector));
        };
        unsigned found = findingsAt(name.upper - lanes);
        for (Offset at = name.lower; at + lanes < name.upper; at += lanes) {
            found |= findingsAt(at);
        }
        return found;
    }

    /// Of a name at the very end of the text.
    TAMO_NEVER_INLINE unsigned findingsOfLast(SourceRange name) const {
        unsigned found = 0;
        for (Offset at = name.lower; at < name.upper; ++at) {
            found |= m_units[at] == u':' ? NameFindings::colon : 0U;
            found |= m_units[at] >= 0x80 ? NameFindings::beyondASCII : 0U;
        }
        return found;
    }

    bool isDeclaration(SourceRange name) const {
        constexpr std::u16string_view declaring = u"xmlns";
        return m_units[name.lower] == u'x' && name.length() >= declaring.size() &&
               std::u16string_view(m_units + name.lower, declaring.size()) == declaring &&
               (name.length() == declaring.size() || m_units[name.lower + declaring.size()] == u':');
    }

    TAMO_ALWAYS_INLINE void visitElement(const TreeNode& node) {
        unsigned found = findings(node.nameRange);
        Offset before = 0;
        const AttributeSpan* const end =
            m_tree.attributes.begin() + node.firstAttribute + node.attributeCount;
        for (const AttributeSpan* attribute = end - node.attributeCount; attribute != end; ++attribute) {
            found |= findings(attribute->name);
            found |= isDeclaration(attribute->name) ? NameFindings::declaration : 0U;
            if (attribute->range.lower == before && m_content != nullptr) [[unlikely]] {
                m_content->visitTightAttribute(*attribute);
            }
            before = attribute->range.upper;
        }
        if ((found & NameFindings::beyondASCII) != 0 && m_content != nullptr) [[unlikely]] {
            m_content->visitNames(node);
        }
        constexpr unsigned named = NameFindings::colon | NameFindings::declaration;
        if (m_namespaces != nullptr && ((found & named) != 0 || m_namespaces->wantsAll())) {
            const bool declares = (found & NameFindings::declaration) != 0;
            m_namespaces->visitElement(node, declares ? NamespaceStack::Declarations::some
                                                      : NamespaceStack::Declarations::none);
        }
    }

    const DocumentTree& m_tree;
    const char16_t* m_units;
    std::size_t m_count;
    ContentCheck* m_content;
    NamespaceCheck* m_namespaces;
};

} // namespace

void NodeWalk::walk(const DocumentTree& tree, XMLVersion version, ContentCheck* content,
                    NamespaceCheck* namespaces) {
    // Text and nodes are read side by side, so that the names of a stretch are still in the cache.
    constexpr std::size_t stretch = 16384;
    const std::size_t count = tree.text.count();
    TextWatch watch(tree.text.units(), version);
    Walk nodes(tree, content, namespaces);
    std::uint32_t node = 1;
    for (std::size_t lower = 0; lower < count; lower += stretch) {
        const std::size_t upper = std::min(lower + stretch, count);
        if (content != nullptr) {
            for (std::size_t at = watch.next(upper); at < upper; at = watch.next(upper)) {
                content->visitUnit(static_cast<Offset>(at));
            }
        }
        for (; node < tree.nodes.size() && tree.nodes[node].range.lower < upper; ++node) {
            nodes.visit(node);
        }
    }
    if (content != nullptr) {
        content->finish();
    }
}
