#include "EditorSession.h"

#include "FixPlanner.h"
#include "KeptReferences.h"
#include "NodeCopy.h"
#include "PrettyPrinter.h"
#include "RandomDocument.h"
#include "SessionDesk.h"
#include "TreeParser.h"

#include <gtest/gtest.h>

namespace {

using Placement = TreeMutation::Placement;

constexpr std::size_t firstWithoutPath = 8; ///< Of the commands: format, minify, mend all.
constexpr std::size_t commandsWithoutPath = 3;

/// Types into a session and gives it commands, without ever waiting for a parse, and knows from a fresh parse
/// of its own what each must do to the text.
class Alternation {
public:
    explicit Alternation(Random& random) : m_random(random), m_desk(RandomDocument::broken(random)) {
        m_desk.session.start();
    }

    void type() {
        static constexpr std::u16string_view pieces[] = {u"<",    u">",          u"/",   u"a",  u"<b>",
                                                         u"</b>", u"<c d='1'/>", u"\n",  u"  ", u"&",
                                                         u"\"",   u"<!--",       u"-->", u"x"};
        const Offset size = m_desk.buffer.text().size();
        const auto lower = static_cast<Offset>(m_random.below(size + 1));
        const auto upper = static_cast<Offset>(lower + m_random.below(std::min<Offset>(size - lower, 6) + 1));
        m_desk.buffer.type({lower, upper}, pieces[m_random.below(std::size(pieces))]);
    }

    void command() {
        const std::u16string before = m_desk.text();
        const DocumentTree tree = TreeParser::parse(SourceText(before));
        const IndentStyle indent = IndentStyle::detect(tree.text, 2000);
        const NodePath path = anyPath(tree);
        const NodePath target = anyPath(tree);
        const auto placement = static_cast<Placement>(m_random.below(4));
        const auto planned = [&](const auto& plan) {
            return plan ? TextEdit::apply(plan->edits, before) : before;
        };
        const auto mutated = [&](const TreeMutation& mutation) {
            return planned(KeptReferences::plan(mutation, tree, indent));
        };
        EditorSession& session = m_desk.session;
        std::u16string expected;
        std::size_t chosen = m_random.below(12);
        // Paths are those of the tree that shows. Where that is old, only commands without a path can be foreseen.
        if (!session.isTreeCurrent() && m_random.below(2) == 0) {
            chosen = firstWithoutPath + m_random.below(commandsWithoutPath);
        }
        const bool hasPath = chosen < firstWithoutPath || chosen >= firstWithoutPath + commandsWithoutPath;
        if (hasPath) {
            session.bringTreeUpToDate();
            session.select(path);
        }
        switch (chosen) {
        case 0:
            expected = mutated(TreeMutation::Rename{path, u"n"});
            session.rename(path, QStringLiteral("n"));
            break;
        case 1:
            expected = mutated(TreeMutation::SetAttribute{path, u"x", u"\"'"});
            session.setAttribute(path, QStringLiteral("x"), QStringLiteral("\"'"));
            break;
        case 2:
            expected = mutated(TreeMutation::SetText{path, u"<t>"});
            session.setText(path, QStringLiteral("<t>"));
            break;
        case 3:
            expected = tree.resolve(path) ? mutated(TreeMutation::Delete{path}) : before;
            session.deleteSelection();
            break;
        case 4:
            expected = tree.resolve(path) ? mutated(TreeMutation::Duplicate{path}) : before;
            session.duplicate();
            break;
        case 5:
            expected = mutated(TreeMutation::Move{path, target, placement});
            session.move(path, target, placement);
            break;
        case 6:
            expected = planned(NodeCopy::plan(path, target, placement, tree, indent));
            session.copy(path, target, placement);
            break;
        case 7:
            expected = mutated(TreeMutation::Wrap{path, u"w"});
            session.setNamePrompt(EditorSession::NamePrompt{EditorSession::NamePrompt::Kind::wrap, path});
            session.completeNamePrompt(QStringLiteral("w"));
            break;
        case 8:
            expected = PrettyPrinter::format(tree, indent).replacement;
            session.format();
            break;
        case 9:
            expected = PrettyPrinter::minify(tree).replacement;
            session.minify();
            break;
        case 10:
            expected = TextEdit::apply(FixPlanner::plan(SourceText(before))->edits, before);
            session.applyAllFixes();
            ASSERT_TRUE(m_desk.finishFixing());
            break;
        default:
            expected = siblingsExchanged(tree, path, indent, before);
            session.moveUp();
            break;
        }
        ASSERT_EQ(m_desk.text(), expected) << "command " << chosen << " at " << path.description();
        // Undone, half of the time, and what was done before as well.
        if (m_random.below(2) == 0) {
            m_desk.undoManager.undo();
        }
    }

    /// What was parsed in the end is what a fresh parse gives.
    void settle() {
        // A path without a node, which a command may have selected, stays selected until the next parse.
        type();
        ASSERT_TRUE(m_desk.settle());
        const DocumentTree tree = TreeParser::parse(SourceText(m_desk.text()));
        EXPECT_EQ(m_desk.session.tree().text, tree.text);
        EXPECT_TRUE(std::ranges::equal(m_desk.session.tree().nodes, tree.nodes));
        const auto& selection = m_desk.session.selection();
        EXPECT_TRUE(!selection || tree.resolve(*selection));
        const TreeOutline::Rows rows = m_desk.session.outline().rows(tree);
        EXPECT_TRUE(std::ranges::equal(m_desk.session.rows(), rows));
    }

private:
    /// Mostly the path of a node.
    NodePath anyPath(const DocumentTree& tree) {
        NodePath path = tree.path({static_cast<std::uint32_t>(m_random.below(tree.nodes.size()))});
        if (m_random.below(20) == 0) {
            path.indices.push_back(static_cast<std::uint32_t>(m_random.below(3)));
        }
        return path;
    }

    static std::u16string siblingsExchanged(const DocumentTree& tree, const NodePath& path,
                                            IndentStyle indent, const std::u16string& before) {
        if (path.indices.empty() || path.indices.back() == 0 || !tree.resolve(path)) {
            return before;
        }
        NodePath target = path;
        --target.indices.back();
        const auto plan =
            MutationPlanner::plan(TreeMutation::Move{path, target, Placement::before}, tree, indent);
        return plan ? TextEdit::apply(plan->edits, before) : before;
    }

    Random& m_random;
    SessionDesk m_desk;
};

TEST(EditorSessionProperties, CommandsNeverPlanWithAnOldTree) {
    Random random;
    for (int round = 0; round < 40; ++round) {
        Alternation alternation(random);
        for (int step = 0; step < 25; ++step) {
            for (std::size_t keys = random.below(3); keys > 0; --keys) {
                alternation.type();
            }
            alternation.command();
            if (HasFatalFailure()) {
                return;
            }
            // Lets a parse begin or arrive now and then.
            if (random.below(4) == 0) {
                QCoreApplication::processEvents();
            }
        }
        alternation.settle();
    }
}

} // namespace
