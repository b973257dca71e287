#include "TextDesk.h"
#include "TextMimeData.h"

#include <QApplication>
#include <QClipboard>
#include <QDropEvent>
#include <QInputMethodEvent>
#include <QWheelEvent>

#include <random>

namespace {

constexpr int events = 1000;
constexpr std::size_t longestText = 20'000;

/// Somebody who does anything at all with a view, and a plain string that is told of every edit.
class Monkey : public TextDesk {
public:
    Monkey(std::u16string_view units, unsigned seed) : TextDesk(units), m_model(units), m_engine(seed) {
        QObject::connect(&storage, &TextStorage::editProcessed, &view,
                         [this](SourceRange edited, std::int64_t changeInLength) {
                             const auto replaced = static_cast<std::size_t>(edited.length() - changeInLength);
                             m_model.replace(edited.lower, replaced, storage.text().units(edited));
                         });
        view.carried = [this](const QMimeData& data) { return drop(data); };
        view.setDelegate(&m_delegate);
    }
    ~Monkey() { view.setDelegate(nullptr); }

    const std::u16string& model() const { return m_model; }

    void act() {
        static constexpr void (Monkey::*acts[])() = {
            &Monkey::typeText,  &Monkey::typeText,      &Monkey::typeText, &Monkey::pressKey,
            &Monkey::pressKey,  &Monkey::pressKey,      &Monkey::useMouse, &Monkey::useMouse,
            &Monkey::useWheel,  &Monkey::compose,       &Monkey::applyEdits, &Monkey::dropText,
            &Monkey::selectAny, &Monkey::changeWindow,
        };
        (this->*acts[below(std::size(acts))])();
        if (m_model.size() > longestText) {
            const auto half = static_cast<Offset>(m_model.size() / 2);
            const TextEdit cut = TextEdit::deleteRange({half, storage.text().size()});
            history.apply({&cut, 1});
        }
    }

private:
    struct Delegate : TextViewDelegate {
        QStringList completions(SourceRange) override { return {QStringLiteral("alfa"), QStringLiteral("b")}; }
        bool doCommand(TextCommand command) override { return command == TextCommand::insertBacktab; }
    };

    std::size_t below(std::size_t limit) {
        return std::uniform_int_distribution<std::size_t>(0, limit - 1)(m_engine);
    }
    Offset anyOffset() { return static_cast<Offset>(below(storage.text().size() + 1)); }
    QPoint anyPlace() {
        return {static_cast<int>(below(700)) - 50, static_cast<int>(below(400)) - 50};
    }
    std::u16string anyUnits() {
        static constexpr std::u16string_view pieces[] = {
            u"a", u"ñ", u" ", u"\n", u"\r\n", u"<b>", u"😀", u"e\u0301", u"林", u"مرحبا",
            u"\t", u"\0", u"\xD83D", u"\u2028", u"👩\u200D💻", u"palabra", u"\r", u"\u202E",
        };
        std::u16string units;
        for (std::size_t count = below(5); count > 0; --count) {
            units += pieces[below(std::size(pieces))];
        }
        return below(40) == 0 ? units + std::u16string(900, u'x') : units;
    }

    void typeText() {
        const QString text = QString::fromStdU16String(anyUnits());
        for (const QChar character : text) {
            QTest::simulateEvent(&view, true, Qt::Key_unknown, Qt::NoModifier, QString(character), false);
        }
    }

    void pressKey() {
        static constexpr Qt::Key keys[] = {
            Qt::Key_Left,  Qt::Key_Right,  Qt::Key_Up,     Qt::Key_Down,   Qt::Key_Home,      Qt::Key_End,
            Qt::Key_Tab,   Qt::Key_Return, Qt::Key_Escape, Qt::Key_Delete, Qt::Key_Backspace, Qt::Key_PageDown,
            Qt::Key_A,     Qt::Key_C,      Qt::Key_X,      Qt::Key_V,      Qt::Key_Z,         Qt::Key_Z,
            Qt::Key_Space, Qt::Key_K,      Qt::Key_U,      Qt::Key_D,      Qt::Key_Backtab,   Qt::Key_PageUp,
        };
        static constexpr Qt::KeyboardModifiers modifiers[] = {
            Qt::NoModifier, Qt::NoModifier, Qt::ShiftModifier, Qt::ControlModifier,
            Qt::ControlModifier | Qt::ShiftModifier,
        };
        press(keys[below(std::size(keys))], modifiers[below(std::size(modifiers))]);
    }

