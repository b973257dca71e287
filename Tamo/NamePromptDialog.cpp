#include "NamePromptDialog.h"

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
    : QDialog(parent), m_name(new QLineEdit) {
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
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(margin, margin, margin, margin);
    layout->setSpacing(12);
    layout->addWidget(heading);
    if (!purpose.isEmpty()) {
        layout->addWidget(new QLabel(purpose));
    }
    layout->addWidget(m_name);
    layout->addSpacing(8);
    layout->addWidget(buttons);
    layout->setSizeConstraint(QLayout::SetFixedSize);
}

QString NamePromptDialog::name() const { return m_name->text(); }
