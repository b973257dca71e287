#include "FileDialog.h"

#include "ToolkitTexts.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDir>
#include <QFile>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QScreen>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QTreeView>

#include <gtest/gtest.h>

#include <functional>
#include <memory>

namespace {

const QStringList filters{QStringLiteral("Notas (*.txt *.md)"), QStringLiteral("Dibujos (*.svg)"),
                          QStringLiteral("Todos los archivos (*)")};

/// What `dialog` answers when the user, once it shows, does what `act` does and confirms.
QStringList answer(FileDialog* dialog, const std::function<void(FileDialog&)>& act) {
    QTimer::singleShot(0, dialog, [dialog, act] {
        act(*dialog);
        auto* const name = dialog->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
        QTest::keyClick(name, Qt::Key_Return);
    });
    return dialog->choose();
}

void typeName(FileDialog& dialog, const QString& name) {
    dialog.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))->setText(name);
}

void chooseFilter(FileDialog& dialog, int index) {
    dialog.selectNameFilter(filters[index]);
    emit dialog.filterSelected(filters[index]);
}

} // namespace

TEST(FileDialog, GivesANameWithoutAnExtensionThatOfTheFilter) {
    struct Row {
        QString typed;
        int filter;
        QString saved;
    };
    for (const Row& row : {Row{QStringLiteral("sin"), 0, QStringLiteral("sin.txt")},
                           Row{QStringLiteral("sin"), 1, QStringLiteral("sin.svg")},
                           Row{QStringLiteral("sin"), 2, QStringLiteral("sin.txt")},
                           Row{QStringLiteral("v1.2"), 0, QStringLiteral("v1.2.txt")},
                           Row{QStringLiteral("punto."), 1, QStringLiteral("punto.svg")},
                           Row{QStringLiteral("v1.2.x"), 0, QStringLiteral("v1.2.x")},
                           Row{QStringLiteral("con.html"), 0, QStringLiteral("con.html")}}) {
        const QTemporaryDir folder;
        const QString proposal = folder.filePath(QStringLiteral("nota.txt"));
        const QStringList chosen =
            answer(FileDialog::toSave(proposal, filters, nullptr), [&](FileDialog& dialog) {
                chooseFilter(dialog, row.filter);
                typeName(dialog, row.typed);
            });
        EXPECT_EQ(chosen, QStringList(folder.filePath(row.saved)));
    }
}

TEST(FileDialog, ProposesTheNameInItsFolder) {
    const QTemporaryDir folder;
    const QString proposal = folder.filePath(QStringLiteral("nota.txt"));
    EXPECT_EQ(answer(FileDialog::toSave(proposal, filters, nullptr), [](FileDialog&) {}),
              QStringList(proposal));
}

TEST(FileDialog, KeepsTheNameOfAFileThatIsThere) {
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("v1.2"));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    auto* const dialog = FileDialog::toSave(path, filters, nullptr);
    dialog->setOption(QFileDialog::DontConfirmOverwrite);
    EXPECT_EQ(answer(dialog, [](FileDialog&) {}), QStringList(path));
}

TEST(FileDialog, IsNoLargerThanTheScreen) {
    for (FileDialog* const dialog :
         {FileDialog::toOpen({}, filters, nullptr), FileDialog::toSave(QStringLiteral("a"), filters, nullptr)}) {
        const std::unique_ptr<FileDialog> owner(dialog);
        dialog->show();
        EXPECT_TRUE(dialog->screen()->availableGeometry().size().expandedTo(dialog->size()) ==
                    dialog->screen()->availableGeometry().size());
        EXPECT_LE(dialog->minimumSizeHint().width(), 620);
        EXPECT_LE(dialog->minimumSizeHint().height(), 400);
    }
}

TEST(FileDialog, AnswersNothingWhenTheUserGivesUp) {
    auto* const dialog = FileDialog::toSave(QStringLiteral("nota.txt"), filters, nullptr);
    QTimer::singleShot(0, dialog, &QDialog::reject);
    EXPECT_TRUE(dialog->choose().isEmpty());
}

TEST(FileDialog, ShowsWholeNames) {
    const QTemporaryDir folder;
    const QString name = QString(60, u'n') + QStringLiteral(".txt");
    QFile file(folder.filePath(name));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    const std::unique_ptr<FileDialog> dialog(FileDialog::toOpen(folder.path(), filters, nullptr));
    dialog->show();
    auto* const list = dialog->findChild<QTreeView*>(QStringLiteral("treeView"));
    ASSERT_NE(list, nullptr);
    ASSERT_TRUE(QTest::qWaitFor([&] { return list->model()->rowCount(list->rootIndex()) == 1; }));
    const QModelIndex index = list->model()->index(0, 0, list->rootIndex());
    EXPECT_EQ(index.data().toString(), name);
    EXPECT_TRUE(
        QTest::qWaitFor([&] { return list->columnWidth(0) >= list->sizeHintForIndex(index).width(); }));
}

TEST(FileDialog, SpeaksOneLanguage) {
    ToolkitTexts words;
    QCoreApplication::installTranslator(&words);
    const std::unique_ptr<FileDialog> dialog(
        FileDialog::toSave(QStringLiteral("nota.txt"), filters, nullptr));
    dialog->show();
    QStringList shown;
    for (const QLabel* const label : dialog->findChildren<QLabel*>()) {
        shown += label->text();
    }
    for (const QAbstractButton* const button : dialog->findChildren<QAbstractButton*>()) {
        shown += button->text() + button->toolTip();
    }
    const auto* const header = dialog->findChild<QTreeView*>(QStringLiteral("treeView"))->header();
    for (int column = 0; column < header->count(); ++column) {
        shown += header->model()->headerData(column, Qt::Horizontal).toString();
    }
    QCoreApplication::removeTranslator(&words);
    const QString all = shown.join(u'|').remove(u'&');
    for (const auto* const spanish :
         {"Guardar en:", "Nombre del archivo:", "Tipo de archivo:", "Guardar", "Cancelar",
          "Carpeta superior", "Nombre", "Tamaño", "Tipo", "Modificado"}) {
        EXPECT_TRUE(all.contains(QString::fromUtf8(spanish))) << spanish << " in " << qUtf8Printable(all);
    }
    for (const auto* const english : {"Look in", "File name", "Files of type", "Save", "Cancel|", "Go back",
                                      "Parent", "Create", "view mode", "Date"}) {
        EXPECT_FALSE(all.contains(QString::fromUtf8(english))) << english << " in " << qUtf8Printable(all);
    }
}
