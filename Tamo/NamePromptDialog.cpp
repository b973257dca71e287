#include "NamePromptDialog.h"

#include "Lexer.h"
#include "MutationFailureMessage.h"
#include "PromptProblem.h"
#include "SourceText.h"
#include "SystemFont.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace {

constexpr int margin = 24;
constexpr int fieldWidth = 300;

} // namespace

NamePromptDialog::NamePromptDialog(const QString& purpose, QWidget* parent)
    : QDialog(parent), m_name(new QLineEdit), m_problem(PromptProblem::makeLabel()) {
    const QString title = QStringLiteral("Nombre de la etiqueta");
    setWindowTitle(title);
    auto* heading = new QLabel(title);
    heading->setFont(SystemFont::semibold(SystemFont::body()));
    m_name->setAccessibleName(title);
    m_name->setFont(SystemFont::monospaced());
    m_name->setMinimumWidth(fieldWidth);
    auto* buttons = new QDialogButtonBox;
    QPushButton* const accept = buttons->addButton(QStringLiteral("Aceptar"), QDialogButtonBox::AcceptRole);
    accept->setDefault(true);
    buttons->addButton(QStringLiteral("Cancelar"), QDialogButtonBox::RejectRole);
    connect(buttons, &QDialogButtonBox::accepted, this, &NamePromptDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(margin, margin, margin, margin);
    layout->setSpacing(12);
    layout->addWidget(heading);
    if (!purpose.isEmpty()) {
        layout->addWidget(new QLabel(purpose));
    }
    layout->addWidget(m_name);
    layout->addWidget(m_problem);
    layout->addSpacing(8);
    layout->addWidget(buttons);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    connect(m_name, &QLineEdit::textEdited, this, [this] { PromptProblem::show({}, *m_problem, *m_name); });
}

QString NamePromptDialog::name() const { return m_name->text(); }

void NamePromptDialog::accept() {
    const std::u16string units = name().toStdU16String();
    if (Lexer::isValidName(units)) {
        QDialog::accept();
    } else {
        PromptProblem::show(message(MutationPlanner::InvalidName{repaired(units)}), *m_problem, *m_name);
    }
}
