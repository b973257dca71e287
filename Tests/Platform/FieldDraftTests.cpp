#include "FieldDraft.h"

#include <QLineEdit>
#include <QVBoxLayout>

#include <gtest/gtest.h>

namespace {

/// A field whose drafts count.
class Field : public QWidget {
    Q_OBJECT

public:
    explicit Field(QWidget* parent) : QWidget(parent), m_line(new QLineEdit(this)) {}

    QLineEdit& line() const { return *m_line; }
    const QStringList& commits() const { return m_commits; }

public slots:
    void commitDraft() { m_commits += m_line->text(); }

private:
    QLineEdit* m_line;
    QStringList m_commits;
};

} // namespace

TEST(FieldDraft, IsCommittedByTheFieldAroundTheFocus) {
    QWidget window;
    Field outer(&window);
    Field inner(&outer);
    inner.line().setText(QStringLiteral("uno"));
    FieldDraft::commit(&inner.line());
    EXPECT_EQ(inner.commits(), QStringList{QStringLiteral("uno")});
    EXPECT_EQ(outer.commits(), QStringList());
    FieldDraft::commit(&outer.line());
    EXPECT_EQ(outer.commits(), QStringList{QString()});
}

TEST(FieldDraft, IsNoneElsewhere) {
    Field around(nullptr);
    QWidget dialog(&around, Qt::Window);
    QLineEdit other(&dialog);
    FieldDraft::commit(&other);
    FieldDraft::commit(&dialog);
    FieldDraft::commit(nullptr);
    EXPECT_EQ(around.commits(), QStringList()) << "what is in another window is not in the field";
}

#include "FieldDraftTests.moc"
