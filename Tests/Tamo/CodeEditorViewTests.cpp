#include "CodeEditorView.h"

#include "CompletionPopup.h"
#include "EditorDesk.h"
#include "SystemColor.h"
#include "SystemFont.h"

#include <QHelpEvent>
#include <QImage>
#include <QScrollBar>
#include <QToolTip>

#include <gtest/gtest.h>

namespace {

/// Whether the widget shows the very colour somewhere.
bool shows(QWidget& widget, const QColor& color) {
    const QImage image = widget.grab().toImage().convertToFormat(QImage::Format_RGB32);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixel(x, y) == color.rgb()) {
                return true;
            }
        }
    }
    return false;
}

/// Stems wider than a pixel, so that the colours of the letters are found.
void useLargeFont(EditorDesk& desk) {
    QFont font = desk.view().font();
    font.setPixelSize(48);
    desk.view().setFont(font);
}

} // namespace

TEST(CodeEditorView, ShowsTheTextOfTheSession) {
    EditorDesk desk(u"<a>|</a>");
    EXPECT_EQ(desk.view().history(), &desk.buffer.history());
    EXPECT_EQ(desk.view().text(), desk.buffer.text());
    EXPECT_EQ(&desk.editor.session(), &desk.session);
    desk.buffer.apply(std::vector{TextEdit::insert(u"x", 3)});
    EXPECT_EQ(desk.view().text(), Rope(u"<a>x</a>"));
}

TEST(CodeEditorView, UsesTheMonospacedFontAndTheColoursOfTexts) {
    EditorDesk desk(u"text|");
    EXPECT_EQ(desk.view().font(), SystemFont::monospaced());
    EXPECT_EQ(desk.view().font().pixelSize(), 13);
    const QPalette palette = desk.view().palette();
    EXPECT_EQ(palette.color(QPalette::Text), color(SystemColor::textColor, palette));
    EXPECT_EQ(palette.color(QPalette::Base), color(SystemColor::textBackground, palette));
    EXPECT_TRUE(shows(*desk.view().viewport(), color(SystemColor::textBackground, palette)));
}

TEST(CodeEditorView, KeepsFourAndSixPixelsAroundTheText) {
    EditorDesk desk(u"|text");
    EXPECT_EQ(desk.view().caretRect(0).topLeft(), QPointF(4, 6));
}

TEST(CodeEditorView, NeverWrapsAndScrollsBothWays) {
    std::u16string text(3000, u'x');
    EditorDesk desk(u"|" + text + std::u16string(100, u'\n'));
    EXPECT_EQ(desk.buffer.text().lineCount(), 101U);
    EXPECT_GT(desk.view().horizontalScrollBar()->maximum(), 0);
    EXPECT_GT(desk.view().verticalScrollBar()->maximum(), 0);
    EXPECT_EQ(desk.view().caretRect(2999).top(), desk.view().caretRect(0).top());
    EditorDesk small(u"|text");
    EXPECT_FALSE(small.view().horizontalScrollBar()->isVisible());
    EXPECT_FALSE(small.view().verticalScrollBar()->isVisible());
}

TEST(CodeEditorView, HasTheRulerAtItsLeft) {
    EditorDesk desk(u"<a>|</a>");
    LineNumberRuler& ruler = desk.editor.ruler();
    EXPECT_TRUE(ruler.isVisible());
    EXPECT_EQ(ruler.width(), 45);
    EXPECT_EQ(ruler.mapTo(&desk.view(), QPoint(ruler.width(), 0)).x(), desk.view().viewport()->x());
}

TEST(CodeEditorView, GivesItsFocusToTheText) {
    EditorDesk desk(u"<a>|</a>");
    EXPECT_EQ(desk.editor.focusProxy(), &desk.view());
}

TEST(CodeEditorView, SharesOneHistoryBetweenTypingAndOtherChanges) {
    EditorDesk desk(u"<a>|</a>");
    desk.type("x");
    desk.buffer.apply(std::vector{TextEdit::insert(u"<!-- -->", 0)}, QStringLiteral("Comentar"));
    desk.view().undo();
    EXPECT_EQ(desk.state(), u"<a>x|</a>");
    desk.view().undo();
    EXPECT_EQ(desk.state(), u"<a>|</a>");
}

TEST(CodeEditorView, ColoursWhileTyping) {
    EditorDesk desk(u"|");
    useLargeFont(desk);
    const QColor name = color(SystemColor::systemBlue, desk.view().palette());
    const QColor instruction = color(SystemColor::systemPurple, desk.view().palette());
    desk.type("<mmm");
    EXPECT_TRUE(shows(*desk.view().viewport(), name));
    EXPECT_FALSE(shows(*desk.view().viewport(), instruction));
    desk.type("\b\b\b?mmm");
    EXPECT_FALSE(shows(*desk.view().viewport(), name));
    EXPECT_TRUE(shows(*desk.view().viewport(), instruction));
}

