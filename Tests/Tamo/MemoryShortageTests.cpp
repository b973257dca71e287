#include "MemoryShortage.h"

#include "CommandNotices.h"
#include "DiagnosticsBar.h"
#include "DocumentDesk.h"
#include "EditorDocument.h"
#include "EmptyStateView.h"
#include "MemoryLimit.h"
#include "Repeated.h"
#include "SessionDesk.h"
#include "TreeEditorView.h"
#include "WaitFor.h"

#include <QThreadPool>

namespace {

/// Enough for everything but the tree of `dense`, which takes five times as much.
constexpr std::size_t room = std::size_t{32} << 20;
std::u16string dense() { return u"<r>" + repeated(u"<a ", 1'000'000); }

const QString noTree = QStringLiteral(
    "No hay memoria suficiente para el árbol de este documento. El texto se puede editar y guardar.");

/// What they free would be room beside the limit.
void waitForWorkers() { QThreadPool::globalInstance()->waitForDone(); }

bool isShown(const QWidget& in, const char* label) {
    return in.findChild<QLabel*>(QLatin1String(label))->isVisible();
}

} // namespace

TEST(MemoryShortage, NamesTheMemoryAndWhatItIsTooShortFor) {
    EXPECT_EQ(memoryShortage(QStringLiteral("buscar")),
              QStringLiteral("No hay memoria suficiente para buscar."));
}

TEST(MemoryShortage, LeavesTheTextWithoutATreeAndIsOverAfterALaterEdit) {
    SessionDesk desk(dense());
    DiagnosticsBar bar(desk.session);
    TreeEditorView tree(desk.session);
    bar.show();
    tree.show();
    {
        waitForWorkers();
        const MemoryLimit limit(room);
        desk.session.start();
        ASSERT_TRUE(waitFor([&] { return desk.session.lacksMemory(); }));
        EXPECT_FALSE(desk.session.hasTree());
        EXPECT_FALSE(isShown(bar, "noErrors"));
        ASSERT_NE(tree.emptyState(), nullptr);
        EXPECT_EQ(tree.emptyState()->title(), QStringLiteral("Sin árbol"));

        // Commands that need the tree say why they do nothing.
        desk.session.format();
        EXPECT_EQ(desk.session.errorMessage(),
                  QStringLiteral("No hay memoria suficiente para analizar el documento."));
        desk.session.setErrorMessage(std::nullopt);
        desk.session.apply(TreeMutation::Rename{NodePath{{0}}, u"s"}, QStringLiteral("Renombrar"));
        EXPECT_TRUE(desk.session.errorMessage().has_value());
        EXPECT_EQ(desk.buffer.text(), Rope(dense()));

        // The text goes on.
        desk.buffer.type({0, 0}, u"x");
        EXPECT_EQ(desk.mirror->text().unit(0), u'x');
    }
    desk.buffer.type({0, 1}, u"");
    ASSERT_TRUE(desk.settle());
    EXPECT_FALSE(desk.session.lacksMemory());
    EXPECT_EQ(desk.session.tree().nodes.size(), 1'000'002);
    EXPECT_EQ(tree.emptyState(), nullptr);
}

TEST(MemoryShortage, GivesUpAnEnormousTreeBeforeTheNext) {
    SessionDesk desk(dense());
    ASSERT_TRUE(desk.open());
    std::vector<bool> hadTree;
    QObject::connect(&desk.session, &EditorSession::treeChanged, &desk.session,
                     [&] { hadTree.push_back(desk.session.hasTree()); });
    desk.buffer.type({3, 3}, u" ");
    ASSERT_TRUE(desk.settle());
    EXPECT_EQ(hadTree, (std::vector{false, true}));
    EXPECT_EQ(desk.session.tree().nodes.size(), 1'000'002);
}

TEST(MemoryShortage, LeavesTheTextAsItWasWhereACommandFails) {
    const std::u16string item = u"<item>" + std::u16string(200, u'x') + u"</item>";
    const std::u16string text = u"<r>" + repeated(item, 180'000) + u"</r>";
    SessionDesk desk(text);
    ASSERT_TRUE(desk.open());
    const std::int64_t generation = desk.buffer.generation();
    {
        waitForWorkers();
        const MemoryLimit limit(room);
        desk.session.format();
    }
    EXPECT_EQ(desk.session.errorMessage(), QStringLiteral("No hay memoria suficiente para “Formatear”."));
    EXPECT_EQ(desk.buffer.generation(), generation);
    EXPECT_FALSE(desk.undoManager.canUndo());
    EXPECT_FALSE(desk.session.isBusy());
    desk.session.setErrorMessage(std::nullopt);
    desk.session.format();
    EXPECT_EQ(desk.session.errorMessage(), std::nullopt);
    EXPECT_TRUE(desk.undoManager.canUndo());
}

TEST(MemoryShortage, IsToldInTheWindow) {
    DocumentController controller{std::make_unique<EditorDocumentType>()};
    DocumentWindow* const window = controller.newDocument();
    auto& document = static_cast<EditorDocument&>(*window->document());
    EditorSession& session = document.session();
    const auto notices = [&] {
        QString all;
        for (const NoticeBar* bar : window->findChildren<NoticeBar*>()) {
            all += bar->text();
        }
        return all;
    };
    {
        waitForWorkers();
        const MemoryLimit limit(room);
        session.buffer().type({}, dense());
        ASSERT_TRUE(waitFor([&] { return session.lacksMemory(); }));
        EXPECT_EQ(notices(), noTree);
        session.applyAllFixes();
        ASSERT_TRUE(waitFor([&] { return !session.fixTask().isRunning(); }));
        EXPECT_EQ(notices(), QStringLiteral("No hay memoria suficiente para corregir el documento."));
    }
    document.undoManager().setClean();
    window->close();
}
