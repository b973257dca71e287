#include "FileDialog.h"

#include "FilePath.h"
#include "ShownName.h"
#include "WindowPlacement.h"

#include <QDateTime>
#include <QFileInfo>
#include <QFileSystemModel>
#include <QHeaderView>
#include <QLineEdit>
#include <QLocale>
#include <QPointer>
#include <QScreen>
#include <QSplitter>
#include <QStyledItemDelegate>
#include <QTreeView>

#include <algorithm>

namespace {

constexpr QSize usualSize(960, 560);
constexpr int sidebarWidth = 160;
constexpr int sizeColumn = 1;
constexpr int timeColumn = 3;

/// Shows sizes and times as the program writes numbers and dates: the toolkit goes by the desktop's language.
class FactDelegate : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override {
        QStyledItemDelegate::initStyleOption(option, index);
        const auto* const files = qobject_cast<const QFileSystemModel*>(index.model());
        if (files == nullptr) {
            return;
        }
        if (index.column() == sizeColumn && !files->isDir(index)) {
            option->text = QLocale().formattedDataSize(files->size(index), 1, QLocale::DataSizeSIFormat);
        } else if (index.column() == timeColumn) {
            option->text = files->lastModified(index).toString(QStringLiteral("dd/MM/yyyy HH:mm"));
        }
    }
};

/// Shows names with stand-ins, as the program does everywhere.
class NameDelegate : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override {
        QStyledItemDelegate::initStyleOption(option, index);
        option->text = shownPath(option->text);
    }
};

/// Makes each column as wide as what stands in it; the list scrolls where that is wider than the dialog.
void showWholeNames(QTreeView& list) {
    list.header()->setStretchLastSection(true);
    list.header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    list.setItemDelegateForColumn(0, new NameDelegate(&list));
    for (const int column : {sizeColumn, timeColumn}) {
        list.setItemDelegateForColumn(column, new FactDelegate(&list));
    }
}

/// `name` with each byte that is not UTF-8 replaced by U+FFFD.
QString withoutSurrogates(const QString& name) { return QString::fromUtf8(FilePath::bytes(name)); }

} // namespace

FileDialog::FileDialog(const QString& title, const QStringList& filters, QWidget* parent)
    : QFileDialog(parent, title), m_filters(filters) {
    setOption(QFileDialog::HideNameFilterDetails);
    setNameFilters(filters);
    resize(WindowPlacement::fitting(usualSize, screen()->availableGeometry()));
    if (auto* const list = findChild<QTreeView*>(QStringLiteral("treeView"))) {
        showWholeNames(*list);
    }
    if (auto* const panes = findChild<QSplitter*>(QStringLiteral("splitter"))) {
        panes->setSizes({sidebarWidth, usualSize.width() - sidebarWidth});
    }
}

FileDialog* FileDialog::toOpen(const QString& folder, const QStringList& filters, QWidget* parent) {
    auto* const dialog = new FileDialog(QStringLiteral("Abrir"), filters, parent);
    dialog->setAcceptMode(AcceptOpen);
    dialog->setFileMode(ExistingFiles);
    if (!folder.isEmpty() && FilePath::isUnicode(folder)) {
        dialog->setDirectory(folder);
    }
    return dialog;
}

FileDialog* FileDialog::toSave(const QString& proposal, const QStringList& filters, QWidget* parent) {
    auto* const dialog = new FileDialog(QStringLiteral("Guardar como"), filters, parent);
    dialog->setAcceptMode(AcceptSave);
    dialog->setFileMode(AnyFile);
    dialog->setLabelText(LookIn, QStringLiteral("Guardar en:"));
    if (const QFileInfo file(proposal); file.isAbsolute() && FilePath::isUnicode(file.path())) {
        dialog->setDirectory(file.path());
    }
    // The dialog can only make names that are Unicode.
    dialog->selectFile(withoutSurrogates(QFileInfo(proposal).fileName()));
    connect(dialog, &QFileDialog::filterSelected, dialog, &FileDialog::followFilter);
    dialog->followFilter();
    return dialog;
}

QStringList FileDialog::choose() {
    const QPointer<FileDialog> dialog(this);
    const bool isAccepted = exec() == Accepted;
    if (dialog == nullptr) {
        return {};
    }
    deleteLater();
    return isAccepted ? selectedFiles() : QStringList();
}

void FileDialog::followFilter() {
    // The box may know no more of a filter than it shows.
    const QString shown = selectedNameFilter();
    const auto chosen = std::ranges::find_if(m_filters, [&](const QString& filter) {
        return filter == shown || filter.startsWith(shown + QStringLiteral(" ("));
    });
    const QString found = chosen == m_filters.end() ? QString() : suffix(*chosen);
    setDefaultSuffix(found.isEmpty() ? suffix(m_filters.value(0)) : found);
}

void FileDialog::accept() {
    if (acceptMode() == AcceptSave) {
        addSuffix();
    }
    QFileDialog::accept();
}

/// Sees to names with a dot, to which the toolkit adds nothing. Before it asks whether a file may be replaced.
void FileDialog::addSuffix() {
    auto* const field = findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
    QString name = field == nullptr ? QString() : field->text();
    const QString extension = QFileInfo(name).fileName().section(u'.', -1);
    if (!name.contains(u'.') || std::ranges::any_of(extension, [](QChar unit) { return unit.isLetter(); }) ||
        QFileInfo::exists(directory().absoluteFilePath(name))) {
        return;
    }
    while (name.endsWith(u'.')) {
        name.chop(1);
    }
    if (!name.isEmpty() && !name.endsWith(u'/')) {
        field->setText(name + u'.' + defaultSuffix());
    }
}

QString FileDialog::suffix(const QString& filter) {
    const QString start = QStringLiteral("(*.");
    const auto at = filter.lastIndexOf(start);
    return at < 0 ? QString() : filter.mid(at + start.size()).section(u')', 0, 0).section(u' ', 0, 0);
}