    void useMouse() {
        QWidget* const port = view.viewport();
        const auto modifiers = below(4) == 0 ? Qt::ShiftModifier : Qt::NoModifier;
        const QPoint place = anyPlace();
        if (below(4) == 0) {
            QTest::mouseDClick(port, Qt::LeftButton, modifiers, place);
        }
        QTest::mousePress(port, below(9) == 0 ? Qt::MiddleButton : Qt::LeftButton, modifiers, place);
        for (std::size_t moves = below(4); moves > 0; --moves) {
            QTest::mouseMove(port, anyPlace());
        }
        QTest::mouseRelease(port, Qt::LeftButton, modifiers, anyPlace());
    }

    void useWheel() {
        const QPoint turned(static_cast<int>(below(2000)) - 1000, static_cast<int>(below(2000)) - 1000);
        QWheelEvent event({9, 9}, {9, 9}, below(2) == 0 ? turned : QPoint(), turned, Qt::NoButton,
                          below(3) == 0 ? Qt::ShiftModifier : Qt::NoModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(view.viewport(), &event);
    }

    void compose() {
        QInputMethodEvent event(below(2) == 0 ? QString() : QString::fromStdU16String(anyUnits()), {});
        if (below(2) == 0) {
            event.setCommitString(QString::fromStdU16String(anyUnits()), static_cast<int>(below(9)) - 6,
                                  static_cast<int>(below(5)));
        }
        QApplication::sendEvent(&view, &event);
        view.inputMethodQuery(Qt::ImSurroundingText);
        view.inputMethodQuery(Qt::ImCursorRectangle);
    }

    void applyEdits() {
        const Offset first = anyOffset();
        const Offset second = anyOffset();
        const auto [lower, upper] = std::minmax(first, second);
        const Offset middle = lower + std::min<Offset>(upper - lower, 20);
        history.apply(std::vector<TextEdit>{{{lower, middle}, anyUnits()}, TextEdit::insert(anyUnits(), upper)},
                      QStringLiteral("Programa"));
    }

    Qt::DropAction drop(const QMimeData& data) {
        const QPoint place = anyPlace();
        const Qt::DropActions actions = Qt::CopyAction | Qt::MoveAction;
        const auto modifiers = below(2) == 0 ? Qt::ControlModifier : Qt::ShiftModifier;
        QDragEnterEvent enter(place, actions, &data, Qt::LeftButton, modifiers);
        QApplication::sendEvent(view.viewport(), &enter);
        QDropEvent dropped(place, actions, &data, Qt::LeftButton, modifiers);
        QApplication::sendEvent(view.viewport(), &dropped);
        return below(5) == 0 ? Qt::IgnoreAction : dropped.dropAction();
    }

    void dropText() {
        const std::u16string units = anyUnits();
        const TextMimeData data{Rope(units)};
        drop(data);
    }

    void selectAny() {
        view.select(TextSelection{anyOffset(), anyOffset()});
        view.scrollToVisible(view.selection());
    }

    void changeWindow() {
        view.resize(100 + static_cast<int>(below(900)), 20 + static_cast<int>(below(600)));
        view.grab();
        QApplication::processEvents();
    }

    std::u16string m_model;
    std::mt19937 m_engine;
    Delegate m_delegate;
};

class TextViewSoak : public testing::TestWithParam<unsigned> {};

} // namespace

TEST_P(TextViewSoak, KeepsTextModelAndHistoryTogether) {
    const std::u16string start = u"<a>\n  uno dos\r\n  <b>林😀</b>\n</a>\n";
    Monkey monkey(start, GetParam());
    for (int event = 0; event < events; ++event) {
        monkey.act();
        ASSERT_TRUE(monkey.view.text() == monkey.storage.text()) << "event " << event;
        ASSERT_LE(monkey.view.selection().upper, monkey.storage.text().size()) << "event " << event;
        if (event % 50 == 0) {
            ASSERT_EQ(monkey.text(), monkey.model()) << "event " << event;
            monkey.view.grab();
        }
    }
    const std::u16string end = monkey.text();
    ASSERT_EQ(end, monkey.model());
    while (monkey.undo.canRedo()) {
        monkey.undo.redo();
    }
    const std::u16string newest = monkey.text();
    int steps = 0;
    for (; monkey.undo.canUndo(); ++steps) {
        monkey.view.undo();
    }
    EXPECT_GT(steps, events / 20);
    EXPECT_EQ(monkey.text(), start);
    EXPECT_EQ(monkey.model(), start);
    for (; monkey.undo.canRedo(); --steps) {
        monkey.view.redo();
    }
    EXPECT_EQ(steps, 0);
    EXPECT_EQ(monkey.text(), newest);
    EXPECT_EQ(monkey.model(), newest);
}

INSTANTIATE_TEST_SUITE_P(Seeds, TextViewSoak, testing::Range(1U, 4U));
