#include "SaveEncodingDialog.h"

#include "EncodingList.h"
#include "WindowPlacement.h"
#include "XMLDeclaration.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QVBoxLayout>

#include <utility>

namespace {

constexpr QSize usualSize(520, 520);
constexpr int margin = 24;
constexpr int spacing = 12;

/// What becomes of the declaration of the text that starts with `start`.
QString declarationNews(const EncodingChoice& choice, std::u16string_view start) {
    const auto edit = choice.declaration(start, {});
    const QString name = QString::fromStdU16String(choice.name());
    if (!edit) {
        return QStringLiteral("La declaración XML se queda como está.");
    }
    if (!XMLDeclaration::of(start)) {
        return QStringLiteral("Se añadirá una declaración XML con encoding=\"%1\".").arg(name);
    }
    return QStringLiteral("La declaración XML pasará a decir encoding=\"%1\".").arg(name);
}

} // namespace

SaveEncodingDialog::SaveEncodingDialog(const EncodingChoice& current, std::u16string start,
                                       std::u16string_view lineEnding, QWidget* parent)
    : QDialog(parent), m_start(std::move(start)), m_list(new EncodingList([](const StringEncoding& encoding) {
          return EncodingChoice::usual(encoding).canBeDeclared();
      })),
      m_lineEndings(new QComboBox),
      m_mark(new QCheckBox(QStringLiteral("Escribir la &marca de orden de bytes (BOM)"))),
      m_declaration(new QLabel), m_accept(new QPushButton(QStringLiteral("&Guardar"))) {
    setWindowTitle(QStringLiteral("Guardar con la codificación"));
    resize(WindowPlacement::fitting(usualSize, screen()->availableGeometry()));
    const bool usesPairs = lineEnding == u"\r\n";
    m_lineEndings->addItem(usesPairs ? QStringLiteral("Como están (CRLF)")
                                     : QStringLiteral("Como están (LF)"));
    m_lineEndings->addItem(QStringLiteral("LF (Linux, macOS)"), QStringLiteral("\n"));
    m_lineEndings->addItem(QStringLiteral("CRLF (Windows)"), QStringLiteral("\r\n"));
    m_lineEndings->setAccessibleName(QStringLiteral("Finales de línea"));
    m_declaration->setTextFormat(Qt::PlainText);
    m_declaration->setWordWrap(true);
    auto* const buttons = new QDialogButtonBox;
    buttons->addButton(m_accept, QDialogButtonBox::AcceptRole);
    buttons->addButton(QStringLiteral("Cancelar"), QDialogButtonBox::RejectRole);
    m_accept->setDefault(true);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto* const lineEndings = new QFormLayout;
    lineEndings->addRow(QStringLiteral("&Finales de línea:"), m_lineEndings);
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(margin, margin, margin, margin);
    layout->setSpacing(spacing);
    layout->addWidget(m_list, 1);
    layout->addLayout(lineEndings);
    layout->addWidget(m_mark);
    layout->addWidget(m_declaration);
    layout->addWidget(buttons);
    connect(m_list, &EncodingList::chosenChanged, this, &SaveEncodingDialog::followEncoding);
    connect(m_mark, &QCheckBox::toggled, this, &SaveEncodingDialog::showDeclaration);
    m_list->choose(current.encoding);
    followEncoding();
    m_mark->setChecked(current.hasMark || EncodingChoice::needsMark(current.encoding));
    m_list->setFocus();
}

EncodingChoice SaveEncodingDialog::choice() const {
    return {m_list->chosen().value_or(StringEncoding::utf8()), m_mark->isChecked()};
}

std::u16string SaveEncodingDialog::lineEnding() const {
    return m_lineEndings->currentData().toString().toStdU16String();
}

/// UTF-16 is not recognised without the mark, and most encodings have none.
void SaveEncodingDialog::followEncoding() {
    const auto encoding = m_list->chosen();
    m_accept->setEnabled(encoding.has_value());
    m_mark->setEnabled(encoding && EncodingChoice::canHaveMark(*encoding) &&
                       !EncodingChoice::needsMark(*encoding));
    m_mark->setChecked(encoding && EncodingChoice::needsMark(*encoding));
    showDeclaration();
}

void SaveEncodingDialog::showDeclaration() {
    m_declaration->setText(m_list->chosen() ? declarationNews(choice(), m_start) : QString());
}