TEST(CodeEditorView, ColoursWhatAScrollBringsIntoView) {
    std::u16string text = u"|";
    for (int line = 0; line < 200; ++line) {
        text += u"mmm\n";
    }
    EditorDesk desk(text + u"<mmm/>\n");
    useLargeFont(desk);
    const QColor name = color(SystemColor::systemBlue, desk.view().palette());
    EXPECT_FALSE(shows(*desk.view().viewport(), name));
    desk.view().verticalScrollBar()->setValue(desk.view().verticalScrollBar()->maximum());
    EXPECT_TRUE(shows(*desk.view().viewport(), name));
}

TEST(CodeEditorView, ColoursAnewWhenAParseTellsWhatIsAbove) {
    std::u16string text = u"|<!--\n";
    for (int line = 0; line < 200; ++line) {
        text += u"<mmm/>\n";
    }
    EditorDesk desk(text + u"-->\n");
    useLargeFont(desk);
    const QColor name = color(SystemColor::systemBlue, desk.view().palette());
    const QColor comment = color(SystemColor::systemGray, desk.view().palette());
    desk.view().select(SourceRange::empty(desk.buffer.text().lineStart(100)));
    desk.view().scrollToVisible(desk.view().selection());
    EXPECT_TRUE(shows(*desk.view().viewport(), comment));
    EXPECT_FALSE(shows(*desk.view().viewport(), name));
    // Until the parse has caught up nobody knows that this is a comment.
    desk.type("m");
    EXPECT_TRUE(shows(*desk.view().viewport(), name));
    desk.waitForParse();
    EXPECT_TRUE(shows(*desk.view().viewport(), comment));
    EXPECT_FALSE(shows(*desk.view().viewport(), name));
}

TEST(CodeEditorView, FollowsTheAppearance) {
    EditorDesk desk(u"<mmm/>|");
    useLargeFont(desk);
    const QPalette light(Qt::white, Qt::white);
    const QPalette dark(QColor(0x20, 0x20, 0x20), QColor(0x20, 0x20, 0x20));
    for (const QPalette& palette : {light, dark, light}) {
        desk.editor.setPalette(palette);
        EXPECT_TRUE(shows(*desk.view().viewport(), color(SystemColor::systemBlue, palette)));
        EXPECT_TRUE(shows(*desk.view().viewport(), color(SystemColor::textBackground, palette)));
        EXPECT_TRUE(shows(desk.editor.ruler(), color(SystemColor::textBackground, palette)));
    }
}

TEST(CodeEditorView, UnderlinesProblems) {
    EditorDesk desk(u"<a>\n<b>\n</a>|");
    EXPECT_TRUE(shows(*desk.view().viewport(), color(SystemColor::systemRed, desk.editor.palette())));
    EditorDesk sound(u"<a>\n<b/>\n</a>|");
    EXPECT_FALSE(shows(*sound.view().viewport(), color(SystemColor::systemRed, sound.editor.palette())));
}

TEST(CodeEditorView, TellsAProblemOverItsLineNumberAndOverTheText) {
    EditorDesk desk(u"<a>\n&|\n</a>");
    const QString message = QString::fromStdU16String(desk.session.tree().diagnostics[0].message);
    const QPointF line = desk.view().lineRect(1).center();
    LineNumberRuler& ruler = desk.editor.ruler();
    const QPoint onDot(7, static_cast<int>(line.y()));
    QHelpEvent overDot(QEvent::ToolTip, onDot, ruler.mapToGlobal(onDot));
    QCoreApplication::sendEvent(&ruler, &overDot);
    EXPECT_TRUE(QToolTip::text().contains(message.toHtmlEscaped())) << qPrintable(QToolTip::text());
    QToolTip::hideText();

    const QPoint onText = desk.view().caretRect(4).center().toPoint();
    QHelpEvent overText(QEvent::ToolTip, onText, desk.view().viewport()->mapToGlobal(onText));
    QCoreApplication::sendEvent(desk.view().viewport(), &overText);
    EXPECT_TRUE(QToolTip::text().contains(message.toHtmlEscaped())) << qPrintable(QToolTip::text());
    QToolTip::hideText();
}

TEST(CodeEditorView, OffersNamesWithControlSpaceOnly) {
    EditorDesk desk(u"<items><item/><|</items>");
    desk.type("i");
    EXPECT_EQ(desk.view().findChild<CompletionPopup*>(), nullptr);
    QTest::keyClick(&desk.view(), Qt::Key_Space, Qt::ControlModifier);
    const auto* const popup = desk.view().findChild<CompletionPopup*>();
    ASSERT_NE(popup, nullptr);
    EXPECT_TRUE(popup->isVisible());
    QTest::keyClick(&desk.view(), Qt::Key_Down);
    QTest::keyClick(&desk.view(), Qt::Key_Return);
    EXPECT_FALSE(popup->isVisible());
    EXPECT_EQ(desk.state(), u"<items><item/><item|</items>");
}

TEST(CodeEditorView, PartsFromTheSessionWhenItGoes) {
    auto desk = std::make_unique<EditorDesk>(u"<a>|</a>");
    auto* editor = new CodeEditorView(desk->session);
    delete editor;
    desk->buffer.apply(std::vector{TextEdit::insert(u"x", 3)});
    EXPECT_EQ(desk->state(), u"<a>x|</a>");
}
