#include "ReopenEncodingDialog.h"

#include "EncodingList.h"
#include "GroupedNumber.h"
#include "SystemFont.h"
#include "WindowPlacement.h"

#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScreen>
#include <QVBoxLayout>

#include <utility>

namespace {

constexpr QSize usualSize(900, 480);
constexpr int margin = 24;
constexpr int spacing = 12;

QLabel* makeText(const QString& text) {
    auto* const label = new QLabel(text);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    return label;
}

} // namespace

ReopenEncodingDialog::ReopenEncodingDialog(const QString& name, FileStart start,
                                           const StringEncoding& current, QWidget* parent)
    : QDialog(parent), m_start(std::move(start)),
      m_list(new EncodingList([](const StringEncoding&) { return true; })), m_preview(new QPlainTextEdit),
      m_problem(makeText({})), m_accept(new QPushButton(QStringLiteral("&Volver a abrir"))) {
    setWindowTitle(QStringLiteral("Volver a abrir con la codificación"));
    resize(WindowPlacement::fitting(usualSize, screen()->availableGeometry()));
    m_preview->setReadOnly(true);
    m_preview->setLineWrapMode(QPlainTextEdit::NoWrap);
    m_preview->setFont(SystemFont::monospaced());
    m_preview->setAccessibleName(QStringLiteral("Así se lee"));
    auto* const buttons = new QDialogButtonBox;
    buttons->addButton(m_accept, QDialogButtonBox::AcceptRole);
    buttons->addButton(QStringLiteral("Cancelar"), QDialogButtonBox::RejectRole);
    m_accept->setDefault(true);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto* const panes = new QHBoxLayout;
    panes->setSpacing(spacing);
    panes->addWidget(m_list, 4);
    panes->addWidget(m_preview, 5);
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(margin, margin, margin, margin);
    layout->setSpacing(spacing);
    layout->addWidget(
        makeText(QStringLiteral(
                     "Elige la codificación en la que leer “%1”. El archivo no cambia hasta que lo guardes.")
                     .arg(name)));
    layout->addLayout(panes, 1);
    layout->addWidget(m_problem);
    layout->addWidget(buttons);
    connect(m_list, &EncodingList::chosenChanged, this, &ReopenEncodingDialog::showPreview);
    m_list->choose(current);
    showPreview();
    m_list->setFocus();
}

StringEncoding ReopenEncodingDialog::encoding() const {
    return m_list->chosen().value_or(StringEncoding::utf8());
}

void ReopenEncodingDialog::showPreview() {
    const auto encoding = m_list->chosen();
    const EncodingPreview preview = encoding ? EncodingPreview::of(m_start, *encoding) : EncodingPreview();
    m_preview->setPlainText(preview.text);
    m_problem->setText(preview.illegalAt
                           ? QStringLiteral("Así no se puede leer: el byte %1 no vale en esta codificación.")
                                 .arg(groupedNumber(static_cast<std::int64_t>(*preview.illegalAt) + 1))
                           : QString());
    m_accept->setEnabled(encoding && !preview.illegalAt);
}
