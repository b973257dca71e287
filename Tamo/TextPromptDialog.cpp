#include "TextPromptDialog.h"

#include "CommitField.h"
#include "PromptProblem.h"
#include "SystemFont.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace {

constexpr int margin = 24;
constexpr int fieldWidth = 360;

} // namespace

TextPromptDialog::TextPromptDialog(const QString& title, Check check, QWidget* parent)
    : QDialog(parent), m_check(std::move(check)),
      m_field(new CommitField(QStringLiteral("Texto"), CommitField::Axis::vertical)),
      m_problem(PromptProblem::makeLabel()) {
    setWindowTitle(title);
    auto* heading = new QLabel(title);
    heading->setFont(SystemFont::semibold(SystemFont::body()));
    m_field->setMinimumWidth(fieldWidth);
    // The draft stays when a button takes the focus.
    m_field->setCommit([](const QString&) { return true; });
    connect(m_field, &CommitField::submitted, this, &TextPromptDialog::accept);
    connect(m_field, &CommitField::cancelled, this, &TextPromptDialog::reject);
    connect(static_cast<QPlainTextEdit*>(m_field->editor()), &QPlainTextEdit::textChanged, this,
            [this] { PromptProblem::show({}, *m_problem, *m_field->editor()); });
    auto* buttons = new QDialogButtonBox;
    buttons->addButton(QStringLiteral("Aceptar"), QDialogButtonBox::AcceptRole)->setDefault(true);
    buttons->addButton(QStringLiteral("Cancelar"), QDialogButtonBox::RejectRole);
    connect(buttons, &QDialogButtonBox::accepted, this, &TextPromptDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(margin, margin, margin, margin);
    layout->setSpacing(12);
    layout->addWidget(heading);
    layout->addWidget(m_field);
    layout->addWidget(m_problem);
    layout->addSpacing(8);
    layout->addWidget(buttons);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    m_field->setFocus();
}

QString TextPromptDialog::text() const { return m_field->draft(); }

void TextPromptDialog::accept() {
    if (const QString problem = m_check(text()); !problem.isEmpty()) {
        PromptProblem::show(problem, *m_problem, *m_field->editor());
    } else {
        QDialog::accept();
    }
}
