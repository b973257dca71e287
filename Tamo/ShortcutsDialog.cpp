#include "ShortcutsDialog.h"

#include "SystemFont.h"
#include "WindowPlacement.h"

#include <QDialogButtonBox>
#include <QHeaderView>
#include <QScreen>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace {

constexpr QSize initialSize(620, 640);

/// The names of the keys. Two keys that are called the same are listed once.
QString shown(const QList<QKeySequence>& keys) {
    QStringList names;
    for (const QKeySequence& key : keys) {
        names += key.toString(QKeySequence::NativeText);
    }
    names.removeDuplicates();
    return names.join(QStringLiteral(", "));
}

} // namespace

ShortcutsDialog::ShortcutsDialog(const QList<KeySection>& sections, QWidget* parent) : QDialog(parent) {
    setWindowTitle(QStringLiteral("Atajos de teclado"));
    auto* list = new QTreeWidget;
    list->setAccessibleName(windowTitle());
    list->setHeaderLabels({QStringLiteral("Orden"), QStringLiteral("Teclas")});
    list->setSelectionMode(QAbstractItemView::SingleSelection);
    list->setUniformRowHeights(true);
    list->setFrameShape(QFrame::NoFrame);
    for (const KeySection& section : sections) {
        auto* heading = new QTreeWidgetItem(list, {section.title});
        heading->setFont(0, SystemFont::semibold(SystemFont::body()));
        heading->setFirstColumnSpanned(true);
        heading->setExpanded(true);
        for (const KeyBinding& binding : section.bindings) {
            new QTreeWidgetItem(heading, {binding.meaning, shown(binding.keys)});
        }
    }
    // The keys show whole, however narrow the page is made.
    list->header()->setStretchLastSection(false);
    list->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    list->header()->setSectionResizeMode(1, QHeaderView::ResizeToContents);
    list->setCurrentItem(list->topLevelItem(0));
    auto* buttons = new QDialogButtonBox;
    buttons->addButton(QStringLiteral("Cerrar"), QDialogButtonBox::RejectRole);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(list, 1);
    layout->addWidget(buttons);
    resize(WindowPlacement::fitting(initialSize, screen()->availableGeometry()));
}
