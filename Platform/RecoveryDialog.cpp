#include "RecoveryDialog.h"

#include "FilePath.h"
#include "GroupedNumber.h"
#include "ShownName.h"
#include "WindowPlacement.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDialogButtonBox>
#include <QHeaderView>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QScreen>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace {

constexpr int idRole = Qt::UserRole;
constexpr QSize usualSize(640, 360);

QString origin(const RecoverableDocument& document) {
    return FilePath::of(QByteArray::fromStdString(document.facts.origin));
}

QString name(const RecoverableDocument& document) {
    const QString path = origin(document);
    const QString name = path.isEmpty() ? QStringLiteral("Sin título") : shownFileName(path);
    return document.damage != RecoveryDamage::none ? QStringLiteral("%1 (incompleto)").arg(name) : name;
}

QString time(const RecoverableDocument& document) {
    return QDateTime::fromMSecsSinceEpoch(document.changed).toString(QStringLiteral("dd/MM/yyyy HH:mm:ss"));
}

QTreeWidgetItem* item(const RecoverableDocument& document) {
    auto* const item = new QTreeWidgetItem(
        {name(document), time(document),
         counted(document.size, QStringLiteral("carácter"), QStringLiteral("caracteres"))});
    item->setData(0, idRole, document.id);
    // A tool tip would take a path with angle brackets for markup.
    item->setToolTip(0, QStringLiteral("<qt>%1</qt>").arg(shownPath(origin(document)).toHtmlEscaped()));
    return item;
}

} // namespace

RecoveryDialog::RecoveryDialog(const std::vector<RecoverableDocument>& documents, QWidget* parent)
    : QDialog(parent), m_list(new QTreeWidget), m_recover(new QPushButton(QStringLiteral("&Recuperar"))),
      m_discard(new QPushButton(QStringLiteral("&Descartar"))) {
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(QStringLiteral("Recuperar documentos"));
    resize(WindowPlacement::fitting(usualSize, screen()->availableGeometry()));
    auto* const text = new QLabel(
        QStringLiteral("La última vez, el programa se interrumpió con cambios sin guardar en estos "
                       "documentos. Los que recuperes "
                       "se abrirán tal como estaban; ningún archivo cambia hasta que los guardes."));
    text->setWordWrap(true);
    m_list->setHeaderLabels(
        {QStringLiteral("Documento"), QStringLiteral("Último cambio"), QStringLiteral("Tamaño")});
    m_list->setRootIsDecorated(false);
    m_list->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_list->setAccessibleName(QStringLiteral("Documentos con cambios sin guardar"));
    for (const RecoverableDocument& document : documents) {
        m_list->addTopLevelItem(item(document));
    }
    m_list->header()->setStretchLastSection(false);
    m_list->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    m_list->header()->setSectionResizeMode(1, QHeaderView::ResizeToContents);
    m_list->header()->setSectionResizeMode(2, QHeaderView::ResizeToContents);
    m_list->selectAll();

    auto* const buttons = new QDialogButtonBox;
    buttons->addButton(m_recover, QDialogButtonBox::AcceptRole);
    buttons->addButton(m_discard, QDialogButtonBox::DestructiveRole);
    auto* const later = buttons->addButton(QStringLiteral("&Más tarde"), QDialogButtonBox::RejectRole);
    m_recover->setDefault(true);

    auto* const layout = new QVBoxLayout(this);
    layout->addWidget(text);
    layout->addWidget(m_list, 1);
    layout->addWidget(buttons);

    connect(m_list, &QTreeWidget::itemSelectionChanged, this, [this] {
        const bool isAny = !m_list->selectedItems().isEmpty();
        m_recover->setEnabled(isAny);
        m_discard->setEnabled(isAny);
    });
    connect(m_recover, &QPushButton::clicked, this, [this] { emit recoverRequested(takeSelected()); });
    connect(m_discard, &QPushButton::clicked, this, &RecoveryDialog::discard);
    connect(later, &QPushButton::clicked, this, &QDialog::reject);
    m_recover->setFocus();
}

/// The documents that are selected, which leave the list.
QStringList RecoveryDialog::takeSelected() {
    QStringList ids;
    for (int row = 0; row < m_list->topLevelItemCount();) {
        if (m_list->topLevelItem(row)->isSelected()) {
            const std::unique_ptr<QTreeWidgetItem> taken(m_list->takeTopLevelItem(row));
            ids += taken->data(0, idRole).toString();
        } else {
            ++row;
        }
    }
    if (m_list->topLevelItemCount() == 0) {
        accept();
    }
    return ids;
}

void RecoveryDialog::discard() {
    const auto count = m_list->selectedItems().size();
    QMessageBox question(
        QMessageBox::Warning, QCoreApplication::applicationName(),
        count == 1
            ? QStringLiteral("¿Descartar los cambios de “%1”?").arg(m_list->selectedItems().front()->text(0))
            : QStringLiteral("¿Descartar los cambios de %1 documentos?")
                  .arg(groupedNumber(static_cast<std::uint64_t>(count))),
        QMessageBox::NoButton, this);
    question.setTextFormat(Qt::PlainText);
    question.setInformativeText(QStringLiteral("No se podrán recuperar más."));
    const auto* const accept = question.addButton(QStringLiteral("Descartar"), QMessageBox::DestructiveRole);
    question.setDefaultButton(question.addButton(QStringLiteral("Cancelar"), QMessageBox::RejectRole));
    question.exec();
    if (question.clickedButton() == accept) {
        emit discardRequested(takeSelected());
    }
}
