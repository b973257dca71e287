#include "HelpMenu.h"

#include "KeyTable.h"
#include "ShortcutsDialog.h"

#include <QApplication>
#include <QMainWindow>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>

namespace {

constexpr int iconSize = 64;

void showShortcuts(QMainWindow& window) {
    QList<KeySection> sections = KeyTable::ofMenus(*window.menuBar());
    sections += KeyTable::ofViews();
    auto* const dialog = new ShortcutsDialog(sections, &window);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->open();
}

void showAbout(QMainWindow& window) {
    const QString name = QCoreApplication::applicationName();
    auto* const box =
        new QMessageBox(QMessageBox::NoIcon, QStringLiteral("Acerca de %1").arg(name),
                        QStringLiteral("%1 %2").arg(name, QCoreApplication::applicationVersion()),
                        QMessageBox::NoButton, &window);
    box->setTextFormat(Qt::PlainText);
    box->setIconPixmap(QApplication::windowIcon().pixmap(iconSize));
    box->setInformativeText(
        QStringLiteral("Editor de XML para el escritorio.\n\n"
                       "Software libre con la licencia MIT: puedes usarlo, copiarlo, cambiarlo y "
                       "repartirlo, sin garantía alguna.\n\nFunciona con Qt %1 e ICU.")
            .arg(QString::fromLatin1(qVersion())));
    box->addButton(QStringLiteral("Cerrar"), QMessageBox::AcceptRole);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->open();
}

} // namespace

void HelpMenu::fill(QMenu& menu, QMainWindow& window) {
    menu.addAction(QStringLiteral("&Atajos de teclado"), QKeySequence(Qt::Key_F1), &window,
                   [&window] { showShortcuts(window); });
    menu.addSeparator();
    menu.addAction(QStringLiteral("A&cerca de %1").arg(QCoreApplication::applicationName()), &window,
                   [&window] { showAbout(window); });
}
