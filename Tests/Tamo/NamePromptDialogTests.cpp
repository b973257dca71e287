#include "NamePromptDialog.h"

#include <QLabel>
#include <QLineEdit>
#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

namespace {

bool says(const QWidget& dialog, const QString& text) {
    for (const QLabel* label : dialog.findChildren<QLabel*>()) {
        if (label->isVisible() && label->text() == text) {
            return true;
        }
    }
    return false;
}

} // namespace

TEST(NamePromptDialog, StaysOpenWithAnInvalidName) {
    NamePromptDialog dialog(QString(), nullptr);
    const QSignalSpy accepted(&dialog, &QDialog::accepted);
    dialog.open();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog));
    auto* const field = dialog.findChild<QLineEdit*>();
    QTest::keyClicks(field, QStringLiteral("1 no"));
    QTest::keyClick(field, Qt::Key_Return);
    EXPECT_TRUE(dialog.isVisible());
    EXPECT_EQ(accepted.count(), 0);
    EXPECT_EQ(field->text(), QStringLiteral("1 no"));
    EXPECT_TRUE(field->hasFocus());
    const QString problem = QStringLiteral("“1 no” no es un nombre XML válido.");
    EXPECT_TRUE(says(dialog, problem));
    EXPECT_EQ(field->accessibleDescription(), problem);

    QTest::keyClick(field, Qt::Key_Home);
    QTest::keyClick(field, Qt::Key_Delete);
    EXPECT_FALSE(says(dialog, problem)) << "another name is tried";
    QTest::keyClick(field, Qt::Key_Delete);
    QTest::keyClick(field, Qt::Key_Return);
    EXPECT_EQ(accepted.count(), 1);
    EXPECT_EQ(dialog.name(), QStringLiteral("no"));
}
